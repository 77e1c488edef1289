#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <boost/math/special_functions/beta.hpp>

#include "bsn/frame/bsnsettings.h"
#include "bsn/onesample/bsn1samplenormalfactor.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "platform/common/mcmv.h"
#include "platform/progress/mcquerycancel.h"
#include "platform/records/columnrecorditer.h"
#include "platform/stats/mccontstats.h"
#include "tests/onesample/jzsreference.h"

using MCBSN_850::BSN1SampleNormalFactor;
using MCBSN_850::BSN1SampleNormalUtils;
using MCBSN_850::BSNSettings;
using MCCommon_850::MCMV;
using MCCommon_850::MCWarnings;
using MCMath_850::MCContStats;
namespace BSNConst = MCBSN_850::BSNConst;

namespace {

constexpr double kMiss = MCMV::Missing();

double rel(double a, double b) { return std::fabs(a / b - 1.0); }

double simple(double t, double N, double g) {
    double bf = 0.0;
    BSN1SampleNormalUtils::computeBetaForUnKnownVarSimple(t, N, g, &bf);
    return bf;
}

double known(double N, double g, double mu0, double var, double mean) {
    double bf = 0.0;
    BSN1SampleNormalUtils::computeBetaForKnownVar(N, g, mu0, var, mean, &bf);
    return bf;
}

double normalPdf(double x, double mean, double var) {
    return std::exp(-(x - mean) * (x - mean) / (2.0 * var)) / std::sqrt(2.0 * std::acos(-1.0) * var);
}

// Cancels from the n-th question on.
class CancelAfter : public MCCommon_850::MCQueryCancel {
public:
    explicit CancelAfter(int n) : m_n(n) {}
    bool IsCancel() const override { return ++m_calls >= m_n; }

private:
    int m_n;
    mutable int m_calls = 0;
};

// Test variables built from raw values with whole weights; standard errors
// from a two-pass variance, as the driver would store them (0 for constant
// data, missing below two cases).
struct Data {
    std::vector<MCContStats> stats;
    std::vector<double> se, mean, n, sd;
    void add(const std::vector<double>& x, const std::vector<double>& w = {}) {
        MCContStats s;
        double sw = 0.0, sx = 0.0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double wi = w.empty() ? 1.0 : w[i];
            s.Update(x[i], wi);
            sw += wi;
            sx += wi * x[i];
        }
        double ss = 0.0;
        for (std::size_t i = 0; i < x.size(); ++i) ss += (w.empty() ? 1.0 : w[i]) * (x[i] - sx / sw) * (x[i] - sx / sw);
        stats.push_back(s);
        mean.push_back(sx / sw);
        n.push_back(sw);
        sd.push_back(sw >= 2 ? std::sqrt(ss / (sw - 1)) : kMiss);
        se.push_back(sw >= 2 ? std::sqrt(ss / (sw - 1) / sw) : kMiss);
    }
};

Data sample() {
    Data d;
    d.add({4.1, 5.3, 6.2, 3.8, 5.9, 4.4, 5.0, 6.8, 5.5, 4.9});  // N 10
    d.add({2.0, 2.0, 2.0});                                    // constant
    d.add({7.0});                                              // one case
    d.add({1.0, 2.0, 3.0, 4.0}, {2.0, 1.0, 3.0, 1.0});         // N 7 by weights
    return d;
}

BSNSettings settingsFor(std::size_t nVars) {
    BSNSettings s;
    std::vector<int> cov;
    for (std::size_t i = 0; i < nVars; ++i) cov.push_back(static_cast<int>(i));
    s.SetCovariates(cov);
    s.SetAnalysType(BSNConst::BayesFactor);
    return s;
}

struct Outcome {
    std::vector<double> bf, t, sig;
    MCCommon_850::MCStatus status;
    MCWarnings warnings;
};

Outcome run(const BSNSettings& s, const Data& d, MCCommon_850::MCQueryCancel* query = nullptr) {
    MCXML_850::MCVarList vars;
    std::vector<std::vector<double>> cols;
    MCCommon_850::ColumnRecordIter iter(cols);
    MCMath_850::MCCancelInfo cancel(query);
    Outcome r;
    BSN1SampleNormalFactor f(s, vars, d.stats, d.se, r.warnings);
    r.status = f.BuildModel(iter, cancel);
    r.bf = f.getFactor();
    r.t = f.getTtest();
    r.sig = f.getSig();
    return r;
}

} // namespace

