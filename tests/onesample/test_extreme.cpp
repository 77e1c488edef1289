// The JZS factor's quadrature and Monte-Carlo estimate against independent integrals, and
// analyses at extreme sizes against 40-digit values made outside the project
// (tests/data/make_extreme.py): a billion cases and more through frequency weights, data far
// from zero, and Bayes factors that underflow.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <boost/math/distributions/students_t.hpp>

#include "bsn/onesample/bayesfactordenomif.h"
#include "bsn/onesample/bayesfactoronesamplett.h"
#include "bsn/onesample/bayesfactoronesamplettmc.h"
#include "bsn/onesample/bayesfactoronesamplettrng.h"
#include "bsn/onesample/bsn1samplebinooutputstats.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "platform/records/csvrecorditer.h"
#include "tests/onesample/discrete_test_support.h"
#include "tests/onesample/extremedata.h"
#include "tests/onesample/jzsreference.h"
#include "tests/onesample/normaltestsupport.h"

using namespace discrete_test;
using namespace MCBSN_850;
using MCCommon_850::MCMV;
using extremedata::num;
using normaltest::oneSampleNormal;
namespace C = BSNConst;

namespace {

double rel(double a, double b) { return std::fabs(a / b - 1.0); }

double quadFactor(double N, double t) {
    BayesFactorOneSampleTT bf(N, N - 1.0, t);
    return bf.Compute();
}

// One weighted test variable (column 1) of a reference row: null and posterior prior (a0, b0), alternative (a1, b1).
BSNSettings extremeSettings(C::DistTypes dist, const std::vector<std::string>& r, C::AnalysTypes type) {
    BSNSettings s = discreteSettings(dist, {1}, type, num(r[3]), num(r[4]), num(r[5]), num(r[6]));
    s.SetFrequencyWeightVar(0);
    s.SetNullPrior1s({num(r[3])});
    s.SetNullPrior2s({num(r[4])});
    s.SetNPlotPoints(3);
    return s;
}

// Checks a stored factor against its exact log: the log to 1e-11 (the factor's relative error), and
// the factor itself, or beyond the exponent range its log with the bit set and 410041; the case count.
template <class Output>
void expectFactor(const Build& run, double exactLog, double n) {
    ASSERT_TRUE(run.status.IsOK());
    const auto& out = run.Result<Output>();
    EXPECT_EQ(out.GetNs()[0], n);
    const double logBf = out.GetLogBayesFactors()[0];
    EXPECT_NEAR(logBf, exactLog, 1e-11 * std::max(1.0, std::fabs(exactLog)));
    const bool isLog = std::fabs(exactLog) > 708.0;
    EXPECT_EQ(out.GetIsLogBayesFactor()[0], isLog);
    EXPECT_EQ(run.Count(410041), isLog ? 1 : 0);
    if (isLog)
        EXPECT_EQ(out.GetBayesFactors()[0], logBf);
    else
        EXPECT_NEAR(out.GetBayesFactors()[0], std::exp(exactLog), 1e-11 * std::exp(exactLog));
}

} // namespace

