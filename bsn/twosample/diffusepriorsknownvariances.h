#pragma once
// DiffusePriorsKnownVariances: the posterior of the mean difference with two
// known data variances s0^2, s1^2 (GetDataVarVals entries 0 and 1) and flat
// priors on the group means: delta is normal with mean m1 - m0 and variance
// s0^2/n0 + s1^2/n1. Each group needs a case.
#include <iosfwd>
#include <string>

#include "bsn/twosample/bsn2sampleindposterior.h"

namespace MCBSN_850 {

class DiffusePriorsKnownVariances : public BSN2SampleIndPosterior {
public:
    DiffusePriorsKnownVariances(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                const MCMath_850::MCCancelInfo& cancel);

    std::string GetName() const override { return "DiffusePriorsKnownVariances"; }
    void Display(std::ostream& os) const override;

protected:
    void computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                         MCCommon_850::MCWarnings& warnings) override;
};

} // namespace MCBSN_850
