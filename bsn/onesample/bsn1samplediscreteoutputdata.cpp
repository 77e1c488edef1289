#include "bsn/onesample/bsn1samplediscreteoutputdata.h"

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

BSN1SampleDiscreteOutputData::BSN1SampleDiscreteOutputData(const BSNSettings& s, const std::vector<int>& vars)
    : settings(s), varIndices(vars), isLogBayesFactor(vars.size(), false) {
    for (auto* v : {&bayesFactors, &logBayesFactors, &ns, &modes, &means, &variances, &lowerLimits, &upperLimits})
        v->assign(vars.size(), MCCommon_850::MCMV::Missing());
}

void BSN1SampleDiscreteOutputData::DisplayFactors() const {
    using namespace MCDisplay_850;
    DisplayIV("Variable indices", varIndices);
    DisplayDV("Bayes factors", bayesFactors);
    DisplayBV("Is log Bayes factor", isLogBayesFactor);
    DisplayDV("Log Bayes factors", logBayesFactors);
    DisplayDV("Ns", ns);
}

void BSN1SampleDiscreteOutputData::DisplaySummaries() const {
    using namespace MCDisplay_850;
    DisplayDV("Mode values", modes);
    DisplayDV("Mean values", means);
    DisplayDV("Variance values", variances);
    DisplayDV("Lower limits", lowerLimits);
    DisplayDV("Upper limits", upperLimits);
}

} // namespace MCBSN_850
