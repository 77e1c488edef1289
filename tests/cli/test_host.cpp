// The host end to end: command line, input errors and exit statuses, and
// full runs whose numbers are checked against closed forms evaluated here.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/quadrature/exp_sinh.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "bsn/frame/bsncomponent.h"
#include "cli/host.h"
#include "platform/progress/mcquerycancel.h"
#include "tests/cli/tempfiles.h"

using json = nlohmann::ordered_json;
namespace C = MCBSN_850::BSNConst;

namespace {

struct Outcome {
    int code = -1;
    std::string out, err;
};

Outcome runInProcess(const std::vector<std::string>& args) {
    std::vector<const char*> argv{"bsn"};
    for (const auto& a : args) argv.push_back(a.c_str());
    std::ostringstream out, err;
    Outcome r;
    r.code = bsncli::Main(static_cast<int>(argv.size()), argv.data(), out, err);
    r.out = out.str();
    r.err = err.str();
    return r;
}

// The real binary, through the shell, for what only a process shows.
Outcome runBinary(const bsntest::TempDir& dir, const std::string& args) {
    const std::string out = dir.Path("stdout.txt"), err = dir.Path("stderr.txt");
    const int status = std::system((std::string(BSN_BINARY) + " " + args + " >" + out + " 2>" + err).c_str());
    Outcome r;
    r.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    r.out = bsntest::TempDir::Read(out);
    r.err = bsntest::TempDir::Read(err);
    return r;
}

bool available(C::ModelTypes model, C::DistTypes dist) {
    MCBSN_850::BSNSettings s;
    s.SetModelType(model, true);
    s.SetTestDistType(dist);
    return MCBSN_850::BSNComponent(s, MCXML_850::MCVarList()).HasProcedure();
}

double lbeta(double a, double b) {
    if (a == 0.0 && b == 0.0) return 0.0;
    return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
}

std::vector<std::string> keysOf(const json& j) {
    std::vector<std::string> keys;
    for (auto it = j.begin(); it != j.end(); ++it) keys.push_back(it.key());
    return keys;
}

// Runs with --json into a file and returns the parsed document.
json runJson(const bsntest::TempDir& dir, const std::string& settings, const std::string& data, Outcome& run,
             std::vector<std::string> extra = {}) {
    const std::string js = dir.Path("result.json");
    std::filesystem::remove(js);
    std::vector<std::string> args{"run", dir.Write("s.json", settings), dir.Write("d.csv", data), "--json", js};
    args.insert(args.end(), extra.begin(), extra.end());
    run = runInProcess(args);
    if (!std::filesystem::exists(js)) return json();
    return json::parse(bsntest::TempDir::Read(js));
}

// A settings file for some analysis this build has, on a column "x".
std::string anyAvailableSettings() {
    if (available(C::OneSample, C::Normal)) return R"({"ModelType": 0, "TestDistType": 0, "Covariates": ["x"]})";
    if (available(C::OneSample, C::Binomial))
        return R"({"ModelType": 0, "TestDistType": 1, "Factors": ["x"], "FactorSizes": [2]})";
    if (available(C::OneSample, C::Poisson)) return R"({"ModelType": 0, "TestDistType": 2, "Covariates": ["x"]})";
    return "";
}

} // namespace

