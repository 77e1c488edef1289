#pragma once
// MCMeansXProdData: weighted means and corrected sums of squares and
// cross-products of a small fixed set of variables, updated one case at a
// time (the multivariate form of the weighted Welford update).
//
// Data far from zero: each variable is shifted by its value in the first
// case added (its origin) before the update, as in MCContStats, so that the
// running means are not rounded at the data's magnitude on every case. The
// update formulas are unchanged; GetMeans() adds the origins back once.
#include <iosfwd>
#include <vector>

namespace MCMath_850 {

class MCMeansXProdData {
public:
    explicit MCMeansXProdData(int nVariables);

    // Adds one case: nVariables values (none missing) with a frequency
    // weight; a weight <= 0 changes nothing.
    void AddCase(const double* values, double weight);

    int GetNVariables() const { return m_n; }
    // Sum of weights of the cases added.
    double GetNCases() const { return m_sumWeights; }
    const std::vector<double>& GetMeans() const { return m_means; }
    // m_j - m_k - offset, rounded once: the difference of two means of data
    // far from zero (and its distance from a null value) without first
    // rounding each mean at the data's magnitude. Missing for an index
    // outside the variables or before any case.
    double GetMeanDifference(int j, int k, double offset = 0.0) const;
    // Corrected cross-product sum S_jk = Σ w (x_j - m_j)(x_k - m_k).
    double GetXProd(int j, int k) const;
    // All of them, row by row (nVariables x nVariables, symmetric).
    const std::vector<double>& GetXProds() const { return m_xprods; }

    void Display(std::ostream& os) const;

private:
    int m_n;
    double m_sumWeights = 0.0;
    std::vector<double> m_origins;  // each variable's value in the first case
    std::vector<double> m_shifted;  // means of the values minus the origins
    std::vector<double> m_means;    // origin + shifted mean
    std::vector<double> m_xprods;
    std::vector<double> m_delta;  // scratch, sized once
};

} // namespace MCMath_850
