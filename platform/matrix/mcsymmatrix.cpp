#include "platform/matrix/mcsymmatrix.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

namespace {

// Pivots swept together by SweepRange: large enough for the block update to
// run as an efficient matrix product, small enough that the sequential sweep
// of the block itself stays cheap.
constexpr int kSweepBlock = 48;

bool acceptPivot(double current, double before, double tolerance, bool checkTolerance) {
    if (!checkTolerance) return current != 0.0;
    return before > 0.0 && current > 0.0 && current > tolerance * before;
}

// The plain sweep of pivot k over a whole dense matrix.
void sweepDense(Eigen::MatrixXd& a, int k) {
    const Eigen::Index n = a.rows();
    const double d = a(k, k);
    Eigen::VectorXd c = a.col(k) / d;  // a_ik / d
    Eigen::VectorXd r = a.col(k);      // a_kj (symmetric)
    c(k) = 0.0;
    r(k) = 0.0;
    a.noalias() -= c * r.transpose();
    for (Eigen::Index i = 0; i < n; ++i) {
        a(i, k) = c(i);
        a(k, i) = c(i);
    }
    a(k, k) = -1.0 / d;
}

} // namespace

void MCSymMatrix::UpdateXX(const double* row, double w) {
    const int n = Size();
    for (int j = 0; j < n; ++j) {
        const double wx = w * row[j];
        if (wx == 0.0) continue;
        double* col = m_a.col(j).data();
        for (int i = j; i < n; ++i) col[i] += wx * row[i];
    }
}

void MCSymMatrix::UpdateXXSparse(int count, const int* indices, const double* values, double w) {
    for (int e = 0; e < count; ++e) {
        const int i = indices[e];
        const double wx = w * values[e];
        for (int f = 0; f < count; ++f) {
            const int j = indices[f];
            if (j <= i) m_a(i, j) += wx * values[f];
        }
    }
}

void MCSymMatrix::UpdateXXBlock(const Eigen::MatrixXd& rows, int count) {
    if (count <= 0) return;
    m_a.selfadjointView<Eigen::Lower>().rankUpdate(rows.leftCols(count), 1.0);
}

void MCSymMatrix::CompleteFromLower() { m_a.triangularView<Eigen::StrictlyUpper>() = m_a.transpose(); }

std::vector<double> MCSymMatrix::GetDiagonal() const {
    std::vector<double> d(static_cast<std::size_t>(Size()));
    for (int i = 0; i < Size(); ++i) d[static_cast<std::size_t>(i)] = m_a(i, i);
    return d;
}

bool MCSymMatrix::Sweep(int k, double tolerance, const std::vector<double>& diagonal, MCBitSet& pivotSet,
                        bool checkTolerance) {
    if (k < 0 || k >= Size() || pivotSet.IsMember(k) || static_cast<std::size_t>(k) >= diagonal.size()) return false;
    if (!acceptPivot(m_a(k, k), diagonal[static_cast<std::size_t>(k)], tolerance, checkTolerance)) return false;
    sweepDense(m_a, k);
    pivotSet.Set(k);
    return true;
}

