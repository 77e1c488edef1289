#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "cli/resultview.h"
#include "cli/svgplot.h"
#include "platform/common/mcmv.h"
#include "tests/cli/tempfiles.h"

using bsncli::Curve;
using bsncli::PlotSet;
using MCCommon_850::MCMV;

namespace {

constexpr double M = MCMV::Missing();

int count(const std::string& text, const std::string& what) {
    int n = 0;
    for (std::size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1)) ++n;
    return n;
}

// The "x,y" pairs of every polyline, in document order.
std::vector<std::vector<std::pair<double, double>>> polylines(const std::string& svg) {
    std::vector<std::vector<std::pair<double, double>>> out;
    const std::string key = "points=\"";
    for (std::size_t p = svg.find(key); p != std::string::npos; p = svg.find(key, p + 1)) {
        const std::size_t start = p + key.size();
        std::vector<std::pair<double, double>> pts;
        std::istringstream in(svg.substr(start, svg.find('"', start) - start));
        std::string pair;
        while (in >> pair) {
            const auto comma = pair.find(',');
            pts.emplace_back(std::stod(pair.substr(0, comma)), std::stod(pair.substr(comma + 1)));
        }
        out.push_back(pts);
    }
    return out;
}

} // namespace

TEST(SvgPlot, LikelihoodIsScaledFromItsLogarithm) {
    // A binomial log-likelihood, x = 3 of n = 10, up to an arbitrary constant.
    std::vector<double> ll;
    for (double t : {0.1, 0.2, 0.3, 0.4, 0.5}) ll.push_back(3 * std::log(t) + 7 * std::log(1 - t) - 1234.5);
    ll.push_back(M);
    const std::vector<double> scaled = bsncli::ScaleLogLikelihood(ll);
    ASSERT_EQ(scaled.size(), 6u);
    const double peak = std::pow(0.3, 3) * std::pow(0.7, 7);
    for (int i = 0; i < 5; ++i) {
        const double t = 0.1 * (i + 1);
        EXPECT_NEAR(scaled[static_cast<std::size_t>(i)], std::pow(t, 3) * std::pow(1 - t, 7) / peak, 1e-12) << t;
    }
    EXPECT_EQ(scaled[2], 1.0);
    EXPECT_EQ(scaled[5], M);  // a missing point stays missing
    // Log-likelihoods far below the double range still scale without underflow at the peak.
    EXPECT_EQ(bsncli::ScaleLogLikelihood({-5000.0, -5001.0})[0], 1.0);
    EXPECT_NEAR(bsncli::ScaleLogLikelihood({-5000.0, -5001.0})[1], std::exp(-1.0), 1e-15);
}

TEST(SvgPlot, FlatPriorsAndMissingPoints) {
    EXPECT_TRUE(bsncli::IsFlatPrior({{0.0, 1.0}, {1.0, 1.0}}));
    EXPECT_TRUE(bsncli::IsFlatPrior({{}, {1.0, 1.0}}));
    EXPECT_FALSE(bsncli::IsFlatPrior({{0, 0.5, 1}, {1.0, 1.0, 1.0}}));
    EXPECT_FALSE(bsncli::IsFlatPrior({{0, 1}, {1.0, 0.999}}));

    const Curve c{{0, 1, 2, 3, 4, 5, M, 7}, {1, M, 2, 3, 4, 5, 6, 7}};
    const auto segments = bsncli::CurveSegments(c);
    ASSERT_EQ(segments.size(), 3u);
    EXPECT_EQ(segments[0], (bsncli::Segment{{0, 1}}));
    EXPECT_EQ(segments[1], (bsncli::Segment{{2, 2}, {3, 3}, {4, 4}, {5, 5}}));
    EXPECT_EQ(segments[2], (bsncli::Segment{{7, 7}}));
}

