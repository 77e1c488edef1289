// The one-sample binomial and Poisson procedures: factors and posteriors against closed forms,
// and what they share (build errors, frequency weights, progress and cancellation), run for both.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include <boost/math/special_functions/beta.hpp>

#include "bsn/onesample/bsn1samplebinooutputstats.h"
#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "discrete_test_support.h"

using namespace discrete_test;
using namespace MCBSN_850;
namespace C = MCBSN_850::BSNConst;

namespace {

double lnBF(double n, double x, double a0, double b0, double a1, double b1) {
    return lnBeta(a0 + x, b0 + n - x) - lnBeta(a0, b0) - lnBeta(a1 + x, b1 + n - x) + lnBeta(a1, b1);
}

double betaPdf(double t, double a, double b) {
    return std::exp((a - 1) * std::log(t) + (b - 1) * std::log1p(-t) - lnBeta(a, b));
}

double gammaPdf(double x, double a, double b) {
    return std::exp(a * std::log(b) - std::lgamma(a) + (a - 1) * std::log(x) - b * x);
}

// Gamma CDF for a whole-number shape: one minus a Poisson sum.
double gammaCdfInt(double x, int shape, double rate) {
    double term = std::exp(-rate * x), sum = 0.0;
    for (int j = 0; j < shape; ++j) {
        sum += term;
        term *= rate * x / (j + 1);
    }
    return 1.0 - sum;
}

// `n` equally spaced arguments whose ends are the `level` and 1 − `level` points of `cdf`.
void expectDomain(const std::vector<double>& args, std::size_t n, double level,
                  const std::function<double(double)>& cdf) {
    ASSERT_EQ(args.size(), n);
    EXPECT_NEAR(cdf(args.front()), level, 1e-9);
    EXPECT_NEAR(cdf(args.back()), 1.0 - level, 1e-9);
    const double step = (args.back() - args.front()) / (n - 1);
    for (std::size_t k = 1; k < n; ++k) EXPECT_NEAR(args[k] - args[k - 1], step, 1e-12 * args.back());
}

// Test variables `vars`; posterior prior (1, 1), alternative Beta(1, 1) or Gamma(1.5, 0.5).
BSNSettings settingsFor(C::DistTypes dist, C::AnalysTypes type, const std::vector<int>& vars = {1}) {
    const bool bino = dist == C::Binomial;
    return discreteSettings(dist, vars, type, 1, 1, bino ? 1.0 : 1.5, bino ? 1.0 : 0.5);
}

} // namespace

TEST(OneSampleBinomial, BayesFactorsMatchClosedForm) {
    BSNSettings s = settingsFor(C::Binomial, C::BayesFactor, {0, 1, 2});
    // v0: default null Beta(2, 2) against Beta(1, 1); v1: improper Beta(0, 0)
    // alternative; v2: null Beta(3, 5) against Beta(2, 0.5).
    s.SetNullPrior1s({kMiss, 2.5, 3.0});
    s.SetNullPrior2s({kMiss, 1.5, 5.0});
    s.SetAlterPrior1s({1.0, 0.0, 2.0});
    s.SetAlterPrior2s({1.0, 0.0, 0.5});
    const std::vector<double> v0{1, 0, 1, 0, 1, 0, 1, 0, 1, 0};              // n 10, x 5
    const std::vector<double> v1{1, 1, 1, 0, kMiss, -1, 0, 1, kMiss, kMiss};  // n 6, x 4
    const std::vector<double> v2{1, 1, 0, 1, 1, 0, 1, 0, 1, 1};              // n 10, x 7
    Build run(s, {v0, v1, v2});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = &run.Result<BSN1SampleBinoOutputStats>();
    EXPECT_EQ(out->GetVarIndices(), (std::vector<int>{0, 1, 2}));
    const auto& bf = out->GetBayesFactors();
    EXPECT_NEAR(bf[0], std::exp(lnBF(10, 5, 2, 2, 1, 1)), 1e-12);
    EXPECT_NEAR(bf[1], std::exp(lnBF(6, 4, 2.5, 1.5, 0, 0)), 1e-12 * bf[1]);
    EXPECT_NEAR(out->GetLogBayesFactors()[1], lnBF(6, 4, 2.5, 1.5, 0, 0), 1e-12);
    EXPECT_NEAR(bf[2], std::exp(lnBF(10, 7, 3, 5, 2, 0.5)), 1e-12 * bf[2]);
    EXPECT_EQ(out->GetIsLogBayesFactor(), (std::vector<bool>{false, false, false}));
    EXPECT_TRUE(run.component.GetWarningMessages().IsEmpty());
    // Analysis type 1 makes no posterior.
    EXPECT_TRUE(isMissing(out->GetMeanValues()[0]));
    EXPECT_TRUE(out->GetPlotArguments()[0].empty());
}

