#include "bsn/regression/bsnmultipleregr.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/regression/bsnmultipleregrfullfactor.h"
#include "bsn/regression/bsnmultipleregrnullfactor.h"
#include "bsn/regression/bsnmultiregoutputstats.h"
#include "bsn/regression/bsnregraccumulator.h"
#include "bsn/regression/bsnregrconjugateprior.h"
#include "bsn/regression/bsnregrposteriorreference.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {

bool contains(const std::vector<int>& list, int v) { return std::find(list.begin(), list.end(), v) != list.end(); }

} // namespace

BSNMultipleRegr::BSNMultipleRegr(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSNAlgorithm(settings, varList), m_depVar(settings.GetDependentVar()),
      m_freqVar(settings.GetFrequencyWeightVar()), m_regrWeightVar(settings.GetRegrWeightVar()) {}

BSNMultipleRegr::~BSNMultipleRegr() = default;

MCStatus BSNMultipleRegr::checkInputs() const {
    if (!m_varList.IsValidIndex(m_depVar) || m_varList.Get(m_depVar).GetKind() != MCXML_850::MCVarKind::Scale)
        return MCStatus(410001, false);
    const auto& dep = m_varList.Get(m_depVar);
    if (!MCMV::IsMissing(dep.GetMinimum()) && !MCMV::IsMissing(dep.GetMaximum()) &&
        dep.GetMinimum() == dep.GetMaximum())
        return MCStatus(410011, false);
    // A usable predictor: a factor with two or more categories, or a
    // covariate whose stored range is not a single value (an unknown range
    // is given the benefit of the doubt: the fit finds it out).
    const std::vector<int>& sizes = m_settings.GetFactorSizes();
    for (std::size_t i = 0; i < m_settings.GetFactors().size(); ++i)
        if (i < sizes.size() && sizes[i] > 1) return {};
    for (int c : m_settings.GetCovariates()) {
        if (!m_varList.IsValidIndex(c)) continue;
        const double lo = m_varList.Get(c).GetMinimum(), hi = m_varList.Get(c).GetMaximum();
        if (MCMV::IsMissing(lo) || MCMV::IsMissing(hi) || lo < hi) return {};
    }
    return MCStatus(410012, false);
}

MCStatus BSNMultipleRegr::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    if (!TakeStageStatus(checkInputs())) return FinishBuild();

    m_design = MCMath_850::MCFastDesignMatrix(m_settings.GetFactors(), m_settings.GetFactorSizes(),
                                              m_settings.GetCovariates(), true);
    m_design.SetDepVar(m_depVar);
    if (m_design.GetNParameters() > kMaxParameters) {
        TakeStageStatus(MCStatus(410057, false));
        return FinishBuild();
    }
    const int nEffects = static_cast<int>(m_settings.GetFactors().size() + m_settings.GetCovariates().size());
    m_sparse = 2 * nEffects < m_design.GetNParameters();

    if (m_settings.GetCompareType() == BSNConst::CompareFull) {
        long long c = static_cast<long long>(m_settings.GetFullModCovariates().size());
        for (int s : m_settings.GetFullModFactorSizes()) c += s;
        if (c < 5000) {
            m_fullDesign = std::make_unique<MCMath_850::MCFastDesignMatrix>(m_design);
            std::vector<int> factors, sizes, covariates;
            const auto& fullFactors = m_settings.GetFullModFactors();
            const auto& fullSizes = m_settings.GetFullModFactorSizes();
            for (std::size_t i = 0; i < fullFactors.size(); ++i)
                if (!contains(m_settings.GetFactors(), fullFactors[i])) {
                    factors.push_back(fullFactors[i]);
                    sizes.push_back(i < fullSizes.size() ? fullSizes[i] : 1);
                }
            for (int v : m_settings.GetFullModCovariates())
                if (!contains(m_settings.GetCovariates(), v)) covariates.push_back(v);
            m_fullDesign->AddModelEffects(factors, sizes, false);
            m_fullDesign->AddModelEffects(covariates, {}, true);
        } else {
            m_warnings.AddWarning(MCStatus(410058, true), nullptr);
            m_fullAbandoned = true;
        }
    }

    if (!MCCommon_850::HasAnyRecord(iter)) {
        TakeStageStatus(MCStatus(410003, false));
        return FinishBuild();
    }
    if (!TakeStageStatus(fit(iter))) return FinishBuild();

    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    if (type != BSNConst::Posterior && !m_fullAbandoned) {
        if (!TakeStageStatus(computeFactor())) return FinishBuild();
    }
    if (type != BSNConst::BayesFactor) {
        if (m_cancelInfo.WillCancel()) {
            m_status = MCStatus(1, false);
            return FinishBuild();
        }
        if (!TakeStageStatus(computePosterior())) return FinishBuild();
    }
    if (m_cancelInfo.WillCancel()) {
        m_status = MCStatus(1, false);
        return FinishBuild();
    }
    m_outputStats = std::make_unique<BSNMultiRegOutputStats>(m_settings, *this);
    return FinishBuild();
}