TEST(NormalFactors, SimpleClosedForm) {
    for (double N : {2.0, 10.0, 250.0, 1e9})
        for (double g : {0.1, 1.0, 7.5}) EXPECT_LT(rel(simple(0.0, N, g), std::sqrt(1.0 + N * g)), 1e-13);
    for (const auto& [t, N, g] : {std::tuple{1.7, 12.0, 1.0}, std::tuple{-3.2, 40.0, 0.5}, std::tuple{0.4, 3.0, 4.0}}) {
        const double nu = N - 1.0, x = 1.0 + N * g;
        const double expected =
            std::sqrt(x) * std::pow(1.0 + t * t / (x * nu), (nu + 1) / 2) / std::pow(1.0 + t * t / nu, (nu + 1) / 2);
        EXPECT_LT(rel(simple(t, N, g), expected), 1e-12);
    }
    // Strong evidence underflows to 0; nothing becomes NaN or infinite.
    EXPECT_EQ(simple(100.0, 1e9, 1.0), 0.0);
    EXPECT_GT(simple(100.0, 10.0, 1.0), 0.0);
    EXPECT_TRUE(MCMV::IsMissing(simple(1.0, 1.0, 1.0)));  // no df
    EXPECT_TRUE(MCMV::IsMissing(simple(1.0, 10.0, 0.0)));
    EXPECT_TRUE(MCMV::IsMissing(simple(1.0, 10.0, -1.0)));
    EXPECT_TRUE(MCMV::IsMissing(simple(kMiss, 10.0, 1.0)));
    EXPECT_TRUE(MCMV::IsMissing(simple(1.0, 10.0, kMiss)));
    EXPECT_TRUE(MCMV::IsMissing(simple(0.0, 1e300, 1e300)));  // beyond the range of a double
}

TEST(NormalFactors, KnownVarianceIsRatioOfNormalDensities) {
    // At the null value the factor is sqrt(1 + N g) whatever the variance.
    EXPECT_LT(rel(known(25.0, 2.0, 3.0, 4.0, 3.0), std::sqrt(51.0)), 1e-14);
    EXPECT_LT(rel(known(1e9, 1.0, 0.0, 1e-6, 0.0), std::sqrt(1.0 + 1e9)), 1e-14);
    // Elsewhere: density of the sample mean under the null (variance s2/N)
    // over that under the alternative (variance s2/N + g s2).
    for (const auto& [N, g, mu0, s2, M] : {std::tuple{10.0, 1.0, 0.0, 2.0, 0.7}, std::tuple{50.0, 0.3, 5.0, 9.0, 4.1},
                                          std::tuple{3.0, 10.0, -1.0, 0.5, 0.2}}) {
        const double expected = normalPdf(M, mu0, s2 / N) / normalPdf(M, mu0, s2 / N + g * s2);
        EXPECT_LT(rel(known(N, g, mu0, s2, M), expected), 1e-12);
    }
    // A missing null value counts as 0.
    EXPECT_EQ(known(10.0, 1.0, kMiss, 2.0, 0.7), known(10.0, 1.0, 0.0, 2.0, 0.7));
    // A zero variance: a point mass away from the mean gives 0, at it sqrt(1+Ng).
    EXPECT_EQ(known(10.0, 1.0, 0.0, 0.0, 0.7), 0.0);
    EXPECT_LT(rel(known(10.0, 1.0, 0.7, 0.0, 0.7), std::sqrt(11.0)), 1e-14);
    EXPECT_EQ(known(1e9, 1.0, 0.0, 1.0, 5.0), 0.0);  // underflow, not NaN
    for (const auto& [N, g, s2, M] : {std::tuple{0.0, 1.0, 1.0, 1.0}, std::tuple{10.0, 0.0, 1.0, 1.0},
                                      std::tuple{10.0, 1.0, -1.0, 1.0}, std::tuple{10.0, 1.0, kMiss, 1.0},
                                      std::tuple{10.0, 1.0, 1.0, kMiss}, std::tuple{10.0, kMiss, 1.0, 1.0}})
        EXPECT_TRUE(MCMV::IsMissing(known(N, g, 0.0, s2, M)));
}

