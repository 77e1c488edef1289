#include "bsn/twosample/diffusepriorsunequalvariances.h"

#include <cmath>
#include <ostream>
#include <vector>

#include "bsn/twosample/behrensfisherdistribution.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

namespace {
// The exact limits could not be computed to their full accuracy.
constexpr int kInaccurateLimits = 420020;
} // namespace

DiffusePriorsUnequalVariances::DiffusePriorsUnequalVariances(const BSNSettings& settings,
                                                             const MCXML_850::MCVarList& varList,
                                                             const MCMath_850::MCCancelInfo& cancel)
    : BSN2SampleIndPosterior(settings, varList, cancel) {}

void DiffusePriorsUnequalVariances::computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                                                    MCCommon_850::MCWarnings& warnings) {
    if (!(g0.n > 5.0) || !(g1.n > 5.0)) warnAt(warnings, 410042, i);
    // Each group needs a variance of its own.
    if (!(g0.n >= 2.0) || !(g1.n >= 2.0) || MCMV::IsMissing(g0.variance) || MCMV::IsMissing(g1.variance) ||
        MCMV::IsMissing(g0.mean) || MCMV::IsMissing(g1.mean))
        return;
    const bool constant0 = !(g0.variance > 0.0), constant1 = !(g1.variance > 0.0);
    if (constant0 || constant1) {
        warnAt(warnings, constant0 && constant1 ? 410046 : 410047, i);
        return;
    }
    for (int k = 0; k < 2; ++k) {
        const Group& g = k == 0 ? g0 : g1;
        profileLikelihood(i, k, g.n, g.mean, g.ss, g.n, g.n - 1.0);
        flatPrior(i, k);
    }
    const double d = diff;
    const BehrensFisherDistribution dist(std::sqrt(g0.variance / g0.n), g0.n - 1.0, std::sqrt(g1.variance / g1.n),
                                         g1.n - 1.0);
    const double q = dist.Quantile(Alpha() / 2.0);  // the lower tail; the distribution is symmetric
    const bool hasMean = g0.n > 2.0 && g1.n > 2.0;
    setSummary(i, d, hasMean ? d : MCMV::Missing(), dist.Variance(), MCMV::IsMissing(q) ? q : d + q,
               MCMV::IsMissing(q) ? q : d - q);
    if (!dist.Converged()) warnAt(warnings, kInaccurateLimits, i);
    const double level = m_settings.GetPlotDomainLevel();
    const double edge = MCMV::IsMissing(level) ? MCMV::Missing() : dist.Quantile(level / 2.0);
    if (MCMV::IsMissing(edge) || !(edge < 0.0)) return;
    std::vector<double> args = grid(d + edge, d - edge), values;
    const double peak = dist.Pdf(0.0, 1e-8);
    if (MCMV::IsMissing(peak) || !(peak > 0.0)) return;
    for (double x : args) {
        const double f = MCMV::IsMissing(x) ? MCMV::Missing() : dist.Pdf(x - d, 1e-6);
        values.push_back(MCMV::IsMissing(f) ? f : f / peak);
    }
    setPosteriorCurve(i, std::move(args), std::move(values));
}

void DiffusePriorsUnequalVariances::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "DiffusePriorsUnequalVariances display start");
    DisplayFields();
    DisplayText(0, "End of display DiffusePriorsUnequalVariances object");
}

} // namespace MCBSN_850
