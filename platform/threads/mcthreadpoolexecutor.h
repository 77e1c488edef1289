#pragma once
// MCThreadPoolExecutor: an executor on a fixed pool of std::thread workers,
// started when the executor is made and joined when it is destroyed. A run
// hands the workers a list of tasks; each worker takes the next task not yet
// started (so tasks start in list order and a slow task does not hold up the
// others) until none is left. A task that throws counts as failed; the
// exception goes no further.
#include <condition_variable>
#include <cstddef>
#include <iosfwd>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/threads/mcthread.h"

namespace MCThread_850 {

class MCThreadPoolExecutor : public IMCThreadExecutor {
public:
    // Starts max(1, nThreads) workers (fewer if the system refuses more
    // threads; throws only when it refuses every one).
    explicit MCThreadPoolExecutor(int nThreads);
    // Waits for a run still going, then stops and joins the workers.
    ~MCThreadPoolExecutor() override;
    MCThreadPoolExecutor(const MCThreadPoolExecutor&) = delete;
    MCThreadPoolExecutor& operator=(const MCThreadPoolExecutor&) = delete;

    int GetNThreads() const override { return static_cast<int>(m_workers.size()); }
    bool Execute(const std::vector<IMCThreadTask*>& tasks) override;
    void Wait() override;
    bool WaitFor(int milliseconds) override;
    int GetNFailedTasks() const override;

    void Display(std::ostream& os) const;

private:
    void workerLoop();
    bool runEnded() const { return m_nEnded == m_tasks.size(); }

    mutable std::mutex m_mutex;
    std::condition_variable m_workAvailable;  // a run started, or stop
    std::condition_variable m_runEnded;       // the last task of a run ended
    std::vector<IMCThreadTask*> m_tasks;      // the current run
    std::size_t m_next = 0;                   // next task to start
    std::size_t m_nEnded = 0;                 // tasks of the run that ended
    int m_nFailed = 0;
    long m_nRuns = 0;
    bool m_stop = false;
    std::vector<std::thread> m_workers;
};

} // namespace MCThread_850
