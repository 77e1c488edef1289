#pragma once
// HyperNullFunction: integrand of the hyper-g Bayes factor of a model
// against the intercept-only model (without the factor (a - 2)/2):
//   f(g) = (1 + g)^((N - 1 - p - a)/2) (1 + (1 - R^2) g)^(-(N - 1)/2).
#include <iosfwd>

#include "bsn/regression/bsnregrintegrand.h"

namespace MCBSN_850 {

class HyperNullFunction : public BSNRegrIntegrand {
public:
    HyperNullFunction(double N, double p, double R2, double a);
    double LogNI(double g) const override;
    void Display(std::ostream& os) const;

private:
    double m_a, m_power1, m_oneMinusR2, m_halfOneMinusN;
};

} // namespace MCBSN_850
