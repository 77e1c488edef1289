#include <gtest/gtest.h>

#include <string>

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcstatus.h"

using MCCommon_850::MCStatus;
using MCBSN_850::BSNComponentDisplay;

TEST(MessageTable, JoinedLiteralsAndGaps) {
    std::string text = "unchanged";
    BSNComponentDisplay::ParseErrCodeToStr(410005, text);
    EXPECT_EQ(text, "unchanged");
    BSNComponentDisplay::ParseErrCodeToStr(410061, text);
    EXPECT_EQ(text, "unchanged");
    BSNComponentDisplay::ParseErrCodeToStr(1, text);
    EXPECT_EQ(text, "unchanged");

    BSNComponentDisplay::ParseErrCodeToStr(410055, text);
    EXPECT_EQ(text, "Warning: Bayes factor cannot be estimated because at least one component for the prior is too small.");
    BSNComponentDisplay::ParseErrCodeToStr(410042, text);
    EXPECT_EQ(text, "Warning: The number of valid cases in Bayesian Independent  analysis is not above 5 for each group "
                    "for Diffuse prior distribution");
    BSNComponentDisplay::ParseErrCodeToStr(410025, text);
    std::string t6;
    BSNComponentDisplay::ParseErrCodeToStr(410006, t6);
    EXPECT_EQ(text, t6);
    BSNComponentDisplay::ParseErrCodeToStr(410001, text);
    EXPECT_EQ(text, "Internal error");
    BSNComponentDisplay::ParseErrCodeToStr(410060, text);
    EXPECT_EQ(text, "Error: The number of shape parameters in Loglinear model is wrong.");
}

TEST(MCStatus, KindsAndSlots) {
    MCStatus ok;
    EXPECT_TRUE(ok.IsOK());
    EXPECT_FALSE(ok.IsError());
    EXPECT_FALSE(ok.IsWarning());
    MCStatus err(410003, false), warn(410041, true);
    EXPECT_TRUE(err.IsError());
    EXPECT_FALSE(err.IsWarning());
    EXPECT_TRUE(warn.IsWarning());
    EXPECT_FALSE(warn.IsError());
    EXPECT_EQ(warn.GetDiscreteDatum(0), -1);
    warn.SetDiscreteDatum(0, 7);
    warn.SetScaleDatum(0, 1.5);
    warn.SetDiscreteDatum(99, 3);  // out of range: ignored
    EXPECT_EQ(warn.GetDiscreteDatum(0), 7);
    EXPECT_DOUBLE_EQ(warn.GetScaleDatum(0), 1.5);
    EXPECT_FALSE(warn.HasDiscreteDatum(99));
}
