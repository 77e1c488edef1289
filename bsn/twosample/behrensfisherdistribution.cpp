#include "bsn/twosample/behrensfisherdistribution.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>
#include <ostream>

#include <boost/math/distributions/students_t.hpp>
#include <boost/math/quadrature/gauss.hpp>
#include <boost/math/quadrature/gauss_kronrod.hpp>

#include "bsn/twosample/tdistributionterms.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

namespace {

namespace bm = boost::math;
using StudentT = bm::students_t_distribution<double, TDistributionTerms::Policy>;
// Up to this many degrees of freedom the tails are integrated in the angle
// (they decay algebraically); beyond it the density is near normal and is
// integrated in u up to a cut.
constexpr double kAngleDf = 50.0;
constexpr double kTailMass = 1e-20;
// Whole degrees of freedom up to this use the finite series for the
// distribution function, several times faster than the general incomplete
// beta function and accurate to a few units of 1e-16 (absolutely).
constexpr double kSeriesDf = 200.0;
constexpr double kHalfPi = std::numbers::pi / 2.0;

bool finite(double x) { return !MCMV::IsMissing(x); }

BehrensFisherDistribution::Component makeComponent(double scale, double df) {
    BehrensFisherDistribution::Component c;
    c.scale = scale;
    c.df = df;
    const double logRatio = TDistributionTerms::LogGammaHalfRatio(df);
    c.logNorm = logRatio - 0.5 * std::log(df * std::numbers::pi);
    c.angleNorm = std::exp(logRatio) / std::sqrt(std::numbers::pi);
    c.useAngle = df <= kAngleDf;
    c.useSeries = df <= kSeriesDf && df == std::floor(df);
    if (!c.useAngle) c.cut = -bm::quantile(StudentT(df), kTailMass);
    return c;
}

} // namespace

double BehrensFisherDistribution::Component::Pdf(double u) const {
    return std::exp(logNorm - (df + 1.0) / 2.0 * std::log1p(u * u / df));
}

double BehrensFisherDistribution::Component::Cdf(double u) const {
    if (std::isinf(u)) return u < 0.0 ? 0.0 : 1.0;
    if (!useSeries) return bm::cdf(StudentT(df), u);
    // With theta = atan(u / sqrt(df)) (Abramowitz and Stegun 26.7.3-4):
    //   odd df:  F = 1/2 + (theta + sin cos (1 + 2/3 cos^2 + 2*4/(3*5) cos^4 + ...)) / pi
    //   even df: F = 1/2 + sin (1 + 1/2 cos^2 + 1*3/(2*4) cos^4 + ...) / 2
    // with (df - 3)/2 and (df - 2)/2 terms after the first.
    const double r = std::sqrt(df + u * u);
    const double sn = u / r, cs = std::sqrt(df) / r, c2 = cs * cs;
    const bool odd = std::fmod(df, 2.0) == 1.0;
    const int terms = static_cast<int>(odd ? (df - 3.0) / 2.0 : (df - 2.0) / 2.0);
    double term = 1.0, sum = 1.0;
    for (int k = 1; k <= terms; ++k) {
        term *= odd ? c2 * (2.0 * k) / (2.0 * k + 1.0) : c2 * (2.0 * k - 1.0) / (2.0 * k);
        sum += term;
        if (term < 1e-17 * sum) break;
    }
    if (!odd) return 0.5 + 0.5 * sn * sum;
    const double theta = std::atan2(u, std::sqrt(df));
    return 0.5 + (theta + (df > 1.0 ? sn * cs * sum : 0.0)) / std::numbers::pi;
}

BehrensFisherDistribution::BehrensFisherDistribution(double a0, double df0, double a1, double df1) {
    m_valid = finite(a0) && finite(a1) && finite(df0) && finite(df1) && a0 > 0.0 && a1 > 0.0 && df0 > 0.0 &&
              df1 > 0.0;
    if (!m_valid) return;
    const bool firstBig = a0 >= a1;
    m_big = makeComponent(firstBig ? a0 : a1, firstBig ? df0 : df1);
    m_small = makeComponent(firstBig ? a1 : a0, firstBig ? df1 : df0);
    m_valid = finite(m_big.logNorm) && finite(m_small.logNorm) && (m_big.useAngle || finite(m_big.cut)) &&
              (m_small.useAngle || finite(m_small.cut));
}

