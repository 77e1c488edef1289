#include "platform/stats/mcpairwisexproddata.h"

#include <algorithm>
#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;

MCPairwiseXProdData::MCPairwiseXProdData(int nVariables, int blockSize)
    : m_n(nVariables > 0 ? nVariables : 0), m_blockSize(blockSize > 0 ? blockSize : kDefaultBlockSize),
      m_complete(m_n, m_blockSize), m_shift(Eigen::VectorXd::Zero(m_n)),
      m_hasShift(static_cast<std::size_t>(m_n), 0), m_count(Eigen::MatrixXd::Zero(m_n, m_n)),
      m_mean(Eigen::MatrixXd::Zero(m_n, m_n)), m_sumSq(Eigen::MatrixXd::Zero(m_n, m_n)),
      m_xprod(Eigen::MatrixXd::Zero(m_n, m_n)), m_values(m_n, m_blockSize), m_present(m_n, m_blockSize),
      m_weights(m_blockSize), m_scratch(static_cast<std::size_t>(m_n)) {}

void MCPairwiseXProdData::AddCase(const double* values, double weight) {
    if (values == nullptr || MCMV::IsMissing(weight) || weight <= 0.0) return;
    bool complete = true;
    for (int j = 0; j < m_n; ++j) {
        if (MCMV::IsMissing(values[j])) {
            complete = false;
        } else if (!m_hasShift[j]) {
            m_shift[j] = values[j];
            m_hasShift[j] = 1;
        }
    }
    if (complete) {
        // Every shift is known by the first complete case; both parts use
        // the same shifts so that they combine without losing digits.
        if (!m_complete.HasShift()) m_complete.SetShift(m_shift.data());
        m_complete.AddCase(values, weight);
        return;
    }
    double* v = m_values.col(m_nPending).data();
    double* p = m_present.col(m_nPending).data();
    for (int j = 0; j < m_n; ++j) {
        const bool present = !MCMV::IsMissing(values[j]);
        v[j] = present ? values[j] - m_shift[j] : 0.0;
        p[j] = present ? 1.0 : 0.0;
    }
    m_weights[m_nPending] = weight;
    if (++m_nPending == m_blockSize) foldIncomplete();
}

void MCPairwiseXProdData::Flush() {
    m_complete.Flush();
    foldIncomplete();
}

void MCPairwiseXProdData::foldIncomplete() {
    const int b = m_nPending;
    if (b == 0) return;
    m_nPending = 0;
    const int n = m_n;
    auto x = m_values.leftCols(b);
    const auto present = m_present.leftCols(b);
    const auto w = m_weights.head(b);

    // A second shift, by the block's first present value of each variable,
    // keeps the raw block sums small.
    std::vector<double>& local = m_scratch;
    for (int j = 0; j < n; ++j) {
        local[j] = 0.0;
        for (int c = 0; c < b; ++c)
            if (present(j, c) != 0.0) {
                local[j] = x(j, c);
                break;
            }
    }
    for (int c = 0; c < b; ++c)
        for (int j = 0; j < n; ++j)
            if (present(j, c) != 0.0) x(j, c) -= local[j];

    // Rows 0..n-1, n..2n-1 and 2n..3n-1 of `sums` hold, in column k, the
    // count, sum and sum of squares of each variable over the block's cases
    // where variable k is present: [M W; X W; X*X W] M'.
    Eigen::MatrixXd sums(3 * n, n);
    std::vector<std::pair<int, int>>& holes = m_holes;  // (case, variable)
    holes.clear();
    for (int c = 0; c < b; ++c)
        for (int j = 0; j < n; ++j)
            if (present(j, c) == 0.0) holes.emplace_back(c, j);
    if (static_cast<double>(holes.size()) <= m_holeDensityLimit * static_cast<double>(n) * b) {
        // Few holes: the sums over all the block's cases, less, for each
        // hole (c, k), case c's share in column k. Each hole costs 3n.
        Eigen::VectorXd full(3 * n);
        full.head(n) = present * w;
        full.segment(n, n) = x * w;
        full.tail(n) = x.cwiseProduct(x) * w;
        sums.colwise() = full;
        for (const auto& [c, k] : holes) {
            auto col = sums.col(k);
            const double wc = w[c];
            for (int j = 0; j < n; ++j) {
                const double v = x(j, c);
                col[j] -= wc * present(j, c);
                col[n + j] -= wc * v;
                col[2 * n + j] -= wc * v * v;
            }
        }
    } else {
        Eigen::MatrixXd stacked(3 * n, b);
        stacked.topRows(n) = present * w.asDiagonal();
        stacked.middleRows(n, n) = x * w.asDiagonal();
        stacked.bottomRows(n) = x.cwiseProduct(x) * w.asDiagonal();
        sums.noalias() = stacked * present.transpose();
    }
    // Cross-products over the cases where both are present (missing values
    // are 0): X W X', one rank-k update on the square roots of the weights.
    Eigen::MatrixXd scaled = x;
    for (int c = 0; c < b; ++c) scaled.col(c) *= std::sqrt(w[c]);
    Eigen::MatrixXd cross = Eigen::MatrixXd::Zero(n, n);
    cross.selfadjointView<Eigen::Upper>().rankUpdate(scaled);

    for (int k = 0; k < n; ++k) {
        for (int j = 0; j <= k; ++j) {
            const double nb = sums(j, k);
            if (nb <= 0.0) continue;
            const double aj = sums(n + j, k), ak = sums(n + k, j);
            const double mj = aj / nb, mk = ak / nb;
            const double sj = std::max(0.0, sums(2 * n + j, k) - aj * mj);
            const double sk = std::max(0.0, sums(2 * n + k, j) - ak * mk);
            const double sxy = cross(j, k) - aj * mk;
            // Block means in pass-shifted units, then the merge.
            const double bj = local[j] + mj, bk = local[k] + mk;
            const double na = m_count(j, k), total = na + nb;
            const double dj = bj - m_mean(j, k), dk = bk - m_mean(k, j);
            const double f = na * nb / total;
            m_sumSq(j, k) += sj + f * dj * dj;
            m_xprod(j, k) += sxy + f * dj * dk;
            m_mean(j, k) += dj * (nb / total);
            m_count(j, k) = total;
            if (j != k) {
                m_sumSq(k, j) += sk + f * dk * dk;
                m_xprod(k, j) = m_xprod(j, k);
                m_mean(k, j) += dk * (nb / total);
                m_count(k, j) = total;
            }
        }
    }
}

