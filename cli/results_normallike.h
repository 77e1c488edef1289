#pragma once
// The one-sample normal and the related-samples results carry the same
// statistics (for related samples computed on the paired differences); one
// template describes both.
#include "cli/resultview.h"

namespace bsncli {

// names: one row label per test variable or pair; secondIndices: the second
// members of related pairs, or null.
template <class Result>
void DescribeNormalLike(const Result& r, const DataInfo& data, const std::vector<std::string>& names,
                        const std::vector<int>* secondIndices, const std::string& meanLabel,
                        const std::string& posteriorTitle, const std::string& parameter, ResultView& view) {
    PutCommonGetters(r, r.GetSettings(), data, view);
    auto& j = view.getters;
    j["GetVarIndices"] = ToJson(r.GetVarIndices());
    if (secondIndices != nullptr) j["GetSecondVarIndices"] = ToJson(*secondIndices);
    j["GetBayesFactors"] = ToJson(r.GetBayesFactors());
    j["GetLogBayesFactors"] = ToJson(r.GetLogBayesFactors());
    j["GetNs"] = ToJson(r.GetNs());
    j["GetStdDevs"] = ToJson(r.GetStdDevs());
    j["GetEMs"] = ToJson(r.GetEMs());
    j["GetDFValues"] = ToJson(r.GetDFValues());
    j["GetSigs"] = ToJson(r.GetSigs());
    j["GetTValues"] = ToJson(r.GetTValues());
    j["GetModeValues"] = ToJson(r.GetModeValues());
    j["GetPostMeanValues"] = ToJson(r.GetPostMeanValues());
    j["GetVarianceValues"] = ToJson(r.GetVarianceValues());
    j["GetLowerLimits"] = ToJson(r.GetLowerLimits());
    j["GetMeanValues"] = ToJson(r.GetMeanValues());
    j["GetUpperLimits"] = ToJson(r.GetUpperLimits());
    j["GetPlotArguments4Likelihoods"] = ToJson(r.GetPlotArguments4Likelihoods());
    j["GetPlotArguments4Prior"] = ToJson(r.GetPlotArguments4Prior());
    j["GetPlotArguments4Posterior"] = ToJson(r.GetPlotArguments4Posterior());
    j["GetPlotLikelihoods"] = ToJson(r.GetPlotLikelihoods());
    j["GetPlotPrior"] = ToJson(r.GetPlotPrior());
    j["GetPlotPosterior"] = ToJson(r.GetPlotPosterior());

    const std::size_t rows = names.size();
    TextTable basic("Descriptive statistics (frequency-weighted)");
    basic.AddColumn("Variable", names);
    basic.AddColumn("N", FormatNumbers(r.GetNs(), rows));
    basic.AddColumn(meanLabel, FormatNumbers(r.GetMeanValues(), rows));
    basic.AddColumn("Std. deviation", FormatNumbers(r.GetStdDevs(), rows));
    basic.AddColumn("Std. error", FormatNumbers(r.GetEMs(), rows));
    basic.AddColumn("df", FormatNumbers(r.GetDFValues(), rows));
    view.tables.push_back(basic);
    if (WantsFactors(r.GetSettings())) {
        TextTable test = BayesFactorTable("t test and Bayes factor", names, r.GetBayesFactors(), {});
        // The factor underflows to 0 for a large t; its log is still exact.
        test.AddColumn("log BF", FormatNumbers(r.GetLogBayesFactors(), rows));
        test.AddColumn("t", FormatNumbers(r.GetTValues(), rows));
        test.AddColumn("Sig. (2-tailed)", FormatNumbers(r.GetSigs(), rows));
        view.tables.push_back(test);
    }
    if (WantsPosterior(r.GetSettings()))
        view.tables.push_back(PosteriorTable(posteriorTitle, names, r.GetSettings().GetCILevel(), r.GetModeValues(),
                                             r.GetPostMeanValues(), r.GetVarianceValues(), r.GetLowerLimits(),
                                             r.GetUpperLimits()));
    PlotNotes notes = MakePlotNotes(r.GetSettings(), r.GetLowerLimits(), r.GetUpperLimits(), r.GetBayesFactors());
    notes.nullValues = TestedNullValues(r.GetSettings(), rows);
    AddPlots(view, names, parameter, r.GetPlotArguments4Likelihoods(), r.GetPlotArguments4Prior(), r.GetPlotArguments4Posterior(),
             r.GetPlotLikelihoods(), r.GetPlotPrior(), r.GetPlotPosterior(), notes);
}

} // namespace bsncli
