#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "cli/resultview.h"
#include "cli/svgplot.h"
#include "platform/common/mcmv.h"
#include "tests/cli/svgcheck.h"
#include "tests/cli/tempfiles.h"

using bsncli::Curve;
using bsncli::FactorDirection;
using bsncli::PlotSet;
using bsntest::Attr;
using bsntest::ByClass;
using bsntest::ByName;
using MCCommon_850::MCMV;
using tinyxml2::XMLElement;

namespace {

constexpr double M = MCMV::Missing();

double normalPdf(double x, double mean, double sd) {
    return std::exp(-0.5 * (x - mean) * (x - mean) / (sd * sd)) / (sd * std::sqrt(2 * std::numbers::pi));
}

Curve normalCurve(double mean, double sd, double lo, double hi, int n = 401) {
    Curve c;
    for (int i = 0; i < n; ++i) {
        const double x = lo + (hi - lo) * i / (n - 1);
        c.x.push_back(x);
        c.y.push_back(normalPdf(x, mean, sd));
    }
    return c;
}

// A parsed picture, checked well-formed, texts inside the page, legend inside the frame.
struct Svg {
    tinyxml2::XMLDocument doc;
    const XMLElement* root = nullptr;

    explicit Svg(const std::string& text) {
        EXPECT_EQ(doc.Parse(text.c_str()), tinyxml2::XML_SUCCESS) << doc.ErrorStr();
        root = doc.RootElement();
        if (root == nullptr) return;
        bsntest::ExpectTextsInside(root);
        const auto frames = ByClass(root, "frame"), legends = ByClass(root, "legend");
        if (frames.empty() || legends.empty()) return;
        const XMLElement* box = legends[0]->FirstChildElement("rect");
        const double fx = frames[0]->DoubleAttribute("x"), fy = frames[0]->DoubleAttribute("y");
        EXPECT_GE(box->DoubleAttribute("x"), fx);
        EXPECT_GE(box->DoubleAttribute("y"), fy);
        EXPECT_LE(box->DoubleAttribute("x") + box->DoubleAttribute("width"), fx + frames[0]->DoubleAttribute("width"));
        EXPECT_LE(box->DoubleAttribute("y") + box->DoubleAttribute("height"), fy + frames[0]->DoubleAttribute("height"));
    }

