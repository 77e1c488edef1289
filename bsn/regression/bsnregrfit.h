#pragma once
// BSNRegrFit: what the regression and the one-way ANOVA procedures know
// after their fit, read by the result object: the least-squares fit, the
// ANOVA table, R squared, the Bayes factor and the posterior's overall F.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcmv.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/matrix/mcbitset.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/stats/mcreganova.h"

namespace MCMath_850 {
class MCCancelInfo;
class MCFastDesignMatrix;
} // namespace MCMath_850

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

class BSNRegrPosterior;

// The posterior stage shared by regression and the one-way ANOVA: builds the
// conjugate or reference posterior of the fit (with p = k - 1 predictors
// besides the intercept), computes its statistics and the fit's overall F,
// then its plot curves unless a cancel arrived.
MCCommon_850::MCStatus ComputeRegrPosterior(const BSNSettings& settings, const MCMath_850::MCFastDesignMatrix& design,
                                            const MCMath_850::MCCancelInfo& cancel, MCCommon_850::MCWarnings& warnings,
                                            BSNRegrFit& fit, std::unique_ptr<BSNRegrPosterior>& posterior);

} // namespace MCBSN_850
