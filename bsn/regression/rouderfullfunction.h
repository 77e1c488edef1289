#pragma once
// RouderFullFunction: integrand of the Zellner-Siow Bayes factor with scale
// r of a model (p predictors) against a full model (pF predictors):
//   f(g) = c(r) g^(-3/2) exp(-N r^2 / (2g)) (1 + g)^(-AF) (1 + rho g)^A
// with A = (N - p - 1)/2, AF = (N - pF - 1)/2, rho = (1 - RF^2)/(1 - R1^2).
#include <iosfwd>

#include "bsn/regression/bsnregrintegrand.h"

namespace MCBSN_850 {

class RouderFullFunction : public BSNRegrIntegrand {
public:
    RouderFullFunction(double N, double p, double pF, double R1squared, double RFsquared, double r);
    double LogNI(double g) const override;
    void Display(std::ostream& os) const;

protected:
    double m_r, m_A, m_AF, m_rho, m_c, m_logC, m_k;
};

} // namespace MCBSN_850
