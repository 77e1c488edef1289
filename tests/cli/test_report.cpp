// The HTML report and the plots of whole runs: the report holds everything
// the terminal shows, opens without a network and reads back as XML.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tests/cli/hostrun.h"
#include "tests/cli/svgcheck.h"
#include "tests/cli/tempfiles.h"

using bsntest::Attr;
using bsntest::ByClass;
using bsntest::ByName;
using bsntest::Text;
using tinyxml2::XMLElement;
namespace C = MCBSN_850::BSNConst;

namespace {

struct RunResult : bsntest::HostOutcome {
    std::string report;
    nlohmann::json json;
    tinyxml2::XMLDocument html;
};

void run(const std::string& settings, const std::string& data, const bsntest::TempDir& dir, RunResult& r) {
    bsncli::RunOptions options;
    options.settingsPath = settings;
    options.dataPath = data;
    options.jsonPath = dir.Path("r.json");
    options.plotsDir = dir.Path("plots");
    options.reportPath = dir.Path("report.html");
    static_cast<bsntest::HostOutcome&>(r) = bsntest::RunHost(options);
    r.report = bsntest::TempDir::Read(options.reportPath);
    r.json = nlohmann::json::parse(bsntest::TempDir::Read(options.jsonPath));
    EXPECT_EQ(r.html.Parse(r.report.c_str()), tinyxml2::XML_SUCCESS) << r.html.ErrorStr();
}

// The terminal's tables: blocks between blank lines up to the warnings or status.
std::vector<std::string> terminalTables(const std::string& out) {
    std::vector<std::string> blocks;
    const std::size_t start = out.find("\n\n");
    const std::size_t end = std::min(out.find("\nWarnings:"), out.find("\nStatus:"));
    std::string body = out.substr(start + 2, end - start - 2) + "\n";
    for (std::size_t p; (p = body.find("\n\n")) != std::string::npos; body.erase(0, p + 2))
        blocks.push_back(body.substr(0, p + 1));
    return blocks;
}

} // namespace

