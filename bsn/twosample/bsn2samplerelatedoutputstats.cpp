#include "bsn/twosample/bsn2samplerelatedoutputstats.h"

#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/twosample/bsn2samplerelated.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

// The statistics of a pair are kept by the shared normal-mean base; only the
// second members of the pairs are added here.
class BSN2SampleRelatedOutputStatsImp {
public:
    explicit BSN2SampleRelatedOutputStatsImp(const BSNSettings& settings)
        : secondVarIndices(settings.Get2ndRelatedList()) {}

    std::vector<int> secondVarIndices;
};

BSN2SampleRelatedOutputStats::BSN2SampleRelatedOutputStats(const BSNSettings& settings,
                                                           const BSN2SampleRelated& procedure)
    : BSNNormalMeanOutputStats(settings, procedure),
      m_imp(std::make_unique<BSN2SampleRelatedOutputStatsImp>(settings)) {}

BSN2SampleRelatedOutputStats::~BSN2SampleRelatedOutputStats() = default;

const std::vector<int>& BSN2SampleRelatedOutputStats::GetSecondVarIndices() const { return m_imp->secondVarIndices; }

void BSN2SampleRelatedOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleRelatedOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    BSNComponentDisplay::DisplayC("Analysis Type", GetSettings().GetAnalysType());
    DisplayIV("Second Variable Indices", m_imp->secondVarIndices);
    DisplayFields();
    DisplayText(0, "End of display BSN2SampleRelatedOutputStats object");
}

} // namespace MCBSN_850
