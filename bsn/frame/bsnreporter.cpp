#include "bsn/frame/bsnreporter.h"

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

int BSNReporter::DiscreteMeasure(const std::string& name) const { return name == "records" ? m_nRecords : -1; }

double BSNReporter::ScaleMeasure(const std::string& /*name*/) const { return MCCommon_850::MCMV::Missing(); }

void BSNReporter::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "BSNReporter display start");
    MCDisplay_850::DisplayI("Number of records", m_nRecords);
    MCDisplay_850::DisplayText(0, "End of display BSNReporter object");
}

} // namespace MCBSN_850