namespace {

// Both integrands at one point.
struct Pair {
    double cdf = 0.0;
    double pdf = 0.0;
};

// One panel of the adaptive quadrature: which half-line it belongs to, its
// interval in that half-line's coordinate, and its 21-point estimates.
struct Panel {
    int line = 0;
    double a = 0.0, b = 0.0;
    Pair value, error;
};

} // namespace

void BehrensFisherDistribution::lowerTail(double y, double cdfTol, double pdfTol, double& cdf, double& pdf) const {
    // The line A a + B b = y (a, b the values of the big and small
    // variables) is cut at the point m of b where it is nearest the origin
    // in the metric of the scales. P(A a + B b <= y) is then
    //   P(b >= m, a <= (y - B b)/A) + P(b < m, A a + B b <= y)
    // and the second part, counted over a instead, is
    //   F_a(v_m) F_b(m) + P(a > v_m, b <= (y - A a)/B),  v_m = (y - B m)/A.
    // The density splits the same way. Each half-line integrand is a t
    // density times a smooth tail of the other variable.
    const double A = m_big.scale, B = m_small.scale;
    const double m = y * B / (A * A + B * B);
    const double vm = (y - B * m) / A;
    const Component* outer[2] = {&m_small, &m_big};
    const Component* inner[2] = {&m_big, &m_small};
    const double lower[2] = {m, vm};
    const double outerScale[2] = {B, A}, innerScale[2] = {A, B};
    const bool wantCdf = cdfTol < 1.0;

    auto point = [&](int line, double w) {
        ++m_evaluations;
        const Component& c = *outer[line];
        double u = w, weight = 0.0;
        if (c.useAngle) {
            // u = sqrt(df) tan(theta); the density times du/dtheta is
            // angleNorm cos^(df-1)(theta).
            const double cs = std::cos(w);
            if (!(cs > 0.0)) return Pair{};
            u = std::sqrt(c.df) * std::tan(w);
            weight = c.angleNorm * std::pow(cs, c.df - 1.0);
        } else {
            weight = c.Pdf(u);
        }
        const double x = (y - outerScale[line] * u) / innerScale[line];
        const Component& d = *inner[line];
        return Pair{wantCdf ? weight * d.Cdf(x) : 0.0, weight * d.Pdf(x) / innerScale[line]};
    };

    using Kronrod = bm::quadrature::gauss_kronrod<double, 21>;
    using Gauss = bm::quadrature::gauss<double, 10>;
    // One panel: the 21-point Kronrod sums and the 10-point Gauss sums
    // embedded in them. The error estimate is the usual refinement of
    // |Kronrod - Gauss| against the panel's mean absolute deviation, which
    // is far less pessimistic than the raw difference for smooth integrands.
    auto evaluate = [&](Panel& p) {
        const double half = (p.b - p.a) / 2.0, mid = (p.a + p.b) / 2.0;
        const auto& xk = Kronrod::abscissa();
        const auto& wk = Kronrod::weights();
        const auto& wg = Gauss::weights();
        std::array<Pair, 21> f;
        f[0] = point(p.line, mid);
        for (std::size_t i = 1; i < xk.size(); ++i) {
            f[2 * i - 1] = point(p.line, mid + half * xk[i]);
            f[2 * i] = point(p.line, mid - half * xk[i]);
        }
        auto estimate = [&](double Pair::*part, double& value, double& error) {
            double k = (f[0].*part) * wk[0], g = 0.0;
            for (std::size_t i = 1; i < xk.size(); ++i) {
                const double s = f[2 * i - 1].*part + f[2 * i].*part;
                k += s * wk[i];
                if (i % 2 == 1) g += s * wg[i / 2];  // the Gauss nodes are the odd Kronrod nodes
            }
            const double mean = k / 2.0;
            double asc = std::fabs(f[0].*part - mean) * wk[0];
            for (std::size_t i = 1; i < xk.size(); ++i)
                asc += (std::fabs(f[2 * i - 1].*part - mean) + std::fabs(f[2 * i].*part - mean)) * wk[i];
            double err = std::fabs(k - g);
            if (asc > 0.0 && err > 0.0) err = asc * std::min(1.0, std::pow(200.0 * err / asc, 1.5));
            value = k * half;
            error = std::max(err * half, 50.0 * std::numeric_limits<double>::epsilon() * std::fabs(value));
        };
        estimate(&Pair::cdf, p.value.cdf, p.error.cdf);
        estimate(&Pair::pdf, p.value.pdf, p.error.pdf);
    };

    std::vector<Panel> panels;
    for (int line = 0; line < 2; ++line) {
        const Component& c = *outer[line];
        const double root = std::sqrt(c.df);
        // Panel edges in u: the lower end, the density's peak at 0 and the
        // cut (or infinity). When the inner variable's scale is much the
        // smaller, its tail falls off over a stretch of innerScale /
        // outerScale in u just above the lower end, too narrow for a rule
        // spread over the whole half-line to see: edges at geometrically
        // growing distances from the lower end resolve it.
        std::vector<double> edges;
        const double from = c.useAngle ? lower[line] : std::max(lower[line], -c.cut);
        const double to = c.useAngle ? std::numeric_limits<double>::infinity() : c.cut;
        if (!(from < to)) continue;
        edges.push_back(from);
        const double narrow = innerScale[line] / outerScale[line];
        if (narrow < 0.5)
            for (double step = narrow; from + step < std::min(0.0, to) - narrow; step *= 4.0)
                edges.push_back(from + step);
        if (from < 0.0 && 0.0 < to) edges.push_back(0.0);
        edges.push_back(to);
        for (std::size_t k = 0; k + 1 < edges.size(); ++k) {
            const double a = c.useAngle ? std::atan(edges[k] / root) : edges[k];
            const double b = c.useAngle ? (std::isinf(edges[k + 1]) ? kHalfPi : std::atan(edges[k + 1] / root))
                                        : edges[k + 1];
            if (a < b) panels.push_back(Panel{line, a, b, {}, {}});
        }
    }
    for (Panel& p : panels) evaluate(p);

    const double base = m_big.Cdf(vm) * m_small.Cdf(m);
    constexpr std::size_t kMaxPanels = 400;
    for (;;) {
        Pair total{base, 0.0}, error;
        std::size_t worst = 0;
        double worstScore = -1.0;
        for (const Panel& p : panels) {
            total.cdf += p.value.cdf;
            total.pdf += p.value.pdf;
            error.cdf += p.error.cdf;
            error.pdf += p.error.pdf;
        }
        const double cdfLimit = cdfTol * std::fabs(total.cdf), pdfLimit = pdfTol * std::fabs(total.pdf);
        cdf = total.cdf;
        pdf = total.pdf;
        const bool cdfDone = !wantCdf || error.cdf <= cdfLimit, pdfDone = error.pdf <= pdfLimit;
        if (cdfDone && pdfDone) return;
        if (panels.size() >= kMaxPanels) {
            m_converged = false;
            return;
        }
        // Halve the panel that contributes most to the unmet error.
        for (std::size_t i = 0; i < panels.size(); ++i) {
            const double score = (cdfDone ? 0.0 : panels[i].error.cdf / cdfLimit) +
                                 (pdfDone ? 0.0 : panels[i].error.pdf / pdfLimit);
            if (score > worstScore) {
                worstScore = score;
                worst = i;
            }
        }
        Panel left = panels[worst], right = panels[worst];
        left.b = right.a = (panels[worst].a + panels[worst].b) / 2.0;
        evaluate(left);
        evaluate(right);
        panels[worst] = left;
        panels.push_back(right);
    }
}