TEST(JZSQuadrature, AgreesWithReferenceTableExtremeAndInvalidInputs) {
    // 20-digit values of the integral to infinity (tests/data/README.md).
    const auto rows = extremedata::read("jzs_onesample.csv");
    ASSERT_EQ(rows.size(), 49u) << "tests/data/jzs_onesample.csv not found under " << BSN_SOURCE_DIR;
    const BSNSettings defaults;  // tolerance 1e-6, 2000 iterations: what a procedure passes
    for (const auto& row : rows) {
        const double N = num(row[0]), t = num(row[1]), bf01 = num(row[2]);
        SCOPED_TRACE(testing::Message() << "N " << N << " t " << t);
        double viaSettings = 0.0;
        MCCommon_850::MCWarnings warnings;
        BSN1SampleNormalUtils::computeBetaForUnKnownVarJZS(defaults, N, t, &viaSettings, warnings);
        EXPECT_TRUE(warnings.IsEmpty());
        EXPECT_LT(rel(viaSettings, bf01), 1e-7);
        EXPECT_LT(rel(quadFactor(N, t), bf01), 1e-7);
    }
    // t of 0 and tiny; one degree of freedom; a huge t with few cases, a tiny but positive factor
    // defined by the large-g form beyond the cutoff; the null term underflowing (the factor is 0,
    // not NaN; its log: see the extreme-size tests).
    EXPECT_LT(rel(quadFactor(1e9, 0.0), jzsref::exactFactor(1e9, 0.0)), 1e-7);
    EXPECT_LT(rel(quadFactor(3.0, 1e-12), quadFactor(3.0, 0.0)), 1e-12);
    EXPECT_LT(rel(quadFactor(2.0, 0.0), jzsref::exactFactor(2.0, 0.0)), 1e-7);
    EXPECT_LT(rel(quadFactor(10.0, 100.0), jzsref::cutoffFactor(10.0, 100.0)), 1e-7);
    EXPECT_EQ(quadFactor(1e9, 100.0), 0.0);
    // Invalid inputs: one case (no df), no cases, a missing t.
    for (const auto& [N, t] : {std::pair{1.0, 1.0}, std::pair{0.0, 1.0}, std::pair{-5.0, 1.0},
                               std::pair{10.0, MCMV::Missing()}, std::pair{MCMV::Missing(), 1.0}}) {
        BayesFactorOneSampleTT bf(N, N - 1.0, t);
        EXPECT_FALSE(bf.IsValid());
        for (double v : {bf.Compute(), bf.ComputeLog(), bf.RightTail()}) EXPECT_TRUE(MCMV::IsMissing(v));
    }
}

TEST(JZSQuadrature, BoundsTailAndNonConvergence) {
    const double N = 20.0, t = 1.5, l0 = jzsref::nullTerm(N, t);
    const double inf = std::numeric_limits<double>::infinity();
    BayesFactorOneSampleTT bf(N, N - 1.0, t);
    EXPECT_NEAR(bf.RightTail(), jzsref::tail(N, 1e5, inf), 1e-18);
    bf.SetRightBound(1e6);
    EXPECT_NEAR(bf.RightTail(), jzsref::tail(N, 1e5, 1e6), 1e-18);
    const double bounded = l0 / (jzsref::integral(N, t, 0.0, 1e5) + jzsref::tail(N, 1e5, 1e6));
    EXPECT_LT(rel(bf.Compute(), bounded), 1e-8);
    EXPECT_NEAR(bf.ComputeLog(), std::log(bounded), 1e-8);
    // Below the cutoff no tail is added; bad bounds are refused; both scales.
    for (double bound : {50.0, MCMV::Missing(), 0.0}) bf.SetRightBound(bound);
    for (double bound : {-1.0, 0.5}) bf.SetLeftBound(bound);
    EXPECT_LT(rel(bf.Compute(), l0 / jzsref::integral(N, t, 0.5, 50.0)), 1e-8);
    EXPECT_NEAR(bf.ComputeLog(), std::log(l0 / jzsref::integral(N, t, 0.5, 50.0)), 1e-8);

    BayesFactorOneSampleTT s(N, N - 1.0, t);
    for (int bad : {0, -3}) { s.SetTolerance(bad); s.SetMaxIter(bad); }
    EXPECT_EQ(s.GetTolerance(), 1e-8);
    EXPECT_EQ(s.GetMaxIter(), 1500);
    EXPECT_FALSE(s.SetBoundsForNonConvergence(1.0, 2.0, 2.0, 50.0, 500.0));
    EXPECT_FALSE(s.SetBoundsForNonConvergence(0.0, 2.0, 10.0, 50.0, 500.0));
    EXPECT_TRUE(s.SetBoundsForNonConvergence(0.5, 1.0, 3.0, 20.0, 400.0));

    // Too few iterations for [0, 1e5], enough for each of the ten pieces (without the stretch
    // from 500 to the cutoff); the log scale takes the same way.
    const double full = jzsref::cutoffFactor(N, t);
    const double gapped = l0 / (jzsref::integral(N, t, 0.0, 500.0) + jzsref::tail(N, 1e5, inf));
    ASSERT_GT(rel(gapped, full), 1e-3);  // the gap matters at this precision
    BayesFactorOneSampleTT few(N, N - 1.0, t);
    few.SetMaxIter(40);
    EXPECT_LT(rel(few.Compute(), gapped), 1e-7);
    EXPECT_TRUE(few.UsedPiecewise());
    EXPECT_GE(few.GetNIterations(), 40);
    ASSERT_EQ(few.GetWarnings().Size(), 1u);
    EXPECT_TRUE(few.GetWarnings().Get(0).GetCode() == 420001 && few.GetWarnings().Get(0).IsWarning());
    EXPECT_NEAR(few.ComputeLog(), std::log(gapped), 1e-7);
    // With the last bound at the cutoff the pieces cover the whole range.
    BayesFactorOneSampleTT wide(N, N - 1.0, t);
    wide.SetMaxIter(40);
    ASSERT_TRUE(wide.SetBoundsForNonConvergence(1.0, 2.0, 10.0, 50.0, 1e5));
    EXPECT_LT(rel(wide.Compute(), full), 1e-7);
    // One iteration per integral: crude, but a finite positive number; the default limit converges
    // without a warning. (The settings' limit and the warning's way on: the normal-factor tests.)
    BayesFactorOneSampleTT crude(N, N - 1.0, t), plain(N, N - 1.0, t);
    crude.SetMaxIter(1);
    EXPECT_GT(crude.Compute(), 0.0);
    EXPECT_TRUE(crude.UsedPiecewise());
    EXPECT_LT(rel(plain.Compute(), full), 1e-8);
    EXPECT_FALSE(plain.UsedPiecewise());
    EXPECT_TRUE(plain.GetWarnings().IsEmpty());
}

