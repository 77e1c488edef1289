#pragma once
// MCContStats: weighted running mean and variance of one variable, updated
// one case at a time (West's weighted form of Welford's method, which stays
// accurate for large weights and for large means with small spread).
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
    // Weighted sample variance with divisor (sum of weights - 1); missing when
    // the sum of weights is not above 1.
    double GetVariance() const;
    // Smallest and largest value added; missing before any case.
    double GetMinimum() const;
    double GetMaximum() const;

    void Display(std::ostream& os) const;

private:
    double m_sumWeights = 0.0;
    double m_mean = 0.0;
    double m_m2 = 0.0;  // weighted sum of squared deviations from the mean
    double m_min = 0.0;
    double m_max = 0.0;
};

} // namespace MCMath_850
