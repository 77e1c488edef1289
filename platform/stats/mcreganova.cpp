#include "platform/stats/mcreganova.h"

#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

void MCRegANOVA::Sanitize() {
    using MCCommon_850::MCMV;
    for (double* v : {&regressionSS, &regressionDF, &regressionMS, &residualSS, &residualDF, &residualMS, &totalSS,
                      &totalDF, &f, &sig})
        *v = MCMV::Sanitize(*v);
}

void MCRegANOVA::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCRegANOVA display start");
    DisplayD("Regression SS", regressionSS);
    DisplayD("Regression DF", regressionDF);
    DisplayD("Regression MS", regressionMS);
    DisplayD("Residual SS", residualSS);
    DisplayD("Residual DF", residualDF);
    DisplayD("Residual MS", residualMS);
    DisplayD("Total SS", totalSS);
    DisplayD("Total DF", totalDF);
    DisplayD("F", f);
    DisplayD("Significance", sig);
    DisplayText(0, "MCRegANOVA display end");
}

} // namespace MCMath_850
