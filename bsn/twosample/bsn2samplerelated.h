#pragma once
// BSN2SampleRelated: the related-samples (paired) procedure. The i-th
// variable of GetCovariates() is paired with the i-th of
// Get2ndRelatedList(), and each pair is analysed as a one-sample normal
// problem on the difference first minus second: its statistics come from
// weighted means and cross-products over the cases where both members are
// present, and the t test, Bayes factors and posterior are those of the
// one-sample normal procedure applied to the difference.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/onesample/bsn1samplenormalinference.h"
#include "platform/stats/mcmeansxproddata.h"

namespace MCBSN_850 {

class BSN2SampleRelated : public BSNAlgorithm {
public:
    using Curves = std::vector<std::vector<double>>;

    BSN2SampleRelated(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSN2SampleRelated() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    // Per pair, in list order; missing where a value could not be computed.
    // Means are mean differences. The Bayes-factor, t and significance
    // vectors stay empty unless factors were asked for, the posterior
    // vectors and curves unless the posterior was.
    const std::vector<double>& GetMeans() const { return m_means; }
    const std::vector<double>& GetStdDeviations() const { return m_stdDevs; }
    const std::vector<double>& GetStdErrorMeans() const { return m_stdErrors; }
    const std::vector<double>& GetFactors() const { return m_factors; }
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

    // The steps of BuildModel, public so that each can be exercised alone.
    // The data pass and the difference statistics of every pair; error 1
    // when cancelled during the pass. Pairs with fewer than two cases
    // (410029) or a constant difference (410028) are reported in the
    // warnings, not in the returned status.
    MCCommon_850::MCStatus ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter);
    // Reads the two members of a pair into values[0..1]; true when either is
    // missing.
    static bool HasMissing(const MCCommon_850::Record& record, const int pairVars[2], double values[2]);
    // t and significance of pair i (missing when they cannot be computed).
    void computeTtest(int i);
    // t test and Bayes factor of every pair.
    MCCommon_850::MCStatus computeFactor();
    // Posterior of every pair's mean difference.
    MCCommon_850::MCStatus computeInference();
    void createInference();
    MCCommon_850::MCStatus GenerateOutput();

private:
    std::vector<MCMath_850::MCMeansXProdData> m_pairStats;
    std::unique_ptr<BSN1SampleNormalInference> m_inference;

    std::vector<double> m_means;
    std::vector<double> m_stdDevs;
    std::vector<double> m_stdErrors;
    std::vector<double> m_dfs;
    std::vector<double> m_ns;

    std::vector<double> m_factors;
    std::vector<double> m_tValues;
    std::vector<double> m_sigs;
    BSN1SampleNormalInference::Results m_posterior;
};

} // namespace MCBSN_850
