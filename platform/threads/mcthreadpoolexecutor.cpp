#include "platform/threads/mcthreadpoolexecutor.h"

#include <chrono>
#include <exception>

#include "platform/display/mcdisplay.h"

namespace MCThread_850 {

MCThreadPoolExecutor::MCThreadPoolExecutor(int nThreads) {
    const int n = nThreads > 0 ? nThreads : 1;
    m_workers.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        try {
            m_workers.emplace_back([this] { workerLoop(); });
        } catch (...) {
            // Fewer threads than asked is still a working pool; none is not.
            if (m_workers.empty()) throw;
            break;
        }
    }
}

MCThreadPoolExecutor::~MCThreadPoolExecutor() {
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_runEnded.wait(lock, [this] { return runEnded(); });
        m_stop = true;
    }
    m_workAvailable.notify_all();
    for (std::thread& t : m_workers) t.join();
}

bool MCThreadPoolExecutor::Execute(const std::vector<IMCThreadTask*>& tasks) {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!runEnded() || m_stop) return false;
        m_tasks = tasks;
        m_next = 0;
        m_nEnded = 0;
        m_nFailed = 0;
        ++m_nRuns;
    }
    m_workAvailable.notify_all();
    return true;
}

void MCThreadPoolExecutor::Wait() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_runEnded.wait(lock, [this] { return runEnded(); });
}

bool MCThreadPoolExecutor::WaitFor(int milliseconds) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_runEnded.wait_for(lock, std::chrono::milliseconds(milliseconds > 0 ? milliseconds : 0),
                               [this] { return runEnded(); });
}

int MCThreadPoolExecutor::GetNFailedTasks() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_nFailed;
}

void MCThreadPoolExecutor::workerLoop() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_workAvailable.wait(lock, [this] { return m_stop || m_next < m_tasks.size(); });
        if (m_stop) return;
        IMCThreadTask* task = m_tasks[m_next++];
        lock.unlock();
        bool ran = false;
        try {
            ran = task != nullptr && task->RunTask();
        } catch (...) {
            ran = false;
        }
        lock.lock();
        if (!ran) ++m_nFailed;
        if (++m_nEnded == m_tasks.size()) m_runEnded.notify_all();
    }
}

void MCThreadPoolExecutor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    std::lock_guard<std::mutex> lock(m_mutex);
    DisplayText(0, "MCThreadPoolExecutor display start");
    DisplayI("Threads", static_cast<int>(m_workers.size()));
    DisplayL("Runs", m_nRuns);
    DisplayI("Tasks of the last run", static_cast<int>(m_tasks.size()));
    DisplayI("Tasks ended", static_cast<int>(m_nEnded));
    DisplayI("Tasks failed", m_nFailed);
    DisplayText(0, "End of display MCThreadPoolExecutor object");
}

} // namespace MCThread_850
