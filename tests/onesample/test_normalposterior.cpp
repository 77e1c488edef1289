// Posterior of a normal mean under every prior, run through the component
// in posterior-only mode. Each result is checked against the textbook
// conjugate forms written out here, and the main families also against a
// brute-force integration of likelihood x prior on a grid.
#include <gtest/gtest.h>

#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <numbers>
#include <vector>

#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "tests/onesample/normaltestsupport.h"

using namespace normaltest;
using MCBSN_850::BSN1SampleNormOutputStats;

namespace {

const std::vector<double> kData = {4.1, 5.3, 3.8, 6.2, 5.0, 4.7, 5.9, 4.4, 5.6, 4.9, 5.2, 3.9};

BSNSettings posteriorSettings(BC::DistTypes meanPrior, BC::DistTypes varPrior, int nVars = 1) {
    BSNSettings s;
    s.SetModelType(BC::OneSample, false);
    s.SetTestDistType(BC::Normal);
    s.SetAnalysType(BC::Posterior);
    std::vector<int> vars;
    for (int i = 0; i < nVars; ++i) vars.push_back(i);
    s.SetCovariates(vars);
    s.SetMeanDistType(meanPrior);
    s.SetPriorDistType(varPrior);
    return s;
}

double tQuantile(double p, double df) { return bm::quantile(bm::students_t(df), p); }
double zQuantile(double p) { return bm::quantile(bm::normal(), p); }

// A t posterior (centre, scale^2, df): the values the routine must report.
struct TPost {
    double centre, scale2, df;
    double var() const { return df / (df - 2.0) * scale2; }
    double half(double alpha) const { return std::sqrt(scale2) * tQuantile(1.0 - alpha / 2.0, df); }
};

void expectT(const BSN1SampleNormOutputStats& o, int i, const TPost& p, double alpha = 0.05) {
    const double tol = 1e-10 * (1.0 + std::fabs(p.centre));
    EXPECT_NEAR(o.GetModeValues()[i], p.centre, tol);
    EXPECT_NEAR(o.GetPostMeanValues()[i], p.centre, tol);
    EXPECT_NEAR(o.GetVarianceValues()[i], p.var(), 1e-10 * p.var());
    EXPECT_NEAR(o.GetLowerLimits()[i], p.centre - p.half(alpha), 1e-9);
    EXPECT_NEAR(o.GetUpperLimits()[i], p.centre + p.half(alpha), 1e-9);
}

void expectMatchesGrid(const BSN1SampleNormOutputStats& o, int i, const GridPosterior& g) {
    const double sd = std::sqrt(g.var);
    EXPECT_NEAR(o.GetPostMeanValues()[i], g.mean, 1e-4 * sd);
    EXPECT_NEAR(o.GetVarianceValues()[i], g.var, 1e-3 * g.var);
    EXPECT_NEAR(o.GetLowerLimits()[i], g.lower, 1e-3 * sd);
    EXPECT_NEAR(o.GetUpperLimits()[i], g.upper, 1e-3 * sd);
}

void expectNoResult(const BSN1SampleNormOutputStats& o, int i) {
    EXPECT_TRUE(MCMV::IsMissing(o.GetModeValues()[i]));
    EXPECT_TRUE(MCMV::IsMissing(o.GetPostMeanValues()[i]));
    EXPECT_TRUE(MCMV::IsMissing(o.GetVarianceValues()[i]));
    EXPECT_TRUE(MCMV::IsMissing(o.GetLowerLimits()[i]));
    EXPECT_TRUE(MCMV::IsMissing(o.GetUpperLimits()[i]));
    EXPECT_TRUE(o.GetPlotArguments4Likelihoods()[i].empty());
    EXPECT_TRUE(o.GetPlotPosterior()[i].empty());
    EXPECT_TRUE(o.GetPlotPrior()[i].empty());
}

// The evenly spaced grid of n points over [low, high].
void expectGrid(const std::vector<double>& args, double low, double high, int n) {
    ASSERT_EQ(static_cast<int>(args.size()), n);
    const double tol = 1e-9 * (1.0 + std::fabs(low) + std::fabs(high));
    EXPECT_NEAR(args.front(), low, tol);
    EXPECT_NEAR(args.back(), high, tol);
    for (int k = 0; k < n; ++k) EXPECT_NEAR(args[k], low + k * (high - low) / (n - 1), tol);
}

double normalLogPdf(double x, double m, double v) { return -0.5 * std::log(2 * std::numbers::pi * v) - (x - m) * (x - m) / (2 * v); }

} // namespace

