// The one-sample normal procedure end to end through the component, its factor stage on given
// accumulators, and the small helpers of BSN1SampleNormalUtils it shares with related samples.
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include <boost/math/special_functions/beta.hpp>

#include "bsn/onesample/bsn1samplenormalfactor.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "platform/records/record.h"
#include "platform/stats/mccontstats.h"
#include "tests/onesample/jzsreference.h"
#include "tests/onesample/normaltestsupport.h"

using namespace normaltest;
using namespace MCBSN_850;
using MCCommon_850::MCWarnings;

namespace {

const BSN1SampleNormOutputStats& output(const NormalRun& r) { return r.result<BSN1SampleNormOutputStats>(); }

double rel(double a, double b) { return std::fabs(a / b - 1.0); }

// The factor and its log from one call.
std::pair<double, double> simple(double t, double N, double g) {
    double bf = 0.0, logBf = 0.0;
    BSN1SampleNormalUtils::computeBetaForUnKnownVarSimple(t, N, g, &bf, &logBf);
    return {bf, logBf};
}

std::pair<double, double> known(double N, double g, double mu0, double var, double mean) {
    double bf = 0.0, logBf = 0.0;
    BSN1SampleNormalUtils::computeBetaForKnownVar(N, g, mu0, var, mean, &bf, &logBf);
    return {bf, logBf};
}

double normalPdf(double x, double mean, double var) {
    return std::exp(-(x - mean) * (x - mean) / (2.0 * var)) / std::sqrt(2.0 * std::acos(-1.0) * var);
}

// Test variables from raw values with whole weights: the accumulators, and standard errors
// from a two-pass variance as the driver stores them. N 10; constant; one case; N 7 by weights.
struct Data {
    std::vector<MCMath_850::MCContStats> stats;
    std::vector<double> se, mean;
    void add(const std::vector<double>& x, const std::vector<double>& w = {}) {
        MCMath_850::MCContStats s;
        for (std::size_t i = 0; i < x.size(); ++i) s.Update(x[i], w.empty() ? 1.0 : w[i]);
        const normaltest::Moments m = normaltest::moments(x, w);
        stats.push_back(s);
        mean.push_back(m.mean);
        se.push_back(m.n >= 2 ? std::sqrt(m.var / m.n) : kMiss);
    }
};

Data sample() {
    Data d;
    d.add({4.1, 5.3, 6.2, 3.8, 5.9, 4.4, 5.0, 6.8, 5.5, 4.9});
    d.add({2.0, 2.0, 2.0});
    d.add({7.0});
    d.add({1.0, 2.0, 3.0, 4.0}, {2.0, 1.0, 3.0, 1.0});
    return d;
}

struct Outcome {
    std::vector<double> bf, logBf, t, sig;
    MCCommon_850::MCStatus status;
    MCWarnings warnings;
};

Outcome run(BSNSettings s, const Data& d, MCCommon_850::MCQueryCancel* query = nullptr) {
    s.SetCovariates({0, 1, 2, 3});
    MCXML_850::MCVarList vars;
    std::vector<std::vector<double>> cols;
    MCCommon_850::ColumnRecordIter iter(cols);
    MCMath_850::MCCancelInfo cancel(query);
    Outcome r;
    BSN1SampleNormalFactor f(s, vars, d.stats, d.se, r.warnings);
    r.status = f.BuildModel(iter, cancel);
    r.bf = f.getFactor();
    r.logBf = f.getLogFactor();
    r.t = f.getTtest();
    r.sig = f.getSig();
    return r;
}

} // namespace

TEST(NormalDriver, WeightsAndMissingValuesPerVariable) {
    // Weights 2.4, 2.5, 0.49, -3 and missing count as 2, 3, 0, 0, 0 cases. Variable 1 is missing where
    // variable 2 is present and the other way round; NaN and infinity count as missing; each keeps its
    // own cases (listwise deletion changes nothing here).
    const std::vector<double> w = {2.4, 2.5, 0.49, -3.0, kMiss, 1.0, 1.0};
    const std::vector<double> a = {1.0, 5.0, 100.0, 200.0, 300.0, std::nan(""), 7.25};
    const std::vector<double> b = {kMiss, 10.0, 12.5, kMiss, 9.0, 11.0, HUGE_VAL};
    BSNSettings s = oneSampleNormal({2, 1}, BC::Posterior);
    s.SetFrequencyWeightVar(0);
    s.SetMissScope(BC::MissingListwise);
    NormalRun r(s, {w, a, b});
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_TRUE(r.component.IsModelBuilt());
    const auto& o = output(r);
    EXPECT_EQ(o.GetVarIndices(), (std::vector<int>{2, 1}));
    const Moments ma = moments({1.0, 5.0, 7.25}, {2.0, 3.0, 1.0});
    const Moments mb = moments({10.0, 11.0}, {3.0, 1.0});
    EXPECT_EQ(o.GetNs(), (std::vector<double>{4.0, 6.0}));
    EXPECT_NEAR(o.GetMeanValues()[1], ma.mean, 1e-12);
    EXPECT_NEAR(o.GetStdDevs()[1], std::sqrt(ma.var), 1e-12);
    EXPECT_NEAR(o.GetEMs()[1], std::sqrt(ma.var / 6.0), 1e-12);
    EXPECT_DOUBLE_EQ(o.GetDFValues()[1], 5.0);
    EXPECT_NEAR(o.GetMeanValues()[0], mb.mean, 1e-12);
    EXPECT_NEAR(o.GetStdDevs()[0], std::sqrt(mb.var), 1e-12);
    EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
}

