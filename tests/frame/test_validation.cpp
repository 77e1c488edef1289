#include <gtest/gtest.h>

#include <functional>

#include "bsn/frame/bsnsettings.h"

using namespace MCBSN_850;
using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using S = BSNSettings;

namespace {

BSNSettings binomial(int nFactors, BSNConst::AnalysTypes type) {
    BSNSettings s;
    s.SetTestDistType(BSNConst::Binomial);
    std::vector<int> factors;
    for (int i = 0; i < nFactors; ++i) factors.push_back(10 + i);
    s.SetFactors(factors);
    s.SetFactorNCategs(std::vector<int>(nFactors, 2));
    s.SetAnalysType(type);
    return s;
}

// An error with this code (and datum 0 when given), or no error at all for code 0.
void expectError(const MCStatus& st, int code, int datum = -1) {
    EXPECT_EQ(st.IsError(), code != 0) << "code " << st.GetCode();
    EXPECT_EQ(st.GetCode(), code);
    if (datum >= 0) EXPECT_EQ(st.GetDiscreteDatum(0), datum);
}

// Applies each change in turn to the one settings record and validates after it.
struct Step {
    std::function<void(BSNSettings&)> change;
    int code, datum = -1;
};
void walk(BSNSettings& s, std::initializer_list<Step> steps) {
    for (const Step& step : steps) {
        SCOPED_TRACE(testing::Message() << "step " << (&step - steps.begin()));
        step.change(s);
        expectError(s.IsValidSettings(), step.code, step.datum);
    }
}

} // namespace

TEST(Validation, BinomialAndPoissonPriorLists) {
    BSNSettings post = binomial(3, BSNConst::Posterior);
    EXPECT_TRUE(post.IsValidSettings().IsOK());
    EXPECT_EQ(post.GetNullPrior1s(), (std::vector<double>{2.0, 2.0, 2.0}));
    EXPECT_EQ(post.GetNullPrior2s(), (std::vector<double>{2.0, 2.0, 2.0}));
    BSNSettings noFactors, noCovariates;
    walk(noFactors, {{[](S& s) { s.SetTestDistType(BSNConst::Binomial); }, 410031}});
    walk(noCovariates, {{[](S& s) { s.SetTestDistType(BSNConst::Poisson); }, 410039}});

    // Three test variables 10, 11, 12 asking for a Bayes factor. A short
    // alternative list names the variable index of the first entry without
    // a prior; a bad value names its position. A (0, 0) pair is the
    // binomial's Haldane prior but not a gamma prior.
    struct Case {
        BSNConst::DistTypes dist;
        std::vector<double> alt1, alt2, null2;
        int code, datum;
    };
    const auto B = BSNConst::Binomial, P = BSNConst::Poisson;
    const Case cases[] = {
        {B, {1, 1}, {1, 1, 1}, {}, 410018, 12},      {P, {1}, {1, 1, 1}, {}, 410018, 11},
        {B, {1, 0, 1}, {1, 0, 1}, {}, 0, -1},        {P, {1, 0, 1}, {1, 0, 1}, {}, 410018, 1},
        {B, {1, 0, 1}, {1, 1, 1}, {}, 410018, 1},    {B, {1, 2, 1}, {1, 1, 0}, {}, 410018, 2},
        {B, {1, 1, 1}, {1, 1, 1}, {2, -1, 2}, 410019, 1}, {P, {1, 1, 1}, {1, 1, 1}, {2, 2, 0}, 410019, 2},
        {P, {1, 1, 1}, {1, 1, 1}, {}, 0, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.dist << " case " << (&c - cases));
        BSNSettings s = binomial(3, BSNConst::BayesFactor);
        if (c.dist == P) {
            s.SetTestDistType(P);
            s.SetCovariates(s.GetFactors());
            s.SetFactors({});
        }
        s.SetAlterPrior1s(c.alt1);
        s.SetAlterPrior2s(c.alt2);
        if (!c.null2.empty()) s.SetNullPrior2s(c.null2);
        expectError(s.IsValidSettings(), c.code, c.datum);
    }
}

TEST(Validation, NormalRelatedAndIndependent) {
    BSNSettings normal, related, ind;
    walk(normal, {{[](S&) {}, 410039}, {[](S& s) { s.SetCovariates({0}); }, 0}});
    related.SetModelType(BSNConst::Related, true);
    walk(related, {{[](S& s) { s.SetCovariates({0, 1}); }, 410039}, {[](S& s) { s.Set2ndRelatedList({2, 3}); }, 0}});
    ind.SetModelType(BSNConst::Independent, true);
    walk(ind, {
        {[](S& s) { s.SetCovariates({0}); }, 410040},
        {[](S& s) { s.SetMeanDistType(BSNConst::Normal); }, 410019},
        {[](S& s) { s.SetMeanDistParam1(1); s.SetMeanDistParam2(1); s.SetMeanDistParam3(1); s.SetMeanDistParam4(1); },
         410002},
        {[](S& s) { s.SetDataVarVals({1.0, 0.0}); }, 410002},
        {[](S& s) { s.SetDataVarVals({1.0, 2.0}); }, 410040},
        {[](S& s) { s.SetGroupVar(3); }, 0},
        // Only the Bayes factor: the mean-distribution parameters are not
        // needed, but with unknown variances the variance prior's are.
        {[](S& s) {
             s.SetAnalysType(BSNConst::BayesFactor);
             s.SetDataVarVals({});
             s.SetMeanDistParam1(MCMV::Missing());
         },
         0},
        {[](S& s) { s.SetPriorDistType(BSNConst::InverseChiSquare); }, 410019},
    });
}

