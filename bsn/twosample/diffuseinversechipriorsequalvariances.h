#pragma once
// DiffuseInverseChiPriorsEqualVariances: the posterior of the mean
// difference with one unknown variance sigma^2 common to both groups, flat
// priors on the group means and a scaled inverse chi-square prior on
// sigma^2 with nu0 = GetPriorDistParam1() degrees of freedom and scale
// sigma0^2 = GetPriorDistParam2(). Then sigma^2 is scaled inverse chi-square
// with nu = nu0 + n0 + n1 - 2 and s^2 = (nu0 sigma0^2 + (n0-1) v0 + (n1-1) v1)/nu,
// and delta is Student t with nu degrees of freedom, location m1 - m0 and
// scale s sqrt(1/n0 + 1/n1). The prior keeps the posterior proper however
// few the cases; each group needs one.
#include <iosfwd>
#include <string>

#include "bsn/twosample/bsn2sampleindposterior.h"

namespace MCBSN_850 {

class DiffuseInverseChiPriorsEqualVariances : public BSN2SampleIndPosterior {
public:
    DiffuseInverseChiPriorsEqualVariances(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                          const MCMath_850::MCCancelInfo& cancel);

    std::string GetName() const override { return "DiffuseInverseChiPriorsEqualVariances"; }
    void Display(std::ostream& os) const override;

protected:
    void computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                         MCCommon_850::MCWarnings& warnings) override;
};

} // namespace MCBSN_850
