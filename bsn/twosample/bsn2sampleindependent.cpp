#include "bsn/twosample/bsn2sampleindependent.h"

#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/twosample/bsn2sampleindoutputstats.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSN2SampleIndependent::BSN2SampleIndependent(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSNAlgorithm(settings, varList), m_first(m_settings.GetCovariates()), m_second(m_settings.GetCovariates()) {}

BSN2SampleIndependent::~BSN2SampleIndependent() = default;

bool BSN2SampleIndependent::IsCancel() {
    if (!m_cancelInfo.WillCancel()) return false;
    m_status = MCStatus(1, false);
    return true;
}

MCStatus BSN2SampleIndependent::ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter) {
    const int groupVar = m_settings.GetGroupVar();
    if (groupVar < 0) return MCStatus(410040, false);
    const std::vector<int>& testVars = m_settings.GetCovariates();
    if (testVars.empty()) return MCStatus(410039, false);
    m_first = BSN2SampleIndBasicStats(testVars);
    m_second = BSN2SampleIndBasicStats(testVars);

    const int freqVar = m_settings.GetFrequencyWeightVar();
    const bool caseWeights = m_settings.GetRegrWeightVar() >= 0;
    const bool weighted = freqVar >= 0 || caseWeights;
    // The frame's pass hands over the frequency already rounded half up
    // (1 without a frequency field) and drops the cases where it is below
    // 1. The case weight comes from the frequency field as well; without
    // one it reads as missing and the case is dropped.
    const MCStatus pass = RunDataPass(
        iter,
        [&](const MCCommon_850::Record& record, double frequency) {
            const double g = record.GetValue(groupVar);
            BSN2SampleIndBasicStats* stats = g == 0.0 ? &m_first : g == 1.0 ? &m_second : nullptr;
            if (stats == nullptr) return;
            if (!weighted) {
                stats->Update(record);
                return;
            }
            stats->Update(record, frequency, caseWeights ? record.GetValue(freqVar) : 1.0);
        },
        FinalReport::IfPending);
    if (pass.IsError()) return pass;

    const std::vector<double> n0 = m_first.GetNWeightedCases(), n1 = m_second.GetNWeightedCases();
    for (std::size_t i = 0; i < n0.size(); ++i)
        if (n0[i] + n1[i] <= 2.0) return MCStatus(410030, true);
    return {};
}

MCStatus BSN2SampleIndependent::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    m_bayesFactor.reset();
    m_posterior.reset();
    if (!TakeStageStatus(ComputeBasicStats(iter)) || IsCancel()) return FinishBuild();

    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    if (type == BSNConst::BayesFactor || type == BSNConst::Both)
        m_bayesFactor = BSN2SampleIndBayesFactor::CreateBayesFactor(m_settings, m_varList, m_warnings);
    if (type == BSNConst::Posterior || type == BSNConst::Both) {
        if (!TakeStageStatus(
                BSN2SampleIndPosterior::CreatePosterior(m_settings, m_varList, m_cancelInfo, &m_posterior)))
            return FinishBuild();
    }

    if (m_bayesFactor) {
        if (IsCancel()) return FinishBuild();
        if (!TakeStageStatus(m_bayesFactor->Compute(m_first, m_second, m_warnings))) return FinishBuild();
    }
    if (m_posterior) {
        if (IsCancel()) return FinishBuild();
        if (!TakeStageStatus(m_posterior->Compute(iter, m_first, m_second, m_warnings))) return FinishBuild();
    }
    if (IsCancel()) return FinishBuild();
    m_outputStats = std::make_unique<BSN2SampleIndOutputStats>(m_settings, *this);
    return FinishBuild();
}

void BSN2SampleIndependent::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleIndependent display start");
    BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
    DisplayIV("Test Variables", m_settings.GetCovariates());
    DisplayI("Group Variable", m_settings.GetGroupVar());
    DisplayI("Frequency Weight", m_settings.GetFrequencyWeightVar());
    DisplayI("Regression Weight", m_settings.GetRegrWeightVar());
    DisplayB("Model Built", m_modelBuilt);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayText(0, "First group");
    m_first.Display(os);
    DisplayText(0, "Second group");
    m_second.Display(os);
    if (m_bayesFactor) m_bayesFactor->Display(os);
    if (m_posterior) m_posterior->Display(os);
    if (m_outputStats) m_outputStats->Display(os);
    DisplayText(0, "End of display BSN2SampleIndependent object");
}

} // namespace MCBSN_850
