// The host on the correlation example: tables one row per pair, the JSON
// shapes of the pair getters, plots of the first MaxNPlots pairs with their
// annotations, --threads and its precedence, and warnings naming pairs.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "bsn/correlation/bsnpearsoncorrelationoutputstats.h"
#include "bsn/frame/bsncomponent.h"
#include "cli/host.h"
#include "cli/results.h"
#include "platform/records/columnrecorditer.h"
#include "tests/cli/tempfiles.h"

using json = nlohmann::json;

namespace {

struct HostRun {
    int code = -1;
    std::string out, err;
    json doc;
};

HostRun run(const bsntest::TempDir& dir, const std::string& settings, std::vector<std::string> extra) {
    const std::string jsonPath = dir.Path("result.json");
    std::vector<std::string> args = {"run", settings, std::string(BSN_SOURCE_DIR) + "/examples/correlation.csv",
                                     "--json", jsonPath};
    args.insert(args.end(), extra.begin(), extra.end());
    std::vector<const char*> argv{"bsn"};
    for (const auto& a : args) argv.push_back(a.c_str());
    std::ostringstream out, err;
    HostRun r;
    r.code = bsncli::Main(static_cast<int>(argv.size()), argv.data(), out, err);
    r.out = out.str();
    r.err = err.str();
    r.doc = json::parse(bsntest::TempDir::Read(jsonPath));
    return r;
}

const std::string kExample = std::string(BSN_SOURCE_DIR) + "/examples/correlation.json";

} // namespace

TEST(CorrelationHost, ExampleTablesJsonAndPlots) {
    bsntest::TempDir dir;
    const HostRun r = run(dir, kExample, {"--plots", dir.Path("plots"), "--threads", "2"});
    ASSERT_EQ(r.code, 0) << r.err;
    const json& res = r.doc["results"];
    // Pairs of record positions (the columns after "person").
    const json pairs = json::parse("[[1,2],[1,3],[1,4],[1,5],[2,3],[2,4],[2,5],[3,4],[3,5],[4,5]]");
    EXPECT_EQ(res["GetVarPairIndices"], pairs);
    ASSERT_EQ(res["GetIsLogBayesFactor"].size(), 10u);
    for (const auto& flag : res["GetIsLogBayesFactor"]) EXPECT_TRUE(flag.is_boolean());
    for (const char* key : {"GetPearsonCorrelation", "GetBayesFactor", "GetLogBayesFactors", "GetVarPairN",
                            "GetPosteriorMode", "GetPosteriorMean", "GetPosteriorVariance", "GetPosteriorLowerBound",
                            "GetPosteriorUpperBound"})
        EXPECT_EQ(res[key].size(), 10u) << key;
    EXPECT_EQ(res["GetVarN"].size(), 5u);
    EXPECT_EQ(res["GetPlotXAxis"].size(), 100u);
    ASSERT_EQ(res["GetPlotPosterior"].size(), 4u);
    for (const char* key : {"GetPlotLogLikelihood", "GetPlotPrior", "GetPlotPosterior"})
        for (const auto& curve : res[key]) EXPECT_EQ(curve.size(), 100u) << key;
    EXPECT_EQ(res["GetSettings"]["MaxThreadNum"], 2);
    EXPECT_NEAR(res["GetLogBayesFactors"][0].get<double>(), std::log(res["GetBayesFactor"][0].get<double>()), 1e-9);

    // One table row per pair, named by both columns.
    EXPECT_NE(r.out.find("age             income"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("sbp              steps"), std::string::npos);
    EXPECT_NE(r.out.find("log BF"), std::string::npos);
    EXPECT_NE(r.out.find("[pair age with income]"), std::string::npos);
    int plots = 0;
    for (const auto& f : std::filesystem::directory_iterator(dir.Path("plots"))) plots += f.path().extension() == ".svg";
    EXPECT_EQ(plots, 4);

    // The same factors on one thread; MaxThreadNum in the file wins over
    // --threads.
    const std::string oneThread = dir.Write("one.json", R"({"ModelType": 3, "Covariates": ["age", "income", "bmi",
        "sbp", "steps"], "FrequencyWeightVar": "count", "AnalysType": "Both", "MaxNPlots": 4, "MaxThreadNum": 1,
        "NPairsPerTask": 2})");
    const HostRun single = run(dir, oneThread, {"--threads", "8"});
    ASSERT_EQ(single.code, 0) << single.err;
    EXPECT_EQ(single.doc["results"]["GetSettings"]["MaxThreadNum"], 1);
    EXPECT_EQ(single.doc["results"]["GetBayesFactor"], res["GetBayesFactor"]);
}