TEST(NormalDriver, ConstantAndTooSmallVariablesAndTheWiredTTest) {
    // v0: mean 3 against null value 3, t = 0, so the Simple factor is sqrt(1 + N g). v1 constant,
    // v2 one case, v3 none. v4: the textbook one-sample t.
    const std::vector<double> y = {2.2, 3.9, 3.1, 5.6, 4.4};
    BSNSettings s = oneSampleNormal({0, 1, 2, 3, 4}, BC::Both);
    s.SetEstBFType(BC::Simple);
    s.SetNullValues({3.0, 0.0, 0.0, 0.0, 2.5});
    s.SetAlterGValues({2.0, 1.0, 1.0, 1.0, 0.5});
    NormalRun r(s, {{1.0, 2.0, 3.0, 4.0, 5.0}, {2.5, 2.5, kMiss, 2.5, kMiss}, {kMiss, 6.0, kMiss, kMiss, kMiss},
                    std::vector<double>(5, kMiss), y});
    ASSERT_TRUE(r.status.IsOK());
    const auto& o = output(r);
    // Warnings in variable order, each naming the variable's position.
    const auto& warnings = r.component.GetWarningMessages();
    ASSERT_EQ(r.warningCodes(), (std::vector<int>{410010, 410025, 410025}));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(warnings.Get(k).GetDiscreteDatum(0), k + 1);
    EXPECT_TRUE(warnings.Get(0).IsWarning());
    EXPECT_NEAR(o.GetTValues()[0], 0.0, 1e-12);
    EXPECT_NEAR(o.GetSigs()[0], 1.0, 1e-12);
    EXPECT_NEAR(o.GetBayesFactors()[0], std::sqrt(1.0 + 5.0 * 2.0), 1e-10);
    EXPECT_NEAR(o.GetLogBayesFactors()[0], 0.5 * std::log(11.0), 1e-12);
    const Moments m = moments(y);
    const double t = (m.mean - 2.5) / std::sqrt(m.var / m.n);
    EXPECT_NEAR(o.GetTValues()[4], t, 1e-10);
    EXPECT_NEAR(o.GetSigs()[4], 2 * bm::cdf(bm::complement(bm::students_t(4.0), std::fabs(t))), 1e-10);
    // Constant: sd and se 0, df N - 1, the mean. One case: df 0, the mean, no spread. None: N 0.
    EXPECT_EQ(o.GetNs(), (std::vector<double>{5.0, 3.0, 1.0, 0.0, 5.0}));
    const double want[3][4] = {{2.0, 2.5, 0.0, 0.0}, {0.0, 6.0, kMiss, kMiss}, {kMiss, kMiss, kMiss, kMiss}};
    for (int i = 1; i < 4; ++i) {  // df, mean, sd, se
        const double got[] = {o.GetDFValues()[i], o.GetMeanValues()[i], o.GetStdDevs()[i], o.GetEMs()[i]};
        for (int k = 0; k < 4; ++k) EXPECT_EQ(got[k], want[i - 1][k]) << i << " " << k;
    }
    // None of them has a t, a factor or a posterior; the good variables have all.
    for (const auto* v : {&o.GetTValues(), &o.GetSigs(), &o.GetBayesFactors(), &o.GetLogBayesFactors(),
                          &o.GetPostMeanValues(), &o.GetLowerLimits()}) {
        EXPECT_FALSE(MCMV::IsMissing((*v)[0]) || MCMV::IsMissing((*v)[4]));
        for (int i = 1; i < 4; ++i) EXPECT_EQ((*v)[i], kMiss) << i;
    }
    // The factor stage's settings error (a Simple factor without g values) reaches the component.
    s.SetAlterGValues({});
    NormalRun bad(s, {y, y, y, y, y});
    EXPECT_EQ(bad.status.GetCode(), 410019);
    EXPECT_EQ(bad.component.GetOutputStats(), nullptr);
}

