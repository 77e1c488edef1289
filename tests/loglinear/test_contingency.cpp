// Counting records into the table, the margins and expected counts, and the build's handling of
// tables with one category, no weight and bad records.
#include <gtest/gtest.h>

#include <memory>

#include "bsn/loglinear/bsncontingency.h"
#include "tests/loglinear/loglinear_test_support.h"

namespace {

using MCBSN_850::BSNContingency;
using MCBSN_850::BSNSettings;
using namespace loglinear_test;

using Reports = bsntest::RecordCounts;
using bsntest::CancelAfter;

TEST(Contingency, CountsWeightsAsTheyStandAndLeavesOutBadRecords) {
    // row, column, weight
    const std::vector<std::vector<double>> cols = {
        {0, 0, 1.7, 1, 2, kMiss, 0, 1, -1, 3, 2, 0},
        {0, 1, 0, 2.9, 2, 1, kMiss, 1, 0, 0, 1, 2},
        {0.5, 2.25, 3, 1, 4, 1, 1, kMiss, 1, 1, -2, 0}};
    MCCommon_850::ColumnRecordIter iter(cols);
    BSNContingency t({0, 1}, {3, 3}, 2, MCMath_850::MCCancelInfo());
    const auto status = t.BuildModel(iter, nullptr, 50);
    EXPECT_TRUE(status.IsOK());
    // Codes truncate (1.7 -> 1, 2.9 -> 2); weights stay fractional; the
    // zero weight is a record of weight 0, not a dropped one.
    const Matrix expect = {{0.5, 2.25, 0}, {3, 0, 1}, {0, 0, 4}};
    EXPECT_EQ(t.GetAllCounts(), expect);
    EXPECT_EQ(t.GetTotalWeight(), 10.75);
    EXPECT_EQ(t.GetRowTotals(), (std::vector<double>{2.75, 4, 4}));
    EXPECT_EQ(t.GetColTotals(), (std::vector<double>{3.5, 2.25, 5}));
    EXPECT_EQ(t.GetNRecords(), 12);
    EXPECT_EQ(t.GetNMissingRecords(), 3);  // missing row, column, weight
    EXPECT_EQ(t.GetNInvalidRecords(), 3);  // row -1, row 3, weight -2

    // Through the component: the invalid records are one warning with their count.
    BSNSettings s = Settings(3, 3);
    Build b(s, Columns{cols});
    EXPECT_TRUE(b.component.IsModelBuilt());
    ASSERT_EQ(b.WarningCodes(), std::vector<int>{420040});
    EXPECT_EQ(b.component.GetWarningMessages().Get(0).GetDiscreteDatum(0), 3);
    EXPECT_EQ(b.Result()->GetContingencyMatrix().GetAllCounts(), expect);
}

TEST(Contingency, ExpectedCountsAndNonEmptyCategories) {
    const BSNContingency t(Matrix{{4, 0, 6, 0}, {0, 0, 0, 0}, {2, 0, 18, 0}});
    EXPECT_TRUE(t.GetStatus().IsOK());
    EXPECT_EQ(t.GetNonEmptyRows(), (std::vector<int>{0, 2}));
    EXPECT_EQ(t.GetNonEmptyCols(), (std::vector<int>{0, 2}));
    const Matrix e = t.GetExpectedCounts();
    EXPECT_DOUBLE_EQ(e[0][0], 10.0 * 6 / 30);
    EXPECT_DOUBLE_EQ(e[2][2], 20.0 * 24 / 30);
    EXPECT_EQ(e[1], (std::vector<double>{0, 0, 0, 0}));
    // Cells 0 < E < 5 of non-empty rows: E[0][0] = 2 and E[2][0] = 4; the
    // empty columns' zero expected counts pull the minimum to 0.
    EXPECT_EQ(t.GetNCellsExpLess5(), 2);
    EXPECT_EQ(t.GetMinExpectedCount(), 0.0);
    EXPECT_DOUBLE_EQ(t.GetPctCellsExpLess5(), 100.0 * 2 / 4);
}

// An empty row or column takes a category out of the degrees of freedom; one category left keeps
// the table without tests, with 410051 (rows) or 410052 (columns).
TEST(Contingency, EmptyRowsAndColumnsLeaveTheTests) {
    struct Case { Matrix table; double df; int warning; };
    const Case cases[] = {{{{10, 4, 6}, {0, 0, 0}, {3, 9, 8}}, 2, 0}, {{{10, 0, 6}, {5, 0, 9}, {3, 0, 8}}, 2, 0},
                          {{{10, 4, 6}, {0, 0, 0}, {0, 0, 0}, {3, 9, 8}}, 2, 0},
                          {{{10, 4, 6, 1}, {2, 7, 3, 5}, {3, 9, 8, 4}}, 6, 0}, {{{3, 4}, {0, 0}}, 0, 410051},
                          {{{3, 0}, {5, 0}}, 0, 410052}, {{{3, 0}, {0, 0}}, 0, 410051}};
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.table));
        Build b(Settings(c.table.size(), c.table[0].size()), c.table);
        EXPECT_TRUE(b.status.IsOK());
        EXPECT_EQ(b.WarningCodes(), c.warning != 0 ? std::vector<int>{c.warning} : std::vector<int>{});
        ASSERT_NE(b.Result(), nullptr);
        const auto& r = *b.Result();
        EXPECT_EQ(r.GetContingencyMatrix().GetAllCounts(), c.table);
        if (c.warning == 0) {
            EXPECT_EQ(r.GetChiSquareResult().GetDF(), c.df);
            EXPECT_EQ(r.GetLikeRatioResult().GetDF(), c.df);
            continue;
        }
        for (double v : {r.GetChiSquareResult().GetWald(), r.GetFisher2SidedSig(), r.GetBayesFactor()})
            EXPECT_EQ(v, kMiss);
        EXPECT_TRUE(r.GetPosteriorEstimations().empty());
    }
}

