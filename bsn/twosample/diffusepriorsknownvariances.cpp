#include "bsn/twosample/diffusepriorsknownvariances.h"

#include <cmath>
#include <ostream>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

DiffusePriorsKnownVariances::DiffusePriorsKnownVariances(const BSNSettings& settings,
                                                         const MCXML_850::MCVarList& varList,
                                                         const MCMath_850::MCCancelInfo& cancel)
    : BSN2SampleIndPosterior(settings, varList, cancel) {}

void DiffusePriorsKnownVariances::computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                                                  MCCommon_850::MCWarnings& /*warnings*/) {
    const std::vector<double>& s2 = m_settings.GetDataVarVals();
    if (!(g0.n > 0.0) || !(g1.n > 0.0) || MCMV::IsMissing(g0.mean) || MCMV::IsMissing(g1.mean)) return;
    knownVarianceLikelihood(i, 0, g0.n, g0.mean, s2[0]);
    knownVarianceLikelihood(i, 1, g1.n, g1.mean, s2[1]);
    flatPrior(i, 0);
    flatPrior(i, 1);
    normalPosterior(i, diff, s2[0] / g0.n + s2[1] / g1.n);
}

void DiffusePriorsKnownVariances::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "DiffusePriorsKnownVariances display start");
    DisplayDV("Known Variances", m_settings.GetDataVarVals());
    DisplayFields();
    DisplayText(0, "End of display DiffusePriorsKnownVariances object");
}

} // namespace MCBSN_850
