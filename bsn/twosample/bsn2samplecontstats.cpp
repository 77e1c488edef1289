#include "bsn/twosample/bsn2samplecontstats.h"

#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

double BSN2SampleContStats::GetMean() const {
    if (m_sumFreq == 0.0) return MCMV::Missing();
    return MCMV::Sanitize(m_shift + m_mean);
}

double BSN2SampleContStats::MeanDifference(const BSN2SampleContStats& a, const BSN2SampleContStats& b) {
    if (a.m_sumFreq == 0.0 || b.m_sumFreq == 0.0) return MCMV::Missing();
    return MCMV::Sanitize((b.m_shift - a.m_shift) + (b.m_mean - a.m_mean));
}

double BSN2SampleContStats::GetVariance() const {
    if (!(m_sumFreq > 1.0)) return MCMV::Missing();
    return MCMV::Sanitize(m_sumSquares / (m_sumFreq - 1.0));
}

void BSN2SampleContStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleContStats display start");
    DisplayD("Sum of frequency weights", m_sumFreq);
    DisplayD("Sum of combined weights", m_sumCombined);
    DisplayD("Mean", GetMean());
    DisplayD("Sum of squared deviations", m_sumSquares);
    DisplayD("Variance", GetVariance());
    DisplayD("Shift", m_hasShift ? m_shift : MCMV::Missing());
    DisplayText(0, "End of display BSN2SampleContStats object");
}

} // namespace MCBSN_850
