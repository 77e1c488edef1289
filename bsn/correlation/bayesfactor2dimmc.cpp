#include "bsn/correlation/bayesfactor2dimmc.h"

#include <algorithm>
#include <cmath>

#include "bsn/correlation/bayesfactor2dimrng.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

BayesFactor2DimMC::BayesFactor2DimMC() : m_fixedLogScale(MCMV::Missing()) { clearResults(); }

void BayesFactor2DimMC::clearResults() {
    m_integral1 = m_integralB = m_logScale1 = m_logScaleB = m_logBF = MCMV::Missing();
}

void BayesFactor2DimMC::SetParams(double b, double n, double r, long S) {
    m_b = b;
    m_n = n;
    m_r = r;
    m_S = S;
    m_integrand1.SetParams(1.0, n, r);
    m_integrandB.SetParams(b, n, r);
    m_valid = m_integrand1.IsValid() && m_integrandB.IsValid() && S >= 0;
    clearResults();
}

const BayesFactor2DimMC::Points& BayesFactor2DimMC::points(double Va, double Vb) {
    for (const Points& p : m_points)
        if (p.Va == Va && p.Vb == Vb && p.seed == m_seed && p.S == m_S) return p;
    auto it = std::find_if(m_points.begin(), m_points.end(), [&](const Points& p) { return p.Va == Va && p.Vb == Vb; });
    if (it == m_points.end()) it = m_points.insert(m_points.end(), Points{});
    Points& p = *it;
    p.seed = m_seed;
    p.Va = Va;
    p.Vb = Vb;
    p.S = m_S;
    const std::size_t n = static_cast<std::size_t>(std::max(0L, m_S));
    p.rho.resize(n);
    p.logOneMinusRho2.resize(n);
    p.logV.resize(n);
    p.sExcess.resize(n);
    BayesFactor2DimRng rng(kLowerRho, kUpperRho, Va, Vb);
    rng.SetSeed(m_seed);
    for (std::size_t k = 0; k < n; ++k) {
        const double V = rng.GetV();  // V first, then rho
        const double rho = rng.GetRho();
        const double s = std::sqrt(V);
        p.rho[k] = rho;
        p.logOneMinusRho2[k] = std::log((1.0 - rho) * (1.0 + rho));
        p.logV[k] = std::log(V);
        p.sExcess[k] = (s - 1.0) * (s - 1.0) / s;
    }
    return p;
}

double BayesFactor2DimMC::SumUp(double Va, double Vb) {
    m_average1 = m_averageB = 0.0;
    if (!m_valid) {
        m_average1 = m_averageB = MCMV::Missing();
        return m_averageB;
    }
    const Points& p = points(Va, Vb);
    const std::size_t n = p.rho.size();
    m_log1.resize(n);
    m_logB.resize(n);
    // The log integrand at every point; the pilot pass's maxima come from
    // the very values the main pass averages.
    m_integrand1.ResetMaxLog();
    m_integrandB.ResetMaxLog();
    for (std::size_t k = 0; k < n; ++k) {
        m_log1[k] = m_integrand1.LogIntegrandFromParts(p.logOneMinusRho2[k], p.logV[k], p.sExcess[k], p.rho[k]);
        m_logB[k] = m_integrandB.LogIntegrandFromParts(p.logOneMinusRho2[k], p.logV[k], p.sExcess[k], p.rho[k]);
        m_integrand1.UpdateMaxLogValue(m_log1[k]);
        m_integrandB.UpdateMaxLogValue(m_logB[k]);
    }
    if (MCMV::IsMissing(m_fixedLogScale)) {
        m_integrand1.ComputeLogScale(m_S);
        m_integrandB.ComputeLogScale(m_S);
    } else {
        m_integrand1.SetLogScale(m_fixedLogScale);
        m_integrandB.SetLogScale(m_fixedLogScale);
    }
    const double scale1 = m_integrand1.GetLogScale(), scaleB = m_integrandB.GetLogScale();
    double a1 = 0.0, ab = 0.0;
    for (std::size_t k = 0; k < n; ++k) {
        const double count = static_cast<double>(k + 1);
        const double v1 = std::exp(m_log1[k] - scale1), vb = std::exp(m_logB[k] - scaleB);
        const double n1 = a1 + (v1 - a1) / count, nb = ab + (vb - ab) / count;
        if (n1 == a1) ++m_underflows1;
        if (nb == ab) ++m_underflowsB;
        a1 = n1;
        ab = nb;
    }
    m_average1 = MCMV::Sanitize(a1);
    m_averageB = MCMV::Sanitize(ab);
    return m_averageB;
}

double BayesFactor2DimMC::Integrate(double Va, double Vb) {
    SumUp(Va, Vb);
    const double area = (kUpperRho - kLowerRho) * (Vb - Va);
    if (!MCMV::IsMissing(m_average1)) m_average1 = MCMV::Sanitize(m_average1 * area);
    if (!MCMV::IsMissing(m_averageB)) m_averageB = MCMV::Sanitize(m_averageB * area);
    return m_averageB;
}

