// Adapter of BSN1SamplePoisnOutputStats: the test variables are the covariates.
#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "cli/results.h"

namespace bsncli {

bool DescribePoisson(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const MCBSN_850::BSN1SamplePoisnOutputStats*>(&base);
    if (r == nullptr) return false;
    PutDiscreteHeadGetters(*r, data, view);
    auto& j = view.getters;
    j["GetMinCnts"] = ToJson(r->GetMinCnts());
    j["GetMaxCnts"] = ToJson(r->GetMaxCnts());
    PutDiscreteSummaryGetters(*r, view);
    j["GetPosteriorParams"] = ToJson(r->GetPosteriorParams());
    j["GetLikelihoodParams"] = ToJson(r->GetLikelihoodParams());
    j["GetPlotArguments4Likelihoods"] = ToJson(r->GetPlotArguments4Likelihoods());
    j["GetPlotArguments4Prior"] = ToJson(r->GetPlotArguments4Prior());
    j["GetPlotArguments4Posterior"] = ToJson(r->GetPlotArguments4Posterior());
    j["GetPlotLikelihoods"] = ToJson(r->GetPlotLikelihoods());
    j["GetPlotPrior"] = ToJson(r->GetPlotPrior());
    j["GetPlotPosterior"] = ToJson(r->GetPlotPosterior());

    const std::vector<std::string> names = data.Names(r->GetVarIndices());
    const std::size_t rows = names.size();
    std::vector<double> minima(r->GetMinCnts().begin(), r->GetMinCnts().end());
    std::vector<double> maxima(r->GetMaxCnts().begin(), r->GetMaxCnts().end());
    TextTable counts("Counts (frequency-weighted)");
    counts.AddColumn("Variable", names);
    counts.AddColumn("N", FormatNumbers(r->GetNs(), rows));
    counts.AddColumn("Smallest count", FormatNumbers(minima, rows));
    counts.AddColumn("Largest count", FormatNumbers(maxima, rows));
    view.tables.push_back(counts);
    if (WantsFactors(r->GetSettings())) {
        TextTable factors = BayesFactorTable("Bayes factor: null gamma prior against alternative gamma prior", names,
                                             r->GetBayesFactors(), r->GetIsLogBayesFactor());
        factors.AddColumn("log BF", FormatNumbers(r->GetLogBayesFactors(), rows));
        view.tables.push_back(factors);
    }
    if (WantsPosterior(r->GetSettings())) {
        TextTable post = PosteriorTable("Posterior of the Poisson rate", names, r->GetSettings().GetCILevel(),
                                        r->GetModeValues(), r->GetMeanValues(), r->GetVarianceValues(),
                                        r->GetLowerLimits(), r->GetUpperLimits());
        std::vector<double> shape, rate;
        for (const auto& [a, b] : r->GetPosteriorParams()) {
            shape.push_back(a);
            rate.push_back(b);
        }
        post.AddColumn("Shape", FormatNumbers(shape, rows));
        post.AddColumn("Rate", FormatNumbers(rate, rows));
        post.AddNote("Shape and rate of the gamma posterior.");
        view.tables.push_back(post);
    }
    AddPlots(view, names, "rate", r->GetPlotArguments4Likelihoods(), r->GetPlotArguments4Prior(),
             r->GetPlotArguments4Posterior(), r->GetPlotLikelihoods(), r->GetPlotPrior(), r->GetPlotPosterior(),
             MakePlotNotes(r->GetSettings(), r->GetLowerLimits(), r->GetUpperLimits(), r->GetBayesFactors(),
                           r->GetIsLogBayesFactor()));
    return true;
}

} // namespace bsncli
