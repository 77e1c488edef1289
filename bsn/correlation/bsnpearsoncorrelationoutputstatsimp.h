#pragma once
// BSNPearsonCorrelationOutputStatsImp: the data of a correlation result, a
// plain copy of the finished procedure's results (see
// BSNPearsonCorrelationOutputStats for their meaning).
#include <utility>
#include <vector>

#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

class BSNPearsonCorrelation;

class BSNPearsonCorrelationOutputStatsImp {
public:
    using Curves = std::vector<std::vector<double>>;

    BSNPearsonCorrelationOutputStatsImp(const BSNSettings& settings, const BSNPearsonCorrelation& procedure);

    BSNSettings settings;
    std::vector<std::pair<int, int>> varPairIndices;
    std::vector<double> pearsonCorrelation;
    std::vector<double> bayesFactor;
    std::vector<double> logBayesFactors;
    std::vector<bool> isLogBayesFactor;
    std::vector<int> indIntegralFailed;
    std::vector<double> varPairN;
    std::vector<double> varN;
    std::vector<double> posteriorMode, posteriorMean, posteriorVariance, posteriorLowerBound, posteriorUpperBound;
    std::vector<double> plotXAxis;
    Curves plotLogLikelihood, plotPrior, plotPosterior;
};

} // namespace MCBSN_850
