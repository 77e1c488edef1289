#include "platform/quadrature/lobattoquad.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;

namespace {

// Nodes on [-1, 1]: the 4-point Lobatto rule has ±1 and ±1/sqrt(5); its
// Kronrod extension adds 0 and ±sqrt(2/3); the 13-point Kronrod rule used
// for the first rough estimate adds ±x1, ±x2, ±x3.
const double kAlpha = std::sqrt(2.0 / 3.0);
const double kBeta = 1.0 / std::sqrt(5.0);
constexpr double kX1 = 0.942882415695480;
constexpr double kX2 = 0.641853342345781;
constexpr double kX3 = 0.236383199662150;
// Weights of the 13-point rule, from the outer pair to the centre.
constexpr double kW13[7] = {0.0158271919734802, 0.0942738402188500, 0.155071987336585, 0.188821573960182,
                            0.199773405226859,  0.224926465333340,  0.242611071901408};

// A missing ordinate is carried as NaN so that the intervals it bounds can
// be told apart, and enters every sum as 0.
constexpr double kMissingOrdinate = std::numeric_limits<double>::quiet_NaN();
inline double z(double y) { return std::isnan(y) ? 0.0 : y; }

} // namespace

LobattoQuad::LobattoQuad(IIntegrand& integrand) : m_integrand(&integrand) {}

void LobattoQuad::SetTolerance(double tolerance) {
    if (!MCMV::IsMissing(tolerance) && tolerance > 0.0) m_tolerance = tolerance;
}

void LobattoQuad::SetMaxIter(int maxIter) {
    if (maxIter > 0) m_maxIter = maxIter;
}

double LobattoQuad::eval(double x) {
    ++m_nEvaluations;
    const double y = m_integrand->ComputeNI(x);
    if (MCMV::IsMissing(y)) {
        ++m_nMissing;
        return kMissingOrdinate;
    }
    return y;
}

double LobattoQuad::Integrate(double a, double b) {
    m_nIterations = 0;
    m_nEvaluations = 0;
    m_nMissing = 0;
    m_limitReached = false;
    if (MCMV::IsMissing(a) || MCMV::IsMissing(b)) return MCMV::Missing();
    if (a == b) return 0.0;
    if (b < a) {
        const double r = Integrate(b, a);
        return MCMV::IsMissing(r) ? r : -r;
    }
    const double h = b / 2.0 - a / 2.0;  // halves first: b - a may overflow
    const double m = a + h;
    if (!std::isfinite(h) || !std::isfinite(m)) return MCMV::Missing();

    const double y[13] = {eval(a),           eval(m - kX1 * h), eval(m - kAlpha * h), eval(m - kX2 * h),
                          eval(m - kBeta * h), eval(m - kX3 * h), eval(m),              eval(m + kX3 * h),
                          eval(m + kBeta * h), eval(m + kX2 * h), eval(m + kAlpha * h), eval(m + kX1 * h),
                          eval(b)};
    double is = kW13[6] * z(y[6]);
    for (int k = 0; k < 6; ++k) is += kW13[k] * (z(y[k]) + z(y[12 - k]));
    is *= h;

    // The acceptance bound is the tolerance relative to the rough estimate.
    // (The published scheme relaxes it when the 7-point rule agrees better
    // with the 13-point one than the 4-point rule does; that lets the error
    // exceed the tolerance on long heavy tails, so it is not done here.)
    const double tol = std::max(m_tolerance, std::numeric_limits<double>::epsilon());
    m_errorTarget = tol * (is != 0.0 ? std::fabs(is) : 2.0 * h);

    const double result = refine(a, b, y[0], y[12], y[2], y[4], y[6], y[8], y[10]);
    if (m_limitReached && !m_warnings.Contains(kNotConvergedCode)) {
        MCCommon_850::MCStatus warning(kNotConvergedCode, true);
        warning.SetScaleDatum(0, a);
        warning.SetScaleDatum(1, b);
        m_warnings.AddWarning(warning, nullptr);
    }
    return MCMV::Sanitize(result);
}

double LobattoQuad::step(double a, double b, double fa, double fb) {
    const double h = (b - a) / 2.0;
    const double m = a + h;
    return refine(a, b, fa, fb, eval(m - kAlpha * h), eval(m - kBeta * h), eval(m), eval(m + kBeta * h),
                  eval(m + kAlpha * h));
}

double LobattoQuad::refine(double a, double b, double fa, double fb, double fmll, double fml, double fm,
                           double fmr, double fmrr) {
    ++m_nIterations;
    // Next to a missing end ordinate (typically a pole) both rules miss the
    // same mass, so their difference understates the error; such intervals
    // must agree more closely.
    const double target = (std::isnan(fa) || std::isnan(fb)) ? m_errorTarget / 8.0 : m_errorTarget;
    const double ends = z(fa) + z(fb), outer = z(fmll) + z(fmrr), inner = z(fml) + z(fmr);
    const double h = (b - a) / 2.0;
    const double m = a + h;
    const double mll = m - kAlpha * h, ml = m - kBeta * h, mr = m + kBeta * h, mrr = m + kAlpha * h;
    const double i2 = (h / 6.0) * (ends + 5.0 * inner);
    const double i1 = (h / 1470.0) * (77.0 * ends + 432.0 * outer + 625.0 * inner + 672.0 * z(fm));
    // Accept on agreement, or when the nodes no longer separate (the
    // interval holds too few machine numbers to split).
    if (std::fabs(i1 - i2) <= target || !(a < mll && mll < ml && ml < m && m < mr && mr < mrr && mrr < b))
        return i1;
    if (m_nIterations >= m_maxIter) {
        m_limitReached = true;
        return i1;
    }
    return step(a, mll, fa, fmll) + step(mll, ml, fmll, fml) + step(ml, m, fml, fm) + step(m, mr, fm, fmr) +
           step(mr, mrr, fmr, fmrr) + step(mrr, b, fmrr, fb);
}

void LobattoQuad::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "LobattoQuad display start");
    DisplayD("Tolerance", m_tolerance);
    DisplayI("Maximum iterations", m_maxIter);
    DisplayI("Iterations", m_nIterations);
    DisplayI("Evaluations", m_nEvaluations);
    DisplayI("Missing ordinates", m_nMissing);
    DisplayB("Limit reached", m_limitReached);
    DisplayD("Error target", m_errorTarget);
    DisplayI("Warnings", static_cast<int>(m_warnings.Size()));
    DisplayText(0, "End of display LobattoQuad object");
}

} // namespace MCMath_850
