#pragma once
// MCThreadPoolFactory: a host's thread factory making MCThreadPoolExecutor
// objects. It may cap the threads of any executor it makes (0: no cap), so
// a host can hold the library to the cores it wants to lend.
#include <iosfwd>

#include "platform/threads/mcthread.h"

namespace MCThread_850 {

class MCThreadPoolFactory : public IMCThreadFactory {
public:
    explicit MCThreadPoolFactory(int maxThreads = 0) : m_maxThreads(maxThreads > 0 ? maxThreads : 0) {}

    IMCThreadExecutor* CreateExecutor(int nThreads) override;
    void ReleaseExecutor(IMCThreadExecutor* executor) override;

    int GetMaxThreads() const { return m_maxThreads; }
    // Executors made and not yet released.
    int GetNLiveExecutors() const { return m_nLive; }

    void Display(std::ostream& os) const;

private:
    int m_maxThreads;
    int m_nLive = 0;
};

} // namespace MCThread_850
