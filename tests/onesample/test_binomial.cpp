#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "bsn/onesample/bsn1samplebinooutputstats.h"
#include "discrete_test_support.h"

using namespace discrete_test;
using MCBSN_850::BSN1SampleBinoOutputStats;
using MCBSN_850::BSNSettings;
namespace C = MCBSN_850::BSNConst;

namespace {

// Independent ln B(a, b) with B(0, 0) taken as 1.
double lnBeta(double a, double b) {
    if (a == 0.0 && b == 0.0) return 0.0;
    return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
}

// ln of the null-over-alternative factor of two beta priors, closed form.
double lnBF(double n, double x, double a0, double b0, double a1, double b1) {
    return lnBeta(a0 + x, b0 + n - x) - lnBeta(a0, b0) - lnBeta(a1 + x, b1 + n - x) + lnBeta(a1, b1);
}

double betaPdf(double t, double a, double b) {
    return std::exp((a - 1) * std::log(t) + (b - 1) * std::log1p(-t) - lnBeta(a, b));
}

// Beta CDF for whole-number parameters: a binomial tail sum.
double betaCdfInt(double t, int a, int b) {
    const int m = a + b - 1;
    double sum = 0.0;
    for (int j = a; j <= m; ++j)
        sum += std::exp(std::lgamma(m + 1.0) - std::lgamma(j + 1.0) - std::lgamma(m - j + 1.0) + j * std::log(t) +
                        (m - j) * std::log1p(-t));
    return sum;
}

BSNSettings binomialSettings(std::vector<int> factors, C::AnalysTypes type) {
    BSNSettings s;
    s.SetModelType(C::OneSample, false);
    s.SetTestDistType(C::Binomial);
    s.SetFactors(factors);
    s.SetAnalysType(type);
    s.SetPriorParam1(1.0);
    s.SetPriorParam2(1.0);
    std::vector<double> ones(factors.size(), 1.0);
    s.SetAlterPrior1s(ones);
    s.SetAlterPrior2s(ones);
    return s;
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
    const auto* out = run.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetModelType(), C::OneSample);
    EXPECT_EQ(out->GetOutputType(), C::Output1SampleBinomial);
    EXPECT_EQ(out->GetVarIndices(), (std::vector<int>{0, 1, 2}));

    const auto& bf = out->GetBayesFactors();
    EXPECT_NEAR(bf[0], std::exp(lnBeta(7, 7) + lnBeta(1, 1) - lnBeta(6, 6) - lnBeta(2, 2)), 1e-12);
    EXPECT_NEAR(bf[1], std::exp(lnBF(6, 4, 2.5, 1.5, 0, 0)), 1e-12 * bf[1]);
    EXPECT_EQ(out->GetIsLogBayesFactor(), (std::vector<bool>{false, false, false}));
    EXPECT_TRUE(run.component.GetWarningMessages().IsEmpty());

    // v2 against the ratio of the two marginal likelihoods integrated
    // numerically (the binomial coefficient cancels).
    const auto marginal = [](double a, double b) {
        return simpson([&](double t) { return std::pow(t, 7) * std::pow(1 - t, 3) * betaPdf(t, a, b); }, 1e-12,
                       1 - 1e-12, 200000);
    };
    EXPECT_NEAR(bf[2], marginal(3, 5) / marginal(2, 0.5), 1e-6 * bf[2]);
    std::ostringstream dump;
    run.component.Display(dump);
    EXPECT_NE(dump.str().find("End of display BSN1SampleBinoOutputStats object"), std::string::npos);
    // Analysis type 1 makes no posterior.
    EXPECT_TRUE(isMissing(out->GetMeanValues()[0]));
    EXPECT_TRUE(out->GetPlotArguments()[0].empty());
}

