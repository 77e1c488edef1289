// The correlation procedure: the pass (pair order, r and N against R's cor() on the data expanded by
// rounded weights, its warnings, errors and progress), what each analysis type fills, the plot axis,
// and data at the edges that must give numbers or the missing value, never NaN.
#include <algorithm>
#include <tuple>

#include "tests/correlation/corrtestsupport.h"

using namespace corrtest;

namespace {

struct Reports : MCCommon_850::ProgressListener {
    void Notify(const MCCommon_850::ProgressReport& r) override {
        records.push_back(r.DiscreteMeasure("records"));
        pairs.push_back(r.DiscreteMeasure("pairs"));
        EXPECT_EQ(r.DiscreteMeasure("other"), -1);
    }
    std::vector<int> records, pairs;
};

} // namespace

TEST(CorrelationStats, PairwiseAndListwiseMatchRInTheListsPairOrder) {
    std::vector<std::vector<double>> cols(7);  // x1..x6 and w of tests/data/correlation_data.csv
    for (const auto& row : readCsv("correlation_data.csv"))
        for (std::size_t c = 0; c < 7; ++c) cols[c].push_back(number(c < row.size() ? row[c] : ""));
    ASSERT_EQ(cols[0].size(), 60u);
    const auto expected = readCsv("correlation_r.csv");
    for (BC::MissScope scope : {BC::MissingAnalysis, BC::MissingListwise}) {
        SCOPED_TRACE(scope);
        BSNSettings s = corrSettings({0, 1, 2, 3, 4, 5}, BC::BayesFactor);
        s.SetFrequencyWeightVar(6); s.SetMissScope(scope);
        for (int block : {0, 1, 4}) {
            CorrRun run(s, cols, block);
            ASSERT_TRUE(run.status.IsOK()) << run.status.GetCode();
            const auto& o = run.out();
            ASSERT_EQ(o.GetPearsonCorrelation().size(), 15u);
            int checked = 0;
            for (const auto& e : expected) {
                if ((e[0] == "listwise") != (scope == BC::MissingListwise)) continue;
                const int a = std::stoi(e[1]), b = std::stoi(e[2]);
                const int p = a * 6 - a * (a + 1) / 2 + (b - a - 1);  // pair order: i outer, j inner
                EXPECT_EQ(o.GetVarPairIndices()[p], (std::pair<int, int>{a, b}));
                EXPECT_NEAR(o.GetPearsonCorrelation()[p], std::stod(e[3]), 1e-12) << a << "," << b;
                EXPECT_EQ(o.GetVarPairN()[p], std::stod(e[4])) << a << "," << b;
                ++checked;
            }
            EXPECT_EQ(checked, 15);
        }
    }
    // The pair order follows the variable list.
    const std::vector<double> a = {1, 2, 3, 4, 5, 6}, b = {2, 1, 4, 3, 6, 5}, c = {5, 3, 4, 1, 2, 0};
    CorrRun run(corrSettings({2, 0, 1}, BC::BayesFactor), {a, b, c});
    CorrRun ab(corrSettings({0, 2}, BC::BayesFactor), {a, b, c});
    EXPECT_EQ(run.out().GetVarPairIndices(), (std::vector<std::pair<int, int>>{{2, 0}, {2, 1}, {0, 1}}));
    EXPECT_DOUBLE_EQ(run.out().GetPearsonCorrelation()[0], ab.out().GetPearsonCorrelation()[0]);
}

