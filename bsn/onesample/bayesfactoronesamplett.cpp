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

double BayesFactorOneSampleTT::Compute() {
    m_nIterations = 0;
    m_usedPiecewise = false;
    if (!m_valid) return MCMV::Missing();
    BayesFactorDenomIF integrand(m_N, m_df, m_t);
    // It underflows to 0 only when the factor itself does.
    const double l0 = integrand.ComputeNull();
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
    if (MCMV::IsMissing(integral)) return MCMV::Missing();
    if (m_rightBound > m_tailCutoff) integral += RightTail();
    if (integral == 0.0) return MCMV::Missing();
    return MCMV::Sanitize(l0 / integral);
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
