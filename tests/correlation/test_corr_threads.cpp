// The correlation procedure on worker threads: factors and warnings identical
// for any thread count and split, posteriors for the same split, and
// cancellation leaving unreached pairs missing (also run under TSan).
#include <random>

#include "platform/threads/mcthreadpoolfactory.h"
#include "tests/correlation/corrtestsupport.h"

using namespace corrtest;

namespace {

// Twelve variables (66 pairs) over 60 records with a few missing values;
// variable 11 is constant, so its pairs have no factor.
std::vector<std::vector<double>> data() {
    std::mt19937 gen(5);
    std::normal_distribution<double> z(0.0, 1.0);
    std::vector<std::vector<double>> cols(12, std::vector<double>(60, 2.5));
    for (int i = 0; i < 60; ++i) {
        const double common = z(gen);
        for (int v = 0; v < 11; ++v) cols[v][i] = (v % 3) * common + z(gen) + (i % 17 == v ? kMiss : 0.0);
    }
    return cols;
}

const std::vector<int> kAll = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};

struct Threaded {
    Threaded(BSNSettings s, int threads, int perTask, const std::vector<std::vector<double>>& cols) {
        s.SetThreadFactory(&factory); s.SetMaxThreadNum(threads); s.SetNPairsPerTask(perTask);
        run = std::make_unique<CorrRun>(s, cols);
    }
    MCThread_850::MCThreadPoolFactory factory;
    std::unique_ptr<CorrRun> run;
};

// Raises its cancel flag once `at` pairs are done.
struct CancelAtPairs : MCCommon_850::ProgressListener {
    explicit CancelAtPairs(int n) : at(n) {}
    void Notify(const MCCommon_850::ProgressReport& r) override {
        if (r.DiscreteMeasure("pairs") >= at) cancel.Cancel();
    }
    MCCommon_850::MCAtomicCancel cancel;
    int at;
};

} // namespace

TEST(CorrelationThreads, FactorsIdenticalForAnyThreadCountAndSplit) {
    const auto cols = data();
    for (BC::EstBFTypes type : {BC::JZS, BC::Fraction}) {
        SCOPED_TRACE(type);
        BSNSettings s = corrSettings(kAll, BC::Both);
        s.SetEstBFType(type); s.SetMCSamples(300); s.SetPosteriorSamples(400); s.SetMaxNPlots(5); s.SetNPlotPoints(7);
        CorrRun serial(s, cols);
        ASSERT_TRUE(serial.status.IsOK());
        EXPECT_EQ(std::pair(serial.procedure.GetNTasks(), serial.procedure.GetNThreads()), std::pair(1, 0));
        const auto& ref = serial.out();
        std::vector<std::vector<double>> sameSplit;
        // 66 pairs: 65 a task makes two tasks, 66 one task on the calling
        // thread, as does a single thread allowed.
        for (const auto& [threads, perTask] :
             std::vector<std::pair<int, int>>{{2, 1}, {2, 7}, {8, 7}, {8, 50}, {8, 65}, {8, 66}, {1, 7}}) {
            SCOPED_TRACE(testing::Message() << threads << " threads, " << perTask << " pairs a task");
            Threaded t(s, threads, perTask, cols);
            ASSERT_TRUE(t.run->status.IsOK());
            const int tasks = threads == 1 ? 1 : (66 + perTask - 1) / perTask;
            EXPECT_EQ(t.run->procedure.GetNTasks(), tasks);
            EXPECT_EQ(t.run->procedure.GetNThreads(), tasks == 1 ? 0 : std::min(threads, tasks));
            EXPECT_EQ(t.factory.GetNLiveExecutors(), 0);
            const auto& o = t.run->out();
            EXPECT_EQ(o.GetBayesFactor(), ref.GetBayesFactor());
            EXPECT_EQ(o.GetLogBayesFactors(), ref.GetLogBayesFactors());
            EXPECT_EQ(o.GetIsLogBayesFactor(), ref.GetIsLogBayesFactor());
            EXPECT_EQ(o.GetIndIntegralFailed(), ref.GetIndIntegralFailed());
            EXPECT_EQ(t.run->codes(), serial.codes());
            // The first task's pairs draw what the single task drew; the
            // next task starts the generator afresh, so its first pair
            // draws differently.
            const int split = tasks == 1 ? 66 : perTask;
            for (int p = 0; p < split; ++p) EXPECT_EQ(o.GetPosteriorMean()[p], ref.GetPosteriorMean()[p]) << p;
            if (split < 66 && !MCMV::IsMissing(ref.GetPosteriorMean()[split])) {
                EXPECT_NE(o.GetPosteriorMean()[split], ref.GetPosteriorMean()[split]);
            }
            EXPECT_EQ(o.GetPlotPosterior().size(), 5u);
            if (perTask == 7 && threads > 1) {  // the same split: the same posteriors whatever the threads
                std::vector<std::vector<double>> post = o.GetPlotPosterior();
                for (const auto* v : {&o.GetPosteriorMode(), &o.GetPosteriorMean(), &o.GetPosteriorVariance(),
                                      &o.GetPosteriorLowerBound(), &o.GetPosteriorUpperBound()})
                    post.push_back(*v);
                if (sameSplit.empty()) sameSplit = post;
                else EXPECT_EQ(post, sameSplit);
            }
        }
    }
}

