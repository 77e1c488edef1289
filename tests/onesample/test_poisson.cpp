#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "discrete_test_support.h"

using namespace discrete_test;
using MCBSN_850::BSN1SamplePoisnOutputStats;
using MCBSN_850::BSNSettings;
namespace C = MCBSN_850::BSNConst;

namespace {

// ln ∫ λ^S e^(−Nλ) Gamma(λ; a, b) dλ, closed form (shape a, rate b).
double lnMarginal(double a, double b, double N, double S) {
    return a * std::log(b) - std::lgamma(a) + std::lgamma(a + S) - (a + S) * std::log(b + N);
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

BSNSettings poissonSettings(std::vector<int> covariates, C::AnalysTypes type) {
    BSNSettings s;
    s.SetModelType(C::OneSample, false);
    s.SetTestDistType(C::Poisson);
    s.SetCovariates(covariates);
    s.SetAnalysType(type);
    s.SetPriorParam1(2.0);
    s.SetPriorParam2(1.0);
    s.SetAlterPrior1s(std::vector<double>(covariates.size(), 1.5));
    s.SetAlterPrior2s(std::vector<double>(covariates.size(), 0.5));
    return s;
}

// Checks one curve: `n` equally spaced arguments whose ends are the
// `level` and 1 − `level` points of `cdf`.
void expectDomain(const std::vector<double>& args, std::size_t n, double level,
                  const std::function<double(double)>& cdf) {
    ASSERT_EQ(args.size(), n);
    EXPECT_NEAR(cdf(args.front()), level, 1e-9);
    EXPECT_NEAR(cdf(args.back()), 1.0 - level, 1e-9);
    const double step = (args.back() - args.front()) / (n - 1);
    for (std::size_t k = 1; k < n; ++k) EXPECT_NEAR(args[k] - args[k - 1], step, 1e-12 * args.back());
}

} // namespace

TEST(OneSamplePoisson, BayesFactorsMatchClosedFormAndIntegratedMarginals) {
    BSNSettings s = poissonSettings({0, 1}, C::BayesFactor);
    // v0: 2.7 counts as 2, −1 and missing are skipped: N 5, S 10.
    Build run(s, {{2.7, 1, 0, 3, -1, kMiss, 4}, {kMiss, -1, kMiss, kMiss, kMiss, kMiss, kMiss}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetModelType(), C::OneSample);
    EXPECT_EQ(out->GetOutputType(), C::Output1SamplePoisson);
    const auto& bf = out->GetBayesFactors();
    // The default null prior is Gamma(2, 2): its term starts 2 ln 2 − lnΓ(2).
    const double expected = std::exp(lnMarginal(2, 2, 5, 10) - lnMarginal(1.5, 0.5, 5, 10));
    EXPECT_NEAR(bf[0], expected, 1e-12 * expected);
    const auto integrand = [](double a, double b) {
        return [a, b](double l) { return l <= 0 ? 0.0 : std::pow(l, 10) * std::exp(-5 * l) * gammaPdf(l, a, b); };
    };
    const double ratio = simpson(integrand(2, 2), 0, 40, 400000) / simpson(integrand(1.5, 0.5), 0, 40, 400000);
    EXPECT_NEAR(bf[0], ratio, 1e-7 * ratio);
    // No data: both marginals are 1, and so is the factor.
    EXPECT_NEAR(bf[1], 1.0, 1e-12);
    EXPECT_EQ(out->GetIsLogBayesFactor(), (std::vector<bool>{false, false}));

    EXPECT_EQ(out->GetNs(), (std::vector<double>{5, 0}));
    EXPECT_EQ(out->GetMinCnts()[0], 0.0);
    EXPECT_EQ(out->GetMaxCnts()[0], 4.0);
    EXPECT_TRUE(isMissing(out->GetMinCnts()[1]));
    EXPECT_TRUE(isMissing(out->GetMaxCnts()[1]));
    // Analysis type 1 makes no posterior and no plots.
    EXPECT_TRUE(isMissing(out->GetMeanValues()[0]));
    EXPECT_TRUE(isMissing(out->GetPosteriorParams()[0].first));
    EXPECT_TRUE(out->GetPlotArguments4Posterior()[0].empty());
    std::ostringstream dump;
    run.component.Display(dump);
    EXPECT_NE(dump.str().find("End of display BSN1SamplePoisnOutputStats object"), std::string::npos);
}

TEST(OneSamplePoisson, HugeSampleStoresLogFactorsAfterPriorWarning) {
    BSNSettings s = poissonSettings({1, 2, 3}, C::BayesFactor);
    s.SetFrequencyWeightVar(0);
    // A rate of 500 seen a million times: the null Gamma(2, 2) has almost no
    // mass there, the alternative Gamma(500, 1) is centred on it (v1), and
    // the other way round for v2.
    s.SetNullPrior1s({2.0, 500.0, 2.0});
    s.SetNullPrior2s({2.0, 1.0, 2.0});
    s.SetAlterPrior1s({500.0, 2.0});  // nothing for v3
    s.SetAlterPrior2s({1.0, 2.0});
    const std::vector<double> w{1e6};
    const std::vector<double> counts{500};
    Build run(s, {w, counts, counts, counts});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
    const double N = 1e6, S = 5e8;
    const double low = lnMarginal(2, 2, N, S) - lnMarginal(500, 1, N, S);
    ASSERT_LT(low, -709.0);
    EXPECT_EQ(out->GetIsLogBayesFactor(), (std::vector<bool>{true, true, false}));
    // The log-gamma terms are near 1e10, so one rounding of either side is
    // worth about 2e-6 in the difference.
    EXPECT_NEAR(out->GetBayesFactors()[0], low, 1e-5);
    EXPECT_NEAR(out->GetBayesFactors()[1], -low, 1e-5);
    EXPECT_TRUE(isMissing(out->GetBayesFactors()[2]));
    // The prior warning comes first, then the log warning, once.
    const auto& warnings = run.component.GetWarningMessages();
    ASSERT_EQ(warnings.Size(), 2u);
    EXPECT_EQ(warnings.Get(0).GetCode(), 410018);
    EXPECT_EQ(warnings.Get(0).GetDiscreteDatum(0), 2);
    EXPECT_TRUE(warnings.Get(0).IsWarning());
    EXPECT_EQ(warnings.Get(1).GetCode(), 410041);
}

TEST(OneSamplePoisson, PosteriorSummariesAndCredibleLimits) {
    BSNSettings s = poissonSettings({0, 1}, C::Posterior);
    // Prior Gamma(2, 1); v0: N 5, S 10 -> Gamma(12, 6); v1: no case.
    Build run(s, {{2, 2, 2, 2, 2}, {kMiss, kMiss, kMiss, kMiss, kMiss}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
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
    EXPECT_TRUE(isMissing(out->GetLikelihoodParams()[1].first));
    EXPECT_TRUE(isMissing(out->GetLikelihoodParams()[1].second));
    EXPECT_TRUE(isMissing(out->GetPosteriorParams()[1].first));
    EXPECT_TRUE(out->GetPlotArguments4Likelihoods()[1].empty());
    EXPECT_TRUE(out->GetPlotPrior()[1].empty());
    EXPECT_TRUE(run.component.GetWarningMessages().IsEmpty());

    // Shape below 1: Gamma(0.5, 4) from prior Gamma(0.5, 1) and three zeros.
    // Its CDF is erf(sqrt(4x)); the mode is 0. Limits at 90%.
    s.SetPriorParam1(0.5);
    s.SetCILevel(90.0);
    Build small(s, {{0, 0, 0}, {1, 0, 0}});
    out = small.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetModeValues()[0], 0.0);
    EXPECT_NEAR(std::erf(std::sqrt(4 * out->GetLowerLimits()[0])), 0.05, 1e-10);
    EXPECT_NEAR(std::erf(std::sqrt(4 * out->GetUpperLimits()[0])), 0.95, 1e-10);
    // v1 gives Gamma(1.5, 4): mode 0.5/4.
    EXPECT_NEAR(out->GetModeValues()[1], 0.125, 1e-15);
}

TEST(OneSamplePoisson, PlotCurvesCoverTheirOwnCentralMass) {
    BSNSettings s = poissonSettings({0}, C::Both);
    s.SetPriorParam1(3.0);
    s.SetPriorParam2(2.0);
    // N 4, S 7: likelihood ~ Gamma(8, 4), prior Gamma(3, 2), posterior Gamma(10, 6).
    Build run(s, {{1, 3, 0, 3}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
    const auto& la = out->GetPlotArguments4Likelihoods()[0];
    const auto& pa = out->GetPlotArguments4Prior()[0];
    const auto& qa = out->GetPlotArguments4Posterior()[0];
    expectDomain(la, 100, 0.005, [](double x) { return gammaCdfInt(x, 8, 4); });
    expectDomain(pa, 100, 0.005, [](double x) { return gammaCdfInt(x, 3, 2); });
    expectDomain(qa, 100, 0.005, [](double x) { return gammaCdfInt(x, 10, 6); });
    for (std::size_t k : {std::size_t{0}, std::size_t{50}, std::size_t{99}}) {
        EXPECT_NEAR(out->GetPlotLikelihoods()[0][k], 7 * std::log(la[k]) - 4 * la[k], 1e-12);
        EXPECT_NEAR(out->GetPlotPrior()[0][k], gammaPdf(pa[k], 3, 2), 1e-12);
        EXPECT_NEAR(out->GetPlotPosterior()[0][k], gammaPdf(qa[k], 10, 6), 1e-12);
    }

    // Another level and number of points.
    s.SetPlotDomainLevel(0.02);
    s.SetNPlotPoints(7);
    Build coarse(s, {{1, 3, 0, 3}});
    out = coarse.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
    expectDomain(out->GetPlotArguments4Posterior()[0], 7, 0.02, [](double x) { return gammaCdfInt(x, 10, 6); });
    expectDomain(out->GetPlotArguments4Likelihoods()[0], 7, 0.02, [](double x) { return gammaCdfInt(x, 8, 4); });

    // An improper prior Gamma(0, 0) is a flat line over the posterior's
    // domain; the posterior is then the normalised likelihood Gamma(7, 4).
    s.SetPriorParam1(0.0);
    s.SetPriorParam2(0.0);
    Build flat(s, {{1, 3, 0, 3}});
    out = flat.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
    const auto& post = out->GetPlotArguments4Posterior()[0];
    expectDomain(post, 7, 0.02, [](double x) { return gammaCdfInt(x, 7, 4); });
    EXPECT_EQ(out->GetPlotArguments4Prior()[0], (std::vector<double>{post.front(), post.back()}));
    EXPECT_NEAR(out->GetMeanValues()[0], 7.0 / 4.0, 1e-15);
}

TEST(OneSamplePoisson, FrequencyWeightsAreRoundedHalfUp) {
    BSNSettings s = poissonSettings({1}, C::Both);
    s.SetPriorParam1(1.0);
    s.SetFrequencyWeightVar(0);
    // Weights 2.4 -> 2, 2.5 -> 3; 0.49, −3 and missing skip their records.
    Build run(s, {{2.4, 2.5, 0.49, -3, kMiss}, {3.9, 1, 100, 100, 100}});
    ASSERT_TRUE(run.status.IsOK());
    const auto* out = run.As<BSN1SamplePoisnOutputStats>();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->GetNs()[0], 5.0);
    EXPECT_EQ(out->GetMinCnts()[0], 1.0);
    EXPECT_EQ(out->GetMaxCnts()[0], 3.0);
    EXPECT_EQ(out->GetLikelihoodParams()[0], (std::pair<double, double>{-5.0, 9.0}));
    EXPECT_NEAR(out->GetMeanValues()[0], 10.0 / 6.0, 1e-15);
    const double expected = std::exp(lnMarginal(2, 2, 5, 9) - lnMarginal(1.5, 0.5, 5, 9));
    EXPECT_NEAR(out->GetBayesFactors()[0], expected, 1e-12 * expected);
}

TEST(OneSamplePoisson, BuildErrorsAndPriorWarnings) {
    BSNSettings s = poissonSettings({0, 1}, C::Both);
    {
        // Two variables without alternative parameters: one warning, for the
        // first of them; the factor of the other is still made.
        BSNSettings three = poissonSettings({0, 1, 2}, C::BayesFactor);
        three.SetAlterPrior1s({1.0});
        three.SetAlterPrior2s({1.0});
        Build run(three, {{1, 2}, {3, 4}, {5, 6}});
        EXPECT_TRUE(run.status.IsOK());
        EXPECT_EQ(run.CountWarnings(410018), 1);
        EXPECT_TRUE(run.HasWarning(410018, 1));
        const auto* out = run.As<BSN1SamplePoisnOutputStats>();
        ASSERT_NE(out, nullptr);
        EXPECT_NEAR(out->GetBayesFactors()[0], std::exp(lnMarginal(2, 2, 2, 3) - lnMarginal(1, 1, 2, 3)), 1e-12);
        EXPECT_TRUE(isMissing(out->GetBayesFactors()[1]));
    }
    {
        Build run(s, {std::vector<double>{}, std::vector<double>{}});
        EXPECT_EQ(run.status.GetCode(), 410003);
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
    for (auto type : {C::Posterior, C::BayesFactor, C::Both}) {
        s.SetAnalysType(type);
        Build run(s, {{kMiss, -1}, {-4, kMiss}});
        EXPECT_EQ(run.status.GetCode(), 410003);
        EXPECT_TRUE(run.status.IsError());
        EXPECT_FALSE(run.component.IsModelBuilt());
    }
    s.SetAnalysType(C::Posterior);
    s.SetPriorType(C::Custom);
    {
        Build run(s, {{1, 2}, {3, 4}});
        EXPECT_EQ(run.status.GetCode(), 410017);
        EXPECT_TRUE(run.status.IsError());
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
    s.SetPriorType(C::Conjugate);
    s.SetPriorParam1(kMiss);
    {
        Build run(s, {{1, 2}, {3, 4}});
        EXPECT_EQ(run.status.GetCode(), 410019);
        EXPECT_FALSE(run.component.IsModelBuilt());
    }
}

TEST(OneSamplePoisson, ProgressAndCancellationInOwnPosteriorPass) {
    BSNSettings s = poissonSettings({0}, C::Posterior);
    s.SetProgressFrequency(4);
    CountingListener listener;
    s.SetProgressListener(&listener);
    const std::vector<double> eight{1, 2, 3, 4, 5, 6, 7, 8};
    {
        Build run(s, {eight});
        EXPECT_TRUE(run.status.IsOK());
        EXPECT_EQ(listener.counts, (std::vector<int>{4, 8, 8}));
    }
    CancelAfter cancel(2);
    s.SetCancelPointer(&cancel);
    Build run(s, {eight});
    EXPECT_EQ(run.status.GetCode(), 1);
    EXPECT_TRUE(run.status.IsError());
    EXPECT_EQ(run.component.GetOutputStats(), nullptr);
}
