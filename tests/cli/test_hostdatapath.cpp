// The host's data path: JSON documents for failed runs, cancellation in
// every phase of a run through the host's own Ctrl-C handler.
#include <gtest/gtest.h>

#include <signal.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "bsn/frame/bsncomponent.h"
#include "cli/host.h"
#include "tests/cli/tempfiles.h"

using json = nlohmann::ordered_json;
namespace C = MCBSN_850::BSNConst;

namespace {

struct RunResult {
    int code = -1;
    std::string out, err;
};

RunResult runOptions(const bsncli::RunOptions& options) {
    std::ostringstream out, err;
    RunResult r;
    r.code = bsncli::RunAnalysis(options, out, err);
    r.out = out.str();
    r.err = err.str();
    return r;
}

// Files in a directory tree, relative names.
std::set<std::string> filesUnder(const std::string& dir) {
    std::set<std::string> names;
    for (const auto& e : std::filesystem::recursive_directory_iterator(dir))
        if (e.is_regular_file()) names.insert(std::filesystem::relative(e.path(), dir).string());
    return names;
}

// Presses Ctrl-C (raises SIGINT in this process) when asked for the k-th
// time, and otherwise never asks to cancel itself: the run can only stop
// through the handler the host installed.
class CtrlCAt : public MCCommon_850::MCQueryCancel {
public:
    explicit CtrlCAt(long k) : m_k(k) {}
    bool IsCancel() const override {
        if (++m_calls == m_k) ::raise(SIGINT);
        return false;
    }
    mutable long m_calls = 0;

private:
    long m_k;
};

void expectFailureDocument(const json& doc, int code, const std::string& message, const std::string& what) {
    ASSERT_TRUE(doc.is_object()) << what;
    EXPECT_EQ(doc["status"]["code"], code) << what << ": " << doc.dump();
    EXPECT_EQ(doc["status"]["error"], true) << what;
    EXPECT_NE(doc["status"]["message"].get<std::string>().find(message), std::string::npos)
        << what << ": " << doc["status"]["message"];
    EXPECT_EQ(doc["model_built"], false) << what;
    EXPECT_TRUE(doc["results"].is_null()) << what;
    EXPECT_TRUE(doc["warnings"].is_array()) << what;
}

} // namespace

TEST(HostDataPath, EveryFailureWritesAJsonDocument) {
    bsntest::TempDir dir;
    const std::string normal = R"({"ModelType": 0, "TestDistType": 0, "Covariates": ["x"]})";
    const std::string good = "x,y\n1,2\n3,4\n";
    struct Case {
        std::string settings, data, plots;
        int exit, code;
        std::string message;  // in the JSON status message and the readable report
    };
    std::vector<Case> cases = {
        {"{\"ModelType\": 0,", good, "", 2, 420060, "not valid JSON"},
        {R"({"Covariates": ["z"]})", good, "", 2, 420060, "unknown column 'z'"},
        {normal, "", "", 2, 420061, "empty"},
        {normal, "x,y\n1,2\nzero,4\n", "", 2, 420061, "d.csv:3: column 'x': 'zero' is not a number"},
        {normal, "x,y\n1,2\n3\n", "", 2, 420061, "d.csv:3: expected 2 fields, found 1"},
        {normal, "x,y\n1,2\n\"3,4\n", "", 2, 420061, "d.csv:3"},
        // A bad cell that is not UTF-8 is quoted in the message: the
        // document must still be valid JSON (found by fuzzing).
        {normal, "x,y\n1,2\n\xF5\xF5,4\n", "", 2, 420061, "d.csv:3: column 'x': '"},
        // Settings the check refuses keep the library's status.
        {R"({"ModelType": "Related", "Covariates": ["x"]})", good, "", 2, 410039, "no covariates"},
        // An output that cannot be written: --plots names a file.
        {normal, good, "taken", 2, 420063, "--plots"},
        // No record: the analysis's own error.
        {normal, "x,y\n", "", 1, 410003, "No valid cases"},
    };
    for (int m = 0; m <= 6; ++m) {
        MCBSN_850::BSNSettings s;
        s.SetModelType(static_cast<C::ModelTypes>(m), true);
        if (!MCBSN_850::BSNComponent(s, MCXML_850::MCVarList()).HasProcedure())
            cases.push_back({fmt::format(R"({{"ModelType": {}, "Covariates": ["x", "y"]}})", m), good, "", 2, 420062,
                             "has no analysis in this build"});
    }
    dir.Write("taken", "a file where the plots directory should be");
    for (const Case& c : cases) {
        for (const bool toStdout : {false, true}) {
            bsncli::RunOptions options;
            options.settingsPath = dir.Write("s.json", c.settings);
            options.dataPath = dir.Write("d.csv", c.data);
            options.jsonPath = toStdout ? "-" : dir.Path("r.json");
            if (!c.plots.empty()) options.plotsDir = dir.Path(c.plots);
            std::filesystem::remove(dir.Path("r.json"));
            const RunResult r = runOptions(options);
            EXPECT_EQ(r.code, c.exit) << c.message;
            EXPECT_NE((r.err + r.out).find(c.message), std::string::npos) << c.message << " in " << r.err;
            const std::string text = toStdout ? r.out : bsntest::TempDir::Read(dir.Path("r.json"));
            // On stdout the document is all there is.
            const json doc = json::parse(text, nullptr, false);
            expectFailureDocument(doc, c.code, c.message, c.message);
            // The columns are there once the data file's header was read.
            if (c.code != 420061 && c.code != 420060) {
                EXPECT_EQ(doc["columns"], json({"x", "y"})) << c.message;
            }
        }
    }
}

