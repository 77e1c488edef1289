#pragma once
// BSN1SampleBinoOutputStats: everything a host needs to report a one-sample
// binomial analysis, one entry per test variable in the order of the
// settings' factor list. Entries that were not computed hold the
// system-missing value (plot curves: an empty vector); no entry is ever NaN
// or infinite.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSN1SampleBinoOutputStatsImpl;

class BSN1SampleBinoOutputStats : public BSNOutputStats {
public:
    // Copies the results of a BSN1SampleBinomial procedure; any other
    // procedure gives a result whose per-variable entries are all missing.
    BSN1SampleBinoOutputStats(const BSNSettings& settings, BSNAlgorithm& procedure);
    ~BSN1SampleBinoOutputStats() override;

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::OneSample; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::Output1SampleBinomial; }
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
    // Trials n (sum of weights).
    const std::vector<double>& GetNs() const;
    // Category 1 is the success code 1 with count x; category 2 the failures
    // n − x; each with its proportion of n.
    const std::vector<double>& GetCat1Indices() const;
    const std::vector<double>& GetCat1Ns() const;
    const std::vector<double>& GetCat2Ns() const;
    const std::vector<double>& GetCat1Props() const;
    const std::vector<double>& GetCat2Props() const;
    const std::vector<double>& GetModeValues() const;
    const std::vector<double>& GetMeanValues() const;
    const std::vector<double>& GetVarianceValues() const;
    const std::vector<double>& GetLowerLimits() const;
    const std::vector<double>& GetUpperLimits() const;
    const std::vector<std::vector<double>>& GetPlotArguments() const;
    const std::vector<std::vector<double>>& GetPlotLikelihoods() const;
    const std::vector<std::vector<double>>& GetPlotPrior() const;
    const std::vector<std::vector<double>>& GetPlotPosterior() const;

private:
    std::unique_ptr<BSN1SampleBinoOutputStatsImpl> m_impl;
};

} // namespace MCBSN_850
