// The regression Bayes factors against high-precision integrals of their
// definitions (tests/data/regr_factors_reference.py) and closed forms.
#include <cmath>

#include "bsn/regression/bsnmultipleregrfullfactor.h"
#include "bsn/regression/bsnmultipleregrnullfactor.h"
#include "tests/onesample/extremedata.h"
#include "tests/regression/regrtestsupport.h"

using namespace regrtest;
using extremedata::num;
using MCBSN_850::BSNMultipleRegrFullFactor;
using MCBSN_850::BSNMultipleRegrNullFactor;

namespace {

BC::RegrCompute methodOf(const std::string& m) {
    if (m == "siow") return BC::Siow;
    if (m == "zellner") return BC::Zellner;
    if (m == "hyper") return BC::Hyper;
    return BC::Rouder;
}

} // namespace

TEST(RegressionFactors, AgreeWithHighPrecisionIntegrals) {
    const auto rows = extremedata::read("regr_factors_reference.csv");
    ASSERT_EQ(rows.size(), 15u);
    for (const auto& row : rows) {
        const std::string compare = row[0], method = row[1];
        const double N = num(row[2]), p = num(row[3]), pF = num(row[4]), R2 = num(row[5]), RF2 = num(row[6]);
        const double logbf = num(row[8]);
        BSNSettings s;
        s.SetRegrCompType(methodOf(method));
        if (method != "siow") s.SetRegrComPar(num(row[7]));
        std::unique_ptr<MCBSN_850::BSNMultipleRegrFactor> f;
        if (compare == "null") f = std::make_unique<BSNMultipleRegrNullFactor>(s, N, p, R2);
        else f = std::make_unique<BSNMultipleRegrFullFactor>(s, N, p, pF, R2, RF2);
        const std::string what = compare + " " + method + " N=" + row[2];
        EXPECT_TRUE(f->Compute().IsOK()) << what;
        // The quadrature runs at the default relative tolerance 1e-6.
        EXPECT_NEAR(f->GetLogBayesFactor(), logbf, 1e-5 * std::max(1.0, std::fabs(logbf))) << what;
        if (std::fabs(logbf) < 700.0) {
            EXPECT_NEAR(f->GetBayesFactor() / std::exp(logbf), 1.0, 2e-5) << what;
            EXPECT_FALSE(f->IsLogBayesFactor()) << what;
        } else if (method != "zellner") {
            // An integral that overflows is not stored; its log still is.
            EXPECT_TRUE(MCMV::IsMissing(f->GetBayesFactor())) << what;
        }
        EXPECT_TRUE(f->GetWarnings().IsEmpty()) << what;
    }
}

TEST(RegressionFactors, ClosedFormsAndEdges) {
    // Hyper-g null factor: (a - 2)/(p + a - 2) 2F1((N - 1)/2, 1; (p + a)/2; R2)
    // by its series, for a case where the bound 1e6 cuts off nothing that counts.
    const double N = 25, p = 2, R2 = 0.3, a = 3;
    double term = 1.0, sum = 1.0;
    for (int k = 0; k < 2000; ++k) {
        term *= ((N - 1) / 2 + k) * (1.0 + k) / ((p + a) / 2 + k) / (k + 1.0) * R2;
        sum += term;
    }
    const double closed = (a - 2) / (p + a - 2) * sum;
    BSNSettings s;
    s.SetRegrCompType(BC::Hyper);
    s.SetRegrComPar(a);
    BSNMultipleRegrNullFactor hyper(s, N, p, R2);
    hyper.Compute();
    EXPECT_NEAR(hyper.GetBayesFactor(), closed, 1e-6 * closed);

    // a = 2 gives 0 (the factor (a - 2)/2 is not guarded) and no logarithm.
    s.SetRegrComPar(2.0);
    BSNMultipleRegrNullFactor zero(s, N, p, R2);
    zero.Compute();
    EXPECT_EQ(zero.GetBayesFactor(), 0.0);
    EXPECT_TRUE(MCMV::IsMissing(zero.GetLogBayesFactor()));

    // Full comparison with equal fits: exactly 1 for every method, also
    // one that computes nothing otherwise.
    for (int m = 0; m <= 4; ++m) {
        BSNSettings t;
        t.SetRegrCompType(static_cast<BC::RegrCompute>(m));
        t.SetRegrComPar(3.0);
        BSNMultipleRegrFullFactor f(t, 50, 2, 4, 0.3, 0.3 + 5e-7);
        f.Compute();
        EXPECT_EQ(f.GetBayesFactor(), 1.0) << m;
        EXPECT_EQ(f.GetLogBayesFactor(), 0.0) << m;
    }
    // An unknown method leaves the null factor missing.
    BSNSettings g;
    g.SetRegrCompType(BC::Gonen);
    BSNMultipleRegrNullFactor gonen(g, 50, 2, 0.3);
    gonen.Compute();
    EXPECT_TRUE(MCMV::IsMissing(gonen.GetBayesFactor()));
    // Zellner without g: missing, no warning.
    BSNSettings zs;
    zs.SetRegrCompType(BC::Zellner);
    BSNMultipleRegrNullFactor noG(zs, 50, 2, 0.3);
    noG.Compute();
    EXPECT_TRUE(MCMV::IsMissing(noG.GetBayesFactor()));
    EXPECT_TRUE(noG.GetWarnings().IsEmpty());
}

TEST(RegressionFactors, HugeSampleThroughWeightsGivesTheLogFlaggedZellnerFactor) {
    // Four records with weight 2.5e8 each: N = 1e9, R squared near 1.
    std::vector<std::vector<double>> cols = {{0, 1, 2, 3}, {1, 3.001, 4.999, 7.0005}, {2.5e8, 2.5e8, 2.5e8, 2.5e8}};
    BSNSettings s = regression(1, {0});
    s.SetFrequencyWeightVar(2);
    s.SetAnalysType(BC::Both);
    s.SetRegrCompType(BC::Zellner);
    s.SetRegrComPar(1e9);
    RegrRun run(s, cols);
    ASSERT_TRUE(run.status.IsOK()) << run.status.GetCode();
    const auto& r = run.result();
    EXPECT_EQ(r.GetNCases(), 1e9);
    EXPECT_EQ(run.Count(410041), 1);
    EXPECT_TRUE(r.IsLogBayesFactor());
    const double R2 = r.GetRSquared(), N = 1e9, g = 1e9;
    const double L = (N - 2) / 2 * std::log1p(g) + (1 - N) / 2 * std::log1p((1 - R2) * g);
    EXPECT_NEAR(r.GetBayesFactor(), L, 1e-9 * L);
    EXPECT_EQ(r.GetLogBayesFactor(), r.GetBayesFactor());
    EXPECT_GT(L, 709.0);

    // Under Siow the same near-perfect fit (1 - R^2 below the tolerance)
    // gives warning 410014 and no factor at all.
    s.SetRegrCompType(BC::Siow);
    RegrRun siow(s, cols);
    ASSERT_TRUE(siow.status.IsOK());
    EXPECT_LT(1.0 - R2, 1e-6);
    EXPECT_EQ(siow.Count(410014), 1);
    EXPECT_TRUE(MCMV::IsMissing(siow.result().GetBayesFactor()));
    EXPECT_FALSE(siow.result().IsLogBayesFactor());
    EXPECT_TRUE(MCMV::IsMissing(siow.result().GetLogBayesFactor()));
}