TEST(HostDataPath, CtrlCIsHonouredInEveryPhase) {
    bsntest::TempDir dir;
    // Enough rows for the scan to ask more than once, with every stage of a
    // one-sample normal analysis (classical, Bayes factor, posterior) and
    // every kind of output file.
    std::string csv = "x,y\n";
    for (int i = 0; i < 600; ++i) csv += fmt::format("{},{}\n", (i * 37) % 101 / 10.0, i);
    bsncli::RunOptions options;
    options.settingsPath = dir.Write("s.json", R"({"ModelType": 0, "TestDistType": 0, "Covariates": ["x", "y"],
        "AnalysType": "Both", "NPlotPoints": 50})");
    options.dataPath = dir.Write("d.csv", csv);
    std::filesystem::create_directories(dir.Path("out"));
    options.jsonPath = dir.Path("out/r.json");
    options.plotsDir = dir.Path("out/plots");
    options.reportPath = dir.Path("out/report.html");

    std::map<std::string, int> phases;  // phase -> questions at which Ctrl-C stopped the run there
    long k = 1;
    for (;; ++k) {
        std::filesystem::remove_all(dir.Path("out"));
        std::filesystem::create_directories(dir.Path("out"));
        CtrlCAt ctrlC(k);
        options.cancel = &ctrlC;
        const RunResult r = runOptions(options);
        if (ctrlC.m_calls < k) {  // the run finished before the k-th question
            EXPECT_EQ(r.code, 0) << r.err;
            break;
        }
        ASSERT_EQ(r.code, 1) << "Ctrl-C at question " << k << " ignored: " << r.err;
        const auto at = r.err.find("The analysis was cancelled while ");
        ASSERT_NE(at, std::string::npos) << k << ": " << r.err;
        ++phases[r.err.substr(at + 33, r.err.find('\n', at) - at - 33)];
        // Nothing but the failure document is left: no plot, no report, no
        // temporary file.
        EXPECT_EQ(filesUnder(dir.Path("out")), std::set<std::string>{"r.json"}) << k;
        const json doc = json::parse(bsntest::TempDir::Read(options.jsonPath));
        const int code = doc["status"]["code"];
        EXPECT_TRUE(code == 1 || code == 410016) << k << ": " << doc.dump();
        EXPECT_EQ(doc["model_built"], false);
        EXPECT_TRUE(doc["results"].is_null());
    }
    std::set<std::string> names;
    for (const auto& [name, count] : phases) names.insert(name);
    EXPECT_EQ(names, (std::set<std::string>{"checking the settings", "choosing the analysis", "reading the data",
                                            "building the model", "writing the output"}));
    // The long phases ask inside their work, not only on the way in: the
    // scan every 256 rows, the output before each of its four files.
    EXPECT_GE(phases["reading the data"], 1 + 600 / 256);
    EXPECT_GE(phases["writing the output"], 4);
    EXPECT_GE(phases["building the model"], 600);
    // The finished run wrote all of its files, and the handler is gone.
    const auto files = filesUnder(dir.Path("out"));
    EXPECT_TRUE(files.count("report.html") == 1 && files.count("plots/x.svg") == 1 && files.count("plots/y.svg") == 1);
    struct sigaction now {};
    sigaction(SIGINT, nullptr, &now);
    EXPECT_EQ(now.sa_handler, SIG_DFL);
}
