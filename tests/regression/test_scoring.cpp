// Scoring records with a fitted regression or ANOVA model, against R's lm fitted values and prediction
// intervals (tests/data/scoring_reference.R) and the posterior predictive of tests/data/regr_reference.R.
#include "tests/regression/scoringtestsupport.h"

using namespace scoringtest;

namespace {

const char* const kParts[] = {"mode", "mean", "variance", "lower", "upper"};

// Mean, variance, lower and upper limit of `actual` against `expected`.
void expectSameScore(const std::array<double, 5>& actual, const std::array<double, 5>& expected,
                     const std::string& what) {
    for (std::size_t k = 1; k < 5; ++k)
        expectRel(actual[k], expected[k], k == 1 ? 1e-10 : 1e-9, what + " " + kParts[k]);
}

void expectScoresMatchR(const BSNMultiRegOutputStats& r, const std::string& model) {
    const auto& ref = scoringReference();
    const auto training = readColumns("regr_small.csv");
    const auto& fitted = ref.at(model + "_fit");
    ASSERT_EQ(fitted.size(), training[0].size());
    for (std::size_t i = 0; i < fitted.size(); ++i) {
        const auto e = score(r, row(training, i));
        expectRel(e.GetMode(), fitted[i], 1e-10, model + " fitted " + std::to_string(i));
        EXPECT_EQ(e.GetMode(), e.GetMean());
    }
    const auto fresh = readColumns("scoring_new.csv");
    for (std::size_t i = 0; i < fresh[0].size(); ++i) {
        const auto at = [&](const char* key) { return ref.at(model + "_new_" + key)[i]; };
        expectSameScore(parts(score(r, row(fresh, i))), {kMiss, at("fit"), at("var"), at("lower"), at("upper")},
                        model + " new record " + std::to_string(i));
    }
}

} // namespace

TEST(Scoring, AgreesWithLmAndRecordsThatDoNotExpandLeaveEveryScoreMissing) {
    // Under the reference prior the predictive limits are lm's prediction
    // limits; A expands rows densely, B and the ANOVA C sparsely.
    for (const char model : {'A', 'B', 'C'}) {
        RegrRun run(modelSettings(model), readColumns("regr_small.csv"), ScaleVars(kNColumns, {kG, kH}));
        ASSERT_TRUE(run.status.IsOK()) << model << " " << run.status.GetCode();
        EXPECT_EQ(run.result().IsSparse(), model != 'A') << model;
        expectScoresMatchR(run.result(), std::string(1, model));

        // The dependent and the weights play no part; a missing predictor or
        // a factor value that is not a category spoils the record.
        const int factor = model == 'B' ? kH : kG;
        const std::vector<double> good = {kMiss, 1.5, 9, 1, 2, kMiss, kMiss};
        EXPECT_FALSE(MCMV::IsMissing(score(run.result(), good).GetMean())) << model;
        std::vector<std::pair<int, double>> spoilers = {{factor, kMiss}, {factor, model == 'B' ? 4 : 3}, {factor, -1}};
        if (model != 'C') spoilers.push_back({kX1, kMiss});
        for (const auto& [column, value] : spoilers) {
            auto v = good;
            v[static_cast<std::size_t>(column)] = value;
            for (double x : parts(score(run.result(), v)))
                EXPECT_TRUE(MCMV::IsMissing(x)) << model << " column " << column << " = " << value;
        }
    }
}

TEST(Scoring, PosteriorPartsFollowThePosteriorAndTheSetting) {
    const auto& regr = readReference("regr_reference.csv");
    // The record of the regression tests' prediction: g = 1, x1 = 1.5, x2 = 9.
    const std::vector<double> x0 = {kMiss, 1.5, 9, 1, kMiss, kMiss, kMiss};
    BSNSettings conj = modelSettings('A');
    setConjugatePrior(conj);
    const struct { const char* name; BSNSettings settings; const char* key; } cases[] = {
        {"conjugate", conj, "conj_pred"}, {"reference", modelSettings('A'), "ref_pred"}};
    for (const auto& c : cases) {
        const auto& expected = regr.at(c.key);
        for (const bool variances : {true, false}) {
            BSNSettings s = c.settings;
            s.SetComputeVarianceInScoring(variances);
            RegrRun run(s, readColumns("regr_small.csv"), ScaleVars(kNColumns, {kG, kH}));
            ASSERT_TRUE(run.status.IsOK()) << c.name;
            const auto e = parts(score(run.result(), x0));
            const std::string what = std::string(c.name) + (variances ? " with" : " without") + " variances";
            expectRel(e[0], expected[0], 1e-10, what + ": mode");
            expectRel(e[1], expected[0], 1e-10, what + ": mean");
            if (variances) expectSameScore(e, {kMiss, expected[0], expected[1], expected[2], expected[3]}, what);
            for (std::size_t k = 2; k < 5 && !variances; ++k) EXPECT_TRUE(MCMV::IsMissing(e[k])) << what << kParts[k];
        }
    }

    // Without a posterior (Bayes factor only): the least-squares prediction,
    // nothing else, whatever the setting asks.
    BSNSettings bfOnly = modelSettings('A');
    bfOnly.SetAnalysType(BC::BayesFactor);
    RegrRun run(bfOnly, readColumns("regr_small.csv"), ScaleVars(kNColumns, {kG, kH}));
    ASSERT_TRUE(run.status.IsOK());
    ASSERT_FALSE(run.result().HasPosterior());
    const auto e = parts(score(run.result(), x0));
    expectRel(e[1], scoringReference().at("A_new_fit")[0], 1e-10, "least squares");
    EXPECT_EQ(e[0], e[1]);
    for (std::size_t k = 2; k < 5; ++k) EXPECT_TRUE(MCMV::IsMissing(e[k])) << kParts[k];
}
