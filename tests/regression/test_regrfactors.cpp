// The regression Bayes factors against 40-digit integrals (tests/data/regr_factors_reference.py) and closed forms.
#include <cmath>

#include "bsn/regression/bsnmultipleregrfullfactor.h"
#include "bsn/regression/bsnmultipleregrnullfactor.h"
#include "tests/regression/regrtestsupport.h"

using namespace regrtest;
using extremedata::num;
using MCBSN_850::BSNMultipleRegrFullFactor;
using MCBSN_850::BSNMultipleRegrNullFactor;

TEST(RegressionFactors, AgreeWithHighPrecisionIntegrals) {
    const std::map<std::string, BC::RegrCompute> methods = {
        {"siow", BC::Siow}, {"zellner", BC::Zellner}, {"hyper", BC::Hyper}, {"rouder", BC::Rouder}};
    const auto rows = extremedata::read("regr_factors_reference.csv");
    ASSERT_EQ(rows.size(), 15u);
    for (const auto& row : rows) {
        const std::string compare = row[0], method = row[1];
        const double N = num(row[2]), p = num(row[3]), pF = num(row[4]), R2 = num(row[5]), RF2 = num(row[6]);
        const double logbf = num(row[8]);
        BSNSettings s;
        s.SetRegrCompType(methods.at(method));
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
    // The null factor of N = 50, p = 2, R2 = 0.3 (or as given) under a method
    // and its parameter (none when missing): BF, log BF, no warnings.
    struct Factor { double bf, log; bool quiet; };
    const auto nullFactor = [](BC::RegrCompute method, double par, double N = 50, double p = 2, double R2 = 0.3) {
        BSNSettings s;
        s.SetRegrCompType(method);
        if (!MCMV::IsMissing(par)) s.SetRegrComPar(par);
        BSNMultipleRegrNullFactor f(s, N, p, R2);
        f.Compute();
        return Factor{f.GetBayesFactor(), f.GetLogBayesFactor(), f.GetWarnings().IsEmpty()};
    };
    // Hyper-g null factor: (a - 2)/(p + a - 2) 2F1((N - 1)/2, 1; (p + a)/2; R2)
    // by its series, for a case where the bound 1e6 cuts off nothing that counts.
    const double N = 25, p = 2, R2 = 0.3, a = 3;
    double term = 1.0, sum = 1.0;
    for (int k = 0; k < 2000; ++k) {
        term *= ((N - 1) / 2 + k) * (1.0 + k) / ((p + a) / 2 + k) / (k + 1.0) * R2;
        sum += term;
    }
    const double closed = (a - 2) / (p + a - 2) * sum;
    EXPECT_NEAR(nullFactor(BC::Hyper, a, N, p, R2).bf, closed, 1e-6 * closed);
    // a = 2 gives 0 (the factor (a - 2)/2 is not guarded) and no logarithm.
    const auto zero = nullFactor(BC::Hyper, 2.0, N, p, R2);
    EXPECT_EQ(zero.bf, 0.0);
    EXPECT_TRUE(MCMV::IsMissing(zero.log));
    // An unknown method leaves the null factor missing; so does Zellner without g, with no warning.
    EXPECT_TRUE(MCMV::IsMissing(nullFactor(BC::Gonen, kMiss).bf));
    const auto noG = nullFactor(BC::Zellner, kMiss);
    EXPECT_TRUE(MCMV::IsMissing(noG.bf));
    EXPECT_TRUE(noG.quiet);

    // Full comparison with equal fits: exactly 1 for every method, even one that computes nothing otherwise.
    for (int m = 0; m <= 4; ++m) {
        BSNSettings t;
        t.SetRegrCompType(static_cast<BC::RegrCompute>(m));
        t.SetRegrComPar(3.0);
        BSNMultipleRegrFullFactor f(t, 50, 2, 4, 0.3, 0.3 + 5e-7);
        f.Compute();
        EXPECT_EQ(f.GetBayesFactor(), 1.0) << m;
        EXPECT_EQ(f.GetLogBayesFactor(), 0.0) << m;
    }
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

    // Under Siow the same near-perfect fit (1 - R^2 below the tolerance) gives 410014 and no factor at all.
    s.SetRegrCompType(BC::Siow);
    RegrRun siow(s, cols);
    ASSERT_TRUE(siow.status.IsOK());
    EXPECT_LT(1.0 - R2, 1e-6);
    EXPECT_EQ(siow.Count(410014), 1);
    EXPECT_TRUE(MCMV::IsMissing(siow.result().GetBayesFactor()));
    EXPECT_FALSE(siow.result().IsLogBayesFactor());
    EXPECT_TRUE(MCMV::IsMissing(siow.result().GetLogBayesFactor()));
}
