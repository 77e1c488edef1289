#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/dist/mclgamma.h"
#include "tests/onesample/extremedata.h"

using MCCommon_850::MCMV;
using MCMath_850::MCLogGamma;
using extremedata::err;
using extremedata::num;

// Against 40-digit values for arguments 0.5 to 1e12, including differences that separate
// log-gamma values (about 3e13) would leave without a correct digit.
TEST(MCLogGamma, MatchesHighPrecisionValues) {
    const auto rows = extremedata::read("extreme_lgamma.csv");
    ASSERT_GT(rows.size(), 70u);
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << r[0] << " " << r[1] << " " << r[2] << " " << r[3] << " " << r[4] << " "
                                        << r[5] << " " << r[6]);
        const double p[] = {num(r[1]), num(r[2]), num(r[3]), num(r[4]), num(r[5]), num(r[6])};
        double ours = MCMV::Missing();
        if (r[0] == "diff") ours = MCLogGamma::Diff(p[0], p[1], p[2]);
        if (r[0] == "logbeta") ours = MCLogGamma::LogBeta(p[0], p[1]);
        if (r[0] == "betadiff") ours = MCLogGamma::BetaDiff(p[0], p[1], p[2], p[3], p[4], p[5]);
        if (r[0] == "betadelta") ours = MCLogGamma::BetaDelta(p[0], p[1], p[2], p[3]);
        if (r[0] == "betapdf") ours = MCLogGamma::LogBetaPdf(p[0], p[1], p[2]);
        const double exact = num(r[7]);
        EXPECT_LT(err(ours, exact), 4e-14) << ours << " vs " << exact;
    }
}

TEST(MCLogGamma, VectorSumsOverTableCells) {
    // ln B(a + x) - ln B(a) with 1e12 counts, and the ratio of two priors on the
    // same counts: exact although each side is about -1.5e12.
    const auto rows = extremedata::read("extreme_multibeta.csv");
    ASSERT_EQ(rows.size(), 3u);
    for (const auto& r : rows) {
        const std::vector<double> a = extremedata::nums(r[1]), a2 = extremedata::nums(r[2]);
        const std::vector<double> x = extremedata::nums(r[3]);
        const double ours = r[0] == "delta" ? MCLogGamma::MultiBetaDelta(a, x) : MCLogGamma::MultiBetaDiff(x, a, a2);
        EXPECT_LT(err(ours, num(r[4])), 1e-14) << r[0] << " " << r[1];
    }
    // Cell by cell with DiffSum: entries with a non-positive argument drop out.
    EXPECT_NEAR(MCLogGamma::DiffSum({5.0, 1e11, 0.0}, {1.0, 2.0, 0.0}, {0.5, 1.0, 1.0}),
                MCLogGamma::Diff(5.0, 1.0, 0.5) + MCLogGamma::Diff(1e11, 2.0, 1.0), 1e-12);
    EXPECT_NEAR(MCLogGamma::LogMultiBeta({2.0, 3.0, 0.0, -1.0}), std::lgamma(2.0) + std::lgamma(3.0) - std::lgamma(5.0),
                1e-14);
}

TEST(MCLogGamma, DomainGivesMissing) {
    const double miss = MCMV::Missing();
    EXPECT_EQ(MCLogGamma::Diff(3.0, 1.0, 1.0), 0.0);
    for (double v : {MCLogGamma::Diff(0.0, 0.0, 1.0), MCLogGamma::Diff(5.0, -6.0, 0.0), MCLogGamma::Diff(miss, 1.0, 0.0),
                     MCLogGamma::LogBeta(0.0, 1.0), MCLogGamma::LogBeta(1.0, miss), MCLogGamma::LogBetaPdf(0.0, 2.0, 2.0),
                     MCLogGamma::LogBetaPdf(1.0, 2.0, 2.0), MCLogGamma::LogBetaPdf(0.5, -1.0, 2.0),
                     MCLogGamma::BetaDiff(0.0, 5.0, 1.0, 1.0, 0.0, 1.0), MCLogGamma::DiffSum({1.0}, {1.0, 2.0}, {0.0}),
                     MCLogGamma::MultiBetaDelta({0.0, 0.0}, {0.0, 0.0}), MCLogGamma::MultiBetaDiff({1.0}, {miss}, {1.0}),
                     MCLogGamma::LogMultiBeta({0.0, -2.0})})
        EXPECT_TRUE(MCMV::IsMissing(v)) << v;
}
