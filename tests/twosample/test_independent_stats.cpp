// The independent-samples data pass: the per-group accumulators, group
// coding, weights and the procedure's own messages.

#include <limits>
#include <tuple>

#include "bsn/twosample/bsn2samplecontstats.h"
#include "bsn/twosample/bsn2sampleindbasicstats.h"
#include "tests/twosample/test_independent_support.h"

using namespace indeptest;
using MCBSN_850::BSN2SampleContStats;
using MCBSN_850::BSN2SampleIndBasicStats;

TEST(IndependentStats, AccumulatorWeightsMeanByBothWeightsAndVarianceByFrequencies) {
    // The mean is weighted by f c; the variance's divisor is sum(f) - 1.
    BSN2SampleContStats w;
    const std::vector<double> x = {2.0, 5.0, 9.0}, f = {2.0, 1.0, 3.0}, c = {0.5, 4.0, 1.5};
    std::vector<double> fc;
    for (std::size_t i = 0; i < x.size(); ++i) {
        EXPECT_TRUE(w.Update(x[i], f[i], c[i]));
        fc.push_back(f[i] * c[i]);
    }
    const Moments m = moments(x, fc);
    for (const auto& [v, fw, cw] : {std::tuple{kMiss, 1.0, 1.0}, {1.0, 1.0, 0.0}, {1.0, 0.0, 1.0}})
        EXPECT_FALSE(w.Update(v, fw, cw)) << v << " " << fw << " " << cw;
    EXPECT_EQ(w.GetSumFreqWeights(), 6.0);
    EXPECT_DOUBLE_EQ(w.GetSumCombinedWeights(), m.n);
    EXPECT_NEAR(w.GetMean(), m.mean, 1e-14);
    EXPECT_NEAR(w.GetVariance(), m.var * (m.n - 1) / 5.0, 1e-13);

    // One case: mean but no variance; none: neither.
    BSN2SampleContStats one;
    EXPECT_TRUE(MCMV::IsMissing(one.GetMean()));
    one.Update(3.5);
    EXPECT_EQ(one.GetMean(), 3.5);
    EXPECT_TRUE(MCMV::IsMissing(one.GetVariance()));
}

TEST(IndependentStats, BasicStatsRoundFrequenciesAndDropUnusableWeights) {
    const std::vector<int> vars = {0, 1};  // the accumulators keep a pointer to it
    BSN2SampleIndBasicStats s(vars), big(vars);
    const double r1[] = {2.0, 5.0}, r2[] = {4.0, kMiss}, r3[] = {6.0, 7.0};
    const MCCommon_850::Record a(r1, 2), b(r2, 2), c(r3, 2);
    EXPECT_TRUE(s.Update(a, 1.5, 1.0));  // rounds to 2
    // Frequencies rounding to 0, negative or missing; case weights 0, negative or missing.
    for (const auto& [f, cw] : {std::pair{0.4, 1.0}, {-3.0, 1.0}, {kMiss, 1.0}, {1.0, 0.0}, {1.0, -2.0}, {1.0, kMiss}})
        EXPECT_FALSE(s.Update(b, f, cw)) << f << " " << cw;
    EXPECT_TRUE(s.Update(b, 2.49, 1.0));  // rounds to 2; its second value is missing
    s.Update(c);
    EXPECT_EQ(s.GetNWeightedCases(), (std::vector<double>{5.0, 3.0}));
    EXPECT_EQ(s.GetNWeightedIntCases(), (std::vector<int>{5, 3}));
    EXPECT_NEAR(s.GetMeans()[1], (2 * 5.0 + 7.0) / 3.0, 1e-14);

    // Sums beyond the int range saturate instead of wrapping.
    big.Update(a, 3e9, 1.0);
    EXPECT_EQ(big.GetNWeightedIntCases()[0], std::numeric_limits<int>::max());
    EXPECT_EQ(big.GetStdErrors()[0], 0.0);  // 3e9 copies of one value
}

