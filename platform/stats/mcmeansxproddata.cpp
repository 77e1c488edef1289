#include "platform/stats/mcmeansxproddata.h"

#include <string>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;

MCMeansXProdData::MCMeansXProdData(int nVariables)
    : m_n(nVariables > 0 ? nVariables : 0),
      m_origins(static_cast<std::size_t>(m_n), 0.0),
      m_shifted(static_cast<std::size_t>(m_n), 0.0),
      m_means(static_cast<std::size_t>(m_n), 0.0),
      m_xprods(static_cast<std::size_t>(m_n) * static_cast<std::size_t>(m_n), 0.0),
      m_delta(static_cast<std::size_t>(m_n), 0.0) {}

void MCMeansXProdData::AddCase(const double* values, double weight) {
    if (values == nullptr || MCMV::IsMissing(weight) || weight <= 0.0) return;
    if (m_sumWeights == 0.0)
        for (int j = 0; j < m_n; ++j) m_origins[j] = values[j];
    const double newSum = m_sumWeights + weight;
    const double ratio = weight / newSum;
    // Deviations from the old means, both taken from the origins; the
    // cross-product update S_jk += w * W_old / W_new * d_j * d_k is the
    // multivariate West step.
    for (int j = 0; j < m_n; ++j) m_delta[j] = (values[j] - m_origins[j]) - m_shifted[j];
    const double factor = m_sumWeights * ratio;
    for (int j = 0; j < m_n; ++j) {
        const double dj = m_delta[j] * factor;
        for (int k = 0; k <= j; ++k) {
            m_xprods[static_cast<std::size_t>(j) * m_n + k] += dj * m_delta[k];
        }
    }
    for (int j = 0; j < m_n; ++j) {
        for (int k = j + 1; k < m_n; ++k)
            m_xprods[static_cast<std::size_t>(j) * m_n + k] = m_xprods[static_cast<std::size_t>(k) * m_n + j];
        m_shifted[j] += m_delta[j] * ratio;
        m_means[j] = m_origins[j] + m_shifted[j];
    }
    m_sumWeights = newSum;
}

double MCMeansXProdData::GetMeanDifference(int j, int k, double offset) const {
    if (j < 0 || k < 0 || j >= m_n || k >= m_n || !(m_sumWeights > 0.0) || MCMV::IsMissing(offset))
        return MCMV::Missing();
    // The origins' difference is kept exactly as hi + lo (the usual paired
    // measurements have close origins and lo = 0; one near 1e9 and one near
    // 0 do not), hi's distance from a nearby offset is exact, and only the
    // small remainder is rounded.
    const double hi = m_origins[j] - m_origins[k];
    const double back = hi - m_origins[j];
    const double lo = (m_origins[j] - (hi - back)) + (-m_origins[k] - back);
    return MCMV::Sanitize(((hi - offset) + lo) + (m_shifted[j] - m_shifted[k]));
}

double MCMeansXProdData::GetXProd(int j, int k) const {
    if (j < 0 || k < 0 || j >= m_n || k >= m_n) return MCMV::Missing();
    return m_xprods[static_cast<std::size_t>(j) * m_n + k];
}

void MCMeansXProdData::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCMeansXProdData display start");
    DisplayI("Number of variables", m_n);
    DisplayD("Sum of weights", m_sumWeights);
    DisplayDV("Origins", m_origins);
    DisplayDV("Means", m_means);
    DisplayDV("Cross-products", m_xprods);
    DisplayText(0, "End of display MCMeansXProdData object");
}

} // namespace MCMath_850
