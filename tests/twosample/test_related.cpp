// The related-samples procedure: difference statistics over the complete
// pairs, the t test on them, the wiring of the shared Bayes factor and
// posterior, and its own messages.
#include <tuple>

#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "tests/onesample/normaltestsupport.h"

using namespace normaltest;
using MCBSN_850::BSN2SampleRelatedOutputStats;

namespace {

BSNSettings relatedSettings(std::vector<int> first, std::vector<int> second, BC::AnalysTypes type) {
    BSNSettings s;
    s.SetModelType(BC::Related, false); s.SetAnalysType(type); s.SetCovariates(first);
    s.Set2ndRelatedList(second); s.SetMeanDistType(BC::Diffuse); s.SetPriorDistType(BC::Jeffreys2);
    s.SetEstBFType(BC::Simple);
    return s;
}

const BSN2SampleRelatedOutputStats& output(const NormalRun& r) { return r.result<BSN2SampleRelatedOutputStats>(); }

// Counts how often the procedure touches the records.
struct CountingIter : MCCommon_850::ColumnRecordIter {
    using ColumnRecordIter::ColumnRecordIter;
    bool Advance() override {
        ++advances;
        return ColumnRecordIter::Advance();
    }
    int advances = 0;
};

} // namespace

TEST(Related, DifferenceStatisticsTTestAndPosteriorForEachAnalysisType) {
    const std::vector<double> x1 = {10.2, 11.5, kMiss, 9.8, 12.1, 10.9, 11.7, 13.0};
    const std::vector<double> y1 = {9.1, 11.9, 10.0, 8.7, 10.6, kMiss, 10.2, 11.1};
    const std::vector<double> x2 = {1.0, 3.0, 2.0, 4.0, 6.0, 5.0, 7.0, 8.0};
    const std::vector<double> y2 = {2.0, 1.0, 3.0, 5.0, 4.0, 7.0, 6.0, 9.0};  // weighted mean difference 0.4
    const std::vector<double> w = {1.0, 2.4, 1.0, 0.3, 1.0, 1.0, 3.0, 1.0};   // record 3 dropped (weight 0)
    const std::vector<double> rounded = {1, 2, 1, 0, 1, 1, 3, 1};
    for (BC::AnalysTypes type : {BC::Both, BC::BayesFactor, BC::Posterior}) {
        SCOPED_TRACE(type);
        BSNSettings s = relatedSettings({0, 2}, {1, 3}, type);
        s.SetFrequencyWeightVar(4); s.SetNullValues({0.5, 0.4}); s.SetAlterGValues({1.0, 3.0});
        bsntest::RecordCounts listener;
        s.SetProgressListener(&listener); s.SetProgressFrequency(4);
        NormalRun r(s, {x1, y1, x2, y2, w});
        ASSERT_TRUE(r.status.IsOK()) << r.status.GetCode();
        EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
        EXPECT_EQ(listener.counts, (std::vector<int>{4, 8}));  // the end is not reported twice
        const auto& o = output(r);
        // Only the stages asked for fill their results.
        const bool factor = type != BC::Posterior, posterior = type != BC::BayesFactor;
        for (const auto* v : {&o.GetBayesFactors(), &o.GetTValues(), &o.GetSigs()}) EXPECT_EQ(v->size(), factor ? 2u : 0u);
        EXPECT_EQ(o.GetPostMeanValues().size(), posterior ? 2u : 0u);
        if (!posterior) { EXPECT_TRUE(o.GetPlotArguments4Posterior().empty()); }

        // The differences' statistics feed the shared normal-mean code; the lower
        // limit shows they reach the posterior (Jeffreys 2: t, N - 1 df, scale^2 s^2/N).
        for (int p = 0; p < 2; ++p) {
            SCOPED_TRACE(p);
            // The differences where both are present (weight 0 elsewhere).
            const std::vector<double> &a = p == 0 ? x1 : x2, &b = p == 0 ? y1 : y2;
            std::vector<double> d, dw;
            for (std::size_t i = 0; i < a.size(); ++i) {
                const bool both = !MCMV::IsMissing(a[i]) && !MCMV::IsMissing(b[i]);
                d.push_back(both ? a[i] - b[i] : 0.0);
                dw.push_back(both ? rounded[i] : 0.0);
            }
            const Moments m = moments(d, dw);
            const double se = std::sqrt(m.var / m.n), t = (m.mean - s.GetNullValues()[p]) / se;
            EXPECT_DOUBLE_EQ(o.GetNs()[p], m.n);
            EXPECT_NEAR(o.GetMeanValues()[p], m.mean, 1e-12);
            EXPECT_NEAR(o.GetStdDevs()[p], std::sqrt(m.var), 1e-12);
            if (factor) { EXPECT_NEAR(o.GetTValues()[p], t, 1e-10); }
            if (posterior) {
                EXPECT_NEAR(o.GetLowerLimits()[p], m.mean - bm::quantile(bm::students_t(m.n - 1), 0.975) * se, 1e-9);
            }
        }
        // Pair 2 is tested at its own mean: t = 0 and the Simple factor is sqrt(1 + N g).
        if (factor) {
            EXPECT_NEAR(o.GetBayesFactors()[1], std::sqrt(1.0 + o.GetNs()[1] * 3.0), 1e-10);
            EXPECT_GT(o.GetBayesFactors()[0], 0.0);
        }
    }
}