TEST(OneSampleBinomial, PosteriorSummariesModesAndIntervals) {
    // Prior Beta(0.5, 0.5). Posteriors: v0 Beta(0.5, 1.5), v1 Beta(1.5, 0.5),
    // v2 Beta(1, 1), v3 Beta(3, 1), v4 Beta(1, 2), v5 Beta(4.5, 8.5).
    BSNSettings s = settingsFor(C::Binomial, C::Posterior, {0, 1, 2, 3, 4, 5});
    s.SetPriorParam1(0.5);
    s.SetPriorParam2(0.5);
    const std::vector<double> v5{1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0};  // n 12, x 4
    Build run(s, {{0, kMiss, kMiss}, {1, kMiss, kMiss}, {0.5, kMiss, kMiss}, {1, 1, 0.5}, {0.5, 0, kMiss}, v5});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = &run.Result<BSN1SampleBinoOutputStats>();
    // Every branch of the mode: α < 1 ≤ β, β < 1 ≤ α, flat (the centre),
    // β = 1 < α, α = 1 < β, interior.
    const std::vector<double> modes{0.0, 1.0, 0.5, 1.0, 0.0, 3.5 / 11.0};
    for (std::size_t i = 0; i < modes.size(); ++i) EXPECT_NEAR(out->GetModeValues()[i], modes[i], 1e-15) << i;
    // Mean and variance of Beta(4.5, 8.5): a/(a + b), ab/((a + b)^2 (a + b + 1)).
    EXPECT_NEAR(out->GetMeanValues()[5], 4.5 / 13, 1e-15);
    EXPECT_NEAR(out->GetVarianceValues()[5], 4.5 * 8.5 / (13 * 13 * 14), 1e-15);
    EXPECT_NEAR(out->GetVarianceValues()[2], 1.0 / 12.0, 1e-15);
    // Closed-form quantiles: Beta(1, 1) is uniform, Beta(3, 1) has CDF t^3,
    // Beta(1, 2) has CDF 1 − (1 − t)^2.
    EXPECT_NEAR(out->GetLowerLimits()[2], 0.025, 1e-12);
    EXPECT_NEAR(out->GetUpperLimits()[3], std::cbrt(0.975), 1e-12);
    EXPECT_NEAR(out->GetLowerLimits()[4], 1 - std::sqrt(0.975), 1e-12);
    // v3: two successes and a half out of three trials.
    EXPECT_EQ((std::pair{out->GetCat1Ns()[3], out->GetCat2Ns()[3]}), (std::pair{2.5, 0.5}));

    // Prior Beta(0.2, 0.3) and one half success: the U-shaped Beta(0.7, 0.8)
    // keeps (α − 1)/(α + β − 2); 90% limits of Beta(2.2, 5.3) hold 5% and 95%.
    s = settingsFor(C::Binomial, C::Posterior, {0, 1});
    s.SetPriorParam1(0.2);
    s.SetPriorParam2(0.3);
    s.SetCILevel(90.0);
    Build u(s, {{0.5, kMiss, kMiss, kMiss, kMiss, kMiss, kMiss}, {1, 1, 0, 0, 0, 0, 0}});
    out = &u.Result<BSN1SampleBinoOutputStats>();
    EXPECT_NEAR(out->GetModeValues()[0], 0.6, 1e-14);
    EXPECT_NEAR(boost::math::ibeta(2.2, 5.3, out->GetLowerLimits()[1]), 0.05, 1e-10);
    EXPECT_NEAR(boost::math::ibeta(2.2, 5.3, out->GetUpperLimits()[1]), 0.95, 1e-10);
}

