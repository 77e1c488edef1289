#pragma once
// BSNMultipleRegrNullFactor: the Bayes factor of a model with p predictors
// against the intercept-only model, from the model's R squared. Values above
// 1 favour the model.
#include <iosfwd>

#include "bsn/regression/bsnmultipleregrfactor.h"

namespace MCBSN_850 {

class BSNMultipleRegrNullFactor : public BSNMultipleRegrFactor {
public:
    BSNMultipleRegrNullFactor(const BSNSettings& settings, double N, double p, double R2);
    void Display(std::ostream& os) const override;

protected:
    MCCommon_850::MCStatus ComputeZellnerFactor() override;
    MCCommon_850::MCStatus ComputeSiowFactor() override;
    MCCommon_850::MCStatus ComputeHyperFactor() override;
    MCCommon_850::MCStatus ComputeRouderFactor() override;

private:
    double m_R2;
};

} // namespace MCBSN_850
