// The one-sample normal procedure end to end through the component, and the
// small helpers of BSN1SampleNormalUtils it shares with related samples.
#include <gtest/gtest.h>

#include <cmath>
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
    BSNSettings s = oneSampleNormal({2, 1}, BC::Posterior);
    s.SetFrequencyWeightVar(0);
    s.SetMissScope(BC::MissingListwise);
    NormalRun r(s, {w, a, b});
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_TRUE(r.component.IsModelBuilt());
    const auto& o = output(r);
    EXPECT_EQ(o.GetVarIndices(), (std::vector<int>{2, 1}));
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

TEST(NormalDriver, ConstantAndTooSmallVariablesAndTheWiredTTest) {
    // v0: mean 3 against null value 3, t = 0, so the Simple factor is
    // sqrt(1 + N g). v1 constant, v2 one case, v3 none. v4: the textbook
    // one-sample t.
    const std::vector<double> y = {2.2, 3.9, 3.1, 5.6, 4.4};
    BSNSettings s = oneSampleNormal({0, 1, 2, 3, 4}, BC::Both);
    s.SetEstBFType(BC::Simple);
    s.SetNullValues({3.0, 0.0, 0.0, 0.0, 2.5});
    s.SetAlterGValues({2.0, 1.0, 1.0, 1.0, 0.5});
    NormalRun r(s, {{1.0, 2.0, 3.0, 4.0, 5.0}, {2.5, 2.5, kMiss, 2.5, kMiss}, {kMiss, 6.0, kMiss, kMiss, kMiss},
                    std::vector<double>(5, kMiss), y});
    ASSERT_TRUE(r.status.IsOK());
    const auto& o = output(r);
    // Warnings in variable order, each naming the variable's position.
    const auto& warnings = r.component.GetWarningMessages();
    ASSERT_EQ(r.warningCodes(), (std::vector<int>{410010, 410025, 410025}));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(warnings.Get(k).GetDiscreteDatum(0), k + 1);
    EXPECT_TRUE(warnings.Get(0).IsWarning());
    EXPECT_NEAR(o.GetTValues()[0], 0.0, 1e-12);
    EXPECT_NEAR(o.GetSigs()[0], 1.0, 1e-12);
    EXPECT_NEAR(o.GetBayesFactors()[0], std::sqrt(1.0 + 5.0 * 2.0), 1e-10);
    EXPECT_NEAR(o.GetLogBayesFactors()[0], 0.5 * std::log(11.0), 1e-12);
    const Moments m = moments(y);
    const double t = (m.mean - 2.5) / std::sqrt(m.var / m.n);
    EXPECT_NEAR(o.GetTValues()[4], t, 1e-10);
    EXPECT_NEAR(o.GetSigs()[4], 2 * bm::cdf(bm::complement(bm::students_t(4.0), std::fabs(t))), 1e-10);
    // Constant: sd and se 0, df N - 1, the mean. One case: df 0 and the
    // mean, no spread. No case: N 0, everything else missing.
    EXPECT_EQ(o.GetNs(), (std::vector<double>{5.0, 3.0, 1.0, 0.0, 5.0}));
    const double want[3][4] = {{2.0, 2.5, 0.0, 0.0}, {0.0, 6.0, kMiss, kMiss}, {kMiss, kMiss, kMiss, kMiss}};
    for (int i = 1; i < 4; ++i) {  // df, mean, sd, se
        const double got[] = {o.GetDFValues()[i], o.GetMeanValues()[i], o.GetStdDevs()[i], o.GetEMs()[i]};
        for (int k = 0; k < 4; ++k) EXPECT_EQ(got[k], want[i - 1][k]) << i << " " << k;
    }
    // None of them has a t, a factor or a posterior; the good variables have all.
    for (const auto* v : {&o.GetTValues(), &o.GetSigs(), &o.GetBayesFactors(), &o.GetLogBayesFactors(),
                          &o.GetPostMeanValues(), &o.GetLowerLimits()}) {
        EXPECT_FALSE(MCMV::IsMissing((*v)[0]) || MCMV::IsMissing((*v)[4]));
        for (int i = 1; i < 4; ++i) EXPECT_EQ((*v)[i], kMiss) << i;
    }
    // The factor stage's settings error (a Simple factor without g values)
    // reaches the component: no result.
    s.SetAlterGValues({});
    NormalRun bad(s, {y, y, y, y, y});
    EXPECT_EQ(bad.status.GetCode(), 410019);
    EXPECT_EQ(bad.component.GetOutputStats(), nullptr);
}

