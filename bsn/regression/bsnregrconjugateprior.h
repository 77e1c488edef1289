#pragma once
// BSNRegrConjugatePrior: the regression posterior under the natural
// conjugate prior: beta | sigma^2 ~ N(beta0, sigma^2 V0) and sigma^2 ~ inverse
// gamma with shape a0 and scale b0. Redundant parameters are left out of the
// model (their rows and columns of V0 and X'X are zeroed), so the posterior
// is that of the model without them.
#include <iosfwd>

#include "bsn/regression/bsnregrposterior.h"

namespace MCBSN_850 {

class BSNRegrConjugatePrior : public BSNRegrPosterior {
public:
    using BSNRegrPosterior::BSNRegrPosterior;

    MCCommon_850::MCStatus ComputeStats() override;
    // The inverse by sweeping every pivot with relative tolerance 1e-12;
    // zero rows and columns where a pivot fails.
    static void MatrixInverse(const MCMath_850::MCSymMatrix& in, MCMath_850::MCSymMatrix& out) {
        invertBySweep(in, out);
    }
    void Display(std::ostream& os) const override;

    double GetAStar() const { return m_aStar; }
    double GetBStar() const { return m_bStar; }

protected:
    bool PriorCoefficient(int i, double& location, double& scale, double& df) const override;
    bool PriorErrorVariance(double& shape, double& rate) const override;
    bool PriorPrediction(const std::vector<double>& x, double& location, double& scale, double& df) const override;

private:
    double m_a0 = 0.0, m_b0 = 0.0, m_aStar = 0.0, m_bStar = 0.0;
    std::vector<double> m_beta0;
    MCMath_850::MCSymMatrix m_V0;
};

} // namespace MCBSN_850
