// The host end to end: command line, input errors and exit statuses, and
// full runs whose numbers are checked against closed forms evaluated here.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "bsn/frame/bsncomponent.h"
#include "cli/host.h"
#include "platform/progress/mcquerycancel.h"
#include "tests/cli/tempfiles.h"
#include "tests/onesample/jzsreference.h"
#include "tests/onesample/normaltestsupport.h"

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

double lbeta(double a, double b) { return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b); }

// Each getter's entry i against its expected value, to a relative tolerance.
void expectNear(const json& r, int i, const std::vector<std::pair<const char*, double>>& expected, double tol) {
    for (const auto& [key, value] : expected)
        EXPECT_NEAR(r[key][i].get<double>(), value, tol * std::max(1.0, std::fabs(value))) << key << " " << i;
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

// A one-sample normal analysis of a column "x".
const std::string kNormalOnX = R"({"ModelType": 0, "TestDistType": 0, "Covariates": ["x"]})";

} // namespace

TEST(Host, HelpAndUsage) {
    for (const std::vector<std::string>& args : {std::vector<std::string>{"--help"}, {"run", "--help"}}) {
        const Outcome r = runInProcess(args);
        EXPECT_EQ(r.code, 0);
        for (const char* text : {"EXAMPLE", "bsn run examples/binomial.json examples/binomial.csv", "CILevel",
                                 "2ndRelatedList", "\"Jeffreys 2\"", "FILE:LINE: column 'NAME'", "EXIT CODES",
                                 "\"model_built\": bool", "\"columns\": [str, ...]", "--plots", "--report",
                                 "--quiet"})
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
    const std::string plain = dir.Write("plain.json", R"({"Covariates": ["x"]})");
    std::vector<std::array<std::string, 3>> cases = {  // settings file, data file, message
        {dir.Path("absent.json"), csv, "absent.json: cannot open"},
        {dir.Write("s1.json", "{\"ModelType\": 0,"), csv, "not valid JSON"},
        {dir.Write("s2.json", R"({"Covariates": ["x"], "Colour": 1})"), csv, "unknown settings key 'Colour'"},
        {dir.Write("s3.json", R"({"Covariates": ["z"]})"), csv, "unknown column 'z'"},
        {plain, dir.Path("absent.csv"), "absent.csv: cannot open"},
        {plain, dir.Write("e.csv", ""), "empty"},
    };
    // Data errors are found by the scan before any analysis runs.
    const std::string bad = dir.Write("bad.csv", "x,note\n1,\"a\nb\"\n0,ok\nzero,ok\n");
    cases.push_back({dir.Write("s4.json", kNormalOnX), bad, bad + ":5: column 'x': 'zero' is not a number"});
    for (const auto& [settings, data, message] : cases) {
        const Outcome r = runInProcess({"run", settings, data});
        EXPECT_EQ(r.code, 2) << message;
        EXPECT_NE(r.err.find(message), std::string::npos) << r.err;
    }
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
            EXPECT_EQ(json::parse(bsntest::TempDir::Read(dir.Path("r.json")))["status"]["code"], 420062);
        }
    }
    if (!any) GTEST_SKIP() << "every analysis is built";
}

