#include "bsn/onesample/bsn1samplepoisbayesfactor.h"

#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"
#include "platform/dist/mclgamma.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

bool usable(double a, double b) { return !MCMV::IsMissing(a) && !MCMV::IsMissing(b) && a > 0.0 && b > 0.0; }

} // namespace

BSN1SamplePoisBayesFactor::BSN1SamplePoisBayesFactor(const BSNSettings& settings)
    : BSN1SampleDiscreteFactor(settings, settings.GetCovariates()) {}

double BSN1SamplePoisBayesFactor::logMarginal(double a, double b, double N, double S) {
    if (!usable(a, b)) return MCMV::Missing();
    const double lgA = MCDistFun::quondnlgam(a);
    const double lgAS = MCDistFun::quondnlgam(a + S);
    if (MCMV::IsMissing(lgA) || MCMV::IsMissing(lgAS)) return MCMV::Missing();
    return MCMV::Sanitize(a * std::log(b) - lgA + lgAS - (a + S) * std::log(b + N));
}

double BSN1SamplePoisBayesFactor::logFactor(double N, double S, const Priors& p) {
    if (!usable(p.a0, p.b0) || !usable(p.a1, p.b1) || MCMV::IsMissing(N) || MCMV::IsMissing(S))
        return MCMV::Missing();
    // logMarginal(a0, b0) − logMarginal(a1, b1), regrouped so that nothing
    // of the size of S ln S or N ln N is formed on its own. With
    // ln(b + N) = ln N + log1p(b/N):
    //   [lnΓ(S + a0) − lnΓ(S + a1) − (a0 − a1) ln N]     at the scale N
    //   + a0 ln b0 − a1 ln b1 − a0 log1p(b0/N) + a1 log1p(b1/N)
    //   − S log1p((b0 − b1)/(b1 + N))                     S ln((b0 + N)/(b1 + N))
    //   − lnΓ(a0) + lnΓ(a1);
    // the (a0 − a1) ln N of the first line and of the second cancel exactly
    // and are never formed.
    const double scale = N > 0.0 ? N : 1.0;
    const double counts = MCMath_850::MCLogGamma::DiffAtScale(S, p.a0, p.a1, scale);
    const double lgA0 = MCDistFun::quondnlgam(p.a0), lgA1 = MCDistFun::quondnlgam(p.a1);
    if (MCMV::IsMissing(counts) || MCMV::IsMissing(lgA0) || MCMV::IsMissing(lgA1)) return MCMV::Missing();
    const double priors = N > 0.0 ? p.a0 * std::log(p.b0) - p.a1 * std::log(p.b1) - p.a0 * std::log1p(p.b0 / N) +
                                         p.a1 * std::log1p(p.b1 / N)
                                   : 0.0;
    const double rates = S == 0.0 ? 0.0 : -S * std::log1p((p.b0 - p.b1) / (p.b1 + N));
    return MCMV::Sanitize(counts + priors + rates + (lgA1 - lgA0));
}

MCStatus BSN1SamplePoisBayesFactor::ComputeBFs() {
    MCStatus status;
    for (std::size_t i = 0; i < m_counts.Size(); ++i) {
        const Priors priors = priorsOf(i);
        if (!usable(priors.a1, priors.b1)) {
            if (status.IsOK()) {
                status = MCStatus(410018, true);
                status.SetDiscreteDatum(0, static_cast<int>(i));
            }
            continue;
        }
        const double N = m_counts.GetWeightSums()[i];
        const double S = m_counts.GetCountSums()[i];
        storeFactor(i, logFactor(N, S, priors));
    }
    finishFactors();
    m_status = status;
    return m_status;
}

void BSN1SamplePoisBayesFactor::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "BSN1SamplePoisBayesFactor display start");
    displayFactors(os);
    MCDisplay_850::DisplayText(0, "End of display BSN1SamplePoisBayesFactor object");
}

} // namespace MCBSN_850
