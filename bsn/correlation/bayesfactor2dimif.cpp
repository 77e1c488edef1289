#include "bsn/correlation/bayesfactor2dimif.h"

#include <cmath>
#include <limits>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

BayesFactor2DimIF::BayesFactor2DimIF() { ResetMaxLog(); }

void BayesFactor2DimIF::SetParams(double b, double n, double r) {
    m_b = b;
    m_n = n;
    m_r = r;
    m_valid = !MCMV::IsMissing(b) && !MCMV::IsMissing(n) && !MCMV::IsMissing(r) && b > 0.0 && b <= 1.0 && n > 0.0 &&
              r >= -1.0 && r <= 1.0;
    ComputeTempPower();
}

void BayesFactor2DimIF::ComputeTempPower() {
    const double p = m_b * m_n;
    m_power1 = (p - 3.0) / 2.0;
    m_power2 = -(p - 1.0);
}

double BayesFactor2DimIF::ComputeLogIntegrand(double V, double rho) const {
    if (!m_valid || !(V > 0.0) || !(rho > -1.0 && rho < 1.0)) return MCMV::Missing();
    const double s = std::sqrt(V);
    return LogIntegrandFromParts(std::log((1.0 - rho) * (1.0 + rho)), std::log(V), (s - 1.0) * (s - 1.0) / s, rho);
}

void BayesFactor2DimIF::ResetMaxLog() {
    m_maxLog = -std::numeric_limits<double>::max();
    m_logScale = 0.0;
    m_headroom = kHeadroom;
}

void BayesFactor2DimIF::UpdateMaxLog(double V, double rho) { UpdateMaxLogValue(ComputeLogIntegrand(V, rho)); }

void BayesFactor2DimIF::UpdateMaxLogValue(double logValue) {
    if (!MCMV::IsMissing(logValue) && logValue > m_maxLog) m_maxLog = logValue;
}

void BayesFactor2DimIF::ComputeLogScale(long S) {
    const double logS = S > 1 ? std::log(static_cast<double>(S)) : 0.0;
    m_logScale = m_maxLog - (m_headroom - logS);
}

double BayesFactor2DimIF::ComputeMC(double V, double rho) const {
    if (!m_valid) return MCMV::Missing();
    if (!(V > 0.0) || !(rho > -1.0 && rho < 1.0)) return 0.0;
    return MCMV::Sanitize(std::exp(ComputeLogIntegrand(V, rho) - m_logScale));
}

double BayesFactor2DimIF::ComputeMCDirect(double V, double rho) const {
    if (!m_valid) return MCMV::Missing();
    if (!(V > 0.0) || !(rho > -1.0 && rho < 1.0)) return 0.0;
    return MCMV::Sanitize(std::exp(ComputeLogIntegrand(V, rho)));
}

void BayesFactor2DimIF::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFactor2DimIF display start");
    DisplayD("Fraction b", m_b);
    DisplayD("n", m_n);
    DisplayD("r", m_r);
    DisplayB("Valid", m_valid);
    DisplayD("Maximum log integrand", m_maxLog);
    DisplayD("Log scale", m_logScale);
    DisplayD("Headroom", m_headroom);
    DisplayD("(p-3)/2", m_power1);
    DisplayD("-(p-1)", m_power2);
    DisplayText(0, "End of display BayesFactor2DimIF object");
}

} // namespace MCBSN_850
