#include "bsn/correlation/fractionfunctiong1v.h"

#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

void FractionFunctionG1V::SetParam(double m, double r, double rho0) {
    m_twoRRho0 = 2.0 * r * rho0;
    m_base = 2.0 * (1.0 - r * rho0);
    m_mMinus1 = m - 1.0;
    m_logF1 = m_mMinus1 * (0.5 * std::log((1.0 - rho0) * (1.0 + rho0)) - std::log(m_base));
}

double FractionFunctionG1V::ComputeNI(double V) {
    if (!(V > 0.0)) return MCMV::Missing();
    const double s = std::sqrt(V);
    // s + 1/s - 2 r rho0 = (s-1)^2/s + (2 - 2 r rho0).
    const double excess = (s - 1.0) * (s - 1.0) / s;
    if (!(excess + m_base > 0.0)) return 0.0;
    return MCMV::Sanitize(std::exp(-m_mMinus1 * std::log1p(excess / m_base) - std::log(V)));
}

void FractionFunctionG1V::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "FractionFunctionG1V display start");
    DisplayD("2 r rho0", m_twoRRho0);
    DisplayD("2 - 2 r rho0", m_base);
    DisplayD("m - 1", m_mMinus1);
    DisplayD("Log F1", m_logF1);
    DisplayText(0, "End of display FractionFunctionG1V object");
}

} // namespace MCBSN_850
