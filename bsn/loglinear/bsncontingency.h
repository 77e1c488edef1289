#pragma once
// BSNContingency: the weighted two-way table of a log-linear analysis. One
// data pass adds each record's weight to the cell of its row and column
// codes; then the margins, the expected counts under independence and the
// lists of non-empty rows and columns follow.
//
// Records are taken as they stand: the weight is not rounded, codes are
// truncated to whole numbers. A record whose row code, column code or weight
// is missing is left out; so is one whose code lies outside the declared
// categories or whose weight is negative (these are counted, so the driver
// can say so).
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "platform/common/mcstatus.h"
#include "platform/progress/mccancelinfo.h"
#include "platform/progress/progress.h"
#include "platform/records/multipassrecorditer.h"

namespace MCBSN_850 {

class BSNContingency {
public:
    using Matrix = std::vector<std::vector<double>>;

    // factors = {row variable, column variable}, factorSizes = {R, C};
    // weightVar < 0 means every record weighs 1. Sizes beyond the lists'
    // length, or below 1, count as 0 categories.
    BSNContingency(const std::vector<int>& factors, const std::vector<int>& factorSizes, int weightVar,
                   const MCMath_850::MCCancelInfo& cancelInfo);
    // A table of given counts (R rows of C), with its margins and expected
    // counts already computed.
    explicit BSNContingency(const Matrix& counts);

    // Counts the records, reporting progress every `frequency` records, then
    // computes the expected counts. Errors: 1 (cancelled), 410003 (total
    // weight not positive). Warnings: 410051, 410052.
    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter,
                                      MCCommon_850::ProgressListener* listener, int frequency);
    MCCommon_850::MCStatus ComputeExpectedCounts();

    int GetNRows() const { return m_nRows; }
    int GetNCols() const { return m_nCols; }
    int GetRowVar() const { return m_rowVar; }
    int GetColVar() const { return m_colVar; }
    const Matrix& GetAllCounts() const { return m_counts; }
    const Matrix& GetExpectedCounts() const { return m_expected; }
    const std::vector<double>& GetRowTotals() const { return m_rowTotals; }
    const std::vector<double>& GetColTotals() const { return m_colTotals; }
    double GetTotalWeight() const { return m_total; }
    const std::vector<int>& GetNonEmptyRows() const { return m_nonEmptyRows; }
    const std::vector<int>& GetNonEmptyCols() const { return m_nonEmptyCols; }
    int GetNCellsExpLess5() const { return m_nCellsExpLess5; }
    double GetMinExpectedCount() const { return m_minExpected; }
    double GetPctCellsExpLess5() const { return m_pctCellsExpLess5; }
    MCCommon_850::MCStatus GetStatus() const { return m_status; }
    // Records read (non-null), and records left out for a missing value or
    // for a code outside the categories or a negative weight.
    std::int64_t GetNRecords() const { return m_nRecords; }
    std::int64_t GetNMissingRecords() const { return m_nMissing; }
    std::int64_t GetNInvalidRecords() const { return m_nInvalid; }

    // Σ O ln(O N / (r c)) over the non-empty cells, which is half the
    // likelihood-ratio statistic. Formed from O N - r c to full precision, so
    // each cell's term is accurate relative to itself even at totals of 1e9
    // and more, where ln O + ln N - ln r - ln c would cancel.
    double ComputeInformation() const;
    // Pearson's Σ (O - E)² / E over the non-empty rows and columns, by the
    // same exact cross difference: (O N - r c)² / (N r c).
    double ComputePearson() const;

    // a b - c d, both products carried to full precision, so that the
    // difference of two nearly equal products of large counts keeps all its
    // digits.
    static double CrossDifference(double a, double b, double c, double d);

    void Display(std::ostream& os) const;

private:
    void sizeTable();

    int m_rowVar = -1;
    int m_colVar = -1;
    int m_nRows = 0;
    int m_nCols = 0;
    int m_weightVar = -1;
    MCMath_850::MCCancelInfo m_cancelInfo;
    Matrix m_counts;
    std::vector<double> m_rowTotals;
    std::vector<double> m_colTotals;
    double m_total = 0.0;
    Matrix m_expected;
    std::vector<int> m_nonEmptyRows;
    std::vector<int> m_nonEmptyCols;
    int m_nCellsExpLess5 = 0;
    double m_minExpected = 0.0;
    double m_pctCellsExpLess5;
    std::int64_t m_nRecords = 0;
    std::int64_t m_nMissing = 0;
    std::int64_t m_nInvalid = 0;
    MCCommon_850::MCStatus m_status;
};

} // namespace MCBSN_850