TEST(NormalDriver, ErrorsAndCancellation) {
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun empty(oneSampleNormal({0}, BC::Posterior), {std::vector<double>{}});
    EXPECT_EQ(empty.status.GetCode(), 410003);
    EXPECT_EQ(empty.component.GetOutputStats(), nullptr);
    NormalRun noVariable(oneSampleNormal({}, BC::Posterior), {x});
    EXPECT_EQ(noVariable.status.GetCode(), 410004);
    // A report every 2 records: 6 records give 2, 4, 6 (no repeat of 6). Cancelled at the first
    // report (inside the pass: the bare status 1), or at the pass's final report after the last
    // record (noticed between stages: 410016).
    for (const auto& [frequency, cancelAt, code, reported] :
         {std::tuple{2, 1000, 0, std::vector<int>{2, 4, 6}}, std::tuple{2, 1, 1, std::vector<int>{2}},
          std::tuple{100, 1, 410016, std::vector<int>{6}}}) {
        SCOPED_TRACE(testing::Message() << frequency << " " << cancelAt);
        MCCommon_850::MCAtomicCancel cancel;
        CancellingListener listener(cancel, cancelAt);
        BSNSettings s = oneSampleNormal({0}, BC::Both);
        s.SetCancelPointer(&cancel);
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(frequency);
        NormalRun r(s, {x});
        EXPECT_EQ(r.status.GetCode(), code);
        EXPECT_EQ(r.status.IsError(), code != 0);
        EXPECT_EQ(r.component.GetOutputStats() == nullptr, code != 0);
        EXPECT_EQ(listener.records, reported);
    }
    // Cancel pointer handed over after construction, cancelled before the build: seen before any record.
    MCCommon_850::MCAtomicCancel cancel;
    cancel.Cancel();
    std::vector<std::vector<double>> cols = {x};
    MCCommon_850::ColumnRecordIter iter(cols);
    MCBSN_850::BSNComponent c(oneSampleNormal({0}, BC::Posterior), makeVarList(1));
    c.SetCancelPtr(&cancel);
    EXPECT_EQ(c.BuildModel(iter).GetCode(), 410016);
}

TEST(NormalDriver, ResultObjects) {
    // Posterior-only results have no factor vectors, factor-only ones no posterior. The one-sample and
    // related results share a base but not their class (the host dispatches on it). A refill sanitises.
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun r(oneSampleNormal({0}, BC::Posterior), {x}), f(oneSampleNormal({0}, BC::BayesFactor), {x});
    const auto& o = output(r);
    EXPECT_TRUE(o.GetBayesFactors().empty() && o.GetLogBayesFactors().empty());
    EXPECT_TRUE(output(f).GetPostMeanValues().empty() && output(f).GetPlotPosterior().empty());
    EXPECT_FALSE(output(f).GetBayesFactors().empty());
    EXPECT_EQ(r.As<MCBSN_850::BSN2SampleRelatedOutputStats>(), nullptr);
    BSN1SampleNormOutputStats copy(o);
    copy.SetOutputValues(o.GetSettings(), {4}, {std::nan("")}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11},
                         {12});
    copy.SetLogBayesFactors({HUGE_VAL});
    EXPECT_EQ(copy.GetBayesFactors(), std::vector<double>{kMiss});
    EXPECT_EQ(copy.GetLogBayesFactors(), std::vector<double>{kMiss});
    EXPECT_EQ(copy.GetMeanValues(), std::vector<double>{12});
}

TEST(BSN1SampleNormalUtils, WeightsAndIntervalsThatCannotBeFormed) {
    // The frame's rounding (checked there) of the weight's own field; a field outside the record weighs 0.
    const double row[2] = {7.0, 2.5};
    EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(1, MCCommon_850::Record(row, 2)), 3.0);
    EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(5, MCCommon_850::Record(row, 2)), 0.0);
    // The intervals are checked with every posterior; here inputs giving none: 0 df, a missing variance.
    double lo = 0.0, hi = 0.0;
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCIT(0.05, 3.0, 4.0, 0.0, lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo) && MCMV::IsMissing(hi));
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCINormal(0.05, 1.0, kMiss, lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo) && MCMV::IsMissing(hi));
}

