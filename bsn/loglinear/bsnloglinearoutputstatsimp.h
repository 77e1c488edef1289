#pragma once
// BSNLogLinearOutputStatsImp: the data of BSNLogLinearOutputStats, copied
// from the procedure when the result is made.
#include <array>
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/loglinear/bsncontingency.h"
#include "bsn/regression/bayesestimation.h"
#include "platform/stats/mcteststats.h"

namespace MCBSN_850 {

class BSNLogLinear;

class BSNLogLinearOutputStatsImp {
public:
    BSNLogLinearOutputStatsImp(const BSNSettings& settings, const BSNLogLinear& procedure);

    void Display(std::ostream& os) const;

    BSNSettings settings;
    BSNContingency table;
    MCMath_850::MCTestStats chiSquare;
    MCMath_850::MCTestStats likeRatio;
    MCMath_850::MCTestStats contCorrect;
    double fisher1;
    double fisher2;
    double bayesFactor;
    bool isLogBayesFactor;
    double logBayesFactor;
    int t, t1, t2;
    std::vector<BayesEstimation> estimations;
    std::vector<std::array<int, 4>> pairs;
    std::vector<std::vector<double>> plotArguments;
    std::vector<std::vector<double>> plotPosterior;
};

} // namespace MCBSN_850
