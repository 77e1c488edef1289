#pragma once
// BSN2SampleContStats: running weighted moments of one test variable in one
// group of the independent-samples procedure: the sum of frequency weights W,
// the sum of combined weights C (frequency times case weight), the weighted
// mean and the weighted sum of squared deviations D.
//
// The moments are accumulated on the values minus the first valid value the
// accumulator saw. The update formulas are the usual running ones; only the
// point where rounding happens moves: data such as 1e9 + N(0, 0.001) keep
// their small spread instead of losing it to the size of the mean.
#include <iosfwd>

#include "platform/common/mcmv.h"

namespace MCBSN_850 {

class BSN2SampleContStats {
public:
    // One case of frequency 1 and case weight 1: W += 1; C += 1;
    // delta = x - mean; mean += delta / C; D += delta^2 (C_before / C).
    // A missing x changes nothing and returns false.
    bool Update(double x) { return Update(x, 1.0, 1.0); }
    // One case of whole frequency f and case weight w, c = f w:
    // W += f; C_after = C + c; delta = x - mean; mean += delta c / C_after;
    // D += delta^2 C c / C_after. A missing x, or f or c that is missing or
    // not positive, changes nothing and returns false.
    bool Update(double x, double f, double w) {
        if (MCCommon_850::MCMV::IsMissing(x)) return false;
        const double c = f * w;
        // A weight product that is not a positive number would divide by
        // zero or pull the mean away from the data.
        if (!(f > 0.0) || !(c > 0.0) || MCCommon_850::MCMV::IsMissing(c)) return false;
        if (!m_hasShift) {
            m_shift = x;
            m_hasShift = true;
        }
        // In the data pass for every variable of every case: one division.
        const double before = m_sumCombined;
        const double after = before + c;
        const double share = c / after;
        const double delta = (x - m_shift) - m_mean;
        m_sumFreq += f;
        m_mean += delta * share;
        m_sumSquares += delta * delta * before * share;
        m_sumCombined = after;
        return true;
    }

    // W, the sum of frequency weights.
    double GetSumFreqWeights() const { return m_sumFreq; }
    // C, the sum of combined weights.
    double GetSumCombinedWeights() const { return m_sumCombined; }
    // Missing while W is 0.
    double GetMean() const;
    // D / (W - 1) when W > 1, else missing. The divisor is the sum of
    // frequency weights, not of combined weights.
    double GetVariance() const;
    // D itself (0 before any case).
    double GetSumSquares() const { return m_sumSquares; }

    // mean(b) - mean(a), from the shifted means: the shifts of two
    // accumulators of data far from zero differ exactly, so the difference
    // keeps the digits the two means would lose to their size. Missing
    // unless both have cases.
    static double MeanDifference(const BSN2SampleContStats& a, const BSN2SampleContStats& b);

    void Display(std::ostream& os) const;

private:
    double m_sumFreq = 0.0;
    double m_sumCombined = 0.0;
    double m_mean = 0.0;  // of the shifted values
    double m_sumSquares = 0.0;
    double m_shift = 0.0;  // the first valid value
    bool m_hasShift = false;
};

} // namespace MCBSN_850
