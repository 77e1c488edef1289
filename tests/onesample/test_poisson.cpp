#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "discrete_test_support.h"

using namespace discrete_test;
using namespace MCBSN_850;
namespace C = MCBSN_850::BSNConst;

namespace {

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
    return discreteSettings(C::Poisson, covariates, type, 2, 1, 1.5, 0.5);
}

// `n` equally spaced arguments whose ends are the `level` and 1 − `level`
// points of `cdf`.
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
    BSNSettings s = poissonSettings({0, 1, 2}, C::BayesFactor);
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
    const auto integrand = [](double a, double b) {
        return [a, b](double l) { return l <= 0 ? 0.0 : std::pow(l, 10) * std::exp(-5 * l) * gammaPdf(l, a, b); };
    };
    const double ratio = simpson(integrand(2, 2), 0, 40, 400000) / simpson(integrand(1.5, 0.5), 0, 40, 400000);
    EXPECT_NEAR(bf[0], ratio, 1e-7 * ratio);
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
    BSNSettings s = poissonSettings({0, 1}, C::Posterior);
    // Prior Gamma(2, 1); v0: N 5, S 10 -> Gamma(12, 6); v1: no case.
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
    BSNSettings s = poissonSettings({0}, C::Both);
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

    // An improper prior Gamma(0, 0) at another level and number of points:
    // a flat line over the posterior's domain, the posterior then the
    // normalised likelihood Gamma(7, 4).
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
