#include "bsn/onesample/bsn1samplebinocounts.h"

#include <algorithm>
#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSN1SampleBinoCounts::BSN1SampleBinoCounts(const std::vector<int>& varIndices)
    : m_varIndices(varIndices), m_trials(varIndices.size(), 0.0), m_successes(varIndices.size(), 0.0),
      m_caseCounts(varIndices.size(), 0.0), m_zeroCounts(varIndices.size(), 0) {}

void BSN1SampleBinoCounts::Update(const MCCommon_850::Record& record, double weight) {
    for (std::size_t i = 0; i < m_varIndices.size(); ++i) {
        const double value = record.GetValue(m_varIndices[i]);
        if (MCCommon_850::MCMV::IsMissing(value) || value < 0.0) continue;
        m_trials[i] += weight;
        m_successes[i] += value * weight;
        m_caseCounts[i] += std::trunc(weight);
        if (value == 0.0) ++m_zeroCounts[i];
    }
}

bool BSN1SampleBinoCounts::HasAnyCase() const {
    return std::any_of(m_trials.begin(), m_trials.end(), [](double n) { return n >= 1.0; });
}

void BSN1SampleBinoCounts::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleBinoCounts display start");
    DisplayIV("Variable indices", m_varIndices);
    DisplayDV("Trials", m_trials);
    DisplayDV("Successes", m_successes);
    DisplayDV("Case counts", m_caseCounts);
    DisplayIV("Zero counts", m_zeroCounts);
    DisplayText(0, "End of display BSN1SampleBinoCounts object");
}

} // namespace MCBSN_850