TEST(NormalFactors, PerVariableChoice) {
    MCWarnings w;
    double bf = 0.0;
    BSNSettings s = settingsFor(3);
    // No variances: the estimation type decides.
    s.SetEstBFType(BSNConst::Simple);
    s.SetAlterGValues({0.5, 2.0, 1.0});
    EXPECT_TRUE(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).IsOK());
    EXPECT_LT(rel(bf, simple(1.3, 20.0, 2.0)), 1e-15);
    s.SetAlterGValues({});
    EXPECT_EQ(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).GetCode(), 410019);
    s.SetEstBFType(BSNConst::JZS);
    EXPECT_TRUE(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).IsOK());
    EXPECT_LT(rel(bf, jzsref::cutoffFactor(20.0, 1.3)), 1e-6);
    for (auto type : {BSNConst::Fraction, BSNConst::CustomBF}) {
        s.SetEstBFType(type);
        EXPECT_TRUE(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).IsOK());
        EXPECT_TRUE(MCMV::IsMissing(bf));
    }
    // A variance for the variable: the known-variance factor with its g and null value.
    s.SetEstBFType(BSNConst::JZS);
    s.SetDataVarVals({kMiss, 4.0, kMiss});
    s.SetAlterGValues({0.5, 2.0, 1.0});
    s.SetNullValues({0.0, 0.1, 0.0});
    EXPECT_TRUE(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).IsOK());
    EXPECT_LT(rel(bf, known(20.0, 2.0, 0.0, 4.0, 0.4)), 1e-15);  // 0.4: the mean minus the null value
    // ... whose g list and null-value list must fit.
    s.SetAlterGValues({0.5, 2.0});
    EXPECT_EQ(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).GetCode(), 410019);
    s.SetAlterGValues({0.5, 2.0, 1.0});
    s.SetNullValues({0.1});
    EXPECT_EQ(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).GetCode(), 410019);
    s.SetNullValues({});
    EXPECT_TRUE(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w).IsOK());
    EXPECT_LT(rel(bf, known(20.0, 2.0, 0.0, 4.0, 0.4)), 1e-15);
    // A variance list of the wrong length is ignored: JZS again.
    s.SetDataVarVals({4.0, 4.0});
    BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, 1.3, 0.4, &bf, w);
    EXPECT_LT(rel(bf, jzsref::cutoffFactor(20.0, 1.3)), 1e-6);
    // No t statistic: no factor of any kind, and no complaint.
    s.SetAlterGValues({});
    s.SetDataVarVals({kMiss, 4.0, kMiss});
    EXPECT_TRUE(BSN1SampleNormalUtils::ComputeFactorForVariable(s, 1, 3, 20.0, kMiss, 0.4, &bf, w).IsOK());
    EXPECT_TRUE(MCMV::IsMissing(bf));
    EXPECT_TRUE(w.IsEmpty());
}

TEST(NormalFactor, TTestAndJZSLoop) {
    const Data d = sample();
    BSNSettings s = settingsFor(4);
    s.SetNullValues({5.0, 2.0, kMiss, kMiss});
    const Outcome r = run(s, d);
    ASSERT_TRUE(r.status.IsOK());
    ASSERT_EQ(r.bf.size(), 4u);
    // t against the null value (missing entries count as 0); two-sided
    // significance from the incomplete beta function.
    const double t0 = (d.mean[0] - 5.0) / d.se[0];
    const double t3 = d.mean[3] / d.se[3];
    EXPECT_NEAR(r.t[0], t0, 1e-12);
    EXPECT_NEAR(r.t[3], t3, 1e-12);
    EXPECT_NEAR(r.sig[0], boost::math::ibeta(4.5, 0.5, 9.0 / (9.0 + t0 * t0)), 1e-12);
    EXPECT_NEAR(r.sig[3], boost::math::ibeta(3.0, 0.5, 6.0 / (6.0 + t3 * t3)), 1e-12);
    // Constant data and a single case: no t, no significance, no factor.
    for (int i : {1, 2}) {
        EXPECT_TRUE(MCMV::IsMissing(r.t[i]));
        EXPECT_TRUE(MCMV::IsMissing(r.sig[i]));
        EXPECT_TRUE(MCMV::IsMissing(r.bf[i]));
    }
    EXPECT_LT(rel(r.bf[0], jzsref::cutoffFactor(10.0, t0)), 1e-6);
    EXPECT_LT(rel(r.bf[3], jzsref::cutoffFactor(7.0, t3)), 1e-6);
    EXPECT_TRUE(r.warnings.IsEmpty());

    // Quadrature warnings reach the procedure's collection.
    s.SetMaxIterations(20);
    const Outcome limited = run(s, d);
    EXPECT_TRUE(limited.status.IsOK());
    EXPECT_TRUE(limited.warnings.Contains(420001));
    EXPECT_FALSE(MCMV::IsMissing(limited.bf[0]));

    // Estimation types without a factor here leave everything missing quietly.
    for (auto type : {BSNConst::Fraction, BSNConst::CustomBF}) {
        s.SetEstBFType(type);
        const Outcome none = run(s, d);
        EXPECT_TRUE(none.status.IsOK());
        EXPECT_TRUE(none.warnings.IsEmpty());
        for (double v : none.bf) EXPECT_TRUE(MCMV::IsMissing(v));
        EXPECT_NEAR(none.t[0], t0, 1e-12);
    }
}

