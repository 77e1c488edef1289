#include "platform/records/columnrecorditer.h"

#include <algorithm>

namespace MCCommon_850 {

bool HasAnyRecord(MultiPassRecordIter& iter) {
    iter.Reset();
    const bool any = iter.Advance();
    iter.Reset();
    return any;
}

ColumnRecordIter::ColumnRecordIter(const std::vector<std::vector<double>>& columns)
    : m_columns(columns), m_row(columns.size(), MCMV::Missing()), m_record(m_row.data(), m_row.size()) {
    for (const auto& c : m_columns) m_nRows = std::max(m_nRows, c.size());
}

void ColumnRecordIter::Reset() {
    m_next = 0;
    m_valid = false;
}

bool ColumnRecordIter::Advance() {
    if (m_next >= m_nRows) {
        m_valid = false;
        return false;
    }
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        const auto& col = m_columns[c];
        m_row[c] = m_next < col.size() ? col[m_next] : MCMV::Missing();
    }
    ++m_next;
    m_valid = true;
    return true;
}

const Record* ColumnRecordIter::GetRecord() const { return m_valid ? &m_record : nullptr; }

} // namespace MCCommon_850
