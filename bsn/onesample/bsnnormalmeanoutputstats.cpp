#include "bsn/onesample/bsnnormalmeanoutputstats.h"

#include "bsn/onesample/bsnnormalmeanresults.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

class BSN1SampleNormOutputStatsImp {
public:
    explicit BSN1SampleNormOutputStatsImp(const BSNSettings& s) : settings(s) {}

    BSNSettings settings;
    std::vector<int> varIndices;
    std::vector<double> bayesFactors;
    std::vector<double> logBayesFactors;
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

BSNNormalMeanOutputStats::BSNNormalMeanOutputStats(const BSNSettings& settings)
    : m_imp(std::make_unique<BSN1SampleNormOutputStatsImp>(settings)) {
    m_imp->varIndices = settings.GetCovariates();
}

BSNNormalMeanOutputStats::BSNNormalMeanOutputStats(const BSNSettings& settings, const BSNNormalMeanResults& p)
    : BSNNormalMeanOutputStats(settings) {
    SetOutputValues(settings, settings.GetCovariates(), p.GetFactors(), p.GetNs(), p.GetStdDeviations(),
                    p.GetStdErrorMeans(), p.GetDfs(), p.GetSigs(), p.GetTtests(), p.getModeValues(),
                    p.getPostMeanValues(), p.getVariances(), p.getLowerimits(), p.getUpperLimits(), p.GetMeans());
    SetLogBayesFactors(p.GetLogBayesFactors());
    SetPlotValues(p.GetPlotArguments4Likelihoods(), p.GetPlotArguments4Prior(), p.GetPlotArguments4Posterior(),
                  p.GetPlotLikelihoods(), p.GetPlotPosterior(), p.GetPlotPrior());
}

BSNNormalMeanOutputStats::~BSNNormalMeanOutputStats() = default;

BSNNormalMeanOutputStats::BSNNormalMeanOutputStats(const BSNNormalMeanOutputStats& other)
    : BSNOutputStats(other), m_imp(std::make_unique<BSN1SampleNormOutputStatsImp>(*other.m_imp)) {}

BSNNormalMeanOutputStats& BSNNormalMeanOutputStats::operator=(const BSNNormalMeanOutputStats& other) {
    if (this != &other) *m_imp = *other.m_imp;
    return *this;
}

void BSNNormalMeanOutputStats::SetOutputValues(
    const BSNSettings& settings, const std::vector<int>& varIndices, const std::vector<double>& bayesFactors,
    const std::vector<double>& ns, const std::vector<double>& stdDevs, const std::vector<double>& stdErrors,
    const std::vector<double>& dfs, const std::vector<double>& sigs, const std::vector<double>& tValues,
    const std::vector<double>& modes, const std::vector<double>& postMeans, const std::vector<double>& variances,
    const std::vector<double>& lowerLimits, const std::vector<double>& upperLimits, const std::vector<double>& means) {
    BSN1SampleNormOutputStatsImp& d = *m_imp;
    d.settings = settings;
    d.varIndices = varIndices;
    d.bayesFactors = MCCommon_850::MCMV::Sanitize(bayesFactors);
    d.ns = MCCommon_850::MCMV::Sanitize(ns);
    d.stdDevs = MCCommon_850::MCMV::Sanitize(stdDevs);
    d.stdErrors = MCCommon_850::MCMV::Sanitize(stdErrors);
    d.dfs = MCCommon_850::MCMV::Sanitize(dfs);
    d.sigs = MCCommon_850::MCMV::Sanitize(sigs);
    d.tValues = MCCommon_850::MCMV::Sanitize(tValues);
    d.modes = MCCommon_850::MCMV::Sanitize(modes);
    d.postMeans = MCCommon_850::MCMV::Sanitize(postMeans);
    d.variances = MCCommon_850::MCMV::Sanitize(variances);
    d.lowerLimits = MCCommon_850::MCMV::Sanitize(lowerLimits);
    d.upperLimits = MCCommon_850::MCMV::Sanitize(upperLimits);
    d.means = MCCommon_850::MCMV::Sanitize(means);
}

void BSNNormalMeanOutputStats::SetLogBayesFactors(const std::vector<double>& logBayesFactors) {
    m_imp->logBayesFactors = MCCommon_850::MCMV::Sanitize(logBayesFactors);
}

void BSNNormalMeanOutputStats::SetPlotValues(const Curves& argsLikelihood, const Curves& argsPrior,
                                              const Curves& argsPosterior, const Curves& likelihoods,
                                              const Curves& posteriors, const Curves& priors) {
    BSN1SampleNormOutputStatsImp& d = *m_imp;
    d.argsLikelihood = MCCommon_850::MCMV::Sanitize(argsLikelihood);
    d.argsPrior = MCCommon_850::MCMV::Sanitize(argsPrior);
    d.argsPosterior = MCCommon_850::MCMV::Sanitize(argsPosterior);
    d.likelihoods = MCCommon_850::MCMV::Sanitize(likelihoods);
    d.posteriors = MCCommon_850::MCMV::Sanitize(posteriors);
    d.priors = MCCommon_850::MCMV::Sanitize(priors);
}

const BSNSettings& BSNNormalMeanOutputStats::GetSettings() const { return m_imp->settings; }
const std::vector<int>& BSNNormalMeanOutputStats::GetVarIndices() const { return m_imp->varIndices; }
const std::vector<double>& BSNNormalMeanOutputStats::GetBayesFactors() const { return m_imp->bayesFactors; }
const std::vector<double>& BSNNormalMeanOutputStats::GetLogBayesFactors() const { return m_imp->logBayesFactors; }
const std::vector<double>& BSNNormalMeanOutputStats::GetNs() const { return m_imp->ns; }
const std::vector<double>& BSNNormalMeanOutputStats::GetStdDevs() const { return m_imp->stdDevs; }
const std::vector<double>& BSNNormalMeanOutputStats::GetEMs() const { return m_imp->stdErrors; }
const std::vector<double>& BSNNormalMeanOutputStats::GetDFValues() const { return m_imp->dfs; }
const std::vector<double>& BSNNormalMeanOutputStats::GetSigs() const { return m_imp->sigs; }
const std::vector<double>& BSNNormalMeanOutputStats::GetTValues() const { return m_imp->tValues; }
const std::vector<double>& BSNNormalMeanOutputStats::GetModeValues() const { return m_imp->modes; }
const std::vector<double>& BSNNormalMeanOutputStats::GetPostMeanValues() const { return m_imp->postMeans; }
const std::vector<double>& BSNNormalMeanOutputStats::GetVarianceValues() const { return m_imp->variances; }
const std::vector<double>& BSNNormalMeanOutputStats::GetLowerLimits() const { return m_imp->lowerLimits; }
const std::vector<double>& BSNNormalMeanOutputStats::GetMeanValues() const { return m_imp->means; }
const std::vector<double>& BSNNormalMeanOutputStats::GetUpperLimits() const { return m_imp->upperLimits; }

const BSNNormalMeanOutputStats::Curves& BSNNormalMeanOutputStats::GetPlotArguments4Likelihoods() const {
    return m_imp->argsLikelihood;
}
const BSNNormalMeanOutputStats::Curves& BSNNormalMeanOutputStats::GetPlotArguments4Prior() const {
    return m_imp->argsPrior;
}
const BSNNormalMeanOutputStats::Curves& BSNNormalMeanOutputStats::GetPlotArguments4Posterior() const {
    return m_imp->argsPosterior;
}
const BSNNormalMeanOutputStats::Curves& BSNNormalMeanOutputStats::GetPlotLikelihoods() const {
    return m_imp->likelihoods;
}
const BSNNormalMeanOutputStats::Curves& BSNNormalMeanOutputStats::GetPlotPosterior() const {
    return m_imp->posteriors;
}
const BSNNormalMeanOutputStats::Curves& BSNNormalMeanOutputStats::GetPlotPrior() const { return m_imp->priors; }

void BSNNormalMeanOutputStats::DisplayFields() const {
    using namespace MCDisplay_850;
    const BSN1SampleNormOutputStatsImp& d = *m_imp;
    DisplayIV("Variable Indices", d.varIndices);
    DisplayDV("Bayes Factors", d.bayesFactors);
    DisplayDV("Log Bayes Factors", d.logBayesFactors);
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

} // namespace MCBSN_850
