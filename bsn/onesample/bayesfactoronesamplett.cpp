#include "bsn/onesample/bayesfactoronesamplett.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bsn/onesample/bayesfactordenomif.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/quadrature/lobattoquad.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

namespace {
constexpr double kInvSqrt2Pi = 0.3989422804014327;
constexpr double kLargest = std::numeric_limits<double>::max();
} // namespace

BayesFactorOneSampleTT::BayesFactorOneSampleTT(double N, double df, double t)
    : m_N(N), m_df(df), m_t(t), m_rightBound(kLargest) {
    m_valid = !MCMV::IsMissing(N) && !MCMV::IsMissing(df) && !MCMV::IsMissing(t) && N > 0.0 && df > 0.0;
}

void BayesFactorOneSampleTT::SetTolerance(double x) {
    if (!MCMV::IsMissing(x) && x > 0.0) m_tolerance = x;
}

void BayesFactorOneSampleTT::SetMaxIter(int n) {
    if (n > 0) m_maxIter = n;
}

void BayesFactorOneSampleTT::SetLeftBound(double x) {
    if (!MCMV::IsMissing(x) && x >= 0.0) m_leftBound = x;
}

void BayesFactorOneSampleTT::SetRightBound(double x) {
    if (!MCMV::IsMissing(x) && x > 0.0) m_rightBound = x;
}

bool BayesFactorOneSampleTT::SetBoundsForNonConvergence(double b1, double b2, double b3, double b4, double b5) {
    const double b[5] = {b1, b2, b3, b4, b5};
    for (int i = 0; i < 5; ++i)
        if (MCMV::IsMissing(b[i]) || b[i] <= (i == 0 ? 0.0 : b[i - 1])) return false;
    std::copy(b, b + 5, m_nonConvBounds);
    return true;
}

double BayesFactorOneSampleTT::RightTail() const {
    if (!m_valid) return MCMV::Missing();
    double span = 1.0 / m_tailCutoff;
    if (m_rightBound != kLargest) span -= 1.0 / m_rightBound;
    return kInvSqrt2Pi / std::sqrt(m_N) * span;
}

double BayesFactorOneSampleTT::integrate(BayesFactorDenomIF& integrand) {
    MCMath_850::LobattoQuad quad(integrand);
    quad.SetTolerance(m_tolerance);
    quad.SetMaxIter(m_maxIter);
    double integral = quad.Integrate(m_leftBound, std::min(m_tailCutoff, m_rightBound));
    m_nIterations = quad.GetNIterations();
    if (m_nIterations >= m_maxIter) {
        // No convergence over the whole range: integrate where the mass of
        // the integrand lies, in ten shorter pieces (each bound interval
        // halved), each with the full refinement limit. The stretch from the
        // last bound to the tail cutoff is left out.
        m_usedPiecewise = true;
        integral = 0.0;
        double from = m_leftBound;
        for (double to : m_nonConvBounds) {
            const double mid = from + (to - from) / 2.0;
            for (const auto& [a, b] : {std::pair{from, mid}, std::pair{mid, to}}) {
                const double piece = quad.Integrate(a, b);
                m_nIterations += quad.GetNIterations();
                integral = MCMV::IsMissing(piece) || MCMV::IsMissing(integral) ? MCMV::Missing() : integral + piece;
            }
            from = to;
        }
    }
    m_warnings.Append(quad.GetWarnings());
    return integral;
}

double BayesFactorOneSampleTT::Compute() {
    m_nIterations = 0;
    m_usedPiecewise = false;
    if (!m_valid) return MCMV::Missing();
    BayesFactorDenomIF integrand(m_N, m_df, m_t);
    // It underflows to 0 only when the factor itself does.
    const double l0 = integrand.ComputeNull();
    double integral = integrate(integrand);
    if (MCMV::IsMissing(integral)) return MCMV::Missing();
    if (m_rightBound > m_tailCutoff) integral += RightTail();
    if (integral == 0.0) return MCMV::Missing();
    return MCMV::Sanitize(l0 / integral);
}

double BayesFactorOneSampleTT::logPeak(const BayesFactorDenomIF& integrand) const {
    // The integrand rises from 0 (the prior's exp(-1/(2g))) to one peak and
    // falls like g^-2; in u = ln g its log is a smooth hump about a unit
    // wide (curvature 2 at the peak). On a grid of steps of 0.5 in u the
    // largest value is within about 0.25 of the peak's, which is all the
    // scale needs: it only has to keep the scaled ordinates near 1, away
    // from under- and overflow.
    const double hi = std::min(m_tailCutoff, m_rightBound);
    const double lo = std::max(m_leftBound, std::min(1e-4, hi * 1e-6));
    double best = integrand.ComputeLogNI(hi);
    if (!(hi > lo)) return best;
    const double uLo = std::log(lo), uHi = std::log(hi);
    const int steps = std::max(2, static_cast<int>(std::ceil((uHi - uLo) / 0.5)));
    for (int k = 0; k < steps; ++k) {
        const double v = integrand.ComputeLogNI(std::exp(uLo + k * (uHi - uLo) / steps));
        if (!MCMV::IsMissing(v) && (MCMV::IsMissing(best) || v > best)) best = v;
    }
    return best;
}

double BayesFactorOneSampleTT::ComputeLog() {
    m_nIterations = 0;
    m_usedPiecewise = false;
    if (!m_valid) return MCMV::Missing();
    BayesFactorDenomIF integrand(m_N, m_df, m_t);
    const double logNull = integrand.ComputeLogNull();
    const double scale = logPeak(integrand);
    if (MCMV::IsMissing(logNull) || MCMV::IsMissing(scale) || !std::isfinite(scale)) return MCMV::Missing();
    // The scaled integral is of order 1 (the peak's width in g); ln I is
    // scale + ln of it, and the tail beyond the cutoff joins in logs.
    integrand.SetLogScale(scale);
    const double scaled = integrate(integrand);
    if (MCMV::IsMissing(scaled) || scaled < 0.0) return MCMV::Missing();
    double logIntegral = scaled > 0.0 ? scale + std::log(scaled) : -std::numeric_limits<double>::infinity();
    if (m_rightBound > m_tailCutoff) {
        const double logTail = std::log(RightTail());
        const double top = std::max(logIntegral, logTail);
        logIntegral = top + std::log(std::exp(logIntegral - top) + std::exp(logTail - top));
    }
    if (!std::isfinite(logIntegral)) return MCMV::Missing();
    return MCMV::Sanitize(logNull - logIntegral);
}

void BayesFactorOneSampleTT::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFactorOneSampleTT display start");
    DisplayD("N", m_N);
    DisplayD("Degrees of freedom", m_df);
    DisplayD("t", m_t);
    DisplayB("Valid", m_valid);
    DisplayD("Tolerance", m_tolerance);
    DisplayI("Maximum iterations", m_maxIter);
    DisplayI("Iterations used", m_nIterations);
    DisplayD("Left bound", m_leftBound);
    DisplayD("Right bound", m_rightBound);
    DisplayD("Tail cutoff", m_tailCutoff);
    DisplayDV("Non-convergence bounds", std::vector<double>(m_nonConvBounds, m_nonConvBounds + 5));
    DisplayB("Piecewise integral used", m_usedPiecewise);
    DisplayI("Warnings", static_cast<int>(m_warnings.Size()));
    DisplayText(0, "End of display BayesFactorOneSampleTT object");
}

} // namespace MCBSN_850
