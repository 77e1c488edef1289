// The posterior of a correlation: within Monte-Carlo error of the exact values
// (rho = tanh z, z normal), equal to the sampling replayed draw by draw.
#include <limits>
#include <numbers>
#include <tuple>

#include <boost/math/distributions/normal.hpp>
#include <boost/math/quadrature/gauss_kronrod.hpp>
#include <boost/math/tools/minima.hpp>

#include "platform/random/mcrandomvalues.h"
#include "tests/correlation/corrtestsupport.h"

using namespace corrtest;
namespace bm = boost::math;

namespace {

struct Exact { double mean, variance, varianceOfSquares, lower, upper, mode, sdRho; };

double kernel(double rho, double r, double n, double c) {
    return c * std::log(1 - rho * rho) + (n - 1) / 2 * std::log(1 - rho * rho) - (n - 1.5) * std::log(1 - rho * r);
}

// Exact moments of rho = tanh z by quadrature over z; the narrowest 95%
// interval from rho's quantiles and the kernel's maximiser by Brent's method.
Exact exact(double r, double n, double c, double level) {
    const double mu = std::atanh(r) - 2.5 * r / n, sigma = std::sqrt(1 / (n + 1 - 2.5 * r * r));
    const bm::normal_distribution<> z(mu, sigma);
    auto moment = [&](auto f) {
        return bm::quadrature::gauss_kronrod<double, 61>::integrate(
            [&](double x) { return f(std::tanh(x)) * bm::pdf(z, x); }, mu - 12 * sigma, mu + 12 * sigma, 15, 1e-14);
    };
    Exact e{};
    e.mean = moment([](double t) { return t; });
    e.variance = moment([&](double t) { return (t - e.mean) * (t - e.mean); });
    e.varianceOfSquares = moment([&](double t) { return std::pow(t - e.mean, 4); }) - e.variance * e.variance;
    e.sdRho = std::sqrt(e.variance);
    const double mass = level / 100;
    auto width = [&](double p) { return std::tanh(bm::quantile(z, p + mass)) - std::tanh(bm::quantile(z, p)); };
    const auto best = bm::tools::brent_find_minima(width, 1e-12, 1 - mass - 1e-12, 50);
    e.lower = std::tanh(bm::quantile(z, best.first));
    e.upper = std::tanh(bm::quantile(z, best.first + mass));
    e.mode = bm::tools::brent_find_minima([&](double rho) { return -kernel(rho, r, n, c); }, -1 + 1e-12, 1 - 1e-12, 50)
                 .first;
    return e;
}

BSNSettings posteriorSettings(long draws) {
    BSNSettings s = corrSettings({0, 1}, BC::Posterior);
    s.SetPosteriorSamples(draws);
    return s;
}

} // namespace

TEST(CorrelationPosterior, SummariesWithinMonteCarloErrorOfExactValues) {
    const std::vector<double> rs = {0.0, 0.45, -0.8, 0.97, 0.3}, ns = {12, 40, 25, 300, 5000};
    const long M = 20000;
    TaskRig rig(rs, ns);
    rig.task(posteriorSettings(M), 0, 5, 77)->RunTask();
    for (std::size_t i = 0; i < rs.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "r " << rs[i] << " n " << ns[i]);
        const Exact e = exact(rs[i], ns[i], 0.0, 95.0);
        EXPECT_NEAR(rig.mean[i], e.mean, 4 * e.sdRho / std::sqrt(M));
        EXPECT_NEAR(rig.variance[i], e.variance, 4 * std::sqrt(e.varianceOfSquares / M));
        // The narrowest interval of the draws settles more slowly.
        EXPECT_NEAR(rig.lower[i], e.lower, 0.05 * e.sdRho);
        EXPECT_NEAR(rig.upper[i], e.upper, 0.05 * e.sdRho);
        // The mode is the draw nearest the kernel's peak.
        EXPECT_NEAR(rig.mode[i], e.mode, 0.01 * e.sdRho);
    }
}

