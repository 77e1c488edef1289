#include "bsn/onesample/bsn1samplepoiscounts.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSN1SamplePoisCounts::BSN1SamplePoisCounts(const std::vector<int>& varIndices)
    : m_varIndices(varIndices), m_recordCounts(varIndices.size(), 0), m_weightSums(varIndices.size(), 0.0),
      m_countSums(varIndices.size(), 0.0), m_rawCountSums(varIndices.size(), 0.0),
      m_minCounts(varIndices.size(), std::numeric_limits<int>::max()),
      m_maxCounts(varIndices.size(), std::numeric_limits<int>::min()) {}

void BSN1SamplePoisCounts::Update(const MCCommon_850::Record& record, double weight) {
    for (std::size_t i = 0; i < m_varIndices.size(); ++i) {
        const double value = record.GetValue(m_varIndices[i]);
        if (MCCommon_850::MCMV::IsMissing(value) || value < 0.0) continue;
        const double count = std::floor(value);
        ++m_recordCounts[i];
        m_weightSums[i] += weight;
        m_countSums[i] += count * weight;
        m_rawCountSums[i] += count;
        m_minCounts[i] = std::min(m_minCounts[i], count);
        m_maxCounts[i] = std::max(m_maxCounts[i], count);
    }
}

bool BSN1SamplePoisCounts::HasAnyCase() const {
    return std::any_of(m_weightSums.begin(), m_weightSums.end(), [](double n) { return n > 0.0; });
}

void BSN1SamplePoisCounts::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SamplePoisCounts display start");
    DisplayIV("Variable indices", m_varIndices);
    DisplayIV("Record counts", m_recordCounts);
    DisplayDV("Sums of weights", m_weightSums);
    DisplayDV("Weighted sums of counts", m_countSums);
    DisplayDV("Sums of counts", m_rawCountSums);
    DisplayDV("Smallest counts", m_minCounts);
    DisplayDV("Largest counts", m_maxCounts);
    DisplayText(0, "End of display BSN1SamplePoisCounts object");
}

} // namespace MCBSN_850
