// The one-sample normal procedure end to end through the component: the
// data pass (weights, per-variable missing values, progress), the
// classical statistics and their warnings, the stages chosen by the
// analysis type, cancellation and the result object; and the small helpers
// of BSN1SampleNormalUtils it shares with the related-samples procedure.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "bsn/onesample/bsn1samplenormalutils.h"
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "platform/records/record.h"
#include "tests/onesample/normaltestsupport.h"

using namespace normaltest;
using MCBSN_850::BSN1SampleNormalUtils;
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

TEST(NormalDriver, WeightsAndMissingValuesPerVariable) {
    // Weights 2.4, 2.5, 0.49, -3 and missing count as 2, 3, 0, 0, 0 cases.
    // Variable 1 is missing where variable 2 is present and the other way
    // round; NaN and infinity count as missing; each keeps its own cases
    // (listwise deletion changes nothing here).
    const std::vector<double> w = {2.4, 2.5, 0.49, -3.0, kMiss, 1.0, 1.0};
    const std::vector<double> a = {1.0, 5.0, 100.0, 200.0, 300.0, std::nan(""), 7.25};
    const std::vector<double> b = {kMiss, 10.0, 12.5, kMiss, 9.0, 11.0, HUGE_VAL};
    BSNSettings s = normalSettings({2, 1}, BC::Posterior);
    s.SetFrequencyWeightVar(0);
    s.SetMissScope(BC::MissingListwise);
    NormalRun r(s, {w, a, b});
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_TRUE(r.component.IsModelBuilt());
    const auto& o = output(r);
    EXPECT_EQ(o.GetVarIndices(), (std::vector<int>{2, 1}));
    EXPECT_EQ(o.GetOutputType(), BC::Output1SampleNormal);
    const Moments ma = moments({1.0, 5.0, 7.25}, {2.0, 3.0, 1.0});
    const Moments mb = moments({10.0, 11.0}, {3.0, 1.0});
    EXPECT_EQ(o.GetNs(), (std::vector<double>{4.0, 6.0}));
    EXPECT_NEAR(o.GetMeanValues()[1], ma.mean, 1e-12);
    EXPECT_NEAR(o.GetStdDevs()[1], std::sqrt(ma.var), 1e-12);
    EXPECT_NEAR(o.GetEMs()[1], std::sqrt(ma.var / 6.0), 1e-12);
    EXPECT_DOUBLE_EQ(o.GetDFValues()[1], 5.0);
    EXPECT_NEAR(o.GetMeanValues()[0], mb.mean, 1e-12);
    EXPECT_NEAR(o.GetStdDevs()[0], std::sqrt(mb.var), 1e-12);
    EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
}

TEST(NormalDriver, ConstantAndTooSmallVariables) {
    BSNSettings s = normalSettings({0, 1, 2, 3}, BC::Both);
    s.SetEstBFType(BC::Simple);
    s.SetAlterGValues({1.0, 1.0, 1.0, 1.0});
    NormalRun r(s, {{1.0, 2.0, 4.0, 3.5}, {2.5, 2.5, kMiss, 2.5}, {kMiss, 6.0, kMiss, kMiss}, {kMiss, kMiss, kMiss, kMiss}});
    ASSERT_TRUE(r.status.IsOK());
    const auto& o = output(r);
    // Warnings in variable order, each naming the variable's position.
    const auto& warnings = r.component.GetWarningMessages();
    ASSERT_EQ(r.warningCodes(), (std::vector<int>{410010, 410025, 410025}));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(warnings.Get(k).GetDiscreteDatum(0), k + 1);
    EXPECT_TRUE(warnings.Get(0).IsWarning());
    // Constant: sd and se 0, df N - 1, the mean. One case: df 0 and the
    // mean, no spread. No case: N 0, everything else missing.
    EXPECT_EQ(o.GetNs(), (std::vector<double>{4.0, 3.0, 1.0, 0.0}));
    EXPECT_EQ(o.GetDFValues()[1], 2.0);
    EXPECT_EQ(o.GetMeanValues()[1], 2.5);
    EXPECT_EQ(o.GetStdDevs()[1], 0.0);
    EXPECT_EQ(o.GetEMs()[1], 0.0);
    EXPECT_EQ(o.GetDFValues()[2], 0.0);
    EXPECT_EQ(o.GetMeanValues()[2], 6.0);
    EXPECT_EQ(o.GetStdDevs()[2], kMiss);
    EXPECT_EQ(o.GetEMs()[2], kMiss);
    EXPECT_EQ(o.GetDFValues()[3], kMiss);
    EXPECT_EQ(o.GetMeanValues()[3], kMiss);
    // None of them has a t, a factor or a posterior; the good variable has all.
    for (const auto* v : {&o.GetTValues(), &o.GetSigs(), &o.GetBayesFactors(), &o.GetLogBayesFactors(),
                          &o.GetPostMeanValues(), &o.GetLowerLimits()}) {
        EXPECT_FALSE(MCMV::IsMissing((*v)[0]));
        for (int i = 1; i < 4; ++i) EXPECT_EQ((*v)[i], kMiss) << i;
    }
}

