#include "bsn/onesample/bsn1samplebinobayesfactor.h"

#include "bsn/onesample/bsn1samplediscreteutils.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

BSN1SampleBinoBayesFactor::BSN1SampleBinoBayesFactor(const BSNSettings& settings)
    : BSN1SampleDiscreteFactor(settings, settings.GetFactors()) {}

double BSN1SampleBinoBayesFactor::computeLogBeta(double a, double b) {
    if (a == 0.0 && b == 0.0) return 0.0;
    const double la = MCDistFun::quondnlgam(a);
    const double lb = MCDistFun::quondnlgam(b);
    const double lab = MCDistFun::quondnlgam(a + b);
    if (MCMV::IsMissing(la) || MCMV::IsMissing(lb) || MCMV::IsMissing(lab)) return MCMV::Missing();
    return la + lb - lab;
}

double BSN1SampleBinoBayesFactor::logFactor(double n, double x, const Priors& p) {
    // The marginal likelihood under Beta(a, b) is B(a + x, b + n − x) / B(a, b)
    // times the binomial coefficient, which cancels in the ratio.
    const double terms[] = {computeLogBeta(p.a0 + x, p.b0 + n - x), computeLogBeta(p.a1, p.b1),
                            computeLogBeta(p.a1 + x, p.b1 + n - x), computeLogBeta(p.a0, p.b0)};
    for (double t : terms)
        if (MCMV::IsMissing(t)) return MCMV::Missing();
    return MCMV::Sanitize(terms[0] + terms[1] - terms[2] - terms[3]);
}

MCStatus BSN1SampleBinoBayesFactor::ComputeBFs() {
    const std::vector<double>& n = m_counts.GetTrials();
    const std::vector<double>& x = m_counts.GetSuccesses();
    for (std::size_t i = 0; i < m_counts.Size(); ++i) {
        const Priors priors = priorsOf(i);
        if (MCMV::IsMissing(priors.a1) || MCMV::IsMissing(priors.b1)) {
            BSN1SampleDiscreteUtils::AddVariableWarning(m_warnings, 410018, i);
            continue;
        }
        if (n[i] < 1.0) {
            BSN1SampleDiscreteUtils::AddVariableWarning(m_warnings, 410037, i);
            continue;
        }
        storeFactor(i, logFactor(n[i], x[i], priors));
    }
    finishFactors();
    m_status = MCStatus();
    return m_status;
}

void BSN1SampleBinoBayesFactor::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "BSN1SampleBinoBayesFactor display start");
    displayFactors(os);
    MCDisplay_850::DisplayText(0, "End of display BSN1SampleBinoBayesFactor object");
}

} // namespace MCBSN_850
