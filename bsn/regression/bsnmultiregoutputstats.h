#pragma once
// BSNMultiRegOutputStats: the result of a regression or a one-way ANOVA:
// the least-squares fit with its ANOVA table and R squared, the Bayes
// factor, the posterior summaries of the coefficients, of sigma^2 and of a
// prediction, the F tests, and the plot curves. It also keeps what scoring a
// new record needs: the design, the coefficient vector, the posterior
// covariance factor, the two prediction scales and the t quantile.
//
// The Bayes factor weighs the model against the intercept-only model (null
// comparison) or against the full model (full comparison): in both, values
// above 1 favour the model.
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"
#include "bsn/regression/bayesestimation.h"
#include "platform/matrix/mcfastdesignmatrix.h"
#include "platform/common/mcstatus.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/pmml/mcregsettings.h"
#include "platform/records/record.h"
#include "platform/stats/mcreganova.h"
#include "platform/stats/mcteststats.h"

namespace MCBSN_850 {

class BSNMultipleRegr;
class BSNAnova;
class BSNMultiRegOutputStatsImp;

class BSNMultiRegOutputStats : public BSNOutputStats {
public:
    using Curves = std::vector<std::vector<double>>;

    BSNMultiRegOutputStats(const BSNSettings& settings, BSNMultipleRegr& procedure);
    BSNMultiRegOutputStats(const BSNSettings& settings, BSNAnova& procedure);
    ~BSNMultiRegOutputStats() override;
    BSNMultiRegOutputStats(const BSNMultiRegOutputStats&) = delete;
    BSNMultiRegOutputStats& operator=(const BSNMultiRegOutputStats&) = delete;

    BSNConst::ModelTypes GetModelType() const override;
    // 6 (regression) for model type 4, otherwise 7 (ANOVA).
    BSNConst::OutputTypes GetOutputType() const override;
    void Display(std::ostream& os) const override;

    const BSNSettings& GetSettings() const;
    const MCMath_850::MCRegANOVA& GetAnova() const;
    double GetBayesFactor() const;
    // ln of the Bayes factor computed on the log scale (missing without a factor).
    double GetLogBayesFactor() const;
    // The stored factor is ln(BF) (warning 410041 was raised); false without a factor.
    bool IsLogBayesFactor() const;
    const std::vector<BayesEstimation>& GetVarCoeffBayesEstimations() const;
    const BayesEstimation& GetErrorBayesEstimation() const;
    const BayesEstimation& GetPredictedBayesEstimation() const;
    double GetRSquared() const;
    double GetRSquaredFull() const;
    double GetAdjRSquared() const;
    double GetSigmaSquared() const;
    // The square root of sigma^2: the standard error of the estimate.
    double GetStdError() const;
    // Least-squares estimates of the design parameters (0 where redundant).
    const std::vector<double>& GetRegrParameters() const;
    // Per design parameter: true when redundant.
    const std::vector<bool>& GetRedundancy() const;
    const std::vector<MCMath_850::MCTestStats>& GetFTestResults() const;
    // The labels of the F tests, parallel to GetFTestResults().
    std::vector<std::string> GetFTestLabels() const;
    // The posterior's overall F, its numerator degrees of freedom (p + 1)
    // and significance; GetDF2() the denominator degrees of freedom.
    double GetFStat() const;
    double GetDF() const;
    double GetDF2() const;
    double GetSig() const;
    void SetFStats(double F, double df, double sig);

    // Design parameters: names ("(Intercept)", "factor=label", covariate).
    const std::vector<std::string>& GetParameterLabels() const;
    // Cases (sum of frequency weights).
    double GetNCases() const;
    bool HasPosterior() const;

    // Plots. One entry per plotted coefficient (GetPlotParameters gives the
    // design parameter of each), then sigma^2 and the prediction. Likelihood
    // and posterior curves are scaled to peak 1; priors are densities, and a
    // flat prior is two arguments with two values 1.0.
    const std::vector<int>& GetPlotParameters() const;
    const Curves& GetLikelihoodParamPlots() const;
    const Curves& GetParamsArgumentsPlots4Likelihoods() const;
    const Curves& GetParamsArgumentsPlots4Prior() const;
    const Curves& GetParamsArgumentsPlots4Posterior() const;
    const Curves& GetPriorParamPlots() const;
    const Curves& GetPosteriorParamPlots() const;
    const std::vector<double>& GetLikelihoodErrorVarPlot() const;
    const std::vector<double>& GetArgumentErrorVarPlot4Likelihoods() const;
    const std::vector<double>& GetArgumentErrorVarPlot4Prior() const;
    const std::vector<double>& GetArgumentErrorVarPlot4Posterior() const;
    const std::vector<double>& GetPriorErrorVarPlot() const;
    const std::vector<double>& GetPosteriorErrorVarPlot() const;
    const std::vector<double>& GetArgumentPredictedPlot4Likelihoods() const;
    const std::vector<double>& GetArgumentPredictedPlot4Prior() const;
    const std::vector<double>& GetArgumentPredictedPlot4Posterior() const;
    const std::vector<double>& GetLikelihoodPredictedPlot() const;
    const std::vector<double>& GetPriorPredictedPlot() const;
    const std::vector<double>& GetPosteriorPredictedPlot() const;

    // For scoring: the model's design (variables' own scale), whether rows
    // are expanded sparse, the coefficient vector b (the posterior mean, or
    // the least-squares estimates without a posterior), the covariance
    // factor S (Sigma* for the conjugate prior, (X'X)^- for the reference
    // prior; empty without a posterior), the variance and interval scales of
    // a prediction and the t quantile of its interval (each missing when not
    // defined). For a row x: yhat = x'b, h = x'Sx + 1, variance = h *
    // variance scale, limits yhat -+ t sqrt(h * interval scale).
    const MCMath_850::MCFastDesignMatrix& GetDesign() const;
    // Scores one record (values by variable index, as in the fit): mode =
    // mean = x'b always; with a posterior, and when the settings ask for
    // variances in scoring, also the variance and the limits of the
    // posterior predictive interval. A record that does not expand (a
    // missing predictor, a value that is not a category) leaves every field
    // missing. The status is always success. Safe to call from several
    // threads at once.
    MCCommon_850::MCStatus Score(const MCCommon_850::Record& record, BayesEstimation& estimation) const;
    // Describes the model (design, weights, coefficients b, redundancy and
    // parameter labels) for the PMML regression exporter.
    void FillRegSettings(MCMath_850::MCRegSettings& regSettings) const;
    // The posterior covariance of the coefficients, S times the variance
    // scale; false (out unchanged) without a posterior or when the variance
    // is not defined (2 or fewer degrees of freedom).
    bool GetPosteriorCovariance(MCMath_850::MCSymMatrix& covariance) const;
    bool IsSparse() const;
    const std::vector<double>& GetScoringCoefficients() const;
    const MCMath_850::MCSymMatrix& GetPosteriorCovFactor() const;
    double GetPredVarianceScale() const;
    double GetPredIntervalScale() const;
    double GetTQuantile() const;

private:
    std::unique_ptr<BSNMultiRegOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
