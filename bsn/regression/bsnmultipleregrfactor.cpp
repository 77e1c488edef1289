#include "bsn/regression/bsnmultipleregrfactor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"
#include "platform/quadrature/lobattoquad.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {

constexpr double kNegInf = -std::numeric_limits<double>::infinity();

double logAt(const BSNRegrIntegrand& f, double u) {
    const double v = f.LogNI(std::exp(u));
    return std::isnan(v) ? kNegInf : v;
}

} // namespace

BSNMultipleRegrFactor::BSNMultipleRegrFactor(const BSNSettings& settings, double N, double p)
    : m_N(N), m_p(p), m_bayesFactor(MCMV::Missing()), m_settings(settings), m_tolerance(settings.GetTolValue()),
      m_maxIterations(settings.GetMaxIterations()), m_logBayesFactor(MCMV::Missing()),
      m_lastLogIntegral(MCMV::Missing()) {}

MCStatus BSNMultipleRegrFactor::Compute() {
    switch (m_settings.GetRegrCompType()) {
    case BSNConst::Siow: return ComputeSiowFactor();
    case BSNConst::Zellner: return ComputeZellnerFactor();
    case BSNConst::Hyper: return ComputeHyperFactor();
    case BSNConst::Rouder: return ComputeRouderFactor();
    default: return m_status;
    }
}

void BSNMultipleRegrFactor::StoreLogFactor(double logFactor) {
    if (MCMV::IsMissing(logFactor)) return;
    m_logBayesFactor = logFactor;
    if (logFactor > MCMath_850::MCPower::gMachineMaxExp || logFactor < MCMath_850::MCPower::gMachineMinExp) {
        m_bayesFactor = logFactor;
        m_isLog = true;
        m_warnings.AddWarning(MCStatus(410041, true), nullptr);
    } else {
        m_bayesFactor = std::exp(logFactor);
    }
}

void BSNMultipleRegrFactor::StoreIntegral(double prefactor, double integral, double logIntegral) {
    m_bayesFactor = MCMV::Sanitize(prefactor * integral);
    if (!MCMV::IsMissing(logIntegral) && prefactor > 0.0) m_logBayesFactor = std::log(prefactor) + logIntegral;
}

double BSNMultipleRegrFactor::Compute1DIntegral(BSNRegrIntegrand* integrand) {
    m_lastLogIntegral = MCMV::Missing();
    if (integrand == nullptr) return MCMV::Missing();
    const BSNRegrIntegrand& f = *integrand;
    const double u0 = std::log(kLowerBound), u1 = std::log(kUpperBound);

    // The maximum of the integrand on a grid in ln g, then refined by golden
    // section around the best grid point.
    constexpr int kGrid = 240;
    const double step = (u1 - u0) / kGrid;
    int best = -1;
    double top = kNegInf;
    for (int i = 0; i <= kGrid; ++i) {
        const double v = logAt(f, u0 + step * i);
        if (v > top) {
            top = v;
            best = i;
        }
    }
    if (best < 0 || !std::isfinite(top)) return MCMV::Missing();
    double a = u0 + step * std::max(best - 1, 0), b = u0 + step * std::min(best + 1, kGrid);
    const double phi = 0.6180339887498949;
    double c = b - phi * (b - a), d = a + phi * (b - a), fc = logAt(f, c), fd = logAt(f, d);
    for (int it = 0; it < 80 && b - a > 1e-12; ++it) {
        if (fc > fd) {
            b = d;
            d = c;
            fd = fc;
            c = b - phi * (b - a);
            fc = logAt(f, c);
        } else {
            a = c;
            c = d;
            fc = fd;
            d = a + phi * (b - a);
            fd = logAt(f, d);
        }
    }
    double uPeak = fc > fd ? c : d;
    double peak = std::max(fc, fd);
    if (!(peak > top)) {
        uPeak = u0 + step * best;
        peak = top;
    }
    integrand->SetLogScale(peak);

    // Break points where the integrand has fallen by fixed amounts from its
    // peak, so that every piece of the range holds a smooth part of it and a
    // narrow peak (large N) cannot slip between the quadrature's nodes.
    const double drops[] = {0.5, 2.0, 8.0, 25.0, 60.0, 120.0, 300.0, 700.0};
    std::vector<double> us = {u0, uPeak, u1};
    auto crossing = [&](double inside, double outside, double level) {
        for (int it = 0; it < 100 && std::fabs(outside - inside) > 1e-13 * std::max(1.0, std::fabs(inside)); ++it) {
            const double mid = 0.5 * (inside + outside);
            (logAt(f, mid) >= level ? inside : outside) = mid;
        }
        return 0.5 * (inside + outside);
    };
    for (double drop : drops) {
        const double level = peak - drop;
        if (logAt(f, u0) < level && uPeak > u0) us.push_back(crossing(uPeak, u0, level));
        if (logAt(f, u1) < level && uPeak < u1) us.push_back(crossing(uPeak, u1, level));
    }
    std::sort(us.begin(), us.end());
    us.erase(std::unique(us.begin(), us.end()), us.end());

    MCMath_850::LobattoQuad quad(*integrand);
    quad.SetTolerance(m_tolerance);
    quad.SetMaxIter(m_maxIterations);
    double scaled = 0.0;
    for (std::size_t i = 0; i + 1 < us.size(); ++i) {
        const double lo = i == 0 ? kLowerBound : std::exp(us[i]);
        const double hi = i + 2 == us.size() ? kUpperBound : std::exp(us[i + 1]);
        if (hi <= lo) continue;
        const double piece = quad.Integrate(lo, hi);
        if (!MCMV::IsMissing(piece)) scaled += piece;
    }
    if (!quad.GetWarnings().IsEmpty()) m_warnings.Append(quad.GetWarnings());
    integrand->SetLogScale(0.0);
    if (!(scaled > 0.0)) return scaled == 0.0 ? 0.0 : MCMV::Missing();
    m_lastLogIntegral = peak + std::log(scaled);
    return std::exp(m_lastLogIntegral);
}

} // namespace MCBSN_850
