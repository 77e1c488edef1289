#include "bsn/loglinear/bsnloglindirichletbf.h"

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSNLogLinDirichletBF::BSNLogLinDirichletBF(const BSNSettings& settings, const BSNContingency& table)
    : BSNLogLinBayesFactor(settings, table), m_fixType(settings.GetFixType()) {
    std::vector<double> shapes = settings.GetLogLinShapes();
    if (shapes.empty()) shapes.assign(1, 1.0);
    const std::size_t cells = static_cast<std::size_t>(m_R) * m_C;
    if (shapes.size() != 1 && shapes.size() != cells) {
        m_status = MCStatus(410060, false);
        m_status.SetDiscreteDatum(0, m_R * m_C);
        m_status.SetDiscreteDatum(1, static_cast<int>(shapes.size()));
        return;
    }
    m_alpha.assign(cells, 0.0);
    for (int i : table.GetNonEmptyRows())
        for (int j : table.GetNonEmptyCols()) {
            const std::size_t k = static_cast<std::size_t>(i) * m_C + j;
            const double a = shapes.size() == 1 ? shapes[0] : shapes[k];
            m_alpha[k] = a;
            if (!(a > 0.0) && m_status.IsOK()) m_status = MCStatus(410055, true);
        }
}

BSNLogLinDirichletBF::~BSNLogLinDirichletBF() = default;

// Entropy parts: a margin ratio gives Σ H(margin) - H(N), the saturated
// table -Σ H(O) + H(N) (total fixed) or -Σ_i [Σ_j H(O_ij) - H(r_i)] (rows
// fixed); either way the factor's parts add up to -I.
double BSNLogLinDirichletBF::ComputeBayesFactor() {
    if (!m_status.IsOK()) return m_bayesFactor;
    const auto& counts = m_table.GetAllCounts();
    std::vector<double> rowShapes(m_R, 0.0), colShapes(m_C, 0.0), cells;
    for (int i = 0; i < m_R; ++i)
        for (int j = 0; j < m_C; ++j) {
            const double a = m_alpha[static_cast<std::size_t>(i) * m_C + j];
            rowShapes[i] += a;
            colShapes[j] += a;
            cells.push_back(counts[i][j]);
        }
    const std::vector<double>& r = m_table.GetRowTotals();
    const std::vector<double>& c = m_table.GetColTotals();
    double logBF;
    if (m_fixType == BSNConst::FixedTotal) {
        logBF = LogBetaRatioExcess(rowShapes, r) + LogBetaRatioExcess(colShapes, c) - LogBetaRatioExcess(m_alpha, cells);
    } else if (m_fixType == BSNConst::FixedRow) {
        logBF = LogBetaRatioExcess(colShapes, c);
        for (int i = 0; i < m_R; ++i) {
            const auto first = m_alpha.begin() + static_cast<std::ptrdiff_t>(i) * m_C;
            logBF -= LogBetaRatioExcess(std::vector<double>(first, first + m_C), counts[i]);
        }
    } else if (m_fixType == BSNConst::FixedColumn) {
        logBF = LogBetaRatioExcess(rowShapes, r);
        for (int j = 0; j < m_C; ++j) {
            std::vector<double> a(m_R), x(m_R);
            for (int i = 0; i < m_R; ++i) {
                a[i] = m_alpha[static_cast<std::size_t>(i) * m_C + j];
                x[i] = counts[i][j];
            }
            logBF -= LogBetaRatioExcess(a, x);
        }
    } else {
        return m_bayesFactor;
    }
    ProcessLogBayesFactor(MCMV::Sanitize(logBF - m_table.ComputeInformation()));
    return m_bayesFactor;
}

void BSNLogLinDirichletBF::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNLogLinDirichletBF display start");
    displayBase();
    BSNComponentDisplay::DisplayC("Fix type", m_fixType);
    DisplayDV("Cell shapes", m_alpha);
    DisplayText(0, "End of display BSNLogLinDirichletBF object");
}

} // namespace MCBSN_850
