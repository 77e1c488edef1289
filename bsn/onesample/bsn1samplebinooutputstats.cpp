#include "bsn/onesample/bsn1samplebinooutputstats.h"

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplebinomial.h"
#include "bsn/onesample/bsn1samplediscreteoutputdata.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

namespace {
// The code of the success category of a 0/1 test variable.
constexpr double kSuccessCode = 1.0;
} // namespace

class BSN1SampleBinoOutputStatsImpl : public BSN1SampleDiscreteOutputData {
public:
    BSN1SampleBinoOutputStatsImpl(const BSNSettings& settings, BSNAlgorithm& procedure);

    std::vector<double> cat1Indices, cat1Ns, cat2Ns, cat1Props, cat2Props;
    std::vector<std::vector<double>> plotArguments, plotLikelihoods, plotPrior, plotPosterior;

private:
    void fillCategories(const BSN1SampleBinoCounts& counts);
    void fillPlots(const BSN1SampleBinoConjPrior& posterior);
};

BSN1SampleBinoOutputStatsImpl::BSN1SampleBinoOutputStatsImpl(const BSNSettings& s, BSNAlgorithm& procedure)
    : BSN1SampleDiscreteOutputData(s, s.GetFactors()) {
    for (auto* v : {&cat1Indices, &cat1Ns, &cat2Ns, &cat1Props, &cat2Props}) v->assign(Size(), MCMV::Missing());
    for (auto* v : {&plotArguments, &plotLikelihoods, &plotPrior, &plotPosterior}) v->assign(Size(), {});

    const auto* binomial = dynamic_cast<const BSN1SampleBinomial*>(&procedure);
    if (binomial == nullptr) return;
    const BSN1SampleBinoBayesFactor* factor = binomial->GetBayesFactorWorker();
    const BSN1SampleBinoConjPrior* posterior = binomial->GetPosteriorWorker();
    if (factor != nullptr) CopyFactors(*factor);
    if (posterior != nullptr && posterior->GetCounts().Size() == Size()) {
        fillCategories(posterior->GetCounts());
        CopySummaries(*posterior);
        fillPlots(*posterior);
    } else if (factor != nullptr && factor->GetCounts().Size() == Size()) {
        fillCategories(factor->GetCounts());
    }
}

void BSN1SampleBinoOutputStatsImpl::fillCategories(const BSN1SampleBinoCounts& counts) {
    for (std::size_t i = 0; i < counts.Size(); ++i) {
        const double n = counts.GetTrials()[i];
        const double x = counts.GetSuccesses()[i];
        ns[i] = MCMV::Sanitize(n);
        cat1Indices[i] = kSuccessCode;
        cat1Ns[i] = MCMV::Sanitize(x);
        cat2Ns[i] = MCMV::Sanitize(n - x);
        if (n > 0.0) {
            cat1Props[i] = MCMV::Sanitize(x / n);
            cat2Props[i] = MCMV::Sanitize((n - x) / n);
        }
    }
}

void BSN1SampleBinoOutputStatsImpl::fillPlots(const BSN1SampleBinoConjPrior& posterior) {
    plotArguments = MCCommon_850::MCMV::Sanitize(posterior.GetPlotArguments());
    plotLikelihoods = MCCommon_850::MCMV::Sanitize(posterior.GetPlotLikelihoods());
    plotPrior = MCCommon_850::MCMV::Sanitize(posterior.GetPlotPrior());
    plotPosterior = MCCommon_850::MCMV::Sanitize(posterior.GetPlotPosterior());
}

BSN1SampleBinoOutputStats::BSN1SampleBinoOutputStats(const BSNSettings& settings, BSNAlgorithm& procedure)
    : m_impl(std::make_unique<BSN1SampleBinoOutputStatsImpl>(settings, procedure)) {}

BSN1SampleBinoOutputStats::~BSN1SampleBinoOutputStats() = default;

const BSNSettings& BSN1SampleBinoOutputStats::GetSettings() const { return m_impl->settings; }
const std::vector<int>& BSN1SampleBinoOutputStats::GetVarIndices() const { return m_impl->varIndices; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetBayesFactors() const { return m_impl->bayesFactors; }
const std::vector<bool>& BSN1SampleBinoOutputStats::GetIsLogBayesFactor() const { return m_impl->isLogBayesFactor; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetLogBayesFactors() const { return m_impl->logBayesFactors; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetNs() const { return m_impl->ns; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetCat1Indices() const { return m_impl->cat1Indices; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetCat1Ns() const { return m_impl->cat1Ns; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetCat2Ns() const { return m_impl->cat2Ns; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetCat1Props() const { return m_impl->cat1Props; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetCat2Props() const { return m_impl->cat2Props; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetModeValues() const { return m_impl->modes; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetMeanValues() const { return m_impl->means; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetVarianceValues() const { return m_impl->variances; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetLowerLimits() const { return m_impl->lowerLimits; }
const std::vector<double>& BSN1SampleBinoOutputStats::GetUpperLimits() const { return m_impl->upperLimits; }
const std::vector<std::vector<double>>& BSN1SampleBinoOutputStats::GetPlotArguments() const {
    return m_impl->plotArguments;
}
const std::vector<std::vector<double>>& BSN1SampleBinoOutputStats::GetPlotLikelihoods() const {
    return m_impl->plotLikelihoods;
}
const std::vector<std::vector<double>>& BSN1SampleBinoOutputStats::GetPlotPrior() const { return m_impl->plotPrior; }
const std::vector<std::vector<double>>& BSN1SampleBinoOutputStats::GetPlotPosterior() const {
    return m_impl->plotPosterior;
}

void BSN1SampleBinoOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    const BSN1SampleBinoOutputStatsImpl& d = *m_impl;
    DisplayText(0, "BSN1SampleBinoOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    d.DisplayFactors();
    DisplayDV("Category 1 indices", d.cat1Indices);
    DisplayDV("Category 1 Ns", d.cat1Ns);
    DisplayDV("Category 2 Ns", d.cat2Ns);
    DisplayDV("Category 1 proportions", d.cat1Props);
    DisplayDV("Category 2 proportions", d.cat2Props);
    d.DisplaySummaries();
    DisplayDVV("Plot arguments", d.plotArguments);
    DisplayDVV("Plot likelihoods", d.plotLikelihoods);
    DisplayDVV("Plot prior", d.plotPrior);
    DisplayDVV("Plot posterior", d.plotPosterior);
    DisplayText(0, "End of display BSN1SampleBinoOutputStats object");
}

} // namespace MCBSN_850
