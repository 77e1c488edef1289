#include "bsn/regression/bsnregrconjugateprior.h"

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
using MCMath_850::MCSymMatrix;

MCStatus BSNRegrConjugatePrior::ComputeStats() {
    m_a0 = m_settings.GetPriorShape();
    m_b0 = m_settings.GetPriorScale();
    if (MCMV::IsMissing(m_a0) || MCMV::IsMissing(m_b0)) return MCStatus(410019, false);
    const auto n = static_cast<std::size_t>(m_n);
    m_beta0 = m_settings.GetPriorMeans();
    if (m_beta0.size() != n) {
        MCStatus e(410020, false);
        e.SetDiscreteDatum(0, m_n);
        e.SetDiscreteDatum(1, static_cast<int>(m_beta0.size()));
        return e;
    }

    // V0 comes as its lower triangle by rows: (0,0), (1,0), (1,1), (2,0)...
    const std::vector<double>& packed = m_settings.GetPriorCovMatrix();
    const std::size_t packedSize = n * (n + 1) / 2;
    m_V0.Resize(m_n);
    if (!packed.empty() && packed.size() == packedSize) {
        std::size_t at = 0;
        for (int i = 0; i < m_n; ++i)
            for (int j = 0; j <= i; ++j) m_V0.Set(i, j, packed[at++]);
    } else {
        if (!packed.empty()) {
            MCStatus w(410021, true);
            w.SetDiscreteDatum(0, static_cast<int>(packedSize));
            w.SetDiscreteDatum(1, static_cast<int>(packed.size()));
            m_warnings.AddWarning(w, nullptr);
        }
        for (int i = 0; i < m_n; ++i) m_V0.Set(i, i, 1.0);
    }
    m_V0.ZeroOutRedundant(m_nonRedundant);

    m_nu = 2.0 * m_a0 + m_N;
    if (m_nu <= 4.0) m_warnings.AddWarning(MCStatus(410013, true), nullptr);
    const double tail = (1.0 - 0.01 * m_settings.GetCILevel()) * 0.5;
    m_tCI = MCDistFun::IdfT(1.0 - tail, m_nu);
    m_tDom = MCDistFun::IdfT(1.0 - DomainTail(), m_nu);

    MCSymMatrix P0, lambda = m_XtX, sigmaStar;
    MatrixInverse(m_V0, P0);
    lambda.ZeroOutRedundant(m_nonRedundant);
    MCSymMatrix xtx = lambda;  // X'X of the non-redundant parameters
    lambda.Dense() += P0.Dense();
    MatrixInverse(lambda, sigmaStar);
    std::vector<double> m = P0.Multiply(m_beta0);
    for (std::size_t i = 0; i < n; ++i)
        if (m_nonRedundant.IsMember(static_cast<int>(i))) m[i] += m_Xty[i];
    const std::vector<double> betaStar = sigmaStar.Multiply(m);

    m_aStar = m_a0 + m_N / 2.0;
    // b* = b0 + (beta0'P0 beta0 + y'y - beta*' Lambda beta*)/2, formed as the
    // sum of three non-negative parts (residual, data and prior distances of
    // beta*), which does not cancel when y'y is large.
    std::vector<double> dLS(n), dPrior(n);
    for (std::size_t i = 0; i < n; ++i) {
        dLS[i] = m_nonRedundant.IsMember(static_cast<int>(i)) ? m_lsCoeffs[i] - betaStar[i] : 0.0;
        dPrior[i] = betaStar[i] - m_beta0[i];
    }
    m_bStar = m_b0 + (ResidualSS() + xtx.QuadraticForm(dLS) + P0.QuadraticForm(dPrior)) / 2.0;
    const double s2 = m_bStar / m_aStar;

    for (std::size_t i = 0; i < n; ++i) {
        if (!m_nonRedundant.IsMember(static_cast<int>(i))) {
            m_coeffs[i] = BayesEstimation(0.0, 0.0, MCMV::Missing(), MCMV::Missing(), MCMV::Missing());
            continue;
        }
        const double scale2 = std::max(sigmaStar.Get(static_cast<int>(i), static_cast<int>(i)) * s2, 0.0);
        m_postScale[i] = std::sqrt(scale2);
        FillT(m_coeffs[i], m_lowerDomain[i], m_upperDomain[i], betaStar[i], scale2);
    }

    // sigma^2: inverse gamma with shape a* and scale b*.
    m_error.SetMode(m_bStar / (m_aStar + 1.0));
    if (m_aStar > 1.0) m_error.SetMean(m_bStar / (m_aStar - 1.0));
    if (m_aStar > 2.0)
        m_error.SetVariance(m_bStar * m_bStar / ((m_aStar - 1.0) * (m_aStar - 1.0) * (m_aStar - 2.0)));
    FillInverseGammaLimits(m_aStar, m_bStar);

    m_postCoeffs = betaStar;
    m_covFactor = sigmaStar;
    if (m_aStar > 1.0) m_predVarScale = m_bStar / (m_aStar - 1.0);
    m_predIntScale = s2;

    if (m_aStar > 1.0 && !m_settings.GetRegressors().empty() && !m_skipPrediction && PredictionRow(m_predX)) {
        double yhat = 0.0;
        for (std::size_t i = 0; i < n; ++i) yhat += m_predX[i] * betaStar[i];
        const double h = sigmaStar.QuadraticForm(m_predX) + 1.0;
        m_predicted.SetMode(yhat);
        m_predicted.SetMean(yhat);
        m_predicted.SetVariance(h * m_bStar / (m_aStar - 1.0));
        if (h >= 0.0) {
            m_predScale = std::sqrt(h * s2);
            if (!MCMV::IsMissing(m_tCI)) {
                m_predicted.SetLower(yhat - m_tCI * m_predScale);
                m_predicted.SetUpper(yhat + m_tCI * m_predScale);
            }
            if (!MCMV::IsMissing(m_tDom)) {
                m_predLowerDomain = yhat - m_tDom * m_predScale;
                m_predUpperDomain = yhat + m_tDom * m_predScale;
            }
        }
        m_hasPrediction = true;
    }

    // Overall F: beta*' Lambda beta* = beta*' m.
    double quad = 0.0;
    for (std::size_t i = 0; i < n; ++i) quad += betaStar[i] * m[i];
    m_fDF = m_p + 1.0;
    m_fStatistic = MCMV::Sanitize((quad / m_bStar) * m_aStar / (m_p + 1.0));
    m_fSig = MCDistFun::SigF(m_fStatistic, m_p + 1.0, m_nu);

    return ComputeFTests(betaStar, sigmaStar, s2);
}