TEST(NormalFactor, SimpleLoopRulesAndCancellation) {
    const Data d = sample();
    BSNSettings s = settingsFor(4);
    s.SetEstBFType(BSNConst::Simple);
    s.SetAlterGValues({1.0, 1.0, 1.0, 3.0});
    const Outcome r = run(s, d);
    ASSERT_TRUE(r.status.IsOK());
    const double t0 = d.mean[0] / d.se[0], t3 = d.mean[3] / d.se[3];
    EXPECT_LT(rel(r.bf[0], simple(t0, 10.0, 1.0)), 1e-14);
    EXPECT_LT(rel(r.bf[3], simple(t3, 7.0, 3.0)), 1e-14);
    EXPECT_TRUE(MCMV::IsMissing(r.bf[1]));

    // A variance list shorter than the variables is ignored entirely.
    s.SetDataVarVals({1.0});
    const Outcome ignored = run(s, d);
    EXPECT_EQ(ignored.bf, r.bf);

    // An empty g list stops at the first variable.
    s.SetDataVarVals({});
    s.SetAlterGValues({});
    const Outcome noG = run(s, d);
    EXPECT_EQ(noG.status.GetCode(), 410019);
    EXPECT_TRUE(noG.status.IsError());
    for (double v : noG.bf) EXPECT_TRUE(MCMV::IsMissing(v));
    EXPECT_FALSE(MCMV::IsMissing(noG.t[0]));  // the t test ran first

    // Cancelled before the factors: t values only.
    s.SetAlterGValues({1.0, 1.0, 1.0, 3.0});
    CancelAfter now(1);
    const Outcome early = run(s, d, &now);
    EXPECT_EQ(early.status.GetCode(), 410016);
    EXPECT_FALSE(MCMV::IsMissing(early.t[0]));
    for (double v : early.bf) EXPECT_TRUE(MCMV::IsMissing(v));
    // Cancelled before the second variable of the Simple loop: the first stays.
    CancelAfter later(3);
    const Outcome partial = run(s, d, &later);
    EXPECT_EQ(partial.status.GetCode(), 410016);
    EXPECT_EQ(partial.bf[0], r.bf[0]);
    EXPECT_TRUE(MCMV::IsMissing(partial.bf[3]));
}

TEST(NormalFactor, KnownVariancePath) {
    const Data d = sample();
    BSNSettings s = settingsFor(4);
    s.SetEstBFType(BSNConst::JZS);
    s.SetDataVarVals({2.0, 1.0, 1.0, kMiss});
    s.SetAlterGValues({0.5, 1.0, 1.0, 2.0});
    s.SetNullValues({5.0, 0.0, 0.0, 1.0});
    const Outcome r = run(s, d);
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_LT(rel(r.bf[0], normalPdf(d.mean[0], 5.0, 2.0 / 10.0) / normalPdf(d.mean[0], 5.0, 2.0 / 10.0 + 0.5 * 2.0)),
              1e-12);
    EXPECT_TRUE(MCMV::IsMissing(r.bf[1]));  // skipped: no t
    EXPECT_LT(rel(r.bf[3], jzsref::cutoffFactor(7.0, (d.mean[3] - 1.0) / d.se[3])), 1e-6);  // unknown: JZS

    // A g list of the wrong length stops at the first known variance; the
    // later variable gets nothing.
    s.SetAlterGValues({0.5, 1.0});
    const Outcome bad = run(s, d);
    EXPECT_EQ(bad.status.GetCode(), 410019);
    EXPECT_TRUE(MCMV::IsMissing(bad.bf[0]));
    EXPECT_TRUE(MCMV::IsMissing(bad.bf[3]));
    // The first variable's factor, computed before the failing one, stays.
    s.SetDataVarVals({kMiss, 1.0, 1.0, 2.0});
    const Outcome afterFirst = run(s, d);
    EXPECT_EQ(afterFirst.status.GetCode(), 410019);
    EXPECT_LT(rel(afterFirst.bf[0], jzsref::cutoffFactor(10.0, (d.mean[0] - 5.0) / d.se[0])), 1e-6);
    EXPECT_TRUE(MCMV::IsMissing(afterFirst.bf[3]));
}
