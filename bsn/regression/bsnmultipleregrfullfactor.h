#pragma once
// BSNMultipleRegrFullFactor: the Bayes factor of a model with p predictors
// against a full model with pF predictors that contains it, from both
// models' R squared. Each integrand value is the reciprocal of the g-prior
// factor of the full model against the model, so values above 1 favour the
// model. When the full model has more predictors the integrand grows with g
// and the value depends on the upper bound 1e6 of the integral.
#include <iosfwd>

#include "bsn/regression/bsnmultipleregrfactor.h"

namespace MCBSN_850 {

class BSNMultipleRegrFullFactor : public BSNMultipleRegrFactor {
public:
    BSNMultipleRegrFullFactor(const BSNSettings& settings, double N, double p, double pF, double R1squared,
                              double RFsquared);
    // Exactly 1 when the two R squared differ by less than the tolerance.
    MCCommon_850::MCStatus Compute() override;
    void Display(std::ostream& os) const override;

protected:
    MCCommon_850::MCStatus ComputeZellnerFactor() override;
    MCCommon_850::MCStatus ComputeSiowFactor() override;
    MCCommon_850::MCStatus ComputeHyperFactor() override;
    MCCommon_850::MCStatus ComputeRouderFactor() override;

private:
    double m_R1squared;
    double m_RFsquared;
    double m_pF;
};

} // namespace MCBSN_850
