// Adapter of BSN2SampleIndOutputStats: one row per test variable; the two
// groups are named by the labels of codes 0 and 1 of the group column. The
// plots: the likelihood and prior of each group mean (one picture per
// group) and the posterior of the difference of means with its credible
// interval and Bayes factor.
#include <fmt/format.h>

#include <cmath>
#include <memory>

#include "bsn/twosample/bsn2sampleindoutputstats.h"
#include "bsn/twosample/bsn2sampleindposterior.h"
#include "cli/results.h"

namespace bsncli {

namespace {

using MCBSN_850::BSN2SampleIndOutputStats;
using MCCommon_850::MCMV;
namespace C = MCBSN_850::BSNConst;

// The labels of group codes 0 and 1 ("0" and "1" when the column has none).
std::pair<std::string, std::string> groupLabels(const DataInfo& data, int groupVar) {
    std::pair<std::string, std::string> labels{"0", "1"};
    if (!data.varList.IsValidIndex(groupVar)) return labels;
    const auto& names = data.varList.Get(groupVar).GetValueLabels();
    if (names.size() > 0) labels.first = names[0];
    if (names.size() > 1) labels.second = names[1];
    return labels;
}

std::vector<std::string> intCells(const std::vector<int>& values, std::size_t rows) {
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < rows; ++i) cells.push_back(i < values.size() ? std::to_string(values[i]) : ".");
    return cells;
}

std::string factorName(const MCBSN_850::BSNSettings& s) {
    switch (s.GetRegrCompType()) {
    case C::Hyper:
        return fmt::format("hyper-prior, a = {}", FormatNumber(s.GetRegrComPar()));
    case C::Gonen:
        return fmt::format("normal prior on the effect, mean {}, variance {}", FormatNumber(s.GetRegrComPar()),
                           FormatNumber(s.GetSecondGonenPar()));
    default:
        return s.GetMethodType() == C::AQL ? "JZS, by quadrature" : "JZS, by Monte Carlo";
    }
}

// What the posterior assumed, from the prior class the settings choose.
std::string priorNote(const MCBSN_850::BSNSettings& s) {
    MCMath_850::MCCancelInfo cancel;
    std::unique_ptr<MCBSN_850::BSN2SampleIndPosterior> p;
    MCBSN_850::BSN2SampleIndPosterior::CreatePosterior(s, MCXML_850::MCVarList(), cancel, &p);
    if (!p) return {};
    const std::string name = p->GetName();
    if (name == "NormalPriorsKnownVariances") return "Normal priors on the group means; known data variances.";
    if (name == "DiffusePriorsKnownVariances") return "Flat priors on the group means; known data variances.";
    if (name == "DiffuseInverseChiPriorsEqualVariances")
        return "Flat priors on the group means; one variance, scaled inverse chi-square prior.";
    if (name == "DiffuseJeffreysPriorsEqualVariances")
        return "Flat priors on the group means; one variance, prior 1/sigma^2: a t posterior.";
    return "Flat priors on the group means; unequal variances, priors 1/sigma^2: the exact Behrens-Fisher posterior.";
}

void putGetters(const BSN2SampleIndOutputStats& r, const DataInfo& data, ResultView& view) {
    PutCommonGetters(r, r.GetSettings(), data, view);
    auto& j = view.getters;
    j["GetGroupStatsVarIndices"] = ToJson(r.GetGroupStatsVarIndices());
    j["GetGroup1StatsNs"] = ToJson(r.GetGroup1StatsNs());
    j["GetGroup1MeanValues"] = ToJson(r.GetGroup1MeanValues());
    j["GetGroup1StdDevs"] = ToJson(r.GetGroup1StdDevs());
    j["GetGroup1EMs"] = ToJson(r.GetGroup1EMs());
    j["GetGroup2StatsNs"] = ToJson(r.GetGroup2StatsNs());
    j["GetGroup2MeanValues"] = ToJson(r.GetGroup2MeanValues());
    j["GetGroup2StdDevs"] = ToJson(r.GetGroup2StdDevs());
    j["GetGroup2EMs"] = ToJson(r.GetGroup2EMs());
    j["GetTTestVarIndices"] = ToJson(r.GetTTestVarIndices());
    j["GetMeanDiffValues"] = ToJson(r.GetMeanDiffValues());
    j["GetPStdEDDevs"] = ToJson(r.GetPStdEDDevs());
    j["GetBayesFactors"] = ToJson(r.GetBayesFactors());
    j["GetLogBayesFactors"] = ToJson(r.GetLogBayesFactors());
    j["GetTValues"] = ToJson(r.GetTValues());
    j["GetDFValues"] = ToJson(r.GetDFValues());
    j["GetSigs"] = ToJson(r.GetSigs());
    j["GetWelchTValues"] = ToJson(r.GetWelchTValues());
    j["GetWelchDFValues"] = ToJson(r.GetWelchDFValues());
    j["GetWelchSigs"] = ToJson(r.GetWelchSigs());
    j["GetWelchStdEDDevs"] = ToJson(r.GetWelchStdEDDevs());
    j["GetPostVarIndices"] = ToJson(r.GetPostVarIndices());
    j["GetModeValues"] = ToJson(r.GetModeValues());
    j["GetPostMeanValues"] = ToJson(r.GetPostMeanValues());
    j["GetVarianceValues"] = ToJson(r.GetVarianceValues());
    j["GetLowerLimits"] = ToJson(r.GetLowerLimits());
    j["GetUpperLimits"] = ToJson(r.GetUpperLimits());
    j["GetPlotXArguments"] = ToJson(r.GetPlotXArguments());
    j["GetPlotYArguments"] = ToJson(r.GetPlotYArguments());
    j["GetPlotXLikelihoods"] = ToJson(r.GetPlotXLikelihoods());
    j["GetPlotYLikelihoods"] = ToJson(r.GetPlotYLikelihoods());
    j["GetPlotXPriorArguments"] = ToJson(r.GetPlotXPriorArguments());
    j["GetPlotYPriorArguments"] = ToJson(r.GetPlotYPriorArguments());
    j["GetPlotXPrior"] = ToJson(r.GetPlotXPrior());
    j["GetPlotYPrior"] = ToJson(r.GetPlotYPrior());
    j["GetPlotArguments"] = ToJson(r.GetPlotArguments());
    j["GetPlotPosterior"] = ToJson(r.GetPlotPosterior());
}

double at(const std::vector<double>& v, std::size_t i) { return i < v.size() ? v[i] : MCMV::Missing(); }

Curve curveAt(const BSN2SampleIndOutputStats::Curves& x, const BSN2SampleIndOutputStats::Curves& y, std::size_t i) {
    Curve c;
    if (i < x.size()) c.x = x[i];
    if (i < y.size()) c.y = y[i];
    return c;
}

// The result holds each likelihood already scaled to a peak of 1; the
// picture takes a log-likelihood up to a constant, so it gets the
// logarithm (a value that underflowed to 0 is left out).
Curve logOf(Curve c) {
    for (double& v : c.y) v = !MCMV::IsMissing(v) && v > 0.0 ? std::log(v) : MCMV::Missing();
    return c;
}

void addPlots(const BSN2SampleIndOutputStats& r, const std::vector<std::string>& names,
              const std::pair<std::string, std::string>& labels, ResultView& view) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (int g = 0; g < 2; ++g) {
            const std::string& label = g == 0 ? labels.first : labels.second;
            PlotSet plot;
            plot.variable = fmt::format("{} (group {})", names[i], label);
            plot.parameter = "mean of group " + label;
            plot.logLikelihood = logOf(g == 0 ? curveAt(r.GetPlotXArguments(), r.GetPlotXLikelihoods(), i)
                                              : curveAt(r.GetPlotYArguments(), r.GetPlotYLikelihoods(), i));
            plot.prior = g == 0 ? curveAt(r.GetPlotXPriorArguments(), r.GetPlotXPrior(), i)
                                : curveAt(r.GetPlotYPriorArguments(), r.GetPlotYPrior(), i);
            if (plot.logLikelihood.y.empty() && plot.prior.y.empty()) continue;
            view.plots.push_back(plot);
        }
        PlotSet diff;
        diff.variable = fmt::format("{} ({} - {})", names[i], labels.second, labels.first);
        diff.parameter = "difference of means";
        diff.posterior = curveAt(r.GetPlotArguments(), r.GetPlotPosterior(), i);
        diff.ciLower = at(r.GetLowerLimits(), i);
        diff.ciUpper = at(r.GetUpperLimits(), i);
        diff.ciLevel = r.GetSettings().GetCILevel();
        // The factors test a difference of 0; without them there is no null
        // value to mark.
        if (WantsFactors(r.GetSettings())) diff.nullValue = 0.0;
        const double bf = at(r.GetBayesFactors(), i), logBf = at(r.GetLogBayesFactors(), i);
        // A factor that underflowed to 0 or overflowed is shown by its
        // logarithm.
        if (!MCMV::IsMissing(bf) && bf > 0.0) {
            diff.bayesFactor = bf;
        } else if (!MCMV::IsMissing(logBf)) {
            diff.bayesFactor = logBf;
            diff.bayesFactorIsLog = true;
        }
        diff.direction = FactorDirection::NullOverAlternative;
        if (diff.posterior.y.empty()) continue;
        view.plots.push_back(diff);
    }
}

} // namespace

