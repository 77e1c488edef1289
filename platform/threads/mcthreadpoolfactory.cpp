#include "platform/threads/mcthreadpoolfactory.h"

#include <algorithm>
#include <new>

#include "platform/display/mcdisplay.h"
#include "platform/threads/mcthreadpoolexecutor.h"

namespace MCThread_850 {

IMCThreadExecutor* MCThreadPoolFactory::CreateExecutor(int nThreads) {
    int n = std::max(1, nThreads);
    if (m_maxThreads > 0) n = std::min(n, m_maxThreads);
    IMCThreadExecutor* executor = nullptr;
    try {
        executor = new MCThreadPoolExecutor(n);
    } catch (...) {  // no memory or no thread to be had: the caller runs without
        return nullptr;
    }
    ++m_nLive;
    return executor;
}

void MCThreadPoolFactory::ReleaseExecutor(IMCThreadExecutor* executor) {
    if (executor == nullptr) return;
    delete executor;
    --m_nLive;
}

void MCThreadPoolFactory::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCThreadPoolFactory display start");
    DisplayI("Maximum threads", m_maxThreads);
    DisplayI("Live executors", m_nLive);
    DisplayText(0, "End of display MCThreadPoolFactory object");
}

} // namespace MCThread_850
