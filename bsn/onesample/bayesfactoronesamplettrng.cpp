#include "bsn/onesample/bayesfactoronesamplettrng.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BayesFactorOneSampleTTRng::BayesFactorOneSampleTTRng() { m_random.SetParamGamma(0.5, 0.5); }

double BayesFactorOneSampleTTRng::GetRandom() {
    double x = 0.0;
    do {
        x = m_random.GetGamma();
    } while (!(x > 0.0));
    return 1.0 / x;
}

void BayesFactorOneSampleTTRng::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFactorOneSampleTTRng display start");
    m_random.Display(os);
    DisplayText(0, "End of display BayesFactorOneSampleTTRng object");
}

} // namespace MCBSN_850