TEST(OneSampleBinomial, HugeSampleStoresLogFactorsWithOneWarning) {
    BSNSettings s = binomialSettings({1, 2, 3}, C::BayesFactor);
    s.SetFrequencyWeightVar(0);
    // v2: null near 0, alternative flat, all successes: factor underflows.
    // v3: the same data with the roles swapped: factor overflows.
    s.SetNullPrior1s({2.0, 1.0, 1.0});
    s.SetNullPrior2s({2.0, 1000.0, 1.0});
    s.SetAlterPrior1s({1.0, 1.0, 1.0});
    s.SetAlterPrior2s({1.0, 1.0, 1000.0});
    const std::vector<double> w{1e6, 1, 1, 1, 1};
    const std::vector<double> v1{kMiss, 1, 0, 0, 1};
    const std::vector<double> big{1, kMiss, kMiss, kMiss, kMiss};
    Build run(s, {w, v1, big, big});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    const double n = 1e6;
    const double expected2 = lnBF(n, n, 1, 1000, 1, 1);
    const double expected3 = lnBF(n, n, 1, 1, 1, 1000);
    ASSERT_LT(expected2, -708.0);
    ASSERT_GT(expected3, 709.0);
    EXPECT_EQ(out->GetIsLogBayesFactor(), (std::vector<bool>{false, true, true}));
    EXPECT_NEAR(out->GetBayesFactors()[0], std::exp(lnBF(4, 2, 2, 2, 1, 1)), 1e-12);
    EXPECT_NEAR(out->GetBayesFactors()[1], expected2, 1e-9 * std::fabs(expected2));
    EXPECT_NEAR(out->GetBayesFactors()[2], expected3, 1e-9 * expected3);
    EXPECT_EQ(run.CountWarnings(410041), 1);
    EXPECT_EQ(run.component.GetWarningMessages().Size(), 1u);
}

TEST(OneSampleBinomial, PosteriorSummariesAndModeBoundaries) {
    // Prior Beta(0.5, 0.5). Posteriors: v0 Beta(0.5, 1.5), v1 Beta(1.5, 0.5),
    // v2 Beta(1, 1), v3 Beta(3, 1), v4 Beta(1, 2), v5 Beta(4.5, 8.5).
    BSNSettings s = binomialSettings({0, 1, 2, 3, 4, 5}, C::Posterior);
    s.SetPriorParam1(0.5);
    s.SetPriorParam2(0.5);
    const std::vector<double> v0{0, kMiss, kMiss}, v1{1, kMiss, kMiss}, v2{0.5, kMiss, kMiss}, v3{1, 1, 0.5},
        v4{0.5, 0, kMiss};
    std::vector<double> v5(12, 0.0);
    for (int k = 0; k < 4; ++k) v5[k] = 1.0;  // n 12, x 4
    Build run(s, {v0, v1, v2, v3, v4, v5});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    const auto& mode = out->GetModeValues();
    EXPECT_EQ(mode[0], 0.0);  // α < 1, β ≥ 1
    EXPECT_EQ(mode[1], 1.0);  // α ≥ 1, β < 1
    EXPECT_EQ(mode[2], 0.5);  // flat posterior: the centre
    EXPECT_EQ(mode[3], 1.0);  // α > 1, β = 1
    EXPECT_EQ(mode[4], 0.0);  // α = 1, β > 1
    EXPECT_NEAR(mode[5], 3.5 / 11.0, 1e-15);

    // Mean and variance of Beta(4.5, 8.5) by integrating its density.
    const double m = simpson([](double t) { return t * betaPdf(t, 4.5, 8.5); }, 0, 1);
    const double v = simpson([&](double t) { return (t - m) * (t - m) * betaPdf(t, 4.5, 8.5); }, 0, 1);
    EXPECT_NEAR(out->GetMeanValues()[5], m, 1e-9);
    EXPECT_NEAR(out->GetVarianceValues()[5], v, 1e-9);
    EXPECT_NEAR(out->GetMeanValues()[2], 0.5, 1e-15);
    EXPECT_NEAR(out->GetVarianceValues()[2], 1.0 / 12.0, 1e-15);

    // Closed-form quantiles: Beta(1, 1) is uniform, Beta(3, 1) has CDF t^3,
    // Beta(1, 2) has CDF 1 − (1 − t)^2.
    EXPECT_NEAR(out->GetLowerLimits()[2], 0.025, 1e-12);
    EXPECT_NEAR(out->GetUpperLimits()[2], 0.975, 1e-12);
    EXPECT_NEAR(out->GetLowerLimits()[3], std::cbrt(0.025), 1e-12);
    EXPECT_NEAR(out->GetUpperLimits()[3], std::cbrt(0.975), 1e-12);
    EXPECT_NEAR(out->GetLowerLimits()[4], 1 - std::sqrt(0.975), 1e-12);
    EXPECT_NEAR(out->GetUpperLimits()[4], 1 - std::sqrt(0.025), 1e-12);
    // The category counts of v3: two successes and a half out of three trials.
    EXPECT_EQ(out->GetNs()[3], 3.0);
    EXPECT_EQ(out->GetCat1Ns()[3], 2.5);
    EXPECT_EQ(out->GetCat2Ns()[3], 0.5);
}

