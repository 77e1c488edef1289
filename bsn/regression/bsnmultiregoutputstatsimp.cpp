#include "bsn/regression/bsnmultiregoutputstatsimp.h"

#include <cmath>
#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

namespace {

std::string parameterLabel(const MCMath_850::MCFastDesignMatrix& design, const MCXML_850::MCVarList& vars,
                           int param) {
    if (design.HasIntercept() && param == 0) return "(Intercept)";
    for (const auto& e : design.GetEffects()) {
        const int count = e.IsCovariate() ? 1 : e.nCategories;
        if (param < e.firstParameter || param >= e.firstParameter + count) continue;
        const std::string name = vars.IsValidIndex(e.variable) ? vars.Get(e.variable).GetName()
                                                               : "#" + std::to_string(e.variable);
        if (e.IsCovariate()) return name;
        const int code = param - e.firstParameter;
        const auto& labels = vars.IsValidIndex(e.variable) ? vars.Get(e.variable).GetValueLabels()
                                                           : std::vector<std::string>();
        return name + "=" + (static_cast<std::size_t>(code) < labels.size() ? labels[static_cast<std::size_t>(code)]
                                                                             : std::to_string(code));
    }
    return "#" + std::to_string(param);
}

// One set of curves into the six vectors the result keeps, with no NaN or infinity.
void takeCurves(const BSNRegrCurves& c, std::vector<double>& likelihoodArgs, std::vector<double>& likelihood,
                std::vector<double>& priorArgs, std::vector<double>& prior, std::vector<double>& posteriorArgs,
                std::vector<double>& posteriorValues) {
    likelihoodArgs = MCMV::Sanitize(c.likelihoodArgs);
    likelihood = MCMV::Sanitize(c.likelihood);
    priorArgs = MCMV::Sanitize(c.priorArgs);
    prior = MCMV::Sanitize(c.prior);
    posteriorArgs = MCMV::Sanitize(c.posteriorArgs);
    posteriorValues = MCMV::Sanitize(c.posterior);
}

} // namespace

BSNMultiRegOutputStatsImp::BSNMultiRegOutputStatsImp(const BSNSettings& s, const BSNRegrFit& fit,
                                                     const BSNRegrPosterior* posterior,
                                                     const MCMath_850::MCFastDesignMatrix& d, bool isSparse,
                                                     const MCCommon_850::MCWarnings& warnings,
                                                     const MCXML_850::MCVarList& varList)
    : settings(s), anova(fit.anova), bayesFactor(MCMV::Sanitize(fit.bayesFactor)),
      logBayesFactor(MCMV::Sanitize(fit.logBayesFactor)), rSquared(MCMV::Sanitize(fit.rSquared)),
      rSquaredFull(MCMV::Sanitize(fit.rSquaredFull)), adjRSquared(MCMV::Sanitize(fit.adjRSquared)),
      sigma2(MCMV::Sanitize(fit.sigma2)), stdError(MCMV::Missing()), nCases(fit.totalW), fStat(MCMV::Missing()),
      df(MCMV::Missing()), df2(MCMV::Missing()), sig(MCMV::Missing()), design(d), sparse(isSparse),
      predVarianceScale(MCMV::Missing()), predIntervalScale(MCMV::Missing()), tQuantile(MCMV::Missing()) {
    anova.Sanitize();
    isLogBayesFactor = !MCMV::IsMissing(bayesFactor) && warnings.Contains(410041);
    if (!MCMV::IsMissing(sigma2) && sigma2 >= 0.0) stdError = std::sqrt(sigma2);
    design.ClearShifts();
    const int n = design.GetNParameters();
    regrParameters = MCCommon_850::MCMV::Sanitize(fit.coefficients);
    redundancy.assign(static_cast<std::size_t>(n), false);
    for (int i = 0; i < n; ++i) {
        redundancy[static_cast<std::size_t>(i)] = !fit.nonRedundant.IsMember(i);
        parameterLabels.push_back(parameterLabel(design, varList, i));
    }
    scoringCoefficients = regrParameters;
    if (posterior == nullptr) return;

    hasPosterior = true;
    for (const auto& e : posterior->GetCoeffEstimations()) coeffs.push_back(e.Sanitized());
    error = posterior->GetErrorEstimation().Sanitized();
    if (posterior->HasPrediction()) predicted = posterior->GetPredictedEstimation().Sanitized();
    fTests = posterior->GetFTestStats();
    fStat = MCMV::Sanitize(posterior->GetFStatistic());
    df = MCMV::Sanitize(posterior->GetFDF());
    df2 = MCMV::Sanitize(posterior->GetFDF2());
    sig = MCMV::Sanitize(posterior->GetSig());

    plotParameters = posterior->GetPlotParameters();
    for (const auto& c : posterior->GetParamCurves())
        takeCurves(c, argsLikelihoodParam.emplace_back(), likelihoodParam.emplace_back(), argsPriorParam.emplace_back(),
                   priorParam.emplace_back(), argsPosteriorParam.emplace_back(), posteriorParam.emplace_back());
    takeCurves(posterior->GetErrorVarCurves(), argsLikelihoodError, likelihoodError, argsPriorError, priorError,
               argsPosteriorError, posteriorError);
    takeCurves(posterior->GetPredictedCurves(), argsLikelihoodPred, likelihoodPred, argsPriorPred, priorPred,
               argsPosteriorPred, posteriorPred);

    scoringCoefficients = MCCommon_850::MCMV::Sanitize(posterior->GetPosteriorCoefficients());
    covFactor = posterior->GetCovarianceFactor();
    predVarianceScale = MCMV::Sanitize(posterior->GetPredVarianceScale());
    predIntervalScale = MCMV::Sanitize(posterior->GetPredIntervalScale());
    tQuantile = MCMV::Sanitize(posterior->GetTQuantile());
}

void BSNMultiRegOutputStatsImp::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNMultiRegOutputStats display start");
    anova.Display(os);
    DisplayD("Bayes factor", bayesFactor);
    DisplayD("Log Bayes factor", logBayesFactor);
    DisplayB("Is log Bayes factor", isLogBayesFactor);
    DisplayD("R squared", rSquared);
    DisplayD("Full model R squared", rSquaredFull);
    DisplayD("Adjusted R squared", adjRSquared);
    DisplayD("Sigma squared", sigma2);
    DisplayD("Std. error", stdError);
    DisplayDV("Regression parameters", regrParameters);
    DisplayBV("Redundancy", redundancy);
    for (const auto& c : coeffs) c.Display(os);
    DisplayText(0, "Error variance");
    error.Display(os);
    DisplayText(0, "Predicted value");
    predicted.Display(os);
    for (const auto& t : fTests) t.Display(os);
    DisplayD("F", fStat);
    DisplayD("DF", df);
    DisplayD("DF2", df2);
    DisplayD("Sig", sig);
    DisplayIV("Plotted parameters", plotParameters);
    DisplayDVV("Posterior parameter plots", posteriorParam);
    DisplayDV("Posterior error variance plot", posteriorError);
    DisplayDV("Posterior predicted plot", posteriorPred);
    DisplayB("Sparse", sparse);
    DisplayDV("Scoring coefficients", scoringCoefficients);
    DisplayD("Prediction variance scale", predVarianceScale);
    DisplayD("Prediction interval scale", predIntervalScale);
    DisplayD("t quantile", tQuantile);
    DisplayText(0, "End of display BSNMultiRegOutputStats object");
}

} // namespace MCBSN_850
