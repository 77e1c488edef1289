#pragma once
// BSN1SamplePoisson: Bayesian inference on a Poisson rate for each test
// variable (the settings' covariate list). One data pass accumulates the
// weighted sum of counts S and the sum of weights N; then, as the analysis
// type asks, the Bayes factor of two gamma priors and the conjugate gamma
// posterior.
#include <iosfwd>

#include "bsn/onesample/bsn1samplediscreteprocedure.h"
#include "bsn/onesample/bsn1samplepoisbayesfactor.h"
#include "bsn/onesample/bsn1samplepoisproir.h"

namespace MCBSN_850 {

class BSN1SamplePoisson : public BSN1SampleDiscreteProcedure<BSN1SamplePoisBayesFactor, BSN1SamplePoisProir> {
public:
    BSN1SamplePoisson(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSN1SamplePoisson() override;

    void Display(std::ostream& os) const override;

protected:
    MCCommon_850::MCStatus GenerateOutput() override;
};

} // namespace MCBSN_850