TEST(JZSIntegrand, MatchesFormulaOnBothScalesAndNeverNaN) {
    const double N = 12.0, t = 2.5, nu = 11.0;
    BayesFactorDenomIF f(N, nu, t);
    ASSERT_TRUE(f.IsValid());
    // The Monte-Carlo forms are checked draw by draw with the estimator.
    for (double g : {1e-3, 0.05, 1.0, 7.0, 1e4}) {
        EXPECT_LT(rel(f.ComputeNI(g), jzsref::integrand(N, t, g)), 1e-13) << g;
        EXPECT_NEAR(f.ComputeLogNI(g), std::log(jzsref::integrand(N, t, g)), 1e-12) << g;
    }
    EXPECT_LT(rel(f.ComputeNull(), std::pow(1.0 + t * t / nu, -(nu + 1) / 2)), 1e-13);
    EXPECT_NEAR(f.ComputeLogNull(), std::log(f.ComputeNull()), 1e-13);
    // 0 at g = 0, where the prior has underflowed (g^1.5 too) and for a huge g; missing for g < 0
    // (1 + N g < 0 for the Monte-Carlo form) and the log at 0.
    EXPECT_EQ((std::vector{f.ComputeNI(0.0), f.ComputeNI(1e-310), f.ComputeMC(1e308, 0.0)}), std::vector(3, 0.0));
    for (double v : {f.ComputeNI(-1.0), f.ComputeMC(-1.0, 0.0), f.ComputeLogNI(0.0)}) EXPECT_TRUE(MCMV::IsMissing(v));
    // Scaled by e^s: the ordinates divided by e^s, also where f underflows.
    EXPECT_EQ(f.ComputeNI(5e-4), 0.0);  // exp(-1000)
    f.SetLogScale(f.ComputeLogNI(5e-4));
    EXPECT_NEAR(f.ComputeNI(5e-4), 1.0, 1e-12);  // exponents near -1000 keep 13 digits
    f.SetParams(1.0, 0.0, t);
    EXPECT_FALSE(f.IsValid());
    for (double v : {f.ComputeNI(1.0), f.ComputeMC(1.0, 0.0), f.ComputeNull(), f.ComputeLogNull()})
        EXPECT_TRUE(MCMV::IsMissing(v));
    f.SetParams(N, nu, MCMV::Missing());
    EXPECT_FALSE(f.IsValid());
}