int MCSymMatrix::SweepRange(int first, int last, double tolerance, const std::vector<double>& diagonal,
                            MCBitSet& pivotSet, bool checkTolerance) {
    first = std::max(first, 0);
    last = std::min({last, Size(), static_cast<int>(diagonal.size())});
    int accepted = 0;
    for (int b0 = first; b0 < last; b0 += kSweepBlock) {
        const int b1 = std::min(last, b0 + kSweepBlock);
        // Which pivots of the block are accepted depends only on the block's
        // own square: sweep a copy of it pivot by pivot.
        Eigen::MatrixXd block = m_a.block(b0, b0, b1 - b0, b1 - b0);
        std::vector<int> local;
        for (int k = b0; k < b1; ++k) {
            if (pivotSet.IsMember(k)) continue;
            const int l = k - b0;
            if (!acceptPivot(block(l, l), diagonal[static_cast<std::size_t>(k)], tolerance, checkTolerance)) continue;
            sweepDense(block, l);
            local.push_back(l);
        }
        if (local.empty()) continue;
        const auto m = static_cast<Eigen::Index>(local.size());
        // Sweeping the accepted set S at once: with P = A_SS^-1 (minus the
        // swept square), A_RR -= A_RS P A_SR, A_SR = P A_SR, A_SS = -P.
        Eigen::MatrixXd p(m, m), c(m_a.rows(), m);
        for (Eigen::Index i = 0; i < m; ++i) {
            for (Eigen::Index j = 0; j < m; ++j) p(i, j) = -block(local[i], local[j]);
            c.col(i) = m_a.col(b0 + local[i]);
        }
        const Eigen::MatrixXd d = c * p;  // A_{*S} P; its S rows are the identity
        m_a.noalias() -= d * c.transpose();
        for (Eigen::Index i = 0; i < m; ++i) {
            const int k = b0 + local[i];
            m_a.col(k) = d.col(i);
            m_a.row(k) = d.col(i).transpose();
        }
        for (Eigen::Index i = 0; i < m; ++i)
            for (Eigen::Index j = 0; j < m; ++j) m_a(b0 + local[i], b0 + local[j]) = -p(i, j);
        for (int l : local) pivotSet.Set(b0 + l);
        accepted += static_cast<int>(m);
    }
    return accepted;
}

void MCSymMatrix::GetRegCoeffs(std::vector<double>& coefficients, const MCBitSet& pivotSet) const {
    const int n = Size() - 1;
    coefficients.assign(static_cast<std::size_t>(std::max(n, 0)), 0.0);
    for (int i = 0; i < n; ++i)
        if (pivotSet.IsMember(i)) coefficients[static_cast<std::size_t>(i)] = m_a(i, n);
}

void MCSymMatrix::ZeroOutRedundant(const MCBitSet& nonRedundant) {
    for (int i = 0; i < Size(); ++i)
        if (!nonRedundant.IsMember(i)) {
            m_a.row(i).setZero();
            m_a.col(i).setZero();
        }
}

void MCSymMatrix::CopyLeading(int n, MCSymMatrix& out) const {
    n = std::clamp(n, 0, Size());
    out.m_a = m_a.topLeftCorner(n, n);
}

std::vector<double> MCSymMatrix::Multiply(const std::vector<double>& x) const {
    std::vector<double> y(static_cast<std::size_t>(Size()), 0.0);
    if (x.size() != y.size()) return y;
    Eigen::Map<const Eigen::VectorXd> xv(x.data(), Size());
    Eigen::Map<Eigen::VectorXd>(y.data(), Size()).noalias() = m_a * xv;
    return y;
}

double MCSymMatrix::BilinearForm(const std::vector<double>& x, const std::vector<double>& y) const {
    if (x.size() != static_cast<std::size_t>(Size()) || y.size() != x.size()) return 0.0;
    Eigen::Map<const Eigen::VectorXd> xv(x.data(), Size()), yv(y.data(), Size());
    return xv.dot(m_a * yv);
}

bool MCSymMatrix::ComputeRSRTrans(const Eigen::MatrixXd& r, MCSymMatrix& out) const {
    if (r.cols() != m_a.rows()) return false;
    out.m_a = r * m_a * r.transpose();
    // Rounding may leave the product a hair off symmetric.
    out.m_a = (0.5 * (out.m_a + out.m_a.transpose())).eval();
    return true;
}

void MCSymMatrix::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "MCSymMatrix display start");
    MCDisplay_850::DisplayI("Size", Size());
    for (int i = 0; i < Size(); ++i) {
        std::vector<double> row(static_cast<std::size_t>(i) + 1);
        for (int j = 0; j <= i; ++j) row[static_cast<std::size_t>(j)] = m_a(i, j);
        MCDisplay_850::DisplayDV("Row " + std::to_string(i), row);
    }
    MCDisplay_850::DisplayText(0, "MCSymMatrix display end");
}

} // namespace MCMath_850
