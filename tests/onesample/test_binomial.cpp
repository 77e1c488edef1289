#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "bsn/onesample/bsn1samplebinooutputstats.h"
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

BSNSettings binomialSettings(std::vector<int> factors, C::AnalysTypes type) {
    return discreteSettings(C::Binomial, factors, type, 1, 1, 1, 1);
}

} // namespace

TEST(OneSampleBinomial, BayesFactorsMatchClosedFormAndIntegratedMarginals) {
    BSNSettings s = binomialSettings({0, 1, 2}, C::BayesFactor);
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
    EXPECT_EQ(out->GetIsLogBayesFactor(), (std::vector<bool>{false, false, false}));
    EXPECT_TRUE(run.component.GetWarningMessages().IsEmpty());
    // v2 against the ratio of the two marginal likelihoods integrated
    // numerically (the binomial coefficient cancels).
    const auto marginal = [](double a, double b) {
        return simpson([&](double t) { return std::pow(t, 7) * std::pow(1 - t, 3) * betaPdf(t, a, b); }, 1e-12,
                       1 - 1e-12, 200000);
    };
    EXPECT_NEAR(bf[2], marginal(3, 5) / marginal(2, 0.5), 1e-6 * bf[2]);
    // Analysis type 1 makes no posterior.
    EXPECT_TRUE(isMissing(out->GetMeanValues()[0]));
    EXPECT_TRUE(out->GetPlotArguments()[0].empty());
}

TEST(OneSampleBinomial, PosteriorSummariesModesAndIntervals) {
    // Prior Beta(0.5, 0.5). Posteriors: v0 Beta(0.5, 1.5), v1 Beta(1.5, 0.5),
    // v2 Beta(1, 1), v3 Beta(3, 1), v4 Beta(1, 2), v5 Beta(4.5, 8.5).
    BSNSettings s = binomialSettings({0, 1, 2, 3, 4, 5}, C::Posterior);
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
    // Mean and variance of Beta(4.5, 8.5) by integrating its density.
    const double m = simpson([](double t) { return t * betaPdf(t, 4.5, 8.5); }, 0, 1);
    const double v = simpson([&](double t) { return (t - m) * (t - m) * betaPdf(t, 4.5, 8.5); }, 0, 1);
    EXPECT_NEAR(out->GetMeanValues()[5], m, 1e-9);
    EXPECT_NEAR(out->GetVarianceValues()[5], v, 1e-9);
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
    s = binomialSettings({0, 1}, C::Posterior);
    s.SetPriorParam1(0.2);
    s.SetPriorParam2(0.3);
    s.SetCILevel(90.0);
    Build u(s, {{0.5, kMiss, kMiss, kMiss, kMiss, kMiss, kMiss}, {1, 1, 0, 0, 0, 0, 0}});
    out = &u.Result<BSN1SampleBinoOutputStats>();
    EXPECT_NEAR(out->GetModeValues()[0], 0.6, 1e-14);
    EXPECT_NEAR(simpson([](double t) { return betaPdf(t, 2.2, 5.3); }, 0, out->GetLowerLimits()[1]), 0.05, 1e-7);
    EXPECT_NEAR(simpson([](double t) { return betaPdf(t, 2.2, 5.3); }, 0, out->GetUpperLimits()[1]), 0.95, 1e-7);
}

TEST(OneSampleBinomial, PlotGridCurvesMissingDataOrAlternativeAndFlatOrImproperPriors) {
    // v0: n 7 x 3; v1: n 7 x 6; v2 no valid value; v3 (n 4 x 3) without an
    // alternative prior.
    BSNSettings s = binomialSettings({0, 1, 2, 3}, C::Both);
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
    // v2: warning 410037 naming it, nothing else; v3: warning 410018, no
    // factor, but its posterior Beta(5, 4) is still made.
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
    s = binomialSettings({0}, C::Posterior);
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