bool BSNRegrConjugatePrior::PriorCoefficient(int i, double& location, double& scale, double& df) const {
    if (!(m_a0 > 0.0) || !(m_b0 > 0.0) || i < 0 || i >= m_V0.Size()) return false;
    location = m_beta0[static_cast<std::size_t>(i)];
    scale = std::sqrt(std::max(m_b0 / m_a0 * m_V0.Get(i, i), 0.0));
    df = 2.0 * m_a0;
    return scale > 0.0;
}

bool BSNRegrConjugatePrior::PriorErrorVariance(double& shape, double& rate) const {
    if (!(m_a0 > 0.0) || !(m_b0 > 0.0)) return false;
    shape = m_a0;
    rate = m_b0;
    return true;
}

bool BSNRegrConjugatePrior::PriorPrediction(const std::vector<double>& x, double& location, double& scale,
                                            double& df) const {
    if (!(m_a0 > 0.0) || !(m_b0 > 0.0) || x.size() != m_beta0.size()) return false;
    location = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) location += x[i] * m_beta0[i];
    scale = std::sqrt(std::max(m_b0 / m_a0 * (m_V0.QuadraticForm(x) + 1.0), 0.0));
    df = 2.0 * m_a0;
    return scale > 0.0;
}

void BSNRegrConjugatePrior::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNRegrConjugatePrior display start");
    DisplayD("a0", m_a0);
    DisplayD("b0", m_b0);
    DisplayDV("beta0", m_beta0);
    DisplayD("a*", m_aStar);
    DisplayD("b*", m_bStar);
    BSNRegrPosterior::Display(os);
    DisplayText(0, "End of display BSNRegrConjugatePrior object");
}

} // namespace MCBSN_850