TEST(Host, HelpAndUsage) {
    for (const std::vector<std::string>& args : {std::vector<std::string>{"--help"}, {"run", "--help"}}) {
        const Outcome r = runInProcess(args);
        EXPECT_EQ(r.code, 0);
        for (const char* text : {"EXAMPLE", "bsn run examples/binomial.json examples/binomial.csv", "CILevel",
                                 "2ndRelatedList", "\"Jeffreys 2\"", "FILE:LINE: column 'NAME'", "EXIT CODES",
                                 "\"model_built\": bool", "--plots", "--report", "--quiet"})
            EXPECT_NE(r.out.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(runInProcess({}).code, 2);
    EXPECT_EQ(runInProcess({"run", "only-settings.json"}).code, 2);
    EXPECT_EQ(runInProcess({"run", "a.json", "b.csv", "--bogus"}).code, 2);
    EXPECT_EQ(runInProcess({"--version"}).code, 0);
}

TEST(Host, BadSettingsAndDataFilesExitTwo) {
    bsntest::TempDir dir;
    const std::string csv = dir.Write("d.csv", "x,y\n1,2\n");
    auto run = [&](const std::string& settings, const std::string& data) {
        return runInProcess({"run", dir.Write("s.json", settings), data});
    };
    Outcome r = runInProcess({"run", dir.Path("absent.json"), csv});
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("absent.json: cannot open"), std::string::npos) << r.err;
    r = run("{\"ModelType\": 0,", csv);
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("not valid JSON"), std::string::npos) << r.err;
    r = run(R"({"Covariates": ["x"], "Colour": 1})", csv);
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("unknown settings key 'Colour'"), std::string::npos) << r.err;
    r = run(R"({"Covariates": ["z"]})", csv);
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("unknown column 'z'"), std::string::npos) << r.err;
    r = run(R"({"Covariates": ["x"]})", dir.Path("absent.csv"));
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("absent.csv: cannot open"), std::string::npos) << r.err;
    r = run(R"({"Covariates": ["x"]})", dir.Write("e.csv", ""));
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("empty"), std::string::npos) << r.err;

    // Data errors are found by the scan before any analysis runs.
    const std::string settings = anyAvailableSettings();
    if (settings.empty()) GTEST_SKIP() << "no analysis in this build";
    const std::string bad = dir.Write("bad.csv", "x,note\n1,\"a\nb\"\n0,ok\nzero,ok\n");
    r = run(settings, bad);
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find(bad + ":5: column 'x': 'zero' is not a number"), std::string::npos) << r.err;
    r = run(settings, dir.Write("ragged.csv", "x,note\n1,a\n0,b,c\n"));
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("ragged.csv:3: expected 2 fields, found 3"), std::string::npos) << r.err;
}

TEST(Host, AnalysesNotInThisBuildAreRefused) {
    bsntest::TempDir dir;
    const std::string csv = dir.Write("d.csv", "x,y,g\n1,2,a\n");
    bool any = false;
    for (int m = 0; m <= 6; ++m) {
        for (int d = 0; d <= (m == 0 ? 2 : 0); ++d) {
            if (available(static_cast<C::ModelTypes>(m), static_cast<C::DistTypes>(d))) continue;
            any = true;
            const std::string settings =
                fmt::format(R"({{"ModelType": {}, "TestDistType": {}, "Covariates": ["x", "y"]}})", m, d);
            const Outcome r = runInProcess({"run", dir.Write("s.json", settings), csv, "--json", dir.Path("r.json")});
            EXPECT_EQ(r.code, 2) << m << "/" << d;
            EXPECT_NE(r.err.find(fmt::format("model type {} (", m)), std::string::npos) << r.err;
            EXPECT_NE(r.err.find("has no analysis in this build"), std::string::npos) << r.err;
            EXPECT_FALSE(std::filesystem::exists(dir.Path("r.json")));
        }
    }
    if (!any) GTEST_SKIP() << "every analysis is built";
}