TEST(JZSMonteCarlo, WithinStandardErrorsOfQuadratureAndReproducible) {
    const int samples = 10000;
    const unsigned long seed = 2000000;
    for (const auto& [N, t] : {std::pair{5.0, 0.5}, std::pair{100.0, 3.0}, std::pair{1e9, 1.0}}) {
        SCOPED_TRACE(testing::Message() << "N " << N << " t " << t);
        BayesFactorOneSampleTTMC mc(N, N - 1.0, t, samples, seed);
        ASSERT_TRUE(mc.IsValid());
        const double bf = mc.Compute();
        // The same draws, with h written out independently: sample mean and variance of h give the
        // estimate's standard error; by the delta method the factor's is BF * se(mean h) / mean h.
        // (A wrong prior for g moves the estimate by far more than that.)
        BayesFactorOneSampleTTRng rng;
        rng.SetSeed(seed);
        const double nu = N - 1.0;
        double sum = 0.0, sum2 = 0.0;
        for (int i = 0; i < samples; ++i) {
            const double x = 1.0 + N * rng.GetRandom();
            const double h = std::pow(x, -0.5) * std::exp(-(nu + 1) / 2 * std::log1p(t * t / (x * nu)));
            sum += h;
            sum2 += h * h;
        }
        const double mean = sum / samples;
        const double se = bf * std::sqrt((sum2 - samples * mean * mean) / (samples - 1) / samples) / mean;
        EXPECT_LT(rel(mc.Integrate(0.0, 1.0), mean), 1e-10);
        const double quad = quadFactor(N, t);
        EXPECT_LT(std::fabs(bf - quad), 4.0 * se) << "bf " << bf << " quad " << quad << " se " << se;
        EXPECT_GT(std::fabs(bf - quad), 0.0);  // it is an estimate
        EXPECT_NEAR(mc.ComputeLog(), std::log(bf), 1e-13);
        // Bit-identical for the same seed, different for another.
        BayesFactorOneSampleTTMC again(N, N - 1.0, t, samples, 12345);
        again.SetSeed(seed);
        EXPECT_EQ(again.Compute(), bf);
        EXPECT_NE(BayesFactorOneSampleTTMC(N, N - 1.0, t, samples, seed + 1).Compute(), bf);
    }
    // The mean of h underflows (t 1e10, 100 cases): the log of the same draws' mean, summed on the log scale.
    BayesFactorOneSampleTTMC huge(100.0, 99.0, 1e10, samples, seed);
    EXPECT_LT(huge.Integrate(0.0, 1.0), std::numeric_limits<double>::min());
    BayesFactorOneSampleTTRng rng;
    rng.SetSeed(seed);
    std::vector<double> logH(samples);
    for (double& l : logH) {
        const double x = 1.0 + 100.0 * rng.GetRandom();
        l = -0.5 * std::log(x) - 50.0 * std::log1p(1e20 / (x * 99.0));
    }
    const double top = *std::max_element(logH.begin(), logH.end());
    double s = 0.0;
    for (double l : logH) s += std::exp(l - top);
    const double expected = -50.0 * std::log1p(1e20 / 99.0) - (top + std::log(s / samples));
    EXPECT_NEAR(huge.ComputeLog(), expected, 1e-12 * std::fabs(expected));
    // No samples: nothing to average; a negative count is invalid.
    BayesFactorOneSampleTTMC none(10.0, 9.0, 1.0, 0, seed);
    BayesFactorOneSampleTTMC negative(10.0, 9.0, 1.0, -1, seed);
    EXPECT_TRUE(none.IsValid() && MCMV::IsMissing(none.Compute()) && MCMV::IsMissing(none.ComputeLog()));
    EXPECT_FALSE(negative.IsValid());
    EXPECT_TRUE(MCMV::IsMissing(negative.Compute()) && MCMV::IsMissing(negative.SumUp(0.0, 1.0)));
    // Through the utilities with the Monte-Carlo method.
    BSNSettings settings;
    settings.SetMethodType(BSNConst::MCA);
    settings.SetMCSamples(samples);
    settings.SetRandomSeed(seed);
    double viaSettings = 0.0;
    MCCommon_850::MCWarnings warnings;
    BSN1SampleNormalUtils::computeBetaForUnKnownVarJZS(settings, 30.0, 2.0, &viaSettings, warnings);
    EXPECT_LT(rel(viaSettings, BayesFactorOneSampleTTMC(30.0, 29.0, 2.0, samples, seed).Compute()), 1e-14);
}