    const XMLElement* panel(const char* cls) const {  // "main" or "closeup"; null when absent
        const auto found = ByClass(root, cls);
        return found.empty() ? nullptr : found[0];
    }
    std::vector<std::string> texts(const XMLElement* under, const char* cls) const {
        std::vector<std::string> out;
        for (const XMLElement* t : ByClass(under, cls)) out.push_back(bsntest::Text(t));
        return out;
    }
};

// Data value at a page coordinate, read from a panel's tick labels.
double fromTicks(const XMLElement* panel, const char* axis, double page) {
    const auto ticks = ByClass(panel, axis);
    EXPECT_GE(ticks.size(), 2u);
    const double offset = axis[0] == 'x' ? 0 : -4;  // y labels sit 4 below their tick
    const double p0 = ticks.front()->DoubleAttribute(axis) + offset, p1 = ticks.back()->DoubleAttribute(axis) + offset;
    const double v0 = std::stod(bsntest::Text(ticks.front())), v1 = std::stod(bsntest::Text(ticks.back()));
    return v0 + (page - p0) * (v1 - v0) / (p1 - p0);
}

std::vector<std::pair<double, double>> points(const XMLElement& e) {
    std::vector<std::pair<double, double>> out;
    std::istringstream in(Attr(e, "points"));
    double x = 0, y = 0;
    for (char comma; in >> x >> comma >> y;) out.emplace_back(x, y);
    return out;
}

double topOf(const XMLElement* panel, const char* cls) {  // smallest page y of a curve
    double top = 1e9;
    for (const XMLElement* e : ByClass(panel, cls))
        for (const auto& p : points(*e)) top = std::min(top, p.second);
    return top;
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
    EXPECT_EQ(scaled[5], M);
    // Only the two-point stored form is flat (the drawn case is checked with the plots).
    EXPECT_FALSE(bsncli::IsFlatPrior({{0, 0.5, 1}, {1.0, 1.0, 1.0}}));
    const auto segments = bsncli::CurveSegments({{0, 1, 2, 3, M, 5}, {1, M, 2, 3, 4, 5}});
    ASSERT_EQ(segments.size(), 3u);
    EXPECT_EQ(segments[1], (bsncli::Segment{{2, 2}, {3, 3}}));
}

TEST(SvgPlot, BayesFactorInWords) {
    struct Case { double bf; bool isLog; FactorDirection direction; std::string words; };
    const std::vector<Case> cases = {
        {3.69, false, FactorDirection::NullOverAlternative, "BF01 = 3.69: the data are 3.7 times more likely under the null"},
        {2.13041e-05, false, FactorDirection::NullOverAlternative,
         "BF01 = 2.13e-05: the data are 46939 times more likely under the alternative"},
        {1.02, false, FactorDirection::NullOverAlternative,
         "BF01 = 1.02: the data are about equally likely under the null and the alternative"},
        {-812.4, true, FactorDirection::NullOverAlternative,
         "log BF01 = -812.4: the data are exp(812.4) times more likely under the alternative"},
        {12.5, false, FactorDirection::ModelOverNull,
         "BF10 = 12.5: the data are 12.5 times more likely under the model than under the intercept-only model"},
        {0.25, false, FactorDirection::ModelOverFull,
         "BF(model vs full) = 0.25: the data are 4 times more likely under the full model than under the model"},
        {M, false, FactorDirection::NullOverAlternative, ""},
    };
    for (const Case& c : cases) {
        PlotSet plot;
        plot.bayesFactor = c.bf;
        plot.bayesFactorIsLog = c.isLog;
        plot.direction = c.direction;
        EXPECT_EQ(bsncli::FactorInWords(plot), c.words);
    }
}

TEST(SvgPlot, PriorPosteriorAndLikelihoodShareOneAxisALowPriorIsRescaled) {
    // Posterior N(1, 0.5), prior N(0, 1): peaks within a factor of five, one density scale.
    PlotSet plot;
    plot.variable = "dose <mg> & \"x\"";
    plot.parameter = "mean";
    plot.posterior = normalCurve(1, 0.5, -1, 3);
    plot.prior = normalCurve(0, 1, -4, 4);
    plot.logLikelihood = plot.posterior;
    for (double& y : plot.logLikelihood.y) y = std::log(y) + 1234.0;
    plot.ciLower = 1 - 1.96 * 0.5;
    plot.ciUpper = 1 + 1.96 * 0.5;
    plot.ciLevel = 95;
    plot.nullValue = 2.5;
    plot.bayesFactor = 3.69;
    const Svg svg(bsncli::RenderPlotSvg(plot));
    ASSERT_NE(svg.root, nullptr);
    EXPECT_EQ(svg.texts(svg.root, "title"), std::vector<std::string>{plot.variable});
    const XMLElement* main = svg.panel("main");
    ASSERT_NE(main, nullptr);
    EXPECT_EQ(svg.texts(main, "legend-text"),
              (std::vector<std::string>{"posterior", "95% credible interval", "prior",
                                        "likelihood, scaled to the posterior's peak", "null value = 2.5"}));
    // True densities read back through the y ticks; the likelihood's peak on the posterior's.
    EXPECT_NEAR(fromTicks(main, "y", topOf(main, "posterior")), normalPdf(1, 1, 0.5), 0.01);
    EXPECT_NEAR(fromTicks(main, "y", topOf(main, "prior")), normalPdf(0, 0, 1), 0.01);
    EXPECT_NEAR(topOf(main, "likelihood"), topOf(main, "posterior"), 0.01);
    // Shading, null line, and an axis over the prior's mass (beyond |x| = 3.7: < 1e-3 of its peak).
    const auto shade = points(*ByClass(main, "ci").at(0));
    EXPECT_NEAR(fromTicks(main, "x", shade.front().first), plot.ciLower, 0.01);
    EXPECT_NEAR(fromTicks(main, "x", shade.back().first), plot.ciUpper, 0.01);
    EXPECT_NEAR(fromTicks(main, "x", ByClass(main, "null").at(0)->DoubleAttribute("x1")), 2.5, 0.01);
    const XMLElement* frame = ByClass(main, "frame").at(0);
    EXPECT_NEAR(fromTicks(main, "x", frame->DoubleAttribute("x")), -3.72, 0.05);
    EXPECT_EQ(svg.texts(main, "ci-label"), (std::vector<std::string>{"0.02", "1.98"}));

    // A prior N(0, 10) peaks at 1/20 of the posterior's: drawn x10, and the
    // posterior, narrow beside it, gets a close-up. The null is far off the axis.
    plot.prior = normalCurve(0, 10, -40, 40);
    plot.nullValue = 200;
    const Svg low(bsncli::RenderPlotSvg(plot));
    const XMLElement *wide = low.panel("main"), *close = low.panel("closeup");
    ASSERT_TRUE(wide != nullptr && close != nullptr);
    std::string legend;
    for (const std::string& t : low.texts(wide, "legend-text")) legend += t + "\n";
    EXPECT_NE(legend.find("\nprior \u00d710 (rescaled"), std::string::npos) << legend;
    EXPECT_NE(legend.find("\nnull value = 200 (off the axis, to the right)\n"), std::string::npos) << legend;
    EXPECT_NEAR(fromTicks(wide, "y", topOf(wide, "prior")), 10 * normalPdf(0, 0, 10), 0.01);
    EXPECT_TRUE(ByClass(wide, "null").empty());
    // The limits are written in the close-up only, where the interval is wide.
    EXPECT_TRUE(low.texts(wide, "ci-label").empty());
    EXPECT_EQ(low.texts(close, "ci-label"), (std::vector<std::string>{"0.02", "1.98"}));
    EXPECT_LT(fromTicks(close, "x", ByClass(close, "frame").at(0)->DoubleAttribute("x")), 0.02);
}

TEST(SvgPlot, FlatPriorBrokenCurvesLongNamesAndNothing) {
    PlotSet plot;
    plot.variable = std::string(150, 'a') + "\u00e9" + std::string(150, 'z');
    plot.posterior = normalCurve(0, 1, -4, 4, 81);
    plot.posterior.y[40] = M;  // breaks the posterior in two
    plot.prior = {{-10, 10}, {1.0, 1.0}};
    plot.bayesFactor = -812.4;
    plot.bayesFactorIsLog = true;
    const Svg svg(bsncli::RenderPlotSvg(plot));
    const std::string title = svg.texts(svg.root, "title").at(0);
    EXPECT_EQ(title.substr(0, 3), "aaa");
    EXPECT_EQ(title.substr(title.size() - 3), "zzz");
    EXPECT_NE(title.find("\u2026"), std::string::npos);
    const XMLElement* main = svg.panel("main");
    EXPECT_EQ(ByClass(main, "posterior").size(), 2u);
    const auto flat = points(*ByClass(main, "prior").at(0));
    ASSERT_EQ(flat.size(), 2u);
    EXPECT_EQ(flat[0].second, flat[1].second);
    EXPECT_NEAR(fromTicks(main, "y", flat[0].second), 0.5 * normalPdf(0.1, 0, 1), 0.01);  // half the drawn peak

    // Narrower than a step of the doubles at 1e9: drawn, with a bounded number of ticks.
    PlotSet narrow;
    narrow.posterior = {{1e9, 1e9, 1e9 + 1e-7}, {1, 2, 1}};
    const Svg far(bsncli::RenderPlotSvg(narrow));
    EXPECT_LE(ByClass(far.root, "tick").size(), 30u);

    const Svg none(bsncli::RenderPlotSvg(PlotSet{}));
    EXPECT_EQ(none.texts(none.root, "empty"), std::vector<std::string>{"no curves to draw"});
    EXPECT_TRUE(ByName(none.root, "polyline").empty());
}

TEST(SvgPlot, OneFilePerPlotAndFigureWrittenWhole) {
    bsntest::TempDir dir;
    EXPECT_EQ(bsncli::PlotFileStem("a/b c"), "a_b_c");
    EXPECT_EQ(bsncli::PlotFileStem(".."), "variable..");
    std::vector<PlotSet> plots(3);
    for (std::size_t i = 0; i < 3; ++i) {
        plots[i].variable = i == 1 ? "y - z" : "x";
        plots[i].posterior = {{0, 1}, {1, 2}};
    }
    const std::vector<bsncli::SvgFigure> figures = {{"x", "<svg xmlns=\"http://www.w3.org/2000/svg\"/>"}};
    const std::string out = dir.Path("plots/sub");
    const auto written = bsncli::WritePlots(plots, out, figures);
    EXPECT_EQ(written, (std::vector<std::string>{out + "/x.svg", out + "/y_-_z.svg", out + "/x_2.svg", out + "/x_3.svg"}));
    EXPECT_EQ(bsntest::TempDir::Read(out + "/x_3.svg"), figures[0].svg);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(out), {}), 4);  // no temporary file left
    const std::string file = dir.Write("f", "x");
    EXPECT_THROW(bsncli::WritePlots(plots, file), std::exception);
}

