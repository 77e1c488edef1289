#pragma once
// BSN1SampleNormal: the one-sample normal procedure. One pass over the
// records gives every test variable its frequency-weighted mean and
// variance; from them come the classical statistics (standard deviation,
// standard error, df, N), then the t test and Bayes factor
// (BSN1SampleNormalFactor) and/or the posterior of the mean
// (BSN1SampleNormalInference), as the analysis type asks. Each test variable
// is analysed on its own valid cases.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/onesample/bsn1samplenormalfactor.h"
#include "bsn/onesample/bsn1samplenormalinference.h"
#include "platform/stats/mccontstats.h"

namespace MCBSN_850 {

class BSN1SampleNormal : public BSNAlgorithm {
public:
    using Curves = std::vector<std::vector<double>>;

    BSN1SampleNormal(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSN1SampleNormal() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    // Per test variable, in the order of GetCovariates(); missing where a
    // value could not be computed. The Bayes-factor, t and significance
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
    // Sizes the per-variable storage; error 410004 without test variables.
    MCCommon_850::MCStatus init();
    // The data pass and the classical statistics; error 410003 without any
    // record, 1 when cancelled during the pass. Constant variables (410010)
    // and variables with fewer than two cases (410025) are reported in the
    // warnings, not in the returned status.
    MCCommon_850::MCStatus ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter);
    // True when the build must end: an error is pending, or a cancellation
    // was requested (which becomes error 410016).
    bool isStop();
    void createFactor();
    void createInference();
    // Copies the calculators' results and makes the result object.
    MCCommon_850::MCStatus GenerateOutput();

private:
    std::unique_ptr<BSN1SampleNormalFactor> m_factor;
    std::unique_ptr<BSN1SampleNormalInference> m_inference;
    std::vector<MCMath_850::MCContStats> m_stats;

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
