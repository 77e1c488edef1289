#pragma once
// BSN2SampleRelatedOutputStats: the result of the related-samples procedure,
// one entry per pair in every vector. It carries the same statistics as the
// one-sample normal result, computed on the paired differences: the means
// are mean differences, GetVarIndices() lists the first members of the
// pairs and GetSecondVarIndices() the second. No entry is ever NaN or
// infinite; the Bayes-factor, t and significance vectors are empty when no
// factors were asked for, the posterior vectors and curves when no posterior
// was.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSN2SampleRelated;
class BSN2SampleRelatedOutputStatsImp;

class BSN2SampleRelatedOutputStats : public BSNOutputStats {
public:
    using Curves = std::vector<std::vector<double>>;

    // Copies every result of a finished procedure.
    BSN2SampleRelatedOutputStats(const BSNSettings& settings, const BSN2SampleRelated& procedure);
    ~BSN2SampleRelatedOutputStats() override;
    BSN2SampleRelatedOutputStats(const BSN2SampleRelatedOutputStats&) = delete;
    BSN2SampleRelatedOutputStats& operator=(const BSN2SampleRelatedOutputStats&) = delete;

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::Related; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::Output2SampleRelated; }
    void Display(std::ostream& os) const override;

    const BSNSettings& GetSettings() const;
    const std::vector<int>& GetVarIndices() const;
    const std::vector<int>& GetSecondVarIndices() const;
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

private:
    std::unique_ptr<BSN2SampleRelatedOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
