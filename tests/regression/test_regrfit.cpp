// The regression fit, its posteriors and its error paths, against numbers
// from R's lm and independent matrix formulas (tests/data/regr_reference.R).
#include <cmath>
#include <functional>

#include "bsn/regression/bsnregraccumulator.h"
#include "tests/regression/scoringtestsupport.h"

using namespace scoringtest;

namespace {

MCBSN_850::BayesFTest fTest(const std::vector<int>& predictors, const std::vector<double>& values, bool intercept) {
    MCBSN_850::BayesFTest t;
    t.SetPredictors(predictors);
    t.SetUseIntercept(intercept);
    t.SetTestValues(values);
    return t;
}

// The scoring tests' model A (y ~ g + x1 + x2, both weights), a prediction and an F test of the slopes.
BSNSettings smallSettings(const MCBSN_850::BayesFTest& test = fTest({1, 2}, {0.5, -0.25}, false)) {
    BSNSettings s = modelSettings('A');
    s.SetRegressors({1, 1.5, 9});
    s.SetFTests({test});
    return s;
}

const auto& reference() {
    static const auto ref = readReference("regr_reference.csv");
    return ref;
}

struct SmallRun : RegrRun {
    explicit SmallRun(const BSNSettings& s) : RegrRun(s, readColumns("regr_small.csv"), ScaleVars(7, {kG, kH})) {}
};

// Both priors against their reference values under prefix p ("ref" or "conj"): the coefficients (the redundant
// one, index 3, has mean 0 and nothing else), sigma^2, the prediction, the overall and the custom F test.
void expectPosterior(const BSNMultiRegOutputStats& r, const std::string& p) {
    const auto& ref = reference();
    const auto& est = r.GetVarCoeffBayesEstimations();
    const std::vector<int> keep = {0, 1, 2, 4, 5};
    for (std::size_t j = 0; j < keep.size(); ++j) {
        const auto& e = est[static_cast<std::size_t>(keep[j])];
        const std::string what = p + " coefficient " + std::to_string(j);
        if (p == "conj") expectRel(e.GetMean(), ref.at("conj_mean")[j], 1e-9, what);
        expectRel(e.GetVariance(), ref.at(p + "_var")[j], 1e-9, what);
        expectRel(e.GetLower(), ref.at(p + "_lower")[j], 1e-9, what);
        EXPECT_NEAR(e.GetLower() + e.GetUpper(), 2 * e.GetMean(), 1e-9) << what;
    }
    EXPECT_EQ(parts(est[3]), (std::array{0.0, 0.0, kMiss, kMiss, kMiss}));
    const auto sigma2 = parts(r.GetErrorBayesEstimation()), pred = parts(r.GetPredictedBayesEstimation());
    for (std::size_t k = 0; k < 5; ++k)
        expectRel(sigma2[k], ref.at(p + "_sigma2")[k], k < 3 ? 1e-10 : 1e-9, p + " sigma2 " + std::to_string(k));
    for (std::size_t k = 0; k < 4; ++k)  // mean, variance, lower, upper
        expectRel(pred[k + 1], ref.at(p + "_pred")[k], k == 0 ? 1e-10 : 1e-9, p + " prediction " + std::to_string(k));
    expectRel(r.GetFStat(), ref.at(p + "_fall")[0], 1e-9, p + " overall F");
    ASSERT_EQ(r.GetFTestResults().size(), 1u);
    expectRel(r.GetFTestResults()[0].GetWald(), ref.at(p + "_ftest")[0], 1e-9, p + " F test");
    EXPECT_NEAR(r.GetFTestResults()[0].GetSig(), ref.at(p + "_ftest")[1], 1e-12);
    EXPECT_EQ(r.GetFTestResults()[0].GetDF(), 2.0);
}

} // namespace

