// The one-sample normal procedure end to end through the component: the
// data pass (weights, per-variable missing values, progress), the
// classical statistics and their warnings, the stages chosen by the
// analysis type, cancellation and the result object.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "tests/onesample/normaltestsupport.h"

using namespace normaltest;
using MCBSN_850::BSN1SampleNormOutputStats;

namespace {

BSNSettings normalSettings(std::vector<int> vars, BC::AnalysTypes type) {
    BSNSettings s;
    s.SetModelType(BC::OneSample, false);
    s.SetTestDistType(BC::Normal);
    s.SetAnalysType(type);
    s.SetCovariates(vars);
    s.SetMeanDistType(BC::Diffuse);
    s.SetPriorDistType(BC::Jeffreys2);
    return s;
}

const BSN1SampleNormOutputStats& output(const NormalRun& r) { return r.result<BSN1SampleNormOutputStats>(); }

} // namespace

TEST(NormalDriver, FrequencyWeightsAreRoundedHalfUp) {
    // Weights 2.4, 2.5, 0.49, -3 and missing count as 2, 3, 0, 0, 0 cases.
    const std::vector<double> x = {1.0, 5.0, 100.0, 200.0, 300.0};
    const std::vector<double> w = {2.4, 2.5, 0.49, -3.0, kMiss};
    BSNSettings s = normalSettings({0}, BC::Posterior);
    s.SetFrequencyWeightVar(1);
    NormalRun r(s, {x, w});
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_TRUE(r.component.IsModelBuilt());
    const auto& o = output(r);
    const Moments m = moments({1.0, 5.0}, {2.0, 3.0});  // N 5, mean 3.4, variance 4.8
    EXPECT_DOUBLE_EQ(o.GetNs()[0], 5.0);
    EXPECT_NEAR(o.GetMeanValues()[0], m.mean, 1e-12);
    EXPECT_NEAR(o.GetStdDevs()[0], std::sqrt(m.var), 1e-12);
    EXPECT_NEAR(o.GetEMs()[0], std::sqrt(m.var / 5.0), 1e-12);
    EXPECT_DOUBLE_EQ(o.GetDFValues()[0], 4.0);
    EXPECT_EQ(o.GetVarIndices(), std::vector<int>{0});
    EXPECT_EQ(o.GetModelType(), BC::OneSample);
    EXPECT_EQ(o.GetOutputType(), BC::Output1SampleNormal);
    EXPECT_EQ(o.GetSettings().GetFrequencyWeightVar(), 1);
}

TEST(NormalDriver, MissingValuesAreExcludedPerVariable) {
    // Variable 0 is missing where variable 1 is present and the other way
    // round; each keeps its own cases.
    // NaN and infinity in the data count as missing values.
    const std::vector<double> a = {2.0, std::nan(""), 4.5, 3.0, 7.25, HUGE_VAL, 1.0};
    const std::vector<double> b = {kMiss, 10.0, 12.5, kMiss, 9.0, 11.0, 14.0};
    // Listwise-deletion setting changes nothing for this procedure.
    BSNSettings s = normalSettings({1, 0}, BC::Posterior);
    s.SetMissScope(BC::MissingListwise);
    NormalRun r(s, {a, b});
    ASSERT_TRUE(r.status.IsOK());
    const auto& o = output(r);
    const Moments ma = moments({2.0, 4.5, 3.0, 7.25, 1.0});
    const Moments mb = moments({10.0, 12.5, 9.0, 11.0, 14.0});
    EXPECT_EQ(o.GetVarIndices(), (std::vector<int>{1, 0}));
    EXPECT_EQ(o.GetNs(), (std::vector<double>{5.0, 5.0}));
    EXPECT_NEAR(o.GetMeanValues()[0], mb.mean, 1e-12);
    EXPECT_NEAR(o.GetMeanValues()[1], ma.mean, 1e-12);
    EXPECT_NEAR(o.GetStdDevs()[0], std::sqrt(mb.var), 1e-12);
    EXPECT_NEAR(o.GetStdDevs()[1], std::sqrt(ma.var), 1e-12);
    EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
}