double BehrensFisherDistribution::Cdf(double y) const {
    if (!m_valid || MCMV::IsMissing(y)) return MCMV::Missing();
    double cdf = 0.0, pdf = 0.0;
    lowerTail(-std::fabs(y), 1e-12, 1.0, cdf, pdf);
    // The finite series is accurate in absolute terms; far in a tail that can
    // leave a value a rounding error below 0.
    cdf = std::clamp(cdf, 0.0, 0.5);
    return MCMV::Sanitize(y <= 0.0 ? cdf : 1.0 - cdf);
}

double BehrensFisherDistribution::Pdf(double y, double relTol) const {
    if (!m_valid || MCMV::IsMissing(y)) return MCMV::Missing();
    double cdf = 0.0, pdf = 0.0;
    lowerTail(-std::fabs(y), 1.0, relTol, cdf, pdf);  // symmetric about 0
    return MCMV::Sanitize(pdf);
}

double BehrensFisherDistribution::Quantile(double p) const {
    if (!m_valid || MCMV::IsMissing(p) || !(p > 0.0) || !(p < 1.0)) return MCMV::Missing();
    if (p == 0.5) return 0.0;
    if (p > 0.5) {
        const double q = Quantile(1.0 - p);
        return finite(q) ? -q : q;
    }
    const double A = m_big.scale, B = m_small.scale;
    // Welch-Satterthwaite start: Y / sqrt(S) approximately t with dfW.
    const double A2 = A * A, B2 = B * B, S = A2 + B2;
    const double dfW = S * S / (A2 * A2 / m_big.df + B2 * B2 / m_small.df);
    double q = std::sqrt(S) * bm::quantile(StudentT(dfW), p);
    if (!finite(q) || !(q < 0.0)) q = -std::sqrt(S);

    // Newton steps inside a bracket [lo, hi] with F(lo) < p < F(hi), hi = 0
    // to begin with (F(0) = 1/2). The quadrature tolerance tightens as the
    // residual shrinks; a step that leaves the bracket bisects instead.
    double lo = -std::numeric_limits<double>::infinity(), hi = 0.0;
    double residual = 1.0;
    for (int iter = 0; iter < 200; ++iter) {
        double F = 0.0, f = 0.0;
        lowerTail(q, std::clamp(1e-2 * residual, 1e-11, 1e-4), 1e-4, F, f);
        if (!finite(F)) return MCMV::Missing();
        if (F == p) return q;
        (F > p ? hi : lo) = q;
        residual = std::fabs(F - p) / p;
        double next = finite(f) && f > 0.0 ? q - (F - p) / f : std::numeric_limits<double>::quiet_NaN();
        if (std::isfinite(next) && std::fabs(next - q) <= 1e-10 * std::fabs(q)) return MCMV::Sanitize(next);
        if (!(next > lo && next < hi)) next = std::isinf(lo) ? 2.0 * q : (lo + hi) / 2.0;
        if (std::isfinite(lo) && hi - lo <= 1e-10 * std::fabs(lo)) return MCMV::Sanitize((lo + hi) / 2.0);
        q = next;
    }
    m_converged = false;
    return MCMV::Sanitize(q);
}

double BehrensFisherDistribution::Variance() const {
    if (!m_valid || !(m_big.df > 2.0) || !(m_small.df > 2.0)) return MCMV::Missing();
    const double A = m_big.scale, B = m_small.scale;
    return MCMV::Sanitize(A * A * m_big.df / (m_big.df - 2.0) + B * B * m_small.df / (m_small.df - 2.0));
}

void BehrensFisherDistribution::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BehrensFisherDistribution display start");
    DisplayB("Valid", m_valid);
    DisplayD("Larger Scale", m_big.scale);
    DisplayD("Its Degrees of Freedom", m_big.df);
    DisplayD("Smaller Scale", m_small.scale);
    DisplayD("Its Degrees of Freedom", m_small.df);
    DisplayL("Integrand Evaluations", m_evaluations);
    DisplayB("Converged", m_converged);
    DisplayText(0, "End of display BehrensFisherDistribution object");
}

} // namespace MCBSN_850