TEST(RegressionFit, LeastSquaresAnovaAndReferencePosteriorAgreeWithR) {
    const auto& ref = reference();
    SmallRun run(smallSettings());
    ASSERT_TRUE(run.status.IsOK()) << run.status.GetCode();
    const auto& r = run.result();
    const auto& b = r.GetRegrParameters();
    ASSERT_EQ(b.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) expectRel(b[i], ref.at("coef")[i], 1e-10, "coef " + std::to_string(i));
    EXPECT_EQ(r.GetRedundancy(), (std::vector<bool>{false, false, false, true, false, false}));
    expectRel(r.GetRSquared(), ref.at("r2")[0], 1e-12, "R2");
    expectRel(r.GetAdjRSquared(), ref.at("adjr2")[0], 1e-12, "adj R2");
    const auto& a = r.GetAnova();
    const double ss[] = {a.regressionSS, a.residualSS, a.totalSS}, df[] = {a.regressionDF, a.residualDF, a.totalDF};
    for (std::size_t k = 0; k < 3; ++k) {
        expectRel(ss[k], ref.at("ss")[k], 1e-10, "SS " + std::to_string(k));
        EXPECT_EQ(df[k], ref.at("df")[k]) << k;
    }
    expectRel(a.residualMS, ref.at("ss")[1] / ref.at("df")[1], 1e-10, "MSE");
    expectRel(a.f, ref.at("f")[0], 1e-9, "F");
    expectRel(a.sig / ref.at("fsig")[0], 1.0, 1e-8, "significance");
    expectRel(r.GetSigmaSquared(), ref.at("ss")[1] / ref.at("df")[1], 1e-10, "sigma2");
    EXPECT_EQ(r.GetNCases(), ref.at("N")[0]);
    expectPosterior(r, "ref");
    EXPECT_EQ(r.GetFTestResults()[0].GetDF2(), ref.at("ref_nu")[0]);
}

TEST(RegressionFit, ConjugatePosteriorMatchesMatrixFormulas) {
    BSNSettings s = smallSettings();
    setConjugatePrior(s);
    SmallRun run(s);
    ASSERT_TRUE(run.status.IsOK()) << run.status.GetCode();
    EXPECT_EQ(run.Count(410021), 0);
    const auto& r = run.result();
    expectPosterior(r, "conj");

    // A covariance of the wrong size falls back to the identity (410021).
    s.SetPriorCovMatrix({1, 0, 1});
    SmallRun fallback(s);
    ASSERT_TRUE(fallback.status.IsOK());
    const auto* w = fallback.Warning(410021);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->GetDiscreteDatum(0), 21);
    EXPECT_EQ(w->GetDiscreteDatum(1), 3);
    EXPECT_FALSE(MCMV::IsMissing(fallback.result().GetVarCoeffBayesEstimations()[1].GetMean()));

    // Missing shape: 410019; prior means of the wrong length: 410020 (n, given).
    BSNSettings noShape = s;
    noShape.SetPriorShape(kMiss);
    EXPECT_EQ(SmallRun(noShape).status.GetCode(), 410019);
    s.SetPriorMeans({1, 2});
    SmallRun bad(s);
    EXPECT_EQ(bad.status.GetCode(), 410020);
    EXPECT_EQ(bad.status.GetDiscreteDatum(0), 6);
    EXPECT_EQ(bad.status.GetDiscreteDatum(1), 2);
    EXPECT_FALSE(bad.hasResult());
}

