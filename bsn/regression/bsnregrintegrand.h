#pragma once
// BSNRegrIntegrand: common base of the six integrands of the regression
// Bayes factors. Each is a function of g > 0 known through its logarithm;
// the quadrature sees exp(log value - scale), where the scale is the
// logarithm of the integrand's maximum, so that the integral neither
// overflows nor underflows whatever the sample size. These integrands are
// for quadrature only: their Monte-Carlo form is 0.
#include "platform/quadrature/iintegrand.h"

namespace MCBSN_850 {

class BSNRegrIntegrand : public MCMath_850::IIntegrand {
public:
    double ComputeMC(double, double) override { return 0.0; }
    double ComputeNI(double g) override;
    // The natural logarithm of the integrand at g.
    virtual double LogNI(double g) const = 0;

    void SetLogScale(double scale) { m_logScale = scale; }
    double GetLogScale() const { return m_logScale; }

private:
    double m_logScale = 0.0;
};

} // namespace MCBSN_850
