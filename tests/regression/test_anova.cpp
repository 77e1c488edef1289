// The one-way ANOVA: cells, empty cells, factor codes, F, factor and posteriors from hand-computed sums.
#include <cmath>

#include "tests/regression/regrtestsupport.h"

using namespace regrtest;

namespace {

BSNSettings anovaSettings(int nCategories) {
    BSNSettings s;
    s.SetModelType(BC::Anova, true);
    s.SetDependVar(0);
    s.SetFactors({1});
    s.SetFactorNCategs({nCategories});
    s.SetAnalysType(BC::Both);
    s.SetPriorType(BC::Reference);
    s.SetRegrCompType(BC::Zellner);
    s.SetRegrComPar(10.0);
    return s;
}

} // namespace

TEST(Anova, CellMeansSumsOfSquaresFactorAndPosteriors) {
    // Factor codes 1.85 -> cell 1 and 1.95 -> cell 2 (value + 0.1, rounded down).
    std::vector<std::vector<double>> cols = {
        {3, 4, 5, 7, 8, 12, 13, 10, 1e9}, {0, 0, 0.0, 1, 1.85, 1.95, 2, 2, kMiss}, {1, 2, 1, 1, 1, 3, 1, 1, 1}};
    BSNSettings s = anovaSettings(3);
    s.SetFrequencyWeightVar(2);
    RegrRun run(s, cols, ScaleVars(3, {1}));
    ASSERT_TRUE(run.status.IsOK()) << run.status.GetCode();
    const auto& r = run.result();
    EXPECT_EQ(r.GetOutputType(), BC::OutputAnova);
    // Cells: {3, 4, 4, 5}, {7, 8}, {12, 12, 12, 13, 10}.
    const auto& b = r.GetRegrParameters();
    const double cellMeans[] = {4.0, 7.5, 59.0 / 5};
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(b[i], cellMeans[i], 1e-12) << i;
    const double N = 11, mean = (16 + 15 + 59) / N;
    const double sse = 2 + 0.5 + (3 * 0.04 + 1.44 + 3.24);
    double sst = 0;
    for (double y : {3., 4., 4., 5., 7., 8., 12., 12., 12., 13., 10.}) sst += (y - mean) * (y - mean);
    EXPECT_NEAR(r.GetAnova().residualSS, sse, 1e-10);
    EXPECT_NEAR(r.GetAnova().totalSS, sst, 1e-10);
    EXPECT_EQ(r.GetAnova().regressionDF, 2.0);
    EXPECT_EQ(r.GetAnova().residualDF, 8.0);
    EXPECT_NEAR(r.GetRSquared(), 1 - sse / sst, 1e-12);
    // F, the Zellner factor of p = 2 predictors at g = 10, and sigma^2's posterior mean SSE/(nu - 2).
    const double nu = N - 3, s2 = sse / nu;
    const double logBF = (N - 3) / 2 * std::log(11.0) - (N - 1) / 2 * std::log1p(10 * sse / sst);
    EXPECT_NEAR(r.GetAnova().f, (sst - sse) / 2 / s2, 1e-9);
    EXPECT_NEAR(r.GetLogBayesFactor(), logBF, 1e-10 * std::fabs(logBF));
    EXPECT_NEAR(r.GetBayesFactor(), std::exp(logBF), 1e-9 * std::exp(logBF));
    EXPECT_NEAR(r.GetErrorBayesEstimation().GetMean(), sse / (nu - 2), 1e-10);
    // Posterior of a cell mean: t with N - k df around the mean, scale s sqrt(1/w).
    EXPECT_NEAR(r.GetVarCoeffBayesEstimations()[1].GetVariance(), s2 / 2 * nu / (nu - 2), 1e-12);
}

