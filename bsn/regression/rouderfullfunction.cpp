#include "bsn/regression/rouderfullfunction.h"

#include <cmath>

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {
constexpr double kPi = 3.141592653589793;
}

RouderFullFunction::RouderFullFunction(double N, double p, double pF, double R1squared, double RFsquared, double r)
    : m_r(r), m_A((N - p - 1.0) / 2.0), m_AF((N - pF - 1.0) / 2.0), m_rho((1.0 - RFsquared) / (1.0 - R1squared)),
      m_c(r * std::sqrt(N / (2.0 * kPi))), m_logC(std::log(m_c)), m_k(-N * r * r / 2.0) {}

double RouderFullFunction::LogNI(double g) const {
    return m_k / g - m_AF * std::log1p(g) + m_A * std::log1p(m_rho * g) + m_logC - 1.5 * std::log(g);
}

void RouderFullFunction::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "RouderFullFunction display start");
    DisplayD("r", m_r);
    DisplayD("A", m_A);
    DisplayD("AF", m_AF);
    DisplayD("rho", m_rho);
    DisplayD("c", m_c);
    DisplayD("ln c", m_logC);
    DisplayD("k", m_k);
    DisplayText(0, "RouderFullFunction display end");
}

} // namespace MCBSN_850
