// Posterior of a normal mean under every prior, through the component in posterior-only mode,
// against the textbook conjugate forms written out here (each checked once against a
// brute-force integration of likelihood x prior on a grid).
#include <gtest/gtest.h>

#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "tests/onesample/normaltestsupport.h"

using namespace normaltest;
using MCBSN_850::BSN1SampleNormOutputStats;

namespace {

const std::vector<double> kData = {4.1, 5.3, 3.8, 6.2, 5.0, 4.7, 5.9, 4.4, 5.6, 4.9, 5.2, 3.9};
const Moments kM = moments(kData);
const double kZ = bm::quantile(bm::normal(), 1 - 0.005 / 2);  // plot ranges: tail mass 0.005

BSNSettings posteriorSettings(BC::DistTypes meanPrior, BC::DistTypes varPrior, int nVars = 1) {
    std::vector<int> vars(nVars);
    std::iota(vars.begin(), vars.end(), 0);
    return oneSampleNormal(vars, BC::Posterior, meanPrior, varPrior);
}

double tQuantile(double p, double df) { return bm::quantile(bm::students_t(df), p); }
double zQuantile(double p) { return bm::quantile(bm::normal(), p); }
double normalLogPdf(double x, double m, double v) {
    return -0.5 * std::log(2 * std::numbers::pi * v) - (x - m) * (x - m) / (2 * v);
}
// The sum of squares of the data about mu, from the raw values.
double sumSq(double mu) {
    double q = 0;
    for (double x : kData) q += (x - mu) * (x - mu);
    return q;
}

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

void expectNoResult(const BSN1SampleNormOutputStats& o, int i) {
    for (const auto* v : {&o.GetModeValues(), &o.GetPostMeanValues(), &o.GetVarianceValues(), &o.GetLowerLimits(),
                          &o.GetUpperLimits()})
        EXPECT_TRUE(MCMV::IsMissing((*v)[i]));
    for (const auto* c : {&o.GetPlotArguments4Likelihoods(), &o.GetPlotPosterior(), &o.GetPlotPrior()})
        EXPECT_TRUE((*c)[i].empty());
}

// The evenly spaced grid of n points over centre -/+ half.
void expectGrid(const std::vector<double>& args, double centre, double half, int n = 100) {
    ASSERT_EQ(static_cast<int>(args.size()), n);
    const double tol = 1e-9 * (1.0 + std::fabs(centre) + half);
    for (int k = 0; k < n; ++k) EXPECT_NEAR(args[k], centre - half + k * 2 * half / (n - 1), tol);
}

} // namespace

