#include "bsn/loglinear/bsncontingency.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include "bsn/frame/bsnreporter.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {

int sizeAt(const std::vector<int>& sizes, std::size_t i) {
    return i < sizes.size() && sizes[i] > 0 ? sizes[i] : 0;
}

int varAt(const std::vector<int>& vars, std::size_t i) { return i < vars.size() ? vars[i] : -1; }

constexpr double kLargest = std::numeric_limits<double>::max();

int clampToInt(std::int64_t n) { return static_cast<int>(std::min<std::int64_t>(n, INT_MAX)); }

} // namespace

BSNContingency::BSNContingency(const std::vector<int>& factors, const std::vector<int>& factorSizes, int weightVar,
                               const MCMath_850::MCCancelInfo& cancelInfo)
    : m_rowVar(varAt(factors, 0)), m_colVar(varAt(factors, 1)), m_nRows(sizeAt(factorSizes, 0)),
      m_nCols(sizeAt(factorSizes, 1)), m_weightVar(weightVar), m_cancelInfo(cancelInfo),
      m_pctCellsExpLess5(MCMV::Missing()) {
    sizeTable();
}

BSNContingency::BSNContingency(const Matrix& counts)
    : m_nRows(static_cast<int>(counts.size())), m_nCols(counts.empty() ? 0 : static_cast<int>(counts[0].size())),
      m_pctCellsExpLess5(MCMV::Missing()) {
    sizeTable();
    for (int i = 0; i < m_nRows; ++i)
        for (int j = 0; j < m_nCols && static_cast<std::size_t>(j) < counts[i].size(); ++j)
            m_counts[i][j] = counts[i][j];
    m_status = ComputeExpectedCounts();
}

void BSNContingency::sizeTable() {
    m_counts.assign(m_nRows, std::vector<double>(m_nCols, 0.0));
    m_rowTotals.assign(m_nRows, 0.0);
    m_colTotals.assign(m_nCols, 0.0);
}

MCStatus BSNContingency::BuildModel(MCCommon_850::MultiPassRecordIter& iter,
                                    MCCommon_850::ProgressListener* listener, int frequency) {
    sizeTable();
    m_nRecords = m_nMissing = m_nInvalid = 0;
    // The pass fills one flat array: one indexed add per record.
    const std::size_t nCols = static_cast<std::size_t>(m_nCols);
    std::vector<double> cells(static_cast<std::size_t>(m_nRows) * nCols, 0.0);
    const double rows = m_nRows, cols = m_nCols;
    BSNReporter reporter(0);
    const int every = std::max(frequency, 1);
    int countdown = every;

    // Counters kept in locals, so the loop need not store them every time.
    std::int64_t nRecords = 0, nMissing = 0, nInvalid = 0;
    const auto keepCounts = [&] {
        m_nRecords = nRecords;
        m_nMissing = nMissing;
        m_nInvalid = nInvalid;
    };
    iter.Reset();
    while (iter.Advance()) {
        const MCCommon_850::Record* record = iter.GetRecord();
        if (record == nullptr) continue;
        ++nRecords;
        const double row = record->GetValue(m_rowVar), col = record->GetValue(m_colVar);
        const double weight = m_weightVar >= 0 ? record->GetValue(m_weightVar) : 1.0;
        // The usual record in one test: codes in range (the missing value,
        // NaN and infinities all fail it) and a finite weight of 0 or more.
        // Converting a non-negative code to an index truncates it.
        if (row >= 0.0 && row < rows && col >= 0.0 && col < cols && weight >= 0.0 && weight <= kLargest) {
            cells[static_cast<std::size_t>(static_cast<int>(row)) * nCols + static_cast<std::size_t>(static_cast<int>(col))] +=
                weight;
        } else if (MCMV::IsMissing(row) || MCMV::IsMissing(col) || MCMV::IsMissing(weight)) {
            ++nMissing;
        } else {
            // Codes in (-1, 0) truncate to 0.
            const double i = std::trunc(row), j = std::trunc(col);
            if (i >= 0.0 && i < rows && j >= 0.0 && j < cols && weight >= 0.0)
                cells[static_cast<std::size_t>(i) * nCols + static_cast<std::size_t>(j)] += weight;
            else
                ++nInvalid;
        }
        if (m_cancelInfo.IsCancel()) {
            keepCounts();
            m_status = MCStatus(1, false);
            return m_status;
        }
        if (--countdown == 0) {
            countdown = every;
            if (listener != nullptr) {
                reporter.SetNRecords(clampToInt(nRecords));
                listener->Notify(reporter);
            }
        }
    }
    keepCounts();
    if (listener != nullptr && countdown != every) {
        reporter.SetNRecords(clampToInt(nRecords));
        listener->Notify(reporter);
    }
    for (int i = 0; i < m_nRows; ++i)
        std::copy_n(cells.begin() + static_cast<std::ptrdiff_t>(i * nCols), nCols, m_counts[i].begin());
    m_status = ComputeExpectedCounts();
    return m_status;
}

