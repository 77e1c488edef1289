#include "cli/htmlreport.h"

#include <fmt/format.h>

#include "cli/host.h"
#include "cli/settingsjson.h"
#include "cli/svgplot.h"

namespace bsncli {

using nlohmann::ordered_json;

namespace {

const char* const kStyle = R"(
body { font-family: "DejaVu Sans", "Segoe UI", Roboto, Arial, Helvetica, sans-serif; color: #222;
       max-width: 1600px; margin: 1.5em auto; padding: 0 1.5em; line-height: 1.4; }
h1 { font-size: 1.6em; margin: 0 0 .2em; }
h2 { font-size: 1.25em; border-bottom: 1px solid #ddd; padding-bottom: .2em; margin-top: 1.8em; }
nav a { margin-right: 1em; }
code { background: #f3f4f6; padding: 0 .25em; border-radius: 3px; }
.meta { color: #444; margin: .2em 0; }
.status-ok { color: #176f2c; font-weight: bold; }
.status-error { color: #b00020; font-weight: bold; }
table { border-collapse: collapse; margin: .4em 0 .2em; }
caption { caption-side: top; text-align: left; font-weight: bold; padding: .3em 0; white-space: nowrap; }
th, td { padding: .25em .75em; border-bottom: 1px solid #e3e3e3; text-align: right; }
th { background: #f3f5f8; }
td { font-variant-numeric: tabular-nums; }
th:first-child, td:first-child { text-align: left; }
table.settings td, table.settings th { text-align: left; }
.note { color: #555; font-size: .9em; margin: .1em 0; }
section.table { margin-bottom: 1.4em; }
.figures { display: flex; flex-wrap: wrap; gap: 1.2em; }
figure { margin: 0; flex: 0 1 760px; }
figure svg { width: 100%; height: auto; border: 1px solid #e3e3e3; }
figcaption { font-size: .9em; color: #555; }
footer { margin-top: 2.5em; color: #777; font-size: .85em; }
)";

std::string valueText(const std::string& key, const ordered_json& v) {
    if (v.is_null()) return "(not set)";
    if (v.is_boolean()) return v.get<bool>() ? "true" : "false";
    if (v.is_string()) return v.get<std::string>();
    if (v.is_number_integer()) {
        const std::string word = SettingEnumWord(key, v.get<int>());
        return word.empty() || word == v.dump() ? v.dump() : fmt::format("{} ({})", v.dump(), word);
    }
    if (v.is_number()) return fmt::format("{}", v.get<double>());
    if (v.is_array()) {
        if (v.empty()) return "(none)";
        std::string out;
        for (const auto& e : v) out += (out.empty() ? "" : ", ") + (e.is_structured() ? e.dump() : valueText("", e));
        return out;
    }
    return v.dump();
}

std::string tableHtml(const TextTable& table) {
    std::string html = "<section class=\"table\">\n<table>\n<caption>" + XmlEscape(table.Title()) + "</caption>\n<thead><tr>";
    for (const auto& column : table.Columns()) html += "<th>" + XmlEscape(column.first) + "</th>";
    html += "</tr></thead>\n<tbody>\n";
    for (std::size_t r = 0; r < table.Rows(); ++r) {
        html += "<tr>";
        for (const auto& column : table.Columns())
            html += "<td>" + XmlEscape(r < column.second.size() ? column.second[r] : ".") + "</td>";
        html += "</tr>\n";
    }
    html += "</tbody>\n</table>\n";
    for (const std::string& note : table.Notes()) html += "<p class=\"note\">" + XmlEscape(note) + "</p>\n";
    return html + "</section>\n";
}

std::string settingsTable(const std::vector<std::pair<std::string, std::string>>& rows) {
    std::string html = "<table class=\"settings\">\n<thead><tr><th>Key</th><th>Value</th></tr></thead>\n<tbody>\n";
    for (const auto& [key, value] : rows)
        html += "<tr><td>" + XmlEscape(key) + "</td><td>" + XmlEscape(value) + "</td></tr>\n";
    return html + "</tbody>\n</table>\n";
}

// An SVG document as an element of the page: without its XML declaration.
std::string inlineSvg(const std::string& svg) {
    const std::size_t start = svg.find("<svg");
    return start == std::string::npos ? std::string() : svg.substr(start);
}

// A plot names itself in its title; a figure gets its name as a caption.
std::string figure(const std::string& svg, const std::string& caption = "") {
    std::string html = "<figure>\n" + inlineSvg(svg);
    if (!caption.empty()) html += "<figcaption>" + XmlEscape(caption) + "</figcaption>\n";
    return html + "</figure>\n";
}

} // namespace

std::vector<std::pair<std::string, std::string>> SettingsRows(const MCBSN_850::BSNSettings& settings,
                                                              const DataInfo& data, bool changedOnly) {
    MCBSN_850::BSNSettings fresh;
    fresh.SetModelType(settings.GetModelType(), true);
    const ordered_json used = SettingsToJson(settings, data.columns);
    const ordered_json defaults = SettingsToJson(fresh, data.columns);
    std::vector<std::pair<std::string, std::string>> rows;
    for (auto it = used.begin(); it != used.end(); ++it) {
        const bool changed = it.key() == "ModelType" || !defaults.contains(it.key()) || defaults[it.key()] != it.value();
        if (!changedOnly || changed) rows.emplace_back(it.key(), valueText(it.key(), it.value()));
    }
    return rows;
}

std::string RenderHtmlReport(const ReportInput& in) {
    const std::string title = fmt::format("{} analysis of {}", in.analysis, in.dataPath);
    std::string html = "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n<head>\n"
                       "<meta charset=\"utf-8\"/>\n<title>bsn: " +
                       XmlEscape(title) + "</title>\n<style>" + kStyle + "</style>\n</head>\n<body>\n";
    html += "<h1>" + XmlEscape(in.analysis) + " analysis</h1>\n";
    html += fmt::format("<p class=\"meta\">Data: <code>{}</code> ({} records). Settings: <code>{}</code>.</p>\n",
                        XmlEscape(in.dataPath), in.nRecords, XmlEscape(in.settingsPath));
    const bool results = in.view != nullptr;
    const bool pictures = results && (!in.view->plots.empty() || !in.view->figures.empty());
    html += "<nav><a href=\"#status\">Status</a><a href=\"#settings\">Settings</a>";
    if (results && !in.view->tables.empty()) html += "<a href=\"#results\">Results</a>";
    if (pictures) html += "<a href=\"#plots\">Plots</a>";
    html += "</nav>\n";

    html += "<h2 id=\"status\">Status</h2>\n";
    html += fmt::format("<p class=\"{}\">{}</p>\n", in.failed ? "status-error" : "status-ok", XmlEscape(in.status));
    if (in.warnings.empty()) {
        html += "<p>No warnings.</p>\n";
    } else {
        html += "<p>Warnings:</p>\n<ul class=\"warnings\">\n";
        for (const std::string& w : in.warnings) html += "<li>" + XmlEscape(w) + "</li>\n";
        html += "</ul>\n";
    }

    html += "<h2 id=\"settings\">Settings</h2>\n";
    if (in.settings != nullptr && in.data != nullptr) {
        html += "<p>The keys set by the settings file or filled in by bsn (the others keep their defaults):</p>\n";
        html += settingsTable(SettingsRows(*in.settings, *in.data, true));
        html += "<details>\n<summary>All settings</summary>\n" + settingsTable(SettingsRows(*in.settings, *in.data, false)) +
                "</details>\n";
    }

    if (results && !in.view->tables.empty()) {
        html += "<h2 id=\"results\">Results</h2>\n";
        for (const TextTable& table : in.view->tables) html += tableHtml(table);
    }
    if (pictures) {
        html += "<h2 id=\"plots\">Plots</h2>\n<div class=\"figures\">\n";
        for (const PlotSet& plot : in.view->plots)
            html += figure(RenderPlotSvg(plot));
        for (const SvgFigure& f : in.view->figures) html += figure(f.svg, f.name);
        html += "</div>\n";
    }
    html += fmt::format("<footer>Written by bsn {}.</footer>\n</body>\n</html>\n", Version());
    return html;
}

} // namespace bsncli