TEST(NormalPosterior, NormalInverseChiSquareMatchesConjugateFormAndIntegration) {
    const double mu0 = 4.0, kappa0 = 2.0, nu0 = 3.0, s02 = 0.8;
    BSNSettings s = posteriorSettings(BC::Normal, BC::InverseChiSquare);
    s.SetMeanDistParam1(mu0);
    s.SetKappaValue(kappa0);
    s.SetPriorDistParam1(nu0);
    s.SetPriorDistParam2(s02);
    NormalRun r(s, {kData});
    ASSERT_TRUE(r.status.IsOK());
    const auto* o = r.out<BSN1SampleNormOutputStats>();
    ASSERT_NE(o, nullptr);
    EXPECT_TRUE(o->GetBayesFactors().empty());
    EXPECT_TRUE(o->GetTValues().empty());
    EXPECT_TRUE(o->GetSigs().empty());

    // mu, sigma^2 ~ N-Inv-chi^2(mu0, sigma^2/kappa0; nu0, s0^2): the mean's
    // marginal posterior is t_{nu_n}(mu_n, sigma_n^2 / kappa_n).
    const Moments d = moments(kData);
    const double kn = kappa0 + d.n, nun = nu0 + d.n;
    const double mun = (kappa0 * mu0 + d.n * d.mean) / kn;
    const double sn2 = (nu0 * s02 + (d.n - 1) * d.var + kappa0 * d.n / kn * std::pow(d.mean - mu0, 2)) / nun;
    expectT(*o, 0, {mun, sn2 / kn, nun});

    const auto logPrior = [&](double mu, double sigma2) {
        return -(nu0 / 2 + 1) * std::log(sigma2) - nu0 * s02 / (2 * sigma2) + normalLogPdf(mu, mu0, sigma2 / kappa0);
    };
    const double w = 30 * std::sqrt(sn2 / kn);
    expectMatchesGrid(*o, 0, unknownVariancePosterior(d.n, d.mean, d.var, logPrior, mun - w, mun + w, 0.05));

    // The curves. Likelihood: arguments span the spread of single cases
    // (M -/+ z s), and the values are the log of the profile likelihood
    // (sum of squares)^(-N/2) up to a constant, taken from the raw data.
    const double lambda = 0.005;
    const int n = 100;
    const double z = zQuantile(1 - lambda / 2);
    const auto& la = o->GetPlotArguments4Likelihoods()[0];
    expectGrid(la, d.mean - z * std::sqrt(d.var), d.mean + z * std::sqrt(d.var), n);
    const auto& lv = o->GetPlotLikelihoods()[0];
    ASSERT_EQ(lv.size(), la.size());
    auto profile = [&](double mu) {
        double q = 0;
        for (double x : kData) q += (x - mu) * (x - mu);
        return -d.n / 2 * std::log(q);
    };
    for (int k = 1; k < n; ++k) EXPECT_NEAR(lv[k] - lv[0], profile(la[k]) - profile(la[0]), 1e-9);

    // Prior of the mean drawn as a normal with the prior mode of sigma^2
    // (nu0 s0^2 / (nu0 + 2)) over kappa0.
    const double w0 = nu0 * s02 / (nu0 + 2) / kappa0;
    const auto& pa = o->GetPlotArguments4Prior()[0];
    expectGrid(pa, mu0 - z * std::sqrt(w0), mu0 + z * std::sqrt(w0), n);
    const auto& pv = o->GetPlotPrior()[0];
    ASSERT_EQ(pv.size(), pa.size());
    for (int k = 0; k < n; ++k) EXPECT_NEAR(pv[k], std::exp(normalLogPdf(pa[k], mu0, w0)), 1e-12);

    // Posterior: the t density over the t's own central range.
    const TPost post{mun, sn2 / kn, nun};
    const auto& qa = o->GetPlotArguments4Posterior()[0];
    expectGrid(qa, mun - std::sqrt(post.scale2) * tQuantile(1 - lambda / 2, nun),
               mun + std::sqrt(post.scale2) * tQuantile(1 - lambda / 2, nun), n);
    const auto& qv = o->GetPlotPosterior()[0];
    ASSERT_EQ(qv.size(), qa.size());
    const double sc = std::sqrt(post.scale2);
    for (int k = 0; k < n; ++k)
        EXPECT_NEAR(qv[k], bm::pdf(bm::students_t(nun), (qa[k] - mun) / sc) / sc, 1e-10);
}

