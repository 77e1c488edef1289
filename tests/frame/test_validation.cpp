#include <gtest/gtest.h>

#include "bsn/frame/bsnsettings.h"

using namespace MCBSN_850;
using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {

BSNSettings binomial(int nFactors, BSNConst::AnalysTypes type) {
    BSNSettings s;
    s.SetTestDistType(BSNConst::Binomial);
    std::vector<int> factors, sizes;
    for (int i = 0; i < nFactors; ++i) {
        factors.push_back(10 + i);
        sizes.push_back(2);
    }
    s.SetFactors(factors);
    s.SetFactorNCategs(sizes);
    s.SetAnalysType(type);
    return s;
}

// An error with this code (and datum 0), or no error at all for code 0.
void expectError(const MCStatus& st, int code, int datum = -1) {
    EXPECT_EQ(st.IsError(), code != 0) << "code " << st.GetCode();
    EXPECT_EQ(st.GetCode(), code);
    if (datum >= 0) {
        EXPECT_EQ(st.GetDiscreteDatum(0), datum);
    }
}

} // namespace

TEST(Validation, BinomialAndPoissonPriorLists) {
    BSNSettings post = binomial(3, BSNConst::Posterior);
    EXPECT_TRUE(post.IsValidSettings().IsOK());
    EXPECT_EQ(post.GetNullPrior1s(), (std::vector<double>{2.0, 2.0, 2.0}));
    EXPECT_EQ(post.GetNullPrior2s(), (std::vector<double>{2.0, 2.0, 2.0}));
    BSNSettings noFactors;
    noFactors.SetTestDistType(BSNConst::Binomial);
    expectError(noFactors.IsValidSettings(), 410031);
    BSNSettings noCovariates;
    noCovariates.SetTestDistType(BSNConst::Poisson);
    expectError(noCovariates.IsValidSettings(), 410039);

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
    BSNSettings normal;
    expectError(normal.IsValidSettings(), 410039);
    normal.SetCovariates({0});
    EXPECT_TRUE(normal.IsValidSettings().IsOK());

    BSNSettings related;
    related.SetModelType(BSNConst::Related, true);
    related.SetCovariates({0, 1});
    expectError(related.IsValidSettings(), 410039);
    related.Set2ndRelatedList({2, 3});
    EXPECT_TRUE(related.IsValidSettings().IsOK());

    BSNSettings ind;
    ind.SetModelType(BSNConst::Independent, true);
    ind.SetCovariates({0});
    expectError(ind.IsValidSettings(), 410040);
    ind.SetMeanDistType(BSNConst::Normal);
    expectError(ind.IsValidSettings(), 410019);
    for (auto set : {&BSNSettings::SetMeanDistParam1, &BSNSettings::SetMeanDistParam2, &BSNSettings::SetMeanDistParam3,
                     &BSNSettings::SetMeanDistParam4})
        (ind.*set)(1.0);
    expectError(ind.IsValidSettings(), 410002);
    ind.SetDataVarVals({1.0, 0.0});
    expectError(ind.IsValidSettings(), 410002);
    ind.SetDataVarVals({1.0, 2.0});
    expectError(ind.IsValidSettings(), 410040);
    ind.SetGroupVar(3);
    EXPECT_TRUE(ind.IsValidSettings().IsOK());
    // Only the Bayes factor: the mean-distribution parameters are not
    // needed, but with unknown variances the variance prior's are.
    ind.SetAnalysType(BSNConst::BayesFactor);
    ind.SetDataVarVals({});
    ind.SetMeanDistParam1(MCMV::Missing());
    EXPECT_TRUE(ind.IsValidSettings().IsOK());
    ind.SetPriorDistType(BSNConst::InverseChiSquare);
    expectError(ind.IsValidSettings(), 410019);
}

