// The host's data path: JSON documents for failed runs, cancellation in
// every phase of a run through the host's own Ctrl-C handler.
#include <gtest/gtest.h>

#include <signal.h>

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "platform/progress/mcquerycancel.h"
#include "tests/cli/hostrun.h"
#include "tests/cli/tempfiles.h"

using json = nlohmann::ordered_json;
namespace C = MCBSN_850::BSNConst;

namespace {

// Files in a directory tree, relative names.
std::set<std::string> filesUnder(const std::string& dir) {
    std::set<std::string> names;
    for (const auto& e : std::filesystem::recursive_directory_iterator(dir))
        if (e.is_regular_file()) names.insert(std::filesystem::relative(e.path(), dir).string());
    return names;
}

// Raises SIGINT at the k-th question and never cancels itself: the run can
// only stop through the handler the host installed.
struct CtrlCAt : MCCommon_850::MCQueryCancel {
    explicit CtrlCAt(long k) : k(k) {}
    bool IsCancel() const override {
        if (++calls == k) ::raise(SIGINT);
        return false;
    }
    long k;
    mutable long calls = 0;
};

void expectFailureDocument(const json& doc, const std::set<int>& codes, const std::string& message,
                           const std::string& what) {
    ASSERT_TRUE(doc.is_object()) << what;
    EXPECT_EQ(codes.count(doc["status"]["code"].get<int>()), 1u) << what << ": " << doc.dump();
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
        std::optional<std::string> settings, data;  // none: the file does not exist
        std::string plots;
        int exit, code;
        std::string message;  // in the JSON status message and the readable report
    };
    std::vector<Case> cases = {
        {std::nullopt, good, "", 2, 420060, "absent.json: cannot open"},
        {"{\"ModelType\": 0,", good, "", 2, 420060, "not valid JSON"},
        {R"({"Covariates": ["x"], "Colour": 1})", good, "", 2, 420060, "unknown settings key 'Colour'"},
        {R"({"Covariates": ["z"]})", good, "", 2, 420060, "unknown column 'z'"},
        {normal, std::nullopt, "", 2, 420061, "absent.csv: cannot open"},
        {normal, "", "", 2, 420061, "empty"},
        {normal, "x,y\n1,2\nzero,4\n", "", 2, 420061, "d.csv:3: column 'x': 'zero' is not a number"},
        {normal, "x,y\n1,2\n3\n", "", 2, 420061, "d.csv:3: expected 2 fields, found 1"},
        {normal, "x,y\n1,2\n\"3,4\n", "", 2, 420061, "d.csv:3"},
        // A bad cell that is not UTF-8, quoted in valid JSON (found by fuzzing).
        {normal, "x,y\n1,2\n\xF5\xF5,4\n", "", 2, 420061, "d.csv:3: column 'x': '"},
        // Settings the check refuses keep the library's status and its text.
        {R"({"ModelType": "Related", "Covariates": ["x"]})", good, "", 2, 410039,
         "Error: no covariates specified. At least one covariate is required"},
        // An output that cannot be written: --plots names a file.
        {normal, good, "taken", 2, 420063, "--plots"},
        // No record: the analysis's own error.
        {normal, "x,y\n", "", 1, 410003, "No valid cases"},
    };
    for (int m = 0; m <= 6; ++m)
        for (int d = 0; d <= (m == 0 ? 2 : 0); ++d)
            if (!bsntest::HasAnalysis(static_cast<C::ModelTypes>(m), static_cast<C::DistTypes>(d)))
                cases.push_back({fmt::format(R"({{"ModelType": {}, "TestDistType": {}, "Covariates": ["x", "y"]}})", m, d),
                                 good, "", 2, 420062, fmt::format("model type {} (", m)});
    dir.Write("taken", "a file where the plots directory should be");
    for (const Case& c : cases) {
        for (const bool toStdout : {false, true}) {
            bsncli::RunOptions options;
            options.settingsPath = c.settings ? dir.Write("s.json", *c.settings) : dir.Path("absent.json");
            options.dataPath = c.data ? dir.Write("d.csv", *c.data) : dir.Path("absent.csv");
            options.jsonPath = toStdout ? "-" : dir.Path("r.json");
            if (!c.plots.empty()) options.plotsDir = dir.Path(c.plots);
            std::filesystem::remove(dir.Path("r.json"));
            const auto r = bsntest::RunHost(options);
            EXPECT_EQ(r.code, c.exit) << c.message;
            EXPECT_NE((r.err + r.out).find(c.message), std::string::npos) << c.message << " in " << r.err;
            const std::string text = toStdout ? r.out : bsntest::TempDir::Read(dir.Path("r.json"));
            // On stdout the document is all there is.
            const json doc = json::parse(text, nullptr, false);
            expectFailureDocument(doc, {c.code}, c.message, c.message);
            // The columns are there once the data file's header was read.
            if (c.code != 420061 && c.code != 420060) {
                EXPECT_EQ(doc["columns"], json({"x", "y"})) << c.message;
            }
        }
    }
}

