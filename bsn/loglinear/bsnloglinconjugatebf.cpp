#include "bsn/loglinear/bsnloglinconjugatebf.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSNLogLinConjugateBF::BSNLogLinConjugateBF(const BSNSettings& settings, const BSNContingency& table)
    : BSNLogLinBayesFactor(settings, table), m_isPoisson(settings.GetLogLinModel() == BSNConst::Poisson),
      m_fixType(settings.GetFixType()), m_nRowsUsed(static_cast<int>(table.GetNonEmptyRows().size())),
      m_nColsUsed(static_cast<int>(table.GetNonEmptyCols().size())), m_b(settings.GetPriorScale()) {
    const int R = m_R, C = m_C, rUsed = m_nRowsUsed, cUsed = m_nColsUsed;
    const std::vector<int>& rows = table.GetNonEmptyRows();
    const std::vector<int>& cols = table.GetNonEmptyCols();
    m_alpha.assign(static_cast<std::size_t>(R) * C, 0.0);
    m_rowShapeSums.assign(R, 0.0);
    m_rowParams.assign(R, 0.0);
    m_colShapeSums.assign(C, 0.0);
    m_colParams.assign(C, 0.0);

    std::vector<double> shapes = settings.GetLogLinShapes();
    if (shapes.empty()) shapes.assign(1, 1.0);
    double smallest = std::numeric_limits<double>::infinity();
    if (shapes.size() == 1) {
        const double a = shapes[0];
        std::fill(m_alpha.begin(), m_alpha.end(), a);
        for (int i : rows) {
            m_rowShapeSums[i] = cUsed * a;
            m_rowParams[i] = a * cUsed - cUsed + 1;
        }
        for (int j : cols) {
            m_colShapeSums[j] = rUsed * a;
            m_colParams[j] = a * rUsed - rUsed + 1;
        }
        m_A = rUsed * a * cUsed;
        smallest = a;
        if ((!rows.empty() && !(m_rowParams[rows[0]] > 0.0)) || (!cols.empty() && !(m_colParams[cols[0]] > 0.0)))
            m_status = MCStatus(410055, true);
    } else if (shapes.size() == m_alpha.size()) {
        for (int i : rows)
            for (int j : cols) {
                const double a = shapes[static_cast<std::size_t>(i) * C + j];
                m_alpha[static_cast<std::size_t>(i) * C + j] = a;
                m_rowShapeSums[i] += a;
                m_colShapeSums[j] += a;
                m_A += a;
                smallest = std::min(smallest, a);
            }
        for (int i : rows) {
            m_rowParams[i] = m_rowShapeSums[i] - cUsed + 1;
            if (!(m_rowParams[i] > 0.0)) {
                m_status = MCStatus(410055, true);
                break;
            }
        }
        if (m_status.IsOK())
            for (int j : cols) {
                m_colParams[j] = m_colShapeSums[j] - rUsed + 1;
                if (!(m_colParams[j] > 0.0)) {
                    m_status = MCStatus(410055, true);
                    break;
                }
            }
    } else {
        m_status = MCStatus(410060, false);
        m_status.SetDiscreteDatum(0, R * C);
        m_status.SetDiscreteDatum(1, static_cast<int>(shapes.size()));
        return;
    }
    m_a0 = m_A - static_cast<double>(cUsed - 1) * (rUsed - 1);
    if (!(m_a0 > 0.0)) m_status = MCStatus(410055, true);
    if (m_status.IsOK() && MCMV::IsMissing(m_b)) m_b = rUsed * cUsed * smallest / table.GetTotalWeight();
}

BSNLogLinConjugateBF::~BSNLogLinConjugateBF() = default;

double BSNLogLinConjugateBF::ComputeLogBeta(const std::vector<double>& a) {
    double sum = 0.0, total = 0.0;
    for (double v : a)
        if (v > 0.0) {
            sum += MCMath_850::MCDistFun::quondnlgam(v);
            total += v;
        }
    return total > 0.0 ? sum - MCMath_850::MCDistFun::quondnlgam(total) : sum;
}

double BSNLogLinConjugateBF::ComputeLogBetaSum(const std::vector<double>& a, const std::vector<double>& x) {
    std::vector<double> ax(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) ax[i] = a[i] + (i < x.size() ? x[i] : 0.0);
    return ComputeLogBeta(ax);
}

