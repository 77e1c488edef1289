#include "bsn/regression/bsnmultiregoutputstats.h"

#include "bsn/regression/bsnanova.h"
#include "bsn/regression/bsnmultipleregr.h"
#include "bsn/regression/bsnmultiregoutputstatsimp.h"

#include <cmath>
#include <vector>

#include "platform/common/mcmv.h"

namespace MCBSN_850 {

BSNMultiRegOutputStats::BSNMultiRegOutputStats(const BSNSettings& settings, BSNMultipleRegr& procedure)
    : m_imp(std::make_unique<BSNMultiRegOutputStatsImp>(settings, procedure.GetFit(), procedure.GetRegrPosterior(),
                                                        procedure.GetDesign(), procedure.IsSparse(),
                                                        procedure.GetWarningMessages(), procedure.GetVarList())) {}

BSNMultiRegOutputStats::BSNMultiRegOutputStats(const BSNSettings& settings, BSNAnova& procedure)
    : m_imp(std::make_unique<BSNMultiRegOutputStatsImp>(settings, procedure.GetFit(), procedure.GetRegrPosterior(),
                                                        procedure.GetDesign(), procedure.IsSparse(),
                                                        procedure.GetWarningMessages(), procedure.GetVarList())) {}

BSNMultiRegOutputStats::~BSNMultiRegOutputStats() = default;

BSNConst::ModelTypes BSNMultiRegOutputStats::GetModelType() const { return m_imp->settings.GetModelType(); }

BSNConst::OutputTypes BSNMultiRegOutputStats::GetOutputType() const {
    return m_imp->settings.GetModelType() == BSNConst::Regression ? BSNConst::OutputRegression : BSNConst::OutputAnova;
}

void BSNMultiRegOutputStats::Display(std::ostream& os) const { m_imp->Display(os); }

void BSNMultiRegOutputStats::SetFStats(double F, double df, double sig) {
    m_imp->fStat = F;
    m_imp->df = df;
    m_imp->sig = sig;
}

std::vector<std::string> BSNMultiRegOutputStats::GetFTestLabels() const {
    std::vector<std::string> labels;
    for (const auto& t : m_imp->settings.GetFTests()) labels.push_back(t.GetLabel());
    return labels;
}

const BSNSettings& BSNMultiRegOutputStats::GetSettings() const { return m_imp->settings; }
const MCMath_850::MCRegANOVA& BSNMultiRegOutputStats::GetAnova() const { return m_imp->anova; }
double BSNMultiRegOutputStats::GetBayesFactor() const { return m_imp->bayesFactor; }
double BSNMultiRegOutputStats::GetLogBayesFactor() const { return m_imp->logBayesFactor; }
bool BSNMultiRegOutputStats::IsLogBayesFactor() const { return m_imp->isLogBayesFactor; }
const std::vector<BayesEstimation>& BSNMultiRegOutputStats::GetVarCoeffBayesEstimations() const { return m_imp->coeffs; }
const BayesEstimation& BSNMultiRegOutputStats::GetErrorBayesEstimation() const { return m_imp->error; }
const BayesEstimation& BSNMultiRegOutputStats::GetPredictedBayesEstimation() const { return m_imp->predicted; }
double BSNMultiRegOutputStats::GetRSquared() const { return m_imp->rSquared; }
double BSNMultiRegOutputStats::GetRSquaredFull() const { return m_imp->rSquaredFull; }
double BSNMultiRegOutputStats::GetAdjRSquared() const { return m_imp->adjRSquared; }
double BSNMultiRegOutputStats::GetSigmaSquared() const { return m_imp->sigma2; }
double BSNMultiRegOutputStats::GetStdError() const { return m_imp->stdError; }
const std::vector<double>& BSNMultiRegOutputStats::GetRegrParameters() const { return m_imp->regrParameters; }
const std::vector<bool>& BSNMultiRegOutputStats::GetRedundancy() const { return m_imp->redundancy; }
const std::vector<MCMath_850::MCTestStats>& BSNMultiRegOutputStats::GetFTestResults() const { return m_imp->fTests; }
double BSNMultiRegOutputStats::GetFStat() const { return m_imp->fStat; }
double BSNMultiRegOutputStats::GetDF() const { return m_imp->df; }
double BSNMultiRegOutputStats::GetDF2() const { return m_imp->df2; }
double BSNMultiRegOutputStats::GetSig() const { return m_imp->sig; }
const std::vector<std::string>& BSNMultiRegOutputStats::GetParameterLabels() const { return m_imp->parameterLabels; }
double BSNMultiRegOutputStats::GetNCases() const { return m_imp->nCases; }
bool BSNMultiRegOutputStats::HasPosterior() const { return m_imp->hasPosterior; }
const std::vector<int>& BSNMultiRegOutputStats::GetPlotParameters() const { return m_imp->plotParameters; }
const BSNMultiRegOutputStats::Curves& BSNMultiRegOutputStats::GetLikelihoodParamPlots() const { return m_imp->likelihoodParam; }
const BSNMultiRegOutputStats::Curves& BSNMultiRegOutputStats::GetParamsArgumentsPlots4Likelihoods() const { return m_imp->argsLikelihoodParam; }
const BSNMultiRegOutputStats::Curves& BSNMultiRegOutputStats::GetParamsArgumentsPlots4Prior() const { return m_imp->argsPriorParam; }
const BSNMultiRegOutputStats::Curves& BSNMultiRegOutputStats::GetParamsArgumentsPlots4Posterior() const { return m_imp->argsPosteriorParam; }
const BSNMultiRegOutputStats::Curves& BSNMultiRegOutputStats::GetPriorParamPlots() const { return m_imp->priorParam; }
const BSNMultiRegOutputStats::Curves& BSNMultiRegOutputStats::GetPosteriorParamPlots() const { return m_imp->posteriorParam; }
const std::vector<double>& BSNMultiRegOutputStats::GetLikelihoodErrorVarPlot() const { return m_imp->likelihoodError; }
const std::vector<double>& BSNMultiRegOutputStats::GetArgumentErrorVarPlot4Likelihoods() const { return m_imp->argsLikelihoodError; }
const std::vector<double>& BSNMultiRegOutputStats::GetArgumentErrorVarPlot4Prior() const { return m_imp->argsPriorError; }
const std::vector<double>& BSNMultiRegOutputStats::GetArgumentErrorVarPlot4Posterior() const { return m_imp->argsPosteriorError; }
const std::vector<double>& BSNMultiRegOutputStats::GetPriorErrorVarPlot() const { return m_imp->priorError; }
const std::vector<double>& BSNMultiRegOutputStats::GetPosteriorErrorVarPlot() const { return m_imp->posteriorError; }
const std::vector<double>& BSNMultiRegOutputStats::GetArgumentPredictedPlot4Likelihoods() const { return m_imp->argsLikelihoodPred; }
const std::vector<double>& BSNMultiRegOutputStats::GetArgumentPredictedPlot4Prior() const { return m_imp->argsPriorPred; }
const std::vector<double>& BSNMultiRegOutputStats::GetArgumentPredictedPlot4Posterior() const { return m_imp->argsPosteriorPred; }
const std::vector<double>& BSNMultiRegOutputStats::GetLikelihoodPredictedPlot() const { return m_imp->likelihoodPred; }
const std::vector<double>& BSNMultiRegOutputStats::GetPriorPredictedPlot() const { return m_imp->priorPred; }
const std::vector<double>& BSNMultiRegOutputStats::GetPosteriorPredictedPlot() const { return m_imp->posteriorPred; }
const MCMath_850::MCFastDesignMatrix& BSNMultiRegOutputStats::GetDesign() const { return m_imp->design; }
bool BSNMultiRegOutputStats::IsSparse() const { return m_imp->sparse; }
const std::vector<double>& BSNMultiRegOutputStats::GetScoringCoefficients() const { return m_imp->scoringCoefficients; }
const MCMath_850::MCSymMatrix& BSNMultiRegOutputStats::GetPosteriorCovFactor() const { return m_imp->covFactor; }
double BSNMultiRegOutputStats::GetPredVarianceScale() const { return m_imp->predVarianceScale; }
double BSNMultiRegOutputStats::GetPredIntervalScale() const { return m_imp->predIntervalScale; }
double BSNMultiRegOutputStats::GetTQuantile() const { return m_imp->tQuantile; }

namespace {

using MCCommon_850::MCMV;

// Per-thread scratch rows, so that scoring allocates nothing per record.
struct ScoreScratch {
    std::vector<int> indices;
    std::vector<double> values;
    std::vector<double> dense;
};

ScoreScratch& scratch() {
    thread_local ScoreScratch s;
    return s;
}

} // namespace

MCCommon_850::MCStatus BSNMultiRegOutputStats::Score(const MCCommon_850::Record& record,
                                                     BayesEstimation& estimation) const {
    estimation = BayesEstimation();
    const BSNMultiRegOutputStatsImp& imp = *m_imp;
    const MCMath_850::MCFastDesignMatrix& design = imp.design;
    const int n = design.GetNParameters();
    const std::vector<double>& b = imp.scoringCoefficients;
    if (b.size() < static_cast<std::size_t>(n)) return {};
    ScoreScratch& s = scratch();

    // The non-zero entries of the design row x, as (index, value) pairs.
    int count = 0;
    if (imp.sparse) {
        const auto size = static_cast<std::size_t>(design.GetSparseSize());
        if (s.indices.size() < size) {
            s.indices.resize(size);
            s.values.resize(size);
        }
        count = design.ExpandRowX(record, s.indices.data(), s.values.data());
        if (count < 0) return {};
    } else {
        s.dense.resize(static_cast<std::size_t>(n));
        if (!design.ExpandRowX(record, s.dense.data())) return {};
        if (s.indices.size() < static_cast<std::size_t>(n)) {
            s.indices.resize(static_cast<std::size_t>(n));
            s.values.resize(static_cast<std::size_t>(n));
        }
        for (int i = 0; i < n; ++i) {
            const double x = s.dense[static_cast<std::size_t>(i)];
            if (x == 0.0) continue;
            s.indices[static_cast<std::size_t>(count)] = i;
            s.values[static_cast<std::size_t>(count++)] = x;
        }
    }
    const int* idx = s.indices.data();
    const double* x = s.values.data();

    double yhat = 0.0;
    for (int k = 0; k < count; ++k) yhat += x[k] * b[static_cast<std::size_t>(idx[k])];
    yhat = MCMV::Sanitize(yhat);
    estimation.SetMode(yhat);
    estimation.SetMean(yhat);

    const MCMath_850::MCSymMatrix& S = imp.covFactor;
    if (!imp.hasPosterior || !imp.settings.IsComputeVarianceInScoring() || S.Size() != n || MCMV::IsMissing(yhat))
        return {};
    // h = x'Sx + 1 over the non-zero entries (S is symmetric).
    double q = 0.0;
    for (int a = 0; a < count; ++a) {
        double inner = 0.5 * S.Get(idx[a], idx[a]) * x[a];
        for (int c = 0; c < a; ++c) inner += S.Get(idx[a], idx[c]) * x[c];
        q += 2.0 * x[a] * inner;
    }
    const double h = q + 1.0;
    if (!MCMV::IsMissing(imp.predVarianceScale)) estimation.SetVariance(MCMV::Sanitize(h * imp.predVarianceScale));
    if (!MCMV::IsMissing(imp.tQuantile) && !MCMV::IsMissing(imp.predIntervalScale)) {
        const double half = MCMV::Sanitize(imp.tQuantile * std::sqrt(h * imp.predIntervalScale));
        if (!MCMV::IsMissing(half)) {
            estimation.SetLower(MCMV::Sanitize(yhat - half));
            estimation.SetUpper(MCMV::Sanitize(yhat + half));
        }
    }
    return {};
}

void BSNMultiRegOutputStats::FillRegSettings(MCMath_850::MCRegSettings& regSettings) const {
    regSettings.SetDesign(m_imp->design);
    regSettings.SetFrequencyWeightVar(m_imp->settings.GetFrequencyWeightVar());
    regSettings.SetRegrWeightVar(m_imp->settings.GetRegrWeightVar());
    regSettings.SetCoefficients(m_imp->scoringCoefficients);
    regSettings.SetRedundancy(m_imp->redundancy);
    regSettings.SetParameterLabels(m_imp->parameterLabels);
}

bool BSNMultiRegOutputStats::GetPosteriorCovariance(MCMath_850::MCSymMatrix& covariance) const {
    const BSNMultiRegOutputStatsImp& imp = *m_imp;
    if (!imp.hasPosterior || MCMV::IsMissing(imp.predVarianceScale) ||
        imp.covFactor.Size() != imp.design.GetNParameters())
        return false;
    covariance = imp.covFactor;
    covariance.Dense() *= imp.predVarianceScale;
    return true;
}

} // namespace MCBSN_850
