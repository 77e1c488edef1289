#pragma once
// BSNRegrFit: what the regression and the one-way ANOVA procedures know
// after their fit, read by the result object: the least-squares fit, the
// ANOVA table, R squared, the Bayes factor and the posterior's overall F.
#include <iosfwd>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/matrix/mcbitset.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/stats/mcreganova.h"

namespace MCBSN_850 {

struct BSNRegrFit {
    double totalW = 0.0;   // cases (sum of frequency weights)
    double totalWR = 0.0;  // sum of frequency x regression weights
    double meanY = MCCommon_850::MCMV::Missing();
    double yty = 0.0;
    std::vector<double> Xty;
    MCMath_850::MCSymMatrix XtX;
    MCMath_850::MCSymMatrix XtXinverse;
    MCMath_850::MCBitSet nonRedundant;
    std::vector<double> coefficients;
    int k = 0;  // non-redundant parameters, intercept included (at most totalW)
    double sse = MCCommon_850::MCMV::Missing();
    double sst = MCCommon_850::MCMV::Missing();
    double rSquared = MCCommon_850::MCMV::Missing();
    double rSquaredFull = MCCommon_850::MCMV::Missing();
    double adjRSquared = MCCommon_850::MCMV::Missing();
    double sigma2 = MCCommon_850::MCMV::Missing();
    MCMath_850::MCRegANOVA anova;
    double bayesFactor = MCCommon_850::MCMV::Missing();
    double logBayesFactor = MCCommon_850::MCMV::Missing();
    double fStatistic = MCCommon_850::MCMV::Missing();  // the posterior's overall F
    double fSig = MCCommon_850::MCMV::Missing();

    // The ANOVA table, R squared and its adjustment, sigma^2 and the F test
    // from totalW, k, SSE and SST (tolerance: the settings' tolerance).
    void Summarise(double tolerance);
    void Display(std::ostream& os) const;
};

} // namespace MCBSN_850
