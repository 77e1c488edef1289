#include "cli/svgplot.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>

#include <fmt/format.h>

#include "cli/settingsjson.h"
#include "platform/common/mcmv.h"

namespace bsncli {

using MCCommon_850::MCMV;

namespace {

constexpr double kWidth = 760, kPanelHeight = 230, kTop = 86, kLeft = 78, kRight = 24, kPlotHeight = 160;

struct Style {
    const char* color;
    const char* dash;
};
constexpr Style kLikelihoodStyle{"#1b6ca8", ""};
constexpr Style kPriorStyle{"#c0392b", " stroke-dasharray=\"6 4\""};
constexpr Style kPosteriorStyle{"#1e8449", ""};

std::string escape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        default: out.push_back(c);
        }
    }
    return out;
}

// Tick positions at 1, 2 or 5 times a power of ten, three to six per axis.
std::vector<double> niceTicks(double lo, double hi) {
    const double raw = (hi - lo) / 6.0;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    double step = power;
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        step = m * power;
        if (step >= raw) break;
    }
    std::vector<double> ticks;
    for (double t = std::ceil(lo / step) * step; t <= hi + step * 1e-9; t += step)
        ticks.push_back(std::fabs(t) < step * 1e-9 ? 0.0 : t);
    return ticks;
}

// Widens a degenerate range so that an axis can still be drawn.
std::pair<double, double> padRange(double lo, double hi) {
    if (hi > lo) return {lo, hi};
    const double pad = lo == 0.0 ? 1.0 : std::fabs(lo) * 0.1;
    return {lo - pad, hi + pad};
}

struct PanelSpec {
    std::string title;
    std::string yLabel;
    Style style;
    std::vector<Segment> segments;
    std::string empty;  // shown instead of a curve when there is none
};

void drawPanel(std::string& svg, const PanelSpec& panel, const std::string& xLabel, double top) {
    const double plotWidth = kWidth - kLeft - kRight;
    svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" font-size=\"14\" font-weight=\"bold\">{}</text>\n", kLeft,
                       top - 10, escape(panel.title));
    double xLo = HUGE_VAL, xHi = -HUGE_VAL, yLo = 0.0, yHi = -HUGE_VAL;
    for (const Segment& s : panel.segments)
        for (const auto& [x, y] : s) {
            xLo = std::min(xLo, x);
            xHi = std::max(xHi, x);
            yLo = std::min(yLo, y);
            yHi = std::max(yHi, y);
        }
    svg += fmt::format("<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" fill=\"none\" "
                       "stroke=\"#888\"/>\n",
                       kLeft, top, plotWidth, kPlotHeight);
    if (panel.segments.empty()) {
        svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" font-size=\"13\" text-anchor=\"middle\" fill=\"#666\">{}"
                           "</text>\n",
                           kLeft + plotWidth / 2, top + kPlotHeight / 2, escape(panel.empty));
        return;
    }
    std::tie(xLo, xHi) = padRange(xLo, xHi);
    std::tie(yLo, yHi) = padRange(yLo, yHi * 1.05);
    auto px = [&](double x) { return kLeft + (x - xLo) / (xHi - xLo) * plotWidth; };
    auto py = [&](double y) { return top + kPlotHeight - (y - yLo) / (yHi - yLo) * kPlotHeight; };

    for (double t : niceTicks(xLo, xHi)) {
        svg += fmt::format("<line x1=\"{0:.2f}\" y1=\"{1:.2f}\" x2=\"{0:.2f}\" y2=\"{2:.2f}\" stroke=\"#e3e3e3\"/>\n",
                           px(t), top, top + kPlotHeight);
        svg += fmt::format("<text x=\"{:.2f}\" y=\"{:.2f}\" font-size=\"11\" text-anchor=\"middle\">{:g}</text>\n",
                           px(t), top + kPlotHeight + 14, t);
    }
    for (double t : niceTicks(yLo, yHi)) {
        svg += fmt::format("<line x1=\"{0:.2f}\" y1=\"{1:.2f}\" x2=\"{2:.2f}\" y2=\"{1:.2f}\" stroke=\"#e3e3e3\"/>\n",
                           kLeft, py(t), kLeft + plotWidth);
        svg += fmt::format("<text x=\"{:.2f}\" y=\"{:.2f}\" font-size=\"11\" text-anchor=\"end\">{:g}</text>\n",
                           kLeft - 5, py(t) + 4, t);
    }
    svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" font-size=\"12\" text-anchor=\"middle\">{}</text>\n",
                       kLeft + plotWidth / 2, top + kPlotHeight + 30, escape(xLabel));
    svg += fmt::format("<text font-size=\"12\" text-anchor=\"middle\" transform=\"translate({:.1f},{:.1f}) "
                       "rotate(-90)\">{}</text>\n",
                       kLeft - 52, top + kPlotHeight / 2, escape(panel.yLabel));
    for (const Segment& s : panel.segments) {
        std::string points;
        for (const auto& [x, y] : s) points += fmt::format("{:.2f},{:.2f} ", px(x), py(y));
        if (s.size() == 1)  // a lone point between missing ones
            svg += fmt::format("<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"2\" fill=\"{}\"/>\n", px(s[0].first),
                               py(s[0].second), panel.style.color);
        else
            svg += fmt::format("<polyline fill=\"none\" stroke=\"{}\" stroke-width=\"2\"{} points=\"{}\"/>\n",
                               panel.style.color, panel.style.dash, points);
    }
}

} // namespace

