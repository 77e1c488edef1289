#include "bsn/correlation/bsnpearsoncorrelationoutputstatsimp.h"

#include "bsn/correlation/bsnpearsoncorrelation.h"

namespace MCBSN_850 {

BSNPearsonCorrelationOutputStatsImp::BSNPearsonCorrelationOutputStatsImp(const BSNSettings& s,
                                                                         const BSNPearsonCorrelation& p)
    : settings(s), varPairIndices(p.GetVarPairIndices()), pearsonCorrelation(p.GetCorrelations()),
      bayesFactor(p.GetBayesFactors()), logBayesFactors(p.GetLogBayesFactors()),
      isLogBayesFactor(p.GetIsLogFlags().begin(), p.GetIsLogFlags().end()),
      indIntegralFailed(p.GetIndIntegralFailed()), varPairN(p.GetVarPairN()), varN(p.GetVarN()),
      posteriorMode(p.GetPosteriorModes()), posteriorMean(p.GetPosteriorMeans()),
      posteriorVariance(p.GetPosteriorVariances()), posteriorLowerBound(p.GetPosteriorLowerBounds()),
      posteriorUpperBound(p.GetPosteriorUpperBounds()), plotXAxis(p.GetPlotXAxis()),
      plotLogLikelihood(p.GetPlotLogLikelihood()), plotPrior(p.GetPlotPrior()), plotPosterior(p.GetPlotPosterior()) {}

} // namespace MCBSN_850
