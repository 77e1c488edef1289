#pragma once
// BSN1SamplePoisnOutputStats: everything a host needs to report a one-sample
// Poisson analysis, one entry per test variable in the order of the
// settings' covariate list. Entries that were not computed hold the
// system-missing value (plot curves: empty vectors); no entry is ever NaN or
// infinite. The plot curves are sampled when the result is made.
#include <iosfwd>
#include <memory>
#include <utility>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSN1SamplePoisnOutputStatsImp;

class BSN1SamplePoisnOutputStats : public BSNOutputStats {
public:
    // Copies the results of a BSN1SamplePoisson procedure; any other
    // procedure gives a result whose per-variable entries are all missing.
    BSN1SamplePoisnOutputStats(const BSNSettings& settings, BSNAlgorithm& procedure);
    ~BSN1SamplePoisnOutputStats() override;

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::OneSample; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::Output1SamplePoisson; }
    void Display(std::ostream& os) const override;

    const BSNSettings& GetSettings() const;
    const std::vector<int>& GetVarIndices() const;
    // Null over alternative; where GetIsLogBayesFactor() is set, the entry is
    // the natural log of the factor.
    const std::vector<double>& GetBayesFactors() const;
    const std::vector<bool>& GetIsLogBayesFactor() const;
    // The natural log of every factor, computed on the log scale (so it is
    // exact where the factor itself would underflow or overflow); missing
    // where no factor was computed.
    const std::vector<double>& GetLogBayesFactors() const;
    // N, the sum of weights.
    const std::vector<double>& GetNs() const;
    // Smallest and largest count seen; missing for a variable without a case.
    const std::vector<double>& GetMinCnts() const;
    const std::vector<double>& GetMaxCnts() const;
    const std::vector<double>& GetModeValues() const;
    const std::vector<double>& GetMeanValues() const;
    const std::vector<double>& GetVarianceValues() const;
    const std::vector<double>& GetLowerLimits() const;
    const std::vector<double>& GetUpperLimits() const;
    // (α, β): posterior shape and rate.
    const std::vector<std::pair<double, double>>& GetPosteriorParams() const;
    // (−N, S): the log likelihood of rate λ is S ln λ − N λ plus a constant.
    const std::vector<std::pair<double, double>>& GetLikelihoodParams() const;
    // Each curve has its own grid. The likelihood values are log likelihoods
    // S ln λ − N λ; prior and posterior values are densities. A flat or
    // improper prior is two arguments with the values 1.0, 1.0.
    const std::vector<std::vector<double>>& GetPlotArguments4Likelihoods() const;
    const std::vector<std::vector<double>>& GetPlotArguments4Prior() const;
    const std::vector<std::vector<double>>& GetPlotArguments4Posterior() const;
    const std::vector<std::vector<double>>& GetPlotLikelihoods() const;
    const std::vector<std::vector<double>>& GetPlotPrior() const;
    const std::vector<std::vector<double>>& GetPlotPosterior() const;

private:
    std::unique_ptr<BSN1SamplePoisnOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
