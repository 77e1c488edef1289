#include "bsn/twosample/bsn2samplecontstats.h"

#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

bool BSN2SampleContStats::Update(double x) {
    if (MCMV::IsMissing(x)) return false;
    if (!m_hasShift) {
        m_shift = x;
        m_hasShift = true;
    }
    const double before = m_sumCombined;
    m_sumFreq += 1.0;
    m_sumCombined += 1.0;
    const double delta = (x - m_shift) - m_mean;
    m_mean += delta / m_sumCombined;
    m_sumSquares += delta * delta * (before / m_sumCombined);
    return true;
}

bool BSN2SampleContStats::Update(double x, double f, double w) {
    if (MCMV::IsMissing(x) || MCMV::IsMissing(f) || MCMV::IsMissing(w)) return false;
    const double c = f * w;
    // A weight product that is not a positive number would divide by zero
    // or pull the mean away from the data.
    if (!(f > 0.0) || !(c > 0.0) || MCMV::IsMissing(c)) return false;
    if (!m_hasShift) {
        m_shift = x;
        m_hasShift = true;
    }
    const double before = m_sumCombined;
    const double after = before + c;
    const double delta = (x - m_shift) - m_mean;
    m_sumFreq += f;
    m_mean += delta * c / after;
    m_sumSquares += delta * delta * (before * c / after);
    m_sumCombined = after;
    return true;
}

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
