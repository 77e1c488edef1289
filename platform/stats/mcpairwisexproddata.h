#pragma once
// MCPairwiseXProdData: weighted means, sums of squares and cross-products
// for every pair of many variables, each pair over the cases where both of
// its variables are present (pairwise deletion).
//
// Complete cases, usually the bulk of the data, go to one MCBlockXProdData
// (a single rank-k update a block). Cases with a missing value are buffered
// with their pattern of present values and folded a block at a time with
// matrix products: with M the 0/1 presence matrix, X the values (0 where
// missing) and W the weights, the block's per-pair sums are
//   N = M W M',  A = X W M',  Q = (X*X) W M',  C = X W X',
// (with few missing values N, A and Q are the block's totals less each
// hole's share), from which each pair's block means and centred sums follow; they are
// merged into per-pair running totals by the pairwise form of the West
// update. The two parts are combined when a pair is read.
//
// Values are shifted by the first present value of their variable (for the
// whole pass), and within a block of incomplete cases once more by the
// block's first present value, so data far from zero lose no accuracy.
// Getters see the cases folded so far (Flush() folds the rest).
#include <iosfwd>
#include <utility>
#include <vector>

#include <Eigen/Dense>

#include "platform/stats/mcblockxproddata.h"

namespace MCMath_850 {

class MCPairwiseXProdData {
public:
    static constexpr int kDefaultBlockSize = 512;

    // The statistics of one pair (j, k) over the cases where both are
    // present; for j == k those of variable j over its present cases.
    struct Pair {
        double n = 0.0;       // sum of weights
        double meanJ = 0.0;   // means, in the data's units
        double meanK = 0.0;
        double sumSqJ = 0.0;  // sum w (x_j - meanJ)^2
        double sumSqK = 0.0;
        double xprod = 0.0;   // sum w (x_j - meanJ)(x_k - meanK)
    };

    // Up to this share of missing values in a block, its sums are formed
    // from the block's totals less each hole's share (cost ~ 3p per hole);
    // beyond it by the matrix products (cost ~ 3p^2 per case, at the speed
    // of dense matrix kernels).
    static constexpr double kDefaultHoleDensityLimit = 0.125;

    explicit MCPairwiseXProdData(int nVariables, int blockSize = kDefaultBlockSize);

    // 0 makes every block use the matrix products, 1 the hole updates.
    void SetHoleDensityLimit(double share) { m_holeDensityLimit = share; }

    // Adds one case of nVariables values, any of them missing, with a
    // frequency weight; a missing weight or one <= 0 changes nothing.
    void AddCase(const double* values, double weight);
    void Flush();

    int GetNVariables() const { return m_n; }
    // Statistics of pair (j, k); all 0 for indices out of range or a pair
    // without cases (means are then missing).
    Pair GetPair(int j, int k) const;
    // Sum of weights of the cases where variable j is present.
    double GetNCases(int j) const { return GetPair(j, j).n; }
    const MCBlockXProdData& GetCompleteCases() const { return m_complete; }

    void Display(std::ostream& os) const;

private:
    void foldIncomplete();

    int m_n;
    int m_blockSize;
    MCBlockXProdData m_complete;
    Eigen::VectorXd m_shift;
    std::vector<char> m_hasShift;
    // Per-pair totals of the incomplete cases, shifted units. Entry (j, k)
    // of the mean and sum-of-squares matrices describes variable j over the
    // cases where j and k are present; count and cross-products are
    // symmetric.
    Eigen::MatrixXd m_count, m_mean, m_sumSq, m_xprod;
    // The block of incomplete cases: values (shifted, 0 where missing) and
    // presence, one column per case, with the weights.
    Eigen::MatrixXd m_values, m_present;
    Eigen::VectorXd m_weights;
    int m_nPending = 0;
    double m_holeDensityLimit = kDefaultHoleDensityLimit;
    std::vector<double> m_scratch;
    std::vector<std::pair<int, int>> m_holes;
};

} // namespace MCMath_850
