#include "bsn/regression/hypernullfunction.h"

#include <cmath>

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

HyperNullFunction::HyperNullFunction(double N, double p, double R2, double a)
    : m_a(a), m_power1((N - 1.0 - p - a) / 2.0), m_oneMinusR2(1.0 - R2), m_halfOneMinusN((1.0 - N) / 2.0) {}

double HyperNullFunction::LogNI(double g) const {
    return m_power1 * std::log1p(g) + m_halfOneMinusN * std::log1p(m_oneMinusR2 * g);
}

void HyperNullFunction::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "HyperNullFunction display start");
    DisplayD("a", m_a);
    DisplayD("(N - 1 - p - a)/2", m_power1);
    DisplayD("1 - R squared", m_oneMinusR2);
    DisplayD("(1 - N)/2", m_halfOneMinusN);
    DisplayText(0, "HyperNullFunction display end");
}

} // namespace MCBSN_850