TEST(Contingency, ProgressAndTheBuildsThatEndWithoutATable) {
    for (const auto& [records, expected] : std::vector<std::pair<int, std::vector<int>>>{
             {7, {3, 6, 7}}, {6, {3, 6}}, {2, {2}}}) {
        std::vector<std::vector<double>> cols(3);
        for (int k = 0; k < records; ++k) {
            cols[0].push_back(k % 2);
            cols[1].push_back((k / 2) % 2);
            cols[2].push_back(1);
        }
        Reports reports;
        BSNSettings s = Settings(2, 2);
        s.SetProgressFrequency(3);
        s.SetProgressListener(&reports);
        Build b(s, Columns{cols});
        EXPECT_EQ(reports.counts, expected) << records;
    }
    // A cancellation seen while counting ends the build with status 1; no
    // weight at all, or no record, is no valid case.
    CancelAfter cancel(2);
    BSNSettings s = Settings(2, 2);
    s.SetCancelPointer(&cancel);
    const std::pair<std::unique_ptr<Build>, int> builds[] = {
        {std::make_unique<Build>(s, Matrix{{5, 3}, {2, 8}}), 1},
        {std::make_unique<Build>(Settings(2, 2), Matrix{{0, 0}, {0, 0}}), 410003},
        {std::make_unique<Build>(Settings(2, 2), Columns{{{}, {}, {}}}), 410003}};
    for (const auto& [b, code] : builds) {
        EXPECT_EQ(b->status.GetCode(), code);
        EXPECT_TRUE(b->status.IsError());
        EXPECT_EQ(b->Result(), nullptr);
        EXPECT_FALSE(b->component.IsModelBuilt());
    }
}

TEST(Contingency, InformationAndPearsonAtLargeTotals) {
    // Σ O ln(O N/(r c)) and Σ (O - E)²/E of tables of totals 1e9 and 1e12, against 60-digit values:
    // the exact cross differences keep each cell's term accurate to itself.
    const auto rows = ReadReference("tests_large.csv");
    ASSERT_GE(rows.size(), 4u);
    for (const Row& row : rows) {
        const BSNContingency t(row.Table());
        EXPECT_TRUE(Near(2 * t.ComputeInformation(), row.Num("g2"), 1e-12)) << row.Text("table");
        EXPECT_TRUE(Near(t.ComputePearson(), row.Num("x2"), 1e-12)) << row.Text("table");
    }
}

} // namespace