MCStatus BSNMultipleRegr::fit(MCCommon_850::MultiPassRecordIter& iter) {
    BSNRegrAccumulator model(m_design, m_sparse);
    std::unique_ptr<BSNRegrAccumulator> full;
    if (m_fullDesign) {
        const int nFullEffects = m_fullDesign->GetNEffects();
        full = std::make_unique<BSNRegrAccumulator>(*m_fullDesign, 2 * nFullEffects < m_fullDesign->GetNParameters());
    }
    const int rw = m_regrWeightVar;
    // The weight of a case, or 0 when it is not used.
    auto caseWeight = [&](const MCCommon_850::Record& record, double f) {
        if (rw < 0) return f;
        const double r = record.GetValue(rw);
        return MCMV::IsMissing(r) || r <= 0.0 ? 0.0 : f * r;
    };
    // A case counts only when it expands in both designs, so both models
    // are fitted to the same cases.
    auto expands = [&](const MCCommon_850::Record& record) {
        if (!model.PrepareShifts(record)) return false;
        return !full || full->PrepareShifts(record);
    };

    double totalW = 0.0;
    MCStatus pass = RunDataPass(iter, [&](const MCCommon_850::Record& record, double f) {
        const double w = caseWeight(record, f);
        if (w <= 0.0 || !expands(record)) return;
        // The full design holds the model's effects and more: a case it takes
        // the model takes too, and the reverse need not hold.
        if (full && !full->Add(record, w)) return;
        if (!model.Add(record, w)) return;
        totalW += f;
    });
    if (pass.IsError()) return pass;
    model.Finish();
    if (full) full->Finish();
    if (totalW <= 0.0) return MCStatus(410003, false);

    m_fit.totalW = totalW;
    m_fit.totalWR = model.GetSumW();
    if (m_settings.GetAnalysType() != BSNConst::BayesFactor)
        model.GetCrossProducts(m_fit.XtX, m_fit.Xty, m_fit.yty);

    auto stop = [this]() { return m_cancelInfo.WillCancel(); };
    if (!model.Sweep(stop)) return MCStatus(1, false);
    m_fit.nonRedundant = model.GetNonRedundant();
    m_fit.coefficients = model.GetCoefficients();
    model.GetInverse(m_fit.XtXinverse);
    int k = m_fit.nonRedundant.Count();
    if (k <= 1) return MCStatus(410012, false);
    if (totalW < k) k = static_cast<int>(std::trunc(totalW));
    m_fit.k = k;
    if (full) {
        if (!full->Sweep(stop)) return MCStatus(1, false);
        m_kFull = full->GetNonRedundant().Count();
    }
    const double meanShifted = model.GetSumWY() / model.GetSumW();
    m_fit.meanY = m_design.GetDepShift() + meanShifted;

    // Second pass: residuals of both fits, on the shifted scale.
    double sst = 0.0, sse = 0.0, sseFull = 0.0;
    pass = RunDataPass(iter, [&](const MCCommon_850::Record& record, double f) {
        const double w = caseWeight(record, f);
        if (w <= 0.0) return;
        double y = 0.0, fit = 0.0, yF = 0.0, fitF = 0.0;
        if (full && !full->Residual(record, yF, fitF)) return;
        if (!model.Residual(record, y, fit)) return;
        sst += w * (y - meanShifted) * (y - meanShifted);
        sse += w * (y - fit) * (y - fit);
        if (full) sseFull += w * (yF - fitF) * (yF - fitF);
    });
    if (pass.IsError()) return pass;

    m_fit.sst = sst;
    m_fit.sse = sse;
    m_fit.Summarise(m_settings.GetTolValue());
    if (full) {
        m_fit.rSquaredFull = sst <= 0.0 ? 1.0 : std::max(1.0 - sseFull / sst, 0.0);
    }
    m_design.ClearShifts();
    return {};
}

MCStatus BSNMultipleRegr::computeFactor() {
    const bool nullComparison = m_settings.GetCompareType() != BSNConst::CompareFull;
    const double tol = m_settings.GetTolValue();
    if (!(tol <= 1.0 - m_fit.rSquared) && !(nullComparison && m_settings.GetRegrCompType() == BSNConst::Zellner))
        return MCStatus(410014, true);
    std::unique_ptr<BSNMultipleRegrFactor> factor;
    const double p = m_fit.k - 1.0;
    if (nullComparison)
        factor = std::make_unique<BSNMultipleRegrNullFactor>(m_settings, m_fit.totalW, p, m_fit.rSquared);
    else
        factor = std::make_unique<BSNMultipleRegrFullFactor>(m_settings, m_fit.totalW, p, m_kFull - 1.0,
                                                             m_fit.rSquared, m_fit.rSquaredFull);
    const MCStatus st = factor->Compute();
    m_fit.bayesFactor = MCMV::Sanitize(factor->GetBayesFactor());
    m_fit.logBayesFactor = MCMV::Sanitize(factor->GetLogBayesFactor());
    AppendWarnings(factor->GetWarnings());
    return st;
}

MCStatus BSNMultipleRegr::computePosterior() {
    return ComputeRegrPosterior(m_settings, m_design, m_cancelInfo, m_warnings, m_fit, m_posterior);
}

void BSNMultipleRegr::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNMultipleRegr display start");
    BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
    DisplayI("Dependent", m_depVar);
    DisplayI("Frequency Weight", m_freqVar);
    DisplayI("Regression Weight", m_regrWeightVar);
    DisplayB("Sparse", m_sparse);
    DisplayB("Model Built", m_modelBuilt);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    m_design.Display(os);
    DisplayDV("Beta estimates", m_fit.coefficients);
    DisplayText(0, "Matrix X'X:");
    m_fit.XtX.Display(os);
    DisplayText(0, "Matrix X'X inverse:");
    m_fit.XtXinverse.Display(os);
    DisplayD("Sigma squared", m_fit.sigma2);
    DisplayD("TotalW", m_fit.totalW);
    DisplayD("TotalWR", m_fit.totalWR);
    DisplayDV("X'y", m_fit.Xty);
    DisplayD("y'y", m_fit.yty);
    m_fit.Display(os);
    if (m_posterior) m_posterior->Display(os);
    DisplayText(0, "Output Stats:");
    if (m_outputStats) m_outputStats->Display(os);
    DisplayText(0, "End of display BSNMultipleRegr object");
}

} // namespace MCBSN_850