TEST(CorrelationStats, WarningsOncePerAnalysisNamingTheFirstPairAndProgress) {
    const std::vector<double> x = {1, 2, 3, 4, 5};
    const std::vector<double> constant = {4, 4, 4, 4, 4};
    const std::vector<double> twice = {2, 4, 6, 8, 10};                 // exactly proportional to x
    const std::vector<double> lone = {kMiss, kMiss, 1.5, kMiss, kMiss};  // one case with anything
    const std::vector<double> none = {kMiss, kMiss, kMiss, kMiss, kMiss};
    Reports reports;
    BSNSettings s = corrSettings({0, 1, 2, 3, 4});
    s.SetProgressFrequency(2); s.SetProgressListener(&reports);
    CorrRun run(s, {x, constant, twice, lone, none});
    ASSERT_TRUE(run.status.IsOK()) << run.status.GetCode();
    EXPECT_TRUE(run.procedure.IsModelBuilt());
    // Pairs: 0 (x,c) 1 (x,twice) 2 (x,lone) 3 (x,none) 4 (c,twice) 5 (c,lone) 6 (c,none) ...
    const std::vector<int> codes = run.codes();
    EXPECT_EQ(std::vector<int>(codes.begin(), codes.begin() + 3), (std::vector<int>{410006, 410008, 410009}));
    // The pair without cases, the constant pair, the perfect pair with its two variables.
    const auto perfect = run.warning(410009);
    EXPECT_EQ((std::vector<int>{run.warning(410006).GetDiscreteDatum(0), run.warning(410008).GetDiscreteDatum(0),
                                perfect.GetDiscreteDatum(0), perfect.GetDiscreteDatum(1), perfect.GetDiscreteDatum(2)}),
              (std::vector<int>{2, 0, 1, 0, 2}));
    const auto& o = run.out();
    EXPECT_EQ(o.GetPearsonCorrelation()[1], 1.0);
    EXPECT_EQ(o.GetVarPairN(), (std::vector<double>{5, 5, 1, 0, 5, 1, 0, 1, 0, 0}));
    EXPECT_EQ(o.GetVarN(), (std::vector<double>{5, 5, 5, 1, 0}));
    // No correlation, factor or posterior for any pair but none valid here.
    for (std::size_t p = 0; p < 10; ++p) {
        EXPECT_TRUE(MCMV::IsMissing(o.GetPearsonCorrelation()[p]) || p == 1) << p;
        EXPECT_TRUE(MCMV::IsMissing(o.GetBayesFactor()[p]) && MCMV::IsMissing(o.GetPosteriorMean()[p])) << p;
    }
    expectAllFinite(o);
    // Progress: every 2 records and at the end of the pass (pairs not yet known), then the pairs up to all 10.
    ASSERT_GT(reports.records.size(), 3u);
    EXPECT_EQ(std::vector<int>(reports.records.begin(), reports.records.begin() + 3), (std::vector<int>{2, 4, 5}));
    EXPECT_EQ(std::vector<int>(reports.pairs.begin(), reports.pairs.begin() + 3), (std::vector<int>(3, -1)));
    EXPECT_EQ(std::pair(reports.records.back(), reports.pairs.back()), std::pair(5, 10));
    EXPECT_TRUE(std::is_sorted(reports.pairs.begin() + 3, reports.pairs.end()));
}

TEST(CorrelationStats, ErrorsAndCancellationInThePass) {
    const std::vector<double> x = {1, 2, 3}, y = {3, 1, 2};
    MCCommon_850::MCAtomicCancel cancel;
    cancel.Cancel();
    BSNSettings cancelled = corrSettings({0, 1});
    cancelled.SetCancelPointer(&cancel);
    // One variable, no records, cancelled before the pass.
    using Cols = std::vector<std::vector<double>>;
    for (const auto& [s, cols, code] : std::vector<std::tuple<BSNSettings, Cols, int>>{
             {corrSettings({0}), {x, y}, 410004}, {corrSettings({0, 1}), {{}, {}}, 410003}, {cancelled, {x, y}, 1}}) {
        CorrRun run(s, cols);
        EXPECT_EQ(run.status.GetCode(), code);
        EXPECT_TRUE(run.status.IsError()) << code;
        EXPECT_FALSE(run.procedure.IsModelBuilt()) << code;
        EXPECT_EQ(run.procedure.GetOutputStats(), nullptr) << code;
    }
}

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
