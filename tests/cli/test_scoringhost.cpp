// The host's --pmml and --score options on the regression and ANOVA
// examples, and their errors.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/host.h"
#include "cli/scoring.h"
#include "tests/cli/tempfiles.h"
#include "tests/pmml/pmmlevaluator.h"
#include "tests/pmml/pmmlschemacheck.h"

namespace {

struct HostRun {
    int code = -1;
    std::string out, err;
};

HostRun run(const std::vector<std::string>& args) {
    std::vector<const char*> argv{"bsn", "run"};
    for (const auto& a : args) argv.push_back(a.c_str());
    std::ostringstream out, err;
    HostRun r;
    r.code = bsncli::Main(static_cast<int>(argv.size()), argv.data(), out, err);
    r.out = out.str();
    r.err = err.str();
    return r;
}

std::string example(const std::string& name) { return std::string(BSN_SOURCE_DIR) + "/examples/" + name; }

std::vector<std::vector<std::string>> csvRows(const std::string& text) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        std::vector<std::string> row;
        std::string cell;
        std::istringstream cells(line);
        while (std::getline(cells, cell, ',')) row.push_back(cell);
        if (!line.empty() && line.back() == ',') row.emplace_back();
        rows.push_back(row);
    }
    return rows;
}

// Files left in the directory besides the ones named.
std::vector<std::string> strayFiles(const bsntest::TempDir& dir, const std::vector<std::string>& expected) {
    std::vector<std::string> stray;
    for (const auto& f : std::filesystem::directory_iterator(dir.Path(""))) {
        const std::string name = f.path().filename().string();
        if (std::find(expected.begin(), expected.end(), name) == expected.end()) stray.push_back(name);
    }
    return stray;
}

} // namespace

TEST(ScoringHost, ExamplesWritePmmlAndScoresThatAgree) {
    bsntest::TempDir dir;
    for (const std::string name : {"regression", "anova"}) {
        const std::string pmml = dir.Path(name + ".pmml"), scores = dir.Path(name + "_scores.csv");
        const HostRun r = run({example(name + ".json"), example(name + ".csv"), "--pmml", pmml, "--score",
                           example(name + "_new.csv"), "--scores", scores});
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_NE(r.out.find("PMML: model written to " + pmml), std::string::npos) << r.out;
        EXPECT_NE(r.out.find("Scores: "), std::string::npos) << r.out;

        const std::string xml = bsntest::TempDir::Read(pmml);
        const auto problems = pmmltest::CheckAgainstSchema(xml);
        EXPECT_TRUE(problems.empty()) << pmmltest::JoinProblems(problems);
        const pmmltest::GeneralRegressionEvaluator model(xml);

        // The new file's columns, then the five scores; the PMML document
        // predicts the same means from the raw values.
        const auto newRows = csvRows(bsntest::TempDir::Read(example(name + "_new.csv")));
        const auto rows = csvRows(bsntest::TempDir::Read(scores));
        ASSERT_EQ(rows.size(), newRows.size()) << name;
        std::vector<std::string> header = newRows[0];
        for (const char* c : bsncli::kScoreColumns) header.push_back(c);
        EXPECT_EQ(rows[0], header);
        for (std::size_t i = 1; i < rows.size(); ++i) {
            ASSERT_EQ(rows[i].size(), header.size()) << name << " row " << i;
            const std::size_t n = newRows[i].size();
            EXPECT_EQ(std::vector<std::string>(rows[i].begin(), rows[i].begin() + static_cast<long>(n)), newRows[i]);
            std::map<std::string, std::string> record;
            for (std::size_t c = 0; c < n; ++c) record[newRows[0][c]] = newRows[i][c];
            const auto predicted = model.Predict(record);
            const std::string& mean = rows[i][n + 1];
            if (!predicted) {
                // A missing predictor: an empty row of scores.
                for (std::size_t c = n; c < header.size(); ++c) EXPECT_EQ(rows[i][c], "") << name << " row " << i;
                continue;
            }
            ASSERT_FALSE(mean.empty()) << name << " row " << i;
            EXPECT_NEAR(std::stod(mean), *predicted, 1e-9 * std::max(1.0, std::fabs(*predicted)));
            EXPECT_EQ(rows[i][n], mean);
            // The regression example asks for variances in scoring; the
            // ANOVA example does not.
            EXPECT_EQ(rows[i][n + 2].empty(), name == "anova") << name << " row " << i;
            if (name == "regression") {
                EXPECT_LT(std::stod(rows[i][n + 3]), std::stod(mean));
            }
        }
    }
    EXPECT_TRUE(strayFiles(dir, {"regression.pmml", "regression_scores.csv", "anova.pmml", "anova_scores.csv"})
                    .empty());
}

