#pragma once
// BSNNormalMeanOutputStats: what the one-sample normal result and the
// related-samples result have in common. Both carry the statistics of a
// normal-mean analysis, one entry per test variable or per pair (for pairs
// computed on the differences): classical statistics, t test and Bayes
// factor, posterior summaries, and the likelihood, prior and posterior
// curves. No entry is ever NaN or infinite: what could not be computed
// holds the system-missing value. The Bayes-factor, t and significance
// vectors are empty when no factors were asked for, the posterior vectors
// and curves when no posterior was. The concrete results add their model
// and output types and their dumps.
#include <memory>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSNNormalMeanResults;
class BSN1SampleNormOutputStatsImp;

class BSNNormalMeanOutputStats : public BSNOutputStats {
public:
    using Curves = std::vector<std::vector<double>>;

    ~BSNNormalMeanOutputStats() override;

    const BSNSettings& GetSettings() const;
    const std::vector<int>& GetVarIndices() const;
    // The factors themselves (0 where one underflows) and their natural
    // logs, computed on the log scale, so finite where the factor is 0.
    const std::vector<double>& GetBayesFactors() const;
    const std::vector<double>& GetLogBayesFactors() const;
    const std::vector<double>& GetNs() const;
    const std::vector<double>& GetStdDevs() const;
    const std::vector<double>& GetEMs() const;
    const std::vector<double>& GetDFValues() const;
    const std::vector<double>& GetSigs() const;
    const std::vector<double>& GetTValues() const;
    const std::vector<double>& GetModeValues() const;
    const std::vector<double>& GetPostMeanValues() const;
    const std::vector<double>& GetVarianceValues() const;
    const std::vector<double>& GetLowerLimits() const;
    const std::vector<double>& GetMeanValues() const;
    const std::vector<double>& GetUpperLimits() const;
    const Curves& GetPlotArguments4Likelihoods() const;
    const Curves& GetPlotArguments4Prior() const;
    const Curves& GetPlotArguments4Posterior() const;
    const Curves& GetPlotLikelihoods() const;
    const Curves& GetPlotPosterior() const;
    const Curves& GetPlotPrior() const;

protected:
    // An empty result whose variable indices are the settings' covariates.
    explicit BSNNormalMeanOutputStats(const BSNSettings& settings);
    // Copies every result of a finished procedure; the variable indices are
    // the settings' covariates.
    BSNNormalMeanOutputStats(const BSNSettings& settings, const BSNNormalMeanResults& procedure);
    BSNNormalMeanOutputStats(const BSNNormalMeanOutputStats& other);
    BSNNormalMeanOutputStats& operator=(const BSNNormalMeanOutputStats& other);

    // Replaces the settings, the variable indices and the thirteen
    // per-variable vectors (not the curves).
    void SetOutputValues(const BSNSettings& settings, const std::vector<int>& varIndices,
                         const std::vector<double>& bayesFactors, const std::vector<double>& ns,
                         const std::vector<double>& stdDevs, const std::vector<double>& stdErrors,
                         const std::vector<double>& dfs, const std::vector<double>& sigs,
                         const std::vector<double>& tValues, const std::vector<double>& modes,
                         const std::vector<double>& postMeans, const std::vector<double>& variances,
                         const std::vector<double>& lowerLimits, const std::vector<double>& upperLimits,
                         const std::vector<double>& means);
    // Replaces the log Bayes factors (SetOutputValues leaves them alone).
    void SetLogBayesFactors(const std::vector<double>& logBayesFactors);
    // Replaces the six curves.
    void SetPlotValues(const Curves& argsLikelihood, const Curves& argsPrior, const Curves& argsPosterior,
                       const Curves& likelihoods, const Curves& posteriors, const Curves& priors);
    // The labelled lines of the variable indices, vectors and curves, written
    // to the current dump stream as part of the concrete result's Display.
    void DisplayFields() const;

private:
    // The one-sample normal result's data, which the related-samples result
    // carries in the same form.
    std::unique_ptr<BSN1SampleNormOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
