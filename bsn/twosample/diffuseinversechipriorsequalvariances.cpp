#include "bsn/twosample/diffuseinversechipriorsequalvariances.h"

#include <cmath>
#include <ostream>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

DiffuseInverseChiPriorsEqualVariances::DiffuseInverseChiPriorsEqualVariances(const BSNSettings& settings,
                                                                             const MCXML_850::MCVarList& varList,
                                                                             const MCMath_850::MCCancelInfo& cancel)
    : BSN2SampleIndPosterior(settings, varList, cancel) {}

void DiffuseInverseChiPriorsEqualVariances::computeVariable(std::size_t i, const Group& g0, const Group& g1,
                                                            double diff, MCCommon_850::MCWarnings& /*warnings*/) {
    if (!(g0.n > 0.0) || !(g1.n > 0.0) || MCMV::IsMissing(g0.mean) || MCMV::IsMissing(g1.mean)) return;
    const double nu0 = m_settings.GetPriorDistParam1(), sigma02 = m_settings.GetPriorDistParam2();
    const double ss = g0.ss + g1.ss;
    const double nu = nu0 + g0.n + g1.n - 2.0;
    const double s2 = (nu0 * sigma02 + ss) / nu;
    const double df = g0.n + g1.n - 2.0;
    for (int k = 0; k < 2; ++k) {
        const Group& g = k == 0 ? g0 : g1;
        profileLikelihood(i, k, g.n, g.mean, ss, g0.n + g1.n, df);
        flatPrior(i, k);
    }
    tPosterior(i, diff, s2 * (1.0 / g0.n + 1.0 / g1.n), nu);
}

void DiffuseInverseChiPriorsEqualVariances::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "DiffuseInverseChiPriorsEqualVariances display start");
    DisplayD("Prior Degrees of Freedom", m_settings.GetPriorDistParam1());
    DisplayD("Prior Scale", m_settings.GetPriorDistParam2());
    DisplayFields();
    DisplayText(0, "End of display DiffuseInverseChiPriorsEqualVariances object");
}

} // namespace MCBSN_850
