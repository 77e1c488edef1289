// The factors of a correlation: JZS against mpmath integrals over g in [eps, 1e6] with the warnings for
// the mass left out; the fractional factor against nested mpmath quadrature and its logarithm beyond the
// exponent range (tests/data/correlation_jzs.csv, correlation_fraction.csv).
#include <numbers>

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

namespace {

BSNSettings fractionSettings() {
    BSNSettings s = corrSettings({0, 1}, BC::BayesFactor);
    s.SetEstBFType(BC::Fraction); s.SetTolValue(1e-10);
    return s;
}

} // namespace

TEST(CorrelationFraction, WholeFactorThroughTheTaskAndNarrowNullIntegrand) {
    const auto rows = readCsv("correlation_fraction.csv");
    ASSERT_EQ(rows.size(), 5u);
    for (const auto& row : rows) {
        std::vector<double> f;  // n, r, rho0, b, log BF, the alternative's two log integrals, the null's
        for (const auto& text : row) f.push_back(number(text));
        const double n = f[0], r = f[1], rho0 = f[2], b = f[3];
        SCOPED_TRACE(testing::Message() << "n " << n << " r " << r);
        BSNSettings s = fractionSettings();
        s.SetNullValue(rho0); s.SetRegrComPar(b);
        // The null model's integrals are deterministic.
        TaskRig rig({r}, {n});
        auto task = rig.task(s, 0, 1, 1);
        for (const auto& [m, ref] : {std::pair{n, f[7]}, std::pair{n * b, f[8]}}) {
            const double logF = task->SetNullIntegrand(m, r, rho0);
            EXPECT_NEAR(std::log(task->Calculate1DIntegralG1V(0)) + logF, ref, 1e-7);
        }
        std::vector<double> logBF;
        for (unsigned long seed = 11; seed <= 20; ++seed) {
            TaskRig one({r}, {n});
            one.task(s, 0, 1, seed)->RunTask();
            EXPECT_EQ(one.isLog[0], 0);
            EXPECT_NEAR(one.bf[0], std::exp(one.logBF[0]), 1e-14 * one.bf[0]);
            logBF.push_back(one.logBF[0]);
        }
        // Ten estimates: their mean within 4 standard errors, each within 5 sd, the sd small.
        const Moments m = moments(logBF);
        const double sd = std::sqrt(m.var);
        EXPECT_LT(sd, 0.2);
        EXPECT_NEAR(m.mean, f[4], 4 * sd / std::sqrt(10.0));
        for (double x : logBF) EXPECT_NEAR(x, f[4], 5 * sd);
    }
    // For m = 1e6 the null integrand is a spike of width 1e-3 at V = 1; its
    // integral is close to the Laplace value sqrt(4 pi (2 - 2 r rho0) / (m-1)).
    TaskRig rig({0.5}, {1e6});
    const BSNSettings s = fractionSettings();
    auto task = rig.task(s, 0, 1, 1);
    task->SetNullIntegrand(1e6, 0.5, 0.2);
    const double laplace = std::sqrt(4 * std::numbers::pi * (2 - 2 * 0.5 * 0.2) / (1e6 - 1));
    EXPECT_NEAR(task->Calculate1DIntegralG1V(0) / laplace, 1.0, 1e-4);
}

TEST(CorrelationFraction, LogarithmStoredOutsideTheExponentRange) {
    // Strong correlations over thousands of cases: |log BF| beyond 709.
    TaskRig rig({0.9, 0.1, -0.85}, {3000, 30, 3000});
    BSNSettings s = fractionSettings();
    s.SetTolValue(1e-6); s.SetMCSamples(500);
    auto task = rig.task(s, 0, 3, 5);
    task->RunTask();
    for (int p : {0, 2}) {
        EXPECT_EQ(rig.isLog[p], 1) << p;
        EXPECT_LT(rig.logBF[p], -709.0) << p;
        EXPECT_EQ(rig.bf[p], rig.logBF[p]) << p;
    }
    EXPECT_EQ(rig.isLog[1], 0);
    EXPECT_NEAR(rig.bf[1], std::exp(rig.logBF[1]), 1e-12);
    const auto& warnings = task->GetWarningMessages();
    EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(), [](const auto& w) { return w.GetCode() == 410041; }), 1);

    // A missing fraction is 0.5.
    ASSERT_TRUE(MCMV::IsMissing(s.GetRegrComPar()));
    BSNSettings half = s;
    half.SetRegrComPar(0.5);
    TaskRig explicitHalf({0.9, 0.1, -0.85}, {3000, 30, 3000});
    explicitHalf.task(half, 0, 3, 5)->RunTask();
    EXPECT_EQ(explicitHalf.logBF, rig.logBF);
}
