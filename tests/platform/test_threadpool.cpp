// The thread factory and its executor: every task runs exactly once per
// run, the executor is reusable, waits can time out, and a task that fails
// or throws is counted without taking anything else down.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/threads/mcthreadpoolexecutor.h"
#include "platform/threads/mcthreadpoolfactory.h"

using namespace MCThread_850;

namespace {

// Counts its runs and notes the thread it ran on.
class CountingTask : public IMCThreadTask {
public:
    explicit CountingTask(std::mutex& m) : m_mutex(m) {}
    bool RunTask() override {
        std::lock_guard<std::mutex> lock(m_mutex);
        threads.insert(std::this_thread::get_id());
        ++runs;
        return true;
    }
    int runs = 0;
    static std::set<std::thread::id> threads;

private:
    std::mutex& m_mutex;
};
std::set<std::thread::id> CountingTask::threads;

class FailingTask : public IMCThreadTask {
public:
    explicit FailingTask(bool throws) : m_throws(throws) {}
    bool RunTask() override {
        if (m_throws) throw std::runtime_error("task failure");
        return false;
    }

private:
    bool m_throws;
};

// Blocks until released, so a run can be observed while it is going.
class GateTask : public IMCThreadTask {
public:
    bool RunTask() override {
        while (!open.load()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return true;
    }
    std::atomic<bool> open{false};
};

} // namespace

TEST(ThreadPool, EveryTaskRunsOnceAndTheExecutorIsReusable) {
    MCThreadPoolFactory factory;
    IMCThreadExecutor* executor = factory.CreateExecutor(3);
    ASSERT_NE(executor, nullptr);
    EXPECT_EQ(executor->GetNThreads(), 3);
    EXPECT_EQ(factory.GetNLiveExecutors(), 1);
    for (int round = 0; round < 3; ++round) {
        std::mutex m;
        std::vector<std::unique_ptr<CountingTask>> tasks;
        std::vector<IMCThreadTask*> list;
        for (int i = 0; i < 40; ++i) {
            tasks.push_back(std::make_unique<CountingTask>(m));
            list.push_back(tasks.back().get());
        }
        ASSERT_TRUE(executor->Execute(list));
        executor->Wait();
        for (const auto& t : tasks) EXPECT_EQ(t->runs, 1);
        EXPECT_EQ(executor->GetNFailedTasks(), 0);
    }
    EXPECT_LE(CountingTask::threads.size(), 3u);
    factory.ReleaseExecutor(executor);
    EXPECT_EQ(factory.GetNLiveExecutors(), 0);
}

TEST(ThreadPool, FailuresAreCountedAndWaitsTimeOut) {
    MCThreadPoolFactory factory(2);  // caps every executor at two threads
    IMCThreadExecutor* executor = factory.CreateExecutor(16);
    ASSERT_NE(executor, nullptr);
    EXPECT_EQ(executor->GetNThreads(), 2);

    FailingTask returnsFalse(false), throws(true);
    GateTask gate;
    std::vector<IMCThreadTask*> list = {&returnsFalse, &gate, &throws, nullptr};
    ASSERT_TRUE(executor->Execute(list));
    // A second run is refused while the first goes on, and a short wait
    // reports it unfinished.
    EXPECT_FALSE(executor->Execute(list));
    EXPECT_FALSE(executor->WaitFor(20));
    gate.open = true;
    EXPECT_TRUE(executor->WaitFor(60000));
    EXPECT_EQ(executor->GetNFailedTasks(), 3);  // false, exception, null task

    // An empty run ends at once.
    ASSERT_TRUE(executor->Execute({}));
    EXPECT_TRUE(executor->WaitFor(0));
    EXPECT_EQ(executor->GetNFailedTasks(), 0);
    factory.ReleaseExecutor(executor);
    factory.ReleaseExecutor(nullptr);
    EXPECT_EQ(factory.GetNLiveExecutors(), 0);

    // Releasing waits for a run still going.
    GateTask late;
    IMCThreadExecutor* second = factory.CreateExecutor(0);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->GetNThreads(), 1);
    ASSERT_TRUE(second->Execute({&late}));
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        late.open = true;
    });
    factory.ReleaseExecutor(second);
    EXPECT_TRUE(late.open.load());
    opener.join();
}
