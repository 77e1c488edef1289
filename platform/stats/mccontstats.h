#pragma once
// MCContStats: weighted running mean and variance of one variable, updated
// one case at a time (West's weighted form of Welford's method, which stays
// accurate for large weights).
//
// Data far from zero: every value is first shifted by the first value added
// (the origin), and the moments are kept of the shifted values. A value near
// the origin minus the origin is exact, so 1e9 + N(0, 0.001) data lose
// nothing to the running mean being rounded at 1e9 on every case; the update
// formulas are unchanged, only where the rounding happens moves. The mean is
// rounded at the data's magnitude once, when read; GetMeanMinus gives a
// difference from a nearby value without even that rounding.
#include <iosfwd>

namespace MCMath_850 {

class MCContStats {
public:
    // Adds a value with a frequency weight; a weight <= 0 or a missing value
    // changes nothing.
    void Update(double value, double weight);

    // Sum of weights of the cases added (0 before any).
    double GetSumWeights() const;
    // Weighted mean; missing before any case.
    double GetMean() const;
    // The weighted mean minus `value`, rounded once: for a value near the
    // mean of data far from zero (a null value of a t test) far more exact
    // than GetMean() - value. Missing before any case or for a missing value.
    double GetMeanMinus(double value) const;
    // Weighted sample variance with divisor (sum of weights - 1); missing when
    // the sum of weights is not above 1.
    double GetVariance() const;
    // Smallest and largest value added; missing before any case.
    double GetMinimum() const;
    double GetMaximum() const;

    void Display(std::ostream& os) const;

private:
    double m_sumWeights = 0.0;
    double m_origin = 0.0;  // the first value added
    double m_mean = 0.0;    // mean of the values minus the origin
    double m_m2 = 0.0;      // weighted sum of squared deviations from the mean
    double m_min = 0.0;
    double m_max = 0.0;
};

} // namespace MCMath_850