TEST(CorrelationPosterior, MatchesTheSamplingProcedureReplayedDrawByDraw) {
    // Pairs of one task share one generator, seeded once; an invalid pair draws nothing.
    const std::vector<double> rs = {0.35, kMiss, -0.6, 0.999999}, ns = {30, 30, 8, 50};
    // c = -10: the kernel rises towards +-1 for the small pair, so every draw counts for the mode.
    for (const auto& [M, level, c] : std::vector<std::tuple<long, double, double>>{
             {1, 95, 0}, {2, 50, 0}, {7, 95, 0}, {1000, 95, 0}, {1001, 95, 0}, {1000, 50, 0}, {1001, 10, 0},
             {1000, 100, 0}, {1000, 0, 0}, {999, 95, -10}}) {
        SCOPED_TRACE(testing::Message() << "M " << M << " level " << level << " c " << c);
        BSNSettings s = posteriorSettings(M);
        s.SetCILevel(level); s.SetCorrCValue(c);
        TaskRig rig(rs, ns);
        rig.task(s, 0, 4, 123)->RunTask();
        MCMath_850::MCRandomValues gen(123);
        for (std::size_t i = 0; i < rs.size(); ++i) {
            if (MCMV::IsMissing(rs[i])) {
                EXPECT_TRUE(MCMV::IsMissing(rig.mode[i]) && MCMV::IsMissing(rig.lower[i]));
                continue;
            }
            const double r = rs[i], n = ns[i];
            const double mu = std::atanh(r) - 2.5 * r / n, sd = std::sqrt(1 / (n + 1 - 2.5 * r * r));
            std::vector<double> draws;
            long double sum = 0;
            double best = -std::numeric_limits<double>::max(), mode = kMiss;
            for (long d = 0; d < M; ++d) {
                const double rho = std::tanh(gen.GetNormal(mu, sd));
                draws.push_back(rho);
                sum += rho;
                const double k = kernel(rho, r, n, c);
                if (k > best) {
                    best = k;
                    mode = rho;
                }
            }
            EXPECT_EQ(rig.mode[i], mode);
            // Mean and divide-by-M variance, two passes in long double.
            const long double m = sum / M;
            long double ss = 0;
            for (double x : draws) ss += (x - m) * (x - m);
            EXPECT_NEAR(rig.mean[i], static_cast<double>(m), 1e-15);
            EXPECT_NEAR(rig.variance[i], static_cast<double>(ss / M), 1e-12 * static_cast<double>(ss / M));
            std::sort(draws.begin(), draws.end());
            const long k = std::min(static_cast<long>(std::floor(level * M / 100.0)), M - 1);
            double width = std::numeric_limits<double>::max(), lo = kMiss, hi = kMiss;
            for (long j = 0; j + k < M; ++j)
                if (draws[j + k] - draws[j] < width) {
                    width = draws[j + k] - draws[j];
                    lo = draws[j];
                    hi = draws[j + k];
                }
            EXPECT_EQ(std::pair(rig.lower[i], rig.upper[i]), std::pair(lo, hi));
            // The interval spans exactly k + 1 of the (distinct) draws.
            const auto inside = std::count_if(draws.begin(), draws.end(), [&](double x) { return x >= lo && x <= hi; });
            EXPECT_EQ(inside, k + 1);
        }
    }
}

TEST(CorrelationPosterior, PlotCurves) {
    // The bivariate normal log-likelihood, the prior (1 - rho^2)^c and the
    // posterior kernel scaled to peak at 1.
    const double r = 0.4, n = 25, lambda = 3.7, c = 1.5;
    TaskRig rig({r, 0.2}, {n, 10}, 9, 1);
    rig.logSxxSyy = {lambda, 1.0};
    BSNSettings s = posteriorSettings(100);
    s.SetCorrCValue(c); s.SetMaxNPlots(1);
    rig.task(s, 0, 2, 1)->RunTask();
    ASSERT_EQ(rig.post[0].size(), 9u);
    double top = 0;
    for (std::size_t j = 0; j < rig.x.size(); ++j) {
        const double rho = rig.x[j];
        // n cases of a bivariate normal (variances Sxx/n, Syy/n) at the data's own moments.
        const double sxxSyy = std::exp(lambda), det = sxxSyy / (n * n) * (1 - rho * rho);
        const double quad = n * (2 - 2 * rho * r) / (1 - rho * rho);
        const double ll = -n * std::log(2 * std::numbers::pi) - n / 2 * std::log(det) - quad / 2;
        EXPECT_NEAR(rig.ll[0][j], ll, 1e-10 * std::fabs(ll));
        EXPECT_NEAR(rig.prior[0][j], std::pow(1 - rho * rho, c), 1e-14);
        top = std::max(top, rig.post[0][j]);
        const double ratio = std::exp(kernel(rho, r, n, c) - kernel(rig.x[4], r, n, c));
        EXPECT_NEAR(rig.post[0][j] / rig.post[0][4], ratio, 1e-12 * ratio);
    }
    EXPECT_EQ(top, 1.0);
}
