#include <gtest/gtest.h>

#include <vector>

#include "bsn/onesample/bsn1samplenormalutils.h"
#include "platform/common/mcmv.h"
#include "platform/records/record.h"

using MCBSN_850::BSN1SampleNormalUtils;
using MCCommon_850::MCMV;
using MCCommon_850::Record;

TEST(BSN1SampleNormalUtils, WeightRoundsHalfUpAndDropsSmallOnes) {
    const std::vector<std::pair<double, double>> cases = {
        {2.4, 2.0}, {2.5, 3.0}, {0.49, 0.0}, {0.5, 1.0}, {-3.0, 0.0}, {MCMV::Missing(), 0.0}, {1e9 + 0.4, 1e9}};
    for (const auto& [value, expected] : cases) {
        const double row[2] = {7.0, value};
        Record r(row, 2);
        EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(1, r), expected) << value;
    }
    const double row[1] = {3.0};
    EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(5, Record(row, 1)), 0.0);  // field outside the record
}

TEST(BSN1SampleNormalUtils, CredibleIntervals) {
    // Student t 0.975 quantile with 10 df, and the normal 0.975 and 0.995 quantiles.
    const double t975_10 = 2.2281388519862747;
    const double z975 = 1.959963984540054, z995 = 2.5758293035489008;
    double lo = 0.0, hi = 0.0;
    ASSERT_TRUE(BSN1SampleNormalUtils::ComputeCIT(0.05, 3.0, 4.0, 10.0, lo, hi));
    EXPECT_NEAR(lo, 3.0 - 2.0 * t975_10, 1e-10);
    EXPECT_NEAR(hi, 3.0 + 2.0 * t975_10, 1e-10);

    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCIT(0.05, 3.0, 4.0, 0.0, lo, hi));  // no t with 0 df
    EXPECT_TRUE(MCMV::IsMissing(lo));
    EXPECT_TRUE(MCMV::IsMissing(hi));
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCIT(0.05, 3.0, 4.0, MCMV::Missing(), lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo));

    ASSERT_TRUE(BSN1SampleNormalUtils::ComputeCINormal(0.05, -1.0, 0.25, lo, hi));
    EXPECT_NEAR(lo, -1.0 - 0.5 * z975, 1e-10);
    EXPECT_NEAR(hi, -1.0 + 0.5 * z975, 1e-10);
    ASSERT_TRUE(BSN1SampleNormalUtils::ComputeCINormal(0.01, 10.0, 9.0, lo, hi));
    EXPECT_NEAR(lo, 10.0 - 3.0 * z995, 1e-10);
    EXPECT_NEAR(hi, 10.0 + 3.0 * z995, 1e-10);
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCINormal(0.05, 1.0, MCMV::Missing(), lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo));
    EXPECT_TRUE(MCMV::IsMissing(hi));
}
