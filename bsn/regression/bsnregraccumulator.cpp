#include "bsn/regression/bsnregraccumulator.h"

#include <algorithm>
#include <cmath>

namespace MCBSN_850 {

namespace {
// Dense rows gathered before one rank-k update.
constexpr int kBlockRows = 128;
// Pivots swept between two cancellation checks.
constexpr int kSweepChunk = 192;
} // namespace

BSNRegrAccumulator::BSNRegrAccumulator(MCMath_850::MCFastDesignMatrix& design, bool sparse)
    : m_design(design), m_sparse(sparse), m_n(design.GetNParameters()), m_matrix(design.GetNParameters() + 1) {
    if (m_sparse) {
        m_indices.assign(static_cast<std::size_t>(design.GetSparseSize()), -1);
        m_values.assign(static_cast<std::size_t>(design.GetSparseSize()), 0.0);
    } else {
        m_block.setZero(m_n + 1, kBlockRows);
    }
    m_row.assign(static_cast<std::size_t>(m_n) + 1, 0.0);
    m_nonRedundant.Resize(m_n);
}

bool BSNRegrAccumulator::Add(const MCCommon_850::Record& record, double w) {
    if (m_sparse) {
        const int count = m_design.ExpandRowXY(record, m_indices.data(), m_values.data());
        if (count < 0) return false;
        m_matrix.UpdateXXSparse(count, m_indices.data(), m_values.data(), w);
        m_sumWY += w * m_values[static_cast<std::size_t>(count) - 1];
    } else {
        double* column = m_block.col(m_inBlock).data();
        if (!m_design.ExpandRowXY(record, column)) return false;
        m_sumWY += w * column[m_n];
        const double root = std::sqrt(w);
        for (int i = 0; i <= m_n; ++i) column[i] *= root;
        if (++m_inBlock == kBlockRows) flush();
    }
    m_sumW += w;
    return true;
}

void BSNRegrAccumulator::flush() {
    m_matrix.UpdateXXBlock(m_block, m_inBlock);
    m_inBlock = 0;
}

void BSNRegrAccumulator::Finish() {
    if (!m_sparse) flush();
    m_matrix.CompleteFromLower();
}

void BSNRegrAccumulator::GetCrossProducts(MCMath_850::MCSymMatrix& XtX, std::vector<double>& Xty,
                                          double& yty) const {
    // With x = A x~, A = I + s e0' (the shift s enters through the
    // intercept column): X'X = A M A' = M + s v' + v s' + m00 s s' with v the
    // intercept column of M; likewise for X'y and y'y.
    const Eigen::MatrixXd& m = m_matrix.Dense();
    const int n = m_n;
    const std::vector<double> shifts = m_design.GetParameterShifts();
    const double sy = m_design.GetDepShift();
    Eigen::Map<const Eigen::VectorXd> s(shifts.data(), n);
    XtX.Resize(n);
    Eigen::MatrixXd& out = XtX.Dense();
    out = m.topLeftCorner(n, n);
    Eigen::VectorXd xy = m.col(n).head(n);
    double yy = m(n, n);
    if (m_design.HasIntercept() && n > 0) {
        const Eigen::VectorXd v = m.col(0).head(n);
        const double m00 = m(0, 0);
        out += s * v.transpose() + v * s.transpose() + m00 * s * s.transpose();
        // X'y~ + sy X'1, then the same shift of rows.
        const Eigen::VectorXd u = xy + sy * v;
        const double u0 = u(0);
        xy = u + s * u0;
        yy = m(n, n) + 2.0 * sy * m(0, n) + sy * sy * m00;
    }
    Xty.assign(xy.data(), xy.data() + n);
    yty = yy;
}

bool BSNRegrAccumulator::Sweep(const std::function<bool()>& stop) {
    const std::vector<double> diagonal = m_matrix.GetDiagonal();
    MCMath_850::MCBitSet pivots(m_n + 1);
    for (int first = 0; first < m_n; first += kSweepChunk) {
        if (stop && stop()) return false;
        m_matrix.SweepRange(first, std::min(m_n, first + kSweepChunk), kSweepTolerance, diagonal, pivots);
    }
    m_nonRedundant.Resize(m_n);
    for (int i = 0; i < m_n; ++i)
        if (pivots.IsMember(i)) m_nonRedundant.Set(i);
    m_matrix.GetRegCoeffs(m_shiftedCoeffs, pivots);
    return true;
}

std::vector<double> BSNRegrAccumulator::GetCoefficients() const {
    std::vector<double> b = m_shiftedCoeffs;
    if (m_design.HasIntercept() && !b.empty()) {
        const std::vector<double> shifts = m_design.GetParameterShifts();
        double correction = m_design.GetDepShift();
        for (int i = 1; i < m_n; ++i) correction -= shifts[static_cast<std::size_t>(i)] * b[static_cast<std::size_t>(i)];
        b[0] += correction;
    }
    return b;
}

void BSNRegrAccumulator::GetInverse(MCMath_850::MCSymMatrix& inverse) const {
    m_matrix.CopyLeading(m_n, inverse);
    inverse.ChangeSign();
    inverse.ZeroOutRedundant(m_nonRedundant);
    if (!m_design.HasIntercept() || m_n == 0) return;
    // G = (I - e0 s') G~ (I - s e0') = G~ - e0 u' - u e0' + (s'u) e0 e0'
    // with u = G~ s.
    const std::vector<double> shifts = m_design.GetParameterShifts();
    Eigen::Map<const Eigen::VectorXd> s(shifts.data(), m_n);
    Eigen::MatrixXd& g = inverse.Dense();
    const Eigen::VectorXd u = g * s;
    const double c = s.dot(u);
    g.row(0) -= u.transpose();
    g.col(0) -= u;
    g(0, 0) += c;
}

bool BSNRegrAccumulator::Residual(const MCCommon_850::Record& record, double& yShifted, double& fitShifted) {
    double fit = 0.0;
    if (m_sparse) {
        const int count = m_design.ExpandRowXY(record, m_indices.data(), m_values.data());
        if (count < 0) return false;
        for (int e = 0; e + 1 < count; ++e)
            fit += m_values[static_cast<std::size_t>(e)] * m_shiftedCoeffs[static_cast<std::size_t>(m_indices[static_cast<std::size_t>(e)])];
        yShifted = m_values[static_cast<std::size_t>(count) - 1];
    } else {
        if (!m_design.ExpandRowXY(record, m_row.data())) return false;
        for (int i = 0; i < m_n; ++i) fit += m_row[static_cast<std::size_t>(i)] * m_shiftedCoeffs[static_cast<std::size_t>(i)];
        yShifted = m_row[static_cast<std::size_t>(m_n)];
    }
    fitShifted = fit;
    return true;
}

} // namespace MCBSN_850
