#include "bsn/regression/bsnanova.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/regression/bsnmultipleregrnullfactor.h"
#include "bsn/regression/bsnmultiregoutputstats.h"
#include "bsn/regression/bsnregrconjugateprior.h"
#include "bsn/regression/bsnregrposteriorreference.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSNAnova::BSNAnova(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSNAlgorithm(settings, varList), m_depVar(settings.GetDependentVar()),
      m_factorVar(settings.GetFactors().empty() ? -1 : settings.GetFactors()[0]),
      m_nCategories(settings.GetFactorSizes().empty() ? 0 : settings.GetFactorSizes()[0]),
      m_freqVar(settings.GetFrequencyWeightVar()), m_regrWeightVar(settings.GetRegrWeightVar()) {}

BSNAnova::~BSNAnova() = default;

MCStatus BSNAnova::checkInputs() const {
    if (!m_varList.IsValidIndex(m_depVar) || m_varList.Get(m_depVar).GetKind() != MCXML_850::MCVarKind::Scale)
        return MCStatus(410001, false);
    const auto& dep = m_varList.Get(m_depVar);
    if (!MCMV::IsMissing(dep.GetMinimum()) && !MCMV::IsMissing(dep.GetMaximum()) &&
        dep.GetMinimum() == dep.GetMaximum())
        return MCStatus(410011, false);
    if (m_factorVar < 0 || m_nCategories <= 1) return MCStatus(410012, false);
    return {};
}

MCStatus BSNAnova::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    if (!TakeStageStatus(checkInputs())) return FinishBuild();
    m_design = MCMath_850::MCFastDesignMatrix({m_factorVar}, {m_nCategories}, {}, false);
    m_design.SetDepVar(m_depVar);
    if (m_design.GetNParameters() > kMaxParameters) {
        TakeStageStatus(MCStatus(410057, false));
        return FinishBuild();
    }
    if (!MCCommon_850::HasAnyRecord(iter)) {
        TakeStageStatus(MCStatus(410003, false));
        return FinishBuild();
    }
    if (!TakeStageStatus(pass(iter))) return FinishBuild();

    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    if (type != BSNConst::Posterior) {
        if (!TakeStageStatus(computeFactor())) return FinishBuild();
        if (m_cancelInfo.WillCancel()) {
            m_status = MCStatus(1, false);
            return FinishBuild();
        }
    }
    if (type != BSNConst::BayesFactor) {
        if (!TakeStageStatus(computePosterior())) return FinishBuild();
    }
    if (m_cancelInfo.WillCancel()) {
        m_status = MCStatus(1, false);
        return FinishBuild();
    }
    m_outputStats = std::make_unique<BSNMultiRegOutputStats>(m_settings, *this);
    return FinishBuild();
}

