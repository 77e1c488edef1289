// The fractional Bayes factor of a correlation: its integrands against
// their formulas, the Monte-Carlo integrals and the whole factor against
// deterministic nested quadrature (tests/data/correlation_fraction.csv,
// mpmath) within the Monte-Carlo error, its determinism, and the
// logarithm stored where the factor leaves the exponent range.
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "bsn/correlation/bayesfactor2dimif.h"
#include "bsn/correlation/bayesfactor2dimmc.h"
#include "bsn/correlation/bayesfactor2dimrng.h"
#include "bsn/correlation/fractionfunctiong1v.h"
#include "tests/correlation/corrtestsupport.h"

using namespace corrtest;
using MCBSN_850::BayesFactor2DimIF;
using MCBSN_850::BayesFactor2DimMC;
using MCBSN_850::FractionFunctionG1V;

namespace {

struct FracCase {
    double n, r, rho0, b, logBF, logI1, logIb, l1, lb;
};

std::vector<FracCase> fracCases() {
    std::vector<FracCase> cases;
    const auto rows = readCsv("correlation_fraction.csv");
    for (std::size_t i = 1; i < rows.size(); ++i) {
        std::vector<double> v;
        for (const auto& f : rows[i]) v.push_back(std::stod(f));
        cases.push_back({v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]});
    }
    return cases;
}

double mean(const std::vector<double>& v) {
    double s = 0;
    for (double x : v) s += x;
    return s / v.size();
}

double sd(const std::vector<double>& v) {
    const double m = mean(v);
    double s = 0;
    for (double x : v) s += (x - m) * (x - m);
    return std::sqrt(s / (v.size() - 1));
}

BSNSettings fractionSettings() {
    BSNSettings s = corrSettings({0, 1}, BC::BayesFactor);
    s.SetEstBFType(BC::Fraction);
    s.SetTolValue(1e-10);
    return s;
}

} // namespace

TEST(CorrelationFraction, IntegrandsFollowTheirFormulas) {
    FractionFunctionG1V g;
    for (double m : {1.5, 9.0, 400.0})
        for (double r : {-0.7, 0.2})
            for (double rho0 : {0.0, 0.4}) {
                g.SetParam(m, r, rho0);
                const double base = 2 - 2 * r * rho0;
                EXPECT_NEAR(g.GetLogF1(), (m - 1) * (0.5 * std::log(1 - rho0 * rho0) - std::log(base)), 1e-12);
                for (double V : {1e-10, 0.1, 0.7, 1.0, 1.3, 50.0, 1e5}) {
                    const double s = std::sqrt(V);
                    const double direct = std::pow(base / (s + 1 / s - 2 * r * rho0), m - 1) / V;
                    EXPECT_NEAR(g.ComputeNI(V), direct, 1e-11 * direct) << m << " " << V;
                }
                EXPECT_EQ(g.ComputeNI(1.0), 1.0);
                EXPECT_TRUE(MCMV::IsMissing(g.ComputeNI(0.0)));
            }

    BayesFactor2DimIF h;
    EXPECT_EQ(h.GetMaxLog(), -std::numeric_limits<double>::max());
    EXPECT_EQ(h.GetLogScale(), 0.0);
    EXPECT_FALSE(h.IsValid());
    EXPECT_TRUE(MCMV::IsMissing(h.ComputeMC(1.0, 0.0)));
    h.SetParams(0.5, 30, 0.4);
    EXPECT_TRUE(h.IsValid());
    for (double V : {0.01, 0.9, 3.0, 700.0})
        for (double rho : {-0.95, 0.0, 0.41, 0.99}) {
            const double p = 15, s = std::sqrt(V);
            const double direct = (p - 3) / 2 * std::log(1 - rho * rho) - std::log(V) -
                                  (p - 1) * std::log(s + 1 / s - 2 * 0.4 * rho);
            EXPECT_NEAR(h.ComputeLogIntegrand(V, rho), direct, 1e-12 * (std::fabs(direct) + 1));
            h.UpdateMaxLog(V, rho);
        }
    h.ComputeLogScale(10000);
    EXPECT_NEAR(h.GetLogScale(), h.GetMaxLog() - (706.782712893384 - std::log(10000.0)), 1e-12);
    EXPECT_NEAR(h.ComputeMC(0.9, 0.41), std::exp(h.ComputeLogIntegrand(0.9, 0.41) - h.GetLogScale()),
                1e-12 * h.ComputeMC(0.9, 0.41));
    EXPECT_NEAR(h.ComputeMCDirect(0.9, 0.41), std::exp(h.ComputeLogIntegrand(0.9, 0.41)), 1e-15);
    EXPECT_EQ(h.ComputeMC(0.0, 0.3), 0.0);
    EXPECT_EQ(h.ComputeMC(1.0, 1.0), 0.0);
    for (double b : {0.0, 1.5}) {
        h.SetParams(b, 30, 0.4);
        EXPECT_FALSE(h.IsValid()) << b;
    }
}

