// The correlation procedure: what each analysis type fills, the plot axis, and
// data at the edges that must give numbers or the missing value, never NaN.
#include <tuple>

#include "tests/correlation/corrtestsupport.h"

using namespace corrtest;

TEST(CorrelationDriver, AnalysisTypeAndPlotSettingsDecideWhatIsFilled) {
    const std::vector<std::vector<double>> cols = {{1, 2, 3, 4, 5, 6}, {2, 1, 4, 3, 6, 5}, {9, 7, 8, 5, 6, 1}};
    // Axis points strictly inside (-1, 1), one point the middle; no plots, no axis.
    const std::vector<double> four = {-0.6, -0.2, 0.2, 0.6};
    using Case = std::tuple<BC::AnalysTypes, int, int, std::vector<double>>;  // type, plots, points, axis
    for (const auto& [type, plots, points, axis] : std::vector<Case>{
             {BC::Posterior, 2, 4, four}, {BC::BayesFactor, 2, 4, four}, {BC::Both, 2, 4, four},
             {BC::Both, 1, 1, {0.0}}, {BC::Both, 0, 5, {}}}) {
        SCOPED_TRACE(testing::Message() << "type " << type << ", " << plots << " plots of " << points);
        BSNSettings s = corrSettings({0, 1, 2}, type);
        s.SetMaxNPlots(plots); s.SetNPlotPoints(points);
        CorrRun run(s, cols);
        ASSERT_TRUE(run.status.IsOK());
        const auto& o = run.out();
        const std::size_t factors = type == BC::Posterior ? 0 : 3, posterior = type == BC::BayesFactor ? 0 : 3;
        EXPECT_EQ(o.GetIsLogBayesFactor().size(), factors);
        for (const auto* v : {&o.GetBayesFactor(), &o.GetLogBayesFactors()}) EXPECT_EQ(v->size(), factors);
        for (const auto* v : {&o.GetPosteriorMode(), &o.GetPosteriorMean(), &o.GetPosteriorVariance(),
                              &o.GetPosteriorLowerBound(), &o.GetPosteriorUpperBound()})
            EXPECT_EQ(v->size(), posterior);
        ASSERT_EQ(o.GetPlotXAxis().size(), axis.size());
        for (std::size_t i = 0; i < axis.size(); ++i) EXPECT_NEAR(o.GetPlotXAxis()[i], axis[i], 1e-15);
        // Curves for the first pairs, filled by the posterior stage.
        ASSERT_EQ(o.GetPlotPosterior().size(), static_cast<std::size_t>(plots));
        for (const auto* curves : {&o.GetPlotPosterior(), &o.GetPlotLogLikelihood()})
            for (const auto& curve : *curves) EXPECT_EQ(curve.size(), posterior ? axis.size() : 0u);
        expectAllFinite(o);
    }
}

TEST(CorrelationDriver, EdgesGiveNumbersOrMissingNeverNaN) {
    // r within 1e-6 of +-1, a constant and an empty variable.
    std::vector<double> x, nearly, against;
    for (int i = 0; i < 50; ++i) {
        x.push_back(i);
        nearly.push_back(i + 0.0141 * std::sin(7.3 * i));
        against.push_back(-i + 0.0141 * std::cos(3.1 * i));
    }
    const std::vector<double> constant(50, 3.0);
    const std::vector<double> missing(50, kMiss);
    std::vector<double> huge(50, 1.0);
    huge[0] = 1e8 - 49;  // n = 1e8 through weights
    for (BC::EstBFTypes type : {BC::JZS, BC::Fraction}) {
        SCOPED_TRACE(type);
        BSNSettings s = corrSettings({0, 1, 2, 3, 4});
        s.SetEstBFType(type); s.SetMCSamples(200); s.SetPosteriorSamples(300);
        CorrRun run(s, {x, nearly, against, constant, missing});
        ASSERT_TRUE(run.status.IsOK());
        const auto& o = run.out();
        EXPECT_GT(o.GetPearsonCorrelation()[0], 0.999998);
        EXPECT_LT(o.GetPearsonCorrelation()[0], 1.0);
        EXPECT_LT(o.GetPearsonCorrelation()[1], -0.999998);
        for (int p : {0, 1, 4}) {
            EXPECT_FALSE(MCMV::IsMissing(o.GetLogBayesFactors()[p]) || MCMV::IsMissing(o.GetPosteriorMean()[p])) << p;
            EXPECT_GT(o.GetPosteriorUpperBound()[p], o.GetPosteriorLowerBound()[p]) << p;
        }
        EXPECT_GT(o.GetPosteriorMean()[0], 0.9999);
        expectAllFinite(o);

        // n = 1e8 through weights; three cases, the fewest with a correlation (r = 0.5).
        BSNSettings pair = s, weighted = s;
        pair.SetCovariates({0, 1});
        weighted.SetCovariates({0, 1}); weighted.SetFrequencyWeightVar(2);
        using Cols = std::vector<std::vector<double>>;
        for (const auto& [settings, cols, n] : std::vector<std::tuple<BSNSettings, Cols, double>>{
                 {weighted, {x, nearly, huge}, 1e8}, {pair, {{1, 2, 3}, {1, 3, 2}}, 3}}) {
            CorrRun small(settings, cols);
            ASSERT_TRUE(small.status.IsOK());
            const auto& so = small.out();
            EXPECT_EQ(so.GetVarPairN()[0], n);
            if (n == 3) { EXPECT_DOUBLE_EQ(so.GetPearsonCorrelation()[0], 0.5); }
            for (double v : {so.GetLogBayesFactors()[0], so.GetPosteriorMode()[0], so.GetPosteriorVariance()[0]})
                EXPECT_FALSE(MCMV::IsMissing(v)) << n;
            expectAllFinite(so);
        }
    }
}
