// The posterior of the mean difference: the prior class chosen and its messages,
// each class against an independent computation, the warnings and the curves.
#include <boost/math/distributions/normal.hpp>
#include <memory>

#include "bsn/twosample/behrensfisherdistribution.h"
#include "bsn/twosample/bsn2sampleindposterior.h"
#include "tests/twosample/test_independent_support.h"

using namespace indeptest;
using MCBSN_850::BehrensFisherDistribution;
using MCBSN_850::BSN2SampleIndPosterior;

namespace {

const std::vector<double> kG0 = {10.2, 11.9, 9.4, 10.8, 12.5, 9.9, 11.1};
const std::vector<double> kG1 = {12.4, 11.0, 13.9, 12.2, 14.6, 11.7, 13.1, 12.9, 15.0};

BSNSettings posteriorSettings() {
    BSNSettings s = indepSettings({0}, 1, BC::Posterior);
    s.SetNPlotPoints(81);
    return s;
}

// Posterior of delta = mu1 - mu0 for kG0, kG1 with one common variance, flat
// means and prior logPrior(sigma^2): likelihood x prior summed on a grid.
GridPosterior commonVariancePosterior(const std::function<double(double)>& logPrior) {
    const Moments a = moments(kG0), b = moments(kG1);
    const double d = b.mean - a.mean, spread = std::sqrt((a.var * (a.n - 1) + b.var * (b.n - 1)) / (a.n + b.n - 2));
    const int nd = 401, nm = 61, nv = 121;
    std::vector<double> dg(nd), dens(nd, 0.0);
    for (int i = 0; i < nd; ++i) {
        dg[i] = d - 5 * spread + i * 10 * spread / (nd - 1);
        for (int j = 0; j < nm; ++j) {
            const double mu0 = a.mean - 6 * spread + j * 12 * spread / (nm - 1), mu1 = mu0 + dg[i];
            double q = 0;
            for (double v : kG0) q += (v - mu0) * (v - mu0);
            for (double v : kG1) q += (v - mu1) * (v - mu1);
            for (int k = 0; k < nv; ++k) {
                const double u = std::log(spread * spread) - 6 + k * 12.0 / (nv - 1), s2 = std::exp(u);
                dens[i] += std::exp(-0.5 * (a.n + b.n) * u - q / (2 * s2) + logPrior(s2) + u + 20.0);
            }
        }
    }
    return summarise(dg, dens, 0.05);
}

} // namespace

