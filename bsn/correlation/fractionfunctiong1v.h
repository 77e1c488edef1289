#pragma once
// FractionFunctionG1V: the integrand over V of the null model's marginal in
// the fractional Bayes factor of a correlation, for a likelihood power m
// (m = n for the full likelihood, n b for the fraction b):
//   g(V) = ((2 - 2 r rho0) / (s + 1/s - 2 r rho0))^(m-1) / V,  s = sqrt(V),
// and 0 where s + 1/s - 2 r rho0 <= 0. Its value at V = 1 is 1, the largest
// value for m > 1; the constant factor left out is exp(GetLogF1()) with
//   log F1 = (m-1) (log(1-rho0^2)/2 - log(2 - 2 r rho0)).
// The power is taken as -(m-1) log1p((s-1)^2/s / (2 - 2 r rho0)), which
// keeps full accuracy next to V = 1 however large m is.
#include <iosfwd>

#include "platform/quadrature/iintegrand.h"

namespace MCBSN_850 {

class FractionFunctionG1V : public MCMath_850::IIntegrand {
public:
    FractionFunctionG1V() = default;

    void SetParam(double m, double r, double rho0);

    double GetTwoRRho0() const { return m_twoRRho0; }         // 2 r rho0
    double GetTwoMinusTwoRRho0() const { return m_base; }     // 2 - 2 r rho0
    double GetMMinus1() const { return m_mMinus1; }           // m - 1
    double GetLogF1() const { return m_logF1; }

    // g(V); missing for V <= 0.
    double ComputeNI(double V) override;

    void Display(std::ostream& os) const;

private:
    double m_twoRRho0 = 0.0;
    double m_base = 2.0;
    double m_mMinus1 = 0.0;
    double m_logF1 = 0.0;
};

} // namespace MCBSN_850
