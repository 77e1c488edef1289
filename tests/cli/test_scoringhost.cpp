// The host's --pmml and --score options on the regression and ANOVA examples; outputs refused whole.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/scoring.h"
#include "tests/cli/hostrun.h"
#include "tests/cli/tempfiles.h"
#include "tests/pmml/pmmlevaluator.h"

namespace {

std::string example(const std::string& name) { return std::string(BSN_SOURCE_DIR) + "/examples/" + name; }

// Cells of a CSV text without quoting; an empty cell stays a cell.
std::vector<std::vector<std::string>> csvRows(const std::string& text) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        auto& row = rows.emplace_back(1);
        for (const char ch : line)
            if (ch == ',') row.emplace_back(); else row.back() += ch;
    }
    return rows;
}

} // namespace

TEST(ScoringHost, ExamplesWritePmmlAndScoresThatAgree) {
    bsntest::TempDir dir;
    for (const std::string name : {"regression", "anova"}) {
        const std::string pmml = dir.Path(name + ".pmml"), scores = dir.Path(name + "_scores.csv");
        const auto r = bsntest::RunCommandLine({"run", example(name + ".json"), example(name + ".csv"), "--pmml", pmml, "--pmml-covariance",
                               "--score", example(name + "_new.csv"), "--scores", scores});
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_NE(r.out.find("PMML: model written to " + pmml), std::string::npos) << r.out;

        // The document's structure is checked with the exporter; here it must predict the scores.
        const pmmltest::GeneralRegressionEvaluator model(bsntest::TempDir::Read(pmml));
        EXPECT_FALSE(model.covariance.empty());

        // The new file's columns, then the scores; the PMML document predicts the same means.
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
            // A missing predictor empties the scores; only regression asks for variances.
            for (std::size_t c = n; c < header.size(); ++c)
                EXPECT_EQ(rows[i][c].empty(), !predicted || (c >= n + 2 && name == "anova")) << name << " " << i;
            if (!predicted) continue;
            EXPECT_NEAR(std::stod(rows[i][n + 1]), *predicted, 1e-9 * std::fabs(*predicted));
            EXPECT_EQ(rows[i][n], rows[i][n + 1]);
        }
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path("")), {}), 4) << "a temporary file was left";
    // Scores on standard output replace the tables.
    const auto r = bsntest::RunCommandLine({"run", example("anova.json"), example("anova.csv"), "--score", example("anova_new.csv")});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.rfind("plot,treatment,predicted_mode,", 0), 0u) << r.out;
    EXPECT_NE(r.err.find("Status: OK"), std::string::npos) << r.err;
}

TEST(ScoringHost, ErrorsNameTheirCauseAndLeaveNoFiles) {
    bsntest::TempDir dir;
    const std::string unseen = dir.Write("unseen.csv", "id,dose,age,diet\n1,2,30,low\n2,3,40,vegan\n");
    const std::string noColumn = dir.Write("nocolumn.csv", "id,dose,diet\n1,2,low\n");
    const std::string badNumber = dir.Write("badnumber.csv", "id,dose,age,diet\n1,2,thirty,low\n");
    const std::string bf = dir.Write("bf.json", R"({"ModelType": "Anova", "DependentVar": "yield",
        "Factors": ["treatment"], "AnalysType": "Bayes Factor", "RegrCompType": "Zellner", "RegrComPar": 10})");
    const std::string out = dir.Path("out.csv"), pmml = dir.Path("m.pmml");
    const std::string settings = example("regression.json"), data = example("regression.csv");
    const struct {
        std::vector<std::string> args;
        std::string message;
    } cases[] = {
        {{"run", settings, data, "--score", unseen, "--scores", out},
         unseen + ":3: column 'diet': value 'vegan' of the factor does not occur in the training data"},
        {{"run", settings, data, "--score", noColumn, "--scores", out}, noColumn + ": no column 'age'"},
        {{"run", settings, data, "--score", badNumber, "--scores", out}, badNumber + ":2: column 'age': 'thirty' is not a"},
        {{"run", example("normal.json"), example("normal.csv"), "--pmml", pmml},
         "--pmml works on regression (model type 4) and ANOVA (model type 5) models; the settings give model type 0"},
        {{"run", settings, data, "--score", unseen, "--json", "-"}, "cannot both go to standard output"},
        {{"run", bf, example("anova.csv"), "--pmml", pmml, "--pmml-covariance"},
         "--pmml-covariance: the model has no posterior covariance"},
        {{"run", settings, data, "--report", dir.Path("missing/report.html")}, "--report: cannot write"},
    };
    for (const auto& c : cases) {
        const auto r = bsntest::RunCommandLine(c.args);
        EXPECT_EQ(r.code, 2) << c.message << "\n" << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path("")), {}), 4) << "an output was left";
    // Without a posterior the document is written, without a covariance.
    EXPECT_EQ(bsntest::RunCommandLine({"run", bf, example("anova.csv"), "--pmml", pmml}).code, 0);
    EXPECT_TRUE(pmmltest::GeneralRegressionEvaluator(bsntest::TempDir::Read(pmml)).covariance.empty());
}