TEST(IndependentPosterior, PriorClassChoiceAndItsMessages) {
    struct Case {
        const char* what;
        BC::DistTypes mean, varPrior;
        std::vector<double> variances;
        bool equal, params;     // equal variances; prior parameters given
        int status;             // of the choice
        std::vector<int> codes; // the warnings of the run
        const char* cls;        // the class chosen; none on an error
    };
    const char *known = "NormalPriorsKnownVariances", *unequal = "DiffusePriorsUnequalVariances",
               *jeffreys = "DiffuseJeffreysPriorsEqualVariances";
    const std::vector<Case> cases = {
        {"normal, known", BC::Normal, BC::Diffuse, {4, 9}, false, true, 0, {}, known},
        {"normal, no variances", BC::Normal, BC::Diffuse, {}, false, true, 410002, {}, nullptr},
        {"normal, a bad variance", BC::Normal, BC::Diffuse, {4, -1}, false, true, 410002, {}, nullptr},
        {"normal, no prior", BC::Normal, BC::Diffuse, {4, 9}, false, false, 410019, {}, nullptr},
        {"flat, known", BC::Diffuse, BC::InverseChiSquare, {4, 9}, true, false, 0, {}, "DiffusePriorsKnownVariances"},
        {"diffuse, one variance", BC::Diffuse, BC::Diffuse, {4, kMiss}, false, true, 410019, {}, nullptr},
        {"diffuse, no variances", BC::Diffuse, BC::Diffuse, {kMiss, kMiss}, false, true, 0, {}, unequal},
        {"inv chi2", BC::Diffuse, BC::InverseChiSquare, {}, true, true, 0, {}, "DiffuseInverseChiPriorsEqualVariances"},
        {"inv chi2 unset", BC::Diffuse, BC::InverseChiSquare, {}, true, false, 410019, {}, nullptr},
        {"jeffreys", BC::Diffuse, BC::Diffuse, {}, true, true, 0, {}, jeffreys},
        {"jeffreys, other prior", BC::Diffuse, BC::Jeffreys2, {}, true, true, 410017, {410017}, jeffreys},
        {"unequal, other prior", BC::Diffuse, BC::InverseChiSquare, {}, false, true, 410036, {410036}, unequal},
        {"other mean prior", BC::Gamma, BC::Diffuse, {}, false, true, 410017, {410017}, unequal},
        {"other mean and variance priors", BC::Gamma, BC::Gamma, {}, false, true, 410017, {410017, 410036}, unequal},
        {"other mean prior, equal", BC::ChiSquare, BC::Jeffreys4, {}, true, true, 410017, {410017}, jeffreys},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        BSNSettings s = posteriorSettings();
        s.SetMeanDistType(c.mean); s.SetDataVarVals(c.variances); s.SetEqualDataVar(c.equal);
        s.SetPriorDistType(c.varPrior);
        if (c.params) {
            s.SetMeanDistParam1(10.0); s.SetMeanDistParam2(4.0); s.SetMeanDistParam3(12.0);
            s.SetMeanDistParam4(9.0); s.SetPriorDistParam1(3.0); s.SetPriorDistParam2(2.0);
        }
        MCMath_850::MCCancelInfo cancel;
        std::unique_ptr<BSN2SampleIndPosterior> p;
        const MCCommon_850::MCStatus st = BSN2SampleIndPosterior::CreatePosterior(s, makeVarList(2), cancel, &p);
        EXPECT_EQ(st.GetCode(), c.status);
        EXPECT_EQ(st.IsError(), c.cls == nullptr);
        EXPECT_EQ(p ? p->GetName() : "none", c.cls ? c.cls : "none");
        // Through the component: an error stops the build; warnings come in order.
        NormalRun r(s, groupColumns(kG0, kG1));
        EXPECT_EQ(r.status.GetCode(), st.IsError() ? c.status : 0);
        if (st.IsError()) continue;
        EXPECT_EQ(r.warningCodes(), c.codes);
        EXPECT_FALSE(MCMV::IsMissing(output(r).GetLowerLimits()[0]));
    }
}

