#include "bsn/loglinear/bsnloglinearoutputstats.h"

#include "bsn/loglinear/bsnloglinear.h"
#include "bsn/loglinear/bsnloglinearoutputstatsimp.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSNLogLinearOutputStats::BSNLogLinearOutputStats(const BSNSettings& settings, const BSNLogLinear& procedure)
    : m_imp(std::make_unique<BSNLogLinearOutputStatsImp>(settings, procedure)) {}

BSNLogLinearOutputStats::~BSNLogLinearOutputStats() = default;

const BSNSettings& BSNLogLinearOutputStats::GetSettings() const { return m_imp->settings; }
const BSNContingency& BSNLogLinearOutputStats::GetContingencyMatrix() const { return m_imp->table; }
double BSNLogLinearOutputStats::GetBayesFactor() const { return m_imp->bayesFactor; }
bool BSNLogLinearOutputStats::IsLogBayesFactor() const { return m_imp->isLogBayesFactor; }
double BSNLogLinearOutputStats::GetLogBayesFactor() const { return m_imp->logBayesFactor; }
const std::vector<BayesEstimation>& BSNLogLinearOutputStats::GetPosteriorEstimations() const {
    return m_imp->estimations;
}
const std::vector<std::array<int, 4>>& BSNLogLinearOutputStats::GetPosteriorPairs() const { return m_imp->pairs; }
double BSNLogLinearOutputStats::GetFisher2SidedSig() const { return m_imp->fisher2; }
double BSNLogLinearOutputStats::GetFisher1SidedSig() const { return m_imp->fisher1; }
const MCMath_850::MCTestStats& BSNLogLinearOutputStats::GetChiSquareResult() const { return m_imp->chiSquare; }
const MCMath_850::MCTestStats& BSNLogLinearOutputStats::GetLikeRatioResult() const { return m_imp->likeRatio; }
const MCMath_850::MCTestStats& BSNLogLinearOutputStats::GetContCorrectResult() const { return m_imp->contCorrect; }
int BSNLogLinearOutputStats::GetT() const { return m_imp->t; }
int BSNLogLinearOutputStats::GetT1() const { return m_imp->t1; }
int BSNLogLinearOutputStats::GetT2() const { return m_imp->t2; }
const std::vector<std::vector<double>>& BSNLogLinearOutputStats::GetPlotArguments4Posterior() const {
    return m_imp->plotArguments;
}
const std::vector<std::vector<double>>& BSNLogLinearOutputStats::GetPlotPosterior() const {
    return m_imp->plotPosterior;
}

void BSNLogLinearOutputStats::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "BSNLogLinearOutputStats display start");
    m_imp->settings.Display(os);
    m_imp->Display(os);
    MCDisplay_850::DisplayText(0, "End of display BSNLogLinearOutputStats object");
}

} // namespace MCBSN_850