TEST(HostDataPath, CtrlCIsHonouredInEveryPhase) {
    bsntest::TempDir dir;
    // Rows for several scan questions; every stage of the analysis and every output file.
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
    // The caller's own cancel query, set before the run: nothing runs.
    MCCommon_850::MCAtomicCancel cancelled;
    cancelled.Cancel();
    options.cancel = &cancelled;
    EXPECT_EQ(bsntest::RunHost(options).code, 1);
    expectFailureDocument(json::parse(bsntest::TempDir::Read(options.jsonPath)), {1}, "The analysis was cancelled",
                          "cancelled before the run");

    std::map<std::string, int> phases;  // phase -> questions at which Ctrl-C stopped the run there
    long k = 1;
    for (;; ++k) {
        std::filesystem::remove_all(dir.Path("out"));
        std::filesystem::create_directories(dir.Path("out"));
        CtrlCAt ctrlC(k);
        options.cancel = &ctrlC;
        const auto r = bsntest::RunHost(options);
        if (ctrlC.calls < k) {  // the run finished before the k-th question
            EXPECT_EQ(r.code, 0) << r.err;
            break;
        }
        ASSERT_EQ(r.code, 1) << "Ctrl-C at question " << k << " ignored: " << r.err;
        const auto at = r.err.find("The analysis was cancelled while ");
        ASSERT_NE(at, std::string::npos) << k << ": " << r.err;
        ++phases[r.err.substr(at + 33, r.err.find('\n', at) - at - 33)];
        // Nothing but the failure document is left, not even a temporary file.
        EXPECT_EQ(filesUnder(dir.Path("out")), std::set<std::string>{"r.json"}) << k;
        expectFailureDocument(json::parse(bsntest::TempDir::Read(options.jsonPath)), {1, 410016}, "", std::to_string(k));
    }
    std::set<std::string> names;
    for (const auto& [name, count] : phases) names.insert(name);
    EXPECT_EQ(names, (std::set<std::string>{"checking the settings", "choosing the analysis", "reading the data",
                                            "building the model", "writing the output"}));
    // Long phases ask inside: the scan every 256 rows, the output before each of its four files.
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

TEST(HostDataPath, CtrlCWhileWritingLeavesNoModelOutput) {
    // The PMML document and the scores are output files like the others: a
    // Ctrl-C at any question of the output phase leaves neither behind.
    bsntest::TempDir dir;
    const std::string examples = std::string(BSN_SOURCE_DIR) + "/examples/";
    bsncli::RunOptions options;
    options.settingsPath = examples + "regression.json";
    options.dataPath = examples + "regression.csv";
    options.scorePath = examples + "regression_new.csv";
    options.pmmlPath = dir.Path("out/model.pmml");
    options.scoresPath = dir.Path("out/scores.csv");
    options.jsonPath = dir.Path("out/r.json");
    std::filesystem::create_directories(dir.Path("out"));
    CtrlCAt never(0);
    options.cancel = &never;
    ASSERT_EQ(bsntest::RunHost(options).code, 0);
    EXPECT_EQ(filesUnder(dir.Path("out")), (std::set<std::string>{"model.pmml", "r.json", "scores.csv"}));
    int inOutput = 0;
    for (long k = never.calls; k > 0; --k, ++inOutput) {
        std::filesystem::remove_all(dir.Path("out"));
        std::filesystem::create_directories(dir.Path("out"));
        CtrlCAt ctrlC(k);
        options.cancel = &ctrlC;
        const auto r = bsntest::RunHost(options);
        ASSERT_EQ(r.code, 1) << k << ": " << r.err;
        if (r.err.find("The analysis was cancelled while writing the output") == std::string::npos) break;
        EXPECT_EQ(filesUnder(dir.Path("out")), std::set<std::string>{"r.json"}) << k;
    }
    // Asked before the PMML file, the scores file, the JSON file and the renames.
    EXPECT_GE(inOutput, 4);
}