std::vector<double> BSNLogLinConjugateBF::cellCounts() const {
    std::vector<double> y;
    y.reserve(m_alpha.size());
    for (const auto& row : m_table.GetAllCounts()) y.insert(y.end(), row.begin(), row.end());
    return y;
}

double BSNLogLinConjugateBF::ComputeLogBaBya() const {
    return ComputeLogBeta(m_alpha) - ComputeLogBetaSum(m_alpha, cellCounts());
}

// The three models below, written with the log-beta ratios split as the
// base explains. Their entropy parts: the cells enter with -Σ H(O) + H(N),
// each margin with Σ H(margin) - H(N); together -Σ H(O) + Σ H(r) + Σ H(c) -
// H(N) = -I.

double BSNLogLinConjugateBF::ComputeJointMultinom() const {
    const std::vector<double> y = cellCounts();
    return -LogBetaRatioExcess(m_alpha, y) + LogBetaRatioExcess(m_rowParams, m_table.GetRowTotals()) +
           LogBetaRatioExcess(m_colParams, m_table.GetColTotals()) - m_table.ComputeInformation();
}

// The fixed margin enters through its plain shape sums, the free margin
// through its Dirichlet parameters.
double BSNLogLinConjugateBF::ComputeIndepMultinom() const {
    const std::vector<double> y = cellCounts();
    const std::vector<double>& r = m_table.GetRowTotals();
    const std::vector<double>& c = m_table.GetColTotals();
    double margins;
    if (m_fixType == BSNConst::FixedColumn)
        margins = LogBetaRatioExcess(m_rowParams, r) + LogBetaRatioExcess(m_colShapeSums, c);
    else if (m_fixType == BSNConst::FixedRow)
        margins = LogBetaRatioExcess(m_colParams, c) + LogBetaRatioExcess(m_rowShapeSums, r);
    else
        return MCMV::Missing();
    return margins - LogBetaRatioExcess(m_alpha, y) - m_table.ComputeInformation();
}

// The cells enter one by one (only those with a positive shape) and the
// total through lnΓ(N + a0) - lnΓ(a0): the entropy parts are those of the
// joint model, less H(O) of any used cell whose shape is not positive.
double BSNLogLinConjugateBF::ComputePoisson() const {
    const double df = static_cast<double>(m_nColsUsed - 1) * (m_nRowsUsed - 1);
    const auto& counts = m_table.GetAllCounts();
    double cells = 0.0;
    for (int i : m_table.GetNonEmptyRows())
        for (int j : m_table.GetNonEmptyCols()) {
            const double a = m_alpha[static_cast<std::size_t>(i) * m_C + j];
            cells += a > 0.0 ? -LogGammaExcess(a, counts[i][j]) : EntropyPart(counts[i][j]);
        }
    return df * std::log1p(1.0 / m_b) + LogGammaExcess(m_a0, m_table.GetTotalWeight()) + cells +
           LogBetaRatioExcess(m_rowParams, m_table.GetRowTotals()) +
           LogBetaRatioExcess(m_colParams, m_table.GetColTotals()) - m_table.ComputeInformation();
}

double BSNLogLinConjugateBF::ComputeBayesFactor() {
    if (!m_status.IsOK()) return m_bayesFactor;
    double logBF;
    if (m_isPoisson)
        logBF = ComputePoisson();
    else if (m_fixType == BSNConst::FixedTotal)
        logBF = ComputeJointMultinom();
    else
        logBF = ComputeIndepMultinom();
    ProcessLogBayesFactor(MCMV::Sanitize(logBF));
    return m_bayesFactor;
}

void BSNLogLinConjugateBF::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNLogLinConjugateBF display start");
    displayBase();
    DisplayB("Poisson model", m_isPoisson);
    BSNComponentDisplay::DisplayC("Fix type", m_fixType);
    DisplayI("Non-empty rows", m_nRowsUsed);
    DisplayI("Non-empty columns", m_nColsUsed);
    DisplayDV("Cell shapes", m_alpha);
    DisplayD("Prior scale", m_b);
    DisplayDV("Row shape sums", m_rowShapeSums);
    DisplayDV("Row Dirichlet parameters", m_rowParams);
    DisplayDV("Column shape sums", m_colShapeSums);
    DisplayDV("Column Dirichlet parameters", m_colParams);
    DisplayD("Total shape", m_A);
    DisplayD("Poisson shape", m_a0);
    DisplayText(0, "End of display BSNLogLinConjugateBF object");
}

} // namespace MCBSN_850