TEST(NormalDriver, ConstantAndTooSmallVariables) {
    const std::vector<double> good = {1.0, 2.0, 4.0, 3.5};
    const std::vector<double> constant = {2.5, 2.5, kMiss, 2.5};
    const std::vector<double> single = {kMiss, 6.0, kMiss, kMiss};
    const std::vector<double> none(4, kMiss);
    BSNSettings s = normalSettings({0, 1, 2, 3}, BC::Both);
    s.SetEstBFType(BC::Simple);
    s.SetAlterGValues({1.0, 1.0, 1.0, 1.0});
    NormalRun r(s, {good, constant, single, none});
    ASSERT_TRUE(r.status.IsOK());
    const auto& o = output(r);

    // Warnings in variable order, each naming the variable's position.
    const auto& warnings = r.component.GetWarningMessages();
    ASSERT_EQ(r.warningCodes(), (std::vector<int>{410010, 410025, 410025}));
    EXPECT_EQ(warnings.Get(0).GetDiscreteDatum(0), 1);
    EXPECT_EQ(warnings.Get(1).GetDiscreteDatum(0), 2);
    EXPECT_EQ(warnings.Get(2).GetDiscreteDatum(0), 3);
    EXPECT_TRUE(warnings.Get(0).IsWarning());

    // Constant: sd and se 0, df N - 1, the mean; no t, factor or posterior.
    EXPECT_DOUBLE_EQ(o.GetNs()[1], 3.0);
    EXPECT_DOUBLE_EQ(o.GetDFValues()[1], 2.0);
    EXPECT_DOUBLE_EQ(o.GetMeanValues()[1], 2.5);
    EXPECT_EQ(o.GetStdDevs()[1], 0.0);
    EXPECT_EQ(o.GetEMs()[1], 0.0);
    EXPECT_EQ(o.GetTValues()[1], kMiss);
    EXPECT_EQ(o.GetSigs()[1], kMiss);
    EXPECT_EQ(o.GetBayesFactors()[1], kMiss);
    EXPECT_EQ(o.GetPostMeanValues()[1], kMiss);

    // One case: df 0 and the mean, no spread.
    EXPECT_DOUBLE_EQ(o.GetNs()[2], 1.0);
    EXPECT_DOUBLE_EQ(o.GetDFValues()[2], 0.0);
    EXPECT_DOUBLE_EQ(o.GetMeanValues()[2], 6.0);
    EXPECT_EQ(o.GetStdDevs()[2], kMiss);
    EXPECT_EQ(o.GetEMs()[2], kMiss);
    EXPECT_EQ(o.GetTValues()[2], kMiss);

    // No case: N 0, everything else missing.
    EXPECT_DOUBLE_EQ(o.GetNs()[3], 0.0);
    for (const auto* v : {&o.GetDFValues(), &o.GetMeanValues(), &o.GetStdDevs(), &o.GetEMs(), &o.GetTValues(),
                          &o.GetBayesFactors(), &o.GetPostMeanValues(), &o.GetLowerLimits()})
        EXPECT_EQ((*v)[3], kMiss);

    // The good variable has everything.
    EXPECT_FALSE(MCMV::IsMissing(o.GetTValues()[0]));
    EXPECT_FALSE(MCMV::IsMissing(o.GetBayesFactors()[0]));
    EXPECT_FALSE(MCMV::IsMissing(o.GetPostMeanValues()[0]));
}

TEST(NormalDriver, TTestAndFactorAreWiredToTheCalculator) {
    // Mean 3 against null value 3: t = 0, so the Simple factor is
    // sqrt(1 + N g). The second variable's t is checked against the
    // textbook one-sample t.
    const std::vector<double> x = {1.0, 2.0, 3.0, 4.0, 5.0};
    const std::vector<double> y = {2.2, 3.9, 3.1, 5.6, 4.4};
    BSNSettings s = normalSettings({0, 1}, BC::BayesFactor);
    s.SetEstBFType(BC::Simple);
    s.SetNullValues({3.0, 2.5});
    s.SetAlterGValues({2.0, 0.5});
    NormalRun r(s, {x, y});
    ASSERT_TRUE(r.status.IsOK()) << r.status.GetCode();
    const auto& o = output(r);
    EXPECT_NEAR(o.GetTValues()[0], 0.0, 1e-12);
    EXPECT_NEAR(o.GetSigs()[0], 1.0, 1e-12);
    EXPECT_NEAR(o.GetBayesFactors()[0], std::sqrt(1.0 + 5.0 * 2.0), 1e-10);

    const Moments m = moments(y);
    const double t = (m.mean - 2.5) / std::sqrt(m.var / m.n);
    EXPECT_NEAR(o.GetTValues()[1], t, 1e-10);
    EXPECT_NEAR(o.GetSigs()[1], 2 * bm::cdf(bm::complement(bm::students_t(4.0), std::fabs(t))), 1e-10);
    EXPECT_GT(o.GetBayesFactors()[1], 0.0);

    // Factor-only mode: no posterior, no curves.
    EXPECT_TRUE(o.GetPostMeanValues().empty());
    EXPECT_TRUE(o.GetModeValues().empty());
    EXPECT_TRUE(o.GetLowerLimits().empty());
    EXPECT_TRUE(o.GetPlotPosterior().empty());
    EXPECT_TRUE(o.GetPlotArguments4Likelihoods().empty());

    // A Simple factor without g values is a settings error: no result.
    s.SetAlterGValues({});
    NormalRun bad(s, {x, y});
    EXPECT_EQ(bad.status.GetCode(), 410019);
    EXPECT_TRUE(bad.status.IsError());
    EXPECT_FALSE(bad.component.IsModelBuilt());
    EXPECT_EQ(bad.component.GetOutputStats(), nullptr);
}

