#include "platform/common/mcwarnings.h"

#include <algorithm>

namespace MCCommon_850 {

void MCWarnings::AddWarning(const MCStatus& status, const void* /*context*/) { m_items.push_back(status); }

void MCWarnings::Append(const MCWarnings& other) {
    m_items.insert(m_items.end(), other.m_items.begin(), other.m_items.end());
}

bool MCWarnings::Contains(int code) const {
    return std::any_of(m_items.begin(), m_items.end(), [code](const MCStatus& s) { return s.GetCode() == code; });
}

} // namespace MCCommon_850
