// What the one-sample binomial and Poisson procedures share: the build
// order and its errors, frequency weights, progress and cancellation; each
// case runs for both.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "bsn/onesample/bsn1samplebinooutputstats.h"
#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "discrete_test_support.h"

using namespace discrete_test;
using namespace MCBSN_850;
namespace C = MCBSN_850::BSNConst;

namespace {

// Column 0 is free for weights; alternative prior Beta(1, 1) or
// Gamma(1.5, 0.5), posterior prior (1, 1).
BSNSettings settingsFor(C::DistTypes dist, C::AnalysTypes type, const std::vector<int>& vars = {1}) {
    const bool bino = dist == C::Binomial;
    return discreteSettings(dist, vars, type, 1, 1, bino ? 1.0 : 1.5, bino ? 1.0 : 0.5);
}

} // namespace

TEST(OneSampleDiscrete, BuildErrors) {
    for (auto dist : {C::Binomial, C::Poisson}) {
        SCOPED_TRACE(dist);
        BSNSettings s = settingsFor(dist, C::Both);
        Build empty(s, {{}, {}});
        EXPECT_EQ(empty.status.GetCode(), 410003);
        EXPECT_EQ(empty.component.GetOutputStats(), nullptr);
        // No usable value, whichever worker makes the pass.
        for (auto type : {C::Posterior, C::BayesFactor, C::Both}) {
            s.SetAnalysType(type);
            Build run(s, {{1, 1, 1}, {kMiss, -2, kMiss}});
            EXPECT_EQ(run.status.GetCode(), 410003) << type;
            EXPECT_EQ(run.component.GetOutputStats(), nullptr);
        }
        s.SetAnalysType(C::Both);
        s.SetPriorType(C::Reference);
        Build reference(s, {{1, 1}, {1, 0}});
        EXPECT_TRUE(reference.status.IsError() && reference.status.GetCode() == 410017) << reference.status.GetCode();
        // A missing posterior parameter ends the build; the factor stage's
        // warning raised before it survives.
        s.SetPriorType(C::Conjugate);
        s.SetPriorParam2(kMiss);
        s.SetAlterPrior1s({});
        Build missing(s, {{1, 1}, {1, 0}});
        EXPECT_TRUE(missing.status.IsError() && missing.status.GetCode() == 410019) << missing.status.GetCode();
        EXPECT_FALSE(missing.component.IsModelBuilt());
        EXPECT_TRUE(missing.HasWarning(410018, 0));
    }
}

TEST(OneSampleDiscrete, ProgressAndCancellation) {
    const std::vector<double> ones(10, 1.0), ten{1, 0, 1, 0, 1, 0, 1, 0, 1, 0};
    for (auto dist : {C::Binomial, C::Poisson}) {
        SCOPED_TRACE(dist);
        // Posterior only for the Poisson: its own posterior pass reports too.
        BSNSettings s = settingsFor(dist, dist == C::Binomial ? C::Both : C::Posterior);
        s.SetProgressFrequency(3);
        bsntest::RecordCounts listener;
        s.SetProgressListener(&listener);
        {
            // The final report comes even right after a regular one.
            Build run(s, {std::vector<double>(9, 1.0), std::vector<double>(ten.begin(), ten.begin() + 9)});
            EXPECT_TRUE(run.status.IsOK());
            EXPECT_EQ(listener.counts, (std::vector<int>{3, 6, 9, 9}));
        }
        // A cancellation inside the pass ends the build with the bare code 1.
        bsntest::CancelAfter cancel(4);
        s.SetCancelPointer(&cancel);
        {
            Build run(s, {ones, ten});
            EXPECT_EQ(run.status.GetCode(), 1);
            EXPECT_EQ(run.component.GetOutputStats(), nullptr);
        }
        // One raised after the pass (from the final report) skips the
        // remaining stages and the result without an error.
        MCCommon_850::MCAtomicCancel flag;
        s.SetCancelPointer(&flag);
        listener.onNotify = [&] {
            if (listener.counts.back() == 10) flag.Cancel();
        };
        Build run(s, {ones, ten});
        EXPECT_FALSE(run.status.IsError());
        EXPECT_EQ(run.component.GetOutputStats(), nullptr);
    }
}

TEST(OneSampleDiscrete, FrequencyWeightsAreRoundedHalfUp) {
    // Weights 2.4 -> 2, 2.5 -> 3; 0.49, −3 and missing skip their records.
    const std::vector<double> w{2.4, 2.5, 0.49, -3, kMiss};
    BSNSettings s = settingsFor(C::Binomial, C::Both);
    s.SetFrequencyWeightVar(0);
    Build bino(s, {w, {1, 0, 1, 1, 1}});
    ASSERT_TRUE(bino.status.IsOK());
    const auto* b = &bino.Result<BSN1SampleBinoOutputStats>();
    EXPECT_EQ((std::vector{b->GetNs()[0], b->GetCat1Indices()[0], b->GetCat1Ns()[0], b->GetCat2Ns()[0]}),
              (std::vector<double>{5, 1, 2, 3}));
    EXPECT_DOUBLE_EQ(b->GetCat1Props()[0], 0.4);
    EXPECT_DOUBLE_EQ(b->GetCat2Props()[0], 0.6);
    EXPECT_NEAR(b->GetLogBayesFactors()[0], lnBeta(4, 5) - lnBeta(2, 2) - lnBeta(3, 4) + lnBeta(1, 1), 1e-13);
    EXPECT_NEAR(b->GetMeanValues()[0], 3.0 / 7.0, 1e-15);  // Beta(3, 4)

    s = settingsFor(C::Poisson, C::Both);
    s.SetFrequencyWeightVar(0);
    Build pois(s, {w, {3.9, 1, 100, 100, 100}});
    ASSERT_TRUE(pois.status.IsOK());
    const auto* p = &pois.Result<BSN1SamplePoisnOutputStats>();
    EXPECT_EQ((std::vector{p->GetNs()[0], p->GetMinCnts()[0], p->GetMaxCnts()[0]}), (std::vector<double>{5, 1, 3}));
    EXPECT_EQ(p->GetLikelihoodParams()[0], (std::pair<double, double>{-5.0, 9.0}));
    EXPECT_NEAR(p->GetMeanValues()[0], 10.0 / 6.0, 1e-15);
    EXPECT_NEAR(p->GetLogBayesFactors()[0], lnGammaMarginal(2, 2, 5, 9) - lnGammaMarginal(1.5, 0.5, 5, 9), 1e-13);
}

TEST(OneSampleDiscrete, PoissonPriorWarningComesBeforeTheLogWarning) {
    // A rate of 500 seen a million times: the null Gamma(2, 2) has almost no
    // mass there (v1: the log is stored), and v2 has no alternative.
    BSNSettings s = settingsFor(C::Poisson, C::BayesFactor, {1, 2});
    s.SetFrequencyWeightVar(0);
    s.SetAlterPrior1s({500.0});
    s.SetAlterPrior2s({1.0});
    Build run(s, {{1e6}, {500}, {500}});
    ASSERT_TRUE(run.status.IsOK());
    EXPECT_EQ(run.As<BSN1SamplePoisnOutputStats>()->GetIsLogBayesFactor(), (std::vector<bool>{true, false}));
    EXPECT_EQ(run.WarningCodes(), (std::vector<int>{410018, 410041}));
    EXPECT_TRUE(run.HasWarning(410018, 1));
}
