#include "bsn/onesample/bsn1samplenormoutputstats.h"

#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormal.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {

// Results reach the host only through here: anything that is not a finite
// number becomes the system-missing value.
std::vector<double> clean(const std::vector<double>& v) {
    std::vector<double> out(v);
    for (double& x : out) x = MCCommon_850::MCMV::Sanitize(x);
    return out;
}

std::vector<std::vector<double>> clean(const std::vector<std::vector<double>>& v) {
    std::vector<std::vector<double>> out;
    out.reserve(v.size());
    for (const auto& inner : v) out.push_back(clean(inner));
    return out;
}

} // namespace

class BSN1SampleNormOutputStatsImp {
public:
    explicit BSN1SampleNormOutputStatsImp(const BSNSettings& s) : settings(s) {}

    BSNSettings settings;
    std::vector<int> varIndices;
    std::vector<double> bayesFactors;
    std::vector<double> ns;
    std::vector<double> stdDevs;
    std::vector<double> stdErrors;
    std::vector<double> dfs;
    std::vector<double> sigs;
    std::vector<double> tValues;
    std::vector<double> modes;
    std::vector<double> postMeans;
    std::vector<double> variances;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    std::vector<double> means;
    std::vector<std::vector<double>> argsLikelihood;
    std::vector<std::vector<double>> argsPrior;
    std::vector<std::vector<double>> argsPosterior;
    std::vector<std::vector<double>> likelihoods;
    std::vector<std::vector<double>> posteriors;
    std::vector<std::vector<double>> priors;
};

BSN1SampleNormOutputStats::BSN1SampleNormOutputStats(const BSNSettings& settings)
    : m_imp(std::make_unique<BSN1SampleNormOutputStatsImp>(settings)) {
    m_imp->varIndices = settings.GetCovariates();
}

BSN1SampleNormOutputStats::BSN1SampleNormOutputStats(const BSNSettings& settings, const BSN1SampleNormal& procedure)
    : BSN1SampleNormOutputStats(settings) {
    const BSN1SampleNormal& p = procedure;
    SetOutputValues(settings, settings.GetCovariates(), p.GetFactors(), p.GetNs(), p.GetStdDeviations(),
                    p.GetStdErrorMeans(), p.GetDfs(), p.GetSigs(), p.GetTtests(), p.getModeValues(),
                    p.getPostMeanValues(), p.getVariances(), p.getLowerimits(), p.getUpperLimits(), p.GetMeans());
    SetPlotValues(p.GetPlotArguments4Likelihoods(), p.GetPlotArguments4Prior(), p.GetPlotArguments4Posterior(),
                  p.GetPlotLikelihoods(), p.GetPlotPosterior(), p.GetPlotPrior());
}

BSN1SampleNormOutputStats::~BSN1SampleNormOutputStats() = default;

BSN1SampleNormOutputStats::BSN1SampleNormOutputStats(const BSN1SampleNormOutputStats& other)
    : BSNOutputStats(other), m_imp(std::make_unique<BSN1SampleNormOutputStatsImp>(*other.m_imp)) {}

BSN1SampleNormOutputStats& BSN1SampleNormOutputStats::operator=(const BSN1SampleNormOutputStats& other) {
    if (this != &other) *m_imp = *other.m_imp;
    return *this;
}

void BSN1SampleNormOutputStats::SetOutputValues(
    const BSNSettings& settings, const std::vector<int>& varIndices, const std::vector<double>& bayesFactors,
    const std::vector<double>& ns, const std::vector<double>& stdDevs, const std::vector<double>& stdErrors,
    const std::vector<double>& dfs, const std::vector<double>& sigs, const std::vector<double>& tValues,
    const std::vector<double>& modes, const std::vector<double>& postMeans, const std::vector<double>& variances,
    const std::vector<double>& lowerLimits, const std::vector<double>& upperLimits, const std::vector<double>& means) {
    BSN1SampleNormOutputStatsImp& d = *m_imp;
    d.settings = settings;
    d.varIndices = varIndices;
    d.bayesFactors = clean(bayesFactors);
    d.ns = clean(ns);
    d.stdDevs = clean(stdDevs);
    d.stdErrors = clean(stdErrors);
    d.dfs = clean(dfs);
    d.sigs = clean(sigs);
    d.tValues = clean(tValues);
    d.modes = clean(modes);
    d.postMeans = clean(postMeans);
    d.variances = clean(variances);
    d.lowerLimits = clean(lowerLimits);
    d.upperLimits = clean(upperLimits);
    d.means = clean(means);
}

