#include "bsn/onesample/bsn1samplepoisbayesfactor.h"

#include <cmath>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplediscreteutils.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

// The null prior defaults to Gamma(2, 2): rate near 1, moderately spread.
constexpr double kDefaultNullPrior = 2.0;

bool usable(double a, double b) { return !MCMV::IsMissing(a) && !MCMV::IsMissing(b) && a > 0.0 && b > 0.0; }

} // namespace

BSN1SamplePoisBayesFactor::BSN1SamplePoisBayesFactor(const BSNSettings& settings)
    : m_settings(settings), m_counts(settings.GetCovariates()), m_bayesFactors(m_counts.Size(), MCMV::Missing()),
      m_isLog(m_counts.Size(), false) {}

MCStatus BSN1SamplePoisBayesFactor::EndDataPass() {
    m_status = m_counts.HasAnyCase() ? MCStatus() : MCStatus(410003, false);
    return m_status;
}

double BSN1SamplePoisBayesFactor::logMarginal(double a, double b, double N, double S) {
    if (!usable(a, b)) return MCMV::Missing();
    const double lgA = MCDistFun::quondnlgam(a);
    const double lgAS = MCDistFun::quondnlgam(a + S);
    if (MCMV::IsMissing(lgA) || MCMV::IsMissing(lgAS)) return MCMV::Missing();
    return MCMV::Sanitize(a * std::log(b) - lgA + lgAS - (a + S) * std::log(b + N));
}

MCStatus BSN1SamplePoisBayesFactor::ComputeBFs() {
    MCStatus status;
    bool anyLog = false;
    for (std::size_t i = 0; i < m_counts.Size(); ++i) {
        const double a0 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetNullPrior1s(), i, kDefaultNullPrior);
        const double b0 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetNullPrior2s(), i, kDefaultNullPrior);
        const double a1 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetAlterPrior1s(), i, MCMV::Missing());
        const double b1 = BSN1SampleDiscreteUtils::ListValue(m_settings.GetAlterPrior2s(), i, MCMV::Missing());
        if (!usable(a1, b1)) {
            if (status.IsOK()) {
                status = MCStatus(410018, true);
                status.SetDiscreteDatum(0, static_cast<int>(i));
            }
            continue;
        }
        const double N = m_counts.GetWeightSums()[i];
        const double S = m_counts.GetCountSums()[i];
        const double null = logMarginal(a0, b0, N, S);
        const double alternative = logMarginal(a1, b1, N, S);
        if (MCMV::IsMissing(null) || MCMV::IsMissing(alternative)) continue;
        bool isLog = false;
        if (BSN1SampleDiscreteUtils::StoreFactor(MCMV::Sanitize(null - alternative), m_bayesFactors[i], isLog))
            anyLog = true;
        m_isLog[i] = isLog;
    }
    if (anyLog) m_warnings.AddWarning(MCStatus(410041, true), nullptr);
    m_status = status;
    return m_status;
}

void BSN1SamplePoisBayesFactor::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SamplePoisBayesFactor display start");
    m_counts.Display(os);
    DisplayDV("Bayes factors", m_bayesFactors);
    DisplayBV("Is log Bayes factor", m_isLog);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayText(0, "End of display BSN1SamplePoisBayesFactor object");
}

} // namespace MCBSN_850
