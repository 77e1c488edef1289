#pragma once
// Thread services a host may lend the library. Only the correlation analysis
// runs work on threads, in three roles:
//   a factory (the host's, carried in the settings as a borrowed pointer)
//     makes an executor with a given number of threads and takes it back;
//   an executor runs a list of tasks on its threads and reports when all
//     of them have ended;
//   a task is one unit of work; it keeps its own outcome (status, warnings)
//     for the caller to read once the executor is done.
// Nothing but the tasks' own results crosses between threads: an executor
// reports no error of its own beyond counting tasks that failed to run.
#include <vector>

namespace MCThread_850 {

// One unit of work, run once on whichever thread the executor picks.
class IMCThreadTask {
public:
    virtual ~IMCThreadTask() = default;
    // Runs the task. Returns true when the task ran; the task's outcome
    // (success, cancellation, warnings) is kept in the task itself.
    virtual bool RunTask() = 0;
};

// Runs lists of tasks on a fixed set of threads.
class IMCThreadExecutor {
public:
    virtual ~IMCThreadExecutor() = default;
    // Threads the executor runs tasks on.
    virtual int GetNThreads() const = 0;
    // Starts running the tasks (borrowed: they must live until the run has
    // ended) and returns at once. Tasks are started in list order. Refused
    // (false) while an earlier run has not ended.
    virtual bool Execute(const std::vector<IMCThreadTask*>& tasks) = 0;
    // Blocks until every task of the current run has ended.
    virtual void Wait() = 0;
    // Waits at most `milliseconds`; true when every task has ended.
    virtual bool WaitFor(int milliseconds) = 0;
    // Tasks of the last run whose RunTask returned false or threw.
    virtual int GetNFailedTasks() const = 0;
};

// The host's source of executors.
class IMCThreadFactory {
public:
    virtual ~IMCThreadFactory() = default;
    // An executor with nThreads threads (at least one); null when none can
    // be made. The caller hands it back through ReleaseExecutor.
    virtual IMCThreadExecutor* CreateExecutor(int nThreads) = 0;
    // Takes back an executor made by this factory, after its run has ended
    // (a run still going is waited for first).
    virtual void ReleaseExecutor(IMCThreadExecutor* executor) = 0;
};

// Supplies per-thread record iterators for hosts whose sources cannot be
// shared between threads.
class MCThreadIterFactory {
public:
    virtual ~MCThreadIterFactory() = default;
};

} // namespace MCThread_850