TEST(NormalPosterior, NormalGammaAndChiSquarePrecisionPriors) {
    const double mu0 = 5.5, kappa0 = 0.5, a0 = 2.5, b0 = 1.5;
    const Moments d = moments(kData);
    {
        BSNSettings s = posteriorSettings(BC::Normal, BC::Gamma);
        s.SetMeanDistParam1(mu0);
        s.SetKappaValue(kappa0);
        s.SetPriorDistParam1(a0);
        s.SetPriorDistParam2(b0);
        NormalRun r(s, {kData});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        // tau = 1/sigma^2 ~ Gamma(a0, rate b0), mu | tau ~ N(mu0, 1/(kappa0 tau)).
        const double kn = kappa0 + d.n, an = a0 + d.n / 2;
        const double mun = (kappa0 * mu0 + d.n * d.mean) / kn;
        double ss = 0;
        for (double x : kData) ss += (x - d.mean) * (x - d.mean);
        const double bn = b0 + ss / 2 + kappa0 * d.n * std::pow(d.mean - mu0, 2) / (2 * kn);
        const TPost post{mun, bn / (an * kn), 2 * an};
        expectT(*o, 0, post);
        EXPECT_NEAR(o->GetVarianceValues()[0], bn / ((an - 1) * kn), 1e-12);

        const auto logPrior = [&](double mu, double sigma2) {
            // density of sigma^2 = 1/tau: (sigma^2)^(-a0-1) exp(-b0/sigma^2)
            return -(a0 + 1) * std::log(sigma2) - b0 / sigma2 + normalLogPdf(mu, mu0, sigma2 / kappa0);
        };
        const double w = 30 * std::sqrt(post.scale2);
        expectMatchesGrid(*o, 0, unknownVariancePosterior(d.n, d.mean, d.var, logPrior, mun - w, mun + w, 0.05));

        // Prior curve: the mode of the precision prior, (a0 - 1)/b0, sets
        // the drawn variance 1/(kappa0 p).
        const double w0 = 1.0 / (kappa0 * (a0 - 1) / b0);
        const double z = zQuantile(1 - 0.005 / 2);
        expectGrid(o->GetPlotArguments4Prior()[0], mu0 - z * std::sqrt(w0), mu0 + z * std::sqrt(w0), 100);
    }
    {
        // A chi-square with k degrees of freedom on the precision is the
        // gamma with shape k/2 and rate 1/2; shape below 1 draws the prior
        // with the mean precision instead of the mode.
        const double k = 1.5;
        BSNSettings s = posteriorSettings(BC::Normal, BC::ChiSquare);
        s.SetMeanDistParam1(mu0);
        s.SetKappaValue(kappa0);
        s.SetPriorDistParam1(k);
        NormalRun r(s, {kData});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        const double kn = kappa0 + d.n, an = k / 2 + d.n / 2;
        const double mun = (kappa0 * mu0 + d.n * d.mean) / kn;
        const double bn = 0.5 + (d.n - 1) * d.var / 2 + kappa0 * d.n * std::pow(d.mean - mu0, 2) / (2 * kn);
        expectT(*o, 0, {mun, bn / (an * kn), 2 * an});
        const double w0 = 1.0 / (kappa0 * ((k / 2) / 0.5));
        const double z = zQuantile(1 - 0.005 / 2);
        expectGrid(o->GetPlotArguments4Prior()[0], mu0 - z * std::sqrt(w0), mu0 + z * std::sqrt(w0), 100);
    }
}

