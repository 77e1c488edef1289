#include "bsn/regression/bayesestimation.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

BayesEstimation BayesEstimation::Sanitized() const {
    return {MCMV::Sanitize(m_mode), MCMV::Sanitize(m_mean), MCMV::Sanitize(m_variance), MCMV::Sanitize(m_lower),
            MCMV::Sanitize(m_upper)};
}

void BayesEstimation::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesEstimation display start");
    DisplayD("Mode value", m_mode);
    DisplayD("Mean value for posterior", m_mean);
    DisplayD("Variance value", m_variance);
    DisplayD("Lower bound value", m_lower);
    DisplayD("Upper bound value", m_upper);
    DisplayText(0, "End of display BayesEstimation object");
}

} // namespace MCBSN_850
