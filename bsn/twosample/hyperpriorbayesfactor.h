#pragma once
// HyperPriorBayesFactor: the Bayes factor of equal group means under a
// hyper-prior on the effect's scale with parameter a (GetRegrComPar), in
// closed form with nu = n0 + n1 - 2:
//   BF = Gamma((nu+1)/2) Gamma(a+1) / (Gamma(nu/2) Gamma(a+3/2)) (1 + t^2/nu)^(a + 1 - nu/2).
// The effective sample size does not enter. Computed on the log scale.
#include <iosfwd>

#include "bsn/twosample/bsn2sampleindbayesfactor.h"

namespace MCBSN_850 {

class HyperPriorBayesFactor : public BSN2SampleIndBayesFactor {
public:
    HyperPriorBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList);

    // ln BF for df, t and a; missing unless df > 0 and a > -1.
    static double LogFactor(double df, double t, double a);

    void Display(std::ostream& os) const override;

protected:
    MCCommon_850::MCStatus ComputeBF() override;
};

} // namespace MCBSN_850
