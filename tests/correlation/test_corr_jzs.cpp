// The JZS factor of a correlation against mpmath integrals over g in [eps, 1e6]
// (tests/data/correlation_jzs.csv), and the warnings for the mass left out.

#include "tests/correlation/corrtestsupport.h"

using namespace corrtest;

TEST(CorrelationJZS, FactorsMatchHighPrecisionIntegrals) {
    const auto cases = readCsv("correlation_jzs.csv");  // n, r, log BF, the share of the mass left out
    ASSERT_EQ(cases.size(), 20u);
    std::vector<double> rs, ns;
    for (const auto& f : cases) ns.push_back(number(f[0])), rs.push_back(number(f[1]));
    TaskRig rig(rs, ns);
    BSNSettings s = corrSettings({0, 1}, BC::BayesFactor);
    s.SetTolValue(1e-10);
    auto task = rig.task(s, 0, 20, 1);
    EXPECT_TRUE(task->RunTask());
    EXPECT_TRUE(task->GetStatus().IsOK());
    EXPECT_TRUE(task->GetIndIntegralFailed().empty());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "n " << ns[i] << " r " << rs[i]);
        // log BF within 1e-6: the factor within 1e-6 relative.
        const double logBF = number(cases[i][2]);
        EXPECT_NEAR(rig.logBF[i], logBF, 1e-6);
        EXPECT_EQ(rig.isLog[i], 0);
        if (logBF > -700) { EXPECT_NEAR(rig.bf[i] / std::exp(logBF), 1.0, 1e-6); }
        EXPECT_TRUE(std::isfinite(rig.bf[i]));
    }
    // More than 1e-6 left out first at pair 0; more than 1% first at n = 1e5.
    EXPECT_EQ(task->GetTruncationNotice().pair, 0);
    EXPECT_NEAR(task->GetTruncationNotice().share / number(cases[0][3]), 1.0, 1e-6);
    EXPECT_EQ(task->GetTruncationSevere().pair, 12);
    EXPECT_NEAR(task->GetTruncationSevere().share / number(cases[12][3]), 1.0, 1e-6);

    // The default tolerance of the analysis is looser but still close (the
    // task refers to its settings, which must outlive it).
    const BSNSettings looseSettings = corrSettings({0, 1}, BC::BayesFactor);
    TaskRig loose(rs, ns);
    loose.task(looseSettings, 0, 20, 1)->RunTask();
    for (std::size_t i = 0; i < cases.size(); ++i)
        EXPECT_NEAR(loose.logBF[i], number(cases[i][2]), 1e-3) << i;
}

TEST(CorrelationJZS, TruncationWarningsThroughTheProcedure) {
    // v0 with v1: five records weighted 2e7 (n = 1e8); v0 with v2: n = 5; v1 and v2 never meet.
    const std::vector<double> v0 = {1, 2, 3, 4, 5, 1, 2, 3, 4, 5};
    const std::vector<double> v1 = {2, 1, 4, 3, 6, kMiss, kMiss, kMiss, kMiss, kMiss};
    const std::vector<double> v2 = {kMiss, kMiss, kMiss, kMiss, kMiss, 2, 4, 1, 3, 5};
    const std::vector<double> w = {2e7, 2e7, 2e7, 2e7, 2e7, 1, 1, 1, 1, 1};
    BSNSettings s = corrSettings({0, 2, 1});
    s.SetFrequencyWeightVar(3);
    CorrRun run(s, {v0, v1, v2, w});
    ASSERT_TRUE(run.status.IsOK());
    const auto& o = run.out();
    EXPECT_EQ(o.GetVarPairN(), (std::vector<double>{5, 1e8, 0}));
    const auto notice = run.warning(BSNPearsonCorrelation::kTruncatedIntegralCode);
    EXPECT_EQ(notice.GetDiscreteDatum(0), 0);
    const auto severe = run.warning(BSNPearsonCorrelation::kSeverelyTruncatedIntegralCode);
    EXPECT_EQ((std::vector<int>{severe.GetDiscreteDatum(0), severe.GetDiscreteDatum(1), severe.GetDiscreteDatum(2)}),
              (std::vector<int>{1, 0, 1}));
    EXPECT_GT(severe.GetScaleDatum(0), 1.0);
    expectAllFinite(o);
    for (int p : {0, 1, 2}) EXPECT_EQ(MCMV::IsMissing(o.GetLogBayesFactors()[p]), p == 2) << p;
    EXPECT_EQ(run.warning(410006).GetDiscreteDatum(0), 2);
}
