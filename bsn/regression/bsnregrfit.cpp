#include "bsn/regression/bsnregrfit.h"

#include "bsn/regression/bsnregrconjugateprior.h"
#include "bsn/regression/bsnregrposteriorreference.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"
#include "platform/progress/mccancelinfo.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

void BSNRegrFit::Summarise(double tolerance) {
    const double K = k;
    const double dfE = totalW - K;
    if (sst <= 0.0) {
        rSquared = 1.0;
    } else {
        rSquared = 1.0 - sse / sst;
        if (rSquared < 0.0) rSquared = 0.0;
    }
    if (dfE > 0.0) adjRSquared = 1.0 - (1.0 - rSquared) * (totalW - 1.0) / dfE;

    anova = MCMath_850::MCRegANOVA();
    anova.totalDF = totalW - 1.0;
    anova.totalSS = sst;
    anova.residualSS = sse;
    anova.regressionSS = sst - sse;
    if (anova.regressionSS < 0.0) anova.regressionSS = MCMV::Missing();
    anova.residualDF = dfE > 0.0 ? dfE : 0.0;
    anova.regressionDF = K - 1.0;
    if (totalW > K) anova.residualMS = sse / anova.residualDF;
    if (K > 1.0 && !MCMV::IsMissing(anova.regressionSS)) anova.regressionMS = anova.regressionSS / (K - 1.0);
    sigma2 = anova.residualMS;

    if (sse > tolerance && K > 1.0 && !MCMV::IsMissing(anova.regressionSS) && anova.residualDF > 0.0) {
        anova.f = (anova.regressionSS * anova.residualDF) / (sse * anova.regressionDF);
        anova.sig = MCMath_850::MCDistFun::SigF(anova.f, anova.regressionDF, anova.residualDF);
    }
    anova.Sanitize();
}

void BSNRegrFit::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNRegrFit display start");
    DisplayD("TotalW", totalW);
    DisplayD("TotalWR", totalWR);
    DisplayD("Mean of y", meanY);
    DisplayD("y'y", yty);
    DisplayDV("X'y", Xty);
    DisplayDV("Beta estimates", coefficients);
    DisplayText(0, "Matrix X'X:");
    XtX.Display(os);
    DisplayText(0, "Matrix X'X inverse:");
    XtXinverse.Display(os);
    nonRedundant.Display(os);
    DisplayI("Non-redundant parameters", k);
    DisplayD("Sigma squared", sigma2);
    DisplayD("R squared", rSquared);
    DisplayD("Full model R squared", rSquaredFull);
    DisplayD("Adjusted R squared", adjRSquared);
    anova.Display(os);
    DisplayD("Bayes factor", bayesFactor);
    DisplayD("Log Bayes factor", logBayesFactor);
    DisplayText(0, "BSNRegrFit display end");
}

MCCommon_850::MCStatus ComputeRegrPosterior(const BSNSettings& settings, const MCMath_850::MCFastDesignMatrix& design,
                                            const MCMath_850::MCCancelInfo& cancel, MCCommon_850::MCWarnings& warnings,
                                            BSNRegrFit& fit, std::unique_ptr<BSNRegrPosterior>& posterior) {
    const int p = fit.k - 1;
    if (settings.GetPriorType() == BSNConst::Conjugate)
        posterior = std::make_unique<BSNRegrConjugatePrior>(settings, fit.totalW, p, fit.coefficients, design, fit.XtX,
                                                            fit.XtXinverse, fit.nonRedundant, fit.Xty, fit.yty,
                                                            fit.sigma2, warnings);
    else
        posterior = std::make_unique<BSNRegrPosteriorReference>(settings, fit.totalW, p, fit.coefficients, design,
                                                                fit.XtX, fit.XtXinverse, fit.nonRedundant, fit.Xty,
                                                                fit.yty, fit.sigma2, warnings);
    posterior->SetResidualSS(fit.sse);
    const MCCommon_850::MCStatus st = posterior->ComputeStats();
    if (st.IsError()) return st;
    fit.fStatistic = posterior->GetFStatistic();
    fit.fSig = posterior->GetSig();
    if (cancel.WillCancel()) return MCCommon_850::MCStatus(1, false);
    posterior->CalculatePlots(warnings);
    return st;
}

} // namespace MCBSN_850
