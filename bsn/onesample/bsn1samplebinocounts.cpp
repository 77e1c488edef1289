#include "bsn/onesample/bsn1samplebinocounts.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSN1SampleBinoCounts::BSN1SampleBinoCounts(const std::vector<int>& varIndices)
    : m_varIndices(varIndices), m_trials(varIndices.size(), 0.0), m_successes(varIndices.size(), 0.0),
      m_zeroCounts(varIndices.size(), 0) {}

void BSN1SampleBinoCounts::Update(const MCCommon_850::Record& record, double weight) {
    // This runs once per record and variable, so it avoids data-dependent
    // branches: 0/1 data would make "is it zero" a coin flip for the branch
    // predictor. The one branch left skips missing, negative and non-finite
    // values (the missing value is the most negative double), which are rare.
    // Local pointers let the compiler keep the arrays in registers across
    // the stores.
    const std::size_t n = m_varIndices.size();
    const int* index = m_varIndices.data();
    double* trials = m_trials.data();
    double* successes = m_successes.data();
    int* zeros = m_zeroCounts.data();
    for (std::size_t i = 0; i < n; ++i) {
        const double value = record.GetValue(index[i]);
        if (!(value >= 0.0 && value <= std::numeric_limits<double>::max())) continue;
        trials[i] += weight;
        successes[i] += value * weight;
        zeros[i] += static_cast<int>(value == 0.0);
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
    DisplayDV("Case counts", GetCaseCounts());
    DisplayIV("Zero counts", m_zeroCounts);
    DisplayText(0, "End of display BSN1SampleBinoCounts object");
}

} // namespace MCBSN_850
