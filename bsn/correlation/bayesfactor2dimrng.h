#pragma once
// BayesFactor2DimRng: the two uniform random streams of the Monte-Carlo
// integral over (rho, V): one on [lower rho, upper rho], one on
// [lower V, upper V]. SetSeed(s) seeds the rho stream with s and the V
// stream with s + 2; draws never hit a bound (the uniforms are open).
#include <iosfwd>

#include "platform/random/mcrandomvalues.h"

namespace MCBSN_850 {

class BayesFactor2DimRng {
public:
    BayesFactor2DimRng(double lowerRho, double upperRho, double lowerV, double upperV);

    void SetSeed(unsigned long seed);
    double GetRho() { return m_lowerRho + (m_upperRho - m_lowerRho) * m_rho.GetUniform(); }
    double GetV() { return m_lowerV + (m_upperV - m_lowerV) * m_v.GetUniform(); }

    void Display(std::ostream& os) const;

private:
    double m_lowerRho, m_upperRho, m_lowerV, m_upperV;
    MCMath_850::MCRandomValues m_rho;
    MCMath_850::MCRandomValues m_v;
};

} // namespace MCBSN_850
