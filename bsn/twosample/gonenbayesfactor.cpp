#include "bsn/twosample/gonenbayesfactor.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ostream>

#include <boost/math/quadrature/tanh_sinh.hpp>

#include "bsn/twosample/tdistributionterms.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

namespace {

namespace bm = boost::math;

bool finite(double x) { return !MCMV::IsMissing(x); }

// ln Gamma(z) - [(z - 1/2) ln z - z + ln(2 pi)/2], the remainder of
// Stirling's formula. From its asymptotic series for large z, where the
// difference of the two large terms would lose digits.
double stirlingRemainder(double z) {
    if (z < 15.0) return std::lgamma(z) - ((z - 0.5) * std::log(z) - z + 0.5 * std::log(2.0 * std::numbers::pi));
    const double r = 1.0 / z, r2 = r * r;
    return r * (1.0 / 12.0 - r2 * (1.0 / 360.0 - r2 * (1.0 / 1260.0 - r2 * (1.0 / 1680.0 - r2 / 1188.0))));
}

// log1p(u) - u + u^2/2 without the cancellation of its terms for small u.
double log1pTail(double u) {
    if (std::fabs(u) >= 0.05) return std::log1p(u) - u + u * u / 2.0;
    // u^3/3 - u^4/4 + ... to u^14: the rest is below 1e-19 of u^3.
    double sum = 0.0;
    for (int k = 14; k >= 3; --k) sum = sum * u + ((k % 2 == 1) ? 1.0 : -1.0) / k;
    return sum * u * u * u;
}

} // namespace

GonenBayesFactor::GonenBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSN2SampleIndBayesFactor(settings, varList) {}

double GonenBayesFactor::LogNonCentralPdfT(double x, double df, double delta) {
    if (!finite(x) || !finite(df) || !finite(delta) || !(df > 0.0)) return MCMV::Missing();
    // T = (Z + delta) / S with S = sqrt(V / df), V chi-square(df). Given S = s
    // the density of T at x is s phi(x s - delta), so
    //   f(x) = C * integral_0^inf exp(g(s)) ds,
    //   g(s) = df (ln s - (s^2 - 1)/2) - (x s - delta)^2 / 2,
    //   ln C = ln 2 + ln(df/2)/2 - ln(2 pi) - R(df/2),
    // R the Stirling remainder. Writing the chi density around s = 1 keeps
    // every term of moderate size however large df is.
    const double nu = df, x2 = x * x;
    const double a = nu + x2;
    const double disc = std::sqrt(delta * delta * x2 + 4.0 * nu * a);
    // g is concave with its maximum at the positive root s* of
    // a s^2 - delta x s - nu = 0; e = s* - 1 from a form without
    // cancellation.
    const double e = 2.0 * x * (delta - x) / (disc + 2.0 * a - delta * x);
    const double sStar = 1.0 + e;
    if (!(sStar > 0.0)) return MCMV::Missing();
    // ln s - (s^2 - 1)/2 = L(e) - e^2 with L(u) = log1p(u) - u + u^2/2.
    const double gStar = nu * (log1pTail(e) - e * e) - 0.5 * (x * sStar - delta) * (x * sStar - delta);
    // g(s) - g(s*) with s = s* (1 + u): the terms of first order in u cancel
    // at the maximum, so they are written so that each is exact to rounding
    // before the sum (df may be a billion).
    const double oneMinusS2 = -e * (2.0 + e);
    const double slope = x * sStar - delta;
    auto shifted = [&](double s) {
        if (!(s > 0.0)) return 0.0;
        const double eps = s - sStar, u = eps / sStar;
        const double chi = log1pTail(u) + u * oneMinusS2 - u * u / 2.0 * (1.0 + sStar * sStar);
        return std::exp(nu * chi - x * eps * slope - 0.5 * x * x * eps * eps);
    };
    // g'' <= -(nu + x^2) everywhere, so beyond 38 of these widths on either
    // side the integrand is below exp(-722) of its peak.
    const double width = 38.0 / std::sqrt(a);
    const double lo = std::max(0.0, sStar - width), hi = sStar + width;
    // The double-exponential rule judges convergence by successive
    // refinements, which tolerates the last digits of rounding in the
    // integrand better than an error estimate halved at every bisection.
    // The rule keeps its node tables between calls (one per thread: it
    // extends them as it refines).
    thread_local bm::quadrature::tanh_sinh<double> rule;
    const double left = sStar > lo ? rule.integrate(shifted, lo, sStar, 1e-12) : 0.0;
    const double right = rule.integrate(shifted, sStar, hi, 1e-12);
    const double integral = left + right;
    if (!finite(integral) || !(integral > 0.0)) return MCMV::Missing();
    const double logC = std::log(2.0) + 0.5 * std::log(nu / 2.0) - std::log(2.0 * std::numbers::pi) -
                        stirlingRemainder(nu / 2.0);
    return MCMV::Sanitize(logC + gStar + std::log(integral));
}

double GonenBayesFactor::LogFactor(double n, double df, double t, double a, double s2) {
    if (!finite(n) || !finite(df) || !finite(t) || !finite(a) || !finite(s2) || !(n > 0.0) || !(df > 0.0) ||
        !(s2 > 0.0))
        return MCMV::Missing();
    const double q = 1.0 + s2 * n;
    if (a == 0.0)
        return MCMV::Sanitize(0.5 * std::log(q) -
                              (df + 1.0) / 2.0 * (std::log1p(t * t / df) - std::log1p(t * t / (df * q))));
    const double sq = std::sqrt(q);
    const double num = TDistributionTerms::LogPdf(t, df);
    const double den = LogNonCentralPdfT(t / sq, df, a * std::sqrt(n) / sq);
    if (!finite(num) || !finite(den)) return MCMV::Missing();
    return MCMV::Sanitize(0.5 * std::log(q) + num - den);
}

double GonenBayesFactor::Factor(double n, double df, double t, double a, double s2) {
    return FactorFromLog(LogFactor(n, df, t, a, s2));
}

MCCommon_850::MCStatus GonenBayesFactor::ComputeBF() {
    const double a = m_settings.GetRegrComPar();
    const double s2 = m_settings.GetSecondGonenPar();
    for (std::size_t i = 0; i < m_pooledTs.size(); ++i) {
        if (MCMV::IsMissing(m_pooledTs[i])) continue;
        m_logBayesFactors[i] = LogFactor(m_effectiveSizes[i], m_dfs[i], m_pooledTs[i], a, s2);
        m_bayesFactors[i] = Factor(m_effectiveSizes[i], m_dfs[i], m_pooledTs[i], a, s2);
    }
    return {};
}

void GonenBayesFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "GonenBayesFactor display start");
    DisplayFields();
    DisplayD("Prior Mean of the Effect", m_settings.GetRegrComPar());
    DisplayD("Prior Variance of the Effect", m_settings.GetSecondGonenPar());
    DisplayText(0, "End of display GonenBayesFactor object");
}

} // namespace MCBSN_850
