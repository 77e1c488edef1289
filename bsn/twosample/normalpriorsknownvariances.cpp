#include "bsn/twosample/normalpriorsknownvariances.h"

#include <cmath>
#include <ostream>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

NormalPriorsKnownVariances::NormalPriorsKnownVariances(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                                       const MCMath_850::MCCancelInfo& cancel)
    : BSN2SampleIndPosterior(settings, varList, cancel) {}

void NormalPriorsKnownVariances::computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                                                 MCCommon_850::MCWarnings& /*warnings*/) {
    const std::vector<double>& s2 = m_settings.GetDataVarVals();
    const double a[2] = {m_settings.GetMeanDistParam1(), m_settings.GetMeanDistParam3()};
    const double b[2] = {m_settings.GetMeanDistParam2(), m_settings.GetMeanDistParam4()};
    const Group* g[2] = {&g0, &g1};
    if (!(g0.n + g1.n > 0.0)) return;
    // Each posterior mean as the sample mean pulled towards the prior mean,
    // m* = m - V (m - a) / b (V (1/b + n/s^2) = 1), so that the difference
    // of the two starts from the accurate m1 - m0. A group without cases
    // keeps its prior.
    double shrink[2], postVar[2];
    bool data[2];
    for (int k = 0; k < 2; ++k) {
        data[k] = g[k]->n > 0.0 && !MCMV::IsMissing(g[k]->mean);
        postVar[k] = 1.0 / (1.0 / b[k] + (data[k] ? g[k]->n / s2[k] : 0.0));
        shrink[k] = data[k] ? postVar[k] * (g[k]->mean - a[k]) / b[k] : 0.0;
        if (data[k]) knownVarianceLikelihood(i, k, g[k]->n, g[k]->mean, s2[k]);
        normalPrior(i, k, a[k], b[k]);
    }
    double postDiff = 0.0;
    if (data[0] && data[1])
        postDiff = diff - (shrink[1] - shrink[0]);
    else  // a prior mean stands in for the missing group
        postDiff = (data[1] ? g1.mean - shrink[1] : a[1]) - (data[0] ? g0.mean - shrink[0] : a[0]);
    normalPosterior(i, postDiff, postVar[0] + postVar[1]);
}

void NormalPriorsKnownVariances::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "NormalPriorsKnownVariances display start");
    DisplayDV("Known Variances", m_settings.GetDataVarVals());
    DisplayD("Prior Mean of mu0", m_settings.GetMeanDistParam1());
    DisplayD("Prior Variance of mu0", m_settings.GetMeanDistParam2());
    DisplayD("Prior Mean of mu1", m_settings.GetMeanDistParam3());
    DisplayD("Prior Variance of mu1", m_settings.GetMeanDistParam4());
    DisplayFields();
    DisplayText(0, "End of display NormalPriorsKnownVariances object");
}

} // namespace MCBSN_850
