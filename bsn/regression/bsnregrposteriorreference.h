#pragma once
// BSNRegrPosteriorReference: the regression posterior under the reference
// prior (flat on the coefficients and on log sigma). The coefficients follow
// Student t distributions with N - (p + 1) degrees of freedom around the
// least-squares estimates; sigma^2 an inverse gamma with shape nu/2 and scale
// nu s^2/2.
#include <iosfwd>

#include "bsn/regression/bsnregrposterior.h"

namespace MCBSN_850 {

class BSNRegrPosteriorReference : public BSNRegrPosterior {
public:
    using BSNRegrPosterior::BSNRegrPosterior;

    MCCommon_850::MCStatus ComputeStats() override;
    void Display(std::ostream& os) const override;

    // s^2 and, when nu > 2, the posterior mean of sigma^2 kept for the plots.
    double GetS2() const { return m_s2; }
    double GetPlotSigma2() const { return m_plotSigma2; }

protected:
    bool PriorCoefficient(int, double&, double&, double&) const override { return false; }
    bool PriorErrorVariance(double&, double&) const override { return false; }
    bool PriorPrediction(const std::vector<double>&, double&, double&, double&) const override { return false; }

private:
    double m_s2 = 0.0;
    double m_plotSigma2 = MCCommon_850::MCMV::Missing();
};

} // namespace MCBSN_850
