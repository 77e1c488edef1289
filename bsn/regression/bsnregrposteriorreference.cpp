#include "bsn/regression/bsnregrposteriorreference.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

MCStatus BSNRegrPosteriorReference::ComputeStats() {
    m_nu = std::max(m_N - (m_p + 1.0), 0.0);
    if (m_nu <= 2.0) m_warnings.AddWarning(MCStatus(410024, true), nullptr);
    else if (m_nu <= 4.0) m_warnings.AddWarning(MCStatus(410013, true), nullptr);
    const double tail = 0.5 - 0.005 * m_settings.GetCILevel();
    m_tCI = MCDistFun::IdfT(1.0 - tail, m_nu);
    m_tDom = MCDistFun::IdfT(1.0 - DomainTail(), m_nu);

    const double sse = ResidualSS();
    m_s2 = m_nu > 0.0 ? sse / m_nu : 0.0;
    const auto n = static_cast<std::size_t>(m_n);
    for (std::size_t i = 0; i < n; ++i) {
        const int k = static_cast<int>(i);
        if (!m_nonRedundant.IsMember(k)) {
            m_coeffs[i] = BayesEstimation(0.0, 0.0, MCMV::Missing(), MCMV::Missing(), MCMV::Missing());
            continue;
        }
        const double scale2 = std::max(m_s2 * m_XtXinv.Get(k, k), 0.0);
        m_postScale[i] = std::sqrt(scale2);
        FillT(m_coeffs[i], m_lowerDomain[i], m_upperDomain[i], m_lsCoeffs[i], scale2);
    }

    // sigma^2: inverse gamma with shape nu/2 and scale nu s^2/2.
    m_error.SetMode(m_nu * m_s2 / (m_nu + 2.0));
    if (m_nu > 2.0) {
        m_error.SetMean(m_nu * m_s2 / (m_nu - 2.0));
        m_plotSigma2 = m_nu * m_s2 / (m_nu - 2.0);
    }
    if (m_nu > 4.0)
        m_error.SetVariance(2.0 * m_nu * m_nu * m_s2 * m_s2 / ((m_nu - 2.0) * (m_nu - 2.0) * (m_nu - 4.0)));
    FillInverseGammaLimits(m_nu / 2.0, m_nu * m_s2 / 2.0);

    m_postCoeffs = m_lsCoeffs;
    m_covFactor = m_XtXinv;
    if (m_nu > 2.0) m_predVarScale = m_s2 * m_nu / (m_nu - 2.0);
    m_predIntScale = m_s2;

    if (!m_settings.GetRegressors().empty() && PredictionRow(m_predX)) {
        double yhat = 0.0;
        for (std::size_t i = 0; i < n; ++i) yhat += m_predX[i] * m_lsCoeffs[i];
        const double scale2 = std::max((m_XtXinv.QuadraticForm(m_predX) + 1.0) * m_s2, 0.0);
        m_predScale = std::sqrt(scale2);
        double lo = MCMV::Missing(), hi = MCMV::Missing();
        FillT(m_predicted, lo, hi, yhat, scale2);
        m_predLowerDomain = lo;
        m_predUpperDomain = hi;
        m_hasPrediction = true;
    }

    // Overall F: Q = b'X'X b = y'y - SSE.
    const double Q = m_yty - sse;
    m_fDF = m_p + 1.0;
    m_fStatistic = MCMV::Sanitize((Q * m_nu) / (sse * (m_p + 1.0)));
    m_fSig = MCDistFun::SigF(m_fStatistic, m_p + 1.0, m_nu);

    return ComputeFTests(m_lsCoeffs, m_XtXinv, m_s2);
}

void BSNRegrPosteriorReference::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNRegrPosteriorReference display start");
    DisplayD("s squared", m_s2);
    DisplayD("Plot sigma squared", m_plotSigma2);
    BSNRegrPosterior::Display(os);
    DisplayText(0, "End of display BSNRegrPosteriorReference object");
}

} // namespace MCBSN_850
