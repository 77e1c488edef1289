// The CSV reader: numbers, quoting, errors, nominal codes, rereading, and the in-memory column cache.
#include <gtest/gtest.h>

#include <charconv>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "platform/common/mcmv.h"
#include "platform/records/csvrecorditer.h"
#include "tests/cli/tempfiles.h"

using MCCommon_850::ColumnCache;
using MCCommon_850::CsvParseNumber;
using MCCommon_850::CsvRecordIter;
using MCCommon_850::CsvScanResult;
using MCCommon_850::MCMV;

namespace {

double reference(const std::string& text) {
    double v = 0.0;
    const char* first = text.data();
    if (*first == '+') ++first;
    std::from_chars(first, text.data() + text.size(), v);
    return v;
}

bool sameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

using Rows = std::vector<std::vector<double>>;
constexpr double M = MCMV::Missing();

// One pass from the start, every column of every row.
Rows readPass(CsvRecordIter& iter) {
    Rows rows;
    iter.Reset();
    while (iter.Advance()) {
        const auto* r = iter.GetRecord();
        EXPECT_NE(r, nullptr);
        if (r == nullptr) break;
        std::vector<double> row;
        for (std::size_t c = 0; c < r->Size(); ++c) row.push_back(r->GetValue(static_cast<int>(c)));
        rows.push_back(row);
    }
    EXPECT_EQ(iter.GetRecord(), nullptr);
    return rows;
}

// Quoted commas, doubled quotes, quoted line break, CRLF, lone CR, blank line,
// spaces, a missing marker, no final line end, behind a byte-order mark.
const std::string kTricky = "\xEF\xBB\xBF" "id,name,x\r\n1,\"a, b\",2.5\r\n2,\"say \"\"hi\"\"\",-3e2\r\n"
                            "3,\"two\r\nlines\",  7 \r\r\n4 , plain ,.\n5,\"\"\"\",1e-3";

const Rows kTrickyRows = {{1, 1, 2.5}, {2, 3, -300}, {3, 4, 7}, {4, 2, M}, {5, 0, 0.001}};
const std::vector<std::string> kTrickyLabels = {"\"", "a, b", "plain", "say \"hi\"", "two\r\nlines"};

struct CountingCancel : MCCommon_850::MCQueryCancel {
    explicit CountingCancel(int at) : at(at) {}
    bool IsCancel() const override { return ++calls >= at; }
    int at;
    mutable int calls = 0;
};

} // namespace

TEST(CsvRecordIter, QuotingLineEndsAndByteOrderMark) {
    bsntest::TempDir dir;
    const std::string path = dir.Write("tricky.csv", kTricky);

    std::vector<std::string> names;
    EXPECT_EQ(MCCommon_850::ReadCsvHeader(path, names), "");
    EXPECT_EQ(names, (std::vector<std::string>{"id", "name", "x"}));

    CsvRecordIter iter(path, {0, 1, 2}, {1});
    ASSERT_EQ(iter.GetOpenError(), "");
    const CsvScanResult scan = iter.Scan();
    ASSERT_EQ(scan.error, "");
    EXPECT_EQ(scan.nRecords, 5);
    EXPECT_EQ(scan.labels[1], kTrickyLabels);
    EXPECT_TRUE(scan.labels[0].empty());
    EXPECT_EQ(scan.minimum, (std::vector<double>{1, M, -300}));  // nominal: no numeric range
    EXPECT_EQ(scan.maximum, (std::vector<double>{5, M, 7}));

    EXPECT_EQ(readPass(iter), kTrickyRows);
    EXPECT_EQ(iter.GetSourceError(), "");

    // Rows split at every byte position by tiny read buffers read the same.
    for (std::size_t size = 1; size <= 48; ++size) {
        CsvRecordIter small(path, {0, 1, 2}, {1});
        small.SetReadBufferSize(size);
        ASSERT_EQ(small.Scan().error, "") << "buffer " << size;
        EXPECT_EQ(small.GetLabels(1), kTrickyLabels) << "buffer " << size;
        EXPECT_EQ(readPass(small), kTrickyRows) << "buffer " << size;
    }
}