TEST(NormalFactors, ClosedFormsAndTheirLogs) {
    // Simple: at t = 0 the factor is sqrt(1 + N g); elsewhere the ratio of the two t likelihoods.
    for (const auto& [t, N, g] : {std::tuple{0.0, 1e9, 7.5}, std::tuple{1.7, 12.0, 1.0}, std::tuple{-3.2, 40.0, 0.5}}) {
        const double nu = N - 1.0, x = 1.0 + N * g;
        const double expected =
            std::sqrt(x) * std::pow(1.0 + t * t / (x * nu), (nu + 1) / 2) / std::pow(1.0 + t * t / nu, (nu + 1) / 2);
        EXPECT_LT(rel(simple(t, N, g).first, expected), 1e-12);
        EXPECT_NEAR(simple(t, N, g).second, std::log(expected), 1e-12);
    }
    // Known variance: the sample mean's density under the null (variance s2/N) over the alternative's (s2/N + g s2).
    for (const auto& [N, g, mu0, s2, M] : {std::tuple{10.0, 1.0, 0.0, 2.0, 0.7}, std::tuple{50.0, 0.3, 5.0, 9.0, 4.1},
                                          std::tuple{25.0, 2.0, 3.0, 4.0, 3.0}}) {
        const double expected = normalPdf(M, mu0, s2 / N) / normalPdf(M, mu0, s2 / N + g * s2);
        EXPECT_LT(rel(known(N, g, mu0, s2, M).first, expected), 1e-12);
        EXPECT_NEAR(known(N, g, mu0, s2, M).second, std::log(expected), 1e-12);
    }
    EXPECT_EQ(known(10.0, 1.0, kMiss, 2.0, 0.7), known(10.0, 1.0, 0.0, 2.0, 0.7));  // missing null value: 0
    // A zero variance: a point mass away from the mean gives 0 (no log), at it sqrt(1 + N g).
    EXPECT_EQ(known(10.0, 1.0, 0.0, 0.0, 0.7).first, 0.0);
    EXPECT_TRUE(MCMV::IsMissing(known(10.0, 1.0, 0.0, 0.0, 0.7).second));
    EXPECT_LT(rel(known(10.0, 1.0, 0.7, 0.0, 0.7).first, std::sqrt(11.0)), 1e-14);
    // Inputs without a factor: both results missing.
    for (const auto& [bf, logBf] : {simple(1.0, 1.0, 1.0), simple(1.0, 10.0, 0.0), simple(kMiss, 10.0, 1.0),
                                    simple(1.0, 10.0, kMiss), simple(0.0, 1e300, 1e300), known(0.0, 1.0, 0.0, 1.0, 1.0),
                                    known(10.0, 0.0, 0.0, 1.0, 1.0), known(10.0, 1.0, 0.0, -1.0, 1.0),
                                    known(10.0, 1.0, 0.0, 1.0, kMiss)})
        EXPECT_TRUE(MCMV::IsMissing(bf) && MCMV::IsMissing(logBf)) << bf << " " << logBf;
}

TEST(NormalFactor, TTestAndJZSLoop) {
    const Data d = sample();
    BSNSettings s;
    s.SetNullValues({5.0, 2.0, kMiss, kMiss});
    const Outcome r = run(s, d);
    ASSERT_TRUE(r.status.IsOK());
    // t against the null value (missing counts as 0); two-sided significance from the incomplete beta.
    const double t0 = (d.mean[0] - 5.0) / d.se[0], t3 = d.mean[3] / d.se[3];
    EXPECT_NEAR(r.t[0], t0, 1e-12);
    EXPECT_NEAR(r.t[3], t3, 1e-12);
    EXPECT_NEAR(r.sig[0], boost::math::ibeta(4.5, 0.5, 9.0 / (9.0 + t0 * t0)), 1e-12);
    EXPECT_NEAR(r.sig[3], boost::math::ibeta(3.0, 0.5, 6.0 / (6.0 + t3 * t3)), 1e-12);
    // Constant data and a single case: no t, no significance, no factor.
    for (int i : {1, 2})
        for (const auto* v : {&r.t, &r.sig, &r.bf, &r.logBf}) EXPECT_TRUE(MCMV::IsMissing((*v)[i]));
    EXPECT_LT(rel(r.bf[0], jzsref::cutoffFactor(10.0, t0)), 1e-6);
    EXPECT_NEAR(r.logBf[3], std::log(jzsref::cutoffFactor(7.0, t3)), 1e-6);
    EXPECT_TRUE(r.warnings.IsEmpty());
    // Quadrature warnings reach the procedure's collection.
    s.SetMaxIterations(20);
    const Outcome limited = run(s, d);
    EXPECT_TRUE(limited.warnings.Contains(420001));
    EXPECT_FALSE(MCMV::IsMissing(limited.bf[0]));
    // Estimation types without a factor here leave everything missing quietly.
    for (auto type : {BSNConst::CustomBF, BSNConst::Fraction}) {
        s.SetEstBFType(type);
        const Outcome none = run(s, d);
        EXPECT_TRUE(none.status.IsOK() && none.warnings.IsEmpty()) << type;
        for (double v : none.bf) EXPECT_TRUE(MCMV::IsMissing(v)) << type;
        EXPECT_NEAR(none.t[0], t0, 1e-12);
    }
}