TEST(IndependentStats, GroupCodingAndWeightsThroughTheProcedure) {
    // Columns: variable, group, frequency weight, a regression weight that must not be used.
    const std::vector<double> x = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, 10.0, 11.0, 12.0};
    const std::vector<double> g = {0, 1, 0, 1, 2, -1, 0.5, kMiss, 0, 1, 0, 1};
    const std::vector<double> f = {1, 2, 3, 1, 5, 5, 5, 5, 0.4, 1, 1.6, -1};
    const std::vector<double> rw = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};

    struct Case {
        const char* what;
        int freq, regr, n0;                  // n0: the first group's (frequency) count
        std::vector<double> x0, w0, x1, w1;  // the cases each group should hold, with weights
    };
    const std::vector<Case> cases = {
        {"unweighted", -1, -1, 4, {1, 3, 9, 11}, {1, 1, 1, 1}, {2, 4, 10, 12}, {1, 1, 1, 1}},
        // 0.4 rounds to 0 and -1 is not positive: those cases are dropped.
        {"frequency", 2, -1, 6, {1, 3, 11}, {1, 3, 2}, {2, 4, 10}, {2, 1, 1}},
        // The case weight is read at the frequency field: each case weighs f * f_raw in the mean.
        {"frequency and case weights", 2, 3, 6, {1, 3, 11}, {1, 9, 3.2}, {2, 4, 10}, {4, 1, 1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        BSNSettings s = indepSettings({0}, 1, BC::BayesFactor);
        if (c.freq >= 0) s.SetFrequencyWeightVar(c.freq);
        if (c.regr >= 0) s.SetRegrWeightVar(c.regr);
        NormalRun r(s, {x, g, f, rw});
        ASSERT_TRUE(r.status.IsOK()) << r.status.GetCode();
        EXPECT_NEAR(output(r).GetGroup1MeanValues()[0], moments(c.x0, c.w0).mean, 1e-13);
        EXPECT_NEAR(output(r).GetGroup2MeanValues()[0], moments(c.x1, c.w1).mean, 1e-13);
        EXPECT_EQ(output(r).GetGroup1StatsNs()[0], c.n0);
    }

    // A regression weight alone is read at the absent frequency field: every case is dropped.
    BSNSettings s = indepSettings({0}, 1, BC::BayesFactor);
    s.SetRegrWeightVar(3);
    NormalRun r(s, {x, g, f, rw});
    EXPECT_EQ(std::pair(output(r).GetGroup1StatsNs()[0], output(r).GetGroup2StatsNs()[0]), std::pair(0, 0));
    EXPECT_EQ(r.count(410030), 1);
}

TEST(IndependentStats, MessagesCancellationAndProgressOfTheDataPass) {
    const std::vector<double> x = {1, 2, 3, 4, 5}, g = {0, 1, 0, 1, 0};
    // No group variable; no test variables; cancelled at the first progress report.
    MCCommon_850::MCAtomicCancel cancel;
    CancellingListener stopper(cancel, 1);
    BSNSettings cancelled = indepSettings({0}, 1);
    cancelled.SetProgressFrequency(1); cancelled.SetProgressListener(&stopper); cancelled.SetCancelPointer(&cancel);
    for (const auto& [s, code] :
         {std::pair{indepSettings({0}, -1), 410040}, {indepSettings({}, 1), 410039}, {cancelled, 1}}) {
        NormalRun r(s, {x, g});
        EXPECT_EQ(r.status.GetCode(), code);
        EXPECT_TRUE(r.status.IsError()) << code;
        EXPECT_FALSE(r.component.IsModelBuilt()) << code;
        EXPECT_EQ(r.component.GetOutputStats(), nullptr) << code;
    }
    // Variable 1 has two cases in all: 410030 (no datum); the other variable still gets its factor.
    // Progress every second record and at the end.
    const std::vector<double> y = {kMiss, 7.0, kMiss, kMiss, 3.0};
    bsntest::RecordCounts listener;
    BSNSettings s = indepSettings({0, 2}, 1, BC::BayesFactor);
    s.SetProgressFrequency(2); s.SetProgressListener(&listener);
    NormalRun r(s, {x, g, y});
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_EQ(listener.counts, (std::vector<int>{2, 4, 5}));
    EXPECT_EQ(r.count(410030), 1);
    EXPECT_FALSE(r.component.GetWarningMessages().Get(0).HasDiscreteDatum(0));
    EXPECT_FALSE(MCMV::IsMissing(output(r).GetTValues()[0]));
    EXPECT_TRUE(MCMV::IsMissing(output(r).GetTValues()[1]) && MCMV::IsMissing(output(r).GetBayesFactors()[1]));
}
