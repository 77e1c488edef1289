// The classical tests of independence against R (chisq.test, loglm, fisher.test;
// tests/data/loglinear_reference.R), and Fisher's test at a total of 1e9 against 60-digit sums.
#include <gtest/gtest.h>

#include "bsn/loglinear/bsnloglinear.h"
#include "tests/loglinear/loglinear_test_support.h"

namespace {

using MCBSN_850::BSNLogLinear;
using namespace loglinear_test;

TEST(LogLinearTests, AgreeWithR) {
    const auto rows = ReadReference("classical.csv");
    ASSERT_GE(rows.size(), 15u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.Text("name"));
        const Matrix table = row.Table();
        Build b(Settings(table.size(), table[0].size()), table);
        ASSERT_TRUE(b.component.IsModelBuilt());
        const auto* r = b.Result();
        ASSERT_NE(r, nullptr);
        const auto& chi = r->GetChiSquareResult();
        const auto& lr = r->GetLikeRatioResult();
        // A statistic near 0 is a sum of terms near 1 that cancel: its accuracy is absolute.
        EXPECT_TRUE(Near(chi.GetWald(), row.Num("x2"), 1e-12, 1e-13));
        EXPECT_TRUE(Near(lr.GetWald(), row.Num("g2"), 1e-12, 1e-13));
        EXPECT_EQ(chi.GetDF(), row.Num("df"));
        EXPECT_EQ(lr.GetDF(), row.Num("df"));
        EXPECT_EQ(chi.GetTestType(), MCMath_850::MCTestStats::ChiSquare);
        EXPECT_TRUE(Near(chi.GetSig(), row.Num("sig_x2"), 1e-10));
        EXPECT_TRUE(Near(lr.GetSig(), row.Num("sig_g2"), 1e-10));
        const auto& cont = r->GetContCorrectResult();
        if (MCCommon_850::MCMV::IsMissing(row.Num("cont"))) {
            for (double v : {cont.GetWald(), r->GetFisher1SidedSig(), r->GetFisher2SidedSig()}) EXPECT_EQ(v, kMiss);
            continue;
        }
        EXPECT_TRUE(Near(cont.GetWald(), row.Num("cont"), 1e-12, 1e-14));
        EXPECT_EQ(cont.GetDF(), 1.0);
        EXPECT_TRUE(Near(cont.GetSig(), row.Num("sig_cont"), 1e-10));
        EXPECT_TRUE(Near(r->GetFisher1SidedSig(), row.Num("fisher1"), 1e-10));
        EXPECT_TRUE(Near(r->GetFisher2SidedSig(), row.Num("fisher2"), 1e-10));
    }
}

TEST(LogLinearTests, FisherIsOneForTheMostLikelyTableAndRoundsCountsHalfUp) {
    for (const Matrix& table : {Matrix{{5, 5}, {5, 5}}, Matrix{{3, 3}, {3, 3}}, Matrix{{4, 5}, {5, 6}},
                                Matrix{{0, 1}, {1, 0}}}) {
        Build b(Settings(2, 2), table);
        ASSERT_NE(b.Result(), nullptr);
        EXPECT_EQ(b.Result()->GetFisher2SidedSig(), 1.0) << table[0][0] << " " << table[0][1];
    }
    // The smaller of two cells with the larger one at its row and column limit: min(R, C) <= x.
    EXPECT_EQ(BSNLogLinear::FisherExact(0, 0, 3, 4, false)[1], 1.0);
    // 2.5 rounds to 3 (not to the even 2), 3.49 to 3, 7.5 to 8.
    const auto rounded = BSNLogLinear::FisherExact(3, 8, 8, 3, false);
    EXPECT_EQ(BSNLogLinear::FisherExact(3.49, 7.5, 8.2, 2.5, false), rounded);
    EXPECT_NE(BSNLogLinear::FisherExact(3, 8, 8, 2, false), rounded);
}

TEST(LogLinearTests, FisherAtTotalsOfABillion) {
    // Including a table whose mirror image has exactly the same probability
    // (it must count towards the two-sided value) and one whose one-sided
    // value is far below the smallest double's reach of 1e-300.
    const auto rows = ReadReference("fisher_large.csv");
    ASSERT_GE(rows.size(), 4u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.Text("table"));
        const Matrix t = row.Table();
        const bool positive = t[0][0] * t[1][1] - t[0][1] * t[1][0] > 0;
        const auto sig = BSNLogLinear::FisherExact(t[0][0], t[0][1], t[1][0], t[1][1], positive);
        EXPECT_TRUE(Near(sig[0], row.Num("fisher1"), 1e-10, 1e-300));
        EXPECT_TRUE(Near(sig[1], row.Num("fisher2"), 1e-10, 1e-300));
    }
}

} // namespace
