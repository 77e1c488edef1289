#pragma once
// DiffusePriorsUnequalVariances: the posterior of the mean difference with
// two unknown, unequal variances, flat priors on the group means and the
// priors 1/sigma0^2, 1/sigma1^2: the exact Behrens-Fisher distribution
// delta = (m1 - m0) + sqrt(v1/n1) T1 - sqrt(v0/n0) T0 with T_g Student t with
// n_g - 1 degrees of freedom. Mode m1 - m0; mean the same when both n_g > 2;
// variance v0/n0 (n0-1)/(n0-3) + v1/n1 (n1-1)/(n1-3) when both n_g > 3;
// credible limits the exact quantiles. Warning 410042 when a group has 5 or
// fewer cases (results still computed where defined), 410046 when both
// groups are constant and 410047 when one is (no results in those two
// cases).
#include <iosfwd>
#include <string>

#include "bsn/twosample/bsn2sampleindposterior.h"

namespace MCBSN_850 {

class DiffusePriorsUnequalVariances : public BSN2SampleIndPosterior {
public:
    DiffusePriorsUnequalVariances(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                  const MCMath_850::MCCancelInfo& cancel);

    std::string GetName() const override { return "DiffusePriorsUnequalVariances"; }
    void Display(std::ostream& os) const override;

protected:
    void computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                         MCCommon_850::MCWarnings& warnings) override;
};

} // namespace MCBSN_850