TEST(OneSampleBinomial, UShapedPosteriorAndIntervalAtOtherLevel) {
    // Prior Beta(0.2, 0.3) and one half success: Beta(0.7, 0.8), where the
    // formula (α − 1)/(α + β − 2) is kept.
    BSNSettings s = binomialSettings({0, 1}, C::Posterior);
    s.SetPriorParam1(0.2);
    s.SetPriorParam2(0.3);
    s.SetCILevel(90.0);
    std::vector<double> v1(7, 0.0);
    v1[0] = v1[1] = 1.0;  // n 7, x 2: Beta(2.2, 5.3)
    Build run(s, {{0.5, kMiss, kMiss, kMiss, kMiss, kMiss, kMiss}, v1});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_NEAR(out->GetModeValues()[0], 0.6, 1e-14);
    // 90% limits of Beta(2.2, 5.3): the integrated density up to each limit.
    const double lo = out->GetLowerLimits()[1], hi = out->GetUpperLimits()[1];
    ASSERT_FALSE(isMissing(lo) || isMissing(hi));
    EXPECT_NEAR(simpson([](double t) { return betaPdf(t, 2.2, 5.3); }, 0, lo), 0.05, 1e-7);
    EXPECT_NEAR(simpson([](double t) { return betaPdf(t, 2.2, 5.3); }, 0, hi), 0.95, 1e-7);
}

TEST(OneSampleBinomial, PlotGridLikelihoodAndDensities) {
    BSNSettings s = binomialSettings({0, 1}, C::Both);
    s.SetPriorParam1(2.0);
    s.SetPriorParam2(3.0);
    Build run(s, {{1, 1, 0, 1, 0, 0, 0}, {1, 0, 1, 1, 1, 1, 1}});  // v0: n 7 x 3; v1: n 7 x 6
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    const auto& t = out->GetPlotArguments()[0];
    ASSERT_EQ(t.size(), 100u);
    EXPECT_EQ(t.front(), 2.220446049250313e-16);
    EXPECT_DOUBLE_EQ(t.back(), 0.9999999999999996 + 2.220446049250313e-16);
    EXPECT_NEAR(t[1] - t[0], 0.9999999999999996 / 99, 1e-17);
    EXPECT_EQ(out->GetPlotArguments()[1], t);

    // Beta(5, 7) is v0's posterior; its CDF is a binomial tail sum.
    EXPECT_NEAR(betaCdfInt(out->GetLowerLimits()[0], 5, 7), 0.025, 1e-10);
    EXPECT_NEAR(betaCdfInt(out->GetUpperLimits()[0], 5, 7), 0.975, 1e-10);

    for (std::size_t k : {std::size_t{0}, std::size_t{1}, std::size_t{37}, std::size_t{98}, std::size_t{99}}) {
        const double tk = t[k];
        EXPECT_NEAR(out->GetPlotLikelihoods()[0][k], 3 * std::log(tk) + 4 * std::log1p(-tk), 1e-9);
        EXPECT_NEAR(out->GetPlotPrior()[0][k], betaPdf(tk, 2, 3), 1e-9);
        EXPECT_NEAR(out->GetPlotPosterior()[0][k], betaPdf(tk, 5, 7), 1e-9);
        EXPECT_NEAR(out->GetPlotPosterior()[1][k], betaPdf(tk, 8, 4), 1e-9);
    }
    // The sampled posterior integrates to 1 (trapezoids on the grid).
    double area = 0.0;
    for (std::size_t k = 1; k < t.size(); ++k)
        area += 0.5 * (t[k] - t[k - 1]) * (out->GetPlotPosterior()[0][k] + out->GetPlotPosterior()[0][k - 1]);
    EXPECT_NEAR(area, 1.0, 1e-3);
}

