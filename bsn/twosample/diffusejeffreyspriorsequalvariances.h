#pragma once
// DiffuseJeffreysPriorsEqualVariances: the posterior of the mean difference
// with one unknown variance common to both groups, flat priors on the group
// means and the prior 1/sigma^2: delta is Student t with n0 + n1 - 2 degrees
// of freedom, location m1 - m0 and scale the pooled standard error
// sp sqrt(1/n0 + 1/n1). Warning 410042 when a group has 5 or fewer cases
// (results still computed where defined), 410046 (and no results) when both
// groups are constant.
#include <iosfwd>
#include <string>

#include "bsn/twosample/bsn2sampleindposterior.h"

namespace MCBSN_850 {

class DiffuseJeffreysPriorsEqualVariances : public BSN2SampleIndPosterior {
public:
    DiffuseJeffreysPriorsEqualVariances(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                        const MCMath_850::MCCancelInfo& cancel);

    std::string GetName() const override { return "DiffuseJeffreysPriorsEqualVariances"; }
    void Display(std::ostream& os) const override;

protected:
    void computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                         MCCommon_850::MCWarnings& warnings) override;
};

} // namespace MCBSN_850
