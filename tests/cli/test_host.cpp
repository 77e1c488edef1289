// The host end to end: command line, input errors and exit statuses, and
// full runs whose numbers are checked against closed forms evaluated here.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tests/cli/hostrun.h"
#include "tests/cli/tempfiles.h"
#include "tests/onesample/jzsreference.h"
#include "tests/onesample/normaltestsupport.h"

using json = nlohmann::ordered_json;

namespace {

using bsntest::HostOutcome;
using bsntest::RunCommandLine;

double lbeta(double a, double b) { return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b); }

void expectNear(const json& r, int i, const std::vector<std::pair<const char*, double>>& expected, double tol = 1e-10) {
    for (const auto& [key, value] : expected)
        EXPECT_NEAR(r[key][i].get<double>(), value, tol * std::max(1.0, std::fabs(value))) << key << " " << i;
}

std::vector<std::string> keysOf(const json& j) {
    std::vector<std::string> keys;
    for (auto it = j.begin(); it != j.end(); ++it) keys.push_back(it.key());
    return keys;
}

struct JsonRun : HostOutcome {
    json doc;  // null when no document was written
};

// Runs with --json into a file; the settings and data stay as s.json and d.csv.
JsonRun runJson(const bsntest::TempDir& dir, const std::string& settings, const std::string& data,
                std::vector<std::string> extra = {}) {
    const std::string js = dir.Path("result.json");
    std::filesystem::remove(js);
    extra.insert(extra.begin(), {"run", dir.Write("s.json", settings), dir.Write("d.csv", data), "--json", js});
    JsonRun run{RunCommandLine(extra), json()};
    if (std::filesystem::exists(js)) run.doc = json::parse(bsntest::TempDir::Read(js));
    return run;
}

// The readable report of the last runJson's files.
HostOutcome runText(const bsntest::TempDir& dir, std::vector<std::string> extra = {}) {
    extra.insert(extra.begin(), {"run", dir.Path("s.json"), dir.Path("d.csv")});
    return RunCommandLine(extra);
}

} // namespace