TEST(NormalDriver, ErrorsAndCancellation) {
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    {
        NormalRun r(normalSettings({0}, BC::Posterior), {std::vector<double>{}});
        EXPECT_EQ(r.status.GetCode(), 410003);
        EXPECT_TRUE(r.status.IsError());
        EXPECT_EQ(r.component.GetStatus().GetCode(), 410003);
        EXPECT_FALSE(r.component.IsModelBuilt());
        EXPECT_EQ(r.component.GetOutputStats(), nullptr);
        EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
    }
    {
        NormalRun r(normalSettings({}, BC::Posterior), {x});
        EXPECT_EQ(r.status.GetCode(), 410004);
        EXPECT_EQ(r.component.GetOutputStats(), nullptr);
    }
    {
        // Cancelled at the first progress report, inside the pass: the bare
        // status 1.
        MCCommon_850::MCAtomicCancel cancel;
        CancellingListener listener(cancel, 1);
        BSNSettings s = normalSettings({0}, BC::Both);
        s.SetCancelPointer(&cancel);
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(2);
        NormalRun r(s, {x});
        EXPECT_EQ(r.status.GetCode(), 1);
        EXPECT_TRUE(r.status.IsError());
        EXPECT_FALSE(r.component.IsModelBuilt());
        EXPECT_EQ(r.component.GetOutputStats(), nullptr);
        EXPECT_EQ(listener.records, std::vector<int>{2});
    }
    {
        // Cancelled at the pass's final report, i.e. after the last record:
        // noticed between stages, 410016.
        MCCommon_850::MCAtomicCancel cancel;
        CancellingListener listener(cancel, 1);
        BSNSettings s = normalSettings({0}, BC::Both);
        s.SetCancelPointer(&cancel);
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(100);
        NormalRun r(s, {x});
        EXPECT_EQ(r.status.GetCode(), 410016);
        EXPECT_TRUE(r.status.IsError());
        EXPECT_FALSE(r.component.IsModelBuilt());
        EXPECT_EQ(r.component.GetOutputStats(), nullptr);
        EXPECT_EQ(listener.records, std::vector<int>{6});
    }
    {
        // Cancel pointer handed over after construction, cancelled before
        // the build: seen right after the first step, before any record.
        MCCommon_850::MCAtomicCancel cancel;
        cancel.Cancel();
        std::vector<std::vector<double>> cols = {x};
        MCCommon_850::ColumnRecordIter iter(cols);
        MCBSN_850::BSNComponent c(normalSettings({0}, BC::Posterior), makeVarList(1));
        c.SetCancelPtr(&cancel);
        EXPECT_EQ(c.BuildModel(iter).GetCode(), 410016);
    }
}

TEST(NormalDriver, ProgressReportsAndResultCopies) {
    // Six records, a report every 2: 2, 4, 6 and no repeat of 6 at the end;
    // five records: 2, 4 and the final 5.
    for (const auto& [n, expected] : {std::pair{6, std::vector<int>{2, 4, 6}}, std::pair{5, std::vector<int>{2, 4, 5}}}) {
        MCCommon_850::MCAtomicCancel cancel;
        CancellingListener listener(cancel, 1000);
        BSNSettings s = normalSettings({0}, BC::Posterior);
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(2);
        std::vector<double> x;
        for (int i = 0; i < n; ++i) x.push_back(1.0 + i * i);
        NormalRun r(s, {x});
        ASSERT_TRUE(r.status.IsOK());
        EXPECT_EQ(listener.records, expected);
    }

    // Posterior-only results: no factor vectors; the result object copies
    // and can be refilled, and its dump names the class.
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun r(normalSettings({0}, BC::Posterior), {x});
    const auto& o = output(r);
    EXPECT_TRUE(o.GetBayesFactors().empty());
    EXPECT_TRUE(o.GetTValues().empty());
    EXPECT_EQ(o.GetPostMeanValues().size(), 1u);
    BSN1SampleNormOutputStats copy(o);
    EXPECT_EQ(copy.GetPlotPosterior(), o.GetPlotPosterior());
    const double nan = std::nan("");
    copy.SetOutputValues(o.GetSettings(), {4}, {nan}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11}, {12});
    EXPECT_EQ(copy.GetVarIndices(), std::vector<int>{4});
    EXPECT_EQ(copy.GetBayesFactors(), std::vector<double>{kMiss});
    EXPECT_EQ(copy.GetMeanValues(), std::vector<double>{12});
    EXPECT_EQ(copy.GetUpperLimits(), std::vector<double>{11});
    EXPECT_EQ(copy.GetPlotPosterior(), o.GetPlotPosterior());
    std::ostringstream dump;
    r.component.Display(dump);
    EXPECT_NE(dump.str().find("BSN1SampleNormal display start"), std::string::npos);
    EXPECT_NE(dump.str().find("End of display BSN1SampleNormOutputStats object"), std::string::npos);
}
