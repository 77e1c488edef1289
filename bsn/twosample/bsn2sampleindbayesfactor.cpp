#include "bsn/twosample/bsn2sampleindbayesfactor.h"

#include <cmath>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/twosample/gonenbayesfactor.h"
#include "bsn/twosample/hyperpriorbayesfactor.h"
#include "bsn/twosample/rouderbayesfactor.h"
#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

// Two-sided significance of t with df degrees of freedom from the lower
// tail, which keeps the small p-values of large |t| that 1 - CDF rounds to
// 0. Missing when the distribution function cannot be evaluated.
double twoSided(double t, double df) {
    const double tail = MCDistFun::CdfT(-std::fabs(t), df);
    return MCMV::IsMissing(tail) ? MCMV::Missing() : MCMV::Sanitize(2.0 * tail);
}

} // namespace

BSN2SampleIndBayesFactor::BSN2SampleIndBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : m_settings(settings), m_varList(varList) {}

BSN2SampleIndBayesFactor::~BSN2SampleIndBayesFactor() = default;

std::unique_ptr<BSN2SampleIndBayesFactor> BSN2SampleIndBayesFactor::CreateBayesFactor(
    const BSNSettings& settings, const MCXML_850::MCVarList& varList, MCCommon_850::MCWarnings& warnings) {
    switch (settings.GetRegrCompType()) {
    case BSNConst::Hyper:
        return std::make_unique<HyperPriorBayesFactor>(settings, varList);
    case BSNConst::Gonen:
        return std::make_unique<GonenBayesFactor>(settings, varList);
    default:
        return std::make_unique<RouderBayesFactor>(settings, varList, warnings);
    }
}

MCStatus BSN2SampleIndBayesFactor::Compute(const BSN2SampleIndBasicStats& first, BSN2SampleIndBasicStats second,
                                           MCCommon_850::MCWarnings& warnings) {
    m_warnings = &warnings;
    const std::size_t n = std::min(first.Size(), second.Size());
    for (auto* v : {&m_effectiveSizes, &m_dfs, &m_meanDiffs, &m_pooledVariances, &m_pooledStdDevs,
                    &m_pooledStdErrors, &m_unpooledStdErrors, &m_pooledTs, &m_unpooledTs, &m_pooledSigs,
                    &m_unpooledSigs, &m_welchDfs, &m_bayesFactors, &m_logBayesFactors})
        v->assign(n, MCMV::Missing());
    for (std::size_t i = 0; i < n; ++i) {
        const BSN2SampleContStats& g0 = first.Get(i);
        const BSN2SampleContStats& g1 = second.Get(i);
        computeClassical(i, g0, g1);
        if (!MCMV::IsMissing(m_meanDiffs[i]) && MCMV::IsMissing(m_pooledTs[i]) && m_pooledVariances[i] == 0.0) {
            MCStatus w(410045, true);
            w.SetDiscreteDatum(0, static_cast<int>(i));
            warnings.AddWarning(w, nullptr);
        }
    }
    return ComputeBF();
}

void BSN2SampleIndBayesFactor::computeClassical(std::size_t i, const BSN2SampleContStats& g0,
                                                const BSN2SampleContStats& g1) {
    const double n0 = g0.GetSumFreqWeights(), n1 = g1.GetSumFreqWeights();
    if (!(n0 > 0.0) || !(n1 > 0.0) || n0 + n1 <= 2.0) return;
    const double m0 = g0.GetMean(), m1 = g1.GetMean();
    if (MCMV::IsMissing(m0) || MCMV::IsMissing(m1)) return;
    const double v0 = g0.GetVariance(), v1 = g1.GetVariance();
    const double df = n0 + n1 - 2.0;
    m_effectiveSizes[i] = n0 * n1 / (n0 + n1);
    m_dfs[i] = df;
    m_meanDiffs[i] = BSN2SampleContStats::MeanDifference(g0, g1);
    // (n - 1) v per group; a group of one case adds no spread (its variance
    // is missing, its deviation from its own mean 0).
    const double ss0 = MCMV::IsMissing(v0) ? 0.0 : (n0 - 1.0) * v0;
    const double ss1 = MCMV::IsMissing(v1) ? 0.0 : (n1 - 1.0) * v1;
    const double sp2 = (ss0 + ss1) / df;
    m_pooledVariances[i] = MCMV::Sanitize(sp2);
    m_pooledStdDevs[i] = MCMV::Sanitize(std::sqrt(sp2));
    m_pooledStdErrors[i] = MCMV::Sanitize(std::sqrt(sp2) * std::sqrt(1.0 / n0 + 1.0 / n1));
    if (!(sp2 > 0.0)) return;  // both groups constant: the caller warns

    const double d = m_meanDiffs[i];
    const double tPooled = MCMV::Sanitize(d / m_pooledStdErrors[i]);
    if (!MCMV::IsMissing(tPooled)) {
        m_pooledTs[i] = tPooled;
        m_pooledSigs[i] = twoSided(tPooled, df);
    }

    // Welch: needs a variance in each group.
    if (MCMV::IsMissing(v0) || MCMV::IsMissing(v1)) return;
    const double a0 = v0 / n0, a1 = v1 / n1;
    const double s = a0 + a1;
    if (!(s > 0.0)) return;
    m_unpooledStdErrors[i] = MCMV::Sanitize(std::sqrt(s));
    const double tUnpooled = MCMV::Sanitize(d / std::sqrt(s));
    const double r0 = a0 / s, r1 = a1 / s;
    const double welchDf = MCMV::Sanitize(1.0 / (r0 * r0 / (n0 - 1.0) + r1 * r1 / (n1 - 1.0)));
    m_welchDfs[i] = welchDf;
    if (MCMV::IsMissing(tUnpooled)) return;
    m_unpooledTs[i] = tUnpooled;
    m_unpooledSigs[i] = twoSided(tUnpooled, welchDf);
}

double BSN2SampleIndBayesFactor::FactorFromLog(double logFactor) {
    if (MCMV::IsMissing(logFactor) || logFactor > MCMath_850::MCPower::gMachineMaxExp) return MCMV::Missing();
    return MCMV::Sanitize(std::exp(logFactor));
}

void BSN2SampleIndBayesFactor::DisplayFields() const {
    using namespace MCDisplay_850;
    BSNComponentDisplay::DisplayC("Computation Type", m_settings.GetRegrCompType());
    DisplayIV("Test Variables", m_settings.GetCovariates());
    DisplayDV("Effective Sample Sizes", m_effectiveSizes);
    DisplayDV("Degrees of Freedom", m_dfs);
    DisplayDV("Mean Differences", m_meanDiffs);
    DisplayDV("Pooled Variances", m_pooledVariances);
    DisplayDV("Pooled Standard Deviations", m_pooledStdDevs);
    DisplayDV("Pooled Standard Errors", m_pooledStdErrors);
    DisplayDV("Unpooled Standard Errors", m_unpooledStdErrors);
    DisplayDV("Pooled t", m_pooledTs);
    DisplayDV("Unpooled t", m_unpooledTs);
    DisplayDV("Pooled Significances", m_pooledSigs);
    DisplayDV("Unpooled Significances", m_unpooledSigs);
    DisplayDV("Welch Degrees of Freedom", m_welchDfs);
    DisplayDV("Bayes Factors", m_bayesFactors);
    DisplayDV("Log Bayes Factors", m_logBayesFactors);
}

void BSN2SampleIndBayesFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleIndBayesFactor display start");
    DisplayFields();
    DisplayText(0, "End of display BSN2SampleIndBayesFactor object");
}

} // namespace MCBSN_850