TEST(Validation, CorrelationLimits) {
    BSNSettings s;
    s.SetModelType(BSNConst::Correlation, true);
    walk(s, {{[](S& s) { s.SetCovariates({0}); }, 410004},
             {[](S& s) { s.SetCovariates({0, 1}); s.SetMaxNPlots(51); }, 410019, 51},
             {[](S& s) { s.SetMaxNPlots(50); s.SetNullValue(1.0); }, 410019}});
    EXPECT_EQ(s.IsValidSettings().GetScaleDatum(0), 1.0);
    walk(s, {{[](S& s) { s.SetNullValue(-0.99); }, 0}});
}

TEST(Validation, RegressionAndAnova) {
    BSNSettings r;
    r.SetModelType(BSNConst::Regression, true);
    walk(r, {
        {[](S&) {}, 410034},
        {[](S& s) { s.SetDependVar(0); }, 410035},
        {[](S& s) {
             s.SetCovariates({1, 2}); s.SetFactors({3}); s.SetFactorNCategs({4}); s.SetAnalysType(BSNConst::Both);
             s.SetCompareType(BSNConst::CompareFull); s.SetFullModCovariates({1, 2, 5});
         },
         410015},
        // The reference prior needs no prior parameters.
        {[](S& s) { s.SetFullModFactors({3}); s.SetFullModFactorNCategs({4}); }, 0},
        {[](S& s) { s.SetPriorType(BSNConst::Conjugate); }, 410019},
        {[](S& s) { s.SetPriorShape(1); s.SetPriorScale(1); s.SetPriorMeans(std::vector<double>(6, 0.0)); }, 410020},
        // Intercept + 2 covariates + 4 categories.
        {[](S& s) { s.SetPriorMeans(std::vector<double>(7, 0.0)); }, 0},
        {[](S& s) { s.SetPlotFactors({9}); }, 410032},
        {[](S& s) { s.SetPlotFactors({3}); s.SetPlotCovars({3}); }, 410033},
        {[](S& s) { s.SetPlotCovars({2}); s.SetRegressors({1.0, 2.0}); }, 0},
    });
    EXPECT_TRUE(r.GetRegressors().empty());
    ASSERT_EQ(r.GetWarningMessages().Size(), 1u);
    EXPECT_EQ(r.GetWarningMessages().Get(0).GetCode(), 410022);
    EXPECT_TRUE(r.GetWarningMessages().Get(0).IsWarning());

    BSNSettings a;
    a.SetModelType(BSNConst::Anova, true);
    walk(a, {
        {[](S& s) { s.SetDependVar(0); }, 410035},
        {[](S& s) { s.SetFactors({1}); s.SetFactorNCategs({3}); }, 0},
        {[](S& s) { s.SetPlotFactorCats({0, 3}); }, 410032, 3},
        {[](S& s) {
             s.SetPlotFactorCats({2}); s.SetPriorType(BSNConst::Conjugate); s.SetPriorShape(2); s.SetPriorScale(2);
             s.SetPriorMeans({0, 0});
         },
         410020},
        {[](S& s) { s.SetPriorMeans({0, 0, 0}); }, 0},
    });
}

TEST(Validation, LogLinearAndUnknownTypes) {
    BSNSettings s, other;
    s.SetModelType(BSNConst::LogLinear, true);
    walk(s, {{[](S& s) { s.SetFactors({2, 2}); }, 410049, 2},
             {[](S& s) { s.SetFactors({2}); }, 410049, 1},
             {[](S& s) { s.SetFactors({2, 3}); }, 0}});
    other.SetModelType(static_cast<BSNConst::ModelTypes>(7), false);
    EXPECT_TRUE(other.IsValidSettings().IsOK());
}

// The JSON reader checks the correlation and independent-samples
// adjustments; here the adjust flag and the way back to one sample.
TEST(Settings, ModelTypeAdjustsDependentDefaults) {
    BSNSettings noAdjust, regr;
    noAdjust.SetModelType(BSNConst::Regression, false);
    EXPECT_EQ(noAdjust.GetModelType(), BSNConst::Regression);
    EXPECT_EQ(noAdjust.GetMissScope(), BSNConst::MissingAnalysis);
    EXPECT_EQ(noAdjust.GetPriorType(), BSNConst::Conjugate);
    regr.SetModelType(BSNConst::Regression, true);
    EXPECT_EQ(regr.GetMissScope(), BSNConst::MissingListwise);
    EXPECT_EQ(regr.GetPriorType(), BSNConst::Reference);
    regr.SetModelType(BSNConst::OneSample, true);
    EXPECT_EQ(regr.GetMissScope(), BSNConst::MissingAnalysis);
    EXPECT_EQ(regr.GetPriorType(), BSNConst::Conjugate);
}

// What the JSON reader's refusal test does not reach: variable setters that
// refuse -1, and the default parameter of each Bayes-factor method.
TEST(Settings, SetterRulesRefuseBadValues) {
    BSNSettings s, rouder, zellner;
    EXPECT_FALSE(s.SetDependVar(-1));
    EXPECT_EQ(s.GetDependentVar(), -1);
    EXPECT_TRUE(s.SetDependVar(0));
    EXPECT_FALSE(s.SetFrequencyWeightVar(-2));
    EXPECT_FALSE(s.SetGroupVar(-1));
    EXPECT_FALSE(s.SetRegrWeightVar(-1));
    s.SetSecondGonenPar(-1.0);
    EXPECT_TRUE(MCMV::IsMissing(s.GetSecondGonenPar()));
    rouder.SetRegrCompType(BSNConst::Rouder);
    EXPECT_EQ(rouder.GetRegrComPar(), 1.0);
    zellner.SetRegrCompType(BSNConst::Zellner);
    EXPECT_TRUE(MCMV::IsMissing(zellner.GetRegrComPar()));
}
