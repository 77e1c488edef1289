#pragma once
// NormalPriorsKnownVariances: the posterior of the mean difference with two
// known data variances s0^2, s1^2 (GetDataVarVals entries 0 and 1) and
// independent normal priors on the group means: mu0 ~ N(a0, b0) and
// mu1 ~ N(a1, b1) (GetMeanDistParam1..4). Each mu_g is normal with variance
// V_g = 1 / (1/b_g + n_g/s_g^2) and mean V_g (a_g/b_g + n_g m_g/s_g^2); delta
// is normal with mean m1* - m0* and variance V0 + V1. A group without cases
// keeps its prior.
#include <iosfwd>
#include <string>

#include "bsn/twosample/bsn2sampleindposterior.h"

namespace MCBSN_850 {

class NormalPriorsKnownVariances : public BSN2SampleIndPosterior {
public:
    NormalPriorsKnownVariances(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                               const MCMath_850::MCCancelInfo& cancel);

    std::string GetName() const override { return "NormalPriorsKnownVariances"; }
    void Display(std::ostream& os) const override;

protected:
    void computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                         MCCommon_850::MCWarnings& warnings) override;
};

} // namespace MCBSN_850
