#include "bsn/onesample/bsn1samplepoisproir.h"

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {
constexpr std::pair<double, double> kMissingPair{MCMV::Missing(), MCMV::Missing()};
} // namespace

BSN1SamplePoisProir::BSN1SamplePoisProir(const BSNSettings& settings)
    : m_settings(settings), m_counts(settings.GetCovariates()) {
    initResults();
}

BSN1SamplePoisProir::BSN1SamplePoisProir(const BSNSettings& settings, const BSN1SamplePoisCounts& counts)
    : m_settings(settings), m_counts(counts) {
    initResults();
}

void BSN1SamplePoisProir::initResults() {
    const std::size_t nVars = m_counts.Size();
    for (auto* v : {&m_modes, &m_means, &m_variances, &m_lowerLimits, &m_upperLimits})
        v->assign(nVars, MCMV::Missing());
    m_posteriorParams.assign(nVars, kMissingPair);
    m_likelihoodParams.assign(nVars, kMissingPair);
}

MCStatus BSN1SamplePoisProir::EndDataPass() {
    m_status = m_counts.HasAnyCase() ? MCStatus() : MCStatus(410003, false);
    return m_status;
}

MCStatus BSN1SamplePoisProir::Compute() {
    if (m_settings.GetPriorType() != BSNConst::Conjugate) {
        m_status = MCStatus(410017, false);
        return m_status;
    }
    const double a = m_settings.GetPriorParam1();
    const double b = m_settings.GetPriorParam2();
    if (MCMV::IsMissing(a) || MCMV::IsMissing(b)) {
        m_status = MCStatus(410019, false);
        return m_status;
    }
    for (std::size_t i = 0; i < m_counts.Size(); ++i) computeVariable(i, a, b);
    m_status = MCStatus();
    return m_status;
}

void BSN1SamplePoisProir::computeVariable(std::size_t i, double a, double b) {
    const double N = m_counts.GetWeightSums()[i];
    const double S = m_counts.GetCountSums()[i];
    if (!(N > 0.0)) return;
    m_likelihoodParams[i] = {MCMV::Sanitize(-N), MCMV::Sanitize(S)};
    const double alpha = a + S;
    const double beta = b + N;
    // A non-positive prior parameter is an improper prior; the posterior is
    // still proper once the data make both parameters positive.
    if (!(alpha > 0.0) || !(beta > 0.0) || MCMV::IsMissing(alpha) || MCMV::IsMissing(beta)) return;
    m_posteriorParams[i] = {alpha, beta};
    m_means[i] = MCMV::Sanitize(alpha / beta);
    m_variances[i] = MCMV::Sanitize(alpha / (beta * beta));
    // Below shape 1 the density decreases from 0, so the mode is 0.
    m_modes[i] = alpha >= 1.0 ? MCMV::Sanitize((alpha - 1.0) / beta) : 0.0;
    const double q = (100.0 - m_settings.GetCILevel()) * 0.01 * 0.5;
    m_lowerLimits[i] = MCDistFun::IdfGam(q, alpha, beta);
    m_upperLimits[i] = MCDistFun::IdfGam(1.0 - q, alpha, beta);
}

void BSN1SamplePoisProir::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SamplePoisProir display start");
    m_counts.Display(os);
    DisplayDV("Mode values", m_modes);
    DisplayDV("Mean values", m_means);
    DisplayDV("Variance values", m_variances);
    DisplayDV("Lower limits", m_lowerLimits);
    DisplayDV("Upper limits", m_upperLimits);
    DisplayVPD("Posterior parameters", m_posteriorParams);
    DisplayVPD("Likelihood parameters", m_likelihoodParams);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayText(0, "End of display BSN1SamplePoisProir object");
}

} // namespace MCBSN_850
