#include "bsn/loglinear/bsnloglinearoutputstatsimp.h"

#include "bsn/loglinear/bsnloglinear.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

BSNLogLinearOutputStatsImp::BSNLogLinearOutputStatsImp(const BSNSettings& s, const BSNLogLinear& p)
    : settings(s), table(p.GetContingency() != nullptr ? *p.GetContingency() : BSNContingency({})),
      chiSquare(p.GetChiSquareResult()), likeRatio(p.GetLikeRatioResult()), contCorrect(p.GetContCorrectResult()),
      fisher1(MCMV::Sanitize(p.GetFisher1SidedSig())), fisher2(MCMV::Sanitize(p.GetFisher2SidedSig())),
      bayesFactor(MCMV::Sanitize(p.GetBayesFactor())), isLogBayesFactor(p.IsLogBayesFactor()),
      logBayesFactor(MCMV::Sanitize(p.GetLogBayesFactor())), t(p.GetT()), t1(p.GetT1()), t2(p.GetT2()),
      pairs(p.GetPosteriorPairs()), plotArguments(MCMV::Sanitize(p.GetPlotArguments())),
      plotPosterior(MCMV::Sanitize(p.GetPlotDensities())) {
    for (const BayesEstimation& e : p.GetPosteriorEstimations()) estimations.push_back(e.Sanitized());
}

void BSNLogLinearOutputStatsImp::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNLogLinearOutputStatsImp display start");
    table.Display(os);
    DisplayText(0, "Chi Square statistic");
    chiSquare.Display(os);
    DisplayText(0, "Likelihood ratio statistic");
    likeRatio.Display(os);
    DisplayText(0, "Continuity correction statistic");
    contCorrect.Display(os);
    DisplayD("Fisher one-sided significance", fisher1);
    DisplayD("Fisher two-sided significance", fisher2);
    DisplayD("Bayes factor", bayesFactor);
    DisplayB("Is log Bayes factor", isLogBayesFactor);
    DisplayD("Log Bayes factor", logBayesFactor);
    DisplayI("T for intrinsic priors", t);
    DisplayI("T1 for intrinsic priors", t1);
    DisplayI("T2 for intrinsic priors", t2);
    DisplayText(0, "Bayesian estimation on pairs of categories");
    for (std::size_t k = 0; k < estimations.size(); ++k) {
        if (k < pairs.size()) DisplayIV("Pair (rows, columns)", {pairs[k][0], pairs[k][1], pairs[k][2], pairs[k][3]});
        estimations[k].Display(os);
    }
    DisplayI("Number of plotted pairs", static_cast<int>(plotArguments.size()));
    DisplayText(0, "End of display BSNLogLinearOutputStatsImp object");
}

} // namespace MCBSN_850
