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
    EXPECT_EQ(s.GetPriorDistType(), BSNConst::Diffuse);
    EXPECT_EQ(s.GetMeanDistType(), BSNConst::Diffuse);
    EXPECT_EQ(s.GetLogLinModel(), BSNConst::Multinomial);
    const std::pair<double, double> numbers[] = {
        {s.GetCILevel(), 95},          {s.GetMCSamples(), 10000},      {s.GetNPlotPoints(), 100},
        {s.GetPlotDomainLevel(), 0.005}, {s.GetProgressFrequency(), 50}, {s.GetMaxIterations(), 2000},
        {double(s.GetRandomSeed()), 2000000}, {s.GetTolValue(), 1e-06}, {s.GetKappaValue(), 1},
        {s.GetMemCacheKB(), 1048576},  {s.GetDependentVar(), -1},      {s.GetLogLinIntrinsicT(), -1}};
    for (const auto& [value, expected] : numbers) EXPECT_EQ(value, expected);
    for (double p : {s.GetPriorParam1(), s.GetPriorParam2(), s.GetPriorDistParam1(), s.GetPriorDistParam2(),
                     s.GetMeanDistParam1(), s.GetMeanDistParam2(), s.GetMeanDistParam3(), s.GetMeanDistParam4(),
                     s.GetPriorShape(), s.GetPriorScale(), s.GetRegrComPar(), s.GetSecondGonenPar()})
        EXPECT_TRUE(MCMV::IsMissing(p));
}

// The JSON reader checks the correlation and independent-samples
// adjustments; here the adjust flag and the way back to one sample.
TEST(Settings, ModelTypeAdjustsDependentDefaults) {
    BSNSettings noAdjust;
    noAdjust.SetModelType(BSNConst::Regression, false);
    EXPECT_EQ(noAdjust.GetModelType(), BSNConst::Regression);
    EXPECT_EQ(noAdjust.GetMissScope(), BSNConst::MissingAnalysis);
    EXPECT_EQ(noAdjust.GetPriorType(), BSNConst::Conjugate);

    BSNSettings regr;
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
    BSNSettings s;
    EXPECT_FALSE(s.SetDependVar(-1));
    EXPECT_EQ(s.GetDependentVar(), -1);
    EXPECT_TRUE(s.SetDependVar(0));
    EXPECT_FALSE(s.SetFrequencyWeightVar(-2));
    EXPECT_FALSE(s.SetGroupVar(-1));
    EXPECT_FALSE(s.SetRegrWeightVar(-1));
    s.SetSecondGonenPar(-1.0);
    EXPECT_TRUE(MCMV::IsMissing(s.GetSecondGonenPar()));

    BSNSettings rouder, zellner;
    rouder.SetRegrCompType(BSNConst::Rouder);
    EXPECT_EQ(rouder.GetRegrComPar(), 1.0);
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
    for (const char* line : {"Prior Distribution Type = Jeffreys 2", "Model Type = unrecognized",
                             "Progress Report Frequency: 50", "Prior Parameter 1: .", "End of display BSNSettings object"})
        EXPECT_NE(text.find(line), std::string::npos) << line;
}