MCStatus BSNContingency::ComputeExpectedCounts() {
    m_rowTotals.assign(m_nRows, 0.0);
    m_colTotals.assign(m_nCols, 0.0);
    m_total = 0.0;
    for (int i = 0; i < m_nRows; ++i)
        for (int j = 0; j < m_nCols; ++j) {
            m_rowTotals[i] += m_counts[i][j];
            m_colTotals[j] += m_counts[i][j];
        }
    for (double r : m_rowTotals) m_total += r;
    m_expected.assign(m_nRows, std::vector<double>(m_nCols, 0.0));
    m_nonEmptyRows.clear();
    m_nonEmptyCols.clear();
    m_nCellsExpLess5 = 0;
    m_minExpected = m_total;
    m_pctCellsExpLess5 = MCMV::Missing();
    if (!(m_total > 0.0)) return MCStatus(410003, false);

    for (int i = 0; i < m_nRows; ++i) {
        if (!(m_rowTotals[i] > 0.0)) continue;
        m_nonEmptyRows.push_back(i);
        for (int j = 0; j < m_nCols; ++j) {
            const double e = m_rowTotals[i] * m_colTotals[j] / m_total;
            m_expected[i][j] = e;
            m_minExpected = std::min(m_minExpected, e);
            if (e > 0.0 && e < 5.0) ++m_nCellsExpLess5;
        }
    }
    for (int j = 0; j < m_nCols; ++j)
        if (m_colTotals[j] > 0.0) m_nonEmptyCols.push_back(j);

    const std::size_t used = m_nonEmptyRows.size() * m_nonEmptyCols.size();
    if (used > 0) m_pctCellsExpLess5 = 100.0 * m_nCellsExpLess5 / static_cast<double>(used);
    if (m_nonEmptyRows.size() == 1) return MCStatus(410051, true);
    if (m_nonEmptyCols.size() == 1) return MCStatus(410052, true);
    return {};
}

// Each product is split exactly into its rounded value and its rounding
// error (a fused multiply-add gives the error).
double BSNContingency::CrossDifference(double a, double b, double c, double d) {
    const double p = a * b, pError = std::fma(a, b, -p);
    const double q = c * d, qError = std::fma(c, d, -q);
    return (p - q) + (pError - qError);
}

// Σ O ln(O/E) equals Σ [O ln(O/E) - (O - E)], since the O and the E add up
// to the same total; every term of the second sum is positive (about
// (O - E)²/2E), so nothing cancels in the sum, where the first would lose
// ten digits for a table of 1e12 close to independence. With d = O N - r c:
// O - E = d/N and (O - E)/(O + E) = d/(O N + r c).
double BSNContingency::ComputeInformation() const {
    double sum = 0.0;
    for (int i : m_nonEmptyRows)
        for (int j : m_nonEmptyCols) {
            const double o = m_counts[i][j], r = m_rowTotals[i], c = m_colTotals[j];
            const double rc = r * c, d = CrossDifference(o, m_total, r, c);
            const double v = d / (o * m_total + rc);
            if (std::fabs(v) >= 0.1) {
                sum += (o > 0.0 ? o * std::log1p(d / rc) : 0.0) - d / m_total;
                continue;
            }
            // O ln(O/E) - (O - E) = (O - E) v + 2 O Σ_k v^(2k+1)/(2k+1).
            double term = d / m_total * v, power = v;
            const double v2 = v * v;
            for (int k = 1; k < 200; ++k) {
                power *= v2;
                const double next = term + 2.0 * o * power / (2 * k + 1);
                if (next == term) break;
                term = next;
            }
            sum += term;
        }
    return sum;
}

double BSNContingency::ComputePearson() const {
    double sum = 0.0;
    for (int i : m_nonEmptyRows)
        for (int j : m_nonEmptyCols) {
            const double d = CrossDifference(m_counts[i][j], m_total, m_rowTotals[i], m_colTotals[j]);
            sum += d / m_total * (d / (m_rowTotals[i] * m_colTotals[j]));
        }
    return sum;
}

void BSNContingency::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNContingency display start");
    DisplayI("Row factor", m_rowVar);
    DisplayI("Column factor", m_colVar);
    DisplayI("Number of rows", m_nRows);
    DisplayI("Number of columns", m_nCols);
    DisplayI("Frequency Weight", m_weightVar);
    DisplayDVV("Counts", m_counts);
    DisplayDV("Row totals", m_rowTotals);
    DisplayDV("Column totals", m_colTotals);
    DisplayD("Total weight", m_total);
    DisplayDVV("Expected counts", m_expected);
    DisplayIV("Non-empty rows", m_nonEmptyRows);
    DisplayIV("Non-empty columns", m_nonEmptyCols);
    DisplayI("Cells with expected count below 5", m_nCellsExpLess5);
    DisplayD("Smallest expected count", m_minExpected);
    DisplayD("Percent of cells with expected count below 5", m_pctCellsExpLess5);
    DisplayL("Records read", static_cast<long>(m_nRecords));
    DisplayL("Records with a missing value", static_cast<long>(m_nMissing));
    DisplayL("Records with an invalid code or weight", static_cast<long>(m_nInvalid));
    DisplayI("Status code", m_status.GetCode());
    DisplayText(0, "End of display BSNContingency object");
}

} // namespace MCBSN_850
