#pragma once
// Thread services a host may lend the library. Only the correlation analysis
// runs work on threads; the settings carry the host's factories as borrowed
// pointers.
namespace MCThread_850 {

// One unit of work run on a worker thread.
class IMCThreadTask {
public:
    virtual ~IMCThreadTask() = default;
    virtual void Run() = 0;
};

// Runs tasks on up to a given number of threads and returns once all ended.
class IMCThreadFactory {
public:
    virtual ~IMCThreadFactory() = default;
    virtual void RunTasks(IMCThreadTask* const* tasks, int nTasks, int maxThreads) = 0;
};

// Supplies per-thread record iterators for hosts whose sources cannot be
// shared between threads.
class MCThreadIterFactory {
public:
    virtual ~MCThreadIterFactory() = default;
};

} // namespace MCThread_850
