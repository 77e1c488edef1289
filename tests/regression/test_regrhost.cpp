// The host on the regression and ANOVA examples: the JSON record layouts.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/host.h"

TEST(RegressionHost, ExamplesRunAndWriteTheJsonLayouts) {
    const auto keys = [](const nlohmann::ordered_json& o) {
        std::vector<std::string> k;
        for (auto it = o.begin(); it != o.end(); ++it) k.push_back(it.key());
        return k;
    };
    for (const std::string name : {"regression", "anova"}) {
        const std::string dir = std::string(BSN_SOURCE_DIR) + "/examples/";
        const std::string settings = dir + name + ".json", data = dir + name + ".csv";
        std::vector<const char*> argv = {"bsn", "run", settings.c_str(), data.c_str(), "--json", "-"};
        std::ostringstream out, err;
        ASSERT_EQ(bsncli::Main(static_cast<int>(argv.size()), argv.data(), out, err), 0) << err.str();
        const auto doc = nlohmann::ordered_json::parse(out.str());
        const auto& r = doc["results"];
        ASSERT_TRUE(r.is_object()) << name;
        EXPECT_EQ(r["GetOutputType"], name == "regression" ? 6 : 7);
        const auto& a = r["GetAnova"];
        EXPECT_EQ(keys(a["regression"]), (std::vector<std::string>{"ss", "df", "ms"}));
        EXPECT_EQ(keys(a["residual"]), (std::vector<std::string>{"ss", "df", "ms"}));
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
