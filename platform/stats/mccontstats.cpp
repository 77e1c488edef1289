#include "platform/stats/mccontstats.h"

#include <algorithm>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;

void MCContStats::Update(double value, double weight) {
    if (MCMV::IsMissing(value) || MCMV::IsMissing(weight) || weight <= 0.0) return;
    if (m_sumWeights == 0.0) {
        m_origin = value;
        m_min = value;
        m_max = value;
    } else {
        m_min = std::min(m_min, value);
        m_max = std::max(m_max, value);
    }
    // West (1979): the weighted update keeps the deviation from the running
    // mean small, so a weight of a billion loses nothing. It runs on the
    // value minus the origin (exact for values within a factor of two of
    // it), so that the running mean is not rounded at the data's magnitude.
    const double newSum = m_sumWeights + weight;
    const double delta = (value - m_origin) - m_mean;
    const double r = delta * weight / newSum;
    m_mean += r;
    m_m2 += m_sumWeights * delta * r;
    m_sumWeights = newSum;
}

double MCContStats::GetSumWeights() const { return m_sumWeights; }

double MCContStats::GetMean() const { return m_sumWeights > 0.0 ? m_origin + m_mean : MCMV::Missing(); }

double MCContStats::GetMeanMinus(double value) const {
    if (!(m_sumWeights > 0.0) || MCMV::IsMissing(value)) return MCMV::Missing();
    return MCMV::Sanitize((m_origin - value) + m_mean);
}

double MCContStats::GetVariance() const {
    if (m_sumWeights <= 1.0) return MCMV::Missing();
    // Rounding can leave a tiny negative sum of squares for constant data.
    return std::max(m_m2, 0.0) / (m_sumWeights - 1.0);
}

double MCContStats::GetMinimum() const { return m_sumWeights > 0.0 ? m_min : MCMV::Missing(); }
double MCContStats::GetMaximum() const { return m_sumWeights > 0.0 ? m_max : MCMV::Missing(); }

void MCContStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCContStats display start");
    DisplayD("Sum of weights", m_sumWeights);
    DisplayD("Origin", m_origin);
    DisplayD("Mean", GetMean());
    DisplayD("Sum of squared deviations", m_m2);
    DisplayD("Variance", GetVariance());
    DisplayD("Minimum", GetMinimum());
    DisplayD("Maximum", GetMaximum());
    DisplayText(0, "End of display MCContStats object");
}

} // namespace MCMath_850
