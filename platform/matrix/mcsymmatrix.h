#pragma once
// MCSymMatrix: a dense symmetric matrix of doubles on Eigen. Both triangles
// are stored and kept equal, so that Eigen's kernels (rank updates, products,
// solves) apply to it directly. Cross-product accumulators and the regression
// fit keep their matrices in it.
#include <iosfwd>

#include <Eigen/Dense>

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

    void Display(std::ostream& os) const;

private:
    Eigen::MatrixXd m_a;
};

} // namespace MCMath_850