TEST(OneSampleBinomial, PlotGridCurvesMissingDataOrAlternativeAndFlatOrImproperPriors) {
    // v0: n 7 x 3; v1: n 7 x 6; v2 no valid value; v3 (n 4 x 3) without an alternative prior.
    BSNSettings s = settingsFor(C::Binomial, C::Both, {0, 1, 2, 3});
    s.SetPriorParam1(2.0);
    s.SetPriorParam2(3.0);
    s.SetAlterPrior1s({1.0, 1.0, 1.0});
    s.SetAlterPrior2s({1.0, 1.0, 1.0});
    const std::vector<double> v2{kMiss, -1, kMiss, kMiss, kMiss, kMiss, kMiss}, v3{1, 1, 1, 0, kMiss, kMiss, kMiss};
    Build run(s, {{1, 1, 0, 1, 0, 0, 0}, {1, 0, 1, 1, 1, 1, 1}, v2, v3});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = &run.Result<BSN1SampleBinoOutputStats>();
    const auto& t = out->GetPlotArguments()[0];
    ASSERT_EQ(t.size(), 100u);
    EXPECT_EQ(t.front(), 2.220446049250313e-16);
    EXPECT_DOUBLE_EQ(t.back(), 0.9999999999999996 + 2.220446049250313e-16);
    EXPECT_NEAR(t[1] - t[0], 0.9999999999999996 / 99, 1e-17);
    for (std::size_t k : {0u, 1u, 37u, 98u, 99u}) {
        EXPECT_NEAR(out->GetPlotLikelihoods()[0][k], 3 * std::log(t[k]) + 4 * std::log1p(-t[k]), 1e-9);
        EXPECT_NEAR(out->GetPlotPrior()[0][k], betaPdf(t[k], 2, 3), 1e-9);
        EXPECT_NEAR(out->GetPlotPosterior()[0][k], betaPdf(t[k], 5, 7), 1e-9);
        EXPECT_NEAR(out->GetPlotPosterior()[1][k], betaPdf(t[k], 8, 4), 1e-9);
    }
    // v2: warning 410037 naming it, nothing else; v3: 410018, no factor, but its posterior Beta(5, 4).
    EXPECT_TRUE(run.HasWarning(410037, 2) && !run.HasWarning(410037, 0) && run.HasWarning(410018, 3));
    EXPECT_EQ(run.Count(410018), 1) << testing::PrintToString(run.WarningCodes());
    EXPECT_FALSE(isMissing(out->GetBayesFactors()[0]));
    for (const auto* v : {&out->GetBayesFactors(), &out->GetLogBayesFactors()})
        EXPECT_TRUE(isMissing((*v)[2]) && isMissing((*v)[3]));
    for (const auto* v : {&out->GetModeValues(), &out->GetMeanValues(), &out->GetVarianceValues(),
                          &out->GetLowerLimits(), &out->GetUpperLimits(), &out->GetCat1Props()})
        EXPECT_TRUE(isMissing((*v)[2]));
    EXPECT_TRUE(out->GetPlotPosterior()[2].empty());
    EXPECT_NEAR(out->GetMeanValues()[3], 5.0 / 9.0, 1e-15);

    // Beta(1, 1) is drawn as its density; an improper Beta(0, 0) as the flat
    // two-point line; with no success it leaves no proper posterior.
    s = settingsFor(C::Binomial, C::Posterior, {0});
    s.SetNPlotPoints(11);
    Build flat(s, {{1, 0, 1}});
    EXPECT_EQ(flat.Result<BSN1SampleBinoOutputStats>().GetPlotPrior()[0], std::vector<double>(11, 1.0));
    s.SetPriorParam1(0.0);
    s.SetPriorParam2(0.0);
    Build improper(s, {{1, 0, 1}});
    out = &improper.Result<BSN1SampleBinoOutputStats>();
    EXPECT_EQ(out->GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
    EXPECT_NEAR(out->GetMeanValues()[0], 2.0 / 3.0, 1e-15);  // Beta(2, 1)
    Build none(s, {{0, 0, 0}});
    out = &none.Result<BSN1SampleBinoOutputStats>();
    EXPECT_TRUE(isMissing(out->GetMeanValues()[0]));
    EXPECT_TRUE(out->GetPlotPosterior()[0].empty());
    EXPECT_TRUE(none.HasWarning(410037, 0));
}

TEST(OneSamplePoisson, BayesFactorsMatchClosedForm) {
    BSNSettings s = settingsFor(C::Poisson, C::BayesFactor, {0, 1, 2});
    s.SetAlterPrior1s({1.5, 1.5});  // nothing for v2
    s.SetAlterPrior2s({0.5, 0.5});
    // v0: 2.7 counts as 2, −1 and missing are skipped: N 5, S 10.
    const std::vector<double> none{kMiss, -1, kMiss, kMiss, kMiss, kMiss, kMiss};
    Build run(s, {{2.7, 1, 0, 3, -1, kMiss, 4}, none, {1, 2, 3, 4, 5, 6, 7}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = &run.Result<BSN1SamplePoisnOutputStats>();
    const auto& bf = out->GetBayesFactors();
    // The default null prior is Gamma(2, 2): its term starts 2 ln 2 − lnΓ(2).
    const double expected = lnGammaMarginal(2, 2, 5, 10) - lnGammaMarginal(1.5, 0.5, 5, 10);
    EXPECT_NEAR(bf[0], std::exp(expected), 1e-12 * std::exp(expected));
    EXPECT_NEAR(out->GetLogBayesFactors()[0], expected, 1e-13);
    // No data: both marginals are 1, and so is the factor.
    EXPECT_NEAR(bf[1], 1.0, 1e-12);
    EXPECT_EQ(out->GetNs(), (std::vector<double>{5, 0, 7}));
    EXPECT_EQ((std::pair{out->GetMinCnts()[0], out->GetMaxCnts()[0]}), (std::pair{0.0, 4.0}));
    EXPECT_TRUE(isMissing(out->GetMinCnts()[1]));
    // No alternative for v2: no factor, and one warning 410018 naming it.
    EXPECT_TRUE(isMissing(bf[2]));
    EXPECT_EQ(run.Count(410018), 1);
    EXPECT_TRUE(run.HasWarning(410018, 2));
    // Analysis type 1 makes no posterior and no plots.
    EXPECT_TRUE(isMissing(out->GetMeanValues()[0]));
    EXPECT_TRUE(out->GetPlotArguments4Posterior()[0].empty());
}

TEST(OneSamplePoisson, PosteriorSummariesAndCredibleLimits) {
    BSNSettings s = settingsFor(C::Poisson, C::Posterior, {0, 1});
    s.SetPriorParam1(2.0);  // prior Gamma(2, 1); v0: N 5, S 10 -> Gamma(12, 6); v1: no case
    Build run(s, {{2, 2, 2, 2, 2}, {kMiss, kMiss, kMiss, kMiss, kMiss}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = &run.Result<BSN1SamplePoisnOutputStats>();
    EXPECT_EQ(out->GetPosteriorParams()[0], (std::pair<double, double>{12.0, 6.0}));
    EXPECT_EQ(out->GetLikelihoodParams()[0], (std::pair<double, double>{-5.0, 10.0}));
    EXPECT_NEAR(out->GetMeanValues()[0], 2.0, 1e-15);
    EXPECT_NEAR(out->GetVarianceValues()[0], 1.0 / 3.0, 1e-15);
    EXPECT_NEAR(out->GetModeValues()[0], 11.0 / 6.0, 1e-15);
    EXPECT_NEAR(gammaCdfInt(out->GetLowerLimits()[0], 12, 6), 0.025, 1e-10);
    EXPECT_NEAR(gammaCdfInt(out->GetUpperLimits()[0], 12, 6), 0.975, 1e-10);
    // The variable without a case keeps missing entries only.
    for (const auto* v : {&out->GetMeanValues(), &out->GetVarianceValues(), &out->GetModeValues(),
                          &out->GetLowerLimits(), &out->GetUpperLimits()})
        EXPECT_TRUE(isMissing((*v)[1]));
    EXPECT_TRUE(isMissing(out->GetLikelihoodParams()[1].first) && isMissing(out->GetPosteriorParams()[1].first));
    EXPECT_TRUE(out->GetPlotArguments4Likelihoods()[1].empty() && out->GetPlotPrior()[1].empty());
    EXPECT_TRUE(run.component.GetWarningMessages().IsEmpty());

    // Shape below 1: Gamma(0.5, 4) from prior Gamma(0.5, 1) and three zeros.
    // Its CDF is erf(sqrt(4x)); the mode is 0. Limits at 90%.
    s.SetPriorParam1(0.5);
    s.SetCILevel(90.0);
    Build small(s, {{0, 0, 0}, {1, 0, 0}});
    out = &small.Result<BSN1SamplePoisnOutputStats>();
    EXPECT_EQ(out->GetModeValues()[0], 0.0);
    EXPECT_NEAR(std::erf(std::sqrt(4 * out->GetLowerLimits()[0])), 0.05, 1e-10);
    EXPECT_NEAR(std::erf(std::sqrt(4 * out->GetUpperLimits()[0])), 0.95, 1e-10);
    EXPECT_NEAR(out->GetModeValues()[1], 0.125, 1e-15);  // Gamma(1.5, 4)
}

TEST(OneSamplePoisson, PlotCurvesCoverTheirOwnCentralMass) {
    BSNSettings s = settingsFor(C::Poisson, C::Both, {0});
    s.SetPriorParam1(3.0);
    s.SetPriorParam2(2.0);
    // N 4, S 7: likelihood ~ Gamma(8, 4), prior Gamma(3, 2), posterior Gamma(10, 6).
    Build run(s, {{1, 3, 0, 3}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = &run.Result<BSN1SamplePoisnOutputStats>();
    const auto &la = out->GetPlotArguments4Likelihoods()[0], &pa = out->GetPlotArguments4Prior()[0];
    const auto& qa = out->GetPlotArguments4Posterior()[0];
    expectDomain(la, 100, 0.005, [](double x) { return gammaCdfInt(x, 8, 4); });
    expectDomain(pa, 100, 0.005, [](double x) { return gammaCdfInt(x, 3, 2); });
    expectDomain(qa, 100, 0.005, [](double x) { return gammaCdfInt(x, 10, 6); });
    for (std::size_t k : {0u, 50u, 99u}) {
        EXPECT_NEAR(out->GetPlotLikelihoods()[0][k], 7 * std::log(la[k]) - 4 * la[k], 1e-12);
        EXPECT_NEAR(out->GetPlotPrior()[0][k], gammaPdf(pa[k], 3, 2), 1e-12);
        EXPECT_NEAR(out->GetPlotPosterior()[0][k], gammaPdf(qa[k], 10, 6), 1e-12);
    }

    // An improper prior Gamma(0, 0) at another level and number of points: a flat line over the
    // posterior's domain, the posterior then the normalised likelihood Gamma(7, 4).
    s.SetPlotDomainLevel(0.02);
    s.SetNPlotPoints(7);
    s.SetPriorParam1(0.0);
    s.SetPriorParam2(0.0);
    Build flat(s, {{1, 3, 0, 3}});
    out = &flat.Result<BSN1SamplePoisnOutputStats>();
    EXPECT_EQ(out->GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
    const auto& post = out->GetPlotArguments4Posterior()[0];
    expectDomain(post, 7, 0.02, [](double x) { return gammaCdfInt(x, 7, 4); });
    expectDomain(out->GetPlotArguments4Likelihoods()[0], 7, 0.02, [](double x) { return gammaCdfInt(x, 8, 4); });
    EXPECT_EQ(out->GetPlotArguments4Prior()[0], (std::vector<double>{post.front(), post.back()}));
    EXPECT_NEAR(out->GetMeanValues()[0], 7.0 / 4.0, 1e-15);
}

TEST(OneSampleDiscrete, BuildErrors) {
    for (auto dist : {C::Binomial, C::Poisson}) {
        SCOPED_TRACE(dist);
        BSNSettings s = settingsFor(dist, C::Both);
        Build empty(s, {{}, {}});
        EXPECT_EQ(empty.status.GetCode(), 410003);
        EXPECT_EQ(empty.component.GetOutputStats(), nullptr);
        // No usable value, whichever worker makes the pass.
        for (auto type : {C::Posterior, C::BayesFactor, C::Both}) {
            s.SetAnalysType(type);
            Build run(s, {{1, 1, 1}, {kMiss, -2, kMiss}});
            EXPECT_EQ(run.status.GetCode(), 410003) << type;
            EXPECT_EQ(run.component.GetOutputStats(), nullptr);
        }
        s.SetAnalysType(C::Both);
        s.SetPriorType(C::Reference);
        Build reference(s, {{1, 1}, {1, 0}});
        EXPECT_TRUE(reference.status.IsError() && reference.status.GetCode() == 410017) << reference.status.GetCode();
        // A missing posterior parameter ends the build; the factor stage's earlier warning survives.
        s.SetPriorType(C::Conjugate);
        s.SetPriorParam2(kMiss);
        s.SetAlterPrior1s({});
        Build missing(s, {{1, 1}, {1, 0}});
        EXPECT_TRUE(missing.status.IsError() && missing.status.GetCode() == 410019) << missing.status.GetCode();
        EXPECT_FALSE(missing.component.IsModelBuilt());
        EXPECT_TRUE(missing.HasWarning(410018, 0));
    }
}

TEST(OneSampleDiscrete, ProgressAndCancellation) {
    const std::vector<double> ones(10, 1.0), ten{1, 0, 1, 0, 1, 0, 1, 0, 1, 0};
    for (auto dist : {C::Binomial, C::Poisson}) {
        SCOPED_TRACE(dist);
        // Posterior only for the Poisson: its own posterior pass reports too.
        BSNSettings s = settingsFor(dist, dist == C::Binomial ? C::Both : C::Posterior);
        s.SetProgressFrequency(3);
        bsntest::RecordCounts listener;
        s.SetProgressListener(&listener);
        {
            // The final report comes even right after a regular one.
            Build run(s, {std::vector<double>(9, 1.0), std::vector<double>(ten.begin(), ten.begin() + 9)});
            EXPECT_TRUE(run.status.IsOK());
            EXPECT_EQ(listener.counts, (std::vector<int>{3, 6, 9, 9}));
        }
        // A cancellation inside the pass ends the build with the bare code 1.
        bsntest::CancelAfter cancel(4);
        s.SetCancelPointer(&cancel);
        {
            Build run(s, {ones, ten});
            EXPECT_EQ(run.status.GetCode(), 1);
            EXPECT_EQ(run.component.GetOutputStats(), nullptr);
        }
        // One raised after the pass (from the final report) skips the rest and the result, no error.
        MCCommon_850::MCAtomicCancel flag;
        s.SetCancelPointer(&flag);
        listener.onNotify = [&] {
            if (listener.counts.back() == 10) flag.Cancel();
        };
        Build run(s, {ones, ten});
        EXPECT_FALSE(run.status.IsError());
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
}

TEST(OneSampleDiscrete, FrequencyWeightsAreRoundedHalfUp) {
    // Weights 2.4 -> 2, 2.5 -> 3; 0.49, −3 and missing skip their records.
    const std::vector<double> w{2.4, 2.5, 0.49, -3, kMiss};
    BSNSettings s = settingsFor(C::Binomial, C::Both);
    s.SetFrequencyWeightVar(0);
    Build bino(s, {w, {1, 0, 1, 1, 1}});
    ASSERT_TRUE(bino.status.IsOK());
    const auto* b = &bino.Result<BSN1SampleBinoOutputStats>();
    EXPECT_EQ((std::vector{b->GetNs()[0], b->GetCat1Indices()[0], b->GetCat1Ns()[0], b->GetCat2Ns()[0]}),
              (std::vector<double>{5, 1, 2, 3}));
    EXPECT_DOUBLE_EQ(b->GetCat1Props()[0], 0.4);
    EXPECT_DOUBLE_EQ(b->GetCat2Props()[0], 0.6);
    EXPECT_NEAR(b->GetLogBayesFactors()[0], lnBeta(4, 5) - lnBeta(2, 2) - lnBeta(3, 4) + lnBeta(1, 1), 1e-13);
    EXPECT_NEAR(b->GetMeanValues()[0], 3.0 / 7.0, 1e-15);  // Beta(3, 4)

    s = settingsFor(C::Poisson, C::Both);
    s.SetFrequencyWeightVar(0);
    Build pois(s, {w, {3.9, 1, 100, 100, 100}});
    ASSERT_TRUE(pois.status.IsOK());
    const auto* p = &pois.Result<BSN1SamplePoisnOutputStats>();
    EXPECT_EQ((std::vector{p->GetNs()[0], p->GetMinCnts()[0], p->GetMaxCnts()[0]}), (std::vector<double>{5, 1, 3}));
    EXPECT_EQ(p->GetLikelihoodParams()[0], (std::pair<double, double>{-5.0, 9.0}));
    EXPECT_NEAR(p->GetMeanValues()[0], 10.0 / 6.0, 1e-15);
    EXPECT_NEAR(p->GetLogBayesFactors()[0], lnGammaMarginal(2, 2, 5, 9) - lnGammaMarginal(1.5, 0.5, 5, 9), 1e-13);
}

TEST(OneSampleDiscrete, PoissonPriorWarningComesBeforeTheLogWarning) {
    // A rate of 500 seen a million times: the null Gamma(2, 2) has almost no
    // mass there (v1: the log is stored), and v2 has no alternative.
    BSNSettings s = settingsFor(C::Poisson, C::BayesFactor, {1, 2});
    s.SetFrequencyWeightVar(0);
    s.SetAlterPrior1s({500.0});
    s.SetAlterPrior2s({1.0});
    Build run(s, {{1e6}, {500}, {500}});
    ASSERT_TRUE(run.status.IsOK());
    EXPECT_EQ(run.As<BSN1SamplePoisnOutputStats>()->GetIsLogBayesFactor(), (std::vector<bool>{true, false}));
    EXPECT_EQ(run.WarningCodes(), (std::vector<int>{410018, 410041}));
    EXPECT_TRUE(run.HasWarning(410018, 1));
}
