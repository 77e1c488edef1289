#include "bsn/frame/bsncorrreporter.h"

#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

int BSNCorrReporter::DiscreteMeasure(const std::string& name) const {
    if (name == "pairs") return m_nPairs;
    return BSNReporter::DiscreteMeasure(name);
}

void BSNCorrReporter::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "BSNCorrReporter display start");
    MCDisplay_850::DisplayI("Number of records", m_nRecords);
    MCDisplay_850::DisplayI("Number of pairs", m_nPairs);
    MCDisplay_850::DisplayText(0, "End of display BSNCorrReporter object");
}

} // namespace MCBSN_850