TEST(ScoringHost, ScoresOnStandardOutputReplaceTheTables) {
    const HostRun r = run({example("anova.json"), example("anova.csv"), "--score", example("anova_new.csv")});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.rfind("plot,treatment,predicted_mode,predicted_mean,predicted_variance,predicted_lower,"
                          "predicted_upper\n",
                          0),
              0u)
        << r.out;
    EXPECT_EQ(csvRows(r.out).size(), 5u);
    EXPECT_NE(r.err.find("Status: OK"), std::string::npos) << r.err;
}

TEST(ScoringHost, ErrorsNameTheirCauseAndLeaveNoFiles) {
    bsntest::TempDir dir;
    const std::string unseen = dir.Write("unseen.csv", "id,dose,age,diet\n1,2,30,low\n2,3,40,vegan\n");
    const std::string noColumn = dir.Write("nocolumn.csv", "id,dose,diet\n1,2,low\n");
    const std::string badNumber = dir.Write("badnumber.csv", "id,dose,age,diet\n1,2,thirty,low\n");
    const std::string shortRow = dir.Write("short.csv", "id,dose,age,diet\n1,2,30\n");
    const std::string out = dir.Path("out.csv"), pmml = dir.Path("m.pmml");
    const std::string settings = example("regression.json"), data = example("regression.csv");
    const struct {
        std::vector<std::string> args;
        int code;
        std::string message;
    } cases[] = {
        {{settings, data, "--score", unseen, "--scores", out}, 2,
         unseen + ":3: column 'diet': value 'vegan' of the factor does not occur in the training data"},
        {{settings, data, "--score", noColumn, "--scores", out}, 2, noColumn + ": no column 'age'"},
        {{settings, data, "--score", badNumber, "--scores", out}, 2,
         badNumber + ":2: column 'age': 'thirty' is not a number"},
        {{settings, data, "--score", shortRow, "--scores", out}, 2, shortRow + ":2: expected 4 fields, found 3"},
        {{settings, data, "--score", dir.Path("absent.csv"), "--scores", out}, 2, "absent.csv"},
        {{example("normal.json"), example("normal.csv"), "--pmml", pmml}, 2,
         "--pmml works on regression (model type 4) and ANOVA (model type 5) models; the settings give model type 0"},
        {{settings, data, "--scores", out}, 2, "--scores names where the scores of --score go"},
        {{settings, data, "--pmml-covariance"}, 2, "--pmml-covariance adds to the document of --pmml"},
        {{settings, data, "--score", unseen, "--json", "-"}, 2, "cannot both go to standard output"},
        {{settings, data, "--pmml", dir.Path("nodir/m.pmml")}, 2, "--pmml: cannot create"},
    };
    for (const auto& c : cases) {
        const HostRun r = run(c.args);
        EXPECT_EQ(r.code, c.code) << c.message << "\n" << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
    }
    EXPECT_TRUE(strayFiles(dir, {"unseen.csv", "nocolumn.csv", "badnumber.csv", "short.csv"}).empty());

    // The platform's sentences for the exporter's statuses.
    for (const int code : {102, 303}) {
        const std::string text = bsncli::StatusMessage(code);
        EXPECT_EQ(text.rfind("Error: ", 0), 0u) << code << ": " << text;
        EXPECT_NE(text.find(code == 102 ? "variable list" : "PMML"), std::string::npos) << text;
    }
}

TEST(ScoringHost, PmmlWithTheCovarianceAndWithoutAPosterior) {
    bsntest::TempDir dir;
    const std::string pmml = dir.Path("m.pmml");
    HostRun r = run({example("regression.json"), example("regression.csv"), "--pmml", pmml, "--pmml-covariance", "-q"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.find("PMML:"), std::string::npos) << "quiet: " << r.out;
    const std::string xml = bsntest::TempDir::Read(pmml);
    EXPECT_TRUE(pmmltest::CheckAgainstSchema(xml).empty());
    EXPECT_FALSE(pmmltest::GeneralRegressionEvaluator(xml).covariance.empty());

    // Bayes factor only: no posterior, so no covariance to write.
    const std::string settings = dir.Write("bf.json", R"({"ModelType": "Anova", "DependentVar": "yield",
        "Factors": ["treatment"], "AnalysType": "Bayes Factor", "RegrCompType": "Zellner", "RegrComPar": 10})");
    r = run({settings, example("anova.csv"), "--pmml", pmml + "2", "--pmml-covariance"});
    EXPECT_EQ(r.code, 2) << r.err;
    EXPECT_NE(r.err.find("--pmml-covariance: the model has no posterior covariance"), std::string::npos) << r.err;
    EXPECT_FALSE(std::filesystem::exists(pmml + "2"));
    r = run({settings, example("anova.csv"), "--pmml", pmml + "2"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_TRUE(pmmltest::CheckAgainstSchema(bsntest::TempDir::Read(pmml + "2")).empty());
}