MCStatus BSNAnova::pass(MCCommon_850::MultiPassRecordIter& iter) {
    const int n = m_design.GetNParameters();
    const auto nn = static_cast<std::size_t>(n);
    m_cellW.assign(nn, 0.0);
    m_cellMean.assign(nn, 0.0);
    m_cellM2.assign(nn, 0.0);
    double totalW = 0.0, totalWR = 0.0;
    const int rw = m_regrWeightVar;
    const MCStatus st = RunDataPass(iter, [&](const MCCommon_850::Record& record, double f) {
        double w = f;
        if (rw >= 0) {
            const double r = record.GetValue(rw);
            if (MCMV::IsMissing(r) || r <= 0.0) return;
            w = f * r;
        }
        const double y = record.GetValue(m_depVar);
        if (MCMV::IsMissing(y)) return;
        const int c = MCMath_850::MCFastDesignMatrix::CategoryCode(record.GetValue(m_factorVar), n);
        if (c < 0) return;
        const auto i = static_cast<std::size_t>(c);
        const double W = m_cellW[i] + w;
        const double delta = y - m_cellMean[i];
        m_cellMean[i] += delta * (w / W);
        m_cellM2[i] += w * delta * (y - m_cellMean[i]);
        m_cellW[i] = W;
        totalW += f;
        totalWR += w;
    });
    if (st.IsError()) return st;
    if (totalW <= 0.0) return MCStatus(410003, false);

    // Fit: the coefficients are the cell means.
    const double tol = m_settings.GetTolValue();
    m_fit.totalW = totalW;
    m_fit.totalWR = totalWR;
    m_fit.nonRedundant.Resize(n, true);
    m_fit.XtX.Resize(n);
    m_fit.XtXinverse.Resize(n);
    m_fit.coefficients.assign(nn, 0.0);
    m_fit.Xty.assign(nn, 0.0);
    int k = n;
    double sumWY = 0.0;
    for (std::size_t i = 0; i < nn; ++i) sumWY += m_cellW[i] * m_cellMean[i];
    const double mean = sumWY / totalWR;
    double yty = 0.0, sse = 0.0, sst = 0.0;
    for (int c = 0; c < n; ++c) {
        const auto i = static_cast<std::size_t>(c);
        const double w = m_cellW[i];
        const double cellYty = m_cellM2[i] + w * m_cellMean[i] * m_cellMean[i];
        yty += cellYty;
        sst += m_cellM2[i] + w * (m_cellMean[i] - mean) * (m_cellMean[i] - mean);
        m_fit.XtX.Set(c, c, w);
        m_fit.Xty[i] = w * m_cellMean[i];
        if (w > tol) {
            m_fit.XtXinverse.Set(c, c, 1.0 / w);
            m_fit.coefficients[i] = m_cellMean[i];
            sse += m_cellM2[i];
        } else {
            // A dropped cell is fitted by 0: its cases keep their whole sum
            // of squares.
            m_fit.nonRedundant.Clear(c);
            --k;
            sse += cellYty;
        }
        if (w <= 0.0) m_cellMean[i] = MCMV::Missing();
    }
    if (m_cancelInfo.WillCancel()) return MCStatus(1, false);
    if (k <= 1) return MCStatus(410012, false);
    m_fit.k = k;
    m_fit.meanY = mean;
    m_fit.yty = yty;
    m_fit.sse = sse;
    m_fit.sst = sst;
    m_fit.Summarise(tol);
    return {};
}

MCStatus BSNAnova::computeFactor() {
    if (1.0 - m_fit.rSquared < m_settings.GetTolValue() && m_settings.GetRegrCompType() != BSNConst::Zellner)
        return MCStatus(410014, true);
    BSNMultipleRegrNullFactor factor(m_settings, m_fit.totalW, m_fit.k - 1.0, m_fit.rSquared);
    const MCStatus st = factor.Compute();
    m_fit.bayesFactor = MCMV::Sanitize(factor.GetBayesFactor());
    m_fit.logBayesFactor = MCMV::Sanitize(factor.GetLogBayesFactor());
    AppendWarnings(factor.GetWarnings());
    return st;
}

MCStatus BSNAnova::computePosterior() {
    return ComputeRegrPosterior(m_settings, m_design, m_cancelInfo, m_warnings, m_fit, m_posterior);
}

void BSNAnova::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNAnova display start");
    BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
    DisplayI("Dependent", m_depVar);
    DisplayI("Factor", m_factorVar);
    DisplayI("Number of categories", m_nCategories);
    DisplayI("Frequency Weight", m_freqVar);
    DisplayI("Regression Weight", m_regrWeightVar);
    DisplayB("Model Built", m_modelBuilt);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayDV("Cell weights", m_cellW);
    DisplayDV("Cell means", m_cellMean);
    DisplayDV("Cell sums of squared deviations", m_cellM2);
    m_fit.Display(os);
    if (m_posterior) m_posterior->Display(os);
    DisplayText(0, "Output Stats:");
    if (m_outputStats) m_outputStats->Display(os);
    DisplayText(0, "End of display BSNAnova object");
}

} // namespace MCBSN_850
