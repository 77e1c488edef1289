#include "bsn/onesample/bsn1samplepoisson.h"

#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSN1SamplePoisson::BSN1SamplePoisson(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSN1SampleDiscreteProcedure(settings, varList) {}

BSN1SamplePoisson::~BSN1SamplePoisson() = default;

MCCommon_850::MCStatus BSN1SamplePoisson::GenerateOutput() {
    m_outputStats = std::make_unique<BSN1SamplePoisnOutputStats>(m_settings, *this);
    return {};
}

void BSN1SamplePoisson::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SamplePoisson display start");
    displayBuild(os);
    DisplayText(0, "End of display BSN1SamplePoisson object");
}

} // namespace MCBSN_850