TEST(Report, ExamplesPlotsAndReportHoldWhatTheTerminalShows) {
    struct Example {
        const char* name;
        C::ModelTypes model;
        C::DistTypes dist;
        std::vector<std::string> stems;
        bool closeUp;  // the posterior is narrow beside the prior
        std::vector<std::vector<std::string>> legends;  // per plot: each entry's beginning
    };
    const std::string lik = "likelihood, scaled to the posterior's peak";
    const std::vector<Example> examples = {
        {"binomial", C::OneSample, C::Binomial, {"smoker", "vaccinated"}, true,
         {2, {"posterior", "95% credible interval", "prior: flat", lik}}},
        {"poisson", C::OneSample, C::Poisson, {"calls", "complaints"}, true,
         {2, {"posterior", "90% credible interval", "prior \u00d7", lik}}},
        {"normal", C::OneSample, C::Normal, {"weight_change", "reaction_ms"}, false,
         {{"posterior", "95% credible interval", "prior: flat (height arbitrary)", lik, "null value = 0"},
          {"posterior", "95% credible interval", "prior: flat (height arbitrary)", lik, "null value = 250"}}},
        {"related", C::Related, C::Normal, {"sbp_before_-_sbp_after", "hr_before_-_hr_after"}, false,
         {2, {"posterior", "95% credible interval", "prior: flat (height arbitrary)", lik, "null value = 0"}}},
    };
    const std::string root = BSN_SOURCE_DIR;
    for (const Example& ex : examples) {
        if (!bsntest::HasAnalysis(ex.model, ex.dist)) continue;
        SCOPED_TRACE(ex.name);
        bsntest::TempDir dir;
        RunResult r;
        run(fmt::format("{}/examples/{}.json", root, ex.name), fmt::format("{}/examples/{}.csv", root, ex.name), dir, r);
        ASSERT_EQ(r.code, 0) << r.err;

        // Plots: one file each, titled after the variable, its factor in words.
        std::vector<std::string> titles;
        for (std::size_t i = 0; i < ex.stems.size(); ++i) {
            tinyxml2::XMLDocument svg;
            ASSERT_EQ(svg.LoadFile(dir.Path("plots/" + ex.stems[i] + ".svg").c_str()), tinyxml2::XML_SUCCESS);
            const XMLElement* top = svg.RootElement();
            titles.push_back(Text(ByClass(top, "title").at(0)));
            EXPECT_EQ(ByClass(top, "closeup").size(), ex.closeUp ? 1u : 0u);
            const auto legend = ByClass(top, "legend-text");
            ASSERT_EQ(legend.size(), ex.legends[i].size());
            for (std::size_t k = 0; k < legend.size(); ++k) EXPECT_EQ(Text(legend[k]).rfind(ex.legends[i][k], 0), 0u);
            for (const char* cls : {"likelihood", "prior", "posterior", "ci"})
                EXPECT_FALSE(ByClass(ByClass(top, "main").at(0), cls).empty()) << cls;
            const double bf = r.json["results"]["GetBayesFactors"][i].get<double>();
            const std::string subtitle = Text(ByClass(top, "subtitle").at(0));
            ASSERT_EQ(subtitle.rfind("BF01 = ", 0), 0u) << subtitle;
            EXPECT_NEAR(std::stod(subtitle.substr(7)), bf, 5e-3 * bf);  // its words: FactorInWords
        }
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path("plots")), {}),
                  static_cast<long>(ex.stems.size()));

        // The report: heading, status, every terminal table cell by cell, every plot.
        const XMLElement* html = r.html.RootElement();
        ASSERT_NE(html, nullptr);
        // Never a script, nor anything loaded from elsewhere.
        EXPECT_TRUE(ByName(html, "script").empty() && ByName(html, "link").empty());
        for (const XMLElement* e : bsntest::Elements(html, [](const XMLElement&) { return true; })) {
            EXPECT_EQ(e->Attribute("src"), nullptr) << e->Name();
            EXPECT_TRUE(Attr(*e, "href").empty() || Attr(*e, "href")[0] == '#') << Attr(*e, "href");
        }
        const std::string heading = r.out.substr(5, r.out.find(" analysis of ") - 5);  // "bsn: <analysis> analysis of"
        EXPECT_EQ(Text(ByName(html, "h1").at(0)), heading + " analysis");
        EXPECT_EQ(Text(ByClass(html, "status-ok").at(0)), "OK, model built");
        const auto blocks = terminalTables(r.out);
        std::vector<const XMLElement*> tables;
        for (const XMLElement* t : ByName(html, "table"))
            if (Attr(*t, "class") != "settings") tables.push_back(t);
        ASSERT_EQ(tables.size(), blocks.size()) << r.out;
        for (std::size_t t = 0; t < tables.size(); ++t) {
            EXPECT_EQ(Text(ByName(tables[t], "caption").at(0)) + "\n", blocks[t].substr(0, blocks[t].find('\n') + 1));
            for (const XMLElement* cell : ByName(tables[t], "td"))
                EXPECT_NE(blocks[t].find(Text(cell)), std::string::npos) << Text(cell);
            EXPECT_GE(ByName(tables[t], "tr").size(), 3u);  // a header and a row per variable
        }
        std::vector<std::string> reportTitles;
        for (const XMLElement* f : ByName(html, "figure"))
            reportTitles.push_back(Text(ByClass(f->FirstChildElement("svg"), "title").at(0)));
        EXPECT_EQ(reportTitles, titles);
        bool pointsRow = false;
        for (const XMLElement* row : ByName(ByClass(html, "settings").at(0), "tr"))
            pointsRow |= Text(row->FirstChildElement("td")) == "NPlotPoints" &&
                         Text(row->FirstChildElement("td")->NextSiblingElement("td")) == "400";
        EXPECT_TRUE(pointsRow);  // the host's finer default, shown as used
    }
}

TEST(Report, RefusedRunsAndWarnings) {
    bsntest::TempDir dir;
    if (bsntest::HasAnalysis(C::Related, C::Normal)) {
        RunResult r;
        run(dir.Write("s.json", R"({"ModelType": "Related", "Covariates": ["x"]})"), dir.Write("d.csv", "x,y\n1,2\n"),
            dir, r);
        EXPECT_EQ(r.code, 2);
        EXPECT_NE(r.err.find("the settings were refused"), std::string::npos) << r.err;
        const XMLElement* html = r.html.RootElement();
        ASSERT_NE(html, nullptr);
        EXPECT_EQ(Text(ByClass(html, "status-error").at(0)).rfind("error 410039: ", 0), 0u);
        EXPECT_TRUE(ByName(html, "figure").empty());
        EXPECT_EQ(Text(ByName(html, "h1").at(0)), "Related analysis");
    }
    if (bsntest::HasAnalysis(C::OneSample, C::Normal)) {
        // Warning 410010 on a constant column, named as on the terminal; the name "a<&>" must not break the XML.
        RunResult r;
        run(dir.Write("s.json", R"({"ModelType": 0, "TestDistType": 0, "Covariates": ["a<&>", "c"]})"),
            dir.Write("d.csv", "a<&>,c\n1.2,5\n2.3,5\n3.1,5\n4.8,5\n"), dir, r);
        EXPECT_EQ(r.code, 0) << r.err;
        bool named = false;
        for (const XMLElement* item : ByName(ByClass(r.html.RootElement(), "warnings").at(0), "li")) {
            EXPECT_NE(r.out.find("  " + Text(item) + "\n"), std::string::npos) << Text(item);
            named |= Text(item).rfind("410010 ", 0) == 0 && Text(item).find("[variable c]") != std::string::npos;
        }
        EXPECT_TRUE(named);
    }
}