TEST(RegressionFit, FullModelRSquaredAndFactorDirection) {
    const auto& ref = reference();
    BSNSettings s = smallSettings();
    s.SetAnalysType(BC::BayesFactor);
    s.SetCompareType(BC::CompareFull);
    s.SetFullModFactors({3, 4});
    s.SetFullModFactorNCategs({3, 4});
    s.SetFullModCovariates({1, 2});
    SmallRun run(s);
    ASSERT_TRUE(run.status.IsOK());
    const auto& r = run.result();
    expectRel(r.GetRSquaredFull(), ref.at("r2full")[0], 1e-12, "full R2");
    // Zellner, full comparison: ((1 + pF - N)/2) ln(1 + g) + ((N - p - 1)/2) ln(rho g + 1).
    const double N = ref.at("N")[0], p = 4, pF = 7, g = 50;
    const double rho = (1 - ref.at("r2full")[0]) / (1 - ref.at("r2")[0]);
    const double L = (1 + pF - N) / 2 * std::log1p(g) + (N - p - 1) / 2 * std::log(rho * g + 1);
    expectRel(r.GetLogBayesFactor(), L, 1e-10, "log BF");
    expectRel(r.GetBayesFactor(), std::exp(L), 1e-10, "BF");
    EXPECT_FALSE(r.IsLogBayesFactor());
    EXPECT_FALSE(r.HasPosterior());
    EXPECT_TRUE(MCMV::IsMissing(r.GetErrorBayesEstimation().GetMean()));
}

TEST(RegressionFit, SparseAndDenseRowsGiveTheSameFit) {
    // 12 categories, a covariate and a constant one (redundant with the intercept), accumulated both ways.
    MCMath_850::MCFastDesignMatrix design({0}, {12}, {1, 3}, true);
    design.SetDepVar(2);
    std::vector<std::vector<double>> rows;
    for (int i = 0; i < 60; ++i)
        rows.push_back({i % 12 * 1.0, 100.0 + std::sin(i * 0.7), 5.0 + 0.3 * (i % 12) + std::cos(i), -2.5});
    const auto weight = [](const std::vector<double>& row) { return 1.0 + (row[0] == 3 ? 1.5 : 0.0); };
    struct Fit { std::vector<double> b; MCMath_850::MCSymMatrix inverse, xtx; };
    auto fitWith = [&](bool sparse, Fit& f) {
        MCMath_850::MCFastDesignMatrix d = design;
        MCBSN_850::BSNRegrAccumulator acc(d, sparse);
        for (const auto& row : rows) {
            const MCCommon_850::Record rec(row.data(), row.size());
            ASSERT_TRUE(acc.PrepareShifts(rec));
            ASSERT_TRUE(acc.Add(rec, weight(row)));
        }
        acc.Finish();
        std::vector<double> xty;
        double yty = 0.0;
        acc.GetCrossProducts(f.xtx, xty, yty);
        ASSERT_TRUE(acc.Sweep(nullptr));
        f.b = acc.GetCoefficients();
        acc.GetInverse(f.inverse);
        EXPECT_EQ(acc.GetNonRedundant().Count(), 13);
        EXPECT_FALSE(acc.GetNonRedundant().IsMember(12) || acc.GetNonRedundant().IsMember(14));
    };
    Fit s, d;
    fitWith(true, s);
    fitWith(false, d);
    ASSERT_EQ(s.b.size(), 15u);
    for (std::size_t i = 0; i < s.b.size(); ++i) EXPECT_NEAR(s.b[i], d.b[i], 1e-9 * (1 + std::fabs(d.b[i])));
    EXPECT_LT((s.inverse.Dense() - d.inverse.Dense()).cwiseAbs().maxCoeff(), 1e-9);
    EXPECT_LT((s.xtx.Dense() - d.xtx.Dense()).cwiseAbs().maxCoeff(), 1e-7);
    // The unshifted X'X is the plain sum of weighted row products.
    double x11 = 0.0;
    for (const auto& row : rows) x11 += weight(row) * row[1] * row[1];
    EXPECT_NEAR(d.xtx.Get(13, 13), x11, 1e-9 * x11);
    // And the inverse is a generalised inverse: X'X G X'X = X'X.
    const Eigen::MatrixXd back = d.xtx.Dense() * d.inverse.Dense() * d.xtx.Dense();
    EXPECT_LT((back - d.xtx.Dense()).cwiseAbs().maxCoeff(), 1e-6 * d.xtx.Dense().cwiseAbs().maxCoeff());
}