TEST(IndependentPosterior, KnownVariancesAgainstConjugateNormals) {
    // Known variances 1.7 and 2.6; normal priors N(10, 4) and N(12, 9), or
    // flat (with the data near 1e9, where the difference must keep its
    // digits). Each group mean's posterior is normal; delta their difference.
    const double known[2] = {1.7, 2.6}, a[2] = {10.0, 12.0}, b[2] = {4.0, 9.0};
    for (bool normal : {true, false}) {
        SCOPED_TRACE(normal ? "normal priors" : "flat priors");
        const double offset = normal ? 0.0 : 1e9;
        BSNSettings s = posteriorSettings();
        s.SetDataVarVals({known[0], known[1]}); s.SetMeanDistType(normal ? BC::Normal : BC::Diffuse);
        s.SetMeanDistParam1(a[0]); s.SetMeanDistParam2(b[0]); s.SetMeanDistParam3(a[1]);
        s.SetMeanDistParam4(b[1]);
        NormalRun r(s, groupColumns(kG0, kG1, offset));
        ASSERT_TRUE(r.status.IsOK());
        const auto& o = output(r);
        double dm = 0, dv = 0;
        for (int g = 0; g < 2; ++g) {  // conjugate normal: precisions add
            const Moments m = moments(g == 0 ? kG0 : kG1);
            const double precision = m.n / known[g] + (normal ? 1 / b[g] : 0.0);
            dm += (g == 0 ? -1 : 1) * (m.n * m.mean / known[g] + (normal ? a[g] / b[g] : 0.0)) / precision;
            dv += 1 / precision;
        }
        const double z = bm::quantile(bm::normal(), 0.975);
        EXPECT_NEAR(o.GetModeValues()[0], dm, 1e-6);
        EXPECT_NEAR(o.GetPostMeanValues()[0], dm, 1e-6);
        EXPECT_NEAR(o.GetVarianceValues()[0], dv, 1e-6);
        EXPECT_NEAR(o.GetLowerLimits()[0], dm - z * std::sqrt(dv), 1e-6);
        EXPECT_NEAR(o.GetUpperLimits()[0], dm + z * std::sqrt(dv), 1e-6);
        // Curves: each group mean's likelihood peaks at its sample mean; the prior is normal or flat.
        const auto& xl = o.GetPlotXLikelihoods()[0];
        ASSERT_EQ(xl.size(), 81u);
        EXPECT_NEAR(o.GetPlotXArguments()[0][40], moments(kG0).mean + offset, 1e-9 * std::max(1.0, offset));
        EXPECT_NEAR(xl[40], 1.0, 1e-12);
        // (Near 1e9 the arguments themselves are rounded to about 1e-7.)
        EXPECT_NEAR(xl.front(), std::exp(-0.5 * std::pow(bm::quantile(bm::normal(), s.GetPlotDomainLevel() / 2), 2)),
                    normal ? 1e-12 : 1e-6);
        if (normal) {
            ASSERT_EQ(o.GetPlotYPrior()[0].size(), 81u);
            const double y = o.GetPlotYPriorArguments()[0][10];
            EXPECT_NEAR(o.GetPlotYPrior()[0][10], bm::pdf(bm::normal(12.0, 3.0), y), 1e-14);
        } else {
            EXPECT_EQ(o.GetPlotYPrior()[0], (std::vector<double>{1.0, 1.0}));
            EXPECT_EQ(o.GetPlotYPriorArguments()[0], o.GetPlotYArguments()[0]);
        }
        const auto& post = o.GetPlotPosterior()[0];
        EXPECT_NEAR(*std::max_element(post.begin(), post.end()), 1.0, 1e-12);
    }
}

TEST(IndependentPosterior, CommonVarianceAgainstBruteForceUnequalAgainstBehrensFisher) {
    // Seven and nine cases: few enough for an error in the df or the scale to show.
    const double nu0 = 4.0, sigma02 = 2.5;
    const Moments m0 = moments(kG0), m1 = moments(kG1);
    const double a0 = std::sqrt(m0.var / m0.n), a1 = std::sqrt(m1.var / m1.n), d = m1.mean - m0.mean;
    for (const char* prior : {"1/sigma^2", "inverse chi-square", "unequal variances"}) {
        SCOPED_TRACE(prior);
        const bool invChi = prior[0] == 'i', unequal = prior[0] == 'u';
        BSNSettings s = posteriorSettings();
        s.SetEqualDataVar(!unequal);
        if (invChi) {
            s.SetPriorDistType(BC::InverseChiSquare); s.SetPriorDistParam1(nu0);
            s.SetPriorDistParam2(sigma02);
        }
        if (unequal) s.SetCILevel(90.0);
        NormalRun r(s, groupColumns(kG0, kG1));
        ASSERT_TRUE(r.status.IsOK());
        EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
        const auto& o = output(r);
        EXPECT_NEAR(o.GetModeValues()[0], d, 1e-12);
        if (!unequal) {
            const GridPosterior g = commonVariancePosterior([&](double s2) {
                return invChi ? -(nu0 / 2 + 1) * std::log(s2) - nu0 * sigma02 / (2 * s2) : -std::log(s2);
            });
            EXPECT_NEAR(o.GetPostMeanValues()[0], g.mean, 1e-4);
            EXPECT_LT(rel(o.GetVarianceValues()[0], g.var), 2e-3);
            EXPECT_NEAR(o.GetLowerLimits()[0], g.lower, 3e-3);
            EXPECT_NEAR(o.GetUpperLimits()[0], g.upper, 3e-3);
            EXPECT_EQ(o.GetPlotXPrior()[0], (std::vector<double>{1.0, 1.0}));
            EXPECT_EQ(o.GetPlotXArguments()[0].size(), 81u);
            continue;
        }
        // The procedure hands the distribution (checked below) each group's scale and df.
        const BehrensFisherDistribution bf(a0, m0.n - 1, a1, m1.n - 1);
        const double q = bf.Quantile(0.05);
        EXPECT_NEAR(o.GetPostMeanValues()[0], d, 1e-12);
        EXPECT_NEAR(o.GetVarianceValues()[0], a0 * a0 * 6 / 4 + a1 * a1 * 8 / 6, 1e-12);
        EXPECT_NEAR(o.GetLowerLimits()[0], d + q, 1e-9);
        EXPECT_NEAR(o.GetUpperLimits()[0], d - q, 1e-9);
        // The curve: symmetric about d, peak 1 there, PlotDomainLevel / 2 of the mass beyond each end.
        const auto &x = o.GetPlotArguments()[0], &f = o.GetPlotPosterior()[0];
        ASSERT_EQ(x.size(), 81u);
        EXPECT_NEAR(x[40], d, 1e-9);
        EXPECT_NEAR(f[40], 1.0, 1e-7);
        EXPECT_NEAR(f[10], f[70], 1e-8);
        EXPECT_NEAR(bf.Cdf(x.front() - d), s.GetPlotDomainLevel() / 2, 1e-9);
        // Group likelihoods: each group's own profile likelihood.
        const auto& yl = o.GetPlotYLikelihoods()[0];
        const double mu = o.GetPlotYArguments()[0][5];
        EXPECT_NEAR(yl[5], std::pow(1 + m1.n * (mu - m1.mean) * (mu - m1.mean) / (m1.var * (m1.n - 1)), -m1.n / 2), 1e-12);
    }
}

