#include "bsn/onesample/bsn1samplenormalfactor.h"

#include <cmath>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {
constexpr int kCancelled = 410016;
constexpr int kBadParameter = 410019;
} // namespace

BSN1SampleNormalFactor::BSN1SampleNormalFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                               const std::vector<MCMath_850::MCContStats>& stats,
                                               const std::vector<double>& stdErrors,
                                               MCCommon_850::MCWarnings& warnings)
    : m_settings(settings), m_varList(varList), m_stats(stats), m_stdErrors(stdErrors), m_warnings(&warnings) {
    const std::size_t n = m_settings.GetCovariates().size();
    m_factors.assign(n, MCMV::Missing());
    m_logFactors.assign(n, MCMV::Missing());
    m_tValues.assign(n, MCMV::Missing());
    m_sigs.assign(n, MCMV::Missing());
}

MCStatus BSN1SampleNormalFactor::BuildModel(MCCommon_850::MultiPassRecordIter& /*iter*/,
                                            MCMath_850::MCCancelInfo& cancel) {
    computeTtest();
    if (isStop(cancel)) return m_status;
    const std::vector<double>& variances = m_settings.GetDataVarVals();
    if (!variances.empty() && variances.size() == m_factors.size()) {
        computeBeta(cancel);
    } else {
        switch (m_settings.GetEstBFType()) {
        case BSNConst::JZS:
            computeBetaForUnKnownVarJZS();
            break;
        case BSNConst::Simple:
            computeBetaForUnKnownVarSimple(cancel);
            break;
        default:
            break;  // no factor for the other estimation types
        }
    }
    return m_status;
}

void BSN1SampleNormalFactor::computeTtest() {
    const std::vector<double>& nullValues = m_settings.GetNullValues();
    for (std::size_t i = 0; i < m_factors.size(); ++i) {
        if (i >= m_stats.size() || i >= m_stdErrors.size()) continue;
        const double n = m_stats[i].GetSumWeights();
        const double se = m_stdErrors[i];
        const double mu0 = (i < nullValues.size() && !MCMV::IsMissing(nullValues[i])) ? nullValues[i] : 0.0;
        // The mean's distance from the null value straight from the
        // accumulator: for data far from zero it is not rounded at the
        // data's magnitude first.
        const double deviation = m_stats[i].GetMeanMinus(mu0);
        if (MCMV::IsMissing(deviation) || MCMV::IsMissing(n) || MCMV::IsMissing(se) || n < 2.0 || se == 0.0) continue;
        const double t = MCMV::Sanitize(deviation / se);
        if (MCMV::IsMissing(t)) continue;
        m_tValues[i] = t;
        const double cdf = MCMath_850::MCDistFun::CdfT(std::fabs(t), n - 1.0);
        m_sigs[i] = MCMV::IsMissing(cdf) ? MCMV::Missing() : 2.0 * (1.0 - cdf);
    }
}

bool BSN1SampleNormalFactor::isStop(MCMath_850::MCCancelInfo& cancel) {
    if (m_status.IsError()) return true;
    if (cancel.WillCancel()) {
        m_status = MCStatus(kCancelled, false);
        return true;
    }
    return false;
}

// The per-variable choice (known variance, else JZS or Simple) is shared
// with the related-samples procedure. No cancellation point lies here: the
// loop is bounded by the number of variables and each factor is one integral.
void BSN1SampleNormalFactor::computeBeta(MCMath_850::MCCancelInfo& /*cancel*/) {
    const int n = static_cast<int>(m_factors.size());
    for (int i = 0; i < n; ++i) {
        if (MCMV::IsMissing(m_tValues[i])) continue;
        const double N = m_stats[i].GetSumWeights();
        const double deviation = m_stats[i].GetMeanMinus(BSN1SampleNormalUtils::NullValue(m_settings, i));
        const MCStatus s = BSN1SampleNormalUtils::ComputeFactorForVariable(
            m_settings, i, n, N, m_tValues[i], deviation, &m_factors[i], *m_warnings, &m_logFactors[i]);
        if (s.IsError()) {
            m_status = s;
            return;
        }
    }
}

void BSN1SampleNormalFactor::computeBetaForUnKnownVarJZS() {
    for (std::size_t i = 0; i < m_factors.size(); ++i) {
        const double N = i < m_stats.size() ? m_stats[i].GetSumWeights() : MCMV::Missing();
        BSN1SampleNormalUtils::computeBetaForUnKnownVarJZS(m_settings, N, m_tValues[i], &m_factors[i], *m_warnings,
                                                           &m_logFactors[i]);
    }
}

void BSN1SampleNormalFactor::computeBetaForUnKnownVarSimple(MCMath_850::MCCancelInfo& cancel) {
    const std::vector<double>& gValues = m_settings.GetAlterGValues();
    for (std::size_t i = 0; i < m_factors.size(); ++i) {
        if (isStop(cancel)) return;
        if (gValues.empty()) {
            m_status = MCStatus(kBadParameter, false);
            return;
        }
        const double N = i < m_stats.size() ? m_stats[i].GetSumWeights() : MCMV::Missing();
        const double g = i < gValues.size() ? gValues[i] : MCMV::Missing();
        BSN1SampleNormalUtils::computeBetaForUnKnownVarSimple(m_tValues[i], N, g, &m_factors[i], &m_logFactors[i]);
    }
}

void BSN1SampleNormalFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleNormalFactor display start");
    DisplayIV("Test variables", m_settings.GetCovariates());
    DisplayI("Variables in list", m_varList.Size());
    DisplayI("Accumulators", static_cast<int>(m_stats.size()));
    DisplayDV("Standard errors", m_stdErrors);
    DisplayDV("Bayes factors", m_factors);
    DisplayDV("Log Bayes factors", m_logFactors);
    DisplayDV("t values", m_tValues);
    DisplayDV("Significances", m_sigs);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    DisplayI("Warnings", m_warnings != nullptr ? static_cast<int>(m_warnings->Size()) : 0);
    DisplayText(0, "End of display BSN1SampleNormalFactor object");
}

} // namespace MCBSN_850
