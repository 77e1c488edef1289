#include "bsn/twosample/rouderbayesfactor.h"

#include <limits>
#include <ostream>

#include "bsn/onesample/bayesfactoronesamplett.h"
#include "bsn/onesample/bayesfactoronesamplettmc.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

namespace {
// The quadrature's bounds on g: the two-sample factor starts just above 0
// and stops at a finite right bound.
constexpr double kLeftBound = std::numeric_limits<double>::epsilon();
constexpr double kRightBound = 1e6;
} // namespace

RouderBayesFactor::RouderBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                     MCCommon_850::MCWarnings& warnings)
    : BSN2SampleIndBayesFactor(settings, varList), m_quadWarnings(warnings) {}

double RouderBayesFactor::LogFactor(const BSNSettings& settings, double n, double df, double t,
                                    MCCommon_850::MCWarnings& warnings) {
    // One computation on the log scale gives both the logarithm and the
    // factor (its exp), so the logarithm stays right where the factor
    // underflows.
    if (settings.GetMethodType() != BSNConst::AQL) {
        BayesFactorOneSampleTTMC mc(n, df, t, settings.GetMCSamples(), settings.GetRandomSeed());
        mc.SetSeed(settings.GetRandomSeed());
        return mc.IsValid() ? MCMV::Sanitize(mc.ComputeLog()) : MCMV::Missing();
    }
    BayesFactorOneSampleTT quad(n, df, t);
    quad.SetTolerance(settings.GetTolValue());
    quad.SetMaxIter(settings.GetMaxIterations());
    quad.SetLeftBound(kLeftBound);
    quad.SetRightBound(kRightBound);
    const double logBf = quad.IsValid() ? MCMV::Sanitize(quad.ComputeLog()) : MCMV::Missing();
    warnings.Append(quad.GetWarnings());
    return logBf;
}

double RouderBayesFactor::Factor(const BSNSettings& settings, double n, double df, double t,
                                 MCCommon_850::MCWarnings& warnings) {
    return FactorFromLog(LogFactor(settings, n, df, t, warnings));
}

MCCommon_850::MCStatus RouderBayesFactor::ComputeBF() {
    for (std::size_t i = 0; i < m_pooledTs.size(); ++i) {
        if (MCMV::IsMissing(m_pooledTs[i])) continue;
        m_logBayesFactors[i] = LogFactor(m_settings, m_effectiveSizes[i], m_dfs[i], m_pooledTs[i], m_quadWarnings);
        m_bayesFactors[i] = FactorFromLog(m_logBayesFactors[i]);
    }
    return {};
}

void RouderBayesFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "RouderBayesFactor display start");
    DisplayFields();
    DisplayI("Method Type", static_cast<int>(m_settings.GetMethodType()));
    DisplayD("Tolerance", m_settings.GetTolValue());
    DisplayI("Maximum Iterations", m_settings.GetMaxIterations());
    DisplayI("Monte Carlo Samples", m_settings.GetMCSamples());
    DisplayL("Random Seed", static_cast<long>(m_settings.GetRandomSeed()));
    DisplayText(0, "End of display RouderBayesFactor object");
}

} // namespace MCBSN_850
