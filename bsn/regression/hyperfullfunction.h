#pragma once
// HyperFullFunction: integrand of the hyper-g Bayes factor of a model
// against a full model (without the factor (a - 2)/2):
//   f(g) = (1 + g)^(-(N - 1 - pF + a)/2) (1 + rho g)^A.
#include <iosfwd>

#include "bsn/regression/bsnregrintegrand.h"

namespace MCBSN_850 {

class HyperFullFunction : public BSNRegrIntegrand {
public:
    HyperFullFunction(double N, double p, double pF, double R1squared, double RFsquared, double a);
    double LogNI(double g) const override;
    void Display(std::ostream& os) const;

private:
    double m_a, m_power1, m_A, m_rho;
};

} // namespace MCBSN_850
