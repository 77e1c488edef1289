#pragma once
// BSNPearsonCorrelationOutputStats: the result of the correlation
// procedure. Every per-pair vector has one entry per pair of the analysis
// variables, in pair order (i outer, j inner over the settings'
// covariates); what could not be computed is the system-missing value,
// never NaN or infinity. The Bayes-factor vectors are empty when no factors
// were asked for (analysis type 0), the posterior vectors when no posterior
// was (type 1).
//
// GetBayesFactor holds the factor (null over alternative), or its natural
// log where GetIsLogBayesFactor is set; GetLogBayesFactors always holds the
// log, computed on the log scale. GetVarPairN is each pair's sum of
// weights, GetVarN each variable's (one entry per analysis variable).
// Curves: GetPlotXAxis is shared by the first min(pairs, MaxNPlots) pairs,
// whose log-likelihood, prior and posterior (scaled to peak at 1) are the
// inner vectors of the plot getters (empty for a pair without a valid
// correlation).
#include <iosfwd>
#include <memory>
#include <utility>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSNPearsonCorrelation;
class BSNPearsonCorrelationOutputStatsImp;

class BSNPearsonCorrelationOutputStats : public BSNOutputStats {
public:
    using Curves = std::vector<std::vector<double>>;

    BSNPearsonCorrelationOutputStats(const BSNSettings& settings, const BSNPearsonCorrelation& procedure);
    ~BSNPearsonCorrelationOutputStats() override;
    BSNPearsonCorrelationOutputStats(const BSNPearsonCorrelationOutputStats&) = delete;
    BSNPearsonCorrelationOutputStats& operator=(const BSNPearsonCorrelationOutputStats&) = delete;

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::Correlation; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::OutputCorrelation; }
    void Display(std::ostream& os) const override;

    const std::vector<std::pair<int, int>>& GetVarPairIndices() const;
    const std::vector<double>& GetPearsonCorrelation() const;
    const std::vector<double>& GetBayesFactor() const;
    const std::vector<double>& GetLogBayesFactors() const;
    const std::vector<bool>& GetIsLogBayesFactor() const;
    const std::vector<int>& GetIndIntegralFailed() const;
    const std::vector<double>& GetVarPairN() const;
    const std::vector<double>& GetVarN() const;
    const std::vector<double>& GetPosteriorMode() const;
    const std::vector<double>& GetPosteriorMean() const;
    const std::vector<double>& GetPosteriorVariance() const;
    const std::vector<double>& GetPosteriorLowerBound() const;
    const std::vector<double>& GetPosteriorUpperBound() const;
    const std::vector<double>& GetPlotXAxis() const;
    const Curves& GetPlotLogLikelihood() const;
    const Curves& GetPlotPrior() const;
    const Curves& GetPlotPosterior() const;
    const BSNSettings& GetSettings() const;

private:
    std::unique_ptr<BSNPearsonCorrelationOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
