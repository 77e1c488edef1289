#include "bsn/correlation/bsnpearsoncorrelationoutputstats.h"

#include <ostream>

#include "bsn/correlation/bsnpearsoncorrelation.h"
#include "bsn/correlation/bsnpearsoncorrelationoutputstatsimp.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSNPearsonCorrelationOutputStats::BSNPearsonCorrelationOutputStats(const BSNSettings& settings,
                                                                   const BSNPearsonCorrelation& procedure)
    : m_imp(std::make_unique<BSNPearsonCorrelationOutputStatsImp>(settings, procedure)) {}

BSNPearsonCorrelationOutputStats::~BSNPearsonCorrelationOutputStats() = default;

using Imp = BSNPearsonCorrelationOutputStatsImp;
using Curves = BSNPearsonCorrelationOutputStats::Curves;

const std::vector<std::pair<int, int>>& BSNPearsonCorrelationOutputStats::GetVarPairIndices() const {
    return m_imp->varPairIndices;
}
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetPearsonCorrelation() const {
    return m_imp->pearsonCorrelation;
}
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetBayesFactor() const { return m_imp->bayesFactor; }
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetLogBayesFactors() const {
    return m_imp->logBayesFactors;
}
const std::vector<bool>& BSNPearsonCorrelationOutputStats::GetIsLogBayesFactor() const {
    return m_imp->isLogBayesFactor;
}
const std::vector<int>& BSNPearsonCorrelationOutputStats::GetIndIntegralFailed() const {
    return m_imp->indIntegralFailed;
}
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetVarPairN() const { return m_imp->varPairN; }
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetVarN() const { return m_imp->varN; }
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetPosteriorMode() const { return m_imp->posteriorMode; }
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetPosteriorMean() const { return m_imp->posteriorMean; }
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetPosteriorVariance() const {
    return m_imp->posteriorVariance;
}
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetPosteriorLowerBound() const {
    return m_imp->posteriorLowerBound;
}
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetPosteriorUpperBound() const {
    return m_imp->posteriorUpperBound;
}
const std::vector<double>& BSNPearsonCorrelationOutputStats::GetPlotXAxis() const { return m_imp->plotXAxis; }
const Curves& BSNPearsonCorrelationOutputStats::GetPlotLogLikelihood() const { return m_imp->plotLogLikelihood; }
const Curves& BSNPearsonCorrelationOutputStats::GetPlotPrior() const { return m_imp->plotPrior; }
const Curves& BSNPearsonCorrelationOutputStats::GetPlotPosterior() const { return m_imp->plotPosterior; }
const BSNSettings& BSNPearsonCorrelationOutputStats::GetSettings() const { return m_imp->settings; }

void BSNPearsonCorrelationOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNPearsonCorrelationOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    BSNComponentDisplay::DisplayC("Analysis Type", m_imp->settings.GetAnalysType());
    DisplayVPII("VarPairIndices", m_imp->varPairIndices);
    DisplayDV("PearsonCorrelation", m_imp->pearsonCorrelation);
    DisplayDV("BayesFactor", m_imp->bayesFactor);
    DisplayDV("LogBayesFactor", m_imp->logBayesFactors);
    DisplayBV("IsLogBayesFactor", m_imp->isLogBayesFactor);
    DisplayIV("Indices where Integral Failed", m_imp->indIntegralFailed);
    DisplayDV("VarPairRecordNumber", m_imp->varPairN);
    DisplayDV("VarRecordNumber", m_imp->varN);
    DisplayDV("PosteriorMode", m_imp->posteriorMode);
    DisplayDV("PosteriorMean", m_imp->posteriorMean);
    DisplayDV("PosteriorVariance", m_imp->posteriorVariance);
    DisplayDV("PosteriorLowerBound", m_imp->posteriorLowerBound);
    DisplayDV("PosteriorUpperBound", m_imp->posteriorUpperBound);
    DisplayDV("PlotXAxis", m_imp->plotXAxis);
    DisplayDVV("PlotLogLikelihood", m_imp->plotLogLikelihood);
    DisplayDVV("PlotPrior", m_imp->plotPrior);
    DisplayDVV("PlotPosterior", m_imp->plotPosterior);
    DisplayText(0, "End of display BSNPearsonCorrelationOutputStats object");
}

} // namespace MCBSN_850
