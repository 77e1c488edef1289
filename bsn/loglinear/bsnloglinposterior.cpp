#include "bsn/loglinear/bsnloglinposterior.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <utility>

#include <boost/math/special_functions/digamma.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/special_functions/trigamma.hpp>

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

namespace bm = boost::math;
using Complex = std::complex<double>;
using NoThrow = bm::policies::policy<
    bm::policies::domain_error<bm::policies::ignore_error>, bm::policies::pole_error<bm::policies::ignore_error>,
    bm::policies::overflow_error<bm::policies::ignore_error>,
    bm::policies::underflow_error<bm::policies::ignore_error>,
    bm::policies::evaluation_error<bm::policies::ignore_error>>;

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
// Mass left beyond each cell's tail extents; four cells, two tails.
constexpr double kTailMass = 1e-17;
// The series stops where |φ| < e^-40.
constexpr double kLogNegligible = -40.0;
// A cap on the nodes of one pair (reached only for shapes near 0.001).
constexpr std::size_t kMaxNodes = std::size_t{1} << 21;
// Beyond this many pairs (a table of about 80 × 80 non-empty categories)
// the estimates would take gigabytes and minutes: none are computed.
constexpr double kMaxPairs = 1e7;

// ln b - ψ(b) for b >= 10: 1/(2b) + Σ B_2k / (2k b^2k); the next term is
// below 1e-16 of the first at b = 10.
double logMinusDigamma(double b) {
    const double w = 1.0 / (b * b);
    return 0.5 / b +
           w * (1.0 / 12 + w * (-1.0 / 120 + w * (1.0 / 252 + w * (-1.0 / 240 + w * (1.0 / 132 +
                                w * (-691.0 / 32760 + w * (1.0 / 12)))))));
}

// ω(z) = lnΓ(z) - (z - 1/2) ln z + z - ln √(2π) for Re z >= 10.
Complex stirlingRemainder(Complex z) {
    const Complex w = 1.0 / z, w2 = w * w;
    return w * (1.0 / 12 +
                w2 * (-1.0 / 360 +
                      w2 * (1.0 / 1260 +
                            w2 * (-1.0 / 1680 + w2 * (1.0 / 1188 + w2 * (-691.0 / 360360 + w2 * (1.0 / 156)))))));
}

// c_β(t) = lnΓ(β + it) - lnΓ(β) - it ψ(β): the log characteristic function
// of ln G - E ln G, G ~ Gamma(β). Below 10 the argument is raised with
// c_β = c_(β+1) - [ln(1 + it/β) - it/β]; from there Stirling's series is
// written as differences (ln(1 + iu), ω(b + it) - ω(b), ln b - ψ(b)) so that
// nothing of the size of β or t ln β has to cancel.
Complex centredLogCf(double beta, double t) {
    Complex shift(0.0, 0.0);
    double b = beta;
    while (b < 10.0) {
        const double u = t / b;
        shift -= Complex(0.5 * std::log1p(u * u), std::atan(u) - u);
        b += 1.0;
    }
    const double u = t / b;
    const double lr = 0.5 * std::log1p(u * u), li = std::atan(u);
    const double re = (b - 0.5) * lr - t * li;
    const double im = b * (li - u) - 0.5 * li + t * (logMinusDigamma(b) + lr);
    return shift + Complex(re, im) + stirlingRemainder(Complex(b, t)) - MCDistFun::StirlingRemainder(b);
}

// What one cell contributes: the moments of ln G, G ~ Gamma(β), how far
// below and above its mean all but kTailMass of it lies, and its centred
// log characteristic function on the grids t_k = k h_level already asked for.
struct CellLaw {
    double beta = 0.0;
    bool proper = false;
    double mean = 0.0, variance = 0.0, below = 0.0, above = 0.0;
    std::vector<std::pair<int, std::vector<Complex>>> grids;

