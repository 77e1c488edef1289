#include <gtest/gtest.h>

#include <string>

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcstatus.h"

using MCCommon_850::MCStatus;
using MCBSN_850::BSNComponentDisplay;

TEST(MessageTable, JoinedLiteralsAndGaps) {
    const std::string same = "unchanged";
    std::string t6;
    BSNComponentDisplay::ParseErrCodeToStr(410006, t6);
    const std::pair<int, std::string> cases[] = {
        {410005, same}, {410061, same}, {1, same},  // unassigned codes leave the text alone
        {410055, "Warning: Bayes factor cannot be estimated because at least one component for the prior is too small."},
        {410042, "Warning: The number of valid cases in Bayesian Independent  analysis is not above 5 for each group "
                 "for Diffuse prior distribution"},
        {410025, t6},
        {410001, "Internal error"},
        {410060, "Error: The number of shape parameters in Loglinear model is wrong."},
    };
    for (const auto& [code, expected] : cases) {
        std::string text = same;
        BSNComponentDisplay::ParseErrCodeToStr(code, text);
        EXPECT_EQ(text, expected) << code;
    }
}

TEST(MCStatus, KindsAndSlots) {
    EXPECT_TRUE(MCStatus().IsOK());
    EXPECT_FALSE(MCStatus().IsError() || MCStatus().IsWarning());
    MCStatus err(410003, false), warn(410041, true);
    EXPECT_TRUE(err.IsError() && !err.IsWarning());
    EXPECT_TRUE(warn.IsWarning() && !warn.IsError());
    EXPECT_EQ(warn.GetDiscreteDatum(0), -1);
    warn.SetDiscreteDatum(99, 3);  // out of range: ignored
    EXPECT_FALSE(warn.HasDiscreteDatum(99));
    EXPECT_EQ(warn.GetDiscreteDatum(99), -1);
}
