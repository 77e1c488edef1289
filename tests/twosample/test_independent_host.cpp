// The independent-samples analysis through the host: text group labels, the
// JSON getters, the tables, the plot sets with their annotations, and the
// example with its plots and report.

#include <filesystem>
#include <regex>

#include <nlohmann/json.hpp>

#include "cli/results.h"
#include "tests/cli/hostrun.h"
#include "tests/cli/tempfiles.h"
#include "tests/twosample/test_independent_support.h"

using json = nlohmann::ordered_json;
using namespace indeptest;

namespace {

// bsn run SETTINGS DATA --json DIR/r.json ARGS..., and the JSON it wrote.
std::pair<bsntest::HostOutcome, json> runHost(const bsntest::TempDir& dir, const std::string& settings,
                                              const std::string& data, std::vector<std::string> args = {}) {
    args.insert(args.begin(), {"run", settings, data, "--json", dir.Path("r.json")});
    const bsntest::HostOutcome r = bsntest::RunCommandLine(args);
    return {r, json::parse(bsntest::TempDir::Read(dir.Path("r.json")))};
}

// Group "b" and "a" (coded a = 0, b = 1), a third category "c" and a
// missing group; z is constant within each group.
const char* const kData =
    "grp,y,z\n"
    "b,5.1,7\n" "a,4.0,2\n" "b,6.3,7\n" "a,3.1,2\n" "b,5.9,7\n" "a,4.4,2\n" "c,9.9,1\n" ",8.0,8\n"
    "b,7.0,7\n" "a,3.6,2\n" "b,5.5,7\n" "a,4.8,2\n";

} // namespace

TEST(IndependentHost, TextGroupsJsonAndTables) {
    bsntest::TempDir dir;
    const std::string settings = R"({"ModelType": "Independent", "Covariates": ["y", "z"], "GroupVar": "grp",
        "AnalysType": "Both", "EqualDataVar": true})";
    const auto [r, doc] = runHost(dir, dir.Write("s.json", settings), dir.Write("d.csv", kData));
    ASSERT_EQ(r.code, 0) << r.err;
    const json& res = doc["results"];
    const std::vector<std::string> keys = {
        "GetModelType", "GetOutputType", "GetSettings", "GetGroupStatsVarIndices", "GetGroup1StatsNs",
        "GetGroup1MeanValues", "GetGroup1StdDevs", "GetGroup1EMs", "GetGroup2StatsNs", "GetGroup2MeanValues",
        "GetGroup2StdDevs", "GetGroup2EMs", "GetTTestVarIndices", "GetMeanDiffValues", "GetPStdEDDevs",
        "GetBayesFactors", "GetLogBayesFactors", "GetTValues", "GetDFValues", "GetSigs", "GetWelchTValues",
        "GetWelchDFValues", "GetWelchSigs", "GetWelchStdEDDevs", "GetPostVarIndices", "GetModeValues",
        "GetPostMeanValues", "GetVarianceValues", "GetLowerLimits", "GetUpperLimits", "GetPlotXArguments",
        "GetPlotYArguments", "GetPlotXLikelihoods", "GetPlotYLikelihoods", "GetPlotXPriorArguments",
        "GetPlotYPriorArguments", "GetPlotXPrior", "GetPlotYPrior", "GetPlotArguments", "GetPlotPosterior"};
    std::vector<std::string> got;
    for (auto it = res.begin(); it != res.end(); ++it) got.push_back(it.key());
    EXPECT_EQ(got, keys);

    // "a" is group 1 (code 0), "b" group 2; c and the blank are in neither.
    const std::vector<double> a = {4.0, 3.1, 4.4, 3.6, 4.8}, b = {5.1, 6.3, 5.9, 7.0, 5.5};
    EXPECT_EQ(res["GetGroup1StatsNs"], json({5, 5}));
    EXPECT_NEAR(res["GetGroup1MeanValues"][0].get<double>(), moments(a).mean, 1e-12);
    EXPECT_NEAR(res["GetGroup2MeanValues"][0].get<double>(), moments(b).mean, 1e-12);
    EXPECT_NEAR(std::log(res["GetBayesFactors"][0].get<double>()), res["GetLogBayesFactors"][0].get<double>(), 1e-12);
    EXPECT_EQ(res["GetSettings"]["GroupVar"], "grp");

    // The tables; z (constant in both groups) has no test, and the warning names it.
    for (const char* expected : {"Group statistics (frequency-weighted) by grp", "N a", "Mean b",
                                 "Independent-samples t tests (b - a)", "Welch t", "log BF",
                                 "Posterior of the difference of means (b - a)",
                                 "The groups are the first two categories of grp (a, b); cases in c are left out.",
                                 "one variance, prior 1/sigma^2", "410045", "[variable z]"})
        EXPECT_NE(r.out.find(expected), std::string::npos) << expected << "\n" << r.out;
}

