#include "bsn/onesample/bsn1samplenormoutputstats.h"

#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormal.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSN1SampleNormOutputStats::BSN1SampleNormOutputStats(const BSNSettings& settings)
    : BSNNormalMeanOutputStats(settings) {}

BSN1SampleNormOutputStats::BSN1SampleNormOutputStats(const BSNSettings& settings, const BSN1SampleNormal& procedure)
    : BSNNormalMeanOutputStats(settings, procedure) {}

BSN1SampleNormOutputStats::~BSN1SampleNormOutputStats() = default;

BSN1SampleNormOutputStats::BSN1SampleNormOutputStats(const BSN1SampleNormOutputStats& other) = default;

BSN1SampleNormOutputStats& BSN1SampleNormOutputStats::operator=(const BSN1SampleNormOutputStats& other) = default;

void BSN1SampleNormOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleNormOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    BSNComponentDisplay::DisplayC("Analysis Type", GetSettings().GetAnalysType());
    DisplayFields();
    DisplayText(0, "End of display BSN1SampleNormOutputStats object");
}

} // namespace MCBSN_850