TEST(ResultTables, LogFactorsMissingCellsAlignmentAndJson) {
    const auto cells = bsncli::FormatBayesFactors({2.5, 812.25, M, -900.5}, {false, true, true, true}, 5);
    EXPECT_EQ(cells, (std::vector<std::string>{"2.5", "exp(812.25)", ".", "exp(-900.5)", "."}));
    bsncli::TextTable t("Title");
    t.AddColumn("Variable", {"a", "long name"});
    t.AddColumn("N", {"5", "120"});
    t.AddNote("note");
    std::ostringstream os;
    t.Print(os);
    EXPECT_EQ(os.str(), "Title\n  Variable     N\n  --------------\n  a            5\n  long name  120\n  note\n\n");

    // JSON text reads back as written, short arrays of numbers on one line.
    const auto doc = nlohmann::ordered_json::parse(
        R"({"z": 1, "a": {"s": "q\"uote", "e": [], "o": {}, "n": [1.5, null, -2e-300]},
            "curves": [[0.1, 0.2], [], [null]], "mixed": [{"k": true}, [1, [2]]]})");
    const std::string text = bsncli::DumpJson(doc);
    EXPECT_EQ(nlohmann::ordered_json::parse(text), doc);
    EXPECT_NE(text.find("\"n\": [1.5, null, -2e-300]"), std::string::npos) << text;
}
