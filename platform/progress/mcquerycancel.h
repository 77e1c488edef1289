#pragma once
// MCQueryCancel: the host's answer to "should the run stop now?".
// MCAtomicCancel is a ready-made query a host can set from any thread
// (a signal handler included: the flag is lock-free).
#include <atomic>

namespace MCCommon_850 {

class MCQueryCancel {
public:
    virtual ~MCQueryCancel() = default;
    virtual bool IsCancel() const = 0;
};

class MCAtomicCancel : public MCQueryCancel {
public:
    void Cancel() { m_flag.store(true, std::memory_order_relaxed); }
    void Clear() { m_flag.store(false, std::memory_order_relaxed); }
    bool IsCancel() const override { return m_flag.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_flag{false};
    static_assert(std::atomic<bool>::is_always_lock_free);
};

} // namespace MCCommon_850
