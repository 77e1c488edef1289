#pragma once
// BSNNormalMeanResults: the per-variable results of a normal-mean analysis,
// shared by the one-sample normal procedure (one entry per test variable)
// and the related-samples procedure (one entry per pair, computed on the
// difference): the classical statistics, the t test and Bayes factor, and
// the posterior summaries and curves. The procedures derive from it, fill
// the vectors while they build, and the result objects copy them out
// through the getters below.
#include <cstddef>
#include <string>
#include <vector>

#include "bsn/onesample/bsn1samplenormalinference.h"

namespace MCBSN_850 {

class BSNNormalMeanResults {
public:
    using Curves = std::vector<std::vector<double>>;

    // Missing where a value could not be computed. The Bayes-factor, t and
    // significance vectors stay empty unless factors were asked for, the
    // posterior vectors and curves unless the posterior was.
    const std::vector<double>& GetMeans() const { return m_means; }
    const std::vector<double>& GetStdDeviations() const { return m_stdDevs; }
    const std::vector<double>& GetStdErrorMeans() const { return m_stdErrors; }
    const std::vector<double>& GetFactors() const { return m_factors; }
    // The natural log of each factor, computed on the log scale.
    const std::vector<double>& GetLogBayesFactors() const { return m_logFactors; }
    const std::vector<double>& GetTtests() const { return m_tValues; }
    const std::vector<double>& GetDfs() const { return m_dfs; }
    const std::vector<double>& GetNs() const { return m_ns; }
    const std::vector<double>& GetSigs() const { return m_sigs; }
    const std::vector<double>& getModeValues() const { return m_posterior.modes; }
    const std::vector<double>& getPostMeanValues() const { return m_posterior.postMeans; }
    const std::vector<double>& getVariances() const { return m_posterior.variances; }
    const std::vector<double>& getLowerimits() const { return m_posterior.lowerLimits; }
    const std::vector<double>& getUpperLimits() const { return m_posterior.upperLimits; }
    const Curves& GetPlotArguments4Likelihoods() const { return m_posterior.argsLikelihood; }
    const Curves& GetPlotArguments4Prior() const { return m_posterior.argsPrior; }
    const Curves& GetPlotArguments4Posterior() const { return m_posterior.argsPosterior; }
    const Curves& GetPlotLikelihoods() const { return m_posterior.likelihoods; }
    const Curves& GetPlotPosterior() const { return m_posterior.posteriors; }
    const Curves& GetPlotPrior() const { return m_posterior.priors; }

protected:
    BSNNormalMeanResults() = default;
    // Never deleted through this class: it is only a part of a procedure.
    ~BSNNormalMeanResults() = default;

    // Sizes the classical statistics (means, standard deviations, standard
    // errors, df, N) to n entries, all missing.
    void ResetBasicStats(std::size_t n);
    // The labelled lines of every vector and of the posterior, written to
    // the current dump stream as part of the owning procedure's Display;
    // the means are labelled meansLabel.
    void DisplayResults(const std::string& meansLabel) const;

    std::vector<double> m_means;
    std::vector<double> m_stdDevs;
    std::vector<double> m_stdErrors;
    std::vector<double> m_dfs;
    std::vector<double> m_ns;

    std::vector<double> m_factors;
    std::vector<double> m_logFactors;
    std::vector<double> m_tValues;
    std::vector<double> m_sigs;
    BSN1SampleNormalInference::Results m_posterior;
};

} // namespace MCBSN_850
