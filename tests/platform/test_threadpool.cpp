// The thread factory and its executor (the correlation thread tests see every task run once).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/threads/mcthreadpoolexecutor.h"
#include "platform/threads/mcthreadpoolfactory.h"

using namespace MCThread_850;

namespace {

struct FailingTask : IMCThreadTask {
    explicit FailingTask(bool throws) : throws(throws) {}
    bool RunTask() override {
        if (throws) throw std::runtime_error("task failure");
        return false;
    }
    bool throws;
};

// Blocks until released, so a run can be observed while it is going.
struct GateTask : IMCThreadTask {
    bool RunTask() override {
        while (!open.load()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return true;
    }
    std::atomic<bool> open{false};
};

} // namespace

TEST(ThreadPool, FailuresAreCountedAndWaitsTimeOut) {
    MCThreadPoolFactory factory(2);  // caps every executor at two threads
    IMCThreadExecutor* executor = factory.CreateExecutor(16);
    ASSERT_NE(executor, nullptr);
    EXPECT_EQ(executor->GetNThreads(), 2);

    FailingTask returnsFalse(false), throws(true);
    GateTask gate;
    std::vector<IMCThreadTask*> list = {&returnsFalse, &gate, &throws, nullptr};
    ASSERT_TRUE(executor->Execute(list));
    // A second run is refused while the first goes on; a short wait times out.
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
