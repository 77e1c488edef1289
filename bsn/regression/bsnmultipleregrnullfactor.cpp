#include "bsn/regression/bsnmultipleregrnullfactor.h"

#include <cmath>
#include <ostream>

#include "bsn/regression/hypernullfunction.h"
#include "bsn/regression/roudernullfunction.h"
#include "bsn/regression/siownullfunction.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSNMultipleRegrNullFactor::BSNMultipleRegrNullFactor(const BSNSettings& settings, double N, double p, double R2)
    : BSNMultipleRegrFactor(settings, N, p), m_R2(R2) {}

MCStatus BSNMultipleRegrNullFactor::ComputeZellnerFactor() {
    const double g = m_settings.GetRegrComPar();
    if (MCMV::IsMissing(g)) return m_status;
    const double A = (m_N - m_p - 1.0) / 2.0;
    StoreLogFactor(A * std::log1p(g) + ((1.0 - m_N) / 2.0) * std::log1p((1.0 - m_R2) * g));
    return m_status;
}

MCStatus BSNMultipleRegrNullFactor::ComputeSiowFactor() {
    SiowNullFunction f(m_N, m_p, m_R2);
    const double integral = Compute1DIntegral(&f);
    StoreIntegral(1.0, integral, GetLastLogIntegral());
    return m_status;
}

MCStatus BSNMultipleRegrNullFactor::ComputeRouderFactor() {
    const double r = m_settings.GetRegrComPar();
    if (MCMV::IsMissing(r)) return m_status;
    RouderNullFunction f(m_N, m_p, m_R2, r);
    const double integral = Compute1DIntegral(&f);
    StoreIntegral(1.0, integral, GetLastLogIntegral());
    return m_status;
}

MCStatus BSNMultipleRegrNullFactor::ComputeHyperFactor() {
    const double a = m_settings.GetRegrComPar();
    if (MCMV::IsMissing(a)) return m_status;
    HyperNullFunction f(m_N, m_p, m_R2, a);
    const double integral = Compute1DIntegral(&f);
    StoreIntegral((a - 2.0) / 2.0, integral, GetLastLogIntegral());
    return m_status;
}

void BSNMultipleRegrNullFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNMultipleRegrNullFactor Display start");
    DisplayD("Bayes factor", m_bayesFactor);
    DisplayD("Log Bayes factor", m_logBayesFactor);
    DisplayD("N", m_N);
    DisplayD("p", m_p);
    DisplayD("R squared", m_R2);
    DisplayText(0, "BSNMultipleRegrNullFactor Display end");
}

} // namespace MCBSN_850
