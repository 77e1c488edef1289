#include "bsn/twosample/bsn2sampleindoutputstats.h"

#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/twosample/bsn2sampleindependent.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

class BSN2SampleIndOutputStatsImp {
public:
    using Curves = BSN2SampleIndOutputStats::Curves;
    explicit BSN2SampleIndOutputStatsImp(const BSNSettings& s) : settings(s) {}

    BSNSettings settings;
    std::vector<int> groupStatsVarIndices;
    std::vector<int> group1Ns;
    std::vector<double> group1Means;
    std::vector<double> group1StdDevs;
    std::vector<double> group1EMs;
    std::vector<int> group2Ns;
    std::vector<double> group2Means;
    std::vector<double> group2StdDevs;
    std::vector<double> group2EMs;
    std::vector<int> tTestVarIndices;
    std::vector<double> meanDiffs;
    std::vector<double> pooledStdErrors;
    std::vector<double> bayesFactors;
    std::vector<double> logBayesFactors;
    std::vector<double> tValues;
    std::vector<double> dfs;
    std::vector<double> sigs;
    std::vector<double> welchTValues;
    std::vector<double> welchDfs;
    std::vector<double> welchSigs;
    std::vector<double> welchStdErrors;
    std::vector<int> postVarIndices;
    std::vector<double> modes;
    std::vector<double> postMeans;
    std::vector<double> variances;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    Curves xArgs;
    Curves yArgs;
    Curves xLikelihoods;
    Curves yLikelihoods;
    Curves xPriorArgs;
    Curves yPriorArgs;
    Curves xPrior;
    Curves yPrior;
    Curves postArgs;
    Curves posterior;
};

BSN2SampleIndOutputStats::BSN2SampleIndOutputStats(const BSNSettings& settings, const BSN2SampleIndependent& procedure)
    : m_imp(std::make_unique<BSN2SampleIndOutputStatsImp>(settings)) {
    SetOutputValues(settings, procedure);
}

BSN2SampleIndOutputStats::~BSN2SampleIndOutputStats() = default;

void BSN2SampleIndOutputStats::SetOutputValues(const BSNSettings& settings, const BSN2SampleIndependent& procedure) {
    BSN2SampleIndOutputStatsImp fresh(settings);
    BSN2SampleIndOutputStatsImp& d = fresh;
    const std::vector<int>& vars = settings.GetCovariates();
    const BSN2SampleIndBasicStats& g1 = procedure.GetFirstGroupStats();
    const BSN2SampleIndBasicStats& g2 = procedure.GetSecondGroupStats();
    d.groupStatsVarIndices = vars;
    d.group1Ns = g1.GetNWeightedIntCases();
    d.group1Means = MCCommon_850::MCMV::Sanitize(g1.GetMeans());
    d.group1StdDevs = MCCommon_850::MCMV::Sanitize(g1.GetStdDevs());
    d.group1EMs = MCCommon_850::MCMV::Sanitize(g1.GetStdErrors());
    d.group2Ns = g2.GetNWeightedIntCases();
    d.group2Means = MCCommon_850::MCMV::Sanitize(g2.GetMeans());
    d.group2StdDevs = MCCommon_850::MCMV::Sanitize(g2.GetStdDevs());
    d.group2EMs = MCCommon_850::MCMV::Sanitize(g2.GetStdErrors());

    if (const BSN2SampleIndBayesFactor* bf = procedure.GetBayesFactor(); bf != nullptr) {
        d.tTestVarIndices = vars;
        d.meanDiffs = MCCommon_850::MCMV::Sanitize(bf->GetMeanDiffs());
        d.pooledStdErrors = MCCommon_850::MCMV::Sanitize(bf->GetPooledStdErrors());
        d.bayesFactors = MCCommon_850::MCMV::Sanitize(bf->GetBayesFactors());
        d.logBayesFactors = MCCommon_850::MCMV::Sanitize(bf->GetLogBayesFactors());
        d.tValues = MCCommon_850::MCMV::Sanitize(bf->GetPooledTs());
        d.dfs = MCCommon_850::MCMV::Sanitize(bf->GetDFs());
        d.sigs = MCCommon_850::MCMV::Sanitize(bf->GetPooledSigs());
        d.welchTValues = MCCommon_850::MCMV::Sanitize(bf->GetUnpooledTs());
        d.welchDfs = MCCommon_850::MCMV::Sanitize(bf->GetWelchDFs());
        d.welchSigs = MCCommon_850::MCMV::Sanitize(bf->GetUnpooledSigs());
        d.welchStdErrors = MCCommon_850::MCMV::Sanitize(bf->GetUnpooledStdErrors());
    }
    if (const BSN2SampleIndPosterior* p = procedure.GetPosterior(); p != nullptr) {
        d.postVarIndices = vars;
        d.modes = MCCommon_850::MCMV::Sanitize(p->GetModeValues());
        d.postMeans = MCCommon_850::MCMV::Sanitize(p->GetPostMeanValues());
        d.variances = MCCommon_850::MCMV::Sanitize(p->GetVarianceValues());
        d.lowerLimits = MCCommon_850::MCMV::Sanitize(p->GetLowerLimits());
        d.upperLimits = MCCommon_850::MCMV::Sanitize(p->GetUpperLimits());
        d.xArgs = MCCommon_850::MCMV::Sanitize(p->GetPlotXArguments());
        d.yArgs = MCCommon_850::MCMV::Sanitize(p->GetPlotYArguments());
        d.xLikelihoods = MCCommon_850::MCMV::Sanitize(p->GetPlotXLikelihoods());
        d.yLikelihoods = MCCommon_850::MCMV::Sanitize(p->GetPlotYLikelihoods());
        d.xPriorArgs = MCCommon_850::MCMV::Sanitize(p->GetPlotXPriorArguments());
        d.yPriorArgs = MCCommon_850::MCMV::Sanitize(p->GetPlotYPriorArguments());
        d.xPrior = MCCommon_850::MCMV::Sanitize(p->GetPlotXPrior());
        d.yPrior = MCCommon_850::MCMV::Sanitize(p->GetPlotYPrior());
        d.postArgs = MCCommon_850::MCMV::Sanitize(p->GetPlotArguments());
        d.posterior = MCCommon_850::MCMV::Sanitize(p->GetPlotPosterior());
    }
    *m_imp = std::move(fresh);
}

