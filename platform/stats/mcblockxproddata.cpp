#include "platform/stats/mcblockxproddata.h"

#include <algorithm>
#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;

MCBlockXProdData::MCBlockXProdData(int nVariables, int blockSize)
    : m_n(nVariables > 0 ? nVariables : 0), m_blockSize(blockSize > 0 ? blockSize : kDefaultBlockSize),
      m_shift(Eigen::VectorXd::Zero(m_n)), m_mean(Eigen::VectorXd::Zero(m_n)), m_xprod(m_n),
      m_block(m_n, m_blockSize + 1), m_weights(m_blockSize) {}

void MCBlockXProdData::SetShift(const double* shift) {
    if (shift == nullptr || m_sumWeights > 0.0 || m_nPending > 0) return;
    for (int j = 0; j < m_n; ++j) m_shift[j] = shift[j];
    m_hasShift = true;
}

void MCBlockXProdData::AddCase(const double* values, double weight) {
    if (values == nullptr || MCMV::IsMissing(weight) || weight <= 0.0) return;
    if (!m_hasShift) SetShift(values);
    double* column = m_block.col(m_nPending).data();
    for (int j = 0; j < m_n; ++j) column[j] = values[j] - m_shift[j];
    m_weights[m_nPending] = weight;
    if (++m_nPending == m_blockSize) Flush();
}

void MCBlockXProdData::Flush() {
    const int b = m_nPending;
    if (b == 0) return;
    m_nPending = 0;
    const auto w = m_weights.head(b);
    const double wb = w.sum();
    auto x = m_block.leftCols(b);
    // The block's own weighted means, then its centred columns scaled by
    // the square roots of the weights, so that X X' = sum w d d'.
    const Eigen::VectorXd blockMean = (x * w) / wb;
    x.colwise() -= blockMean;
    for (int c = 0; c < b; ++c) x.col(c) *= std::sqrt(w[c]);

    const double wa = m_sumWeights;
    const double total = wa + wb;
    const Eigen::VectorXd delta = blockMean - m_mean;
    int columns = b;
    if (wa > 0.0) {
        // The merge term W_a W_b / W d d' rides along as one more column.
        m_block.col(b) = delta * std::sqrt(wa * wb / total);
        columns = b + 1;
    }
    Eigen::MatrixXd& s = m_xprod.Dense();
    s.selfadjointView<Eigen::Lower>().rankUpdate(m_block.leftCols(columns));
    for (int k = 1; k < m_n; ++k)
        for (int j = 0; j < k; ++j) s(j, k) = s(k, j);
    m_mean += delta * (wb / total);
    m_sumWeights = total;
}

double MCBlockXProdData::GetMean(int j) const {
    if (j < 0 || j >= m_n || m_sumWeights <= 0.0) return MCMV::Missing();
    return m_shift[j] + m_mean[j];
}

std::vector<double> MCBlockXProdData::GetMeans() const {
    std::vector<double> means(static_cast<std::size_t>(m_n));
    for (int j = 0; j < m_n; ++j) means[static_cast<std::size_t>(j)] = GetMean(j);
    return means;
}

double MCBlockXProdData::GetXProd(int j, int k) const {
    if (j < 0 || k < 0 || j >= m_n || k >= m_n) return MCMV::Missing();
    return m_xprod.Get(j, k);
}

void MCBlockXProdData::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCBlockXProdData display start");
    DisplayI("Number of variables", m_n);
    DisplayI("Block size", m_blockSize);
    DisplayI("Cases pending", m_nPending);
    DisplayD("Sum of weights", m_sumWeights);
    DisplayDV("Shift", std::vector<double>(m_shift.data(), m_shift.data() + m_n));
    DisplayDV("Means", GetMeans());
    m_xprod.Display(os);
    DisplayText(0, "End of display MCBlockXProdData object");
}

} // namespace MCMath_850
