#pragma once
// BSNMultiRegOutputStatsImp: the data of BSNMultiRegOutputStats, copied from
// the regression or ANOVA procedure when the result is made.
#include <iosfwd>
#include <string>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/regression/bayesestimation.h"
#include "bsn/regression/bsnregrfit.h"
#include "bsn/regression/bsnregrposterior.h"
#include "platform/common/mcwarnings.h"
#include "platform/matrix/mcfastdesignmatrix.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/stats/mcreganova.h"
#include "platform/stats/mcteststats.h"
#include "platform/variables/mcvarlist.h"

namespace MCBSN_850 {

class BSNMultiRegOutputStatsImp {
public:
    using Curves = std::vector<std::vector<double>>;

    BSNMultiRegOutputStatsImp(const BSNSettings& settings, const BSNRegrFit& fit, const BSNRegrPosterior* posterior,
                              const MCMath_850::MCFastDesignMatrix& design, bool sparse,
                              const MCCommon_850::MCWarnings& warnings, const MCXML_850::MCVarList& varList);
    void Display(std::ostream& os) const;

    BSNSettings settings;
    MCMath_850::MCRegANOVA anova;
    double bayesFactor, logBayesFactor;
    bool isLogBayesFactor = false;
    double rSquared, rSquaredFull, adjRSquared, sigma2, stdError, nCases;
    std::vector<BayesEstimation> coeffs;
    BayesEstimation error, predicted;
    std::vector<double> regrParameters;
    std::vector<bool> redundancy;
    std::vector<MCMath_850::MCTestStats> fTests;
    double fStat, df, df2, sig;
    std::vector<std::string> parameterLabels;
    bool hasPosterior = false;

    std::vector<int> plotParameters;
    Curves likelihoodParam, argsLikelihoodParam, argsPriorParam, argsPosteriorParam, priorParam, posteriorParam;
    std::vector<double> likelihoodError, argsLikelihoodError, argsPriorError, argsPosteriorError, priorError,
        posteriorError;
    std::vector<double> argsLikelihoodPred, argsPriorPred, argsPosteriorPred, likelihoodPred, priorPred,
        posteriorPred;

    MCMath_850::MCFastDesignMatrix design;
    bool sparse = false;
    std::vector<double> scoringCoefficients;
    MCMath_850::MCSymMatrix covFactor;
    double predVarianceScale, predIntervalScale, tQuantile;
};

} // namespace MCBSN_850