TEST(NormalFactor, SimpleAndKnownVarianceLoopsRulesAndCancellation) {
    const Data d = sample();
    BSNSettings s;
    s.SetEstBFType(BSNConst::Simple);
    s.SetAlterGValues({1.0, 1.0, 1.0, 3.0});
    s.SetDataVarVals({1.0});  // shorter than the variables: ignored entirely
    const Outcome r = run(s, d);
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_LT(rel(r.bf[0], simple(d.mean[0] / d.se[0], 10.0, 1.0).first), 1e-14);
    EXPECT_LT(rel(r.bf[3], simple(d.mean[3] / d.se[3], 7.0, 3.0).first), 1e-14);
    // An empty g list stops at the first variable, after the t test.
    s.SetAlterGValues({});
    const Outcome noG = run(s, d);
    EXPECT_EQ(noG.status.GetCode(), 410019);
    for (double v : noG.bf) EXPECT_TRUE(MCMV::IsMissing(v));
    EXPECT_FALSE(MCMV::IsMissing(noG.t[0]));
    // Cancelled before the factors (t values only), or before the Simple loop's second variable.
    s.SetAlterGValues({1.0, 1.0, 1.0, 3.0});
    bsntest::CancelAfter now(0), later(2);
    const Outcome early = run(s, d, &now), partial = run(s, d, &later);
    EXPECT_EQ(early.status.GetCode(), 410016);
    EXPECT_FALSE(MCMV::IsMissing(early.t[0]));
    for (double v : early.bf) EXPECT_TRUE(MCMV::IsMissing(v));
    EXPECT_EQ(partial.status.GetCode(), 410016);
    EXPECT_EQ(partial.bf[0], r.bf[0]);
    EXPECT_TRUE(MCMV::IsMissing(partial.bf[3]));

    // Known variances: the density ratio for variable 0, none for the constant 1, JZS for 3 (missing).
    s.SetEstBFType(BSNConst::JZS);
    s.SetDataVarVals({2.0, 1.0, 1.0, kMiss});
    s.SetAlterGValues({0.5, 1.0, 1.0, 2.0});
    s.SetNullValues({5.0, 0.0, 0.0, 1.0});
    const Outcome k = run(s, d);
    ASSERT_TRUE(k.status.IsOK());
    EXPECT_LT(rel(k.bf[0], normalPdf(d.mean[0], 5.0, 0.2) / normalPdf(d.mean[0], 5.0, 0.2 + 0.5 * 2.0)), 1e-12);
    EXPECT_TRUE(MCMV::IsMissing(k.bf[1]));
    EXPECT_LT(rel(k.bf[3], jzsref::cutoffFactor(7.0, (d.mean[3] - 1.0) / d.se[3])), 1e-6);
    // A g list of the wrong length stops at the first known variance; a factor made before it stays.
    s.SetAlterGValues({0.5, 1.0});
    s.SetDataVarVals({kMiss, 1.0, 1.0, 2.0});
    const Outcome bad = run(s, d);
    EXPECT_EQ(bad.status.GetCode(), 410019);
    EXPECT_LT(rel(bad.bf[0], jzsref::cutoffFactor(10.0, (d.mean[0] - 5.0) / d.se[0])), 1e-6);
    EXPECT_TRUE(MCMV::IsMissing(bad.bf[3]));
    // Variables without a t (constant, one case) need no fitting lists: no factor, no complaint. A
    // null-value list of the wrong length stops too.
    s.SetDataVarVals({kMiss, 1.0, 1.0, kMiss});
    EXPECT_TRUE(run(s, d).status.IsOK());
    s.SetAlterGValues({0.5, 1.0, 1.0, 2.0});
    s.SetDataVarVals({kMiss, 1.0, 1.0, 2.0});
    s.SetNullValues({5.0});
    EXPECT_EQ(run(s, d).status.GetCode(), 410019);
}