TEST(Host, BinomialRunMatchesClosedForms) {
    if (!available(C::OneSample, C::Binomial)) GTEST_SKIP() << "binomial analysis not in this build";
    bsntest::TempDir dir;
    // Weights round half up; 0.4 drops its row. y3 has no value at all.
    const std::string data = "y1,y2,y3,w\n1,0,NA,2\n0,NA,,1\n1,1,.,3\n1,0,NA,0.4\n0,1,NA,1.5\nNA,NA,NA,1\n";
    const std::string settings = R"({"ModelType": "One-Sample", "TestDistType": "Binomial",
        "Factors": ["y1", "y2", "y3"], "FactorSizes": [2, 2, 2], "FrequencyWeightVar": "w", "AnalysType": "Both",
        "AlterPrior1s": [1, 0.5, 1], "AlterPrior2s": [1, 0.5, 1], "PriorParam1": 1, "PriorParam2": 3, "CILevel": 90})";
    Outcome run;
    const json doc = runJson(dir, settings, data, run, {"--plots", dir.Path("plots")});
    ASSERT_EQ(run.code, 0) << run.err;

    // Layout: exactly these keys, in this order.
    EXPECT_EQ(keysOf(doc), (std::vector<std::string>{"status", "warnings", "model_built", "results"}));
    EXPECT_EQ(doc["status"], json::parse(R"({"code": 0, "error": false, "message": ""})"));
    EXPECT_EQ(doc["model_built"], true);
    bool sawEmpty = false;
    for (const json& w : doc["warnings"]) {
        EXPECT_EQ(keysOf(w), (std::vector<std::string>{"code", "message", "datum"}));
        if (w["code"] == 410037 && w["datum"] == 2) sawEmpty = true;
    }
    EXPECT_TRUE(sawEmpty) << doc["warnings"].dump();
    const json& r = doc["results"];
    const std::vector<std::string> getters = {
        "GetModelType",  "GetOutputType",  "GetSettings",     "GetVarIndices",   "GetBayesFactors",
        "GetIsLogBayesFactor", "GetNs",     "GetCat1Indices",  "GetCat1Ns",       "GetCat2Ns",
        "GetCat1Props",  "GetCat2Props",   "GetModeValues",   "GetMeanValues",   "GetVarianceValues",
        "GetLowerLimits", "GetUpperLimits", "GetPlotArguments", "GetPlotLikelihoods", "GetPlotPrior",
        "GetPlotPosterior"};
    EXPECT_EQ(keysOf(r), getters);
    EXPECT_EQ(r["GetModelType"], 0);
    EXPECT_EQ(r["GetOutputType"], 0);
    EXPECT_EQ(r["GetVarIndices"], json({0, 1, 2}));
    EXPECT_EQ(r["GetSettings"]["Factors"], json({"y1", "y2", "y3"}));
    EXPECT_EQ(r["GetSettings"]["FrequencyWeightVar"], "w");
    EXPECT_TRUE(r["GetSettings"]["MeanDistParam1"].is_null());
    EXPECT_EQ(r["GetSettings"]["NCases"], 6);  // the records of the file, when the settings leave it out

    // By hand: y1 has n = 2+1+3+2 = 8 trials and x = 5 successes; y2 has n = 7, x = 5.
    const double n[2] = {8, 7}, x[2] = {5, 5}, a1[2] = {1, 0.5};
    for (int i = 0; i < 2; ++i) {
        const double logBf = lbeta(2 + x[i], 2 + n[i] - x[i]) + lbeta(a1[i], a1[i]) -
                             lbeta(a1[i] + x[i], a1[i] + n[i] - x[i]) - lbeta(2, 2);
        EXPECT_NEAR(r["GetBayesFactors"][i].get<double>(), std::exp(logBf), 1e-10 * std::exp(logBf)) << i;
        EXPECT_EQ(r["GetIsLogBayesFactor"][i], false);
        EXPECT_EQ(r["GetNs"][i], n[i]);
        EXPECT_EQ(r["GetCat1Ns"][i], x[i]);
        EXPECT_EQ(r["GetCat2Ns"][i], n[i] - x[i]);
        EXPECT_NEAR(r["GetCat1Props"][i].get<double>(), x[i] / n[i], 1e-14);
        const double al = 1 + x[i], be = 3 + n[i] - x[i], s = al + be;
        EXPECT_NEAR(r["GetMeanValues"][i].get<double>(), al / s, 1e-14);
        EXPECT_NEAR(r["GetVarianceValues"][i].get<double>(), al * be / ((s + 1) * s * s), 1e-14);
        EXPECT_NEAR(r["GetModeValues"][i].get<double>(), (al - 1) / (s - 2), 1e-14);
        const boost::math::beta_distribution<double> post(al, be);
        EXPECT_NEAR(r["GetLowerLimits"][i].get<double>(), boost::math::quantile(post, 0.05), 1e-9);
        EXPECT_NEAR(r["GetUpperLimits"][i].get<double>(), boost::math::quantile(post, 0.95), 1e-9);
    }
    // The variable without data is null wherever a number would be.
    for (const char* g : {"GetBayesFactors", "GetMeanValues", "GetLowerLimits"})
        EXPECT_TRUE(r[g][2].is_null()) << g << ": " << r[g].dump();

    // One picture per test variable that has curves.
    EXPECT_TRUE(std::filesystem::exists(dir.Path("plots/y1.svg")));
    EXPECT_TRUE(std::filesystem::exists(dir.Path("plots/y2.svg")));
    EXPECT_NE(bsntest::TempDir::Read(dir.Path("plots/y1.svg")).find("<polyline"), std::string::npos);

    // The readable report names the variable a warning points at.
    const Outcome text = runInProcess({"run", dir.Path("s.json"), dir.Path("d.csv")});
    EXPECT_EQ(text.code, 0);
    EXPECT_NE(text.out.find("410037"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("[variable y3]"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("90% lower"), std::string::npos) << text.out;
    EXPECT_EQ(text.out.find("exp("), std::string::npos) << text.out;
}

TEST(Host, HugeBinomialFactorIsKeptAsItsLogarithm) {
    if (!available(C::OneSample, C::Binomial)) GTEST_SKIP() << "binomial analysis not in this build";
    bsntest::TempDir dir;
    const std::string settings = R"({"ModelType": 0, "TestDistType": 1, "Factors": ["v"], "FactorSizes": [2],
        "FrequencyWeightVar": "w", "AnalysType": "Bayes Factor", "NullPrior1s": [10000], "NullPrior2s": [1],
        "AlterPrior1s": [1], "AlterPrior2s": [1]})";
    Outcome run;
    const json doc = runJson(dir, settings, "v,w\n0,1000\n", run);
    ASSERT_EQ(run.code, 0) << run.err;
    const double logBf = lbeta(1e4, 1001) + lbeta(1, 1) - lbeta(1, 1001) - lbeta(1e4, 1);
    ASSERT_LT(logBf, -708.0);
    const json& r = doc["results"];
    EXPECT_EQ(r["GetIsLogBayesFactor"], json({true}));
    EXPECT_NEAR(r["GetBayesFactors"][0].get<double>(), logBf, 1e-9 * std::fabs(logBf));
    bool warned = false;
    for (const json& w : doc["warnings"]) warned |= w["code"] == 410041;
    EXPECT_TRUE(warned);
    // Posterior only was not asked for: its vectors are empty or null.
    const Outcome text = runInProcess({"run", dir.Path("s.json"), dir.Path("d.csv")});
    EXPECT_NE(text.out.find(fmt::format("exp({:.6g})", logBf)), std::string::npos) << text.out;
}

