#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <boost/math/special_functions/gamma.hpp>

#include "platform/common/mcmv.h"
#include "platform/random/mcrandomvalues.h"

using MCCommon_850::MCMV;
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

} // namespace

TEST(MCRandomValues, DrawsFollowTheirDistributions) {
    struct Case {
        std::string name;
        unsigned long seed;
        std::function<double(MCRandomValues&)> draw;
        double lo, hi;  // the draws' range
        std::function<double(double)> cdf;
    };
    const double big = 1e300;
    const auto normalCdf = [](double z) { return 0.5 * std::erfc(-z / std::sqrt(2.0)); };
    // Uniform draws lie strictly inside (0, 1): callers take their logarithm.
    std::vector<Case> cases = {
        {"uniform", 2000000, [](MCRandomValues& r) { return r.GetUniform(); }, std::nextafter(0.0, 1.0),
         std::nextafter(1.0, 0.0), [](double u) { return u; }},
        {"normal", 987654321UL, [](MCRandomValues& r) { return r.GetNormal(); }, -big, big, normalCdf},
    };
    // Shape 1/2 rate 1/2: the JZS prior draw; shapes below 1 take the boosted path.
    for (const auto& [shape, rate] : {std::pair{0.5, 0.5}, {0.3, 2.0}, {1.0, 1.0}, {2.5, 2.0}, {40.0, 0.1}})
        cases.push_back({"gamma " + std::to_string(shape) + " " + std::to_string(rate), 2000000,
                         [=](MCRandomValues& r) { return r.GetGamma(shape, rate); }, 0.0, big,
                         [=](double v) { return boost::math::gamma_p(shape, rate * v); }});
    for (const Case& c : cases) {
        MCRandomValues r(c.seed);
        std::vector<double> x(kDraws);
        for (double& v : x) {
            v = c.draw(r);
            ASSERT_TRUE(v >= c.lo && v <= c.hi) << c.name << ": " << v;
        }
        EXPECT_LT(ksDistance(x, c.cdf), kKsCritical) << c.name;
        if (c.name != "normal") continue;
        std::vector<double> odd;  // the second halves of the polar pairs are normal too
        for (std::size_t i = 1; i < x.size(); i += 2) odd.push_back(x[i]);
        EXPECT_LT(ksDistance(odd, normalCdf), 1.95 / std::sqrt(static_cast<double>(odd.size())));
    }

    MCRandomValues r(31);
    ASSERT_TRUE(r.SetParamGamma(0.5, 0.5));
    EXPECT_FALSE(r.SetParamGamma(0.0, 1.0));
    EXPECT_FALSE(r.SetParamGamma(1.0, -1.0));
    EXPECT_FALSE(r.SetParamGamma(MCMV::Missing(), 1.0));
    EXPECT_EQ(r.GetGammaShape(), 0.5);
    EXPECT_TRUE(MCMV::IsMissing(r.GetGamma(-1.0, 1.0)));
}

TEST(MCRandomValues, ReproducibleStreams) {
    // Anchors from a separate implementation of the seeding and the documented transforms.
    MCRandomValues r(2000000);
    r.SetParamGamma(0.5, 0.5);
    const std::vector<std::pair<std::function<double()>, std::vector<double>>> anchors = {
        {[&] { return r.GetUniform(); }, {0.28987429836337786, 0.05520358491726085, 0.0893389103720944}},
        {[&] { return r.GetNormal(); },
         {-0.10896277617370534, -0.23065361277575389, 0.2736279585253693, 0.988458400274242}},
        {[&] { return r.GetGamma(); }, {0.00661628065256421, 1.41662184319972, 3.0825869639851504}},
        {[&] { return r.GetGamma(2.5, 2.0); }, {1.005101440003373, 0.9222893389543273}},
    };
    for (const auto& [draw, values] : anchors) {
        r.SetSeed(2000000);
        for (double v : values) EXPECT_DOUBLE_EQ(draw(), v);
    }

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
    // Seeds beyond 32 bits are not folded onto 32-bit ones.
    MCRandomValues wide(0x100000000UL + 77UL);
    EXPECT_NE(wide.GetUniform(), MCRandomValues(77).GetUniform());
}