TEST(CorrelationHost, PlotSetsCarryTheirAnnotations) {
    bsntest::TempDir dir;
    const std::string settings = dir.Write("frac.json", R"({"ModelType": 3, "Covariates": ["age", "income", "bmi"],
        "AnalysType": "Both", "EstBFType": "Fraction", "NullValue": 0.2, "MCSamples": 500, "MaxNPlots": 2,
        "CILevel": 90})");
    const HostRun f = run(dir, settings, {"--plots", dir.Path("p")});
    ASSERT_EQ(f.code, 0) << f.err;
    EXPECT_NE(f.out.find("Fractional Bayes factor of the null (rho = 0.2)"), std::string::npos) << f.out;
    EXPECT_NE(f.out.find("90% lower"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(dir.Path("p/age_with_income.svg")));
    EXPECT_TRUE(std::filesystem::exists(dir.Path("p/age_with_bmi.svg")));
    EXPECT_FALSE(std::filesystem::exists(dir.Path("p/income_with_bmi.svg")));

    // The adapter's plot sets: curves on the shared axis and every
    // annotation the picture shows.
    const json& res = f.doc["results"];
    MCBSN_850::BSNSettings s;
    s.SetModelType(MCBSN_850::BSNConst::Correlation, true);
    s.SetCovariates({0, 1, 2});
    s.SetAnalysType(MCBSN_850::BSNConst::Both);
    s.SetEstBFType(MCBSN_850::BSNConst::Fraction);
    s.SetNullValue(0.2);
    s.SetMCSamples(500);
    s.SetMaxNPlots(2);
    s.SetCILevel(90);
    const std::vector<std::vector<double>> cols = {{30, 41, 52, 38, 60, 45}, {40, 55, 61, 47, 70, 52},
                                                   {22, 27, 24, 30, 26, 25}};
    MCCommon_850::ColumnRecordIter iter(cols);
    bsncli::DataInfo data;
    data.columns = {"age", "income", "bmi"};
    MCBSN_850::BSNComponent component(s, data.varList);
    ASSERT_TRUE(component.BuildModel(iter).IsOK());
    bsncli::ResultView view;
    ASSERT_TRUE(bsncli::DescribeResult(*component.GetOutputStats(), data, view));
    ASSERT_EQ(view.plots.size(), 2u);
    const auto* o = dynamic_cast<const MCBSN_850::BSNPearsonCorrelationOutputStats*>(component.GetOutputStats());
    for (std::size_t i = 0; i < 2; ++i) {
        const bsncli::PlotSet& p = view.plots[i];
        EXPECT_EQ(p.variable, i == 0 ? "age with income" : "age with bmi");
        EXPECT_EQ(p.logLikelihood.x, o->GetPlotXAxis());
        EXPECT_EQ(p.posterior.y, o->GetPlotPosterior()[i]);
        EXPECT_FALSE(p.likelihoodIsScaled);
        EXPECT_EQ(p.ciLower, o->GetPosteriorLowerBound()[i]);
        EXPECT_EQ(p.ciUpper, o->GetPosteriorUpperBound()[i]);
        EXPECT_EQ(p.ciLevel, 90.0);
        EXPECT_EQ(p.nullValue, 0.2);
        EXPECT_EQ(p.bayesFactor, o->GetBayesFactor()[i]);
        EXPECT_EQ(p.bayesFactorIsLog, o->GetIsLogBayesFactor()[i]);
        EXPECT_EQ(p.direction, bsncli::FactorDirection::NullOverAlternative);
    }
    EXPECT_EQ(view.tables.size(), 1u);
    EXPECT_EQ(view.tables[0].Rows(), 3u);
    EXPECT_EQ(res["GetPlotPosterior"].size(), 2u);
}
