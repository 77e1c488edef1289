#include <gtest/gtest.h>

#include <sstream>

#include "bsn/frame/bsnsettings.h"

using namespace MCBSN_850;
using MCCommon_850::MCMV;

TEST(Settings, DefaultsAreThoseAHostExpects) {
    const BSNSettings s;
    EXPECT_EQ(s.GetModelType(), BSNConst::OneSample);
    EXPECT_EQ(s.GetTestDistType(), BSNConst::Normal);
    EXPECT_EQ(s.GetAnalysType(), BSNConst::Posterior);
    EXPECT_EQ(s.GetCILevel(), 95.0);
    EXPECT_EQ(s.GetMCSamples(), 10000);
    EXPECT_EQ(s.GetNPlotPoints(), 100);
    EXPECT_EQ(s.GetPlotDomainLevel(), 0.005);
    EXPECT_EQ(s.GetProgressFrequency(), 50);
    EXPECT_EQ(s.GetMaxIterations(), 2000);
    EXPECT_EQ(s.GetRandomSeed(), 2000000UL);
    EXPECT_EQ(s.GetTolValue(), 1e-06);
    EXPECT_EQ(s.GetPriorDistType(), BSNConst::Diffuse);
    EXPECT_EQ(s.GetMeanDistType(), BSNConst::Diffuse);
    EXPECT_EQ(s.GetLogLinModel(), BSNConst::Multinomial);
    EXPECT_EQ(s.GetKappaValue(), 1.0);
    EXPECT_EQ(s.GetMemCacheKB(), 1048576);
    EXPECT_EQ(s.GetDependentVar(), -1);
    EXPECT_EQ(s.GetLogLinIntrinsicT(), -1);
    for (double p : {s.GetPriorParam1(), s.GetPriorParam2(), s.GetPriorDistParam1(), s.GetPriorDistParam2(),
                     s.GetMeanDistParam1(), s.GetMeanDistParam2(), s.GetMeanDistParam3(), s.GetMeanDistParam4(),
                     s.GetPriorShape(), s.GetPriorScale(), s.GetRegrComPar(), s.GetSecondGonenPar()})
        EXPECT_TRUE(MCMV::IsMissing(p));
}

TEST(Settings, ModelTypeAdjustsDependentDefaults) {
    BSNSettings corr;
    corr.SetModelType(BSNConst::Correlation, true);
    EXPECT_EQ(corr.GetTolValue(), 0.0001);

    BSNSettings userTol;
    userTol.SetTolValue(1e-05);
    userTol.SetModelType(BSNConst::Correlation, true);
    EXPECT_EQ(userTol.GetTolValue(), 1e-05);

    BSNSettings noAdjust;
    noAdjust.SetModelType(BSNConst::Regression, false);
    EXPECT_EQ(noAdjust.GetModelType(), BSNConst::Regression);
    EXPECT_EQ(noAdjust.GetMissScope(), BSNConst::MissingAnalysis);
    EXPECT_EQ(noAdjust.GetPriorType(), BSNConst::Conjugate);

    BSNSettings regr;
    regr.SetModelType(BSNConst::Regression, true);
    EXPECT_EQ(regr.GetMissScope(), BSNConst::MissingListwise);
    EXPECT_EQ(regr.GetPriorType(), BSNConst::Reference);

    BSNSettings indep;
    indep.SetModelType(BSNConst::Independent, true);
    EXPECT_EQ(indep.GetMissScope(), BSNConst::MissingListwise);
    EXPECT_EQ(indep.GetRegrCompType(), BSNConst::Rouder);

    // Back to one sample: the dependent defaults are reset again.
    regr.SetModelType(BSNConst::OneSample, true);
    EXPECT_EQ(regr.GetMissScope(), BSNConst::MissingAnalysis);
    EXPECT_EQ(regr.GetPriorType(), BSNConst::Conjugate);
}

