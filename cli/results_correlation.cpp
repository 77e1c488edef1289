// Adapter of BSNPearsonCorrelationOutputStats: one row per pair of
// variables, named by its two columns; curves of the plotted pairs.
#include <algorithm>

#include <fmt/format.h>

#include "bsn/correlation/bsnpearsoncorrelationoutputstats.h"
#include "cli/results.h"

namespace bsncli {

namespace {

nlohmann::ordered_json pairsJson(const std::vector<std::pair<int, int>>& pairs) {
    nlohmann::ordered_json out = nlohmann::ordered_json::array();
    for (const auto& [a, b] : pairs) out.push_back(nlohmann::ordered_json::array({a, b}));
    return out;
}

} // namespace

bool DescribeCorrelation(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const MCBSN_850::BSNPearsonCorrelationOutputStats*>(&base);
    if (r == nullptr) return false;
    const MCBSN_850::BSNSettings& s = r->GetSettings();
    PutCommonGetters(*r, s, data, view);
    auto& j = view.getters;
    j["GetVarPairIndices"] = pairsJson(r->GetVarPairIndices());
    j["GetPearsonCorrelation"] = ToJson(r->GetPearsonCorrelation());
    j["GetBayesFactor"] = ToJson(r->GetBayesFactor());
    j["GetLogBayesFactors"] = ToJson(r->GetLogBayesFactors());
    j["GetIsLogBayesFactor"] = ToJson(r->GetIsLogBayesFactor());
    j["GetIndIntegralFailed"] = ToJson(r->GetIndIntegralFailed());
    j["GetVarPairN"] = ToJson(r->GetVarPairN());
    j["GetVarN"] = ToJson(r->GetVarN());
    j["GetPosteriorMode"] = ToJson(r->GetPosteriorMode());
    j["GetPosteriorMean"] = ToJson(r->GetPosteriorMean());
    j["GetPosteriorVariance"] = ToJson(r->GetPosteriorVariance());
    j["GetPosteriorLowerBound"] = ToJson(r->GetPosteriorLowerBound());
    j["GetPosteriorUpperBound"] = ToJson(r->GetPosteriorUpperBound());
    j["GetPlotXAxis"] = ToJson(r->GetPlotXAxis());
    j["GetPlotLogLikelihood"] = ToJson(r->GetPlotLogLikelihood());
    j["GetPlotPrior"] = ToJson(r->GetPlotPrior());
    j["GetPlotPosterior"] = ToJson(r->GetPlotPosterior());

    const auto& pairs = r->GetVarPairIndices();
    const std::size_t rows = pairs.size();
    std::vector<std::string> first, second;
    for (const auto& [a, b] : pairs) {
        first.push_back(data.Name(a));
        second.push_back(data.Name(b));
    }
    const bool listwise = s.GetMissScope() == MCBSN_850::BSNConst::MissingListwise;
    TextTable table(fmt::format("Pearson correlations (frequency-weighted, {} deletion of missing values)",
                                listwise ? "listwise" : "pairwise"));
    table.AddColumn("Variable 1", first);
    table.AddColumn("Variable 2", second);
    table.AddColumn("r", FormatNumbers(r->GetPearsonCorrelation(), rows));
    table.AddColumn("N", FormatNumbers(r->GetVarPairN(), rows));
    const bool jzs = s.GetEstBFType() == MCBSN_850::BSNConst::JZS;
    if (WantsFactors(s)) {
        table.AddColumn("Bayes factor", FormatBayesFactors(r->GetBayesFactor(), r->GetIsLogBayesFactor(), rows));
        table.AddColumn("log BF", FormatNumbers(r->GetLogBayesFactors(), rows));
        table.AddNote(fmt::format("{} Bayes factor of the null (rho = {:g}) against the alternative: values above 1 "
                                  "favour the null.",
                                  jzs ? "JZS" : "Fractional", jzs ? 0.0 : s.GetNullValue()));
        const auto& isLog = r->GetIsLogBayesFactor();
        if (std::find(isLog.begin(), isLog.end(), true) != isLog.end()) table.AddNote(kLogFactorNote);
    }
    if (WantsPosterior(s)) {
        const std::string level = fmt::format("{:g}% ", s.GetCILevel());
        table.AddColumn("Mode", FormatNumbers(r->GetPosteriorMode(), rows));
        table.AddColumn("Mean", FormatNumbers(r->GetPosteriorMean(), rows));
        table.AddColumn("Variance", FormatNumbers(r->GetPosteriorVariance(), rows));
        table.AddColumn(level + "lower", FormatNumbers(r->GetPosteriorLowerBound(), rows));
        table.AddColumn(level + "upper", FormatNumbers(r->GetPosteriorUpperBound(), rows));
        table.AddNote("Posterior of rho from sampled draws; the limits are those of the narrowest interval holding "
                      "the credible level of the draws.");
    }
    view.tables.push_back(table);

    // One picture per plotted pair, all on the shared x axis.
    const auto& x = r->GetPlotXAxis();
    const auto& ll = r->GetPlotLogLikelihood();
    const auto& prior = r->GetPlotPrior();
    const auto& post = r->GetPlotPosterior();
    const auto& factors = r->GetBayesFactor();
    const auto& isLog = r->GetIsLogBayesFactor();
    for (std::size_t i = 0; i < post.size() && i < rows; ++i) {
        if (ll[i].empty() && prior[i].empty() && post[i].empty()) continue;
        PlotSet plot;
        plot.variable = first[i] + " with " + second[i];
        plot.parameter = "correlation";
        plot.logLikelihood = {x, ll[i]};
        plot.prior = {x, prior[i]};
        plot.posterior = {x, post[i]};
        if (i < r->GetPosteriorLowerBound().size()) {
            plot.ciLower = r->GetPosteriorLowerBound()[i];
            plot.ciUpper = r->GetPosteriorUpperBound()[i];
            plot.ciLevel = s.GetCILevel();
        }
        plot.nullValue = jzs ? 0.0 : s.GetNullValue();
        if (i < factors.size()) {
            plot.bayesFactor = factors[i];
            plot.bayesFactorIsLog = i < isLog.size() && isLog[i];
        }
        plot.direction = FactorDirection::NullOverAlternative;
        view.plots.push_back(plot);
    }
    return true;
}

} // namespace bsncli