TEST(CorrelationFraction, MonteCarloIntegralsWithinTheirErrorOfNestedQuadrature) {
    const auto cases = fracCases();
    ASSERT_EQ(cases.size(), 5u);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "n " << c.n << " r " << c.r);
        std::vector<double> logI1, logIb, logBF;
        BayesFactor2DimMC mc;
        for (unsigned long seed = 1; seed <= 12; ++seed) {
            mc.SetSeed(seed * 7919);
            mc.SetParams(c.b, c.n, c.r, 10000);
            logBF.push_back(mc.ComputeBayesFactorFromLogs(c.l1, c.lb));
            double a = 0, b = 0;
            mc.GetLogIntegrals(a, b);
            logI1.push_back(a);
            logIb.push_back(b);
            EXPECT_NEAR(mc.GetLogRatioOfIntegrals(), b - a, 1e-12);
        }
        // The mean of 12 independent estimates lies within 4 of its
        // standard errors of the integral, and every estimate within 5 of
        // its own.
        for (const auto& [est, ref] : {std::pair{logI1, c.logI1}, std::pair{logIb, c.logIb}, std::pair{logBF, c.logBF}}) {
            const double e = sd(est);
            EXPECT_GT(e, 0.0);
            EXPECT_LT(e, 0.2);
            EXPECT_NEAR(mean(est), ref, 4 * e / std::sqrt(12.0));
            for (double x : est) EXPECT_NEAR(x, ref, 5 * e);
        }
    }
}

TEST(CorrelationFraction, WholeFactorThroughTheTask) {
    const auto cases = fracCases();
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "n " << c.n << " r " << c.r);
        BSNSettings s = fractionSettings();
        s.SetNullValue(c.rho0);
        s.SetRegrComPar(c.b);
        // The null model's integrals are deterministic.
        TaskRig rig({c.r}, {c.n});
        auto task = rig.task(s, 0, 1, 1);
        for (const auto& [m, ref] : {std::pair{c.n, c.l1}, std::pair{c.n * c.b, c.lb}}) {
            const double logF = task->SetNullIntegrand(m, c.r, c.rho0);
            EXPECT_NEAR(std::log(task->Calculate1DIntegralG1V(0)) + logF, ref, 1e-7);
        }
        std::vector<double> logBF;
        for (unsigned long seed = 11; seed <= 20; ++seed) {
            TaskRig one({c.r}, {c.n});
            one.task(s, 0, 1, seed)->RunTask();
            EXPECT_EQ(one.isLog[0], 0);
            EXPECT_NEAR(one.bf[0], std::exp(one.logBF[0]), 1e-14 * one.bf[0]);
            logBF.push_back(one.logBF[0]);
        }
        EXPECT_NEAR(mean(logBF), c.logBF, 4 * sd(logBF) / std::sqrt(10.0));
    }
}

