#include "bsn/twosample/bsn2samplerelatedoutputstats.h"

#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "bsn/twosample/bsn2samplerelated.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

// The statistics of a pair are those of a one-sample normal analysis of the
// difference, so they are kept in a one-sample normal result; only the
// second members of the pairs are added.
class BSN2SampleRelatedOutputStatsImp {
public:
    explicit BSN2SampleRelatedOutputStatsImp(const BSNSettings& settings)
        : stats(settings), secondVarIndices(settings.Get2ndRelatedList()) {}

    BSN1SampleNormOutputStats stats;
    std::vector<int> secondVarIndices;
};

BSN2SampleRelatedOutputStats::BSN2SampleRelatedOutputStats(const BSNSettings& settings,
                                                           const BSN2SampleRelated& p)
    : m_imp(std::make_unique<BSN2SampleRelatedOutputStatsImp>(settings)) {
    m_imp->stats.SetOutputValues(settings, settings.GetCovariates(), p.GetFactors(), p.GetNs(),
                                 p.GetStdDeviations(), p.GetStdErrorMeans(), p.GetDfs(), p.GetSigs(),
                                 p.GetTtests(), p.getModeValues(), p.getPostMeanValues(), p.getVariances(),
                                 p.getLowerimits(), p.getUpperLimits(), p.GetMeans());
    m_imp->stats.SetPlotValues(p.GetPlotArguments4Likelihoods(), p.GetPlotArguments4Prior(),
                               p.GetPlotArguments4Posterior(), p.GetPlotLikelihoods(), p.GetPlotPosterior(),
                               p.GetPlotPrior());
}

BSN2SampleRelatedOutputStats::~BSN2SampleRelatedOutputStats() = default;

const BSNSettings& BSN2SampleRelatedOutputStats::GetSettings() const { return m_imp->stats.GetSettings(); }
const std::vector<int>& BSN2SampleRelatedOutputStats::GetVarIndices() const { return m_imp->stats.GetVarIndices(); }
const std::vector<int>& BSN2SampleRelatedOutputStats::GetSecondVarIndices() const { return m_imp->secondVarIndices; }
const std::vector<double>& BSN2SampleRelatedOutputStats::GetBayesFactors() const {
    return m_imp->stats.GetBayesFactors();
}
const std::vector<double>& BSN2SampleRelatedOutputStats::GetNs() const { return m_imp->stats.GetNs(); }
const std::vector<double>& BSN2SampleRelatedOutputStats::GetStdDevs() const { return m_imp->stats.GetStdDevs(); }
const std::vector<double>& BSN2SampleRelatedOutputStats::GetEMs() const { return m_imp->stats.GetEMs(); }
const std::vector<double>& BSN2SampleRelatedOutputStats::GetDFValues() const { return m_imp->stats.GetDFValues(); }
const std::vector<double>& BSN2SampleRelatedOutputStats::GetSigs() const { return m_imp->stats.GetSigs(); }
const std::vector<double>& BSN2SampleRelatedOutputStats::GetTValues() const { return m_imp->stats.GetTValues(); }
const std::vector<double>& BSN2SampleRelatedOutputStats::GetModeValues() const {
    return m_imp->stats.GetModeValues();
}
const std::vector<double>& BSN2SampleRelatedOutputStats::GetPostMeanValues() const {
    return m_imp->stats.GetPostMeanValues();
}
const std::vector<double>& BSN2SampleRelatedOutputStats::GetVarianceValues() const {
    return m_imp->stats.GetVarianceValues();
}
const std::vector<double>& BSN2SampleRelatedOutputStats::GetLowerLimits() const {
    return m_imp->stats.GetLowerLimits();
}
const std::vector<double>& BSN2SampleRelatedOutputStats::GetMeanValues() const {
    return m_imp->stats.GetMeanValues();
}
const std::vector<double>& BSN2SampleRelatedOutputStats::GetUpperLimits() const {
    return m_imp->stats.GetUpperLimits();
}
const BSN2SampleRelatedOutputStats::Curves& BSN2SampleRelatedOutputStats::GetPlotArguments4Likelihoods() const {
    return m_imp->stats.GetPlotArguments4Likelihoods();
}
const BSN2SampleRelatedOutputStats::Curves& BSN2SampleRelatedOutputStats::GetPlotArguments4Prior() const {
    return m_imp->stats.GetPlotArguments4Prior();
}
const BSN2SampleRelatedOutputStats::Curves& BSN2SampleRelatedOutputStats::GetPlotArguments4Posterior() const {
    return m_imp->stats.GetPlotArguments4Posterior();
}
const BSN2SampleRelatedOutputStats::Curves& BSN2SampleRelatedOutputStats::GetPlotLikelihoods() const {
    return m_imp->stats.GetPlotLikelihoods();
}
const BSN2SampleRelatedOutputStats::Curves& BSN2SampleRelatedOutputStats::GetPlotPosterior() const {
    return m_imp->stats.GetPlotPosterior();
}
const BSN2SampleRelatedOutputStats::Curves& BSN2SampleRelatedOutputStats::GetPlotPrior() const {
    return m_imp->stats.GetPlotPrior();
}

void BSN2SampleRelatedOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleRelatedOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    BSNComponentDisplay::DisplayC("Analysis Type", GetSettings().GetAnalysType());
    DisplayIV("Second Variable Indices", m_imp->secondVarIndices);
    m_imp->stats.DisplayFields();
    DisplayText(0, "End of display BSN2SampleRelatedOutputStats object");
}

} // namespace MCBSN_850