// Every unknown-variance family: the t posterior from the conjugate forms, and the three curves.
TEST(NormalPosterior, UnknownVarianceFamiliesMatchConjugateForms) {
    const double mu0 = 4.0, kappa0 = 2.0, n = kM.n, m = kM.mean, ss = (n - 1) * kM.var;
    const double kn = kappa0 + n, mun = (kappa0 * mu0 + n * m) / kn, shift = kappa0 * n / kn * std::pow(m - mu0, 2);
    const double kn1 = 1 + n, mun1 = (mu0 + n * m) / kn1, shift1 = n / kn1 * std::pow(m - mu0, 2);  // kappa 1
    struct Case {
        BC::DistTypes meanPrior, varPrior;
        double p1, p2, kappa;  // kappa missing: not set
        TPost post;
        double priorVar;  // of the drawn prior curve; 0: flat
    };
    const std::vector<Case> cases = {
        // N-Inv-chi^2(mu0, sigma^2/kappa0; nu0 3, s0^2 0.8); curve at sigma^2's mode nu0 s0^2/(nu0 + 2).
        {BC::Normal, BC::InverseChiSquare, 3.0, 0.8, kappa0, {mun, (3 * 0.8 + ss + shift) / (3 + n) / kn, 3 + n},
         3 * 0.8 / 5 / kappa0},
        // tau = 1/sigma^2 ~ Gamma(2.5, rate 1.5); curve at the precision's mode (a - 1)/b.
        {BC::Normal, BC::Gamma, 2.5, 1.5, kappa0, {mun, (1.5 + ss / 2 + shift / 2) / (2.5 + n / 2) / kn, 5 + n},
         1.5 / 1.5 / kappa0},
        // Chi-square with 1.5 df on tau: Gamma(0.75, 0.5), shape below 1; curve at the mean precision a/b.
        {BC::Normal, BC::ChiSquare, 1.5, kMiss, kappa0, {mun, (0.5 + ss / 2 + shift / 2) / (0.75 + n / 2) / kn, 1.5 + n},
         0.5 / 0.75 / kappa0},
        // sigma^2 ~ inverse gamma (1.7, 2.9), no kappa (prior size 1); curve at sigma^2's mode b/(a + 1).
        {BC::Normal, BC::InverseGamma, 1.7, 2.9, kMiss, {mun1, (2.9 + ss / 2 + shift1 / 2) / (1.7 + n / 2) / kn1, 3.4 + n},
         2.9 / 2.7},
        // Flat mean prior with sigma^2 to the power 0, -1, -2: df N-3, N-1, N+1.
        {BC::Diffuse, BC::Diffuse, kMiss, kMiss, kMiss, {m, ss / (n * (n - 3)), n - 3}, 0},
        {BC::Diffuse, BC::Jeffreys2, kMiss, kMiss, kMiss, {m, ss / (n * (n - 1)), n - 1}, 0},
        {BC::Diffuse, BC::Jeffreys4, kMiss, kMiss, kMiss, {m, ss / (n * (n + 1)), n + 1}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.meanPrior << " " << c.varPrior);
        BSNSettings s = posteriorSettings(c.meanPrior, c.varPrior);
        s.SetMeanDistParam1(mu0);
        if (!MCMV::IsMissing(c.kappa)) s.SetKappaValue(c.kappa);
        s.SetPriorDistParam1(c.p1);
        s.SetPriorDistParam2(c.p2);
        NormalRun r(s, {kData});
        ASSERT_TRUE(r.status.IsOK());
        EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
        const auto& o = r.result<BSN1SampleNormOutputStats>();
        expectT(o, 0, c.post);
        // Likelihood over the spread of single cases (M -/+ z s): the log of the profile
        // likelihood (sum of squares)^(-N/2) up to a constant, from the raw data.
        const auto& la = o.GetPlotArguments4Likelihoods()[0];
        expectGrid(la, m, kZ * std::sqrt(kM.var));
        const auto profile = [&](double mu) { return -n / 2 * std::log(sumSq(mu)); };
        for (std::size_t k = 1; k < la.size(); k += 11)
            EXPECT_NEAR(o.GetPlotLikelihoods()[0][k] - o.GetPlotLikelihoods()[0][0], profile(la[k]) - profile(la[0]), 1e-9);
        // Prior: a normal curve on its own range, or the flat two-point line over the likelihood's.
        const auto& pa = o.GetPlotArguments4Prior()[0];
        if (c.priorVar > 0) {
            expectGrid(pa, mu0, kZ * std::sqrt(c.priorVar));
            for (std::size_t k = 0; k < pa.size(); k += 11)
                EXPECT_NEAR(o.GetPlotPrior()[0][k], std::exp(normalLogPdf(pa[k], mu0, c.priorVar)), 1e-12);
        } else {
            EXPECT_EQ(pa, la);
            EXPECT_EQ(o.GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
        }
        // Posterior: the t density over the t's own central range.
        const double sc = std::sqrt(c.post.scale2);
        const auto& qa = o.GetPlotArguments4Posterior()[0];
        expectGrid(qa, c.post.centre, sc * tQuantile(1 - 0.005 / 2, c.post.df));
        for (std::size_t k = 0; k < qa.size(); k += 11)
            EXPECT_NEAR(o.GetPlotPosterior()[0][k],
                        bm::pdf(bm::students_t(c.post.df), (qa[k] - c.post.centre) / sc) / sc, 1e-10);
    }
}

TEST(NormalPosterior, KnownVarianceMatchesConjugateForm) {
    const double sigma2 = 0.6, mu0 = 4.0, tau02 = 0.25;
    // Variance known for variable 0 only; variable 1 (same data) falls back to the unknown-variance routine.
    BSNSettings s = posteriorSettings(BC::Normal, BC::InverseChiSquare, 2);
    s.SetMeanDistParam1(mu0);
    s.SetMeanDistParam2(tau02);
    s.SetPriorDistParam1(4.0);
    s.SetPriorDistParam2(0.5);
    s.SetDataVarVals({sigma2, kMiss});
    NormalRun r(s, {kData, kData});
    const auto& o = r.result<BSN1SampleNormOutputStats>();
    const double taun2 = 1 / (1 / tau02 + kM.n / sigma2);
    const double mun = taun2 * (mu0 / tau02 + kM.n * kM.mean / sigma2);
    EXPECT_NEAR(o.GetModeValues()[0], mun, 1e-12);
    EXPECT_NEAR(o.GetPostMeanValues()[0], mun, 1e-12);
    EXPECT_NEAR(o.GetVarianceValues()[0], taun2, 1e-14);
    EXPECT_NEAR(o.GetLowerLimits()[0], mun - zQuantile(0.975) * std::sqrt(taun2), 1e-9);
    EXPECT_NEAR(o.GetUpperLimits()[0], mun + zQuantile(0.975) * std::sqrt(taun2), 1e-9);
    // Known-variance log-likelihood: exactly -sum (x - mu)^2 / (2 sigma^2),
    // on M -/+ z sigma; prior and posterior normal curves on their ranges.
    const auto& la = o.GetPlotArguments4Likelihoods()[0];
    expectGrid(la, kM.mean, kZ * std::sqrt(sigma2));
    for (std::size_t k = 0; k < la.size(); ++k) EXPECT_NEAR(o.GetPlotLikelihoods()[0][k], -sumSq(la[k]) / (2 * sigma2), 1e-9);
    expectGrid(o.GetPlotArguments4Prior()[0], mu0, kZ * std::sqrt(tau02));
    const auto& qa = o.GetPlotArguments4Posterior()[0];
    expectGrid(qa, mun, kZ * std::sqrt(taun2));
    for (std::size_t k = 0; k < qa.size(); ++k)
        EXPECT_NEAR(o.GetPlotPosterior()[0][k], std::exp(normalLogPdf(qa[k], mun, taun2)), 1e-10);
    // Variable 1: the conjugate unknown-variance posterior (t, not normal).
    const double kn = 1 + kM.n, nun = 4 + kM.n, mun1 = (mu0 + kM.n * kM.mean) / kn;
    const double sn2 = (4 * 0.5 + (kM.n - 1) * kM.var + kM.n / kn * std::pow(kM.mean - mu0, 2)) / nun;
    expectT(o, 1, {mun1, sn2 / kn, nun});
}

TEST(NormalPosterior, KnownVarianceFlatPriorAndUnsupportedPriors) {
    // Known variance with a flat mean prior (at 90%: the 5% and 95% normal quantiles), or one neither
    // Normal nor Diffuse: the flat-prior result and 410017 (no datum) per variable; no level means 95%.
    const double sigma2 = 0.9, se = std::sqrt(sigma2 / kM.n);
    for (const auto& [meanPrior, level, z, warned] :
         {std::tuple{BC::Diffuse, 90.0, zQuantile(0.95), 0}, std::tuple{BC::Gamma, kMiss, zQuantile(0.975), 2}}) {
        SCOPED_TRACE(meanPrior);
        BSNSettings s = posteriorSettings(meanPrior, BC::Diffuse, 2);
        s.SetDataVarVals({sigma2, sigma2});
        s.SetCILevel(level);
        NormalRun r(s, {kData, kData});
        const auto& o = r.result<BSN1SampleNormOutputStats>();
        EXPECT_EQ(r.warningCodes(), std::vector<int>(warned, 410017));
        for (const auto& w : r.component.GetWarningMessages()) EXPECT_EQ(w.GetDiscreteDatum(0), -1);
        EXPECT_NEAR(o.GetPostMeanValues()[1], kM.mean, 1e-12);
        EXPECT_NEAR(o.GetVarianceValues()[1], sigma2 / kM.n, 1e-14);
        EXPECT_NEAR(o.GetLowerLimits()[0], kM.mean - z * se, 1e-9);
        EXPECT_NEAR(o.GetUpperLimits()[1], kM.mean + z * se, 1e-9);
        EXPECT_EQ(o.GetPlotPrior()[0], (std::vector<double>{1.0, 1.0}));
    }
    // Unknown variance, unsupported combinations: Diffuse (t with N - 3 df) and one 410017 each.
    for (auto [meanPrior, varPrior] : {std::pair{BC::Diffuse, BC::InverseGamma}, std::pair{BC::Normal, BC::Jeffreys2},
                                       std::pair{BC::Binomial, BC::Jeffreys4}}) {
        NormalRun r(posteriorSettings(meanPrior, varPrior), {kData});
        EXPECT_EQ(r.warningCodes(), std::vector<int>{410017});
        expectT(r.result<BSN1SampleNormOutputStats>(), 0, {kM.mean, (kM.n - 1) * kM.var / (kM.n * (kM.n - 3)), kM.n - 3});
    }
}

TEST(NormalPosterior, SmallSampleThresholds) {
    // Diffuse: N = 5 gives 410027 (datum: the position) and nothing, N = 6 df 3. Jeffreys 2: N = 3
    // gives 410026, N = 4 df 3. Jeffreys 4: N = 2 already df 3.
    const std::vector<double> x = {1.0, 2.5, 2.0, 4.0, 3.1, 0.7};
    const auto first = [&](std::size_t n) {
        std::vector<double> v(x.size(), kMiss);
        std::copy(x.begin(), x.begin() + n, v.begin());
        return v;
    };
    for (const auto& [prior, tooFew, code, df] :
         {std::tuple{BC::Diffuse, 5, 410027, -3.0}, std::tuple{BC::Jeffreys2, 3, 410026, -1.0},
          std::tuple{BC::Jeffreys4, 1, 0, 1.0}}) {
        SCOPED_TRACE(prior);
        NormalRun r(posteriorSettings(BC::Diffuse, prior, 2), {first(tooFew + 1), first(tooFew)});
        const auto& o = r.result<BSN1SampleNormOutputStats>();
        if (code != 0) {
            ASSERT_EQ(r.warningCodes(), std::vector<int>{code});
            EXPECT_EQ(r.component.GetWarningMessages().Get(0).GetDiscreteDatum(0), 1);
            expectNoResult(o, 1);
        }
        const Moments d = moments(std::vector<double>(x.begin(), x.begin() + tooFew + 1));
        EXPECT_EQ(d.n + df, 3.0);
        expectT(o, 0, {d.mean, (d.n - 1) * d.var / (d.n * 3), 3});
    }
}

TEST(NormalPosterior, PlotPointCountsAndMissingInputs) {
    BSNSettings s = posteriorSettings(BC::Normal, BC::InverseChiSquare, 3);
    s.SetMeanDistParam1(4.0);
    s.SetPriorDistParam1(3.0);
    s.SetPriorDistParam2(0.8);
    const std::vector<double> constant(6, 2.5), single = {kMiss, 3.0, kMiss, kMiss, kMiss, kMiss};
    // 7 points; 1 point (the step is 0/0: the lone argument and every value missing, never NaN);
    // 0 points (every curve empty). A constant variable and a single case: no posterior message.
    for (int points : {7, 1, 0}) {
        s.SetNPlotPoints(points);
        NormalRun r(s, {kData, constant, single});
        const auto& o = r.result<BSN1SampleNormOutputStats>();
        EXPECT_FALSE(MCMV::IsMissing(o.GetPostMeanValues()[0]));
        for (int i = 1; i < 3; ++i) expectNoResult(o, i);
        EXPECT_EQ(r.count(410017) + r.count(410026) + r.count(410027), 0);
        for (const auto* c : {&o.GetPlotArguments4Likelihoods(), &o.GetPlotArguments4Prior(),
                              &o.GetPlotArguments4Posterior(), &o.GetPlotLikelihoods(), &o.GetPlotPrior(),
                              &o.GetPlotPosterior()}) {
            ASSERT_EQ((*c)[0].size(), static_cast<std::size_t>(points));
            if (points == 1) {
                EXPECT_EQ((*c)[0][0], kMiss);
            }
        }
    }
    // Flat prior with no grid: no two-point line either.
    BSNSettings f = posteriorSettings(BC::Diffuse, BC::Diffuse);
    f.SetNPlotPoints(0);
    NormalRun flat(f, {kData});
    EXPECT_TRUE(flat.result<BSN1SampleNormOutputStats>().GetPlotPrior()[0].empty());
    // A conjugate prior without its parameters gives no result.
    BSNSettings m = posteriorSettings(BC::Normal, BC::Gamma);
    m.SetMeanDistParam1(4.0);
    m.SetPriorDistParam1(2.0);
    NormalRun none(m, {kData});
    expectNoResult(none.result<BSN1SampleNormOutputStats>(), 0);
}