TEST(Host, BinomialRunMatchesClosedForms) {
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
    EXPECT_EQ(keysOf(doc), (std::vector<std::string>{"status", "warnings", "model_built", "columns", "results"}));
    EXPECT_EQ(doc["columns"], json({"y1", "y2", "y3", "w"}));
    EXPECT_EQ(doc["status"], json::parse(R"({"code": 0, "error": false, "message": ""})"));
    EXPECT_EQ(doc["model_built"], true);
    bool sawEmpty = false;
    for (const json& w : doc["warnings"]) {
        EXPECT_EQ(keysOf(w), (std::vector<std::string>{"code", "message", "datum"}));
        if (w["code"] == 410037 && w["datum"] == 2) sawEmpty = true;
    }
    EXPECT_TRUE(sawEmpty) << doc["warnings"].dump();
    const json& r = doc["results"];
    EXPECT_EQ(r["GetOutputType"], 0);
    EXPECT_EQ(r["GetVarIndices"], json({0, 1, 2}));
    EXPECT_EQ(r["GetSettings"]["Factors"], json({"y1", "y2", "y3"}));
    EXPECT_EQ(r["GetSettings"]["NCases"], 6);  // the records of the file, when the settings leave it out

    // By hand: y1 has n = 2+1+3+2 = 8 trials and x = 5 successes; y2 has n = 7, x = 5.
    const double n[2] = {8, 7}, x[2] = {5, 5}, a1[2] = {1, 0.5};
    for (int i = 0; i < 2; ++i) {
        const double logBf = lbeta(2 + x[i], 2 + n[i] - x[i]) + lbeta(a1[i], a1[i]) -
                             lbeta(a1[i] + x[i], a1[i] + n[i] - x[i]) - lbeta(2, 2);
        const double al = 1 + x[i], be = 3 + n[i] - x[i], s = al + be;
        const boost::math::beta_distribution<double> post(al, be);
        expectNear(r, i, {{"GetBayesFactors", std::exp(logBf)}, {"GetNs", n[i]}, {"GetCat1Ns", x[i]},
                          {"GetCat2Ns", n[i] - x[i]}, {"GetCat1Props", x[i] / n[i]}, {"GetMeanValues", al / s},
                          {"GetVarianceValues", al * be / ((s + 1) * s * s)}, {"GetModeValues", (al - 1) / (s - 2)},
                          {"GetLowerLimits", boost::math::quantile(post, 0.05)},
                          {"GetUpperLimits", boost::math::quantile(post, 0.95)}},
                   1e-10);
        EXPECT_EQ(r["GetIsLogBayesFactor"][i], false);
    }
    // The variable without data is null wherever a number would be.
    for (const char* g : {"GetBayesFactors", "GetMeanValues", "GetLowerLimits"})
        EXPECT_TRUE(r[g][2].is_null()) << g << ": " << r[g].dump();

    // One picture per test variable that has curves.
    EXPECT_NE(bsntest::TempDir::Read(dir.Path("plots/y1.svg")).find("<polyline"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(dir.Path("plots/y2.svg")));
    EXPECT_FALSE(std::filesystem::exists(dir.Path("plots/y3.svg")));

    // The readable report names the variable a warning points at.
    const Outcome text = runInProcess({"run", dir.Path("s.json"), dir.Path("d.csv")});
    EXPECT_EQ(text.code, 0);
    for (const char* part : {"410037", "[variable y3]", "90% lower"})
        EXPECT_NE(text.out.find(part), std::string::npos) << part << " in " << text.out;
    EXPECT_EQ(text.out.find("exp("), std::string::npos) << text.out;
    // --quiet leaves the tables out but not the warnings.
    const Outcome quiet = runInProcess({"run", dir.Path("s.json"), dir.Path("d.csv"), "--quiet"});
    EXPECT_EQ(quiet.out.find("90% lower"), std::string::npos) << quiet.out;
    EXPECT_NE(quiet.out.find("[variable y3]"), std::string::npos) << quiet.out;
}

TEST(Host, HugeBinomialFactorIsKeptAsItsLogarithm) {
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
    EXPECT_NE(doc["warnings"].dump().find("\"code\":410041"), std::string::npos) << doc["warnings"].dump();
    const Outcome text = runInProcess({"run", dir.Path("s.json"), dir.Path("d.csv")});
    EXPECT_NE(text.out.find(fmt::format("exp({:.6g})", logBf)), std::string::npos) << text.out;
}

TEST(Host, PoissonRunMatchesClosedForms) {
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
    const double N = 1 + 2 + 1 + 3, S = 3 + 2 * 2 + 0 + 5 * 3;
    auto term = [&](double a, double b) { return a * std::log(b) - std::lgamma(a) + std::lgamma(a + S) - (a + S) * std::log(b + N); };
    const double logBf = term(4, 2) - term(1, 0.5);
    const double al = 2 + S, be = 0.5 + N;
    const boost::math::gamma_distribution<double> post(al, 1 / be);
    expectNear(r, 0, {{"GetBayesFactors", std::exp(logBf)}, {"GetNs", N}, {"GetMinCnts", 0}, {"GetMaxCnts", 5},
                      {"GetMeanValues", al / be}, {"GetVarianceValues", al / (be * be)}, {"GetModeValues", (al - 1) / be},
                      {"GetLowerLimits", boost::math::quantile(post, 0.025)},
                      {"GetUpperLimits", boost::math::quantile(post, 0.975)}},
               1e-10);
    EXPECT_EQ(r["GetPosteriorParams"][0], json({al, be}));
    EXPECT_EQ(r["GetLikelihoodParams"][0], json({-N, S}));
}

namespace {

// Checks the classical and diffuse-prior numbers of one normal-type row.
void checkNormalRow(const json& r, int i, const std::vector<double>& v, double mu0) {
    const auto [N, m, var] = normaltest::moments(v);
    const double sd = std::sqrt(var), se = sd / std::sqrt(N), t = (m - mu0) / se;
    const boost::math::students_t_distribution<double> tdist(N - 1);
    // Diffuse prior on mean and variance: t posterior with N - 3 degrees of freedom.
    const double nu = N - 3, scale = std::sqrt(var * (N - 1) / (N * (N - 3)));
    const double q = boost::math::quantile(boost::math::students_t_distribution<double>(nu), 0.975);
    expectNear(r, i, {{"GetNs", N}, {"GetMeanValues", m}, {"GetStdDevs", sd}, {"GetEMs", se}, {"GetDFValues", N - 1},
                      {"GetTValues", t}, {"GetSigs", 2 * boost::math::cdf(boost::math::complement(tdist, std::fabs(t)))},
                      {"GetPostMeanValues", m}, {"GetModeValues", m}, {"GetVarianceValues", nu / (nu - 2) * scale * scale},
                      {"GetLowerLimits", m - scale * q}, {"GetUpperLimits", m + scale * q}},
               1e-10);
    const double bf = jzsref::exactFactor(N, t);
    EXPECT_NEAR(r["GetBayesFactors"][i].get<double>(), bf, 1e-6 * bf);
    EXPECT_EQ(r["GetPlotPrior"][i], json({1.0, 1.0}));  // the flat prior's stored form
}

} // namespace

TEST(Host, NormalRunMatchesClosedForms) {
    bsntest::TempDir dir;
    const std::string data = "a,b,c\n1.2,10,5\n2.3,NA,5\n3.1,12.5,5\n4.8,9,5\n2.2,11,5\n0.4,14,5\n3.9,.,5\n";
    const std::string settings = R"({"ModelType": "One-Sample", "TestDistType": "Normal", "Covariates": ["a", "b", "c"],
        "AnalysType": "Both", "NullValues": [1, 10, 0]})";
    Outcome run;
    const json doc = runJson(dir, settings, data, run, {"--plots", dir.Path("plots")});
    ASSERT_EQ(run.code, 0) << run.err;
    const json& r = doc["results"];
    EXPECT_EQ(r["GetOutputType"], 2);
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
    bsntest::TempDir dir;
    const std::vector<double> before = {140, 152, 138, 160, 149, 155, 143, 151};
    const std::vector<double> after = {135, 150, 139, 150, 141, 149, 140, 146};
    // The pair's columns in the opposite order, behind a text column.
    std::string data = "note,post,pre\n";
    std::vector<double> diff;
    for (std::size_t i = 0; i < before.size(); ++i) {
        data += fmt::format("n{},{},{}\n", i, after[i], before[i]);
        diff.push_back(before[i] - after[i]);
    }
    data += "last,NA,150\n";  // half a pair: not counted
    const std::string settings = R"({"ModelType": "Related", "Covariates": ["pre"], "2ndRelatedList": ["post"],
        "AnalysType": "Both"})";
    Outcome run;
    const json doc = runJson(dir, settings, data, run);
    ASSERT_EQ(run.code, 0) << run.err;
    const json& r = doc["results"];
    EXPECT_EQ(r["GetOutputType"], 3);
    // The indices name the pair through the columns list.
    EXPECT_EQ(doc["columns"], json({"note", "post", "pre"}));
    EXPECT_EQ(doc["columns"][r["GetVarIndices"][0].get<int>()], "pre");
    EXPECT_EQ(doc["columns"][r["GetSecondVarIndices"][0].get<int>()], "post");
    checkNormalRow(r, 0, diff, 0);
    const Outcome text = runInProcess({"run", dir.Path("s.json"), dir.Path("d.csv")});
    EXPECT_NE(text.out.find("pre - post"), std::string::npos) << text.out;
}