TEST(OneSampleBinomial, FlatAndImproperPriorCurves) {
    BSNSettings s = binomialSettings({0}, C::Posterior);
    s.SetNPlotPoints(11);
    Build flat(s, {{1, 0, 1}});
    const auto* out = flat.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetPlotArguments()[0].size(), 11u);
    EXPECT_EQ(out->GetPlotPrior()[0], std::vector<double>(11, 1.0));  // Beta(1, 1)

    s.SetPriorParam1(0.0);
    s.SetPriorParam2(0.0);
    Build improper(s, {{1, 0, 1}});
    out = improper.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
    EXPECT_NEAR(out->GetMeanValues()[0], 2.0 / 3.0, 1e-15);  // Beta(2, 1)

    // An improper prior with no success leaves no proper posterior.
    Build none(s, {{0, 0, 0}});
    out = none.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_TRUE(isMissing(out->GetMeanValues()[0]));
    EXPECT_TRUE(out->GetPlotPosterior()[0].empty());
    EXPECT_TRUE(none.HasWarning(410037, 0));
}

TEST(OneSampleBinomial, FrequencyWeightsAreRoundedHalfUp) {
    BSNSettings s = binomialSettings({1}, C::Both);
    s.SetFrequencyWeightVar(0);
    // Weights 2.4 -> 2, 2.5 -> 3, 0.49 -> skipped, -3 and missing -> skipped.
    Build run(s, {{2.4, 2.5, 0.49, -3, kMiss}, {1, 0, 1, 1, 1}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetNs()[0], 5.0);
    EXPECT_EQ(out->GetCat1Indices()[0], 1.0);
    EXPECT_EQ(out->GetCat1Ns()[0], 2.0);
    EXPECT_EQ(out->GetCat2Ns()[0], 3.0);
    EXPECT_DOUBLE_EQ(out->GetCat1Props()[0], 0.4);
    EXPECT_DOUBLE_EQ(out->GetCat2Props()[0], 0.6);
    EXPECT_NEAR(out->GetBayesFactors()[0], std::exp(lnBF(5, 2, 2, 2, 1, 1)), 1e-12);
    EXPECT_NEAR(out->GetMeanValues()[0], 3.0 / 7.0, 1e-15);  // Beta(3, 4)
}

TEST(OneSampleBinomial, VariableWithoutDataOrAlternativeStaysMissing) {
    BSNSettings s = binomialSettings({0, 1, 2}, C::Both);
    s.SetAlterPrior1s({1.0, 1.0});  // nothing for v2
    s.SetAlterPrior2s({1.0, 1.0});
    Build run(s, {{1, 0, 0}, {kMiss, -1, kMiss}, {1, 1, 0}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SampleBinoOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_TRUE(run.HasWarning(410037, 1));
    EXPECT_FALSE(run.HasWarning(410037, 0));
    EXPECT_FALSE(run.HasWarning(410037, 2));
    EXPECT_TRUE(run.HasWarning(410018, 2));
    EXPECT_EQ(run.CountWarnings(410018), 1);

    EXPECT_FALSE(isMissing(out->GetBayesFactors()[0]));
    EXPECT_TRUE(isMissing(out->GetBayesFactors()[1]));
    EXPECT_TRUE(isMissing(out->GetBayesFactors()[2]));
    for (const auto* v : {&out->GetModeValues(), &out->GetMeanValues(), &out->GetVarianceValues(),
                          &out->GetLowerLimits(), &out->GetUpperLimits(), &out->GetCat1Props()})
        EXPECT_TRUE(isMissing((*v)[1]));
    EXPECT_TRUE(out->GetPlotArguments()[1].empty());
    EXPECT_TRUE(out->GetPlotPosterior()[1].empty());
    // v2 has no factor but its posterior (prior Beta(1, 1)) is still made.
    EXPECT_NEAR(out->GetMeanValues()[2], 3.0 / 5.0, 1e-15);
}

TEST(OneSampleBinomial, BuildErrors) {
    BSNSettings s = binomialSettings({0}, C::Both);
    {
        Build run(s, {std::vector<double>{}});
        EXPECT_EQ(run.status.GetCode(), 410003);
        EXPECT_TRUE(run.status.IsError());
        EXPECT_FALSE(run.component.IsModelBuilt());
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
    for (auto type : {C::Posterior, C::BayesFactor}) {
        s.SetAnalysType(type);
        Build run(s, {{kMiss, -2, kMiss}});
        EXPECT_EQ(run.status.GetCode(), 410003);
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
    s.SetAnalysType(C::Both);
    s.SetPriorType(C::Reference);
    {
        Build run(s, {{1, 0}});
        EXPECT_EQ(run.status.GetCode(), 410017);
        EXPECT_TRUE(run.status.IsError());
        EXPECT_FALSE(run.component.IsModelBuilt());
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
    s.SetPriorType(C::Conjugate);
    s.SetPriorParam2(kMiss);
    s.SetAlterPrior1s({});  // the factor stage's warning survives the later error
    {
        Build run(s, {{1, 0}});
        EXPECT_EQ(run.status.GetCode(), 410019);
        EXPECT_TRUE(run.status.IsError());
        EXPECT_TRUE(run.HasWarning(410018, 0));
    }
}

TEST(OneSampleBinomial, ProgressAndCancellation) {
    BSNSettings s = binomialSettings({0}, C::Both);
    s.SetProgressFrequency(3);
    CountingListener listener;
    s.SetProgressListener(&listener);
    std::vector<double> ten{1, 0, 1, 0, 1, 0, 1, 0, 1, 0};
    {
        Build run(s, {ten});
        EXPECT_TRUE(run.status.IsOK());
        EXPECT_EQ(listener.counts, (std::vector<int>{3, 6, 9, 10}));
    }
    listener.counts.clear();
    {
        Build run(s, {std::vector<double>(ten.begin(), ten.begin() + 9)});
        EXPECT_EQ(listener.counts, (std::vector<int>{3, 6, 9, 9}));
    }
    // A cancellation inside the pass ends the build with the bare code 1.
    CancelAfter cancel(4);
    s.SetCancelPointer(&cancel);
    {
        Build run(s, {ten});
        EXPECT_EQ(run.status.GetCode(), 1);
        EXPECT_TRUE(run.status.IsError());
        EXPECT_FALSE(run.component.IsModelBuilt());
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
    // One raised after the pass (from the final report) skips the remaining
    // stages and the result without an error.
    MCCommon_850::MCAtomicCancel flag;
    s.SetCancelPointer(&flag);
    listener.onNotify = [&] {
        if (listener.counts.back() == 10) flag.Cancel();
    };
    {
        Build run(s, {ten});
        EXPECT_FALSE(run.status.IsError());
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
}
