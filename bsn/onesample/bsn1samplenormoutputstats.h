#pragma once
// BSN1SampleNormOutputStats: the result of the one-sample normal procedure,
// one entry per test variable in every vector: classical statistics, t test
// and Bayes factor, posterior summaries, and the likelihood, prior and
// posterior curves. No entry is ever NaN or infinite: what could not be
// computed holds the system-missing value. The Bayes-factor, t and
// significance vectors are empty when no factors were asked for, the
// posterior vectors and curves when no posterior was.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSN1SampleNormal;
class BSN1SampleNormOutputStatsImp;

class BSN1SampleNormOutputStats : public BSNOutputStats {
public:
    using Curves = std::vector<std::vector<double>>;

    // Copies every result of a finished procedure.
    BSN1SampleNormOutputStats(const BSNSettings& settings, const BSN1SampleNormal& procedure);
    // An empty result to be filled through the setters below.
    explicit BSN1SampleNormOutputStats(const BSNSettings& settings);
    ~BSN1SampleNormOutputStats() override;
    BSN1SampleNormOutputStats(const BSN1SampleNormOutputStats& other);
    BSN1SampleNormOutputStats& operator=(const BSN1SampleNormOutputStats& other);

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::OneSample; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::Output1SampleNormal; }
    void Display(std::ostream& os) const override;

    // Replaces the settings, the test variables and the thirteen per-variable
    // vectors (not the curves).
    void SetOutputValues(const BSNSettings& settings, const std::vector<int>& varIndices,
                         const std::vector<double>& bayesFactors, const std::vector<double>& ns,
                         const std::vector<double>& stdDevs, const std::vector<double>& stdErrors,
                         const std::vector<double>& dfs, const std::vector<double>& sigs,
                         const std::vector<double>& tValues, const std::vector<double>& modes,
                         const std::vector<double>& postMeans, const std::vector<double>& variances,
                         const std::vector<double>& lowerLimits, const std::vector<double>& upperLimits,
                         const std::vector<double>& means);
    // Replaces the six curves.
    void SetPlotValues(const Curves& argsLikelihood, const Curves& argsPrior, const Curves& argsPosterior,
                       const Curves& likelihoods, const Curves& posteriors, const Curves& priors);

    const BSNSettings& GetSettings() const;
    const std::vector<int>& GetVarIndices() const;
    const std::vector<double>& GetBayesFactors() const;
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

    // The labelled lines of Display without its start and end lines, for
    // results that carry the same statistics. Writes to the current dump
    // stream.
    void DisplayFields() const;

private:
    std::unique_ptr<BSN1SampleNormOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
