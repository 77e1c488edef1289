#include "bsn/onesample/bayesfactordenomif.h"

#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

BayesFactorDenomIF::BayesFactorDenomIF(double N, double df, double t) : m_N(N), m_df(df), m_t(t) {
    SetParams(N, df, t);
}

void BayesFactorDenomIF::SetParams(double N, double df, double t) {
    m_N = N;
    m_df = df;
    m_t = t;
    m_valid = !MCMV::IsMissing(N) && !MCMV::IsMissing(df) && !MCMV::IsMissing(t) && N > 0.0 && df > 0.0;
}

double BayesFactorDenomIF::ComputeNull() const {
    if (!m_valid) return MCMV::Missing();
    return std::exp(-(m_df + 1.0) / 2.0 * std::log1p(m_t * m_t / m_df));
}

double BayesFactorDenomIF::ComputeMC(double g, double /*unused*/) {
    if (!m_valid || MCMV::IsMissing(g)) return MCMV::Missing();
    const double x = 1.0 + m_N * g;
    if (!(x > 0.0)) return MCMV::Missing();
    if (std::isinf(x)) return 0.0;  // the limit of h for g without bound
    // log1p keeps the likelihood term accurate when t^2/(x df) is tiny
    // (small t, or N g in the billions).
    return std::exp(-0.5 * std::log(x) + std::log1p(m_t * m_t / (x * m_df)) * (-(1.0 + m_df) / 2.0));
}

double BayesFactorDenomIF::ComputeLogMC(double g) const {
    if (!m_valid || MCMV::IsMissing(g) || g < 0.0) return MCMV::Missing();
    const double x = 1.0 + m_N * g;
    if (std::isinf(x)) return MCMV::Missing();
    return MCMV::Sanitize(-0.5 * std::log(x) - (1.0 + m_df) / 2.0 * std::log1p(m_t * m_t / (x * m_df)));
}

double BayesFactorDenomIF::ComputeLogNI(double g) const {
    if (!m_valid || MCMV::IsMissing(g) || !(g > 0.0)) return MCMV::Missing();
    const double h = ComputeLogMC(g);
    if (MCMV::IsMissing(h)) return MCMV::Missing();
    constexpr double kLogInvSqrt2Pi = -0.91893853320467274;
    return MCMV::Sanitize(h + kLogInvSqrt2Pi - 1.5 * std::log(g) - 1.0 / (2.0 * g));
}

double BayesFactorDenomIF::ComputeLogNull() const {
    if (!m_valid) return MCMV::Missing();
    return MCMV::Sanitize(-(m_df + 1.0) / 2.0 * std::log1p(m_t * m_t / m_df));
}

double BayesFactorDenomIF::ComputeNI(double g) {
    if (!m_valid || MCMV::IsMissing(g) || g < 0.0) return MCMV::Missing();
    if (g == 0.0) return 0.0;
    const double x = 1.0 + m_N * g;
    // The scale goes into the one exponential: the factors outside it are
    // within e^40 of 1 wherever it has not underflowed, so with the scale at
    // the integrand's peak nothing under- or overflows.
    const double e = std::exp(-1.0 / (2.0 * g) + std::log1p(m_t * m_t / (x * m_df)) * (-(1.0 + m_df) / 2.0) -
                              m_logScale);
    // Below g of about 1/1400 the prior factor exp(-1/(2g)) has underflowed;
    // stopping here also keeps g^(3/2) from underflowing into 0/0.
    if (e == 0.0) return 0.0;
    return e * m_invSqrt2Pi / std::sqrt(x) / (std::sqrt(g) * g);
}

void BayesFactorDenomIF::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFactorDenomIF display start");
    DisplayD("N", m_N);
    DisplayD("Degrees of freedom", m_df);
    DisplayD("t", m_t);
    DisplayB("Valid", m_valid);
    DisplayD("Log scale", m_logScale);
    DisplayD("1/sqrt(2 pi)", m_invSqrt2Pi);
    DisplayText(0, "End of display BayesFactorDenomIF object");
}

} // namespace MCBSN_850
