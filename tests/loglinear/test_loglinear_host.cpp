// The log-linear analysis from the command line: the example's tables and
// JSON, and the pictures written with --plots.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <tinyxml2.h>

#include "cli/host.h"
#include "tests/cli/tempfiles.h"
#include "tests/loglinear/loglinear_test_support.h"

namespace {

using json = nlohmann::json;
using namespace loglinear_test;

struct Outcome {
    int code;
    std::string out, err;
};

Outcome run(const std::vector<std::string>& args) {
    std::vector<const char*> argv{"bsn"};
    for (const auto& a : args) argv.push_back(a.c_str());
    std::ostringstream out, err;
    const int code = bsncli::Main(static_cast<int>(argv.size()), argv.data(), out, err);
    return {code, out.str(), err.str()};
}

std::string example(const std::string& name) { return std::string(BSN_SOURCE_DIR) + "/examples/" + name; }

// Every text of an SVG lies inside its width and height, judged by a
// generous 0.6 em per character (anchor and a -90° rotation respected).
void expectTextInside(const std::string& svg) {
    tinyxml2::XMLDocument doc;
    ASSERT_EQ(doc.Parse(svg.c_str()), tinyxml2::XML_SUCCESS);
    const tinyxml2::XMLElement* root = doc.FirstChildElement("svg");
    ASSERT_NE(root, nullptr);
    const double width = root->DoubleAttribute("width"), height = root->DoubleAttribute("height");
    int texts = 0;
    for (const auto* t = root->FirstChildElement("text"); t != nullptr; t = t->NextSiblingElement("text"), ++texts) {
        const std::string text = t->GetText() != nullptr ? t->GetText() : "";
        const double x = t->DoubleAttribute("x"), y = t->DoubleAttribute("y");
        const double size = t->DoubleAttribute("font-size", 12.0);
        const double length = 0.6 * size * static_cast<double>(text.size());
        const std::string anchor = t->Attribute("text-anchor") != nullptr ? t->Attribute("text-anchor") : "start";
        const bool rotated = t->Attribute("transform") != nullptr;
        double x0 = x, x1 = x + length, y0 = y - size, y1 = y;
        if (anchor == "end") x0 = x - length, x1 = x;
        if (anchor == "middle") x0 = x - length / 2, x1 = x + length / 2;
        if (rotated) x0 = x - size, x1 = x, y0 = y - length, y1 = y;
        EXPECT_GE(x0, 0.0) << text;
        EXPECT_LE(x1, width) << text;
        EXPECT_GE(y0, 0.0) << text;
        EXPECT_LE(y1, height) << text;
    }
    EXPECT_GT(texts, 0);
}

TEST(LogLinearHost, ExampleTablesAndJson) {
    const Outcome r = run({"run", example("loglinear.json"), example("loglinear.csv"), "--json", "-"});
    ASSERT_EQ(r.code, 0) << r.err;
    const json doc = json::parse(r.out);
    const json& res = doc["results"];
    EXPECT_EQ(res["GetModelType"], 6);
    EXPECT_EQ(res["GetOutputType"], 8);
    // Labels sort: treatment new, placebo, standard; outcome better, same,
    // worse. The record with no treatment and the one with no weight are
    // left out.
    EXPECT_EQ(res["GetContingencyMatrix"]["GetAllCounts"], json::parse("[[34,9,5],[13,24,20],[25,23,11]]"));
    EXPECT_EQ(res["GetContingencyMatrix"]["GetTotalWeight"], 164);
    const json& chi = res["GetChiSquareResult"];
    std::vector<std::string> keys;
    for (auto it = chi.begin(); it != chi.end(); ++it) keys.push_back(it.key());
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys, (std::vector<std::string>{"df", "df2", "sig", "statistic", "type"}));
    EXPECT_TRUE(chi["df2"].is_null());
    EXPECT_EQ(chi["type"], 2);
    EXPECT_EQ(chi["df"], 4);
    // Against R's chisq.test of the same table (tests/data/loglinear/classical.csv).
    for (const Row& row : ReadReference("classical.csv")) {
        if (row.Text("name") == "table3x3") {
            EXPECT_TRUE(Near(chi["statistic"].get<double>(), row.Num("x2"), 1e-12));
        }
    }
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
    EXPECT_EQ(res["GetPlotArguments4Posterior"].size(), 4u);  // MaxNPlots in the example
    EXPECT_EQ(doc["warnings"].size(), 0u);

    const Outcome tables = run({"run", example("loglinear.json"), example("loglinear.csv")});
    ASSERT_EQ(tables.code, 0);
    for (const char* title : {"Contingency table: treatment (rows) by outcome (columns)", "Expected counts",
                              "Tests of independence", "Bayes factor for independence",
                              "Posterior of the log odds ratio of pairs of categories", "new / placebo",
                              "2 record(s) with a missing factor value or weight were left out"})
        EXPECT_NE(tables.out.find(title), std::string::npos) << title;
}

TEST(LogLinearHost, PlotsWriteTheTableAndTheDensities) {
    bsntest::TempDir dir;
    const Outcome r = run({"run", example("loglinear.json"), example("loglinear.csv"), "--plots", dir.Path("plots"), "-q"});
    ASSERT_EQ(r.code, 0) << r.err;
    int svgs = 0;
    std::string heatMap;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path("plots"))) {
        ++svgs;
        if (entry.path().filename().string().rfind("table", 0) == 0)
            heatMap = bsntest::TempDir::Read(entry.path().string());
    }
    EXPECT_EQ(svgs, 5);  // the table and four pairs
    ASSERT_FALSE(heatMap.empty());
    expectTextInside(heatMap);
    EXPECT_NE(heatMap.find(">34<"), std::string::npos);  // counts written in the cells
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
    const Outcome r = run({"run", settings, data, "--plots", dir.Path("plots"), "-q"});
    ASSERT_EQ(r.code, 0) << r.err;
    std::string heatMap;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path("plots")))
        heatMap = bsntest::TempDir::Read(entry.path().string());
    expectTextInside(heatMap);
    EXPECT_EQ(heatMap.find(">1<"), std::string::npos);
}

TEST(LogLinearHost, HelpSaysWhatIsLeftOut) {
    const Outcome r = run({"run", "--help"});
    EXPECT_NE(r.out.find("missing factor value or weight"), std::string::npos);
}

} // namespace