TEST(CorrelationThreads, CancellationLeavesUnreachedPairsMissing) {
    // On the calling thread: pairs report as they finish, and the flag
    // raised after the fifth stops the task before the sixth.
    const auto cols = data();
    {
        CancelAtPairs listener(5);
        BSNSettings s = corrSettings(kAll, BC::BayesFactor);
        s.SetProgressFrequency(1); s.SetProgressListener(&listener); s.SetCancelPointer(&listener.cancel);
        CorrRun run(s, cols);
        EXPECT_TRUE(run.status.IsError() && run.status.GetCode() == 1);
        EXPECT_EQ(run.procedure.GetOutputStats(), nullptr);
        for (int p = 0; p < 66; ++p) EXPECT_EQ(MCMV::IsMissing(run.procedure.GetBayesFactors()[p]), p >= 5) << p;
    }
    // A task alone: the posterior stops too, whatever stage it is in.
    {
        TaskRig rig({0.1, 0.2, 0.3, 0.4}, {20, 20, 20, 20});
        CancelAtPairs listener(2);
        rig.cancel.SetCancelPtr(&listener.cancel);
        BSNSettings s = corrSettings({0, 1}, BC::Posterior);
        s.SetProgressFrequency(1);
        auto task = rig.task(s, 0, 4, 1, &listener);
        std::atomic<long> steps{0};
        task->SetProgress(&steps, 1, 0);
        EXPECT_TRUE(task->RunTask());
        EXPECT_EQ(task->GetStatus().GetCode(), 1);
        EXPECT_FALSE(MCMV::IsMissing(rig.mean[1]));
        EXPECT_TRUE(MCMV::IsMissing(rig.mean[2]) && MCMV::IsMissing(rig.mode[3]));
    }
    // On two threads, pairs slow enough (300,000 draws) for the waiting
    // thread's report to raise the flag mid-run: every pair is done or
    // missing as a whole.
    {
        CancelAtPairs listener(1);
        BSNSettings s = corrSettings(kAll, BC::Posterior);
        s.SetPosteriorSamples(300000); s.SetMaxNPlots(0); s.SetProgressListener(&listener);
        s.SetCancelPointer(&listener.cancel);
        Threaded t(s, 2, 3, cols);
        EXPECT_EQ(t.run->status.GetCode(), 1);
        const auto& proc = t.run->procedure;
        int done = 0;
        for (std::size_t p = 0; p < 66; ++p) {
            done += !MCMV::IsMissing(proc.GetPosteriorMeans()[p]);
            for (const auto* v : {&proc.GetPosteriorModes(), &proc.GetPosteriorVariances(),
                                  &proc.GetPosteriorLowerBounds(), &proc.GetPosteriorUpperBounds()})
                EXPECT_EQ(MCMV::IsMissing((*v)[p]), MCMV::IsMissing(proc.GetPosteriorMeans()[p])) << p;
        }
        EXPECT_GE(done, 1);
        EXPECT_LT(done, 55);
    }
}
