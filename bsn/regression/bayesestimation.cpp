#include "bsn/regression/bayesestimation.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

void BayesEstimation::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesEstimation display start");
    DisplayD("Mode value", mode_);
    DisplayD("Mean value for posterior", mean_);
    DisplayD("Variance value", variance_);
    DisplayD("Lower bound value", lower_);
    DisplayD("Upper bound value", upper_);
    DisplayText(0, "End of display BayesEstimation object");
}

} // namespace MCBSN_850
