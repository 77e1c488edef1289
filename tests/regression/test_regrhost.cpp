// The host on the regression and ANOVA examples: the JSON record layouts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/cli/hostrun.h"

TEST(RegressionHost, ExamplesRunAndWriteTheJsonLayouts) {
    const auto keys = [](const nlohmann::ordered_json& o) {
        std::vector<std::string> k;
        for (auto it = o.begin(); it != o.end(); ++it) k.push_back(it.key());
        return k;
    };
    const std::vector<std::string> sumsOfSquares = {"ss", "df", "ms"};
    for (const std::string name : {"regression", "anova"}) {
        const std::string example = std::string(BSN_SOURCE_DIR) + "/examples/" + name;
        const auto run = bsntest::RunCommandLine({"run", example + ".json", example + ".csv", "--json", "-"});
        ASSERT_EQ(run.code, 0) << run.err;
        const auto doc = nlohmann::ordered_json::parse(run.out);
        const auto& r = doc["results"];
        ASSERT_TRUE(r.is_object()) << name;
        EXPECT_EQ(r["GetOutputType"], name == "regression" ? 6 : 7);
        const auto& a = r["GetAnova"];
        EXPECT_EQ(keys(a["regression"]), sumsOfSquares);
        EXPECT_EQ(keys(a["residual"]), sumsOfSquares);
        EXPECT_EQ(keys(a["total"]), (std::vector<std::string>{"ss", "df"}));
        EXPECT_TRUE(a["f"].is_number());
        EXPECT_TRUE(r["IsLogBayesFactor"].is_boolean());
        EXPECT_TRUE(r["GetLogBayesFactor"].is_number());
        EXPECT_EQ(keys(r["GetErrorBayesEstimation"]),
                  (std::vector<std::string>{"mode", "mean", "variance", "lower", "upper"}));
        EXPECT_EQ(r["GetVarCoeffBayesEstimations"].size(), r["GetRegrParameters"].size());
        if (name == "regression") {
            const auto& t = r["GetFTestResults"][0];
            EXPECT_EQ(keys(t), (std::vector<std::string>{"statistic", "df", "df2", "type", "sig", "label"}));
            EXPECT_EQ(t["label"], "dose slope = 2");
            EXPECT_EQ(r["GetParameterLabels"][0], "(Intercept)");
        }
    }
}
