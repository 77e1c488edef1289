#include "bsn/onesample/bsn1samplepoisproir.h"

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {
constexpr std::pair<double, double> kMissingPair{MCMV::Missing(), MCMV::Missing()};
} // namespace

BSN1SamplePoisProir::BSN1SamplePoisProir(const BSNSettings& settings)
    : BSN1SamplePoisProir(settings, BSN1SamplePoisCounts(settings.GetCovariates())) {}

BSN1SamplePoisProir::BSN1SamplePoisProir(const BSNSettings& settings, const BSN1SamplePoisCounts& counts)
    : BSN1SampleDiscretePosterior(settings, counts), m_posteriorParams(counts.Size(), kMissingPair),
      m_likelihoodParams(counts.Size(), kMissingPair) {}

MCStatus BSN1SamplePoisProir::Compute() {
    double a = 0.0, b = 0.0;
    if (readPrior(a, b).IsError()) return m_status;
    for (std::size_t i = 0; i < m_counts.Size(); ++i) computeVariable(i, a, b);
    return m_status;
}

void BSN1SamplePoisProir::computeVariable(std::size_t i, double a, double b) {
    const double N = m_counts.GetWeightSums()[i];
    const double S = m_counts.GetCountSums()[i];
    if (!(N > 0.0)) return;
    m_likelihoodParams[i] = {MCMV::Sanitize(-N), MCMV::Sanitize(S)};
    const double alpha = a + S;
    const double beta = b + N;
    // A non-positive prior parameter is an improper prior; the posterior is
    // still proper once the data make both parameters positive.
    if (!(alpha > 0.0) || !(beta > 0.0) || MCMV::IsMissing(alpha) || MCMV::IsMissing(beta)) return;
    m_posteriorParams[i] = {alpha, beta};
    m_means[i] = MCMV::Sanitize(alpha / beta);
    m_variances[i] = MCMV::Sanitize(alpha / (beta * beta));
    // Below shape 1 the density decreases from 0, so the mode is 0.
    m_modes[i] = alpha >= 1.0 ? MCMV::Sanitize((alpha - 1.0) / beta) : 0.0;
    setLimits(i, [&](double p) { return MCDistFun::IdfGam(p, alpha, beta); });
}

void BSN1SamplePoisProir::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SamplePoisProir display start");
    displaySummaries(os);
    DisplayVPD("Posterior parameters", m_posteriorParams);
    DisplayVPD("Likelihood parameters", m_likelihoodParams);
    DisplayText(0, "End of display BSN1SamplePoisProir object");
}

} // namespace MCBSN_850