TEST(Validation, CorrelationLimits) {
    BSNSettings s;
    s.SetModelType(BSNConst::Correlation, true);
    s.SetCovariates({0});
    expectError(s.IsValidSettings(), 410004);
    s.SetCovariates({0, 1});
    s.SetMaxNPlots(51);
    expectError(s.IsValidSettings(), 410019, 51);
    s.SetMaxNPlots(50);
    s.SetNullValue(1.0);
    expectError(s.IsValidSettings(), 410019);
    EXPECT_EQ(s.IsValidSettings().GetScaleDatum(0), 1.0);
    s.SetNullValue(-0.99);
    EXPECT_TRUE(s.IsValidSettings().IsOK());
}

TEST(Validation, RegressionAndAnova) {
    BSNSettings r;
    r.SetModelType(BSNConst::Regression, true);
    expectError(r.IsValidSettings(), 410034);
    r.SetDependVar(0);
    expectError(r.IsValidSettings(), 410035);
    r.SetCovariates({1, 2});
    r.SetFactors({3});
    r.SetFactorNCategs({4});
    r.SetAnalysType(BSNConst::Both);
    r.SetCompareType(BSNConst::CompareFull);
    r.SetFullModCovariates({1, 2, 5});
    expectError(r.IsValidSettings(), 410015);
    r.SetFullModFactors({3});
    r.SetFullModFactorNCategs({4});
    EXPECT_TRUE(r.IsValidSettings().IsOK());  // reference prior: no prior parameters needed
    r.SetPriorType(BSNConst::Conjugate);
    expectError(r.IsValidSettings(), 410019);
    r.SetPriorShape(1);
    r.SetPriorScale(1);
    r.SetPriorMeans(std::vector<double>(6, 0.0));
    expectError(r.IsValidSettings(), 410020);
    r.SetPriorMeans(std::vector<double>(7, 0.0));  // intercept + 2 covariates + 4 categories
    EXPECT_TRUE(r.IsValidSettings().IsOK());
    r.SetPlotFactors({9});
    expectError(r.IsValidSettings(), 410032);
    r.SetPlotFactors({3});
    r.SetPlotCovars({3});
    expectError(r.IsValidSettings(), 410033);
    r.SetPlotCovars({2});
    r.SetRegressors({1.0, 2.0});
    EXPECT_TRUE(r.IsValidSettings().IsOK());
    EXPECT_TRUE(r.GetRegressors().empty());
    ASSERT_EQ(r.GetWarningMessages().Size(), 1u);
    EXPECT_EQ(r.GetWarningMessages().Get(0).GetCode(), 410022);
    EXPECT_TRUE(r.GetWarningMessages().Get(0).IsWarning());

    BSNSettings a;
    a.SetModelType(BSNConst::Anova, true);
    a.SetDependVar(0);
    expectError(a.IsValidSettings(), 410035);
    a.SetFactors({1});
    a.SetFactorNCategs({3});
    EXPECT_TRUE(a.IsValidSettings().IsOK());
    a.SetPlotFactorCats({0, 3});
    expectError(a.IsValidSettings(), 410032, 3);
    a.SetPlotFactorCats({2});
    a.SetPriorType(BSNConst::Conjugate);
    a.SetPriorShape(2);
    a.SetPriorScale(2);
    a.SetPriorMeans({0, 0});
    expectError(a.IsValidSettings(), 410020);
    a.SetPriorMeans({0, 0, 0});
    EXPECT_TRUE(a.IsValidSettings().IsOK());
}

TEST(Validation, LogLinearAndUnknownTypes) {
    BSNSettings s;
    s.SetModelType(BSNConst::LogLinear, true);
    s.SetFactors({2, 2});
    expectError(s.IsValidSettings(), 410049, 2);
    s.SetFactors({2});
    expectError(s.IsValidSettings(), 410049, 1);
    s.SetFactors({2, 3});
    EXPECT_TRUE(s.IsValidSettings().IsOK());

    BSNSettings other;
    other.SetModelType(static_cast<BSNConst::ModelTypes>(7), false);
    EXPECT_TRUE(other.IsValidSettings().IsOK());
}
