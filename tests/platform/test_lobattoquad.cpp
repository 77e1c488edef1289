#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "platform/common/mcmv.h"
#include "platform/quadrature/lobattoquad.h"

using MCCommon_850::MCMV;
using MCMath_850::IIntegrand;
using MCMath_850::LobattoQuad;

namespace {

struct FnIntegrand : IIntegrand {
    explicit FnIntegrand(std::function<double(double)> f) : f(std::move(f)) {}
    double ComputeNI(double x) override { return f(x); }
    std::function<double(double)> f;
};

double integrate(const std::function<double(double)>& f, double a, double b, double tol, int* iters = nullptr) {
    FnIntegrand fi(f);
    LobattoQuad q(fi);
    q.SetTolerance(tol);
    q.SetMaxIter(100000);
    const double r = q.Integrate(a, b);
    if (iters) *iters = q.GetNIterations();
    EXPECT_TRUE(q.GetWarnings().IsEmpty());
    return r;
}

} // namespace

TEST(LobattoQuad, RelativeToleranceRespected) {
    struct Case { std::string name; std::function<double(double)> f; double a, b, exact; };
    const double pi = std::acos(-1.0);
    const Case cases[] = {
        {"degree 9", [](double x) { return 10.0 * std::pow(x, 9) + x; }, 0.0, 1.0, 1.5},
        {"constant over a huge range", [](double) { return 2.0; }, 0.0, 1e300, 2e300},
        {"reversed bounds", [](double x) { return x; }, 3.0, 1.0, -4.0},
        {"exp", [](double x) { return std::exp(x); }, 0.0, 1.0, std::exp(1.0) - 1.0},
        {"exp(-x) long range", [](double x) { return std::exp(-x); }, 0.0, 50.0, 1.0 - std::exp(-50.0)},
        {"inverse square root", [](double x) { return 1.0 / std::sqrt(x); }, 0.0, 1.0, 2.0},
        {"strong pole", [](double x) { return std::pow(x, -0.9); }, 0.0, 1.0, 10.0},
        {"log endpoint", [](double x) { return std::log(x); }, 0.0, 1.0, -1.0},
        {"sharp peak", [](double x) { return 1.0 / (1e-6 + (x - 0.3) * (x - 0.3)); }, 0.0, 1.0,
         1e3 * (std::atan(0.7e3) + std::atan(0.3e3))},
        {"oscillating", [](double x) { return std::sin(20.0 * x) * std::sin(20.0 * x); }, 0.0, pi, pi / 2.0},
        {"heavy tail", [](double x) { return 1.0 / ((1.0 + x) * (1.0 + x)); }, 0.0, 1e5, 1.0 - 1.0 / (1.0 + 1e5)},
    };
    for (const Case& c : cases) {
        for (double tol : {1e-4, 1e-6, 1e-8, 1e-10}) {
            const double r = integrate(c.f, c.a, c.b, tol);
            ASSERT_FALSE(MCMV::IsMissing(r)) << c.name;
            EXPECT_LE(std::fabs(r - c.exact), tol * std::fabs(c.exact)) << c.name << " tol " << tol;
        }
    }
    // Degree 5: the 4-point Lobatto rule and its Kronrod extension are exact.
    int iters = 0;
    const double p5 = integrate([](double x) { return std::pow(x, 5) - 3.0 * x * x + 1.0; }, -1.0, 2.0, 1e-10, &iters);
    EXPECT_NEAR(p5, (64.0 - 1.0) / 6.0 - (8.0 + 1.0) + 3.0, 1e-13);
    EXPECT_EQ(iters, 1);
    EXPECT_EQ(integrate([](double x) { return x; }, 1.0, 1.0, 1e-10), 0.0);
}

TEST(LobattoQuad, MissingOrdinatesCountAsZero) {
    // NaN (sqrt of negatives) must not reach the result.
    FnIntegrand f([](double x) { return std::sqrt(x); });
    LobattoQuad q(f);
    q.SetTolerance(1e-10);
    const double r = q.Integrate(-1.0, 1.0);
    EXPECT_NEAR(r, 2.0 / 3.0, 1e-9);
    EXPECT_GT(q.GetNMissingOrdinates(), 0);

    EXPECT_EQ(integrate([](double) { return MCMV::Missing(); }, 0.0, 1.0, 1e-6), 0.0);
    EXPECT_TRUE(MCMV::IsMissing(q.Integrate(MCMV::Missing(), 1.0)));
    EXPECT_TRUE(MCMV::IsMissing(q.Integrate(0.0, std::numeric_limits<double>::infinity())));
    // A sum that overflows is reported missing, not infinite.
    EXPECT_TRUE(MCMV::IsMissing(integrate([](double) { return std::numeric_limits<double>::max(); }, 0.0, 10.0, 1e-6)));
}

TEST(LobattoQuad, IterationLimitWarnsOnceAndAlwaysEnds) {
    FnIntegrand peak([](double x) { return 1.0 / (1e-8 + (x - 0.3) * (x - 0.3)); });
    LobattoQuad q(peak);
    q.SetMaxIter(3);
    q.SetMaxIter(0);  // refused
    q.SetTolerance(-1.0);  // refused
    EXPECT_EQ(q.GetMaxIter(), 3);
    EXPECT_EQ(q.GetTolerance(), LobattoQuad::kDefaultTolerance);
    const double r = q.Integrate(0.0, 1.0);
    EXPECT_FALSE(MCMV::IsMissing(r));
    EXPECT_GE(q.GetNIterations(), 3);
    ASSERT_EQ(q.GetWarnings().Size(), 1u);
    const auto& w = q.GetWarnings().Get(0);
    EXPECT_EQ(w.GetCode(), 420001);
    EXPECT_TRUE(w.IsWarning());
    EXPECT_EQ(w.GetScaleDatum(0), 0.0);
    EXPECT_EQ(w.GetScaleDatum(1), 1.0);
    q.Integrate(0.0, 2.0);
    EXPECT_EQ(q.GetWarnings().Size(), 1u);  // listed once per object

    // The default limit is ample for the same peak.
    LobattoQuad ok(peak);
    EXPECT_NEAR(ok.Integrate(0.0, 1.0), 1e4 * (std::atan(0.7e4) + std::atan(0.3e4)), 1e-8 * 3.14e4);
    EXPECT_LT(ok.GetNIterations(), LobattoQuad::kDefaultMaxIter);
    EXPECT_TRUE(ok.GetWarnings().IsEmpty());

    // A jump, an unreachable tolerance and a huge limit still end (no machine numbers left).
    FnIntegrand jump([](double x) { return x < 1.0 / 3.0 ? 1.0 : 0.0; });
    LobattoQuad qj(jump);
    qj.SetTolerance(1e-300);
    qj.SetMaxIter(1000000);
    EXPECT_NEAR(qj.Integrate(0.0, 1.0), 1.0 / 3.0, 1e-12);
    EXPECT_LT(qj.GetNIterations(), 1000000);
}
