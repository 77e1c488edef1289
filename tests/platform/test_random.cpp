#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include <boost/random/mersenne_twister.hpp>

#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/random/mcrandomvalues.h"

using MCCommon_850::MCMV;
using MCMath_850::MCDistFun;
using MCMath_850::MCRandomValues;

namespace {

constexpr int kDraws = 100000;

// Kolmogorov-Smirnov distance of a sample from a continuous CDF.
double ksDistance(std::vector<double> x, const std::function<double(double)>& cdf) {
    std::sort(x.begin(), x.end());
    const double n = static_cast<double>(x.size());
    double d = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double f = cdf(x[i]);
        d = std::max({d, f - i / n, (i + 1) / n - f});
    }
    return d;
}

// Critical value of the KS distance at the 0.1% level.
const double kKsCritical = 1.95 / std::sqrt(static_cast<double>(kDraws));

void checkMoments(const std::vector<double>& x, double mean, double var, const char* what) {
    double s = 0.0;
    for (double v : x) s += v;
    const double m = s / x.size();
    double ss = 0.0, s4 = 0.0;
    for (double v : x) {
        ss += (v - m) * (v - m);
        s4 += std::pow(v - mean, 4);
    }
    const double sv = ss / (x.size() - 1);
    // Standard errors of the sample mean and of the sample variance (from the
    // fourth central moment, estimated from the draws).
    const double seMean = std::sqrt(var / x.size());
    const double seVar = std::sqrt((s4 / x.size() - var * var) / x.size());
    EXPECT_LT(std::fabs(m - mean), 4.5 * seMean) << what;
    EXPECT_LT(std::fabs(sv - var), 4.5 * seVar) << what;
}

} // namespace

TEST(MCRandomValues, UniformDistribution) {
    MCRandomValues r(2000000);
    std::vector<double> x(kDraws);
    for (double& v : x) {
        v = r.GetUniform();
        ASSERT_GT(v, 0.0);
        ASSERT_LT(v, 1.0);
    }
    checkMoments(x, 0.5, 1.0 / 12.0, "uniform");
    EXPECT_LT(ksDistance(x, [](double u) { return u; }), kKsCritical);
}

TEST(MCRandomValues, NormalDistribution) {
    MCRandomValues r(987654321UL);
    std::vector<double> x(kDraws);
    for (double& v : x) v = r.GetNormal();
    checkMoments(x, 0.0, 1.0, "normal");
    EXPECT_LT(ksDistance(x, [](double z) { return 0.5 * std::erfc(-z / std::sqrt(2.0)); }), kKsCritical);
    // Odd and even draws (the two halves of each polar pair) are each normal.
    std::vector<double> odd;
    for (std::size_t i = 1; i < x.size(); i += 2) odd.push_back(x[i]);
    EXPECT_LT(ksDistance(odd, [](double z) { return 0.5 * std::erfc(-z / std::sqrt(2.0)); }),
              1.95 / std::sqrt(static_cast<double>(odd.size())));
    MCRandomValues r2(5);
    std::vector<double> y(kDraws);
    for (double& v : y) v = r2.GetNormal(10.0, 3.0);
    checkMoments(y, 10.0, 9.0, "normal(10, 3)");
}

