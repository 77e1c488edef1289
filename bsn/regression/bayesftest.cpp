#include "bsn/regression/bayesftest.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

void BayesFTest::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BayesFTest display start");
    DisplayB("Use intercept", m_useIntercept);
    DisplayS("Label", m_label);
    DisplayIV("Predictors", m_predictors);
    DisplayDV("Test values", m_testValues);
    DisplayText(0, "End of display BayesFTest object");
}

} // namespace MCBSN_850
