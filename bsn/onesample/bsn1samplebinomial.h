#pragma once
// BSN1SampleBinomial: Bayesian inference on a success proportion for each
// test variable (the settings' factor list). One data pass accumulates
// weighted trials and successes; then, as the analysis type asks, the Bayes
// factor of two beta priors and the conjugate beta posterior.
#include <iosfwd>

#include "bsn/onesample/bsn1samplebinobayesfactor.h"
#include "bsn/onesample/bsn1samplebinoconjprior.h"
#include "bsn/onesample/bsn1samplediscreteprocedure.h"

namespace MCBSN_850 {

class BSN1SampleBinomial : public BSN1SampleDiscreteProcedure<BSN1SampleBinoBayesFactor, BSN1SampleBinoConjPrior> {
public:
    BSN1SampleBinomial(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSN1SampleBinomial() override;

    void Display(std::ostream& os) const override;

protected:
    MCCommon_850::MCStatus GenerateOutput() override;
};

} // namespace MCBSN_850
