// The log-linear analysis from the command line: the example's tables and
// JSON, and the pictures written with --plots.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/cli/hostrun.h"
#include "tests/cli/svgcheck.h"
#include "tests/cli/tempfiles.h"
#include "tests/loglinear/loglinear_test_support.h"

namespace {

using json = nlohmann::json;
using namespace loglinear_test;
using bsntest::RunCommandLine;

std::string example(const std::string& name) { return std::string(BSN_SOURCE_DIR) + "/examples/" + name; }

// The picture whose file name starts with `prefix` (of the only one when empty) after checking that
// every text of it is inside, and that there is some text.
std::string picture(const std::string& dir, const std::string& prefix, int expectedFiles) {
    std::string svg;
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        ++files;
        if (entry.path().filename().string().rfind(prefix, 0) == 0) svg = bsntest::TempDir::Read(entry.path().string());
    }
    EXPECT_EQ(files, expectedFiles);
    tinyxml2::XMLDocument doc;
    EXPECT_EQ(doc.Parse(svg.c_str()), tinyxml2::XML_SUCCESS) << prefix;
    const auto* root = doc.FirstChildElement("svg");
    EXPECT_GT(root ? bsntest::ExpectTextsInside(root) : 0, 0) << "no text in picture " << prefix;
    return svg;
}

TEST(LogLinearHost, ExampleTablesJsonAndPictures) {
    const auto r = RunCommandLine({"run", example("loglinear.json"), example("loglinear.csv"), "--json", "-"});
    ASSERT_EQ(r.code, 0) << r.err;
    const json doc = json::parse(r.out);
    const json& res = doc["results"];
    EXPECT_EQ(res["GetModelType"], 6);
    EXPECT_EQ(res["GetOutputType"], 8);
    // Labels sort: treatment new, placebo, standard; outcome better, same, worse. The record with
    // no treatment and the one with no weight are left out.
    EXPECT_EQ(res["GetContingencyMatrix"]["GetAllCounts"], json::parse("[[34,9,5],[13,24,20],[25,23,11]]"));
    EXPECT_EQ(res["GetContingencyMatrix"]["GetTotalWeight"], 164);
    const json& chi = res["GetChiSquareResult"];
    std::vector<std::string> keys;
    for (auto it = chi.begin(); it != chi.end(); ++it) keys.push_back(it.key());  // in sorted order
    EXPECT_EQ(keys, (std::vector<std::string>{"df", "df2", "sig", "statistic", "type"}));
    EXPECT_TRUE(chi["df2"].is_null());
    EXPECT_EQ(chi["type"], 2);
    EXPECT_EQ(chi["df"], 4);
    // Against R's chisq.test of the same table (tests/data/loglinear/classical.csv).
    const auto rows = ReadReference("classical.csv");
    const auto ref = std::ranges::find_if(rows, [](const Row& row) { return row.Text("name") == "table3x3"; });
    ASSERT_NE(ref, rows.end());
    EXPECT_TRUE(Near(chi["statistic"].get<double>(), ref->Num("x2"), 1e-12));
    EXPECT_TRUE(res["GetContCorrectResult"]["statistic"].is_null());
    EXPECT_TRUE(res["GetFisher2SidedSig"].is_null());
    EXPECT_FALSE(res["IsLogBayesFactor"].get<bool>());
    EXPECT_NEAR(std::log(res["GetBayesFactor"].get<double>()), res["GetLogBayesFactor"].get<double>(), 1e-12);
    EXPECT_EQ(res["GetT"], -1);
    ASSERT_EQ(res["GetPosteriorPairs"].size(), 9u);
    EXPECT_EQ(res["GetPosteriorPairs"][0], json::parse("[0,1,0,1]"));
    EXPECT_EQ(res["GetPosteriorPairs"][8], json::parse("[1,2,1,2]"));
    const json& e = res["GetPosteriorEstimations"][0];
    EXPECT_EQ(e.size(), 5u);
    for (const char* k : {"mode", "mean", "variance", "lower", "upper"}) EXPECT_TRUE(e[k].is_number()) << k;
    // Curves for the first MaxNPlots (4 in the example) of the 9 pairs only.
    EXPECT_EQ(res["GetPlotArguments4Posterior"].size(), 4u);
    EXPECT_EQ(res["GetPlotPosterior"].size(), 4u);
    EXPECT_EQ(doc["warnings"].size(), 0u);

    // The tables, and the pictures: the table (its counts written in the cells) and four pairs.
    bsntest::TempDir dir;
    const auto tables =
        RunCommandLine({"run", example("loglinear.json"), example("loglinear.csv"), "--plots", dir.Path("plots")});
    ASSERT_EQ(tables.code, 0) << tables.err;
    for (const char* title : {"Contingency table: treatment (rows) by outcome (columns)", "Expected counts",
                              "Tests of independence", "Bayes factor for independence",
                              "Posterior of the log odds ratio of pairs of categories", "new / placebo",
                              "2 record(s) with a missing factor value or weight were left out"})
        EXPECT_NE(tables.out.find(title), std::string::npos) << title;
    EXPECT_NE(picture(dir.Path("plots"), "table", 5).find(">34<"), std::string::npos);
}

TEST(LogLinearHost, LargeTableHeatMapStaysInside) {
    // 40 × 40 categories with long labels: cells too small for counts, labels
    // shortened, and everything inside the picture.
    bsntest::TempDir dir;
    std::string csv = "a_row_factor_with_a_long_name,col\n";
    for (int i = 0; i < 40; ++i)
        for (int j = 0; j < 40; ++j)
            if ((i * 7 + j * 3) % 5 != 0)
                csv += "category label number " + std::to_string(i) + ",c" + std::to_string(j) + "\n";
    const std::string data = dir.Write("big.csv", csv);
    const std::string settings = dir.Write(
        "big.json", R"({"ModelType": "LogLinear", "Factors": ["a_row_factor_with_a_long_name", "col"],
                        "AnalysType": "Bayes Factor"})");
    const auto r = RunCommandLine({"run", settings, data, "--plots", dir.Path("plots"), "-q"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(picture(dir.Path("plots"), "", 1).find(">1<"), std::string::npos);
}

} // namespace