TEST(Host, SettingsCheckRefusalAndCancellation) {
    bsntest::TempDir dir;
    // Related samples without second variables: the settings check says 410039.
    Outcome run;
    const json refused = runJson(dir, R"({"ModelType": "Related", "Covariates": ["x"]})", "x,y\n1,2\n", run);
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(refused["status"], json::parse(R"({"code": 410039, "error": true,
        "message": "Error: no covariates specified. At least one covariate is required"})"));
    EXPECT_EQ(refused["model_built"], false);
    EXPECT_EQ(refused["columns"], json({"x", "y"}));  // there even when no result is
    EXPECT_TRUE(refused["results"].is_null());
    EXPECT_NE(run.err.find("the settings were refused"), std::string::npos);
    // A cancellation requested before the run ends it as an analysis error.
    MCCommon_850::MCAtomicCancel cancel;
    cancel.Cancel();
    bsncli::RunOptions options;
    options.settingsPath = dir.Write("s.json", kNormalOnX);
    options.dataPath = dir.Write("d.csv", "x\n1\n0\n1\n1\n");
    options.jsonPath = dir.Path("c.json");
    options.cancel = &cancel;
    std::ostringstream out, err;
    EXPECT_EQ(bsncli::RunAnalysis(options, out, err), 1) << err.str();
    const json doc = json::parse(bsntest::TempDir::Read(options.jsonPath));
    EXPECT_EQ(doc["status"]["code"], 1);  // noticed by the host before the analysis starts
    EXPECT_EQ(doc["status"]["message"], "The analysis was cancelled");
    EXPECT_EQ(doc["model_built"], false);
    EXPECT_TRUE(doc["results"].is_null());
}

TEST(Host, BinaryWritesJsonToStdoutAndExamplesRun) {
    bsntest::TempDir dir;
    for (const char* name : {"binomial", "poisson", "normal", "related"}) {
        const Outcome r = runBinary(dir, fmt::format("run {0}/examples/{1}.json {0}/examples/{1}.csv --json - --plots {2}",
                                                     BSN_SOURCE_DIR, name, dir.Path(name)));
        EXPECT_EQ(r.code, 0) << name << ": " << r.err;
        // stdout holds the JSON document alone; the readable status went to stderr.
        const json doc = json::parse(r.out);
        EXPECT_EQ(doc["status"]["code"], 0) << name;
        EXPECT_EQ(doc["model_built"], true) << name;
        EXPECT_NE(r.err.find("Status: OK"), std::string::npos) << name;
        EXPECT_GE(std::distance(std::filesystem::directory_iterator(dir.Path(name)), {}), 2) << name;
    }
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