TEST(RegressionFit, DataFarFromZeroKeepsItsPrecision) {
    // y = 3 x + noise, x around 1e9 with a spread of 0.01: slope and R squared as for the data moved to 0.
    std::vector<std::vector<double>> far(2), near(2);
    for (int i = 0; i < 200; ++i) {
        const double dx = 0.01 * std::sin(1.3 * i), e = 0.002 * std::cos(2.1 * i + 0.4);
        far[0].push_back(1e9 + dx);
        far[1].push_back(3e9 + 3 * dx + e);
        near[0].push_back(far[0].back() - 1e9);
        near[1].push_back(far[1].back() - 3e9);
    }
    const BSNSettings s = regression(1, {0});
    RegrRun a(s, far), b(s, near);
    ASSERT_TRUE(a.status.IsOK()) << a.status.GetCode();
    ASSERT_TRUE(b.status.IsOK());
    const auto &fa = a.result(), &fb = b.result();
    EXPECT_EQ(fa.GetRedundancy(), (std::vector<bool>{false, false}));
    EXPECT_NEAR(fa.GetRegrParameters()[1], fb.GetRegrParameters()[1], 1e-6);
    EXPECT_NEAR(fa.GetRSquared(), fb.GetRSquared(), 1e-9);
    EXPECT_NEAR(fa.GetAnova().residualSS, fb.GetAnova().residualSS, 1e-6 * fb.GetAnova().residualSS);
    const double v = fb.GetVarCoeffBayesEstimations()[1].GetVariance();
    EXPECT_NEAR(fa.GetVarCoeffBayesEstimations()[1].GetVariance(), v, 1e-6 * v);
    // The intercept moves with the data: y - 3e9 = b0 + b1 (x - 1e9) gives
    // the intercept b0 + 3e9 - 1e9 b1 on the original scale.
    const double b1 = fa.GetRegrParameters()[1];
    EXPECT_NEAR(fa.GetRegrParameters()[0], fb.GetRegrParameters()[0] + 3e9 - 1e9 * b1, 1e-3);
}

TEST(RegressionFit, ErrorsBeforeAndAfterThePass) {
    using Vars = MCXML_850::MCVarList;
    std::vector<std::vector<double>> cols = {{1, 2, 3, 4, 5}, {2, 2, 2, 2, 2}, {0, 1, 0, 1, 0}};
    struct Case { const char* what; std::function<void(BSNSettings&, Vars&)> setup; int code; };
    const std::vector<Case> cases = {
        {"dependent stored constant", [](BSNSettings&, Vars& v) { v.Get(0).SetRange(3, 3); }, 410011},
        {"dependent nominal",
         [](BSNSettings&, Vars& v) { v.Get(0) = MCXML_850::MCContVar("y", MCXML_850::MCVarKind::Nominal); }, 410001},
        {"covariate stored constant", [](BSNSettings&, Vars& v) { v.Get(1).SetRange(2, 2); }, 410012},
        {"one-category factor only",
         [](BSNSettings& s, Vars& v) { v.Get(1).SetRange(2, 2); s.SetFactors({2}); s.SetFactorNCategs({1}); }, 410012},
        {"covariate constant in the data (after the pass)", [](BSNSettings&, Vars&) {}, 410012},
        {"two categories, a usable predictor",
         [](BSNSettings& s, Vars&) { s.SetCovariates({}); s.SetFactors({2}); s.SetFactorNCategs({2}); }, 0},
    };
    for (const auto& c : cases) {
        BSNSettings s = regression(0, {1});
        Vars v = ScaleVars(3, {2});
        c.setup(s, v);
        RegrRun run(s, cols, v);
        EXPECT_EQ(run.status.GetCode(), c.code) << c.what;
        EXPECT_EQ(run.hasResult(), c.code == 0) << c.what;
    }
}

