#pragma once
// Helpers shared by the one-sample binomial and Poisson tests.
#include <cmath>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcmv.h"
#include "tests/frame/componentrun.h"

namespace discrete_test {

inline const double kMiss = MCCommon_850::MCMV::Missing();

using Build = bsntest::ComponentRun;

// One-sample settings for the test variables `vars` (factors of a binomial,
// covariates of a Poisson): posterior prior (p1, p2), alternative prior
// (a1, a2) for every variable.
inline MCBSN_850::BSNSettings discreteSettings(MCBSN_850::BSNConst::DistTypes dist, const std::vector<int>& vars,
                                               MCBSN_850::BSNConst::AnalysTypes type, double p1, double p2, double a1,
                                               double a2) {
    MCBSN_850::BSNSettings s;
    s.SetModelType(MCBSN_850::BSNConst::OneSample, false);
    s.SetTestDistType(dist);
    if (dist == MCBSN_850::BSNConst::Binomial)
        s.SetFactors(vars);
    else
        s.SetCovariates(vars);
    s.SetAnalysType(type);
    s.SetPriorParam1(p1);
    s.SetPriorParam2(p2);
    s.SetAlterPrior1s(std::vector<double>(vars.size(), a1));
    s.SetAlterPrior2s(std::vector<double>(vars.size(), a2));
    return s;
}

// Independent ln B(a, b), with B(0, 0) taken as 1.
inline double lnBeta(double a, double b) {
    if (a == 0.0 && b == 0.0) return 0.0;
    return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
}

// ln of the integral of l^S e^(-N l) Gamma(l; a, b) dl, closed form (shape
// a, rate b).
inline double lnGammaMarginal(double a, double b, double N, double S) {
    return a * std::log(b) - std::lgamma(a) + std::lgamma(a + S) - (a + S) * std::log(b + N);
}

inline bool isMissing(double v) { return MCCommon_850::MCMV::IsMissing(v); }

} // namespace discrete_test