TEST(CorrelationFraction, SameSeedSameFactorWhateverCameBefore) {
    BayesFactor2DimMC mc;
    mc.SetSeed(42);
    mc.SetParams(0.5, 25, 0.3, 2000);
    const double first = mc.ComputeBayesFactorFromLogs(-1.0, -2.0);
    long u1 = -1, ub = -1;
    mc.GetNumberOfUnderflows(u1, ub);
    EXPECT_GE(u1, 0);
    mc.SetParams(0.5, 90, -0.6, 2000);
    const double other = mc.ComputeBayesFactorFromLogs(-1.0, -2.0);
    mc.SetParams(0.5, 25, 0.3, 2000);
    EXPECT_EQ(mc.ComputeBayesFactorFromLogs(-1.0, -2.0), first);
    EXPECT_NE(other, first);
    BayesFactor2DimMC fresh;
    fresh.SetSeed(42);
    fresh.SetParams(0.5, 25, 0.3, 2000);
    EXPECT_EQ(fresh.ComputeBayesFactorFromLogs(-1.0, -2.0), first);
    EXPECT_NEAR(fresh.ComputeBayesFactor(std::exp(-1.0), std::exp(-2.0)), std::exp(first), 1e-12 * std::exp(first));
    fresh.SetSeed(43);
    fresh.SetParams(0.5, 25, 0.3, 2000);
    EXPECT_NE(fresh.ComputeBayesFactorFromLogs(-1.0, -2.0), first);
    // A fixed log scale changes nothing but the scale.
    fresh.SetSeed(42);
    fresh.SetParams(0.5, 25, 0.3, 2000);
    fresh.SetLogScale(-5.0);
    EXPECT_NEAR(fresh.ComputeBayesFactorFromLogs(-1.0, -2.0), first, 1e-12);
    // Invalid settings give nothing.
    fresh.SetParams(0.5, 25, 0.3, -1);
    EXPECT_FALSE(fresh.IsValid());
    EXPECT_TRUE(MCMV::IsMissing(fresh.ComputeBayesFactorFromLogs(-1.0, -2.0)));
}

TEST(CorrelationFraction, NarrowNullIntegrandIsFoundAtLargeN) {
    // For m = 1e6 the integrand is a spike of width 1e-3 at V = 1; its
    // integral is close to the Laplace value sqrt(4 pi (2 - 2 r rho0) / (m-1)).
    TaskRig rig({0.5}, {1e6});
    BSNSettings s = fractionSettings();
    auto task = rig.task(s, 0, 1, 1);
    task->SetNullIntegrand(1e6, 0.5, 0.2);
    const double laplace = std::sqrt(4 * std::numbers::pi * (2 - 2 * 0.5 * 0.2) / (1e6 - 1));
    EXPECT_NEAR(task->Calculate1DIntegralG1V(0) / laplace, 1.0, 1e-4);
}

TEST(CorrelationFraction, LogarithmStoredOutsideTheExponentRange) {
    // Strong correlations over thousands of cases: |log BF| beyond 709.
    TaskRig rig({0.9, 0.1, -0.85}, {3000, 30, 3000});
    BSNSettings s = fractionSettings();
    s.SetTolValue(1e-6);
    s.SetMCSamples(500);
    auto task = rig.task(s, 0, 3, 5);
    task->RunTask();
    for (int p : {0, 2}) {
        EXPECT_EQ(rig.isLog[p], 1) << p;
        EXPECT_LT(rig.logBF[p], -709.0) << p;
        EXPECT_EQ(rig.bf[p], rig.logBF[p]) << p;
    }
    EXPECT_EQ(rig.isLog[1], 0);
    EXPECT_NEAR(rig.bf[1], std::exp(rig.logBF[1]), 1e-12);
    int count = 0;
    for (const auto& w : task->GetWarningMessages()) count += w.GetCode() == 410041;
    EXPECT_EQ(count, 1);

    // A missing fraction is 0.5.
    BSNSettings half = s;
    half.SetRegrComPar(0.5);
    TaskRig explicitHalf({0.9, 0.1, -0.85}, {3000, 30, 3000});
    explicitHalf.task(half, 0, 3, 5)->RunTask();
    EXPECT_TRUE(MCMV::IsMissing(s.GetRegrComPar()));
    EXPECT_EQ(explicitHalf.logBF, rig.logBF);
}
