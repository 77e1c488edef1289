#pragma once
// BSNLogLinearOutputStats: everything a host needs to report a log-linear
// analysis: the contingency table, the classical tests, the Bayes factor
// for independence and the posterior estimates on pairs of categories.
// Values that were not computed are the system-missing value (tests keep
// their missing fields; vectors are empty); no value is NaN or infinite.
#include <array>
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"
#include "bsn/loglinear/bsncontingency.h"
#include "bsn/regression/bayesestimation.h"
#include "platform/stats/mcteststats.h"

namespace MCBSN_850 {

class BSNLogLinear;
class BSNLogLinearOutputStatsImp;

class BSNLogLinearOutputStats : public BSNOutputStats {
public:
    BSNLogLinearOutputStats(const BSNSettings& settings, const BSNLogLinear& procedure);
    ~BSNLogLinearOutputStats() override;

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::LogLinear; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::OutputLogLinear; }
    void Display(std::ostream& os) const override;

    const BSNSettings& GetSettings() const;
    const BSNContingency& GetContingencyMatrix() const;
    // Null (independence) over the saturated table; where IsLogBayesFactor()
    // is set it holds the natural logarithm of the factor.
    double GetBayesFactor() const;
    bool IsLogBayesFactor() const;
    // The factor's natural logarithm, computed on the log scale.
    double GetLogBayesFactor() const;
    // One estimate of the log odds ratio per pair; GetPosteriorPairs()[k] is
    // {row i, row i', column j, column j'} (category codes, i < i', j < j')
    // of GetPosteriorEstimations()[k].
    const std::vector<BayesEstimation>& GetPosteriorEstimations() const;
    const std::vector<std::array<int, 4>>& GetPosteriorPairs() const;
    double GetFisher2SidedSig() const;
    double GetFisher1SidedSig() const;
    const MCMath_850::MCTestStats& GetChiSquareResult() const;
    const MCMath_850::MCTestStats& GetLikeRatioResult() const;
    const MCMath_850::MCTestStats& GetContCorrectResult() const;
    int GetT() const;
    int GetT1() const;
    int GetT2() const;
    // Posterior density curves of the first pairs (at most GetMaxNPlots()):
    // arguments (log odds ratios) and density values.
    const std::vector<std::vector<double>>& GetPlotArguments4Posterior() const;
    const std::vector<std::vector<double>>& GetPlotPosterior() const;

private:
    std::unique_ptr<BSNLogLinearOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
