#pragma once
// MCCancelInfo: the library's view of the host's cancel query. Once a
// cancellation has been seen it stays latched, so every later check within
// the same run agrees. Safe to poll from worker threads while the host sets
// its flag from another thread.
#include <atomic>

#include "platform/progress/mcquerycancel.h"

namespace MCMath_850 {

class MCCancelInfo {
public:
    explicit MCCancelInfo(MCCommon_850::MCQueryCancel* query = nullptr) : m_query(query) {}
    MCCancelInfo(const MCCancelInfo& other) : m_query(other.m_query), m_latched(other.m_latched.load()) {}
    MCCancelInfo& operator=(const MCCancelInfo& other) {
        m_query = other.m_query;
        m_latched.store(other.m_latched.load());
        return *this;
    }

    void SetCancelPtr(MCCommon_850::MCQueryCancel* query) { m_query = query; }
    MCCommon_850::MCQueryCancel* GetCancelPtr() const { return m_query; }

    // Asks the host now; a positive answer is latched.
    bool IsCancel() const {
        if (m_latched.load(std::memory_order_relaxed)) return true;
        if (m_query != nullptr && m_query->IsCancel()) {
            m_latched.store(true, std::memory_order_relaxed);
            return true;
        }
        return false;
    }
    // A cancellation is pending: the run should stop at the next safe point.
    bool WillCancel() const { return IsCancel(); }

private:
    MCCommon_850::MCQueryCancel* m_query = nullptr;
    mutable std::atomic<bool> m_latched{false};
};

} // namespace MCMath_850
