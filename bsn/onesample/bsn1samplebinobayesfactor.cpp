#include "bsn/onesample/bsn1samplebinobayesfactor.h"

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplediscreteutils.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

// The null prior defaults to Beta(2, 2): mildly concentrated around 1/2.
constexpr double kDefaultNullPrior = 2.0;

} // namespace

BSN1SampleBinoBayesFactor::BSN1SampleBinoBayesFactor(const BSNSettings& settings)
    : m_settings(settings), m_counts(settings.GetFactors()), m_bayesFactors(m_counts.Size(), MCMV::Missing()),
      m_isLog(m_counts.Size(), false) {}

MCStatus BSN1SampleBinoBayesFactor::EndDataPass() {
    m_status = m_counts.HasAnyTrial() ? MCStatus() : MCStatus(410003, false);
    return m_status;
}

double BSN1SampleBinoBayesFactor::computeLogBeta(double a, double b) {
    if (a == 0.0 && b == 0.0) return 0.0;
    const double la = MCDistFun::quondnlgam(a);
    const double lb = MCDistFun::quondnlgam(b);
    const double lab = MCDistFun::quondnlgam(a + b);
    if (MCMV::IsMissing(la) || MCMV::IsMissing(lb) || MCMV::IsMissing(lab)) return MCMV::Missing();
    return la + lb - lab;
}

double BSN1SampleBinoBayesFactor::logFactor(double n, double x, double a0, double b0, double a1, double b1) {
    // Marginal likelihood under Beta(a, b) is B(a + x, b + n − x) / B(a, b)
    // (the binomial coefficient cancels in the ratio).
    const double terms[] = {computeLogBeta(a0 + x, b0 + n - x), computeLogBeta(a1, b1),
                            computeLogBeta(a1 + x, b1 + n - x), computeLogBeta(a0, b0)};
    for (double t : terms)
        if (MCMV::IsMissing(t)) return MCMV::Missing();
    return MCMV::Sanitize(terms[0] + terms[1] - terms[2] - terms[3]);
}

MCStatus BSN1SampleBinoBayesFactor::ComputeBFs() {
    const std::vector<double>& n = m_counts.GetTrials();
    const std::vector<double>& x = m_counts.GetSuccesses();
    bool anyLog = false;
    for (std::size_t i = 0; i < m_counts.Size(); ++i) {
        const double a0 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetNullPrior1s(), i, kDefaultNullPrior);
        const double b0 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetNullPrior2s(), i, kDefaultNullPrior);
        const double a1 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetAlterPrior1s(), i, MCMV::Missing());
        const double b1 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetAlterPrior2s(), i, MCMV::Missing());
        if (MCMV::IsMissing(a1) || MCMV::IsMissing(b1)) {
            BSN1SampleDiscreteUtils::AddVariableWarning(m_warnings, 410018, i);
            continue;
        }
        if (n[i] < 1.0) {
            BSN1SampleDiscreteUtils::AddVariableWarning(m_warnings, 410037, i);
            continue;
        }
        bool isLog = false;
        if (BSN1SampleDiscreteUtils::StoreFactor(logFactor(n[i], x[i], a0, b0, a1, b1), m_bayesFactors[i], isLog))
            anyLog = true;
        m_isLog[i] = isLog;
    }
    if (anyLog) m_warnings.AddWarning(MCStatus(410041, true), nullptr);
    m_status = MCStatus();
    return m_status;
}

void BSN1SampleBinoBayesFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleBinoBayesFactor display start");
    m_counts.Display(os);
    DisplayDV("Bayes factors", m_bayesFactors);
    DisplayBV("Is log Bayes factor", m_isLog);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayText(0, "End of display BSN1SampleBinoBayesFactor object");
}

} // namespace MCBSN_850
