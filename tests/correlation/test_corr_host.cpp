// The host on the correlation example: tables one row per pair, the JSON
// shapes of the pair getters, plots with their annotations, the report,
// --threads and its precedence, and warnings naming pairs.
#include <filesystem>

#include <nlohmann/json.hpp>

#include "cli/results.h"
#include "tests/cli/hostrun.h"
#include "tests/cli/svgcheck.h"
#include "tests/cli/tempfiles.h"
#include "tests/correlation/corrtestsupport.h"

using json = nlohmann::json;
using namespace corrtest;
using bsntest::ByClass;
using bsntest::ByName;
using bsntest::Text;

namespace {

// bsn run SETTINGS examples/correlation.csv --json DIR/result.json ARGS..., and the results in the JSON.
std::pair<bsntest::HostOutcome, json> run(const bsntest::TempDir& dir, const std::string& settings,
                                          std::vector<std::string> args) {
    args.insert(args.begin(), {"run", settings, std::string(BSN_SOURCE_DIR) + "/examples/correlation.csv", "--json",
                               dir.Path("result.json")});
    const bsntest::HostOutcome r = bsntest::RunCommandLine(args);
    return {r, json::parse(bsntest::TempDir::Read(dir.Path("result.json")))["results"]};
}

} // namespace

TEST(CorrelationHost, ExampleTablesJsonPlotsAndReport) {
    bsntest::TempDir dir;
    const auto [r, res] = run(dir, std::string(BSN_SOURCE_DIR) + "/examples/correlation.json",
                              {"--plots", dir.Path("plots"), "--report", dir.Path("r.html"), "--threads", "2"});
    ASSERT_EQ(r.code, 0) << r.err;
    // Pairs of record positions (the columns after "person").
    EXPECT_EQ(res["GetVarPairIndices"], json::parse("[[1,2],[1,3],[1,4],[1,5],[2,3],[2,4],[2,5],[3,4],[3,5],[4,5]]"));
    for (const auto& flag : res["GetIsLogBayesFactor"]) EXPECT_TRUE(flag.is_boolean());
    for (const char* key : {"GetPearsonCorrelation", "GetBayesFactor", "GetLogBayesFactors", "GetIsLogBayesFactor",
                            "GetVarPairN", "GetPosteriorMode", "GetPosteriorUpperBound"})
        EXPECT_EQ(res[key].size(), 10u) << key;
    EXPECT_EQ(res["GetVarN"].size(), 5u);
    ASSERT_EQ(res["GetPlotPosterior"].size(), 4u);
    for (const char* key : {"GetPlotLogLikelihood", "GetPlotPrior", "GetPlotPosterior"})
        for (const auto& curve : res[key]) EXPECT_EQ(curve.size(), res["GetPlotXAxis"].size()) << key;
    EXPECT_EQ(res["GetSettings"]["MaxThreadNum"], 2);
    EXPECT_NEAR(res["GetLogBayesFactors"][0].get<double>(), std::log(res["GetBayesFactor"][0].get<double>()), 1e-9);

    // One table row per pair, named by both columns; warnings name pairs.
    for (const char* text : {"age             income", "sbp              steps", "log BF", "[pair age with income]"})
        EXPECT_NE(r.out.find(text), std::string::npos) << text << "\n" << r.out;
    EXPECT_TRUE(std::filesystem::exists(dir.Path("plots/age_with_sbp.svg")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path("plots")), {}), 4);

    // The report: the table and four pictures titled after their pairs, stating the factor.
    tinyxml2::XMLDocument html;
    ASSERT_EQ(html.Parse(bsntest::TempDir::Read(dir.Path("r.html")).c_str()), tinyxml2::XML_SUCCESS);
    const auto figures = ByName(html.RootElement(), "figure");
    ASSERT_EQ(figures.size(), 4u);
    EXPECT_EQ(Text(ByClass(figures[2], "title").at(0)), "age with sbp");
    EXPECT_EQ(Text(ByClass(figures[0], "subtitle").at(0)).rfind("BF01 = ", 0), 0u);
    std::size_t rows = 0;
    for (const auto* t : ByName(html.RootElement(), "table"))
        for (const auto* caption : ByName(t, "caption"))
            if (Text(caption).rfind("Pearson correlations", 0) == 0) rows = ByName(t, "tr").size();
    EXPECT_EQ(rows, 11u);  // a header and ten pairs

    // The same numbers on one thread; MaxThreadNum in the file wins over --threads.
    const std::string oneThread = dir.Write("one.json", R"({"ModelType": 3, "Covariates": ["age", "income", "bmi",
        "sbp", "steps"], "FrequencyWeightVar": "count", "AnalysType": "Both", "MaxNPlots": 4, "MaxThreadNum": 1})");
    const auto [single, singleRes] = run(dir, oneThread, {"--threads", "8"});
    ASSERT_EQ(single.code, 0) << single.err;
    EXPECT_EQ(singleRes["GetSettings"]["MaxThreadNum"], 1);
    for (const char* key : {"GetBayesFactor", "GetLogBayesFactors", "GetPosteriorMean", "GetPlotPosterior"})
        EXPECT_EQ(singleRes[key], res[key]) << key;
}

TEST(CorrelationHost, PlotSetsCarryTheirAnnotations) {
    // A fractional factor against rho = 0.2 at 90%: curves on the shared axis, every annotation.
    BSNSettings s = corrSettings({0, 1, 2});
    s.SetEstBFType(BC::Fraction); s.SetNullValue(0.2); s.SetMCSamples(500);
    s.SetMaxNPlots(2); s.SetCILevel(90);
    CorrRun corr(s, {{30, 41, 52, 38, 60, 45}, {40, 55, 61, 47, 70, 52}, {22, 27, 24, 30, 26, 25}});
    ASSERT_TRUE(corr.status.IsOK());
    bsncli::DataInfo data;
    data.columns = {"age", "income", "bmi"};
    bsncli::ResultView view;
    ASSERT_TRUE(bsncli::DescribeResult(corr.out(), data, view));
    ASSERT_EQ(view.plots.size(), 2u);
    const auto& o = corr.out();
    for (std::size_t i = 0; i < 2; ++i) {
        const bsncli::PlotSet& p = view.plots[i];
        EXPECT_EQ(p.variable, i == 0 ? "age with income" : "age with bmi");
        EXPECT_EQ(p.logLikelihood.x, o.GetPlotXAxis());
        EXPECT_EQ(p.posterior.y, o.GetPlotPosterior()[i]);
        EXPECT_FALSE(p.likelihoodIsScaled);
        EXPECT_EQ(p.ciLower, o.GetPosteriorLowerBound()[i]);
        EXPECT_EQ(p.ciUpper, o.GetPosteriorUpperBound()[i]);
        EXPECT_EQ(p.ciLevel, 90.0);
        EXPECT_EQ(p.nullValue, 0.2);
        EXPECT_EQ(p.bayesFactor, o.GetBayesFactor()[i]);
        EXPECT_EQ(p.bayesFactorIsLog, o.GetIsLogBayesFactor()[i]);
        EXPECT_EQ(p.direction, bsncli::FactorDirection::NullOverAlternative);
    }
    ASSERT_EQ(view.tables.size(), 1u);
    EXPECT_EQ(view.tables[0].Rows(), 3u);
    EXPECT_NE(view.tables[0].Notes().at(0).find("Fractional Bayes factor of the null (rho = 0.2)"), std::string::npos);
}