TEST(NormalDriver, TTestAndFactorAreWiredToTheCalculator) {
    // Mean 3 against null value 3: t = 0, so the Simple factor is
    // sqrt(1 + N g). The second variable's t is the textbook one-sample t.
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
    EXPECT_NEAR(o.GetLogBayesFactors()[0], 0.5 * std::log(11.0), 1e-12);
    const Moments m = moments(y);
    const double t = (m.mean - 2.5) / std::sqrt(m.var / m.n);
    EXPECT_NEAR(o.GetTValues()[1], t, 1e-10);
    EXPECT_NEAR(o.GetSigs()[1], 2 * bm::cdf(bm::complement(bm::students_t(4.0), std::fabs(t))), 1e-10);
    // Factor-only mode: no posterior, no curves.
    EXPECT_TRUE(o.GetPostMeanValues().empty());
    EXPECT_TRUE(o.GetPlotPosterior().empty());
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
    NormalRun empty(normalSettings({0}, BC::Posterior), {std::vector<double>{}});
    EXPECT_EQ(empty.status.GetCode(), 410003);
    EXPECT_TRUE(empty.status.IsError());
    EXPECT_EQ(empty.component.GetStatus().GetCode(), 410003);
    EXPECT_EQ(empty.component.GetOutputStats(), nullptr);
    NormalRun noVariable(normalSettings({}, BC::Posterior), {x});
    EXPECT_EQ(noVariable.status.GetCode(), 410004);
    // Cancelled at the first progress report (inside the pass: the bare
    // status 1), or at the pass's final report after the last record
    // (noticed between stages: 410016).
    for (const auto& [frequency, code, reported] : {std::tuple{2, 1, 2}, std::tuple{100, 410016, 6}}) {
        MCCommon_850::MCAtomicCancel cancel;
        CancellingListener listener(cancel, 1);
        BSNSettings s = normalSettings({0}, BC::Both);
        s.SetCancelPointer(&cancel);
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(frequency);
        NormalRun r(s, {x});
        EXPECT_EQ(r.status.GetCode(), code);
        EXPECT_TRUE(r.status.IsError());
        EXPECT_FALSE(r.component.IsModelBuilt());
        EXPECT_EQ(r.component.GetOutputStats(), nullptr);
        EXPECT_EQ(listener.records, std::vector<int>{reported});
    }
    // Cancel pointer handed over after construction, cancelled before the
    // build: seen right after the first step, before any record.
    MCCommon_850::MCAtomicCancel cancel;
    cancel.Cancel();
    std::vector<std::vector<double>> cols = {x};
    MCCommon_850::ColumnRecordIter iter(cols);
    MCBSN_850::BSNComponent c(normalSettings({0}, BC::Posterior), makeVarList(1));
    c.SetCancelPtr(&cancel);
    EXPECT_EQ(c.BuildModel(iter).GetCode(), 410016);
}

TEST(NormalDriver, ProgressReportsAndResultObjects) {
    // A report every 2 records: 6 records give 2, 4, 6 (no repeat of 6);
    // 5 give 2, 4 and the final 5.
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
    // Posterior-only results have no factor vectors. The one-sample and the
    // related result share a base but not their class (the host dispatches
    // on it). A copy refilled, or assigned and refilled, leaves its source
    // alone; the refill sanitises.
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun r(normalSettings({0}, BC::Posterior), {x});
    const auto& o = output(r);
    EXPECT_TRUE(o.GetBayesFactors().empty());
    EXPECT_TRUE(o.GetLogBayesFactors().empty());
    EXPECT_EQ(r.out<MCBSN_850::BSN2SampleRelatedOutputStats>(), nullptr);
    BSN1SampleNormOutputStats copy(o);
    copy.SetOutputValues(o.GetSettings(), {4}, {std::nan("")}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11},
                         {12});
    copy.SetLogBayesFactors({HUGE_VAL});
    EXPECT_EQ(copy.GetVarIndices(), std::vector<int>{4});
    EXPECT_EQ(copy.GetBayesFactors(), std::vector<double>{kMiss});
    EXPECT_EQ(copy.GetLogBayesFactors(), std::vector<double>{kMiss});
    EXPECT_EQ(copy.GetMeanValues(), std::vector<double>{12});
    EXPECT_EQ(copy.GetUpperLimits(), std::vector<double>{11});
    EXPECT_EQ(copy.GetPlotPosterior(), o.GetPlotPosterior());
    EXPECT_EQ(o.GetVarIndices(), std::vector<int>{0});
    BSN1SampleNormOutputStats assigned(o.GetSettings());
    assigned = copy;
    assigned.SetOutputValues(o.GetSettings(), {8}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11}, {12}, {14});
    EXPECT_EQ(copy.GetMeanValues(), std::vector<double>{12});
    EXPECT_EQ(assigned.GetMeanValues(), std::vector<double>{14});
    std::ostringstream dump;
    r.component.Display(dump);
    EXPECT_NE(dump.str().find("End of display BSN1SampleNormOutputStats object"), std::string::npos);
}

TEST(BSN1SampleNormalUtils, WeightsAndIntervalsThatCannotBeFormed) {
    for (const auto& [value, expected] :
         {std::pair{2.4, 2.0}, std::pair{2.5, 3.0}, std::pair{0.49, 0.0}, std::pair{kMiss, 0.0}, std::pair{1e9 + 0.4, 1e9}}) {
        const double row[2] = {7.0, value};
        EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(1, MCCommon_850::Record(row, 2)), expected) << value;
    }
    const double row[1] = {3.0};
    EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(5, MCCommon_850::Record(row, 1)), 0.0);  // field outside the record
    // The intervals themselves are checked with every posterior; here the
    // inputs that give none: no t with 0 df, a missing variance.
    double lo = 0.0, hi = 0.0;
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCIT(0.05, 3.0, 4.0, 0.0, lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo) && MCMV::IsMissing(hi));
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCINormal(0.05, 1.0, kMiss, lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo) && MCMV::IsMissing(hi));
}