// Missing: empty, NA, ".", "" and an unused text column (an index past the header is ignored). Nominal
// codes: numbers by value, then text ("1.0" and "1" one category, shown as first spelled). A pass without
// a scan runs it first (nominal codes need it).
TEST(CsvRecordIter, MissingMarkersAndNominalCodes) {
    struct Case {
        const char* content; std::vector<int> used, nominal; bool scan; Rows rows; std::vector<std::string> labels;
    };
    const Case cases[] = {
        {"v,w,u\n,1,x\nNA,2,y\n.,3,\n\"\",4,z\n 5 ,\"6\",q\n+7,NA,r\n", {0, 1, 9}, {}, true,
         {{M, 1, M}, {M, 2, M}, {M, 3, M}, {M, 4, M}, {5, 6, M}, {7, M, M}}, {}},
        {"f,y\nb,1\na,2\n10,3\n9,4\n2.5,5\n1.0,6\n1,7\na,8\nNA,9\nB,10\n", {0, 1}, {0}, true,
         {{6, 1}, {5, 2}, {3, 3}, {2, 4}, {1, 5}, {0, 6}, {0, 7}, {5, 8}, {M, 9}, {4, 10}},
         {"1.0", "2.5", "9", "10", "B", "a", "b"}},
        {"g\nz\ny\n", {0}, {0}, false, {{1}, {0}}, {"y", "z"}},
    };
    bsntest::TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.content);
        CsvRecordIter iter(dir.Write("t.csv", c.content), c.used, c.nominal);
        if (c.scan) {
            ASSERT_EQ(iter.Scan().error, "");
        }
        EXPECT_EQ(readPass(iter), c.rows);
        EXPECT_EQ(iter.GetLabels(c.used[0]), c.labels);
    }
}

TEST(CsvRecordIter, ErrorsNameFileLineAndColumn) {
    bsntest::TempDir dir;
    auto scanError = [&](const std::string& content, std::vector<int> used = {0, 1}) {
        const std::string path = dir.Write("e.csv", content);
        CsvRecordIter iter(path, used);
        const std::string error = iter.Scan().error;
        EXPECT_EQ(iter.GetSourceError(), error);
        // A file that failed its scan yields no records at all.
        iter.Reset();
        EXPECT_EQ(iter.Advance(), error.empty());
        return error.substr(error.find(':') == std::string::npos ? 0 : path.size());
    };

    // The line count includes the line breaks inside quoted fields (LF and CRLF).
    EXPECT_EQ(scanError("a,b\n1,\"x\ny\"\n2,\"p\r\nq\nr\"\noops,3\n", {0}), ":7: column 'a': 'oops' is not a number");
    EXPECT_EQ(scanError("a,b\n1,2\n3,\"4 x\"\n"), ":3: column 'b': '4 x' is not a number");
    EXPECT_EQ(scanError("a,b\n1,2\n3\n"), ":3: expected 2 fields, found 1");
    EXPECT_EQ(scanError("a,b\n1,2,\n"), ":2: expected 2 fields, found 3");
    EXPECT_EQ(scanError("a,b\n1,2\n\n\n1,2,3,4\n"), ":5: expected 2 fields, found 4");
    EXPECT_EQ(scanError("a,b\n1,\"open\n"), ":2: a quoted field is not closed before the end of the file");
    EXPECT_EQ(scanError("a,b\n\"1\"x,2\n"), ":2: unexpected text after a closing quote: 'x'");
    // A bad value in a column the analysis does not use is not an error.
    EXPECT_EQ(scanError("a,b\n1,text\n", {0}), "");
}

TEST(CsvRecordIter, EmptyFilesAndFilesChangedBetweenPasses) {
    bsntest::TempDir dir;
    std::vector<std::string> names;
    EXPECT_NE(MCCommon_850::ReadCsvHeader(dir.Write("dup.csv", "a,b,a\n"), names).find("'a' appears twice"),
              std::string::npos);

    CsvRecordIter empty(dir.Write("empty.csv", ""), {0});
    EXPECT_NE(empty.GetOpenError(), "");
    empty.Reset();
    EXPECT_FALSE(empty.Advance());
    EXPECT_NE(empty.GetSourceError(), "");

    // A header alone is a valid file without records.
    CsvRecordIter headerOnly(dir.Write("h.csv", "\xEF\xBB\xBF" "a,b"), {0, 1});
    EXPECT_EQ(headerOnly.GetColumnNames(), (std::vector<std::string>{"a", "b"}));
    const CsvScanResult scan = headerOnly.Scan();
    EXPECT_EQ(scan.error, "");
    EXPECT_EQ(scan.nRecords, 0);
    EXPECT_FALSE(MCCommon_850::HasAnyRecord(headerOnly));
    EXPECT_EQ(headerOnly.GetSourceError(), "");

    // A file rewritten after the scan is noticed, and the failure stays.
    const std::string path = dir.Write("c.csv", "a\n1\n2\n");
    CsvRecordIter iter(path, {0});
    ASSERT_EQ(iter.Scan().error, "");
    EXPECT_EQ(readPass(iter), (Rows{{1}, {2}}));
    dir.Write("c.csv", "a\n1\n2\n3\n");
    EXPECT_TRUE(readPass(iter).empty());
    EXPECT_NE(iter.GetSourceError().find("changed"), std::string::npos);
    EXPECT_TRUE(readPass(iter).empty());

}

