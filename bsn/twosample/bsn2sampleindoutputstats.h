#pragma once
// BSN2SampleIndOutputStats: the result of the independent-samples procedure,
// one entry per test variable (in the order of GetCovariates()) in every
// vector, in three blocks:
//   group statistics of the first group (coded 0) and the second (coded 1);
//   the classical tests and Bayes factors (empty unless the analysis type
//   asked for Bayes factors): mean difference second minus first, the
//   pooled (equal-variance) t test, which the Bayes factors use, the Welch
//   (unpooled) t test, the factor of equal means against different means
//   (above 1 favours equal means) and its natural logarithm;
//   the posterior of the mean difference and the plot curves (empty unless
//   the analysis type asked for a posterior): X is the first group, Y the
//   second.
// What could not be computed is the system-missing value (an empty curve);
// no entry is ever NaN or infinite.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSN2SampleIndependent;
class BSN2SampleIndOutputStatsImp;

class BSN2SampleIndOutputStats : public BSNOutputStats {
public:
    using Curves = std::vector<std::vector<double>>;

    // Copies every result of a finished procedure.
    BSN2SampleIndOutputStats(const BSNSettings& settings, const BSN2SampleIndependent& procedure);
    ~BSN2SampleIndOutputStats() override;
    BSN2SampleIndOutputStats(const BSN2SampleIndOutputStats&) = delete;
    BSN2SampleIndOutputStats& operator=(const BSN2SampleIndOutputStats&) = delete;

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::Independent; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::Output2SampleIndependent; }
    const BSNSettings& GetSettings() const;
    // Replaces every value by the procedure's (what the constructor does).
    void SetOutputValues(const BSNSettings& settings, const BSN2SampleIndependent& procedure);
    void Display(std::ostream& os) const override;

    // Group statistics: the test variables, Ns (whole sums of frequency
    // weights), means, standard deviations and standard errors.
    const std::vector<int>& GetGroupStatsVarIndices() const;
    const std::vector<int>& GetGroup1StatsNs() const;
    const std::vector<double>& GetGroup1MeanValues() const;
    const std::vector<double>& GetGroup1StdDevs() const;
    const std::vector<double>& GetGroup1EMs() const;
    const std::vector<int>& GetGroup2StatsNs() const;
    const std::vector<double>& GetGroup2MeanValues() const;
    const std::vector<double>& GetGroup2StdDevs() const;
    const std::vector<double>& GetGroup2EMs() const;

    // Tests and Bayes factors.
    const std::vector<int>& GetTTestVarIndices() const;
    const std::vector<double>& GetMeanDiffValues() const;
    const std::vector<double>& GetPStdEDDevs() const;  // pooled standard error of the difference
    const std::vector<double>& GetBayesFactors() const;
    const std::vector<double>& GetLogBayesFactors() const;
    const std::vector<double>& GetTValues() const;  // pooled
    const std::vector<double>& GetDFValues() const;
    const std::vector<double>& GetSigs() const;
    const std::vector<double>& GetWelchTValues() const;
    const std::vector<double>& GetWelchDFValues() const;
    const std::vector<double>& GetWelchSigs() const;
    const std::vector<double>& GetWelchStdEDDevs() const;  // unpooled standard error of the difference

    // Posterior of the mean difference.
    const std::vector<int>& GetPostVarIndices() const;
    const std::vector<double>& GetModeValues() const;
    const std::vector<double>& GetPostMeanValues() const;
    const std::vector<double>& GetVarianceValues() const;
    const std::vector<double>& GetLowerLimits() const;
    const std::vector<double>& GetUpperLimits() const;
    const Curves& GetPlotXArguments() const;
    const Curves& GetPlotYArguments() const;
    const Curves& GetPlotXLikelihoods() const;
    const Curves& GetPlotYLikelihoods() const;
    const Curves& GetPlotXPriorArguments() const;
    const Curves& GetPlotYPriorArguments() const;
    const Curves& GetPlotXPrior() const;
    const Curves& GetPlotYPrior() const;
    const Curves& GetPlotArguments() const;
    const Curves& GetPlotPosterior() const;

private:
    std::unique_ptr<BSN2SampleIndOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
