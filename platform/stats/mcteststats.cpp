#include "platform/stats/mcteststats.h"

#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

void MCTestStats::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "MCTestStats display start");
    MCDisplay_850::DisplayD("Statistic", m_statistic);
    MCDisplay_850::DisplayD("DF", m_df);
    MCDisplay_850::DisplayD("DF2", m_df2);
    MCDisplay_850::DisplayI("Test type", m_type);
    MCDisplay_850::DisplayD("Significance", m_sig);
    MCDisplay_850::DisplayText(0, "MCTestStats display end");
}

} // namespace MCMath_850
