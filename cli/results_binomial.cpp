// Adapter of BSN1SampleBinoOutputStats: the test variables are the factors.
#include "bsn/onesample/bsn1samplebinooutputstats.h"
#include "cli/results.h"

namespace bsncli {

bool DescribeBinomial(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const MCBSN_850::BSN1SampleBinoOutputStats*>(&base);
    if (r == nullptr) return false;
    PutDiscreteHeadGetters(*r, data, view);
    auto& j = view.getters;
    j["GetCat1Indices"] = ToJson(r->GetCat1Indices());
    j["GetCat1Ns"] = ToJson(r->GetCat1Ns());
    j["GetCat2Ns"] = ToJson(r->GetCat2Ns());
    j["GetCat1Props"] = ToJson(r->GetCat1Props());
    j["GetCat2Props"] = ToJson(r->GetCat2Props());
    PutDiscreteSummaryGetters(*r, view);
    j["GetPlotArguments"] = ToJson(r->GetPlotArguments());
    j["GetPlotLikelihoods"] = ToJson(r->GetPlotLikelihoods());
    j["GetPlotPrior"] = ToJson(r->GetPlotPrior());
    j["GetPlotPosterior"] = ToJson(r->GetPlotPosterior());

    const std::vector<std::string> names = data.Names(r->GetVarIndices());
    const std::size_t rows = names.size();
    TextTable counts("Successes and failures (frequency-weighted)");
    counts.AddColumn("Variable", names);
    counts.AddColumn("Trials", FormatNumbers(r->GetNs(), rows));
    counts.AddColumn("Successes", FormatNumbers(r->GetCat1Ns(), rows));
    counts.AddColumn("Failures", FormatNumbers(r->GetCat2Ns(), rows));
    counts.AddColumn("Prop. successes", FormatNumbers(r->GetCat1Props(), rows));
    counts.AddColumn("Prop. failures", FormatNumbers(r->GetCat2Props(), rows));
    view.tables.push_back(counts);
    if (WantsFactors(r->GetSettings())) {
        TextTable factors = BayesFactorTable("Bayes factor: null beta prior against alternative beta prior", names,
                                             r->GetBayesFactors(), r->GetIsLogBayesFactor());
        factors.AddColumn("log BF", FormatNumbers(r->GetLogBayesFactors(), rows));
        view.tables.push_back(factors);
    }
    if (WantsPosterior(r->GetSettings()))
        view.tables.push_back(PosteriorTable("Posterior of the success proportion", names,
                                             r->GetSettings().GetCILevel(), r->GetModeValues(), r->GetMeanValues(),
                                             r->GetVarianceValues(), r->GetLowerLimits(), r->GetUpperLimits()));
    const auto& grid = r->GetPlotArguments();
    AddPlots(view, names, "proportion", grid, grid, grid, r->GetPlotLikelihoods(), r->GetPlotPrior(),
             r->GetPlotPosterior(),
             MakePlotNotes(r->GetSettings(), r->GetLowerLimits(), r->GetUpperLimits(), r->GetBayesFactors(),
                           r->GetIsLogBayesFactor()));
    return true;
}

} // namespace bsncli