TEST(IndependentHost, PlotSetsCarryTheirAnnotations) {
    // n = 1e9 through weights and t = 50: the factor underflows; the picture carries its log.
    const double n = 5e8, sp = std::sqrt(0.25 * n / (n - 1)), d = 50.0 * sp * std::sqrt(2.0 / n);
    BSNSettings s = indepSettings({0}, 1);
    s.SetFrequencyWeightVar(2); s.SetRegrCompType(BC::Hyper); s.SetCILevel(90);
    NormalRun run(s, {{-0.5, 0.5, d - 0.5, d + 0.5}, {0, 0, 1, 1}, {n / 2, n / 2, n / 2, n / 2}});
    ASSERT_TRUE(run.status.IsOK());
    bsncli::DataInfo data;
    data.columns = {"score", "arm", "w"};
    for (const auto& c : data.columns) data.varList.Add(MCXML_850::MCContVar(c));
    data.varList.Get(1).SetValueLabels({"ctl", "trt"});
    bsncli::ResultView view;
    ASSERT_TRUE(bsncli::DescribeResult(*run.component.GetOutputStats(), data, view));
    ASSERT_EQ(view.plots.size(), 3u);
    EXPECT_EQ(view.plots[0].parameter, "mean of group ctl");
    EXPECT_EQ(view.plots[1].parameter, "mean of group trt");
    const auto& lik = view.plots[0].logLikelihood;
    ASSERT_EQ(lik.y.size(), 100u);
    EXPECT_NEAR(*std::max_element(lik.y.begin(), lik.y.end()), 0.0, 1e-3);  // the log of a peak of 1
    EXPECT_EQ(view.plots[0].prior.y, (std::vector<double>{1.0, 1.0}));
    const auto& diff = view.plots[2];
    EXPECT_EQ(diff.parameter, "difference of means");
    EXPECT_EQ(diff.variable, "score (trt - ctl)");
    EXPECT_EQ(diff.nullValue, 0.0);
    EXPECT_EQ(diff.ciLevel, 90.0);
    const auto& out = output(run);
    EXPECT_EQ(std::pair(diff.ciLower, diff.ciUpper), std::pair(out.GetLowerLimits()[0], out.GetUpperLimits()[0]));
    EXPECT_TRUE(diff.bayesFactorIsLog);
    EXPECT_EQ(diff.bayesFactor, out.GetLogBayesFactors()[0]);
    EXPECT_LT(diff.bayesFactor, -1000.0);
    EXPECT_EQ(diff.direction, bsncli::FactorDirection::NullOverAlternative);
    EXPECT_EQ(diff.posterior.y.size(), 100u);
}

TEST(IndependentHost, ExampleRunsWithPlotsAndReport) {
    bsntest::TempDir dir;
    const std::string root = BSN_SOURCE_DIR;
    const std::string plots = dir.Path("plots"), report = dir.Path("r.html");
    const auto [r, doc] = runHost(dir, root + "/examples/independent.json", root + "/examples/independent.csv",
                                  {"--plots", plots, "--report", report});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(doc["status"]["code"], 0);
    EXPECT_TRUE(doc["warnings"].empty());
    // Two variables: each group mean and the difference; the report holds them and four tables.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(plots), {}), 6);
    const std::string html = bsntest::TempDir::Read(report);
    auto count = [&](const char* what) {
        const std::regex re(what);
        return std::distance(std::sregex_iterator(html.begin(), html.end(), re), std::sregex_iterator());
    };
    EXPECT_EQ(count("<figure"), 6);
    EXPECT_EQ(count("<caption>"), 4);
    EXPECT_EQ(count("null value = 0"), 2);
}