using Curves = BSN2SampleIndOutputStats::Curves;

const BSNSettings& BSN2SampleIndOutputStats::GetSettings() const { return m_imp->settings; }
const std::vector<int>& BSN2SampleIndOutputStats::GetGroupStatsVarIndices() const {
    return m_imp->groupStatsVarIndices;
}
const std::vector<int>& BSN2SampleIndOutputStats::GetGroup1StatsNs() const { return m_imp->group1Ns; }
const std::vector<double>& BSN2SampleIndOutputStats::GetGroup1MeanValues() const { return m_imp->group1Means; }
const std::vector<double>& BSN2SampleIndOutputStats::GetGroup1StdDevs() const { return m_imp->group1StdDevs; }
const std::vector<double>& BSN2SampleIndOutputStats::GetGroup1EMs() const { return m_imp->group1EMs; }
const std::vector<int>& BSN2SampleIndOutputStats::GetGroup2StatsNs() const { return m_imp->group2Ns; }
const std::vector<double>& BSN2SampleIndOutputStats::GetGroup2MeanValues() const { return m_imp->group2Means; }
const std::vector<double>& BSN2SampleIndOutputStats::GetGroup2StdDevs() const { return m_imp->group2StdDevs; }
const std::vector<double>& BSN2SampleIndOutputStats::GetGroup2EMs() const { return m_imp->group2EMs; }
const std::vector<int>& BSN2SampleIndOutputStats::GetTTestVarIndices() const { return m_imp->tTestVarIndices; }
const std::vector<double>& BSN2SampleIndOutputStats::GetMeanDiffValues() const { return m_imp->meanDiffs; }
const std::vector<double>& BSN2SampleIndOutputStats::GetPStdEDDevs() const { return m_imp->pooledStdErrors; }
const std::vector<double>& BSN2SampleIndOutputStats::GetBayesFactors() const { return m_imp->bayesFactors; }
const std::vector<double>& BSN2SampleIndOutputStats::GetLogBayesFactors() const { return m_imp->logBayesFactors; }
const std::vector<double>& BSN2SampleIndOutputStats::GetTValues() const { return m_imp->tValues; }
const std::vector<double>& BSN2SampleIndOutputStats::GetDFValues() const { return m_imp->dfs; }
const std::vector<double>& BSN2SampleIndOutputStats::GetSigs() const { return m_imp->sigs; }
const std::vector<double>& BSN2SampleIndOutputStats::GetWelchTValues() const { return m_imp->welchTValues; }
const std::vector<double>& BSN2SampleIndOutputStats::GetWelchDFValues() const { return m_imp->welchDfs; }
const std::vector<double>& BSN2SampleIndOutputStats::GetWelchSigs() const { return m_imp->welchSigs; }
const std::vector<double>& BSN2SampleIndOutputStats::GetWelchStdEDDevs() const { return m_imp->welchStdErrors; }
const std::vector<int>& BSN2SampleIndOutputStats::GetPostVarIndices() const { return m_imp->postVarIndices; }
const std::vector<double>& BSN2SampleIndOutputStats::GetModeValues() const { return m_imp->modes; }
const std::vector<double>& BSN2SampleIndOutputStats::GetPostMeanValues() const { return m_imp->postMeans; }
const std::vector<double>& BSN2SampleIndOutputStats::GetVarianceValues() const { return m_imp->variances; }
const std::vector<double>& BSN2SampleIndOutputStats::GetLowerLimits() const { return m_imp->lowerLimits; }
const std::vector<double>& BSN2SampleIndOutputStats::GetUpperLimits() const { return m_imp->upperLimits; }
const Curves& BSN2SampleIndOutputStats::GetPlotXArguments() const { return m_imp->xArgs; }
const Curves& BSN2SampleIndOutputStats::GetPlotYArguments() const { return m_imp->yArgs; }
const Curves& BSN2SampleIndOutputStats::GetPlotXLikelihoods() const { return m_imp->xLikelihoods; }
const Curves& BSN2SampleIndOutputStats::GetPlotYLikelihoods() const { return m_imp->yLikelihoods; }
const Curves& BSN2SampleIndOutputStats::GetPlotXPriorArguments() const { return m_imp->xPriorArgs; }
const Curves& BSN2SampleIndOutputStats::GetPlotYPriorArguments() const { return m_imp->yPriorArgs; }
const Curves& BSN2SampleIndOutputStats::GetPlotXPrior() const { return m_imp->xPrior; }
const Curves& BSN2SampleIndOutputStats::GetPlotYPrior() const { return m_imp->yPrior; }
const Curves& BSN2SampleIndOutputStats::GetPlotArguments() const { return m_imp->postArgs; }
const Curves& BSN2SampleIndOutputStats::GetPlotPosterior() const { return m_imp->posterior; }

