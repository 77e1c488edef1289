// The fractional factor of a correlation against nested mpmath quadrature
// (tests/data/correlation_fraction.csv), and its logarithm beyond the exponent range.
#include <numbers>

#include "tests/correlation/corrtestsupport.h"

using namespace corrtest;

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