    explicit CellLaw(double b) : beta(b), proper(b > 0.0 && std::isfinite(b)) {
        if (!proper) return;
        mean = bm::digamma(beta, NoThrow());
        variance = bm::trigamma(beta, NoThrow());
        double low = bm::gamma_p_inv(beta, kTailMass, NoThrow());
        // Near 0, P(G < g) ≈ g^β / Γ(β + 1).
        const double lnLow = low > 1e-300 && std::isfinite(low)
                                 ? std::log(low)
                                 : (std::log(kTailMass) + MCDistFun::quondnlgam(beta + 1.0)) / beta;
        const double high = bm::gamma_q_inv(beta, kTailMass, NoThrow());
        const double spread = 12.0 * std::sqrt(variance);
        below = std::isfinite(lnLow) ? mean - lnLow : spread + 40.0 / beta;
        above = std::isfinite(high) && high > 0.0 ? std::log(high) - mean : spread;
    }

    static double Step(int level) { return kTwoPi / std::exp2(level / 4.0); }

    // The grid of `level` with at least n nodes (t_1 .. t_n).
    const std::vector<Complex>& Grid(int level, std::size_t n) {
        auto it = std::find_if(grids.begin(), grids.end(), [&](const auto& g) { return g.first == level; });
        if (it == grids.end()) {
            grids.emplace_back(level, std::vector<Complex>());
            it = grids.end() - 1;
        }
        std::vector<Complex>& grid = it->second;
        const double h = Step(level);
        for (std::size_t k = grid.size() + 1; k <= n; ++k) grid.push_back(centredLogCf(beta, static_cast<double>(k) * h));
        return grid;
    }
};

// The distribution of one centred log odds ratio from its characteristic
// function at t_k = k h, k = 1..K.
class CentredLaw {
public:
    struct Point {
        double cdf, density, slope, curvature;
    };

    CentredLaw(double h, std::vector<Complex> phi, double sd, double below, double above)
        : m_h(h), m_phi(std::move(phi)), m_sd(sd), m_below(below), m_above(above) {}

    Point At(double x) const {
        const Complex w(std::cos(m_h * x), -std::sin(m_h * x));
        Complex power = w;
        double sIm = 0.0, sRe = 0.0, sKIm = 0.0, sKKRe = 0.0;
        for (std::size_t k = 1; k <= m_phi.size(); ++k) {
            const Complex z = m_phi[k - 1] * power;
            const double kd = static_cast<double>(k);
            sIm += z.imag() / kd;
            sRe += z.real();
            sKIm += kd * z.imag();
            sKKRe += kd * kd * z.real();
            power *= w;
        }
        const double h = m_h;
        return {0.5 + h * x / kTwoPi - sIm / kPi, h / kTwoPi + h / kPi * sRe, h * h / kPi * sKIm,
                -h * h * h / kPi * sKKRe};
    }

    // The p-quantile, by Newton steps kept inside a bracket.
    double Quantile(double p) const {
        double lo = -m_below, hi = m_above;
        double x = std::clamp(m_sd * MCDistFun::IdfNorm(p), lo, hi);
        for (int it = 0; it < 200; ++it) {
            const Point pt = At(x);
            const double g = pt.cdf - p;
            (g > 0.0 ? hi : lo) = x;
            double next = pt.density > 0.0 ? x - g / pt.density : lo - 1.0;
            if (!(next > lo && next < hi)) next = 0.5 * (lo + hi);
            const bool done = std::fabs(next - x) <= tolerance();
            x = next;
            if (done || hi - lo <= tolerance()) break;
        }
        return x;
    }

    // The mode: where the density's slope changes sign (the density is
    // log-concave, so there is one such place).
    double Mode() const {
        double lo = 0.0, hi = 0.0;
        const double direction = At(0.0).slope > 0.0 ? 1.0 : -1.0;
        double far = 0.0, step = 0.5 * m_sd;
        const double limit = direction > 0 ? m_above : m_below;
        while (true) {
            far = std::min(far + step, limit);
            if (At(direction * far).slope * direction <= 0.0 || far >= limit) break;
            step *= 2.0;
        }
        lo = direction > 0 ? 0.0 : -far;
        hi = direction > 0 ? far : 0.0;
        double x = 0.5 * (lo + hi);
        for (int it = 0; it < 200; ++it) {
            const Point pt = At(x);
            (pt.slope > 0.0 ? lo : hi) = x;
            double next = pt.curvature < 0.0 ? x - pt.slope / pt.curvature : lo - 1.0;
            if (!(next > lo && next < hi)) next = 0.5 * (lo + hi);
            const bool done = std::fabs(next - x) <= tolerance();
            x = next;
            if (done || hi - lo <= tolerance()) break;
        }
        return x;
    }

private:
    double tolerance() const { return 1e-11 * m_sd; }

