#include "bsn/twosample/hyperpriorbayesfactor.h"

#include <cmath>
#include <ostream>

#include "bsn/twosample/tdistributionterms.h"
#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCMath_850::MCDistFun;

HyperPriorBayesFactor::HyperPriorBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSN2SampleIndBayesFactor(settings, varList) {}

double HyperPriorBayesFactor::LogFactor(double df, double t, double a) {
    if (MCMV::IsMissing(df) || MCMV::IsMissing(t) || MCMV::IsMissing(a) || !(df > 0.0) || !(a > -1.0))
        return MCMV::Missing();
    // The df part of the gamma ratio as one ratio, exact for huge df.
    const double halfRatio = TDistributionTerms::LogGammaHalfRatio(df);
    const double la = MCDistFun::quondnlgam(a + 1.0), lb = MCDistFun::quondnlgam(a + 1.5);
    if (MCMV::IsMissing(halfRatio) || MCMV::IsMissing(la) || MCMV::IsMissing(lb)) return MCMV::Missing();
    return MCMV::Sanitize(halfRatio + la - lb + (a + 1.0 - df / 2.0) * std::log1p(t * t / df));
}

MCCommon_850::MCStatus HyperPriorBayesFactor::ComputeBF() {
    const double a = m_settings.GetRegrComPar();
    for (std::size_t i = 0; i < m_pooledTs.size(); ++i) {
        if (MCMV::IsMissing(m_pooledTs[i])) continue;
        m_logBayesFactors[i] = LogFactor(m_dfs[i], m_pooledTs[i], a);
        m_bayesFactors[i] = FactorFromLog(m_logBayesFactors[i]);
    }
    return {};
}

void HyperPriorBayesFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "HyperPriorBayesFactor display start");
    DisplayFields();
    DisplayD("Hyper-prior Parameter", m_settings.GetRegrComPar());
    DisplayText(0, "End of display HyperPriorBayesFactor object");
}

} // namespace MCBSN_850