TEST(IndependentPosterior, BehrensFisherQuantilesAgainstConvolutions) {
    const auto rows = readTable("behrens_fisher_quantiles.csv");
    ASSERT_EQ(rows.size(), 12u);
    for (const auto& row : rows) {
        const double a0 = number(row, "a0"), df0 = number(row, "df0"), a1 = number(row, "a1"), df1 = number(row, "df1");
        const double p = number(row, "p"), q = number(row, "quantile");
        SCOPED_TRACE(testing::Message() << a0 << " " << df0 << " " << a1 << " " << df1 << " p " << p);
        const BehrensFisherDistribution d(a0, df0, a1, df1);
        EXPECT_LT(rel(d.Quantile(p), q), 1e-9);
        EXPECT_LT(rel(d.Quantile(1 - p), -q), 1e-9);
        EXPECT_LT(rel(d.Cdf(q), p), 1e-10);
        EXPECT_LT(rel(d.Cdf(-q), 1 - p), 1e-12);
    }
    // Symmetric in the two variables; the density integrates to the cdf's increments.
    const BehrensFisherDistribution a(0.7, 6, 1.9, 11), b(1.9, 11, 0.7, 6);
    for (double y : {-6.0, -1.3, 0.0, 2.2}) EXPECT_NEAR(a.Cdf(y), b.Cdf(y), 1e-14);
    double area = 0;
    for (int k = 0; k < 400; ++k) {
        const double lo = -1.0 + k * 0.005;
        area += 0.005 / 6 * (a.Pdf(lo) + 4 * a.Pdf(lo + 0.0025) + a.Pdf(lo + 0.005));
    }
    EXPECT_NEAR(area, a.Cdf(1.0) - a.Cdf(-1.0), 1e-10);
    EXPECT_NEAR(a.Variance(), 0.49 * 6 / 4 + 3.61 * 11 / 9, 1e-14);
    EXPECT_TRUE(MCMV::IsMissing(BehrensFisherDistribution(1, 2, 1, 5).Variance()));
    EXPECT_FALSE(BehrensFisherDistribution(0, 2, 1, 5).IsValid());
    EXPECT_TRUE(MCMV::IsMissing(a.Quantile(1.0)));
}