TEST(Related, ConstantAndEmptyPairs) {
    const std::vector<double> a = {1.0, 2.0, 3.0, 4.0, 6.0};
    const std::vector<double> shifted = {3.0, 4.0, 5.0, 6.0, 8.0};  // a + 2: constant difference
    const std::vector<double> b = {2.5, 1.0, 4.0, 3.5, 7.5};
    const std::vector<double> holes = {kMiss, 5.0, kMiss, kMiss, kMiss};  // at most one complete case
    BSNSettings s = relatedSettings({0, 0, 0, 0}, {1, 0, 2, 3}, BC::Both);
    s.SetAlterGValues({1.0, 1.0, 1.0, 1.0});
    NormalRun r(s, {a, shifted, b, holes});
    ASSERT_TRUE(r.status.IsOK()) << r.status.GetCode();
    const auto& o = output(r);

    std::vector<std::pair<int, int>> warnings;  // code and pair; pair 1 is a variable paired with itself
    for (const auto& w : r.component.GetWarningMessages()) warnings.emplace_back(w.GetCode(), w.GetDiscreteDatum(0));
    EXPECT_EQ(warnings, (std::vector<std::pair<int, int>>{{410028, 0}, {410028, 1}, {410029, 3}}));

    // Constant differences: counts, mean and zero spread, but no t, factor or posterior.
    for (int p : {0, 1}) {
        const std::vector<double> got = {o.GetNs()[p],      o.GetDFValues()[p],      o.GetMeanValues()[p],
                                         o.GetStdDevs()[p], o.GetEMs()[p],           o.GetTValues()[p],
                                         o.GetSigs()[p],    o.GetBayesFactors()[p], o.GetPostMeanValues()[p]};
        EXPECT_EQ(got, (std::vector<double>{5, 4, p == 0 ? -2.0 : 0.0, 0, 0, kMiss, kMiss, kMiss, kMiss})) << p;
        EXPECT_TRUE(o.GetPlotPosterior()[p].empty());
    }
    // Too few cases: every statistic of the pair stays missing.
    for (const auto* v : {&o.GetNs(), &o.GetDFValues(), &o.GetMeanValues(), &o.GetStdDevs(), &o.GetEMs(),
                          &o.GetTValues(), &o.GetBayesFactors(), &o.GetPostMeanValues()})
        EXPECT_EQ((*v)[3], kMiss);
    // The ordinary pair is unaffected.
    EXPECT_FALSE(MCMV::IsMissing(o.GetTValues()[2]) || MCMV::IsMissing(o.GetPostMeanValues()[2]));

    // second = first + 0.1 in floating point is a constant difference too, not a spread
    // of 1e-16 that would give an absurd t.
    std::vector<double> x = {7.7, 22.8, 78.0, 31.9, 43.8, 97.8}, y;
    for (double v : x) y.push_back(v + 0.1);
    NormalRun near(relatedSettings({0}, {1}, BC::Both), {x, y});
    EXPECT_EQ(near.warningCodes(), std::vector<int>{410028});
    EXPECT_EQ(output(near).GetStdDevs()[0], 0.0);
    EXPECT_NEAR(output(near).GetMeanValues()[0], -0.1, 1e-12);
}

TEST(Related, ListErrorsNoRecordsAndCancellation) {
    const std::vector<std::vector<double>> cols = {{1, 2, 3, 4}, {2, 2, 5, 1}, {0, 1, 0, 1}};
    // Lists of lengths 2 and 3, or none: error before any record is read.
    BSNSettings lists = relatedSettings({0, 1, 2}, {1, 2, 0}, BC::Both);
    lists.SetCovariates({0, 1});
    CountingIter iter(cols);
    for (const BSNSettings& bad : {lists, relatedSettings({}, {}, BC::Both)}) {
        MCBSN_850::BSNComponent c(bad, makeVarList(3));
        EXPECT_TRUE(c.BuildModel(iter).IsError());
        EXPECT_EQ(c.GetStatus().GetCode(), 410019);
        EXPECT_EQ(c.GetOutputStats(), nullptr);
    }
    EXPECT_EQ(iter.advances, 0);
    // No records; a g list of the wrong length for a known-variance factor.
    BSNSettings g = relatedSettings({0}, {1}, BC::BayesFactor);
    g.SetDataVarVals({1.0}); g.SetAlterGValues({1.0, 2.0});
    using Cols = std::vector<std::vector<double>>;
    for (const auto& [s, data, code] : {std::tuple{relatedSettings({0}, {1}, BC::Posterior), Cols(2), 410003},
                                        {g, cols, 410019}}) {
        NormalRun r(s, data);
        EXPECT_EQ(r.status.GetCode(), code);
        EXPECT_FALSE(r.component.IsModelBuilt()) << code;
        EXPECT_EQ(r.component.GetOutputStats(), nullptr) << code;
    }
    for (int frequency : {1, 100}) {
        // Cancelled inside the pass (after record 1) or at its final report: the bare cancellation.
        MCCommon_850::MCAtomicCancel cancel;
        CancellingListener listener(cancel, 1);
        BSNSettings s = relatedSettings({0}, {1}, BC::Both);
        s.SetCancelPointer(&cancel); s.SetProgressListener(&listener); s.SetProgressFrequency(frequency);
        s.SetAlterGValues({1.0});
        NormalRun r(s, cols);
        EXPECT_TRUE(r.status.IsError() && r.status.GetCode() == 1);
        EXPECT_EQ(r.component.GetOutputStats(), nullptr);
        EXPECT_EQ(listener.records, std::vector<int>{frequency == 1 ? 1 : 4});
    }
}