TEST(MCRandomValues, GammaDistributions) {
    struct Case {
        double shape, rate;
    };
    // Shape 1/2 rate 1/2 is chi-square with 1 df, the prior draw of the JZS
    // factor; shapes below 1 take the boosted path.
    for (const Case c : {Case{0.5, 0.5}, Case{0.3, 2.0}, Case{1.0, 1.0}, Case{2.5, 2.0}, Case{40.0, 0.1}}) {
        MCRandomValues r(2000000);
        ASSERT_TRUE(r.SetParamGamma(c.shape, c.rate));
        std::vector<double> x(kDraws);
        for (double& v : x) {
            v = r.GetGamma();
            ASSERT_GE(v, 0.0);
            ASSERT_FALSE(MCMV::IsMissing(v));
        }
        checkMoments(x, c.shape / c.rate, c.shape / (c.rate * c.rate), "gamma");
        const double d = ksDistance(x, [&](double v) { return MCDistFun::CdfGamma(v, c.shape, c.rate); });
        EXPECT_LT(d, kKsCritical) << c.shape << " " << c.rate;
    }
    // Chi-square(1) CDF written out independently: P(X <= x) = erf(sqrt(x/2)).
    MCRandomValues r(31);
    r.SetParamGamma(0.5, 0.5);
    std::vector<double> x(kDraws);
    for (double& v : x) v = r.GetGamma();
    EXPECT_LT(ksDistance(x, [](double v) { return std::erf(std::sqrt(v / 2.0)); }), kKsCritical);

    EXPECT_FALSE(r.SetParamGamma(0.0, 1.0));
    EXPECT_FALSE(r.SetParamGamma(1.0, -1.0));
    EXPECT_FALSE(r.SetParamGamma(MCMV::Missing(), 1.0));
    EXPECT_EQ(r.GetGammaShape(), 0.5);
    EXPECT_TRUE(MCMV::IsMissing(r.GetGamma(-1.0, 1.0)));
}

TEST(MCRandomValues, ReproducibleStreams) {
    // The engine is the standard Mersenne Twister: its 10000th output from
    // the default seed 5489 is fixed by its definition.
    boost::random::mt19937 mt(5489u);
    for (int i = 0; i < 9999; ++i) mt();
    EXPECT_EQ(mt(), 4123659995u);

    // Anchors for seed 2000000, computed by a separate implementation of the
    // engine's seeding and of the transforms documented in the header.
    MCRandomValues r(2000000);
    EXPECT_DOUBLE_EQ(r.GetUniform(), 0.28987429836337786);
    EXPECT_DOUBLE_EQ(r.GetUniform(), 0.05520358491726085);
    EXPECT_DOUBLE_EQ(r.GetUniform(), 0.0893389103720944);
    r.SetSeed(2000000);
    EXPECT_DOUBLE_EQ(r.GetNormal(), -0.10896277617370534);
    EXPECT_DOUBLE_EQ(r.GetNormal(), -0.23065361277575389);
    EXPECT_DOUBLE_EQ(r.GetNormal(), 0.2736279585253693);
    EXPECT_DOUBLE_EQ(r.GetNormal(), 0.988458400274242);
    r.SetSeed(2000000);
    r.SetParamGamma(0.5, 0.5);
    EXPECT_DOUBLE_EQ(r.GetGamma(), 0.00661628065256421);
    EXPECT_DOUBLE_EQ(r.GetGamma(), 1.41662184319972);
    EXPECT_DOUBLE_EQ(r.GetGamma(), 3.0825869639851504);
    r.SetSeed(2000000);
    EXPECT_DOUBLE_EQ(r.GetGamma(2.5, 2.0), 1.005101440003373);
    EXPECT_DOUBLE_EQ(r.GetGamma(2.5, 2.0), 0.9222893389543273);

    // Reseeding mid-pair drops the spare normal: the stream restarts exactly.
    MCRandomValues a(77), b(12);
    a.GetNormal();
    b.SetSeed(77);
    a.SetSeed(77);
    std::vector<double> va, vb;
    for (int i = 0; i < 1000; ++i) {
        va.push_back(a.GetGamma(0.5, 0.5) + a.GetNormal() + a.GetUniform());
        vb.push_back(b.GetGamma(0.5, 0.5) + b.GetNormal() + b.GetUniform());
    }
    EXPECT_EQ(va, vb);
    MCRandomValues c(78);
    EXPECT_NE(c.GetUniform(), MCRandomValues(77).GetUniform());
    // Seeds beyond 32 bits are not folded onto 32-bit ones.
    MCRandomValues wide(0x100000000UL + 77UL);
    EXPECT_NE(wide.GetUniform(), MCRandomValues(77).GetUniform());
}