TEST(Host, PoissonRunMatchesClosedForms) {
    if (!available(C::OneSample, C::Poisson)) GTEST_SKIP() << "Poisson analysis not in this build";
    bsntest::TempDir dir;
    // Counts are floored (2.7 -> 2); -1 and missing values are skipped.
    const std::string data = "c,w\n3,1\n2.7,2\n-1,1\nNA,4\n0,1\n5,3\n";
    const std::string settings = R"({"ModelType": 0, "TestDistType": "Poisson", "Covariates": ["c"],
        "FrequencyWeightVar": "w", "AnalysType": 2, "NullPrior1s": [4], "NullPrior2s": [2], "AlterPrior1s": [1],
        "AlterPrior2s": [0.5], "PriorParam1": 2, "PriorParam2": 0.5})";
    Outcome run;
    const json doc = runJson(dir, settings, data, run);
    ASSERT_EQ(run.code, 0) << run.err;
    const json& r = doc["results"];
    EXPECT_EQ(r["GetOutputType"], 1);
    for (const char* g : {"GetPosteriorParams", "GetLikelihoodParams", "GetMinCnts", "GetMaxCnts",
                          "GetPlotArguments4Likelihoods", "GetPlotArguments4Prior", "GetPlotArguments4Posterior"})
        EXPECT_TRUE(r.contains(g)) << g;
    const double N = 1 + 2 + 1 + 3, S = 3 + 2 * 2 + 0 + 5 * 3;
    auto term = [&](double a, double b) { return a * std::log(b) - std::lgamma(a) + std::lgamma(a + S) - (a + S) * std::log(b + N); };
    const double logBf = term(4, 2) - term(1, 0.5);
    EXPECT_NEAR(r["GetBayesFactors"][0].get<double>(), std::exp(logBf), 1e-10 * std::exp(logBf));
    EXPECT_EQ(r["GetNs"][0], N);
    EXPECT_EQ(r["GetMinCnts"][0], 0);
    EXPECT_EQ(r["GetMaxCnts"][0], 5);
    const double al = 2 + S, be = 0.5 + N;
    EXPECT_EQ(r["GetPosteriorParams"][0], json({al, be}));
    EXPECT_EQ(r["GetLikelihoodParams"][0], json({-N, S}));
    EXPECT_NEAR(r["GetMeanValues"][0].get<double>(), al / be, 1e-13);
    EXPECT_NEAR(r["GetVarianceValues"][0].get<double>(), al / (be * be), 1e-13);
    EXPECT_NEAR(r["GetModeValues"][0].get<double>(), (al - 1) / be, 1e-13);
    const boost::math::gamma_distribution<double> post(al, 1 / be);
    EXPECT_NEAR(r["GetLowerLimits"][0].get<double>(), boost::math::quantile(post, 0.025), 1e-8);
    EXPECT_NEAR(r["GetUpperLimits"][0].get<double>(), boost::math::quantile(post, 0.975), 1e-8);
}