void BSN1SampleNormOutputStats::SetPlotValues(const Curves& argsLikelihood, const Curves& argsPrior,
                                              const Curves& argsPosterior, const Curves& likelihoods,
                                              const Curves& posteriors, const Curves& priors) {
    BSN1SampleNormOutputStatsImp& d = *m_imp;
    d.argsLikelihood = clean(argsLikelihood);
    d.argsPrior = clean(argsPrior);
    d.argsPosterior = clean(argsPosterior);
    d.likelihoods = clean(likelihoods);
    d.posteriors = clean(posteriors);
    d.priors = clean(priors);
}

const BSNSettings& BSN1SampleNormOutputStats::GetSettings() const { return m_imp->settings; }
const std::vector<int>& BSN1SampleNormOutputStats::GetVarIndices() const { return m_imp->varIndices; }
const std::vector<double>& BSN1SampleNormOutputStats::GetBayesFactors() const { return m_imp->bayesFactors; }
const std::vector<double>& BSN1SampleNormOutputStats::GetNs() const { return m_imp->ns; }
const std::vector<double>& BSN1SampleNormOutputStats::GetStdDevs() const { return m_imp->stdDevs; }
const std::vector<double>& BSN1SampleNormOutputStats::GetEMs() const { return m_imp->stdErrors; }
const std::vector<double>& BSN1SampleNormOutputStats::GetDFValues() const { return m_imp->dfs; }
const std::vector<double>& BSN1SampleNormOutputStats::GetSigs() const { return m_imp->sigs; }
const std::vector<double>& BSN1SampleNormOutputStats::GetTValues() const { return m_imp->tValues; }
const std::vector<double>& BSN1SampleNormOutputStats::GetModeValues() const { return m_imp->modes; }
const std::vector<double>& BSN1SampleNormOutputStats::GetPostMeanValues() const { return m_imp->postMeans; }
const std::vector<double>& BSN1SampleNormOutputStats::GetVarianceValues() const { return m_imp->variances; }
const std::vector<double>& BSN1SampleNormOutputStats::GetLowerLimits() const { return m_imp->lowerLimits; }
const std::vector<double>& BSN1SampleNormOutputStats::GetMeanValues() const { return m_imp->means; }
const std::vector<double>& BSN1SampleNormOutputStats::GetUpperLimits() const { return m_imp->upperLimits; }

const BSN1SampleNormOutputStats::Curves& BSN1SampleNormOutputStats::GetPlotArguments4Likelihoods() const {
    return m_imp->argsLikelihood;
}
const BSN1SampleNormOutputStats::Curves& BSN1SampleNormOutputStats::GetPlotArguments4Prior() const {
    return m_imp->argsPrior;
}
const BSN1SampleNormOutputStats::Curves& BSN1SampleNormOutputStats::GetPlotArguments4Posterior() const {
    return m_imp->argsPosterior;
}
const BSN1SampleNormOutputStats::Curves& BSN1SampleNormOutputStats::GetPlotLikelihoods() const {
    return m_imp->likelihoods;
}
const BSN1SampleNormOutputStats::Curves& BSN1SampleNormOutputStats::GetPlotPosterior() const {
    return m_imp->posteriors;
}
const BSN1SampleNormOutputStats::Curves& BSN1SampleNormOutputStats::GetPlotPrior() const { return m_imp->priors; }

void BSN1SampleNormOutputStats::DisplayFields() const {
    using namespace MCDisplay_850;
    const BSN1SampleNormOutputStatsImp& d = *m_imp;
    DisplayIV("Variable Indices", d.varIndices);
    DisplayDV("Bayes Factors", d.bayesFactors);
    DisplayDV("Ns", d.ns);
    DisplayDV("Standard Deviations", d.stdDevs);
    DisplayDV("Standard Error Means", d.stdErrors);
    DisplayDV("Degrees of Freedom", d.dfs);
    DisplayDV("Significances", d.sigs);
    DisplayDV("T Values", d.tValues);
    DisplayDV("Mode Values", d.modes);
    DisplayDV("Posterior Mean Values", d.postMeans);
    DisplayDV("Variance Values", d.variances);
    DisplayDV("Lower Limits", d.lowerLimits);
    DisplayDV("Upper Limits", d.upperLimits);
    DisplayDV("Mean Values", d.means);
    DisplayDVV("Plot Arguments for LogLikelihoods", d.argsLikelihood);
    DisplayDVV("Plot Arguments for Prior", d.argsPrior);
    DisplayDVV("Plot Arguments for Posterior", d.argsPosterior);
    DisplayDVV("Plot LogLikelihoods", d.likelihoods);
    DisplayDVV("Plot Posterior", d.posteriors);
    DisplayDVV("Plot Prior", d.priors);
}

void BSN1SampleNormOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleNormOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    BSNComponentDisplay::DisplayC("Analysis Type", m_imp->settings.GetAnalysType());
    DisplayFields();
    DisplayText(0, "End of display BSN1SampleNormOutputStats object");
}

} // namespace MCBSN_850