TEST(NormalPosterior, InverseGammaIsScaledInverseChiSquare) {
    const double a = 1.7, b = 2.9;
    BSNSettings ig = posteriorSettings(BC::Normal, BC::InverseGamma);
    ig.SetMeanDistParam1(4.5);
    ig.SetKappaValue(3.0);
    ig.SetPriorDistParam1(a);
    ig.SetPriorDistParam2(b);
    BSNSettings ic = ig;
    ic.SetPriorDistType(BC::InverseChiSquare);
    ic.SetPriorDistParam1(2 * a);
    ic.SetPriorDistParam2(b / a);
    NormalRun r1(ig, {kData}), r2(ic, {kData});
    const auto* o1 = r1.out<BSN1SampleNormOutputStats>();
    const auto* o2 = r2.out<BSN1SampleNormOutputStats>();
    ASSERT_NE(o1, nullptr);
    ASSERT_NE(o2, nullptr);
    EXPECT_FALSE(MCMV::IsMissing(o1->GetPostMeanValues()[0]));
    EXPECT_EQ(o1->GetPostMeanValues(), o2->GetPostMeanValues());
    EXPECT_EQ(o1->GetVarianceValues(), o2->GetVarianceValues());
    EXPECT_EQ(o1->GetLowerLimits(), o2->GetLowerLimits());
    EXPECT_EQ(o1->GetUpperLimits(), o2->GetUpperLimits());
    EXPECT_EQ(o1->GetPlotPrior(), o2->GetPlotPrior());
    EXPECT_EQ(o1->GetPlotPosterior(), o2->GetPlotPosterior());

    // Without a kappa the prior sample size is 1.
    BSNSettings noKappa = ig;
    noKappa.SetKappaValue(kMiss);
    BSNSettings kappaOne = ig;
    kappaOne.SetKappaValue(1.0);
    NormalRun r3(noKappa, {kData}), r4(kappaOne, {kData});
    EXPECT_EQ(r3.out<BSN1SampleNormOutputStats>()->GetPostMeanValues(),
              r4.out<BSN1SampleNormOutputStats>()->GetPostMeanValues());
    EXPECT_NE(r3.out<BSN1SampleNormOutputStats>()->GetPostMeanValues(), o1->GetPostMeanValues());
}