namespace {

// The JZS factor of the null, by integrating over g ~ inverse-gamma(1/2, 1/2).
double jzsFactor(double N, double t) {
    const double nu = N - 1;
    const double null = std::pow(1 + t * t / nu, -(nu + 1) / 2);
    boost::math::quadrature::exp_sinh<double> integrator;
    const double alt = integrator.integrate([&](double g) {
        if (g <= 0) return 0.0;
        return std::pow(1 + N * g, -0.5) * std::pow(1 + t * t / ((1 + N * g) * nu), -(nu + 1) / 2) *
               std::pow(g, -1.5) * std::exp(-1 / (2 * g)) / std::sqrt(2 * std::numbers::pi);
    });
    return null / alt;
}

// Mean, variance (divisor n - 1) and n of a sample.
void moments(const std::vector<double>& v, double& mean, double& var) {
    mean = 0;
    for (double x : v) mean += x;
    mean /= static_cast<double>(v.size());
    var = 0;
    for (double x : v) var += (x - mean) * (x - mean);
    var /= static_cast<double>(v.size() - 1);
}

// Checks the classical and diffuse-prior numbers of one normal-type row.
void checkNormalRow(const json& r, int i, const std::vector<double>& v, double mu0) {
    double m = 0, var = 0;
    moments(v, m, var);
    const double N = static_cast<double>(v.size()), sd = std::sqrt(var), se = sd / std::sqrt(N);
    EXPECT_EQ(r["GetNs"][i], N);
    EXPECT_NEAR(r["GetMeanValues"][i].get<double>(), m, 1e-12);
    EXPECT_NEAR(r["GetStdDevs"][i].get<double>(), sd, 1e-12);
    EXPECT_NEAR(r["GetEMs"][i].get<double>(), se, 1e-12);
    EXPECT_EQ(r["GetDFValues"][i], N - 1);
    const double t = (m - mu0) / se;
    EXPECT_NEAR(r["GetTValues"][i].get<double>(), t, 1e-10);
    const boost::math::students_t_distribution<double> tdist(N - 1);
    EXPECT_NEAR(r["GetSigs"][i].get<double>(), 2 * boost::math::cdf(boost::math::complement(tdist, std::fabs(t))), 1e-10);
    const double bf = jzsFactor(N, t);
    EXPECT_NEAR(r["GetBayesFactors"][i].get<double>(), bf, 1e-6 * bf);
    // Diffuse prior on mean and variance: t posterior with N - 3 degrees of freedom.
    const double nu = N - 3, scale2 = var * (N - 1) / (N * (N - 3));
    EXPECT_NEAR(r["GetPostMeanValues"][i].get<double>(), m, 1e-12);
    EXPECT_NEAR(r["GetModeValues"][i].get<double>(), m, 1e-12);
    EXPECT_NEAR(r["GetVarianceValues"][i].get<double>(), nu / (nu - 2) * scale2, 1e-12);
    const double q = boost::math::quantile(boost::math::students_t_distribution<double>(nu), 0.975);
    EXPECT_NEAR(r["GetLowerLimits"][i].get<double>(), m - std::sqrt(scale2) * q, 1e-9);
    EXPECT_NEAR(r["GetUpperLimits"][i].get<double>(), m + std::sqrt(scale2) * q, 1e-9);
    EXPECT_EQ(r["GetPlotPrior"][i], json({1.0, 1.0}));  // the flat prior's stored form
}

} // namespace

