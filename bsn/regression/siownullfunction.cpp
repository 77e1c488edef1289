#include "bsn/regression/siownullfunction.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

void SiowNullFunction::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "SiowNullFunction (Rouder with r = 1)");
    RouderNullFunction::Display(os);
}

} // namespace MCBSN_850
