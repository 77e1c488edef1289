#pragma once
// RouderNullFunction: integrand of the Zellner-Siow Bayes factor with scale
// r of a model against the intercept-only model:
//   f(g) = c(r) g^(-3/2) exp(-N r^2 / (2g)) (1 + g)^A (1 + (1 - R^2) g)^((1 - N)/2)
// with A = (N - p - 1)/2 and c(r) = r sqrt(N / (2 pi)): the inverse-gamma
// (1/2, N r^2 / 2) weight on g times the g-prior likelihood ratio.
#include <iosfwd>

#include "bsn/regression/bsnregrintegrand.h"

namespace MCBSN_850 {

class RouderNullFunction : public BSNRegrIntegrand {
public:
    RouderNullFunction(double N, double p, double R2, double r);
    double LogNI(double g) const override;
    void Display(std::ostream& os) const;

protected:
    double m_r, m_A, m_oneMinusR2, m_halfOneMinusN, m_c, m_logC, m_k;
};

} // namespace MCBSN_850