    double m_h;
    std::vector<Complex> m_phi;
    double m_sd, m_below, m_above;
};

} // namespace

BSNLogLinPosterior::BSNLogLinPosterior(const BSNSettings& settings, const Matrix& counts,
                                       const std::vector<int>& rows, const std::vector<int>& cols)
    : m_settings(settings), m_counts(counts), m_rows(rows), m_cols(cols), m_cancelInfo(nullptr) {
    m_cancelInfo.SetCancelPtr(settings.GetCancelPointer());
}

BSNLogLinPosterior::~BSNLogLinPosterior() = default;

MCStatus BSNLogLinPosterior::Compute() {
    m_pairs.clear();
    m_estimations.clear();
    m_plotArguments.clear();
    m_plotDensities.clear();
    const std::size_t nRows = m_counts.size(), nCols = m_counts.empty() ? 0 : m_counts[0].size();
    std::vector<double> shapes = m_settings.GetLogLinShapes();
    if (shapes.empty()) shapes.assign(1, 1.0);
    if (shapes.size() != 1 && shapes.size() != nRows * nCols) {
        m_status = MCStatus(410060, false);
        m_status.SetDiscreteDatum(0, static_cast<int>(nRows * nCols));
        m_status.SetDiscreteDatum(1, static_cast<int>(shapes.size()));
        return m_status;
    }

    // The cells of the non-empty rows and columns, in that grid.
    const std::size_t R = m_rows.size(), C = m_cols.size();
    const double nPairs = R * (R - 1) / 2.0 * (C * (C - 1) / 2.0);
    if (nPairs > kMaxPairs) {
        m_status = MCStatus(420042, true);
        m_status.SetScaleDatum(0, nPairs);
        m_warnings.AddWarning(m_status, nullptr);
        return m_status;
    }
    std::vector<CellLaw> cells;
    cells.reserve(R * C);
    for (int i : m_rows)
        for (int j : m_cols) {
            const std::size_t k = static_cast<std::size_t>(i) * nCols + static_cast<std::size_t>(j);
            cells.emplace_back((shapes.size() == 1 ? shapes[0] : shapes[k]) + m_counts[i][j]);
        }

    // Limits need a level strictly between 0 and 100; a plot domain level
    // outside (0, 1/2) falls back to the usual 0.005.
    const double level = m_settings.GetCILevel();
    const bool wantLimits = !MCMV::IsMissing(level) && level > 0.0 && level < 100.0;
    const double alpha = wantLimits ? (100.0 - level) / 100.0 : 0.05;
    const int maxPlots = std::max(m_settings.GetMaxNPlots(), 0);
    const int nPoints = m_settings.GetNPlotPoints();
    double domainLevel = m_settings.GetPlotDomainLevel();
    if (MCMV::IsMissing(domainLevel) || !(domainLevel > 0.0 && domainLevel < 0.5)) domainLevel = 0.005;
    bool improper = false;
    std::vector<Complex> phi;
    for (std::size_t a = 0; a < R; ++a)
        for (std::size_t b = a + 1; b < R; ++b)
            for (std::size_t c = 0; c < C; ++c)
                for (std::size_t d = c + 1; d < C; ++d) {
                    if (m_cancelInfo.IsCancel()) {
                        m_status = MCStatus(1, false);
                        return m_status;
                    }
                    m_pairs.push_back({m_rows[a], m_rows[b], m_cols[c], m_cols[d]});
                    // ψ = Z_ac + Z_bd - Z_ad - Z_bc.
                    CellLaw* plus[2] = {&cells[a * C + c], &cells[b * C + d]};
                    CellLaw* minus[2] = {&cells[a * C + d], &cells[b * C + c]};
                    if (!plus[0]->proper || !plus[1]->proper || !minus[0]->proper || !minus[1]->proper) {
                        improper = true;
                        m_estimations.emplace_back();
                        continue;
                    }
                    const double mean = plus[0]->mean + plus[1]->mean - minus[0]->mean - minus[1]->mean;
                    const double variance =
                        plus[0]->variance + plus[1]->variance + minus[0]->variance + minus[1]->variance;
                    const double below = plus[0]->below + plus[1]->below + minus[0]->above + minus[1]->above;
                    const double above = plus[0]->above + plus[1]->above + minus[0]->below + minus[1]->below;
                    if (!std::isfinite(below + above) || !(below + above > 0.0)) {
                        improper = true;
                        m_estimations.emplace_back();
                        continue;
                    }
                    // Every point used lies within [-below, above], so a
                    // period of below + above keeps the aliased mass under
                    // the tails' 4e-17.
                    const int level = static_cast<int>(std::ceil(4.0 * std::log2(below + above)));
                    const double h = CellLaw::Step(level);
                    phi.clear();
                    std::size_t have = 0;
                    const std::vector<Complex>* grid[4] = {};
                    for (std::size_t k = 1; k <= kMaxNodes; ++k) {
                        if (k > have) {
                            have = std::max<std::size_t>(2 * have, 32);
                            grid[0] = &plus[0]->Grid(level, have);
                            grid[1] = &plus[1]->Grid(level, have);
                            grid[2] = &minus[0]->Grid(level, have);
                            grid[3] = &minus[1]->Grid(level, have);
                        }
                        const Complex logPhi = (*grid[0])[k - 1] + (*grid[1])[k - 1] + std::conj((*grid[2])[k - 1]) +
                                               std::conj((*grid[3])[k - 1]);
                        if (logPhi.real() < kLogNegligible) break;
                        phi.push_back(std::exp(logPhi));
                    }
                    const double sd = std::sqrt(variance);
                    const CentredLaw law(h, phi, sd, below, above);
                    BayesEstimation e(mean + law.Mode(), mean, variance,
                                      wantLimits ? mean + law.Quantile(alpha / 2.0) : MCMV::Missing(),
                                      wantLimits ? mean + law.Quantile(1.0 - alpha / 2.0) : MCMV::Missing());
                    m_estimations.push_back(e);
                    if (m_estimations.size() <= static_cast<std::size_t>(maxPlots) && nPoints >= 2) {
                        const double lo = law.Quantile(domainLevel), hi = law.Quantile(1.0 - domainLevel);
                        std::vector<double> xs(static_cast<std::size_t>(nPoints)), ys(xs.size());
                        for (int p = 0; p < nPoints; ++p) {
                            const double x = lo + (hi - lo) * p / (nPoints - 1);
                            xs[p] = mean + x;
                            ys[p] = std::max(law.At(x).density, 0.0);
                        }
                        m_plotArguments.push_back(std::move(xs));
                        m_plotDensities.push_back(std::move(ys));
                    }
                }
    m_status = MCStatus();
    if (improper) {
        m_status = MCStatus(420041, true);
        m_warnings.AddWarning(m_status, nullptr);
    }
    return m_status;
}

void BSNLogLinPosterior::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNLogLinPosterior display start");
    DisplayIV("Non-empty rows", m_rows);
    DisplayIV("Non-empty columns", m_cols);
    DisplayD("CI Level", m_settings.GetCILevel());
    DisplayDV("LogLinear Shape params", m_settings.GetLogLinShapes());
    DisplayI("Number of pairs", static_cast<int>(m_pairs.size()));
    DisplayText(0, "Bayesian estimation on pairs of categories");
    for (std::size_t p = 0; p < m_pairs.size(); ++p) {
        DisplayIV("Pair (rows, columns)", {m_pairs[p][0], m_pairs[p][1], m_pairs[p][2], m_pairs[p][3]});
        m_estimations[p].Display(os);
    }
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayText(0, "End of display BSNLogLinPosterior object");
}

} // namespace MCBSN_850
