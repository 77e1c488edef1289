#include "bsn/regression/roudernullfunction.h"

#include <cmath>

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {
constexpr double kPi = 3.141592653589793;
}

RouderNullFunction::RouderNullFunction(double N, double p, double R2, double r)
    : m_r(r), m_A((N - p - 1.0) / 2.0), m_oneMinusR2(1.0 - R2), m_halfOneMinusN((1.0 - N) / 2.0),
      m_c(r * std::sqrt(N / (2.0 * kPi))), m_logC(std::log(m_c)), m_k(-N * r * r / 2.0) {}

double RouderNullFunction::LogNI(double g) const {
    return m_k / g + m_A * std::log1p(g) + m_halfOneMinusN * std::log1p(m_oneMinusR2 * g) + m_logC - 1.5 * std::log(g);
}

void RouderNullFunction::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "RouderNullFunction display start");
    DisplayD("r", m_r);
    DisplayD("A", m_A);
    DisplayD("1 - R squared", m_oneMinusR2);
    DisplayD("(1 - N)/2", m_halfOneMinusN);
    DisplayD("c", m_c);
    DisplayD("ln c", m_logC);
    DisplayD("k", m_k);
    DisplayText(0, "RouderNullFunction display end");
}

} // namespace MCBSN_850