TEST(NormalDriver, ErrorsAndCancellation) {
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun empty(oneSampleNormal({0}, BC::Posterior), {std::vector<double>{}});
    EXPECT_EQ(empty.status.GetCode(), 410003);
    EXPECT_EQ(empty.component.GetOutputStats(), nullptr);
    NormalRun noVariable(oneSampleNormal({}, BC::Posterior), {x});
    EXPECT_EQ(noVariable.status.GetCode(), 410004);
    // Cancelled at the first progress report (inside the pass: the bare
    // status 1), or at the pass's final report after the last record
    // (noticed between stages: 410016).
    for (const auto& [frequency, code, reported] : {std::tuple{2, 1, 2}, std::tuple{100, 410016, 6}}) {
        MCCommon_850::MCAtomicCancel cancel;
        CancellingListener listener(cancel, 1);
        BSNSettings s = oneSampleNormal({0}, BC::Both);
        s.SetCancelPointer(&cancel);
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(frequency);
        NormalRun r(s, {x});
        EXPECT_EQ(r.status.GetCode(), code);
        EXPECT_TRUE(r.status.IsError());
        EXPECT_EQ(r.component.GetOutputStats(), nullptr);
        EXPECT_EQ(listener.records, std::vector<int>{reported});
    }
    // Cancel pointer handed over after construction, cancelled before the
    // build: seen right after the first step, before any record.
    MCCommon_850::MCAtomicCancel cancel;
    cancel.Cancel();
    std::vector<std::vector<double>> cols = {x};
    MCCommon_850::ColumnRecordIter iter(cols);
    MCBSN_850::BSNComponent c(oneSampleNormal({0}, BC::Posterior), makeVarList(1));
    c.SetCancelPtr(&cancel);
    EXPECT_EQ(c.BuildModel(iter).GetCode(), 410016);
}

TEST(NormalDriver, ProgressReportsAndResultObjects) {
    // A report every 2 records: 6 records give 2, 4, 6 (no repeat of 6).
    MCCommon_850::MCAtomicCancel never;
    CancellingListener listener(never, 1000);
    BSNSettings s = oneSampleNormal({0}, BC::Posterior);
    s.SetProgressListener(&listener);
    s.SetProgressFrequency(2);
    NormalRun counted(s, {{1.0, 2.0, 5.0, 10.0, 17.0, 26.0}});
    ASSERT_TRUE(counted.status.IsOK());
    EXPECT_EQ(listener.records, (std::vector<int>{2, 4, 6}));
    // Posterior-only results have no factor vectors, factor-only ones no
    // posterior. The one-sample and the related result share a base but not
    // their class (the host dispatches on it). A refill sanitises.
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun r(oneSampleNormal({0}, BC::Posterior), {x}), f(oneSampleNormal({0}, BC::BayesFactor), {x});
    const auto& o = output(r);
    EXPECT_TRUE(o.GetBayesFactors().empty() && o.GetLogBayesFactors().empty());
    EXPECT_TRUE(output(f).GetPostMeanValues().empty() && output(f).GetPlotPosterior().empty());
    EXPECT_FALSE(output(f).GetBayesFactors().empty());
    EXPECT_EQ(r.As<MCBSN_850::BSN2SampleRelatedOutputStats>(), nullptr);
    BSN1SampleNormOutputStats copy(o);
    copy.SetOutputValues(o.GetSettings(), {4}, {std::nan("")}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11},
                         {12});
    copy.SetLogBayesFactors({HUGE_VAL});
    EXPECT_EQ(copy.GetBayesFactors(), std::vector<double>{kMiss});
    EXPECT_EQ(copy.GetLogBayesFactors(), std::vector<double>{kMiss});
    EXPECT_EQ(copy.GetMeanValues(), std::vector<double>{12});
    EXPECT_EQ(o.GetVarIndices(), std::vector<int>{0});
}

TEST(BSN1SampleNormalUtils, WeightsAndIntervalsThatCannotBeFormed) {
    // The frame's rounding (checked there) of the weight's own field; a
    // field outside the record weighs 0.
    const double row[2] = {7.0, 2.5};
    EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(1, MCCommon_850::Record(row, 2)), 3.0);
    EXPECT_EQ(BSN1SampleNormalUtils::GetWeight(5, MCCommon_850::Record(row, 2)), 0.0);
    // The intervals themselves are checked with every posterior; here the
    // inputs that give none: no t with 0 df, a missing variance.
    double lo = 0.0, hi = 0.0;
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCIT(0.05, 3.0, 4.0, 0.0, lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo) && MCMV::IsMissing(hi));
    EXPECT_FALSE(BSN1SampleNormalUtils::ComputeCINormal(0.05, 1.0, kMiss, lo, hi));
    EXPECT_TRUE(MCMV::IsMissing(lo) && MCMV::IsMissing(hi));
}
