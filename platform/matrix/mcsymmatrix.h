#pragma once
// MCSymMatrix: a dense symmetric matrix of doubles on Eigen. Both triangles
// are stored and kept equal, so that Eigen's kernels (rank updates, products,
// solves) apply to it directly. Cross-product accumulators and the regression
// fit keep their matrices in it.
//
// Accumulation (UpdateXX, UpdateXXSparse, UpdateXXBlock) writes the lower
// triangle only, for speed; CompleteFromLower() restores the upper triangle
// after the last update, before any other use.
//
// Sweeping follows the Gauss-Jordan sweep operator: sweeping pivot k of A
// (d = a_kk) gives a_kk = -1/d, a_kj = a_kj/d, a_ik = a_ik/d and
// a_ij = a_ij - a_ik a_kj / d elsewhere. Sweeping the first n pivots of the
// augmented cross-product matrix [X'X X'y; y'X y'y] leaves -(X'X)^-1 in the
// leading block, the least-squares coefficients in the last column and the
// residual sum of squares in the corner. A pivot is refused (and the matrix
// left as it was) when its current value is not above the tolerance times
// its value before any sweeping, which is how collinear columns are found.
#include <iosfwd>
#include <vector>

#include <Eigen/Dense>

#include "platform/matrix/mcbitset.h"

namespace MCMath_850 {

class MCSymMatrix {
public:
    MCSymMatrix() = default;
    explicit MCSymMatrix(int n) { Resize(n); }

    // Resizes to n x n, every element 0.
    void Resize(int n) { m_a.setZero(n, n); }
    int Size() const { return static_cast<int>(m_a.rows()); }

    double Get(int i, int j) const { return m_a(i, j); }
    // Sets or adds to element (i, j) and its mirror (j, i).
    void Set(int i, int j, double value) { m_a(i, j) = m_a(j, i) = value; }
    void Add(int i, int j, double value) {
        m_a(i, j) += value;
        if (i != j) m_a(j, i) += value;
    }

    // The whole matrix; whoever writes through it keeps it symmetric.
    Eigen::MatrixXd& Dense() { return m_a; }
    const Eigen::MatrixXd& Dense() const { return m_a; }

    // --- accumulation (lower triangle; see CompleteFromLower) ---------------
    // A += w row row' for a dense row of Size() values.
    void UpdateXX(const double* row, double w);
    // The same for a sparse row: `count` entries, values[e] at column
    // indices[e] (distinct indices, any order).
    void UpdateXXSparse(int count, const int* indices, const double* values, double w);
    // A += R R' for the first `count` columns of R (Size() rows): a block of
    // rows already multiplied by the square roots of their weights.
    void UpdateXXBlock(const Eigen::MatrixXd& rows, int count);
    // Copies the lower triangle onto the upper one.
    void CompleteFromLower();

    // --- sweeping -------------------------------------------------------------
    std::vector<double> GetDiagonal() const;
    // Sweeps pivot k unless its current value is not above
    // tolerance * diagonal[k] (with checkTolerance; without, unless it is 0).
    // On success k joins pivotSet. A pivot already in pivotSet is refused.
    bool Sweep(int k, double tolerance, const std::vector<double>& diagonal, MCBitSet& pivotSet,
               bool checkTolerance = true);
    // Sweeps pivots first..last-1 in order with the same rule, as blocks of
    // pivots applied by matrix products (the result equals pivot-by-pivot
    // sweeping up to rounding). Returns the number of pivots accepted.
    int SweepRange(int first, int last, double tolerance, const std::vector<double>& diagonal, MCBitSet& pivotSet,
                   bool checkTolerance = true);

    // After sweeping the first Size()-1 pivots of an augmented matrix: the
    // coefficients a(i, last) of the swept pivots, 0 for the others.
    void GetRegCoeffs(std::vector<double>& coefficients, const MCBitSet& pivotSet) const;
    void ChangeSign() { m_a = -m_a; }
    // Zeroes the rows and columns of the indices that are not members.
    void ZeroOutRedundant(const MCBitSet& nonRedundant);
    // The leading n x n block.
    void CopyLeading(int n, MCSymMatrix& out) const;

    // --- products ---------------------------------------------------------------
    std::vector<double> Multiply(const std::vector<double>& x) const;
    // x' A y and x' A x.
    double BilinearForm(const std::vector<double>& x, const std::vector<double>& y) const;
    double QuadraticForm(const std::vector<double>& x) const { return BilinearForm(x, x); }
    // out = R A R' for R with Size() columns; false when the sizes differ.
    bool ComputeRSRTrans(const Eigen::MatrixXd& r, MCSymMatrix& out) const;

    void Display(std::ostream& os) const;

private:
    Eigen::MatrixXd m_a;
};

} // namespace MCMath_850
