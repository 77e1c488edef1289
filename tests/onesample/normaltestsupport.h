#pragma once
// Shared pieces of the normal-mean procedure tests: the component runner, a
// cancelling progress listener, and reference computations (weighted moments
// from the data, the summary of a density known on a grid).
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <vector>

#include "platform/common/mcmv.h"
#include "tests/frame/componentrun.h"

namespace normaltest {

using MCBSN_850::BSNSettings;
using MCCommon_850::MCMV;
namespace BC = MCBSN_850::BSNConst;
namespace bm = boost::math;

inline const double kMiss = MCMV::Missing();

inline MCXML_850::MCVarList makeVarList(int n) { return bsntest::ScaleVars(static_cast<std::size_t>(n)); }

// One-sample normal settings for the test variables `vars`.
inline BSNSettings oneSampleNormal(std::vector<int> vars, BC::AnalysTypes type, BC::DistTypes meanPrior = BC::Diffuse,
                                   BC::DistTypes varPrior = BC::Jeffreys2) {
    BSNSettings s;
    s.SetModelType(BC::OneSample, false);
    s.SetTestDistType(BC::Normal);
    s.SetAnalysType(type);
    s.SetCovariates(std::move(vars));
    s.SetMeanDistType(meanPrior);
    s.SetPriorDistType(varPrior);
    return s;
}

// The shared runner under the names these tests use.
struct NormalRun : bsntest::ComponentRun {
    using ComponentRun::ComponentRun;
    template <class Out>
    const Out& result() const { return Result<Out>(); }
    std::vector<int> warningCodes() const { return WarningCodes(); }
    int count(int code) const { return Count(code); }
};

// Counts progress reports and, at report number `cancelAt` (1-based),
// raises the cancel flag.
struct CancellingListener : bsntest::RecordCounts {
    CancellingListener(MCCommon_850::MCAtomicCancel& cancel, int cancelAt) {
        onNotify = [this, &cancel, cancelAt] {
            if (static_cast<int>(records.size()) == cancelAt) cancel.Cancel();
        };
    }
    std::vector<int>& records = counts;
};

// Weighted mean and sample variance (divisor sum of weights - 1), two-pass.
struct Moments {
    double n = 0, mean = 0, var = 0;
};
inline Moments moments(const std::vector<double>& x, const std::vector<double>& w = {}) {
    const auto wt = [&](std::size_t i) { return w.empty() ? 1.0 : w[i]; };
    Moments m;
    double sum = 0, ss = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        m.n += wt(i);
        sum += wt(i) * x[i];
    }
    m.mean = sum / m.n;
    for (std::size_t i = 0; i < x.size(); ++i) ss += wt(i) * (x[i] - m.mean) * (x[i] - m.mean);
    m.var = ss / (m.n - 1.0);
    return m;
}

// Summary of a one-dimensional density known on an even grid up to a
// constant: mean, variance and equal-tailed quantiles (trapezoid rule, the
// cumulative distribution interpolated linearly).
struct GridPosterior {
    double mean = 0, var = 0, lower = 0, upper = 0;
};
inline GridPosterior summarise(const std::vector<double>& mu, const std::vector<double>& dens, double alpha) {
    const std::size_t n = mu.size();
    const double h = mu[1] - mu[0];
    std::vector<double> cdf(n, 0.0);
    for (std::size_t k = 1; k < n; ++k) cdf[k] = cdf[k - 1] + 0.5 * h * (dens[k] + dens[k - 1]);
    const double total = cdf.back();
    double m1 = 0, m2 = 0;
    for (std::size_t k = 0; k < n; ++k) {
        const double wk = (k == 0 || k == n - 1 ? 0.5 : 1.0) * h * dens[k] / total;
        m1 += wk * mu[k];
        m2 += wk * mu[k] * mu[k];
    }
    auto quantile = [&](double p) {
        const double target = p * total;
        const auto it = std::lower_bound(cdf.begin(), cdf.end(), target);
        const std::size_t k = static_cast<std::size_t>(it - cdf.begin());
        if (k == 0) return mu.front();
        const double f = (target - cdf[k - 1]) / (cdf[k] - cdf[k - 1]);
        return mu[k - 1] + f * h;
    };
    GridPosterior g;
    g.mean = m1;
    g.var = m2 - m1 * m1;
    g.lower = quantile(alpha / 2.0);
    g.upper = quantile(1.0 - alpha / 2.0);
    return g;
}

} // namespace normaltest