TEST(RegressionFit, ParameterLimits) {
    // 4999 parameters pass the check (and meet the empty data); 5000 do not. The full model's limit
    // counts categories and covariates: 5000 drops the Bayes factor with 410058, 4999 does not.
    for (const auto& [full, size] : std::vector<std::pair<bool, int>>{{0, 4997}, {0, 4998}, {1, 4998}, {1, 4999}}) {
        BSNSettings s = regression(0, {2});
        if (full) {
            s.SetAnalysType(BC::BayesFactor);
            s.SetCompareType(BC::CompareFull);
            s.SetFullModFactors({1});
            s.SetFullModFactorNCategs({size});
            s.SetFullModCovariates({2});
        } else {
            s.SetFactors({1});
            s.SetFactorNCategs({size});
        }
        RegrRun run(s, {{}, {}, {}}, ScaleVars(3, {1}));
        if (full) {
            EXPECT_EQ(run.Count(410058), size == 4999 ? 1 : 0) << size;
        } else {
            EXPECT_EQ(run.status.GetCode(), size == 4997 ? 410003 : 410057) << size;
        }
    }
}

TEST(RegressionFit, PerfectFitAndFewCases) {
    // y = 2x + 1 exactly: a perfect fit keeps its factor only under Zellner with the null comparison.
    std::vector<std::vector<double>> cols = {{0, 1, 2, 3, 4, 5}, {1, 3, 5, 7, 9, 11}};
    for (auto method : {BC::Siow, BC::Zellner, BC::Hyper}) {
        BSNSettings s = regression(1, {0});
        s.SetAnalysType(BC::BayesFactor);
        s.SetRegrCompType(method);
        s.SetRegrComPar(method == BC::Zellner ? 6.0 : 3.0);
        RegrRun run(s, cols);
        ASSERT_TRUE(run.status.IsOK());
        EXPECT_EQ(run.Count(410014), method == BC::Zellner ? 0 : 1);
        EXPECT_EQ(MCMV::IsMissing(run.result().GetBayesFactor()), method != BC::Zellner);
        EXPECT_FALSE(run.result().IsLogBayesFactor());
    }
    // Fewer cases than parameters: k falls to N, residual df 0, no mean square and no F.
    RegrRun few(regression(0, {1, 2, 3}), {{1, 4, 2}, {0, 1, 3}, {5, 2, 2}, {1, 1, 7}});
    ASSERT_TRUE(few.status.IsOK()) << few.status.GetCode();
    const auto& a = few.result().GetAnova();
    EXPECT_EQ(a.residualDF, 0.0);
    EXPECT_EQ(a.regressionDF, 2.0);
    EXPECT_TRUE(MCMV::IsMissing(a.residualMS));
    EXPECT_TRUE(MCMV::IsMissing(a.f));
    EXPECT_EQ(few.Count(410024), 1);
}

TEST(RegressionFit, FTestWarnings) {
    struct Case { std::vector<int> predictors; bool intercept; std::vector<double> values; int warning; };
    // Predictors: factor v3 (3 categories, the last redundant), covariates v1, v2.
    const std::vector<Case> cases = {
        {{1}, false, {0.5, 0.1}, 410043},  // two values for one parameter
        {{3}, false, {0, 0}, 410043},      // a factor needs one value per category
        {{4}, false, {0}, 410044},         // v4 is not in the model
        {{}, false, {}, 410048},           // no rows at all
        {{3}, false, {0, 0, 0}, 0},        // the redundant row is dropped
        {{2}, true, {1, 0}, 0},
    };
    for (const auto& c : cases) {
        SmallRun run(smallSettings(fTest(c.predictors, c.values, c.intercept)));
        ASSERT_TRUE(run.status.IsOK());
        const auto& f = run.result().GetFTestResults()[0];
        for (int code : {410043, 410044, 410048}) EXPECT_EQ(run.Count(code), code == c.warning ? 1 : 0) << code;
        EXPECT_EQ(MCMV::IsMissing(f.GetWald()), c.warning != 0);
        if (c.warning == 0) {
            EXPECT_EQ(f.GetDF(), 2.0);
        }
    }
}
