#include "bsn/correlation/bayesfactor2dimrng.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BayesFactor2DimRng::BayesFactor2DimRng(double lowerRho, double upperRho, double lowerV, double upperV)
    : m_lowerRho(lowerRho), m_upperRho(upperRho), m_lowerV(lowerV), m_upperV(upperV) {}

void BayesFactor2DimRng::SetSeed(unsigned long seed) {
    m_rho.SetSeed(seed);
    m_v.SetSeed(seed + 2);
}

void BayesFactor2DimRng::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFactor2DimRng display start");
    DisplayD("Lower rho", m_lowerRho);
    DisplayD("Upper rho", m_upperRho);
    DisplayD("Lower V", m_lowerV);
    DisplayD("Upper V", m_upperV);
    m_rho.Display(os);
    m_v.Display(os);
    DisplayText(0, "End of display BayesFactor2DimRng object");
}

} // namespace MCBSN_850
