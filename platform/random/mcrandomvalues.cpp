#include "platform/random/mcrandomvalues.h"

#include <cmath>

#include <boost/random/seed_seq.hpp>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;

void MCRandomValues::SetSeed(unsigned long seed) {
    m_seed = seed;
    const std::uint64_t s = seed;
    if (s <= 0xffffffffULL) {
        m_engine.seed(static_cast<std::uint32_t>(s));
    } else {
        // Seeds wider than 32 bits keep all their bits through a seed sequence.
        boost::random::seed_seq seq{static_cast<std::uint32_t>(s & 0xffffffffULL), static_cast<std::uint32_t>(s >> 32)};
        m_engine.seed(seq);
    }
    m_hasSpareNormal = false;
    m_spareNormal = 0.0;
}

double MCRandomValues::GetUniform() {
    const std::uint64_t hi = static_cast<std::uint32_t>(m_engine()) >> 6;
    const std::uint64_t lo = static_cast<std::uint32_t>(m_engine()) >> 6;
    const std::uint64_t k = (hi << 26) | lo;  // 52 random bits
    // k + 0.5 is exact below 2^52, and the largest value, 1 - 2^-53, is a double.
    return (static_cast<double>(k) + 0.5) * 0x1p-52;
}

double MCRandomValues::GetNormal() {
    if (m_hasSpareNormal) {
        m_hasSpareNormal = false;
        return m_spareNormal;
    }
    double v1 = 0.0, v2 = 0.0, s = 0.0;
    do {
        v1 = 2.0 * GetUniform() - 1.0;
        v2 = 2.0 * GetUniform() - 1.0;
        s = v1 * v1 + v2 * v2;
    } while (s >= 1.0 || s == 0.0);
    const double factor = std::sqrt(-2.0 * std::log(s) / s);
    m_spareNormal = v2 * factor;
    m_hasSpareNormal = true;
    return v1 * factor;
}

bool MCRandomValues::SetParamGamma(double shape, double rate) {
    if (MCMV::IsMissing(shape) || MCMV::IsMissing(rate) || shape <= 0.0 || rate <= 0.0) return false;
    m_shape = shape;
    m_rate = rate;
    return true;
}

double MCRandomValues::gammaAtLeastOne(double shape) {
    const double d = shape - 1.0 / 3.0;
    const double c = 1.0 / std::sqrt(9.0 * d);
    for (;;) {
        double x = 0.0, v = 0.0;
        do {
            x = GetNormal();
            v = 1.0 + c * x;
        } while (v <= 0.0);
        v = v * v * v;
        const double u = GetUniform();
        const double x2 = x * x;
        if (u < 1.0 - 0.0331 * x2 * x2) return d * v;
        if (std::log(u) < 0.5 * x2 + d * (1.0 - v + std::log(v))) return d * v;
    }
}

double MCRandomValues::GetGamma(double shape, double rate) {
    if (MCMV::IsMissing(shape) || MCMV::IsMissing(rate) || shape <= 0.0 || rate <= 0.0) return MCMV::Missing();
    if (shape >= 1.0) return gammaAtLeastOne(shape) / rate;
    // For small shapes the power can underflow to 0; callers that need a
    // positive value draw again.
    const double g = gammaAtLeastOne(shape + 1.0);
    return g * std::pow(GetUniform(), 1.0 / shape) / rate;
}

void MCRandomValues::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCRandomValues display start");
    DisplayL("Seed", static_cast<long>(m_seed));
    DisplayB("Spare normal held", m_hasSpareNormal);
    DisplayD("Spare normal", m_spareNormal);
    DisplayD("Gamma shape", m_shape);
    DisplayD("Gamma rate", m_rate);
    DisplayText(0, "End of display MCRandomValues object");
}

} // namespace MCMath_850