// Short plain decimals take a fast path, bit-identical to the general one around the 15-digit handover.
TEST(CsvNumbers, FastPathIsBitIdenticalToGeneralConversion) {
    // Inexact decimals, signs and zeros, then random ones.
    std::vector<std::string> texts = {"0.1", "0.3", "2.675", "-0.0", "0", "+7.25", "123456789012345", "1234567890123456",
                                      "0.000000000000001", "9007199254740993", ".5", "5.", "-.25"};
    std::mt19937_64 gen(7);
    for (int trial = 0; trial < 200000; ++trial) {
        const int intDigits = static_cast<int>(gen() % 10), fracDigits = static_cast<int>(gen() % 10);
        if (intDigits + fracDigits == 0) continue;
        std::string& text = texts.emplace_back(gen() % 3 == 0 ? "-" : "");
        for (int i = 0; i < intDigits; ++i) text += static_cast<char>('0' + gen() % 10);
        if (fracDigits > 0 || gen() % 5 == 0) text += '.';
        for (int i = 0; i < fracDigits; ++i) text += static_cast<char>('0' + gen() % 10);
    }
    for (const std::string& text : texts) {
        double parsed = 0.0;
        ASSERT_TRUE(CsvParseNumber(text, parsed)) << text;
        ASSERT_TRUE(sameBits(parsed, reference(text))) << text << " gave " << parsed;
    }
    // Not numbers, for either path; no NaN or infinity.
    double parsed = 0.0;
    for (const char* text : {"-", "+", "1.2.3", "1-2", "--1", "+-1", "1e", "1,5", "abc", "0x10", "nan", "inf", "-inf",
                             "1e999"})
        EXPECT_FALSE(CsvParseNumber(text, parsed)) << text;
    // Exponents and surrounding white space take the general path; NA is missing.
    ASSERT_TRUE(CsvParseNumber("\t-0.125e1 ", parsed));
    EXPECT_EQ(parsed, -1.25);
    ASSERT_TRUE(CsvParseNumber("NA", parsed));
    EXPECT_TRUE(MCMV::IsMissing(parsed));
}

TEST(ColumnCache, PassesFromMemoryMatchTheFileAndTheBudgetHolds) {
    bsntest::TempDir dir;
    // A nominal column whose labels appear out of order, an unused column, and
    // one row more than a storage block (a one-block budget is not enough).
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
    EXPECT_TRUE(MCCommon_850::HasAnyRecord(streamed));
    const Rows expected = readPass(streamed);
    ASSERT_EQ(expected.size(), nRows);
    // Numbers sort before text: 2, 10, alpha, zeta.
    EXPECT_EQ(expected[0], (std::vector<double>{M, M, 3, 1e9}));
    EXPECT_EQ((std::vector<double>{expected[1][2], expected[2][2], expected[3][2], expected[4][2]}),
              (std::vector<double>{1, 2, M, 0}));

    const std::size_t oneBlock = ColumnCache::kBlockRows * sizeof(double) * used.size();
    for (const auto& [budget, held] : {std::pair{oneBlock, false}, {2 * oneBlock - 1, false}, {2 * oneBlock, true},
                                       {std::size_t{1} << 30, true}}) {
        SCOPED_TRACE(budget);
        CsvRecordIter iter(path, used, nominal);
        iter.SetMemoryBudget(budget);
        const auto scan = iter.Scan();
        ASSERT_EQ(scan.error, "");
        EXPECT_EQ(scan.nRecords, static_cast<long long>(nRows));
        EXPECT_EQ(iter.IsHeldInMemory(), held);
        // Two passes: the second must start again at the first row.
        EXPECT_EQ(readPass(iter), expected);
        EXPECT_EQ(readPass(iter), expected);
        EXPECT_EQ(iter.GetSourceError(), "");
    }

    // A file held in memory is not reread: a later change on disk cannot mix in.
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
    // Asked before each block of 256 rows; never cancelled, four times, and the whole file is read and held.
    for (int at : {1, 2, 4, 1000000}) {
        CsvRecordIter iter(path, {0});
        iter.SetMemoryBudget(std::size_t{1} << 20);
        CountingCancel cancel(at);
        const auto scan = iter.Scan(&cancel);
        const bool cancelled = at <= 4;
        EXPECT_EQ(scan.cancelled, cancelled) << at;
        EXPECT_EQ(scan.error, "");
        EXPECT_EQ(scan.nRecords, cancelled ? 256 * (at - 1) : 1000) << at;
        EXPECT_EQ(iter.IsHeldInMemory(), !cancelled) << at;
        EXPECT_EQ(cancel.calls, cancelled ? at : 4);
    }
}
