#include "bsn/onesample/bsn1samplebinomial.h"

#include "bsn/onesample/bsn1samplebinooutputstats.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSN1SampleBinomial::BSN1SampleBinomial(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSN1SampleDiscreteProcedure(settings, varList) {}

BSN1SampleBinomial::~BSN1SampleBinomial() = default;

MCCommon_850::MCStatus BSN1SampleBinomial::GenerateOutput() {
    m_outputStats = std::make_unique<BSN1SampleBinoOutputStats>(m_settings, *this);
    return {};
}

void BSN1SampleBinomial::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleBinomial display start");
    displayBuild(os);
    DisplayText(0, "End of display BSN1SampleBinomial object");
}

} // namespace MCBSN_850
