// Scoring new records with a fitted regression or ANOVA model, against R's
// lm fitted values and prediction intervals (tests/data/scoring_reference.R)
// and the posterior predictive of tests/data/regr_reference.R.
#include "tests/regression/scoringtestsupport.h"

using namespace scoringtest;

namespace {

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
        const std::string what = model + " new record " + std::to_string(i);
        const auto e = score(r, row(fresh, i));
        expectRel(e.GetMean(), ref.at(model + "_new_fit")[i], 1e-10, what + " mean");
        expectRel(e.GetVariance(), ref.at(model + "_new_var")[i], 1e-9, what + " variance");
        expectRel(e.GetLower(), ref.at(model + "_new_lower")[i], 1e-9, what + " lower");
        expectRel(e.GetUpper(), ref.at(model + "_new_upper")[i], 1e-9, what + " upper");
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
            const auto e = score(run.result(), v);
            for (double x : {e.GetMode(), e.GetMean(), e.GetVariance(), e.GetLower(), e.GetUpper()})
                EXPECT_TRUE(MCMV::IsMissing(x)) << model << " column " << column << " = " << value;
        }
    }
}

TEST(Scoring, DenseAndSparseDesignsScoreTheSame) {
    // B (y ~ h + x1) expands sparse rows. Two constant covariates make the
    // rows dense (2 x 4 effects is not below 8 parameters) but leave the
    // model as it was: both are collinear with the intercept and redundant.
    auto cols = readColumns("regr_small.csv");
    cols.push_back(std::vector<double>(cols[0].size(), 5.0));
    cols.push_back(std::vector<double>(cols[0].size(), -2.5));
    BSNSettings sparse = modelSettings('B');
    BSNSettings dense = sparse;
    dense.SetCovariates({kX1, kNColumns, kNColumns + 1});
    RegrRun a(sparse, cols, ScaleVars(kNColumns + 2, {kG, kH}));
    RegrRun b(dense, cols, ScaleVars(kNColumns + 2, {kG, kH}));
    ASSERT_TRUE(a.status.IsOK());
    ASSERT_TRUE(b.status.IsOK());
    ASSERT_TRUE(a.result().IsSparse());
    ASSERT_FALSE(b.result().IsSparse());
    EXPECT_EQ(b.result().GetRedundancy(), (std::vector<bool>{false, false, false, false, true, false, true, true}));
    auto fresh = readColumns("scoring_new.csv");
    fresh.push_back(std::vector<double>(fresh[0].size(), 5.0));
    fresh.push_back(std::vector<double>(fresh[0].size(), -2.5));
    for (const auto* table : {&cols, &fresh}) {
        for (std::size_t i = 0; i < (*table)[0].size(); ++i) {
            const auto x = score(a.result(), row(*table, i)), y = score(b.result(), row(*table, i));
            const std::string what = "record " + std::to_string(i);
            expectRel(y.GetMean(), x.GetMean(), 1e-10, what + " mean");
            expectRel(y.GetVariance(), x.GetVariance(), 1e-9, what + " variance");
            expectRel(y.GetLower(), x.GetLower(), 1e-9, what + " lower");
            expectRel(y.GetUpper(), x.GetUpper(), 1e-9, what + " upper");
        }
    }
}

TEST(Scoring, PosteriorPartsFollowThePosteriorAndTheSetting) {
    const auto& regr = readReference("regr_reference.csv");
    // The record of the regression tests' prediction: g = 1, x1 = 1.5, x2 = 9.
    std::vector<double> x0(kNColumns, kMiss);
    x0[kG] = 1;
    x0[kX1] = 1.5;
    x0[kX2] = 9;

    BSNSettings conj = modelSettings('A');
    conj.SetPriorType(BC::Conjugate);
    conj.SetPriorShape(3);
    conj.SetPriorScale(2);
    conj.SetPriorMeans({1, 0.5, -0.5, 123.0, 0.7, -0.2});
    conj.SetPriorCovMatrix({4, 0.5, 2, 0.2, 0.1, 3, 0, 0, 0, 1, 0.3, 0, 0.1, 0, 1.5, 0.1, 0, 0, 0, 0.2, 0.8});
    BSNSettings ref = modelSettings('A');

    const struct {
        const char* name;
        BSNSettings settings;
        const char* key;  // the reference numbers of the prediction
    } cases[] = {
        {"conjugate", conj, "conj_pred"},
        {"reference", ref, "ref_pred"},
    };
    for (const auto& c : cases) {
        const auto& expected = regr.at(c.key);
        for (const bool variances : {true, false}) {
            BSNSettings s = c.settings;
            s.SetComputeVarianceInScoring(variances);
            RegrRun run(s, readColumns("regr_small.csv"), ScaleVars(kNColumns, {kG, kH}));
            ASSERT_TRUE(run.status.IsOK()) << c.name;
            const auto e = score(run.result(), x0);
            const std::string what = std::string(c.name) + (variances ? " with" : " without") + " variances";
            expectRel(e.GetMode(), expected[0], 1e-10, what + ": mode");
            expectRel(e.GetMean(), expected[0], 1e-10, what + ": mean");
            if (variances) {
                expectRel(e.GetVariance(), expected[1], 1e-9, what + ": variance");
                expectRel(e.GetLower(), expected[2], 1e-9, what + ": lower");
                expectRel(e.GetUpper(), expected[3], 1e-9, what + ": upper");
            } else {
                EXPECT_TRUE(MCMV::IsMissing(e.GetVariance())) << what;
                EXPECT_TRUE(MCMV::IsMissing(e.GetLower())) << what;
                EXPECT_TRUE(MCMV::IsMissing(e.GetUpper())) << what;
            }
        }
    }

    // Without a posterior (Bayes factor only): the least-squares prediction,
    // nothing else, whatever the setting asks.
    BSNSettings bfOnly = modelSettings('A');
    bfOnly.SetAnalysType(BC::BayesFactor);
    RegrRun run(bfOnly, readColumns("regr_small.csv"), ScaleVars(kNColumns, {kG, kH}));
    ASSERT_TRUE(run.status.IsOK());
    ASSERT_FALSE(run.result().HasPosterior());
    const auto e = score(run.result(), x0);
    expectRel(e.GetMean(), scoringReference().at("A_new_fit")[0], 1e-10, "least squares");
    EXPECT_EQ(e.GetMode(), e.GetMean());
    EXPECT_TRUE(MCMV::IsMissing(e.GetVariance()));
    EXPECT_TRUE(MCMV::IsMissing(e.GetLower()));
    EXPECT_TRUE(MCMV::IsMissing(e.GetUpper()));
}
