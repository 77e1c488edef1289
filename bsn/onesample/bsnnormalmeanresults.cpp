#include "bsn/onesample/bsnnormalmeanresults.h"

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

void BSNNormalMeanResults::ResetBasicStats(std::size_t n) {
    for (auto* v : {&m_means, &m_stdDevs, &m_stdErrors, &m_dfs, &m_ns}) v->assign(n, MCCommon_850::MCMV::Missing());
}

void BSNNormalMeanResults::DisplayResults(const std::string& meansLabel) const {
    using namespace MCDisplay_850;
    DisplayDV(meansLabel, m_means);
    DisplayDV("Standard Deviations", m_stdDevs);
    DisplayDV("Standard Error Means", m_stdErrors);
    DisplayDV("Degrees of Freedom", m_dfs);
    DisplayDV("Ns", m_ns);
    DisplayDV("Bayes Factors", m_factors);
    DisplayDV("Log Bayes Factors", m_logFactors);
    DisplayDV("T Values", m_tValues);
    DisplayDV("Significances", m_sigs);
    m_posterior.Display();
}

} // namespace MCBSN_850