TEST(SvgPlot, ThreePanelsWithLegendFlatLineAndBrokenCurves) {
    PlotSet plot;
    plot.variable = "dose <mg>";
    plot.parameter = "mean";
    plot.logLikelihood = {{-1, 0, 1, 2}, {-2, -0.5, M, -1}};
    plot.prior = {{-10, 10}, {1.0, 1.0}};
    plot.posterior = {{-1, 0, 1}, {0.1, 0.4, 0.1}};
    const std::string svg = bsncli::RenderPlotSvg(plot);
    EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
    EXPECT_NE(svg.find("</svg>"), std::string::npos);
    EXPECT_NE(svg.find("dose &lt;mg&gt;"), std::string::npos);  // names are escaped
    EXPECT_NE(svg.find("likelihood (scaled"), std::string::npos);
    EXPECT_NE(svg.find("prior (flat"), std::string::npos);
    EXPECT_NE(svg.find("posterior density"), std::string::npos);
    EXPECT_EQ(count(svg, ">mean</text>"), 3);  // every panel labels its x axis
    EXPECT_EQ(count(svg, "<rect x="), 3);

    const auto lines = polylines(svg);
    // Likelihood: two points before the missing one (the third is drawn as a dot),
    // the flat prior as one two-point horizontal line, the posterior whole.
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].size(), 2u);
    EXPECT_EQ(count(svg, "<circle"), 1);
    ASSERT_EQ(lines[1].size(), 2u);
    EXPECT_EQ(lines[1][0].second, lines[1][1].second);
    EXPECT_LT(lines[1][0].first, lines[1][1].first);
    EXPECT_EQ(lines[2].size(), 3u);
    // The scaled likelihood peaks (smallest y on screen) at its largest log value.
    EXPECT_LT(lines[0][1].second, lines[0][0].second);

    PlotSet empty;
    empty.variable = "v";
    const std::string none = bsncli::RenderPlotSvg(empty);
    EXPECT_EQ(count(none, "<polyline"), 0);
    EXPECT_NE(none.find("no posterior curve"), std::string::npos);
}

TEST(SvgPlot, OneFilePerVariableNamedAfterIt) {
    bsntest::TempDir dir;
    EXPECT_EQ(bsncli::PlotFileStem("a/b c"), "a_b_c");
    EXPECT_EQ(bsncli::PlotFileStem(""), "variable");
    EXPECT_EQ(bsncli::PlotFileStem(".."), "variable..");
    std::vector<PlotSet> plots(3);
    plots[0].variable = "x";
    plots[1].variable = "y - z";
    plots[2].variable = "x";
    for (auto& p : plots) p.posterior = {{0, 1}, {1, 2}};
    const std::string out = dir.Path("plots/sub");
    const auto written = bsncli::WritePlots(plots, out);
    ASSERT_EQ(written.size(), 3u);
    EXPECT_EQ(written[0], out + "/x.svg");
    EXPECT_EQ(written[1], out + "/y_-_z.svg");
    EXPECT_EQ(written[2], out + "/x_2.svg");
    for (const auto& path : written) EXPECT_NE(bsntest::TempDir::Read(path).find("<svg"), std::string::npos);
    // A plots path that is a file cannot become a directory.
    const std::string file = dir.Write("f", "x");
    EXPECT_THROW(bsncli::WritePlots(plots, file), std::exception);
}

TEST(ResultTables, LogFactorsMissingCellsAndAlignment) {
    const auto cells = bsncli::FormatBayesFactors({2.5, 812.25, M, -900.5}, {false, true, true, true}, 5);
    EXPECT_EQ(cells, (std::vector<std::string>{"2.5", "exp(812.25)", ".", "exp(-900.5)", "."}));
    EXPECT_EQ(bsncli::FormatNumbers({1.0 / 3.0, 1e-12, 120}, 3), (std::vector<std::string>{"0.333333", "1e-12", "120"}));

    bsncli::TextTable t("Title");
    t.AddColumn("Variable", {"a", "long name"});
    t.AddColumn("N", {"5", "120"});
    t.AddNote("note");
    std::ostringstream os;
    t.Print(os);
    EXPECT_EQ(os.str(), "Title\n"
                        "  Variable     N\n"
                        "  --------------\n"
                        "  a            5\n"
                        "  long name  120\n"
                        "  note\n\n");

    const auto table = bsncli::BayesFactorTable("BF", {"a", "b"}, {3.0, 1000.0}, {false, true});
    std::ostringstream bf;
    table.Print(bf);
    EXPECT_NE(bf.str().find("exp(1000)"), std::string::npos);
    EXPECT_NE(bf.str().find("natural logarithm"), std::string::npos);
}

TEST(ResultTables, JsonTextReadsBackAsWritten) {
    const auto doc = nlohmann::ordered_json::parse(
        R"({"z": 1, "a": {"s": "q\"uote", "e": [], "o": {}, "n": [1.5, null, -2e-300]},
            "curves": [[0.1, 0.2], [], [null]], "mixed": [{"k": true}, [1, [2]]]})");
    const std::string text = bsncli::DumpJson(doc);
    EXPECT_EQ(nlohmann::ordered_json::parse(text), doc);
    EXPECT_NE(text.find("\"n\": [1.5, null, -2e-300]"), std::string::npos) << text;
    EXPECT_EQ(text.find("\"z\""), 4u);  // keys keep their order
}
