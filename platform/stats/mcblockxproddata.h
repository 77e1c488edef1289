#pragma once
// MCBlockXProdData: weighted means and corrected sums of squares and
// cross-products of many variables over complete cases, for data sets
// where a case-by-case update (p^2 operations a case) would dominate.
//
// Cases are buffered, one column each, and folded in a block at a time:
// the block's own weighted means and centred cross-products come from one
// rank-k update through Eigen, and the block is merged into the running
// totals by the pairwise (Chan-Golub-LeVeque) form of the West update,
//   S += S_block + W_a W_b / (W_a + W_b) * d d',   d = mean_block - mean,
// so the result equals the one-case-at-a-time update up to rounding.
// Every value is first shifted by the first case's value of its variable,
// which keeps data far from zero (1e9 plus small noise) as accurate as
// data near zero; means are reported in the data's own units.
//
// Getters see the cases folded so far: a full block folds itself, and
// Flush() folds what remains.
#include <iosfwd>
#include <vector>

#include <Eigen/Dense>

#include "platform/matrix/mcsymmatrix.h"

namespace MCMath_850 {

class MCBlockXProdData {
public:
    static constexpr int kDefaultBlockSize = 512;

    explicit MCBlockXProdData(int nVariables, int blockSize = kDefaultBlockSize);

    // Adds one case: nVariables values, none missing, with a frequency
    // weight; a missing weight or one <= 0 changes nothing.
    void AddCase(const double* values, double weight);
    // Folds the buffered cases into the totals.
    void Flush();

    // Fixes the shift before the first case (the first case's values
    // otherwise); a caller merging these totals with others of its own
    // shares one shift with them this way. Ignored once cases were added.
    void SetShift(const double* shift);

    int GetNVariables() const { return m_n; }
    int GetBlockSize() const { return m_blockSize; }
    // Cases buffered and not yet folded.
    int GetNPending() const { return m_nPending; }
    // Sum of weights of the folded cases.
    double GetNCases() const { return m_sumWeights; }
    // Weighted mean of variable j in the data's units; missing before any
    // case or for j out of range.
    double GetMean(int j) const;
    std::vector<double> GetMeans() const;
    // Means less the shift: the form to merge with.
    const Eigen::VectorXd& GetShiftedMeans() const { return m_mean; }
    const Eigen::VectorXd& GetShift() const { return m_shift; }
    bool HasShift() const { return m_hasShift; }
    // Corrected cross-product sum S_jk = sum w (x_j - m_j)(x_k - m_k);
    // missing for indices out of range.
    double GetXProd(int j, int k) const;
    const MCSymMatrix& GetXProds() const { return m_xprod; }

    void Display(std::ostream& os) const;

private:
    int m_n;
    int m_blockSize;
    double m_sumWeights = 0.0;
    bool m_hasShift = false;
    Eigen::VectorXd m_shift;
    Eigen::VectorXd m_mean;  // shifted units
    MCSymMatrix m_xprod;
    // One column per buffered case (shifted), plus a spare column for the
    // merge term of the rank update.
    Eigen::MatrixXd m_block;
    Eigen::VectorXd m_weights;
    int m_nPending = 0;
};

} // namespace MCMath_850