TEST(Host, NormalRunMatchesClosedForms) {
    if (!available(C::OneSample, C::Normal)) GTEST_SKIP() << "normal analysis not in this build";
    bsntest::TempDir dir;
    const std::string data = "a,b,c\n1.2,10,5\n2.3,NA,5\n3.1,12.5,5\n4.8,9,5\n2.2,11,5\n0.4,14,5\n3.9,.,5\n";
    const std::string settings = R"({"ModelType": "One-Sample", "TestDistType": "Normal", "Covariates": ["a", "b", "c"],
        "AnalysType": "Both", "NullValues": [1, 10, 0]})";
    Outcome run;
    const json doc = runJson(dir, settings, data, run, {"--plots", dir.Path("plots")});
    ASSERT_EQ(run.code, 0) << run.err;
    const json& r = doc["results"];
    EXPECT_EQ(r["GetOutputType"], 2);
    EXPECT_EQ(keysOf(r), (std::vector<std::string>{
                             "GetModelType", "GetOutputType", "GetSettings", "GetVarIndices", "GetBayesFactors",
                             "GetNs", "GetStdDevs", "GetEMs", "GetDFValues", "GetSigs", "GetTValues", "GetModeValues",
                             "GetPostMeanValues", "GetVarianceValues", "GetLowerLimits", "GetMeanValues",
                             "GetUpperLimits", "GetPlotArguments4Likelihoods", "GetPlotArguments4Prior",
                             "GetPlotArguments4Posterior", "GetPlotLikelihoods", "GetPlotPrior", "GetPlotPosterior"}));
    checkNormalRow(r, 0, {1.2, 2.3, 3.1, 4.8, 2.2, 0.4, 3.9}, 1);
    // b has 5 values: too few for the diffuse posterior (warning 410027), but a t test.
    EXPECT_EQ(r["GetNs"][1], 5);
    EXPECT_TRUE(r["GetPostMeanValues"][1].is_null());
    // c is constant: warning 410010, no t and no factor, null rather than a number.
    EXPECT_EQ(r["GetStdDevs"][2], 0.0);
    EXPECT_TRUE(r["GetTValues"][2].is_null());
    EXPECT_TRUE(r["GetBayesFactors"][2].is_null());
    std::vector<std::pair<int, int>> warnings;
    for (const json& w : doc["warnings"])
        warnings.emplace_back(w["code"].get<int>(), w["datum"].is_null() ? -1 : w["datum"].get<int>());
    EXPECT_NE(std::find(warnings.begin(), warnings.end(), std::make_pair(410010, 2)), warnings.end());
    EXPECT_NE(std::find(warnings.begin(), warnings.end(), std::make_pair(410027, 1)), warnings.end());
    const std::string svg = bsntest::TempDir::Read(dir.Path("plots/a.svg"));
    EXPECT_NE(svg.find("prior: flat"), std::string::npos);
}

TEST(Host, RelatedRunMatchesClosedForms) {
    if (!available(C::Related, C::Normal)) GTEST_SKIP() << "related-samples analysis not in this build";
    bsntest::TempDir dir;
    const std::vector<double> before = {140, 152, 138, 160, 149, 155, 143, 151};
    const std::vector<double> after = {135, 150, 139, 150, 141, 149, 140, 146};
    std::string data = "pre,post\n";
    std::vector<double> diff;
    for (std::size_t i = 0; i < before.size(); ++i) {
        data += fmt::format("{},{}\n", before[i], after[i]);
        diff.push_back(before[i] - after[i]);
    }
    data += "150,NA\n";  // half a pair: not counted
    const std::string settings = R"({"ModelType": "Related", "Covariates": ["pre"], "2ndRelatedList": ["post"],
        "AnalysType": "Both"})";
    Outcome run;
    const json doc = runJson(dir, settings, data, run);
    ASSERT_EQ(run.code, 0) << run.err;
    const json& r = doc["results"];
    EXPECT_EQ(r["GetOutputType"], 3);
    EXPECT_EQ(r["GetVarIndices"], json({0}));
    EXPECT_EQ(r["GetSecondVarIndices"], json({1}));
    checkNormalRow(r, 0, diff, 0);
    const Outcome text = runInProcess({"run", dir.Path("s.json"), dir.Path("d.csv")});
    EXPECT_NE(text.out.find("pre - post"), std::string::npos) << text.out;
}