bool DescribeIndependent(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const BSN2SampleIndOutputStats*>(&base);
    if (r == nullptr) return false;
    const MCBSN_850::BSNSettings& s = r->GetSettings();
    putGetters(*r, data, view);
    const std::vector<std::string> names = data.Names(r->GetGroupStatsVarIndices());
    const std::size_t rows = names.size();
    const auto labels = groupLabels(data, s.GetGroupVar());

    TextTable groups(fmt::format("Group statistics (frequency-weighted) by {}", data.Name(s.GetGroupVar())));
    groups.AddColumn("Variable", names);
    for (int g = 0; g < 2; ++g) {
        const std::string& label = g == 0 ? labels.first : labels.second;
        groups.AddColumn("N " + label, intCells(g == 0 ? r->GetGroup1StatsNs() : r->GetGroup2StatsNs(), rows));
        groups.AddColumn("Mean " + label,
                         FormatNumbers(g == 0 ? r->GetGroup1MeanValues() : r->GetGroup2MeanValues(), rows));
        groups.AddColumn("Std. dev. " + label,
                         FormatNumbers(g == 0 ? r->GetGroup1StdDevs() : r->GetGroup2StdDevs(), rows));
        groups.AddColumn("Std. error " + label, FormatNumbers(g == 0 ? r->GetGroup1EMs() : r->GetGroup2EMs(), rows));
    }
    if (data.varList.IsValidIndex(s.GetGroupVar())) {
        const auto& all = data.varList.Get(s.GetGroupVar()).GetValueLabels();
        if (all.size() > 2) {
            std::string rest;
            for (std::size_t k = 2; k < all.size(); ++k) rest += (k > 2 ? ", " : "") + all[k];
            groups.AddNote(
                fmt::format("The groups are the first two categories of {} ({}, {}); cases in {} are left out.",
                            data.Name(s.GetGroupVar()), labels.first, labels.second, rest));
        }
    }
    view.tables.push_back(groups);

    if (WantsFactors(s)) {
        TextTable tests(fmt::format("Independent-samples t tests ({} - {})", labels.second, labels.first));
        tests.AddColumn("Variable", names);
        tests.AddColumn("Mean difference", FormatNumbers(r->GetMeanDiffValues(), rows));
        tests.AddColumn("t", FormatNumbers(r->GetTValues(), rows));
        tests.AddColumn("df", FormatNumbers(r->GetDFValues(), rows));
        tests.AddColumn("Sig. (2-tailed)", FormatNumbers(r->GetSigs(), rows));
        tests.AddColumn("Std. error", FormatNumbers(r->GetPStdEDDevs(), rows));
        tests.AddColumn("Welch t", FormatNumbers(r->GetWelchTValues(), rows));
        tests.AddColumn("Welch df", FormatNumbers(r->GetWelchDFValues(), rows));
        tests.AddColumn("Welch sig.", FormatNumbers(r->GetWelchSigs(), rows));
        tests.AddColumn("Welch std. error", FormatNumbers(r->GetWelchStdEDDevs(), rows));
        tests.AddNote("t, df, Sig.: pooled (equal variances); Welch: unequal variances.");
        view.tables.push_back(tests);

        TextTable factors = BayesFactorTable(fmt::format("Bayes factor of equal means ({})", factorName(s)), names,
                                             r->GetBayesFactors(), {});
        factors.AddColumn("log BF", FormatNumbers(r->GetLogBayesFactors(), rows));
        if (s.GetRegrCompType() == C::Gonen &&
            (MCMV::IsMissing(s.GetRegrComPar()) || MCMV::IsMissing(s.GetSecondGonenPar())))
            factors.AddNote("The Gonen factor needs RegrComPar (prior mean of the effect) and SecondGonenPar "
                            "(its prior variance, above 0).");
        view.tables.push_back(factors);
    }
    if (WantsPosterior(s)) {
        TextTable post = PosteriorTable(fmt::format("Posterior of the difference of means ({} - {})", labels.second,
                                                    labels.first),
                                        names, s.GetCILevel(), r->GetModeValues(), r->GetPostMeanValues(),
                                        r->GetVarianceValues(), r->GetLowerLimits(), r->GetUpperLimits());
        if (const std::string note = priorNote(s); !note.empty()) post.AddNote(note);
        view.tables.push_back(post);
    }
    addPlots(*r, names, labels, view);
    return true;
}

} // namespace bsncli