TEST(Anova, EmptyCellsAndOneCategory) {
    std::vector<std::vector<double>> cols = {{3, 4, 5, 9, 10}, {0, 0, 0, 2, 2}};
    // Three categories, the middle one empty: dropped, the others analysed.
    RegrRun run(anovaSettings(3), cols, ScaleVars(2, {1}));
    ASSERT_TRUE(run.status.IsOK()) << run.status.GetCode();
    EXPECT_EQ(run.result().GetRedundancy(), (std::vector<bool>{false, true, false}));
    EXPECT_EQ(run.result().GetAnova().regressionDF, 1.0);
    EXPECT_TRUE(MCMV::IsMissing(run.result().GetVarCoeffBayesEstimations()[1].GetVariance()));
    // One cell left of two categories, a single category and more than 4999 categories are refused.
    std::vector<std::vector<double>> one = {{3, 4, 5}, {0, 0, 0}};
    for (const auto& [n, code] : std::vector<std::pair<int, int>>{{2, 410012}, {1, 410012}, {5000, 410057}})
        EXPECT_EQ(RegrRun(anovaSettings(n), one, ScaleVars(2, {1})).status.GetCode(), code) << n;
    // A perfect fit keeps its factor under Zellner only.
    std::vector<std::vector<double>> perfect = {{3, 3, 5, 5}, {0, 0, 1, 1}};
    for (const auto method : {BC::Zellner, BC::Siow}) {
        BSNSettings s = anovaSettings(2);
        s.SetRegrCompType(method);
        RegrRun run(s, perfect, ScaleVars(2, {1}));
        EXPECT_EQ(run.Count(410014), method == BC::Siow ? 1 : 0);
        EXPECT_EQ(MCMV::IsMissing(run.result().GetBayesFactor()), method == BC::Siow);
    }
}

TEST(Anova, PlotsOfCellsSigmaAndPrediction) {
    std::vector<std::vector<double>> cols = {{3, 4, 5, 7, 8, 12, 13, 10, 9}, {0, 0, 0, 1, 1, 2, 2, 2, 1}};
    BSNSettings s = anovaSettings(3);
    s.SetPlotFactorCats({2, 0});
    s.SetMaxNPlotCategories(5);
    s.SetNPlotPoints(21);
    s.SetRegressors({1});
    RegrRun run(s, cols, ScaleVars(2, {1}));
    ASSERT_TRUE(run.status.IsOK());
    const auto& r = run.result();
    EXPECT_EQ(r.GetPlotParameters(), (std::vector<int>{2, 0}));
    ASSERT_EQ(r.GetPosteriorParamPlots().size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        const auto& y = r.GetPosteriorParamPlots()[i];
        ASSERT_EQ(r.GetParamsArgumentsPlots4Posterior()[i].size(), 21u);
        // Symmetric t: the peak (1) in the middle, the ends at the domain.
        EXPECT_NEAR(y[10], 1.0, 1e-12);
        EXPECT_NEAR(y[0], y[20], 1e-12);
        // The reference prior is flat: two points of height 1.
        EXPECT_EQ(r.GetPriorParamPlots()[i], (std::vector<double>{1.0, 1.0}));
        EXPECT_EQ(r.GetLikelihoodParamPlots()[i].size(), 21u);
    }
    // The domain holds all but the plot-domain tail mass of the t posterior.
    const double nu = 9 - 3;
    const auto& e = r.GetVarCoeffBayesEstimations()[2];
    const double scale = std::sqrt(e.GetVariance() * (nu - 2) / nu);
    const auto& x = r.GetParamsArgumentsPlots4Posterior()[0];
    EXPECT_NEAR((x.back() - e.GetMean()) / scale, 4.316827, 1e-5);  // qt(0.9975, 6)
    EXPECT_EQ(r.GetPosteriorErrorVarPlot().size(), 21u);
    EXPECT_EQ(r.GetPosteriorPredictedPlot().size(), 21u);
    EXPECT_NEAR(r.GetPredictedBayesEstimation().GetMean(), r.GetRegrParameters()[1], 1e-12);
    // A regressor that is not a category: 410022 and no prediction.
    s.SetRegressors({3});
    RegrRun bad(s, cols, ScaleVars(2, {1}));
    EXPECT_EQ(bad.Count(410022), 1);
    EXPECT_TRUE(MCMV::IsMissing(bad.result().GetPredictedBayesEstimation().GetMean()));
}