TEST(Host, HelpAndUsage) {
    for (const std::vector<std::string>& args : {std::vector<std::string>{"--help"}, {"run", "--help"}}) {
        const HostOutcome r = RunCommandLine(args);
        EXPECT_EQ(r.code, 0);
        // The footer from its example to its exit codes, keys listed from the reader's table, options.
        for (const char* text : {"EXAMPLE", "EXIT CODES", "CILevel", "2ndRelatedList", "--plots", "--report", "--quiet"})
            EXPECT_NE(r.out.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(RunCommandLine({}).code, 2);
    EXPECT_EQ(RunCommandLine({"run", "only-settings.json"}).code, 2);
    EXPECT_EQ(RunCommandLine({"run", "a.json", "b.csv", "--bogus"}).code, 2);
    EXPECT_EQ(RunCommandLine({"--version"}).code, 0);
}

TEST(Host, BinomialRunMatchesClosedForms) {
    bsntest::TempDir dir;
    // Weights round half up; 0.4 drops its row. y3 has no value at all.
    const std::string data = "y1,y2,y3,w\n1,0,NA,2\n0,NA,,1\n1,1,.,3\n1,0,NA,0.4\n0,1,NA,1.5\nNA,NA,NA,1\n";
    const std::string settings = R"({"ModelType": "One-Sample", "TestDistType": "Binomial",
        "Factors": ["y1", "y2", "y3"], "FactorSizes": [2, 2, 2], "FrequencyWeightVar": "w", "AnalysType": "Both",
        "AlterPrior1s": [1, 0.5, 1], "AlterPrior2s": [1, 0.5, 1], "PriorParam1": 1, "PriorParam2": 3, "CILevel": 90})";
    const JsonRun run = runJson(dir, settings, data, {"--plots", dir.Path("plots")});
    ASSERT_EQ(run.code, 0) << run.err;
    const json& doc = run.doc;

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
    EXPECT_EQ(r["GetSettings"]["Factors"], json({"y1", "y2", "y3"}));  // lists of variables by name
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
                          {"GetUpperLimits", boost::math::quantile(post, 0.95)}});
        EXPECT_EQ(r["GetIsLogBayesFactor"][i], false);
    }
    // The variable without data is null wherever a number would be.
    for (const char* g : {"GetBayesFactors", "GetMeanValues", "GetLowerLimits"})
        EXPECT_TRUE(r[g][2].is_null()) << g << ": " << r[g].dump();

    // A picture for each test variable that has curves, none for y3.
    EXPECT_NE(bsntest::TempDir::Read(dir.Path("plots/y1.svg")).find("<polyline"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir.Path("plots/y3.svg")));

    // The readable report names the variable a warning points at.
    const HostOutcome text = runText(dir);
    for (const char* part : {"410037", "[variable y3]", "90% lower"})
        EXPECT_NE(text.out.find(part), std::string::npos) << part << " in " << text.out;
    EXPECT_EQ(text.out.find("exp("), std::string::npos) << text.out;
    // --quiet leaves the tables out but not the warnings.
    const HostOutcome quiet = runText(dir, {"--quiet"});
    EXPECT_EQ(quiet.out.find("90% lower"), std::string::npos) << quiet.out;
    EXPECT_NE(quiet.out.find("[variable y3]"), std::string::npos) << quiet.out;

    // A factor below the smallest double is kept as its logarithm (warning 410041).
    const JsonRun huge = runJson(dir, R"({"ModelType": 0, "TestDistType": 1, "Factors": ["v"], "FactorSizes": [2],
        "FrequencyWeightVar": "w", "AnalysType": "Bayes Factor", "NullPrior1s": [10000], "NullPrior2s": [1],
        "AlterPrior1s": [1], "AlterPrior2s": [1]})", "v,w\n0,1000\n");
    ASSERT_EQ(huge.code, 0) << huge.err;
    const double hugeLogBf = lbeta(1e4, 1001) + lbeta(1, 1) - lbeta(1, 1001) - lbeta(1e4, 1);
    ASSERT_LT(hugeLogBf, -708.0);
    EXPECT_EQ(huge.doc["results"]["GetIsLogBayesFactor"], json({true}));
    EXPECT_NEAR(huge.doc["results"]["GetBayesFactors"][0].get<double>(), hugeLogBf, 1e-9 * std::fabs(hugeLogBf));
    EXPECT_NE(huge.doc["warnings"].dump().find("\"code\":410041"), std::string::npos) << huge.doc["warnings"].dump();
    EXPECT_NE(runText(dir).out.find(fmt::format("exp({:.6g})", hugeLogBf)), std::string::npos);
}

TEST(Host, PoissonRunMatchesClosedForms) {
    bsntest::TempDir dir;
    // Counts are floored (2.7 -> 2); -1 and missing values are skipped.
    const std::string data = "c,w\n3,1\n2.7,2\n-1,1\nNA,4\n0,1\n5,3\n";
    const JsonRun run = runJson(dir, R"({"ModelType": 0, "TestDistType": "Poisson", "Covariates": ["c"],
        "FrequencyWeightVar": "w", "AnalysType": 2, "NullPrior1s": [4], "NullPrior2s": [2], "AlterPrior1s": [1],
        "AlterPrior2s": [0.5], "PriorParam1": 2, "PriorParam2": 0.5})", data);
    ASSERT_EQ(run.code, 0) << run.err;
    const json& r = run.doc["results"];
    EXPECT_EQ(r["GetOutputType"], 1);
    const double N = 1 + 2 + 1 + 3, S = 3 + 2 * 2 + 0 + 5 * 3;
    auto term = [&](double a, double b) { return a * std::log(b) - std::lgamma(a) + std::lgamma(a + S) - (a + S) * std::log(b + N); };
    const double logBf = term(4, 2) - term(1, 0.5);
    const double al = 2 + S, be = 0.5 + N;
    const boost::math::gamma_distribution<double> post(al, 1 / be);
    expectNear(r, 0, {{"GetBayesFactors", std::exp(logBf)}, {"GetNs", N}, {"GetMinCnts", 0}, {"GetMaxCnts", 5},
                      {"GetMeanValues", al / be}, {"GetVarianceValues", al / (be * be)}, {"GetModeValues", (al - 1) / be},
                      {"GetLowerLimits", boost::math::quantile(post, 0.025)},
                      {"GetUpperLimits", boost::math::quantile(post, 0.975)}});
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
                      {"GetLowerLimits", m - scale * q}, {"GetUpperLimits", m + scale * q}});
    const double bf = jzsref::exactFactor(N, t);
    EXPECT_NEAR(r["GetBayesFactors"][i].get<double>(), bf, 1e-6 * bf);
    EXPECT_EQ(r["GetPlotPrior"][i], json({1.0, 1.0}));  // the flat prior's stored form
}

} // namespace

