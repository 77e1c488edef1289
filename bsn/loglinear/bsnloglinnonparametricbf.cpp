#include "bsn/loglinear/bsnloglinnonparametricbf.h"

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/loglinear/bsnloglinconjugatebf.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSNLogLinNonParametricBF::BSNLogLinNonParametricBF(const BSNSettings& settings, const BSNContingency& table)
    : BSNLogLinBayesFactor(settings, table), m_fixType(settings.GetFixType()), m_lambda(settings.GetLambdas()) {
    if (m_lambda.empty()) m_lambda.assign(1, 1.0);
    const int k = m_fixType == BSNConst::FixedColumn ? m_R : m_C;
    if (m_lambda.size() == 1) m_lambda.assign(static_cast<std::size_t>(k), m_lambda[0]);
    if (static_cast<int>(m_lambda.size()) != k) {
        m_status = MCStatus(410050, false);
        m_status.SetDiscreteDatum(0, k);
        m_status.SetDiscreteDatum(1, static_cast<int>(m_lambda.size()));
    }
}

BSNLogLinNonParametricBF::~BSNLogLinNonParametricBF() = default;

double BSNLogLinNonParametricBF::ComputeLogDirichlet(const std::vector<double>& lambda) {
    return -BSNLogLinConjugateBF::ComputeLogBeta(lambda);
}

double BSNLogLinNonParametricBF::ComputeLogDirichletSum(const std::vector<double>& lambda,
                                                        const std::vector<double>& x) {
    return -BSNLogLinConjugateBF::ComputeLogBetaSum(lambda, x);
}

// With D(λ; x) - D(λ) = -[B(λ + x) - B(λ)], the factor
// D(λ; g0) + D(λ; g1) - D(λ) - D(λ; g0 + g1) of the two groups g0, g1 is
// -ratio(g0) - ratio(g1) + ratio(g0 + g1). Its entropy parts are those of
// the 2×K table of the groups: -I of that table.
double BSNLogLinNonParametricBF::ComputeBayesFactor() {
    if (m_status.IsError()) return m_bayesFactor = MCMV::Missing();
    const auto& counts = m_table.GetAllCounts();
    const std::size_t k = m_lambda.size();
    BSNContingency::Matrix groups(2, std::vector<double>(k, 0.0));
    for (std::size_t i = 0; i < k; ++i)
        for (std::size_t g = 0; g < 2; ++g) {
            const bool byColumn = m_fixType != BSNConst::FixedRow;
            const std::size_t row = byColumn ? i : g, col = byColumn ? g : i;
            if (row < counts.size() && col < counts[row].size()) groups[g][i] = counts[row][col];
        }
    std::vector<double> both(k);
    for (std::size_t i = 0; i < k; ++i) both[i] = groups[0][i] + groups[1][i];
    const double logBF = -LogBetaRatioExcess(m_lambda, groups[0]) - LogBetaRatioExcess(m_lambda, groups[1]) +
                         LogBetaRatioExcess(m_lambda, both) - BSNContingency(groups).ComputeInformation();
    ProcessLogBayesFactor(MCMV::Sanitize(logBF));
    return m_bayesFactor;
}

void BSNLogLinNonParametricBF::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNLogLinNonParametricBF display start");
    displayBase();
    BSNComponentDisplay::DisplayC("Fix type", m_fixType);
    DisplayDV("Lambdas", m_lambda);
    DisplayText(0, "End of display BSNLogLinNonParametricBF object");
}

} // namespace MCBSN_850