// Binomial: n trials, x successes as two weighted records; Poisson: N cases, S counts as two
// weighted records of neighbouring counts.
TEST(ExtremeSizes, BinomialAndPoissonFactorsToTheLastDigits) {
    const auto rows = extremedata::read("extreme_factors.csv");
    ASSERT_EQ(rows.size(), 12u);
    for (const auto& r : rows) {
        SCOPED_TRACE(r[0] + " " + r[1] + " " + r[2]);
        const double n = num(r[1]), x = num(r[2]), exactLog = num(r[7]);
        if (r[0] == "binomial") {
            Build run(extremeSettings(C::Binomial, r, C::Both), {{x, n - x}, {1, 0}});
            expectFactor<BSN1SampleBinoOutputStats>(run, exactLog, n);
            if (r[1] != "1000000000.0") continue;
            // The first case's posterior Beta(500005123, 500004877) at the middle grid point 0.5, to 1e-12.
            const auto& out = run.Result<BSN1SampleBinoOutputStats>();
            for (const auto& row : extremedata::read("extreme_lgamma.csv"))
                if (row[0] == "betapdf" && row[1] == "0.5" && row[2] == "500005123.0") {
                    ASSERT_EQ(out.GetPlotArguments()[0][1], 0.5);
                    EXPECT_NEAR(out.GetPlotPosterior()[0][1], std::exp(num(row[7])), 1e-12 * std::exp(num(row[7])));
                }
        } else {
            const double q = std::floor(x / n), rest = x - q * n;
            Build run(extremeSettings(C::Poisson, r, C::BayesFactor), {{rest, n - rest}, {q + 1, q}});
            expectFactor<BSN1SamplePoisnOutputStats>(run, exactLog, n);
        }
    }
}

// 1000 values 1e9 + N(0, 0.001) written with six decimals: the t statistic and the standard
// deviation of the parsed doubles to 1e-9, one sample and as the first member of pairs.
TEST(ExtremeSizes, NormalDataFarFromZero) {
    std::vector<double> x;
    MCCommon_850::CsvRecordIter iter(std::string(BSN_SOURCE_DIR) + "/tests/data/extreme_normal.csv", {0});
    for (iter.Reset(); iter.Advance();) x.push_back(iter.GetRecord()->GetValue(0));
    std::map<std::string, double> e;
    for (const auto& r : extremedata::read("extreme_normal_expected.csv")) e[r[0]] = num(r[1]);
    ASSERT_EQ(x.size(), 1000u);
    ASSERT_EQ(e.size(), 5u);

    BSNSettings s = oneSampleNormal({0}, C::BayesFactor);
    s.SetNullValues({1000000000.0001});
    ASSERT_EQ(s.GetNullValues()[0], e.at("null"));
    Build one(s, {x});
    ASSERT_TRUE(one.status.IsOK());
    const auto& o = one.Result<BSN1SampleNormOutputStats>();
    EXPECT_NEAR(o.GetTValues()[0], e.at("t"), 1e-9 * std::fabs(e.at("t")));
    EXPECT_NEAR(o.GetStdDevs()[0], e.at("sd"), 1e-9 * e.at("sd"));
    EXPECT_NEAR(o.GetMeanValues()[0] - e.at("null"), e.at("mean_minus_null"), 2e-7);  // one rounding at 1e9

    // Pairs (x_i, x_(i+1) - c) with c = 1e9 + 2^-30 (not a double; every y_i is), against the same
    // null value: the mean difference is exactly c (the sum telescopes), and the spread of the
    // differences is that of the exact doubles x_i - x_(i+1), which a two-pass sum in extended
    // precision gives independently.
    std::vector<double> y(x.begin() + 1, x.end());
    y.push_back(x.front());
    long double m = 0.0L, ss = 0.0L;
    for (std::size_t i = 0; i < x.size(); ++i) m += static_cast<long double>(x[i] - y[i]);
    m /= x.size();
    for (std::size_t i = 0; i < x.size(); ++i) ss += std::pow(static_cast<long double>(x[i] - y[i]) - m, 2);
    const double sd = static_cast<double>(std::sqrt(ss / (x.size() - 1)));
    const double tiny = std::ldexp(1.0, -30);
    for (double& v : y) v = (v - 1e9) - tiny;  // both steps exact
    BSNSettings related = s;
    related.SetModelType(C::Related, false);
    related.Set2ndRelatedList({1});
    Build pairs(related, {x, y});
    ASSERT_TRUE(pairs.status.IsOK());
    const auto& p = pairs.Result<BSN2SampleRelatedOutputStats>();
    EXPECT_EQ(p.GetMeanValues()[0], 1e9);  // c rounded once
    EXPECT_NEAR(p.GetStdDevs()[0], sd, 1e-9 * sd);
    const double t = ((1e9 - e.at("null")) + tiny) / (sd / std::sqrt(1000.0));
    EXPECT_NEAR(p.GetTValues()[0], t, 1e-9 * std::fabs(t));
}