TEST(Host, NormalRunMatchesClosedForms) {
    bsntest::TempDir dir;
    const std::string data = "a,b,c\n1.2,10,5\n2.3,NA,5\n3.1,12.5,5\n4.8,9,5\n2.2,11,5\n0.4,14,5\n3.9,.,5\n";
    const JsonRun run = runJson(dir, R"({"ModelType": "One-Sample", "TestDistType": "Normal",
        "Covariates": ["a", "b", "c"], "AnalysType": "Both", "NullValues": [1, 10, 0]})", data);
    ASSERT_EQ(run.code, 0) << run.err;
    const json& r = run.doc["results"];
    EXPECT_EQ(r["GetOutputType"], 2);
    checkNormalRow(r, 0, {1.2, 2.3, 3.1, 4.8, 2.2, 0.4, 3.9}, 1);
    // b has 5 values: too few for the diffuse posterior (warning 410027), but a t test.
    EXPECT_EQ(r["GetNs"][1], 5);
    EXPECT_TRUE(r["GetPostMeanValues"][1].is_null());
    // c is constant: warning 410010, no t and no factor, null rather than a number.
    EXPECT_EQ(r["GetStdDevs"][2], 0.0);
    EXPECT_TRUE(r["GetTValues"][2].is_null());
    EXPECT_TRUE(r["GetBayesFactors"][2].is_null());
    for (const auto& [code, datum] : {std::pair{410010, 2}, {410027, 1}})
        EXPECT_TRUE(std::any_of(run.doc["warnings"].begin(), run.doc["warnings"].end(),
                                [&](const json& w) { return w["code"] == code && w["datum"] == datum; })) << code;
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
    const JsonRun run = runJson(dir, R"({"ModelType": "Related", "Covariates": ["pre"], "2ndRelatedList": ["post"],
        "AnalysType": "Both"})", data);
    ASSERT_EQ(run.code, 0) << run.err;
    const json &doc = run.doc, &r = doc["results"];
    EXPECT_EQ(r["GetOutputType"], 3);
    EXPECT_EQ(doc["columns"][r["GetVarIndices"][0].get<int>()], "pre");
    EXPECT_EQ(doc["columns"][r["GetSecondVarIndices"][0].get<int>()], "post");
    checkNormalRow(r, 0, diff, 0);
    EXPECT_NE(runText(dir).out.find("pre - post"), std::string::npos);
}

// Every example runs in the report tests; here one runs as a process, its
// JSON document alone on stdout and the readable status on stderr.
TEST(Host, BinaryWritesTheJsonDocumentAloneToStdout) {
    bsntest::TempDir dir;
    const std::string out = dir.Path("stdout.txt"), err = dir.Path("stderr.txt");
    const int status = std::system(fmt::format("{0} run {1}/examples/normal.json {1}/examples/normal.csv --json - >{2} 2>{3}",
                                               BSN_BINARY, BSN_SOURCE_DIR, out, err).c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << bsntest::TempDir::Read(err);
    EXPECT_EQ(json::parse(bsntest::TempDir::Read(out))["model_built"], true);
    EXPECT_NE(bsntest::TempDir::Read(err).find("Status: OK"), std::string::npos) << bsntest::TempDir::Read(err);
}

// The library's own texts, cancellation and success are checked through the JSON documents.
TEST(Host, StatusMessagesComeFromTheTablesOrSayTheCode) {
    EXPECT_EQ(bsncli::StatusMessage(420001),
              "Warning: numerical integration did not converge within the iteration limit");
    EXPECT_EQ(bsncli::StatusMessage(410005), "status code 410005");  // an unassigned code
    EXPECT_EQ(bsncli::StatusMessage(999), "status code 999");
}