TEST(IndependentPosterior, ConstantAndSmallGroupsInBothStages) {
    // Variable 0: five cases in the first group (410042, results still
    // there); 1: both groups constant (410045 tests, 410046 posterior); 2:
    // the first group constant (410047 under unequal variances); 3: a group
    // of one case.
    const std::vector<double> g = {0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1};
    const std::vector<double> v0 = {1, 3, 2, 5, 4, 6, 8, 7, 9, 6, 8, 10};
    const std::vector<double> v1 = {2, 2, 2, 2, 2, 4, 4, 4, 4, 4, 4, 4};
    const std::vector<double> v2 = {2, 2, 2, 2, 2, 4, 5, 4, 6, 4, 3, 4};
    const std::vector<double> v3 = {2, kMiss, kMiss, kMiss, kMiss, 4, 5, 4, 6, 4, 3, 4};
    const Moments m = moments({4, 5, 4, 6, 4, 3, 4});  // the second group of 2 and 3
    for (bool equal : {false, true}) {
        SCOPED_TRACE(equal ? "equal variances" : "unequal variances");
        BSNSettings s = indepSettings({0, 1, 2, 3}, 4, BC::Both);
        s.SetEqualDataVar(equal);
        NormalRun r(s, {v0, v1, v2, v3, g});
        ASSERT_TRUE(r.status.IsOK());
        std::vector<std::pair<int, int>> warnings;
        for (const auto& w : r.component.GetWarningMessages())
            warnings.emplace_back(w.GetCode(), w.GetDiscreteDatum(0));
        std::vector<std::pair<int, int>> expected = {{410045, 1}, {410042, 0}, {410042, 1},
                                                     {410046, 1}, {410042, 2}, {410042, 3}};
        if (!equal) expected.emplace_back(410047, 2);
        std::sort(warnings.begin(), warnings.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(warnings, expected);
        const auto& o = output(r);
        // No test where both groups are constant; with one constant, Welch df = the other's n - 1;
        // a group of one has a pooled test but no Welch test.
        EXPECT_EQ(o.GetMeanDiffValues()[1], 2.0);
        for (double v : {o.GetTValues()[1], o.GetBayesFactors()[1], o.GetWelchTValues()[1], o.GetWelchTValues()[3],
                         o.GetGroup1StdDevs()[3], o.GetModeValues()[1]})
            EXPECT_TRUE(MCMV::IsMissing(v)) << v;
        const double d = m.mean - 2.0;
        EXPECT_NEAR(o.GetTValues()[2], d / std::sqrt(6.0 * m.var / 10.0 * (1.0 / 5 + 1.0 / 7)), 1e-12);
        EXPECT_NEAR(o.GetWelchTValues()[2], d / std::sqrt(m.var / 7), 1e-12);
        EXPECT_NEAR(o.GetWelchDFValues()[2], 6.0, 1e-12);
        EXPECT_NEAR(o.GetTValues()[3], d / std::sqrt(m.var * (1.0 + 1.0 / 7)), 1e-12);
        EXPECT_EQ(o.GetDFValues()[3], 6.0);
        // No posterior for both groups constant, nor (unequal variances) one constant or of one case.
        EXPECT_FALSE(MCMV::IsMissing(o.GetLowerLimits()[0]));
        EXPECT_TRUE(o.GetPlotPosterior()[1].empty());
        EXPECT_EQ(MCMV::IsMissing(o.GetModeValues()[2]), !equal);
        EXPECT_EQ(MCMV::IsMissing(o.GetModeValues()[3]), !equal);
        if (equal) {
            const double t = bm::quantile(bm::students_t(6), 0.975);
            EXPECT_NEAR(o.GetUpperLimits()[3] - o.GetLowerLimits()[3], 2 * t * std::sqrt(m.var * (1 + 1.0 / 7)), 1e-12);
        }
        EXPECT_EQ(o.GetPostVarIndices(), (std::vector<int>{0, 1, 2, 3}));
    }
}
