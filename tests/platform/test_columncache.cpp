// The column cache of the CSV reader: passes read from memory give exactly
// the records a pass over the file gives, the budget is kept to the byte,
// and a scan stops when asked to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <fmt/format.h>

#include "platform/common/mcmv.h"
#include "platform/records/csvrecorditer.h"
#include "tests/cli/tempfiles.h"

using MCCommon_850::ColumnCache;
using MCCommon_850::CsvRecordIter;
using MCCommon_850::MCMV;

namespace {

using Rows = std::vector<std::vector<double>>;

Rows readPass(CsvRecordIter& iter) {
    Rows rows;
    iter.Reset();
    while (iter.Advance()) {
        const auto* r = iter.GetRecord();
        std::vector<double> row;
        for (std::size_t c = 0; c < r->Size(); ++c) row.push_back(r->GetValue(static_cast<int>(c)));
        rows.push_back(row);
    }
    return rows;
}

class CountingCancel : public MCCommon_850::MCQueryCancel {
public:
    explicit CountingCancel(int at) : m_at(at) {}
    bool IsCancel() const override { return ++m_calls >= m_at; }
    mutable int m_calls = 0;

private:
    int m_at;
};

} // namespace

TEST(ColumnCache, PassesFromMemoryMatchTheFileAndTheBudgetHolds) {
    bsntest::TempDir dir;
    // Two used numeric columns, one nominal column whose labels first appear
    // out of order (codes are assigned after the scan), one unused column.
    // One row more than a storage block, so that a budget of exactly one
    // block is not enough.
    const std::size_t nRows = ColumnCache::kBlockRows + 1;
    std::string csv = "a,skip,g,b\n";
    for (std::size_t i = 0; i < nRows; ++i) {
        const char* g[] = {"zeta", "10", "alpha", "", "2"};
        csv += fmt::format("{},{},{},{}\n", i % 7 == 0 ? std::string("NA") : fmt::format("{}.25", i), i, g[i % 5],
                           1e9 + static_cast<double>(i) * 1e-3);
    }
    const std::string path = dir.Write("d.csv", csv);
    const std::vector<int> used = {0, 2, 3}, nominal = {2};

    CsvRecordIter streamed(path, used, nominal);
    ASSERT_EQ(streamed.Scan().error, "");
    EXPECT_FALSE(streamed.IsHeldInMemory());
    const Rows expected = readPass(streamed);
    ASSERT_EQ(expected.size(), nRows);
    // Numbers sort before text: 2, 10, alpha, zeta.
    EXPECT_EQ(expected[0], (std::vector<double>{MCMV::Missing(), MCMV::Missing(), 3, 1e9}));
    EXPECT_EQ(expected[1][2], 1.0);
    EXPECT_EQ(expected[3][2], MCMV::Missing());
    EXPECT_EQ(expected[4][2], 0.0);

    const std::size_t oneBlock = ColumnCache::kBlockRows * sizeof(double) * used.size();
    struct Case {
        std::size_t budget;
        bool held;
    };
    for (const Case& c : {Case{oneBlock, false}, Case{2 * oneBlock - 1, false}, Case{2 * oneBlock, true},
                          Case{std::size_t{1} << 30, true}}) {
        CsvRecordIter iter(path, used, nominal);
        iter.SetMemoryBudget(c.budget);
        const auto scan = iter.Scan();
        ASSERT_EQ(scan.error, "");
        EXPECT_EQ(scan.nRecords, static_cast<long long>(nRows));
        EXPECT_EQ(iter.IsHeldInMemory(), c.held) << c.budget;
        // Two passes: the second must start again at the first row.
        EXPECT_EQ(readPass(iter), expected) << c.budget;
        EXPECT_EQ(readPass(iter), expected) << c.budget;
        EXPECT_EQ(iter.GetSourceError(), "");
    }

    // A file held in memory is not read again, so a change on disk after
    // the scan cannot mix two versions of the data in one analysis.
    CsvRecordIter held(path, used, nominal);
    held.SetMemoryBudget(std::size_t{1} << 30);
    ASSERT_EQ(held.Scan().error, "");
    dir.Write("d.csv", "a,skip,g,b\n1,2,3,4\n");
    EXPECT_EQ(readPass(held), expected);
}

TEST(ColumnCache, ScanStopsWhenCancelled) {
    bsntest::TempDir dir;
    std::string csv = "x\n";
    for (int i = 0; i < 1000; ++i) csv += "1\n";
    const std::string path = dir.Write("d.csv", csv);
    for (int at : {1, 2, 4}) {
        CsvRecordIter iter(path, {0});
        iter.SetMemoryBudget(std::size_t{1} << 20);
        CountingCancel cancel(at);
        const auto scan = iter.Scan(&cancel);
        EXPECT_TRUE(scan.cancelled) << at;
        EXPECT_EQ(scan.error, "");
        EXPECT_EQ(scan.nRecords, 256 * (at - 1)) << at;  // asked before each block of 256 rows
        EXPECT_FALSE(iter.IsHeldInMemory());
    }
    // Not cancelled: asked once per 256 rows, then the whole file is read.
    CsvRecordIter iter(path, {0});
    CountingCancel never(1000000);
    const auto scan = iter.Scan(&never);
    EXPECT_FALSE(scan.cancelled);
    EXPECT_EQ(scan.nRecords, 1000);
    EXPECT_EQ(never.m_calls, 4);
}
