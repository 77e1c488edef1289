#include "bsn/regression/hyperfullfunction.h"

#include <cmath>

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

HyperFullFunction::HyperFullFunction(double N, double p, double pF, double R1squared, double RFsquared, double a)
    : m_a(a), m_power1(-(N - 1.0 - pF + a) / 2.0), m_A((N - p - 1.0) / 2.0),
      m_rho((1.0 - RFsquared) / (1.0 - R1squared)) {}

double HyperFullFunction::LogNI(double g) const { return m_power1 * std::log1p(g) + m_A * std::log1p(m_rho * g); }

void HyperFullFunction::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "HyperFullFunction display start");
    DisplayD("a", m_a);
    DisplayD("-(N - 1 - pF + a)/2", m_power1);
    DisplayD("A", m_A);
    DisplayD("rho", m_rho);
    DisplayText(0, "HyperFullFunction display end");
}

} // namespace MCBSN_850