// The JZS factor underflows for a large t; its log does not.
TEST(ExtremeSizes, JZSLogFactorWhereTheFactorUnderflows) {
    const auto rows = extremedata::read("extreme_jzs.csv");
    ASSERT_EQ(rows.size(), 7u);
    for (std::size_t k = 0; k < 4; ++k) {
        const double N = num(rows[k][0]), t = num(rows[k][1]), exact = num(rows[k][2]);
        BayesFactorOneSampleTT bf(N, N - 1.0, t);
        const double logBf = bf.ComputeLog();
        EXPECT_NEAR(logBf, exact, 1e-7 * std::max(1.0, std::fabs(exact))) << N << " " << t;
        const double direct = bf.Compute();
        EXPECT_NEAR(direct, exact > -700.0 ? std::exp(logBf) : 0.0, 1e-7 * direct);  // 0 where it underflows
    }

    // Three columns of a million cases (two weighted records each) with means 0.1, 0.05 and 0.2:
    // t near 100, 50 and 200. Quadrature, Simple and known variance, and Monte Carlo; and the
    // posterior t density with a million degrees of freedom.
    BSNSettings s = oneSampleNormal({1, 2, 3}, C::Both);
    s.SetFrequencyWeightVar(0);
    const std::vector<std::vector<double>> cols = {
        {500000, 500000}, {0.1 - 1.0, 0.1 + 1.0}, {0.05 - 1.0, 0.05 + 1.0}, {0.2 - 1.0, 0.2 + 1.0}};
    Build jzs(s, cols);
    ASSERT_TRUE(jzs.status.IsOK());
    const auto& o = jzs.Result<BSN1SampleNormOutputStats>();
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(o.GetTValues()[i], num(rows[4 + i][1]), 1e-12 * num(rows[4 + i][1]));
        EXPECT_NEAR(o.GetLogBayesFactors()[i], num(rows[4 + i][2]), 1e-7 * std::fabs(num(rows[4 + i][2])));
        EXPECT_EQ(o.GetBayesFactors()[i], 0.0);
        const double sc = o.GetStdDevs()[i] / 1e3, c = o.GetPostMeanValues()[i];  // scale^2 = s^2 (N - 1)/(N ν)
        for (std::size_t k : {0u, 50u}) {
            const double x = o.GetPlotArguments4Posterior()[i][k];
            const double pdf = boost::math::pdf(boost::math::students_t(1e6 - 1.0), (x - c) / sc) / sc;
            EXPECT_NEAR(o.GetPlotPosterior()[i][k], pdf, 1e-12 * pdf);
        }
    }

    s.SetEstBFType(C::Simple);
    s.SetAlterGValues({1.0, 1.0, 1.0});
    Build simple(s, cols);
    const auto& so = simple.Result<BSN1SampleNormOutputStats>();
    s.SetDataVarVals({1.0, 1.0, 1.0});
    Build known(s, cols);
    const auto& ko = known.Result<BSN1SampleNormOutputStats>();
    s.SetDataVarVals({});
    s.SetEstBFType(C::JZS);
    s.SetMethodType(C::MCA);
    s.SetMCSamples(20000);
    Build mc(s, cols);
    const auto& mo = mc.Result<BSN1SampleNormOutputStats>();
    for (std::size_t i = 0; i < 3; ++i) {
        const double N = 1e6, t = so.GetTValues()[i], nu = N - 1.0, d = ko.GetMeanValues()[i];
        EXPECT_NEAR(so.GetLogBayesFactors()[i],
                    0.5 * std::log1p(N) + N / 2 * (std::log1p(t * t / ((1 + N) * nu)) - std::log1p(t * t / nu)),
                    1e-9 * std::fabs(so.GetLogBayesFactors()[i]));
        EXPECT_NEAR(ko.GetLogBayesFactors()[i], 0.5 * std::log1p(N) - N * d * d / 2 / (1 + 1 / N),
                    1e-9 * std::fabs(ko.GetLogBayesFactors()[i]));
        // Monte Carlo estimates the same integral: close, and finite.
        EXPECT_NEAR(mo.GetLogBayesFactors()[i], o.GetLogBayesFactors()[i], 0.5);
        for (const auto* v : {&so, &ko, &mo}) EXPECT_EQ(v->GetBayesFactors()[i], 0.0);
    }
}
