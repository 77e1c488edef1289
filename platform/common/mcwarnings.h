#pragma once
// MCWarnings: the ordered list of warning statuses raised during a run.
#include <cstddef>
#include <vector>

#include "platform/common/mcstatus.h"

namespace MCCommon_850 {

class MCWarnings {
public:
    // The context pointer is accepted for interface compatibility with hosts
    // that attach one; the library always passes nullptr and it is not kept.
    void AddWarning(const MCStatus& status, const void* context = nullptr);
    // Appends every warning of another collection, keeping its order.
    void Append(const MCWarnings& other);
    void Clear() { m_items.clear(); }

    std::size_t Size() const { return m_items.size(); }
    bool IsEmpty() const { return m_items.empty(); }
    const MCStatus& Get(std::size_t i) const { return m_items.at(i); }
    const std::vector<MCStatus>& GetAll() const { return m_items; }
    bool Contains(int code) const;

    std::vector<MCStatus>::const_iterator begin() const { return m_items.begin(); }
    std::vector<MCStatus>::const_iterator end() const { return m_items.end(); }

private:
    std::vector<MCStatus> m_items;
};

} // namespace MCCommon_850
