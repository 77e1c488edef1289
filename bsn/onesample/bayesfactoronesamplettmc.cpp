#include "bsn/onesample/bayesfactoronesamplettmc.h"

#include <cmath>
#include <limits>

#include "bsn/onesample/bayesfactordenomif.h"
#include "bsn/onesample/bayesfactoronesamplettrng.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

BayesFactorOneSampleTTMC::BayesFactorOneSampleTTMC(double N, double df, double t, int samples, unsigned long seed)
    : m_N(N), m_df(df), m_t(t), m_samples(samples), m_seed(seed) {
    m_valid = !MCMV::IsMissing(N) && !MCMV::IsMissing(df) && !MCMV::IsMissing(t) && N > 0.0 && df > 0.0 &&
              samples >= 0;
}

double BayesFactorOneSampleTTMC::SumUp(double /*a*/, double /*b*/) {
    if (!m_valid) return MCMV::Missing();
    BayesFactorOneSampleTTRng rng;
    rng.SetSeed(m_seed);
    BayesFactorDenomIF integrand(m_N, m_df, m_t);
    double sum = 0.0;
    for (int i = 0; i < m_samples; ++i) {
        // h is bounded by 1 and defined for every g > 0, so no draw is lost.
        sum += integrand.ComputeMC(rng.GetRandom(), 0.0);
    }
    return sum;
}

double BayesFactorOneSampleTTMC::Integrate(double a, double b) {
    if (!m_valid || m_samples == 0) return MCMV::Missing();
    return SumUp(a, b) / m_samples;
}

double BayesFactorOneSampleTTMC::Compute() {
    if (!m_valid) return MCMV::Missing();
    const double integral = Integrate(0.0, 1.0);
    if (MCMV::IsMissing(integral) || integral == 0.0) return MCMV::Missing();
    return MCMV::Sanitize(BayesFactorDenomIF(m_N, m_df, m_t).ComputeNull() / integral);
}

double BayesFactorOneSampleTTMC::ComputeLog() {
    if (!m_valid) return MCMV::Missing();
    BayesFactorDenomIF integrand(m_N, m_df, m_t);
    const double logNull = integrand.ComputeLogNull();
    const double mean = Integrate(0.0, 1.0);
    if (MCMV::IsMissing(logNull) || MCMV::IsMissing(mean)) return MCMV::Missing();
    if (mean >= std::numeric_limits<double>::min()) return MCMV::Sanitize(logNull - std::log(mean));
    // Every h(g) underflowed (or nearly): the same draws again, summed on
    // the log scale around the running maximum.
    BayesFactorOneSampleTTRng rng;
    rng.SetSeed(m_seed);
    double top = -std::numeric_limits<double>::infinity(), sum = 0.0;
    for (int i = 0; i < m_samples; ++i) {
        const double l = integrand.ComputeLogMC(rng.GetRandom());
        if (MCMV::IsMissing(l)) continue;
        if (l > top) {
            sum = sum * std::exp(top - l) + 1.0;
            top = l;
        } else {
            sum += std::exp(l - top);
        }
    }
    if (!(sum > 0.0)) return MCMV::Missing();
    return MCMV::Sanitize(logNull - (top + std::log(sum / m_samples)));
}

void BayesFactorOneSampleTTMC::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFactorOneSampleTTMC display start");
    DisplayD("N", m_N);
    DisplayD("Degrees of freedom", m_df);
    DisplayD("t", m_t);
    DisplayI("Samples", m_samples);
    DisplayL("Seed", static_cast<long>(m_seed));
    DisplayB("Valid", m_valid);
    DisplayText(0, "End of display BayesFactorOneSampleTTMC object");
}

} // namespace MCBSN_850