void BayesFactor2DimMC::Compute() {
    clearResults();
    m_underflows1 = m_underflowsB = 0;
    if (!m_valid) return;
    const double bounds[4] = {kLowerV, kFirstInnerV, kSecondInnerV, kUpperV};
    double avg1[3], avgB[3], log1[3], logB[3];
    for (int k = 0; k < 3; ++k) {
        SumUp(bounds[k], bounds[k + 1]);
        // The region's area joins its log scale rather than its average,
        // so that no partial result can overflow whatever S is.
        const double logArea = std::log((kUpperRho - kLowerRho) * (bounds[k + 1] - bounds[k]));
        avg1[k] = m_average1;
        avgB[k] = m_averageB;
        log1[k] = m_integrand1.GetLogScale() + logArea;
        logB[k] = m_integrandB.GetLogScale() + logArea;
        if (MCMV::IsMissing(avg1[k]) || MCMV::IsMissing(avgB[k])) return;
    }
    auto combine = [](const double* avg, const double* logs, double& integral, double& logScale) {
        const double top = std::max({logs[0], logs[1], logs[2]});
        double sum = 0.0;
        for (int k = 0; k < 3; ++k) sum += std::exp(logs[k] - top) * avg[k];
        integral = MCMV::Sanitize(sum);
        logScale = MCMV::Sanitize(top);
    };
    combine(avg1, log1, m_integral1, m_logScale1);
    combine(avgB, logB, m_integralB, m_logScaleB);
}

double BayesFactor2DimMC::ComputeBayesFactorFromLogs(double logF1, double logFb) {
    if (MCMV::IsMissing(m_integral1) || MCMV::IsMissing(m_integralB)) Compute();
    m_logBF = MCMV::Missing();
    if (MCMV::IsMissing(logF1) || MCMV::IsMissing(logFb) || MCMV::IsMissing(m_integral1) ||
        MCMV::IsMissing(m_integralB) || !(m_integral1 > 0.0) || !(m_integralB > 0.0))
        return m_logBF;
    m_logBF = MCMV::Sanitize(std::log(m_integralB) + m_logScaleB + (logF1 - logFb) - std::log(m_integral1) - m_logScale1);
    return m_logBF;
}

double BayesFactor2DimMC::ComputeBayesFactor(double F1, double Fb) {
    if (MCMV::IsMissing(F1) || MCMV::IsMissing(Fb) || !(F1 > 0.0) || !(Fb > 0.0)) {
        m_logBF = MCMV::Missing();
        return m_logBF;
    }
    const double logBF = ComputeBayesFactorFromLogs(std::log(F1), std::log(Fb));
    return MCMV::IsMissing(logBF) ? logBF : MCMV::Sanitize(std::exp(logBF));
}

void BayesFactor2DimMC::GetIntegrals(double& I1, double& Ib) const {
    I1 = m_integral1;
    Ib = m_integralB;
}

void BayesFactor2DimMC::GetLogScales(double& l1, double& lb) const {
    l1 = m_logScale1;
    lb = m_logScaleB;
}

void BayesFactor2DimMC::GetLogIntegrals(double& logI1, double& logIb) const {
    auto logOf = [](double integral, double scale) {
        if (MCMV::IsMissing(integral) || MCMV::IsMissing(scale) || !(integral > 0.0)) return MCMV::Missing();
        return MCMV::Sanitize(std::log(integral) + scale);
    };
    logI1 = logOf(m_integral1, m_logScale1);
    logIb = logOf(m_integralB, m_logScaleB);
}

double BayesFactor2DimMC::GetLogRatioOfIntegrals() const {
    double l1 = 0.0, lb = 0.0;
    GetLogIntegrals(l1, lb);
    if (MCMV::IsMissing(l1) || MCMV::IsMissing(lb)) return MCMV::Missing();
    return MCMV::Sanitize(lb - l1);
}

double BayesFactor2DimMC::GetRatioOfIntegrals() const {
    const double l = GetLogRatioOfIntegrals();
    return MCMV::IsMissing(l) ? l : MCMV::Sanitize(std::exp(l));
}

void BayesFactor2DimMC::GetNumberOfUnderflows(long& n1, long& nb) const {
    n1 = m_underflows1;
    nb = m_underflowsB;
}

void BayesFactor2DimMC::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFactor2DimMC display start");
    DisplayD("Fraction b", m_b);
    DisplayD("n", m_n);
    DisplayD("r", m_r);
    DisplayL("Samples per region", m_S);
    DisplayL("Seed", static_cast<long>(m_seed));
    DisplayB("Valid", m_valid);
    DisplayD("Lower boundary for rho", kLowerRho);
    DisplayD("Upper boundary for rho", kUpperRho);
    DisplayD("Lower boundary for V", kLowerV);
    DisplayD("First inner boundary for V", kFirstInnerV);
    DisplayD("Second inner boundary for V", kSecondInnerV);
    DisplayD("Upper boundary for V", kUpperV);
    DisplayD("Fixed log scale", m_fixedLogScale);
    DisplayD("Integral (fraction 1)", m_integral1);
    DisplayD("Integral (fraction b)", m_integralB);
    DisplayD("Log scale (fraction 1)", m_logScale1);
    DisplayD("Log scale (fraction b)", m_logScaleB);
    DisplayD("Log Bayes factor", m_logBF);
    DisplayL("Underflows (fraction 1)", m_underflows1);
    DisplayL("Underflows (fraction b)", m_underflowsB);
    DisplayText(0, "End of display BayesFactor2DimMC object");
}

} // namespace MCBSN_850
