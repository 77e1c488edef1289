#include "bsn/onesample/bsn1samplebinobayesfactor.h"

#include "bsn/onesample/bsn1samplediscreteutils.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mclgamma.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCLogGamma;

BSN1SampleBinoBayesFactor::BSN1SampleBinoBayesFactor(const BSNSettings& settings)
    : BSN1SampleDiscreteFactor(settings, settings.GetFactors()) {}

double BSN1SampleBinoBayesFactor::computeLogBeta(double a, double b) {
    if (a == 0.0 && b == 0.0) return 0.0;
    return MCLogGamma::LogBeta(a, b);
}

double BSN1SampleBinoBayesFactor::logFactor(double n, double x, const Priors& p) {
    // The marginal likelihood under Beta(a, b) is B(a + x, b + n − x) / B(a, b)
    // times the binomial coefficient, which cancels in the ratio:
    //   LB(a0 + x, b0 + n − x) − LB(a1 + x, b1 + n − x) + LB(a1, b1) − LB(a0, b0).
    // The first two terms are of the size of n ln n; they are taken as one
    // difference in which each lnΓ of a count meets the same count under the
    // other prior, so that no digit of the factor is lost to the size of n.
    const double data = MCLogGamma::BetaDiff(x, n - x, p.a0, p.b0, p.a1, p.b1);
    const double priors[] = {computeLogBeta(p.a1, p.b1), computeLogBeta(p.a0, p.b0)};
    if (MCMV::IsMissing(data) || MCMV::IsMissing(priors[0]) || MCMV::IsMissing(priors[1])) return MCMV::Missing();
    return MCMV::Sanitize(data + (priors[0] - priors[1]));
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
