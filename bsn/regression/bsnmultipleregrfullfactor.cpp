#include "bsn/regression/bsnmultipleregrfullfactor.h"

#include <cmath>
#include <ostream>

#include "bsn/regression/hyperfullfunction.h"
#include "bsn/regression/rouderfullfunction.h"
#include "bsn/regression/siowfullfunction.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSNMultipleRegrFullFactor::BSNMultipleRegrFullFactor(const BSNSettings& settings, double N, double p, double pF,
                                                     double R1squared, double RFsquared)
    : BSNMultipleRegrFactor(settings, N, p), m_R1squared(R1squared), m_RFsquared(RFsquared), m_pF(pF) {}

MCStatus BSNMultipleRegrFullFactor::Compute() {
    if (std::fabs(m_R1squared - m_RFsquared) < m_tolerance) {
        m_bayesFactor = 1.0;
        m_logBayesFactor = 0.0;
        return m_status;
    }
    return BSNMultipleRegrFactor::Compute();
}

MCStatus BSNMultipleRegrFullFactor::ComputeZellnerFactor() {
    const double g = m_settings.GetRegrComPar();
    if (MCMV::IsMissing(g)) return m_status;
    StoreLogFactor(((1.0 + m_pF - m_N) / 2.0) * std::log1p(g) +
                   ((m_N - m_p - 1.0) / 2.0) * std::log((1.0 - m_RFsquared) * g / (1.0 - m_R1squared) + 1.0));
    return m_status;
}

MCStatus BSNMultipleRegrFullFactor::ComputeSiowFactor() {
    SiowFullFunction f(m_N, m_p, m_pF, m_R1squared, m_RFsquared);
    const double integral = Compute1DIntegral(&f);
    StoreIntegral(1.0, integral, GetLastLogIntegral());
    return m_status;
}

MCStatus BSNMultipleRegrFullFactor::ComputeRouderFactor() {
    const double r = m_settings.GetRegrComPar();
    if (MCMV::IsMissing(r)) return m_status;
    RouderFullFunction f(m_N, m_p, m_pF, m_R1squared, m_RFsquared, r);
    const double integral = Compute1DIntegral(&f);
    StoreIntegral(1.0, integral, GetLastLogIntegral());
    return m_status;
}

MCStatus BSNMultipleRegrFullFactor::ComputeHyperFactor() {
    const double a = m_settings.GetRegrComPar();
    if (MCMV::IsMissing(a)) return m_status;
    HyperFullFunction f(m_N, m_p, m_pF, m_R1squared, m_RFsquared, a);
    const double integral = Compute1DIntegral(&f);
    StoreIntegral((a - 2.0) / 2.0, integral, GetLastLogIntegral());
    return m_status;
}

void BSNMultipleRegrFullFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNMultipleRegrFullFactor Display start");
    DisplayD("Bayes factor", m_bayesFactor);
    DisplayD("Log Bayes factor", m_logBayesFactor);
    DisplayD("N", m_N);
    DisplayD("p", m_p);
    DisplayD("R1 Squared", m_R1squared);
    DisplayD("RF Squared", m_RFsquared);
    DisplayD("P(Full Model)", m_pF);
    DisplayText(0, "BSNMultipleRegrFullFactor Display end");
}

} // namespace MCBSN_850