void BSN2SampleIndOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    const BSN2SampleIndOutputStatsImp& d = *m_imp;
    DisplayText(0, "BSN2SampleIndOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    BSNComponentDisplay::DisplayC("Analysis Type", d.settings.GetAnalysType());
    DisplayIV("GroupStatsVarIndices", d.groupStatsVarIndices);
    DisplayIV("Group1StatsNs", d.group1Ns);
    DisplayDV("Group1MeanValues", d.group1Means);
    DisplayDV("Group1StdDevs", d.group1StdDevs);
    DisplayDV("Group1EMs", d.group1EMs);
    DisplayIV("Group2StatsNs", d.group2Ns);
    DisplayDV("Group2MeanValues", d.group2Means);
    DisplayDV("Group2StdDevs", d.group2StdDevs);
    DisplayDV("Group2EMs", d.group2EMs);
    DisplayIV("TTestVarIndices", d.tTestVarIndices);
    DisplayDV("MeanDiffValues", d.meanDiffs);
    DisplayDV("PStdEDDevs", d.pooledStdErrors);
    DisplayDV("BayesFactors", d.bayesFactors);
    DisplayDV("LogBayesFactors", d.logBayesFactors);
    DisplayDV("TValues", d.tValues);
    DisplayDV("DFValues", d.dfs);
    DisplayDV("Sigs", d.sigs);
    DisplayDV("WelchTValues", d.welchTValues);
    DisplayDV("WelchDFValues", d.welchDfs);
    DisplayDV("WelchSigs", d.welchSigs);
    DisplayDV("WelchStdEDDevs", d.welchStdErrors);
    DisplayIV("PostVarIndices", d.postVarIndices);
    DisplayDV("ModeValues", d.modes);
    DisplayDV("PostMeanValues", d.postMeans);
    DisplayDV("VarianceValues", d.variances);
    DisplayDV("LowerLimits", d.lowerLimits);
    DisplayDV("UpperLimits", d.upperLimits);
    DisplayDVV("PlotXArguments", d.xArgs);
    DisplayDVV("PlotYArguments", d.yArgs);
    DisplayDVV("PlotXLikelihoods", d.xLikelihoods);
    DisplayDVV("PlotYLikelihoods", d.yLikelihoods);
    DisplayDVV("PlotXPriorArguments", d.xPriorArgs);
    DisplayDVV("PlotYPriorArguments", d.yPriorArgs);
    DisplayDVV("PlotXPrior", d.xPrior);
    DisplayDVV("PlotYPrior", d.yPrior);
    DisplayDVV("PlotArguments", d.postArgs);
    DisplayDVV("PlotPosterior", d.posterior);
    DisplayText(0, "End of display BSN2SampleIndOutputStats object");
}

} // namespace MCBSN_850