MCPairwiseXProdData::Pair MCPairwiseXProdData::GetPair(int j, int k) const {
    Pair p;
    if (j < 0 || k < 0 || j >= m_n || k >= m_n) return p;
    // The incomplete cases' totals, merged with the complete cases' (which
    // share the shift).
    const double n1 = m_count(j, k);
    const double n2 = m_complete.GetNCases();
    double meanJ = m_mean(j, k), meanK = m_mean(k, j);
    double sumSqJ = m_sumSq(j, k), sumSqK = m_sumSq(k, j), xprod = m_xprod(j, k);
    if (n2 > 0.0) {
        const Eigen::VectorXd& m2 = m_complete.GetShiftedMeans();
        const MCSymMatrix& s2 = m_complete.GetXProds();
        if (n1 > 0.0) {
            const double total = n1 + n2, f = n1 * n2 / total;
            const double dj = m2[j] - meanJ, dk = m2[k] - meanK;
            sumSqJ += s2.Get(j, j) + f * dj * dj;
            sumSqK += s2.Get(k, k) + f * dk * dk;
            xprod += s2.Get(j, k) + f * dj * dk;
            meanJ += dj * (n2 / total);
            meanK += dk * (n2 / total);
        } else {
            meanJ = m2[j];
            meanK = m2[k];
            sumSqJ = s2.Get(j, j);
            sumSqK = s2.Get(k, k);
            xprod = s2.Get(j, k);
        }
    }
    p.n = n1 + n2;
    if (p.n <= 0.0) {
        p.meanJ = p.meanK = MCMV::Missing();
        return p;
    }
    p.meanJ = m_shift[j] + meanJ;
    p.meanK = m_shift[k] + meanK;
    p.sumSqJ = sumSqJ;
    p.sumSqK = sumSqK;
    p.xprod = xprod;
    return p;
}

void MCPairwiseXProdData::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCPairwiseXProdData display start");
    DisplayI("Number of variables", m_n);
    DisplayI("Block size", m_blockSize);
    DisplayI("Incomplete cases pending", m_nPending);
    DisplayDV("Shift", std::vector<double>(m_shift.data(), m_shift.data() + m_n));
    std::vector<double> counts(static_cast<std::size_t>(m_n));
    for (int j = 0; j < m_n; ++j) counts[static_cast<std::size_t>(j)] = GetNCases(j);
    DisplayDV("Cases per variable", counts);
    m_complete.Display(os);
    DisplayText(0, "End of display MCPairwiseXProdData object");
}

} // namespace MCMath_850
