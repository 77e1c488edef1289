#pragma once
// Record: one case of the data, a read-only view of one value per variable of
// the MCVarList, by variable index. Missing values are the system-missing
// value. The view is valid until the iterator that produced it advances.
#include <cstddef>

#include "platform/common/mcmv.h"

namespace MCCommon_850 {

class Record {
public:
    Record() = default;
    Record(const double* values, std::size_t count) : m_values(values), m_count(count) {}

    // An index outside the record reads as missing rather than faulting.
    double GetValue(int index) const {
        return (index >= 0 && static_cast<std::size_t>(index) < m_count) ? m_values[index] : MCMV::Missing();
    }
    bool IsMissing(int index) const { return MCMV::IsMissing(GetValue(index)); }
    std::size_t Size() const { return m_count; }

private:
    const double* m_values = nullptr;
    std::size_t m_count = 0;
};

} // namespace MCCommon_850