TEST(Host, SettingsCheckRefusalAndCancellation) {
    bsntest::TempDir dir;
    if (available(C::Related, C::Normal)) {
        // Related samples without second variables: the settings check says 410039.
        Outcome run;
        const json doc = runJson(dir, R"({"ModelType": "Related", "Covariates": ["x"]})", "x,y\n1,2\n", run);
        EXPECT_EQ(run.code, 2);
        EXPECT_EQ(doc["status"]["code"], 410039);
        EXPECT_EQ(doc["status"]["error"], true);
        EXPECT_EQ(doc["status"]["message"], "Error: no covariates specified. At least one covariate is required");
        EXPECT_EQ(doc["model_built"], false);
        EXPECT_TRUE(doc["results"].is_null());
        EXPECT_NE(run.err.find("the settings were refused"), std::string::npos);
    }
    const std::string settings = anyAvailableSettings();
    if (settings.empty()) GTEST_SKIP() << "no analysis in this build";
    // A cancellation requested before the build ends it as an analysis error.
    MCCommon_850::MCAtomicCancel cancel;
    cancel.Cancel();
    bsncli::RunOptions options;
    options.settingsPath = dir.Write("s.json", settings);
    options.dataPath = dir.Write("d.csv", "x\n1\n0\n1\n1\n");
    options.jsonPath = dir.Path("c.json");
    options.cancel = &cancel;
    std::ostringstream out, err;
    EXPECT_EQ(bsncli::RunAnalysis(options, out, err), 1);
    const json doc = json::parse(bsntest::TempDir::Read(options.jsonPath));
    const int code = doc["status"]["code"];
    EXPECT_TRUE(code == 1 || code == 410016) << code;
    EXPECT_EQ(doc["status"]["error"], true);
    EXPECT_NE(doc["status"]["message"], "");
    EXPECT_EQ(doc["model_built"], false);
    EXPECT_TRUE(doc["results"].is_null());
}

TEST(Host, BinaryWritesJsonToStdoutAndExamplesRun) {
    bsntest::TempDir dir;
    const std::string root = BSN_SOURCE_DIR;
    int ran = 0;
    for (const char* name : {"binomial", "poisson", "normal", "related"}) {
        const std::string args = fmt::format("run {0}/examples/{1}.json {0}/examples/{1}.csv", root, name);
        const Outcome probe = runBinary(dir, args + " --quiet");
        if (probe.code == 2 && probe.err.find("has no analysis in this build") != std::string::npos) continue;
        ++ran;
        EXPECT_EQ(probe.code, 0) << name << ": " << probe.err;
        const Outcome r = runBinary(dir, args + " --json - --plots " + dir.Path(name));
        EXPECT_EQ(r.code, 0) << name << ": " << r.err;
        // stdout holds the JSON document alone; the readable status went to stderr.
        const json doc = json::parse(r.out);
        EXPECT_EQ(doc["status"]["code"], 0) << name;
        EXPECT_EQ(doc["model_built"], true) << name;
        EXPECT_NE(r.err.find("Status: OK"), std::string::npos) << name;
        EXPECT_EQ(r.out.find("Status:"), std::string::npos) << name;
        EXPECT_GE(std::distance(std::filesystem::directory_iterator(dir.Path(name)), {}), 2) << name;
    }
    if (ran == 0) GTEST_SKIP() << "no example's analysis is in this build";
}

TEST(Host, StatusMessagesComeFromTheTablesOrSayTheCode) {
    EXPECT_EQ(bsncli::StatusMessage(0), "");
    EXPECT_EQ(bsncli::StatusMessage(410003), "Error: No valid cases were found");
    EXPECT_EQ(bsncli::StatusMessage(420001),
              "Warning: numerical integration did not converge within the iteration limit");
    EXPECT_EQ(bsncli::StatusMessage(1), "The analysis was cancelled");
    EXPECT_EQ(bsncli::StatusMessage(410005), "status code 410005");  // an unassigned code
    EXPECT_EQ(bsncli::StatusMessage(999), "status code 999");
}
