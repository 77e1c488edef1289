#include "bsn/regression/siowfullfunction.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

void SiowFullFunction::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "SiowFullFunction (Rouder with r = 1)");
    RouderFullFunction::Display(os);
}

} // namespace MCBSN_850
