#pragma once
// ColumnRecordIter: an in-memory record source over columns of doubles, one
// column per variable of the variable list. The columns are borrowed, not
// copied, so a host can hand over data it already holds.
#include <cstddef>
#include <vector>

#include "platform/records/multipassrecorditer.h"

namespace MCCommon_850 {

class ColumnRecordIter : public MultiPassRecordIter {
public:
    // Every column must have the same length; shorter columns read as missing
    // past their end.
    explicit ColumnRecordIter(const std::vector<std::vector<double>>& columns);

    void Reset() override;
    bool Advance() override;
    const Record* GetRecord() const override;

    std::size_t GetNRows() const { return m_nRows; }

private:
    const std::vector<std::vector<double>>& m_columns;
    std::size_t m_nRows = 0;
    std::size_t m_next = 0;
    bool m_valid = false;
    std::vector<double> m_row;
    Record m_record;
};

} // namespace MCCommon_850