std::vector<double> ScaleLogLikelihood(const std::vector<double>& logLikelihood) {
    double peak = -HUGE_VAL;
    for (double v : logLikelihood)
        if (!MCMV::IsMissing(v)) peak = std::max(peak, v);
    std::vector<double> scaled;
    for (double v : logLikelihood) scaled.push_back(MCMV::IsMissing(v) ? MCMV::Missing() : std::exp(v - peak));
    return scaled;
}

bool IsFlatPrior(const Curve& prior) { return prior.y.size() == 2 && prior.y[0] == 1.0 && prior.y[1] == 1.0; }

std::vector<Segment> CurveSegments(const Curve& curve) {
    std::vector<Segment> segments;
    Segment current;
    const std::size_t n = std::min(curve.x.size(), curve.y.size());
    for (std::size_t i = 0; i < n; ++i) {
        if (MCMV::IsMissing(curve.x[i]) || MCMV::IsMissing(curve.y[i])) {
            if (!current.empty()) segments.push_back(std::move(current));
            current.clear();
            continue;
        }
        current.emplace_back(curve.x[i], curve.y[i]);
    }
    if (!current.empty()) segments.push_back(std::move(current));
    return segments;
}

std::string RenderPlotSvg(const PlotSet& plot) {
    const bool flat = IsFlatPrior(plot.prior);
    PanelSpec likelihood{"Likelihood", "exp(ll - max ll)", kLikelihoodStyle,
                         CurveSegments({plot.logLikelihood.x, ScaleLogLikelihood(plot.logLikelihood.y)}),
                         "no likelihood curve"};
    PanelSpec prior{flat ? "Prior (flat)" : "Prior", "density", kPriorStyle, {}, "no prior curve"};
    if (flat) {
        // The line spans the prior's own domain, or the posterior's when the
        // prior stores no usable end points.
        double lo = HUGE_VAL, hi = -HUGE_VAL;
        for (const Curve* c : {&plot.prior, &plot.posterior}) {
            for (double x : c->x)
                if (!MCMV::IsMissing(x)) {
                    lo = std::min(lo, x);
                    hi = std::max(hi, x);
                }
            if (lo < hi) break;
        }
        if (lo < hi) prior.segments.push_back({{lo, 1.0}, {hi, 1.0}});
    } else {
        prior.segments = CurveSegments(plot.prior);
    }
    PanelSpec posterior{"Posterior", "density", kPosteriorStyle, CurveSegments(plot.posterior), "no posterior curve"};

    const double height = kTop + 3 * kPanelHeight;
    std::string svg = fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.0f}\" height=\"{1:.0f}\" viewBox=\"0 0 {0:.0f} {1:.0f}\" "
        "font-family=\"sans-serif\">\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n"
        "<text x=\"{2:.1f}\" y=\"24\" font-size=\"16\" font-weight=\"bold\">{3}</text>\n",
        kWidth, height, kLeft, escape(plot.variable));
    // Legend: one swatch per curve.
    const std::string legend[3] = {"likelihood (scaled: exp(ll - max ll), peak 1)",
                                   flat ? "prior (flat, drawn at 1)" : "prior density", "posterior density"};
    const Style styles[3] = {kLikelihoodStyle, kPriorStyle, kPosteriorStyle};
    double x = kLeft;
    for (int i = 0; i < 3; ++i) {
        svg += fmt::format("<line x1=\"{0:.1f}\" y1=\"44\" x2=\"{1:.1f}\" y2=\"44\" stroke=\"{2}\" stroke-width=\"2\"{3}/>"
                           "<text x=\"{4:.1f}\" y=\"48\" font-size=\"12\">{5}</text>\n",
                           x, x + 24, styles[i].color, styles[i].dash, x + 30, escape(legend[i]));
        x += 30 + 6.6 * static_cast<double>(legend[i].size()) + 18;
    }
    const std::string xLabel = plot.parameter.empty() ? std::string("parameter") : plot.parameter;
    drawPanel(svg, likelihood, xLabel, kTop);
    drawPanel(svg, prior, xLabel, kTop + kPanelHeight);
    drawPanel(svg, posterior, xLabel, kTop + 2 * kPanelHeight);
    svg += "</svg>\n";
    return svg;
}

std::string PlotFileStem(const std::string& variable) {
    std::string stem;
    for (char c : variable) {
        const bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                          c == '-' || c == '_';
        stem.push_back(keep ? c : '_');
    }
    if (stem.empty() || stem.find_first_not_of('.') == std::string::npos) stem = "variable" + stem;
    return stem;
}

std::vector<std::string> WritePlots(const std::vector<PlotSet>& plots, const std::string& dir) {
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    if (!std::filesystem::is_directory(dir))
        throw InputError(fmt::format("--plots: cannot create the directory '{}'{}", dir,
                                     ec ? ": " + ec.message() : std::string()));
    std::vector<std::string> written;
    std::map<std::string, int> uses;
    for (const PlotSet& plot : plots) {
        std::string stem = PlotFileStem(plot.variable);
        if (const int n = ++uses[stem]; n > 1) stem += fmt::format("_{}", n);
        const std::string path = (std::filesystem::path(dir) / (stem + ".svg")).string();
        std::ofstream out(path, std::ios::binary);
        out << RenderPlotSvg(plot);
        out.close();
        if (!out) throw InputError(fmt::format("--plots: cannot write '{}'", path));
        written.push_back(path);
    }
    return written;
}

} // namespace bsncli
