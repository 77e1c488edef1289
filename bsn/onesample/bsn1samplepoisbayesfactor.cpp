#include "bsn/onesample/bsn1samplepoisbayesfactor.h"

#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

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
        const double null = logMarginal(priors.a0, priors.b0, N, S);
        const double alternative = logMarginal(priors.a1, priors.b1, N, S);
        if (MCMV::IsMissing(null) || MCMV::IsMissing(alternative)) continue;
        storeFactor(i, MCMV::Sanitize(null - alternative));
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
