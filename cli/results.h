#pragma once
// The adapters of the result classes, one per class, each in its own
// results_*.cpp. Each returns false when the object is not of its class.
#include "cli/resultview.h"

namespace bsncli {

bool DescribeBinomial(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
bool DescribePoisson(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
bool DescribeNormal(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
bool DescribeRelated(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
// Regression and one-way ANOVA share one result class.
bool DescribeRegression(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);
bool DescribeLogLinear(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);

// The getters the binomial and Poisson results share: the head of both
// lists, and the posterior summaries in their middle.
template <class Result>
void PutDiscreteHeadGetters(const Result& r, const DataInfo& data, ResultView& view) {
    PutCommonGetters(r, r.GetSettings(), data, view);
    auto& j = view.getters;
    j["GetVarIndices"] = ToJson(r.GetVarIndices());
    j["GetBayesFactors"] = ToJson(r.GetBayesFactors());
    j["GetIsLogBayesFactor"] = ToJson(r.GetIsLogBayesFactor());
    j["GetLogBayesFactors"] = ToJson(r.GetLogBayesFactors());
    j["GetNs"] = ToJson(r.GetNs());
}

template <class Result>
void PutDiscreteSummaryGetters(const Result& r, ResultView& view) {
    auto& j = view.getters;
    j["GetModeValues"] = ToJson(r.GetModeValues());
    j["GetMeanValues"] = ToJson(r.GetMeanValues());
    j["GetVarianceValues"] = ToJson(r.GetVarianceValues());
    j["GetLowerLimits"] = ToJson(r.GetLowerLimits());
    j["GetUpperLimits"] = ToJson(r.GetUpperLimits());
}

} // namespace bsncli