TEST(Settings, SetterRulesRefuseBadValues) {
    BSNSettings s;
    s.SetNCases(-5);
    EXPECT_EQ(s.GetNCases(), 0);
    EXPECT_FALSE(s.SetDependVar(-1));
    EXPECT_EQ(s.GetDependentVar(), -1);
    EXPECT_TRUE(s.SetDependVar(0));
    EXPECT_EQ(s.GetDependentVar(), 0);
    EXPECT_FALSE(s.SetFrequencyWeightVar(-2));
    EXPECT_FALSE(s.SetGroupVar(-1));
    EXPECT_FALSE(s.SetRegrWeightVar(-1));

    s.SetProgressFrequency(0);
    EXPECT_EQ(s.GetProgressFrequency(), 50);
    s.SetProgressFrequency(7);
    EXPECT_EQ(s.GetProgressFrequency(), 7);
    s.SetSecondGonenPar(-1.0);
    EXPECT_TRUE(MCMV::IsMissing(s.GetSecondGonenPar()));
    s.SetSecondGonenPar(0.5);
    EXPECT_EQ(s.GetSecondGonenPar(), 0.5);

    s.SetFactors({3, 4});
    EXPECT_TRUE(s.SetFactorNCategs({2, 3}));
    EXPECT_FALSE(s.SetFactorNCategs({2, 0}));
    EXPECT_FALSE(s.SetFactorNCategs({2}));
    EXPECT_EQ(s.GetFactorSizes(), (std::vector<int>{2, 3}));
    s.SetFullModFactors({1});
    EXPECT_FALSE(s.SetFullModFactorNCategs({-1}));
    EXPECT_TRUE(s.SetFullModFactorNCategs({4}));

    s.SetCovariates({0, 1});
    EXPECT_FALSE(s.Set2ndRelatedList({2}));
    EXPECT_TRUE(s.Get2ndRelatedList().empty());
    EXPECT_TRUE(s.Set2ndRelatedList({2, 3}));

    BSNSettings hyper;
    hyper.SetRegrCompType(BSNConst::Hyper);
    EXPECT_EQ(hyper.GetRegrComPar(), 3.0);
    BSNSettings rouder;
    rouder.SetRegrCompType(BSNConst::Rouder);
    EXPECT_EQ(rouder.GetRegrComPar(), 1.0);
    BSNSettings given;
    given.SetRegrComPar(0.7);
    given.SetRegrCompType(BSNConst::Hyper);
    EXPECT_EQ(given.GetRegrComPar(), 0.7);
    BSNSettings zellner;
    zellner.SetRegrCompType(BSNConst::Zellner);
    EXPECT_TRUE(MCMV::IsMissing(zellner.GetRegrComPar()));
}

TEST(Settings, CopiesAreIndependentValues) {
    BSNSettings a;
    a.SetCovariates({1, 2});
    a.GetWarningMessages().AddWarning(MCCommon_850::MCStatus(410022, true));
    BSNSettings b = a;
    a.SetCovariates({5});
    a.GetWarningMessages().Clear();
    EXPECT_EQ(b.GetCovariates(), (std::vector<int>{1, 2}));
    EXPECT_EQ(b.GetWarningMessages().Size(), 1u);
}

TEST(Settings, DisplayNamesEveryFieldAndEnumerationText) {
    BSNSettings s;
    s.SetPriorDistType(BSNConst::Jeffreys2);
    s.SetModelType(static_cast<BSNConst::ModelTypes>(9), false);
    std::ostringstream os;
    s.Display(os);
    const std::string text = os.str();
    EXPECT_EQ(text.find("BSNSettings display start"), 0u);
    EXPECT_NE(text.find("Prior Distribution Type = Jeffreys 2"), std::string::npos);
    EXPECT_NE(text.find("Model Type = unrecognized"), std::string::npos);
    EXPECT_NE(text.find("Progress Report Frequency: 50"), std::string::npos);
    EXPECT_NE(text.find("Prior Parameter 1: ."), std::string::npos);
    EXPECT_NE(text.find("End of display BSNSettings object"), std::string::npos);
    // Declaration order: the model type comes first, the progress frequency last.
    EXPECT_LT(text.find("Model Type"), text.find("Number of cases"));
    EXPECT_LT(text.find("Max memory cache limit"), text.find("Progress Report Frequency"));
}
