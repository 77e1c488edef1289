#include "bsn/correlation/jzsfunction.h"

#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

void JZSFunction::SetParam(double n, double r) {
    m_n = n;
    m_a = (n - 2.0) / 2.0;
    m_b = (n - 1.0) / 2.0;
    // (1-r)(1+r) keeps its digits when |r| is close to 1.
    m_c = (1.0 - r) * (1.0 + r);
    SetScalePoint(m_t0);
}

void JZSFunction::SetScalePoint(double t0) {
    m_t0 = t0 > 0.0 ? t0 : 0.0;
    m_logScale = LogIntegrandT(m_t0);
}

double JZSFunction::LogIntegrandG(double g) const {
    return m_a * std::log1p(g) - m_b * std::log1p(m_c * g) - 1.5 * std::log(g) - m_n / (2.0 * g);
}

double JZSFunction::LogIntegrandT(double t) const {
    return m_a * std::log1p(t) - m_b * std::log(m_c + t) - m_n * t / 2.0;
}

double JZSFunction::LogRatio(double t) const {
    const double d = t - m_t0;
    return m_a * std::log1p(d / (1.0 + m_t0)) - m_b * std::log1p(d / (m_c + m_t0)) - m_n * d / 2.0;
}

double JZSFunction::Slope(double t) const { return m_a / (1.0 + t) - m_b / (m_c + t) - m_n / 2.0; }

double JZSFunction::UpperEnd(double drop, double tMax) const {
    // The slope is below -1 everywhere, so a step of 1/|slope at t0| is
    // the natural unit and the loop ends after a few dozen doublings.
    double step = 1.0 / std::fabs(Slope(m_t0));
    if (!(step > 0.0) || !std::isfinite(step)) step = 1.0;
    double t = m_t0 + step;
    while (t < tMax && LogRatio(t) > -drop) {
        step *= 2.0;
        t = m_t0 + step;
    }
    return t < tMax ? t : tMax;
}

double JZSFunction::ComputeNI(double t) {
    if (t < 0.0) return MCMV::Missing();
    const double e = LogRatio(t);
    if (!(e <= MCMath_850::MCPower::gMachineMaxExp)) return MCMV::Missing();
    return std::exp(e);
}

void JZSFunction::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "JZSFunction display start");
    DisplayD("n", m_n);
    DisplayD("(n-2)/2", m_a);
    DisplayD("1-r^2", m_c);
    DisplayD("(n-1)/2", m_b);
    DisplayD("Scale point t0", m_t0);
    DisplayD("Log scale", m_logScale);
    DisplayText(0, "End of display JZSFunction object");
}

} // namespace MCBSN_850