TEST(NormalPosterior, ReferencePriorsMatchIntegration) {
    const Moments d = moments(kData);
    struct Case {
        BC::DistTypes varPrior;
        double df;        // degrees of freedom of the t posterior
        double logPower;  // prior on sigma^2 proportional to (sigma^2)^logPower
    };
    for (const Case c : {Case{BC::Diffuse, d.n - 3, 0.0}, Case{BC::Jeffreys2, d.n - 1, -1.0},
                         Case{BC::Jeffreys4, d.n + 1, -2.0}}) {
        SCOPED_TRACE(c.varPrior);
        BSNSettings s = posteriorSettings(BC::Diffuse, c.varPrior);
        NormalRun r(s, {kData});
        ASSERT_TRUE(r.status.IsOK());
        EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        const TPost post{d.mean, (d.n - 1) * d.var / (d.n * c.df), c.df};
        expectT(*o, 0, post);
        const auto logPrior = [&](double, double sigma2) { return c.logPower * std::log(sigma2); };
        const double w = 40 * std::sqrt(post.scale2);
        expectMatchesGrid(*o, 0,
                          unknownVariancePosterior(d.n, d.mean, d.var, logPrior, d.mean - w, d.mean + w, 0.05));

        const double z = zQuantile(1 - 0.005 / 2);
        expectGrid(o->GetPlotArguments4Likelihoods()[0], d.mean - z * std::sqrt(d.var), d.mean + z * std::sqrt(d.var),
                   100);
        const double q = tQuantile(1 - 0.005 / 2, c.df) * std::sqrt(post.scale2);
        expectGrid(o->GetPlotArguments4Posterior()[0], d.mean - q, d.mean + q, 100);
        // Improper flat prior: the likelihood's arguments and two values 1.
        EXPECT_EQ(o->GetPlotArguments4Prior()[0], o->GetPlotArguments4Likelihoods()[0]);
        EXPECT_EQ(o->GetPlotArguments4Prior()[0].size(), 100u);
        EXPECT_EQ(o->GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
        EXPECT_EQ(o->GetPlotPosterior()[0].size(), 100u);
    }
}

TEST(NormalPosterior, KnownVarianceMatchesIntegration) {
    const double sigma2 = 0.6, mu0 = 4.0, tau02 = 0.25;
    const Moments d = moments(kData);
    // Data variance known for variable 0 only; variable 1 (the same data)
    // falls back to the unknown-variance routine.
    BSNSettings s = posteriorSettings(BC::Normal, BC::InverseChiSquare, 2);
    s.SetMeanDistParam1(mu0);
    s.SetMeanDistParam2(tau02);
    s.SetPriorDistParam1(4.0);
    s.SetPriorDistParam2(0.5);
    s.SetDataVarVals({sigma2, kMiss});
    NormalRun r(s, {kData, kData});
    const auto* o = r.out<BSN1SampleNormOutputStats>();
    ASSERT_NE(o, nullptr);

    // Grid: exp(-sum (x - mu)^2 / (2 sigma^2)) x N(mu; mu0, tau0^2).
    std::vector<double> mu(20001), dens(20001);
    for (std::size_t k = 0; k < mu.size(); ++k) {
        mu[k] = 2.0 + 5.0 * k / (mu.size() - 1);
        double q = 0;
        for (double x : kData) q += (x - mu[k]) * (x - mu[k]);
        dens[k] = std::exp(-q / (2 * sigma2) + normalLogPdf(mu[k], mu0, tau02) + 20.0);
    }
    const GridPosterior g = summarise(mu, dens, 0.05);
    expectMatchesGrid(*o, 0, g);
    const double taun2 = 1 / (1 / tau02 + d.n / sigma2);
    const double mun = taun2 * (mu0 / tau02 + d.n * d.mean / sigma2);
    EXPECT_NEAR(o->GetModeValues()[0], mun, 1e-12);
    EXPECT_NEAR(o->GetVarianceValues()[0], taun2, 1e-14);
    EXPECT_NEAR(o->GetLowerLimits()[0], mun - zQuantile(0.975) * std::sqrt(taun2), 1e-9);
    EXPECT_NEAR(o->GetUpperLimits()[0], mun + zQuantile(0.975) * std::sqrt(taun2), 1e-9);

    // Known-variance log-likelihood: exactly -sum (x - mu)^2 / (2 sigma^2),
    // on M -/+ z sigma; prior and posterior normal curves on their ranges.
    const double z = zQuantile(1 - 0.005 / 2);
    const auto& la = o->GetPlotArguments4Likelihoods()[0];
    expectGrid(la, d.mean - z * std::sqrt(sigma2), d.mean + z * std::sqrt(sigma2), 100);
    for (std::size_t k = 0; k < la.size(); ++k) {
        double q = 0;
        for (double x : kData) q += (x - la[k]) * (x - la[k]);
        EXPECT_NEAR(o->GetPlotLikelihoods()[0][k], -q / (2 * sigma2), 1e-9);
    }
    expectGrid(o->GetPlotArguments4Prior()[0], mu0 - z * std::sqrt(tau02), mu0 + z * std::sqrt(tau02), 100);
    const auto& qa = o->GetPlotArguments4Posterior()[0];
    expectGrid(qa, mun - z * std::sqrt(taun2), mun + z * std::sqrt(taun2), 100);
    for (std::size_t k = 0; k < qa.size(); ++k)
        EXPECT_NEAR(o->GetPlotPosterior()[0][k], std::exp(normalLogPdf(qa[k], mun, taun2)), 1e-10);

    // Variable 1: the conjugate unknown-variance posterior (t, not normal).
    const double kn = 1 + d.n, nun = 4 + d.n;
    const double mun1 = (mu0 + d.n * d.mean) / kn;
    const double sn2 = (4 * 0.5 + (d.n - 1) * d.var + d.n / kn * std::pow(d.mean - mu0, 2)) / nun;
    expectT(*o, 1, {mun1, sn2 / kn, nun});
}

TEST(NormalPosterior, KnownVarianceFlatPriorAndUnsupportedPriors) {
    const double sigma2 = 0.9;
    const Moments d = moments(kData);
    {
        BSNSettings s = posteriorSettings(BC::Diffuse, BC::Diffuse);
        s.SetDataVarVals({sigma2});
        s.SetCILevel(90.0);
        NormalRun r(s, {kData});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
        EXPECT_NEAR(o->GetPostMeanValues()[0], d.mean, 1e-12);
        EXPECT_NEAR(o->GetVarianceValues()[0], sigma2 / d.n, 1e-14);
        // 90% interval: the 5% and 95% normal quantiles.
        EXPECT_NEAR(o->GetLowerLimits()[0], d.mean - zQuantile(0.95) * std::sqrt(sigma2 / d.n), 1e-9);
        EXPECT_NEAR(o->GetUpperLimits()[0], d.mean + zQuantile(0.95) * std::sqrt(sigma2 / d.n), 1e-9);
        EXPECT_EQ(o->GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
    }
    {
        // A mean prior that is neither Normal nor Diffuse, with a known
        // variance: flat-prior result plus warning 410017 (no datum).
        BSNSettings s = posteriorSettings(BC::Gamma, BC::Diffuse, 2);
        s.SetDataVarVals({sigma2, sigma2});
        s.SetCILevel(kMiss);  // no level: 95%
        NormalRun r(s, {kData, kData});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        EXPECT_EQ(r.count(410017), 2);
        EXPECT_EQ(r.component.GetWarningMessages().Get(0).GetDiscreteDatum(0), -1);
        EXPECT_NEAR(o->GetVarianceValues()[1], sigma2 / d.n, 1e-14);
        EXPECT_NEAR(o->GetUpperLimits()[1], d.mean + zQuantile(0.975) * std::sqrt(sigma2 / d.n), 1e-9);
    }
    // Unknown variance, unsupported combinations: Diffuse (t with N - 3
    // df) and one 410017 each.
    for (auto [meanPrior, varPrior] : {std::pair{BC::Diffuse, BC::InverseGamma}, std::pair{BC::Normal, BC::Jeffreys2},
                                       std::pair{BC::Binomial, BC::Jeffreys4}}) {
        NormalRun r(posteriorSettings(meanPrior, varPrior), {kData});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        EXPECT_EQ(r.warningCodes(), std::vector<int>{410017});
        expectT(*o, 0, {d.mean, (d.n - 1) * d.var / (d.n * (d.n - 3)), d.n - 3});
    }
}

TEST(NormalPosterior, SmallSampleWarningsAndThresholds) {
    const std::vector<double> five = {1.0, 2.5, 2.0, 4.0, 3.1};
    std::vector<double> six = five;
    six.push_back(0.7);
    std::vector<double> fiveOfSix = five;
    fiveOfSix.push_back(kMiss);
    {
        // Diffuse: N = 5 has no finite posterior variance -> 410027 with the
        // variable's position; N = 6 gives df 3 and variance 3 scale^2.
        NormalRun r(posteriorSettings(BC::Diffuse, BC::Diffuse, 2), {six, fiveOfSix});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        ASSERT_EQ(r.warningCodes(), std::vector<int>{410027});
        EXPECT_EQ(r.component.GetWarningMessages().Get(0).GetDiscreteDatum(0), 1);
        expectNoResult(*o, 1);
        const Moments d = moments(six);
        const double scale2 = (d.n - 1) * d.var / (d.n * 3);
        EXPECT_NEAR(o->GetVarianceValues()[0], 3 * scale2, 1e-12);
        expectT(*o, 0, {d.mean, scale2, 3});
    }
    {
        // Jeffreys 2: N = 3 -> 410026; N = 4 -> df 3.
        const std::vector<double> four = {1.0, 2.5, 2.0, 4.0};
        const std::vector<double> three = {1.0, 2.5, 2.0, kMiss};
        NormalRun r(posteriorSettings(BC::Diffuse, BC::Jeffreys2, 2), {three, four});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        ASSERT_EQ(r.warningCodes(), std::vector<int>{410026});
        EXPECT_EQ(r.component.GetWarningMessages().Get(0).GetDiscreteDatum(0), 0);
        expectNoResult(*o, 0);
        const Moments d = moments(four);
        expectT(*o, 1, {d.mean, d.var / d.n, 3});
    }
    {
        // Jeffreys 4 needs no check: N = 2 gives df 3.
        const std::vector<double> two = {1.0, 2.5};
        NormalRun r(posteriorSettings(BC::Diffuse, BC::Jeffreys4), {two});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
        const Moments d = moments(two);
        expectT(*o, 0, {d.mean, d.var / (d.n * 3), 3});
    }
}

TEST(NormalPosterior, PlotPointCountsAndMissingInputs) {
    BSNSettings s = posteriorSettings(BC::Normal, BC::InverseChiSquare, 3);
    s.SetMeanDistParam1(4.0);
    s.SetPriorDistParam1(3.0);
    s.SetPriorDistParam2(0.8);
    const std::vector<double> constant(6, 2.5);
    const std::vector<double> single = {kMiss, 3.0, kMiss, kMiss, kMiss, kMiss};
    {
        // A constant variable and a single case are skipped without a
        // posterior message (the driver has reported them).
        s.SetNPlotPoints(7);
        NormalRun r(s, {kData, constant, single});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        for (int i = 1; i < 3; ++i) expectNoResult(*o, i);
        EXPECT_EQ(r.count(410017) + r.count(410026) + r.count(410027), 0);
        EXPECT_EQ(o->GetPlotArguments4Posterior()[0].size(), 7u);
        EXPECT_EQ(o->GetPlotPrior()[0].size(), 7u);
    }
    {
        // One point: the step is 0/0, so the lone argument is missing and
        // so is every curve value; no NaN reaches the result.
        s.SetNPlotPoints(1);
        NormalRun r(s, {kData, constant, single});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        for (const auto* c : {&o->GetPlotArguments4Likelihoods(), &o->GetPlotArguments4Prior(),
                              &o->GetPlotArguments4Posterior(), &o->GetPlotLikelihoods(), &o->GetPlotPrior(),
                              &o->GetPlotPosterior()}) {
            ASSERT_EQ((*c)[0].size(), 1u);
            EXPECT_EQ((*c)[0][0], kMiss);
        }
        EXPECT_FALSE(MCMV::IsMissing(o->GetPostMeanValues()[0]));
    }
    {
        s.SetNPlotPoints(0);
        NormalRun r(s, {kData, constant, single});
        const auto* o = r.out<BSN1SampleNormOutputStats>();
        ASSERT_NE(o, nullptr);
        for (const auto* c : {&o->GetPlotArguments4Likelihoods(), &o->GetPlotArguments4Prior(),
                              &o->GetPlotArguments4Posterior(), &o->GetPlotLikelihoods(), &o->GetPlotPrior(),
                              &o->GetPlotPosterior()})
            EXPECT_TRUE((*c)[0].empty());
        EXPECT_FALSE(MCMV::IsMissing(o->GetPostMeanValues()[0]));
    }
    {
        // Flat prior with no grid: no two-point line either.
        BSNSettings f = posteriorSettings(BC::Diffuse, BC::Diffuse);
        f.SetNPlotPoints(0);
        NormalRun r(f, {kData});
        EXPECT_TRUE(r.out<BSN1SampleNormOutputStats>()->GetPlotPrior()[0].empty());
    }
    {
        // A conjugate prior without its parameters gives no result.
        BSNSettings m = posteriorSettings(BC::Normal, BC::Gamma);
        m.SetMeanDistParam1(4.0);
        m.SetPriorDistParam1(2.0);
        NormalRun r(m, {kData});
        expectNoResult(*r.out<BSN1SampleNormOutputStats>(), 0);
    }
}
