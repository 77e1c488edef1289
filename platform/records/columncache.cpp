#include "platform/records/columncache.h"

#include "platform/display/mcdisplay.h"

namespace MCCommon_850 {

void ColumnCache::Start(std::size_t nColumns, std::size_t budgetBytes) {
    m_columns.clear();
    m_columns.resize(nColumns);
    m_budget = budgetBytes;
    m_blocks = 0;
    m_nRows = 0;
    m_active = budgetBytes > 0;
}

bool ColumnCache::Append(const double* values) {
    if (!m_active) return false;
    const std::size_t at = m_nRows % kBlockRows;
    if (m_nRows == m_blocks * kBlockRows && !m_columns.empty()) {
        // Check before taking, so the storage never passes the budget.
        if ((m_blocks + 1) * kBlockRows * sizeof(double) * m_columns.size() > m_budget) {
            Drop();
            return false;
        }
        // Not zeroed: every slot is written before it is read.
        for (auto& column : m_columns) column.push_back(std::make_unique_for_overwrite<double[]>(kBlockRows));
        ++m_blocks;
    }
    for (std::size_t c = 0; c < m_columns.size(); ++c) m_columns[c].back()[at] = values[c];
    ++m_nRows;
    return true;
}

void ColumnCache::Remap(std::size_t column, const std::vector<int>& map) {
    if (!m_active || column >= m_columns.size()) return;
    for (std::size_t r = 0; r < m_nRows; ++r) {
        double& v = m_columns[column][r / kBlockRows][r % kBlockRows];
        // Category numbers are small non-negative integers; the missing
        // value is a large negative number and fails the test.
        if (v >= 0.0 && v < static_cast<double>(map.size())) v = map[static_cast<std::size_t>(v)];
    }
}

void ColumnCache::Drop() {
    const std::size_t n = m_columns.size();
    m_columns.clear();
    m_columns.resize(n);
    m_blocks = 0;
    m_nRows = 0;
    m_active = false;
}

void ColumnCache::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayB("Column cache active", m_active);
    MCDisplay_850::DisplayL("Columns", static_cast<long>(m_columns.size()));
    MCDisplay_850::DisplayL("Rows", static_cast<long>(m_nRows));
    MCDisplay_850::DisplayL("Bytes", static_cast<long>(GetBytes()));
    MCDisplay_850::DisplayL("Budget bytes", static_cast<long>(m_budget));
}

} // namespace MCCommon_850
