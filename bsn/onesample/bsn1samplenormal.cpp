#include "bsn/onesample/bsn1samplenormal.h"

#include <cmath>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

} // namespace

BSN1SampleNormal::BSN1SampleNormal(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSNAlgorithm(settings, varList) {}

BSN1SampleNormal::~BSN1SampleNormal() = default;

MCStatus BSN1SampleNormal::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    TakeStageStatus(init());
    if (isStop()) return FinishBuild();
    TakeStageStatus(ComputeBasicStats(iter));
    if (isStop()) return FinishBuild();

    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    if (type == BSNConst::BayesFactor || type == BSNConst::Both) {
        createFactor();
        TakeStageStatus(m_factor->BuildModel(iter, m_cancelInfo));
        if (isStop()) return FinishBuild();
    }
    if (type == BSNConst::Posterior || type == BSNConst::Both) {
        createInference();
        TakeStageStatus(m_inference->BuildModel());
        if (isStop()) return FinishBuild();
    }

    TakeStageStatus(GenerateOutput());
    return FinishBuild();
}

MCStatus BSN1SampleNormal::init() {
    const std::size_t nVars = m_settings.GetCovariates().size();
    if (nVars == 0) return MCStatus(410004, false);
    m_stats.assign(nVars, MCMath_850::MCContStats());
    ResetBasicStats(nVars);
    return {};
}

MCStatus BSN1SampleNormal::ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter) {
    if (!MCCommon_850::HasAnyRecord(iter)) return MCStatus(410003, false);
    const std::vector<int>& vars = m_settings.GetCovariates();
    const std::size_t nVars = vars.size();
    // Fresh accumulators, so that a repeated pass never counts a case twice.
    m_stats.assign(nVars, MCMath_850::MCContStats());
    ResetBasicStats(nVars);

    // Each variable takes every case where it has a value, whatever the
    // other test variables hold: missing values are excluded analysis by
    // analysis.
    const MCStatus pass = RunDataPass(
        iter,
        [&](const MCCommon_850::Record& record, double weight) {
            for (std::size_t i = 0; i < nVars; ++i) {
                const double value = record.GetValue(vars[i]);
                if (!MCMV::IsMissing(value)) m_stats[i].Update(value, weight);
            }
        },
        FinalReport::IfPending);
    if (pass.IsError()) return pass;

    for (std::size_t i = 0; i < nVars; ++i) {
        const double m = m_stats[i].GetMean();
        const double v = m_stats[i].GetVariance();
        const double n = m_stats[i].GetSumWeights();
        m_ns[i] = n;
        if (!MCMV::IsMissing(v) && !MCMV::IsMissing(n) && n >= 2.0 && v > 0.0) {
            const double sd = std::sqrt(v);
            m_stdDevs[i] = sd;
            m_stdErrors[i] = sd / std::sqrt(n);
            m_dfs[i] = n - 1.0;
            m_means[i] = m;
            continue;
        }
        MCStatus warning(n >= 2.0 ? 410010 : 410025, true);
        warning.SetDiscreteDatum(0, static_cast<int>(i));
        m_warnings.AddWarning(warning, nullptr);
        m_dfs[i] = n > 0.0 ? n - 1.0 : MCMV::Missing();
        m_means[i] = n > 0.0 ? m : MCMV::Missing();
        // A constant variable has a known spread of zero; a single case has
        // none at all, nor has a variance too large to represent.
        m_stdDevs[i] = n > 1.0 && !MCMV::IsMissing(v) ? 0.0 : MCMV::Missing();
        m_stdErrors[i] = m_stdDevs[i];
    }
    return {};
}

bool BSN1SampleNormal::isStop() {
    if (m_status.IsError()) return true;
    if (m_cancelInfo.WillCancel()) {
        m_status = MCStatus(410016, false);
        return true;
    }
    return false;
}

void BSN1SampleNormal::createFactor() {
    if (!m_factor)
        m_factor = std::make_unique<BSN1SampleNormalFactor>(m_settings, m_varList, m_stats, m_stdErrors, m_warnings);
}

void BSN1SampleNormal::createInference() {
    if (!m_inference)
        m_inference = std::make_unique<BSN1SampleNormalInference>(m_settings, m_warnings, m_means, m_stdDevs, m_ns);
}

MCStatus BSN1SampleNormal::GenerateOutput() {
    if (m_factor) {
        m_factors = m_factor->getFactor();
        m_logFactors = m_factor->getLogFactor();
        m_tValues = m_factor->getTtest();
        m_sigs = m_factor->getSig();
    }
    if (m_inference) m_posterior = m_inference->GetResults();
    if (!m_outputStats) m_outputStats = std::make_unique<BSN1SampleNormOutputStats>(m_settings, *this);
    return {};
}

void BSN1SampleNormal::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleNormal display start");
    BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
    DisplayIV("Test Variables", m_settings.GetCovariates());
    DisplayI("Frequency Weight", m_settings.GetFrequencyWeightVar());
    DisplayB("Model Built", m_modelBuilt);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    for (const auto& s : m_stats) s.Display(os);
    DisplayResults("Means");
    if (m_factor) m_factor->Display(os);
    if (m_inference) m_inference->Display(os);
    if (m_outputStats) m_outputStats->Display(os);
    DisplayText(0, "End of display BSN1SampleNormal object");
}

} // namespace MCBSN_850
