#pragma once
// BSN1SampleNormal: the one-sample normal procedure. One pass over the
// records gives every test variable its frequency-weighted mean and
// variance; from them come the classical statistics (standard deviation,
// standard error, df, N), then the t test and Bayes factor
// (BSN1SampleNormalFactor) and/or the posterior of the mean
// (BSN1SampleNormalInference), as the analysis type asks. Each test variable
// is analysed on its own valid cases.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/onesample/bsn1samplenormalfactor.h"
#include "bsn/onesample/bsn1samplenormalinference.h"
#include "bsn/onesample/bsnnormalmeanresults.h"
#include "platform/stats/mccontstats.h"

namespace MCBSN_850 {

class BSN1SampleNormal : public BSNAlgorithm, public BSNNormalMeanResults {
public:
    BSN1SampleNormal(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSN1SampleNormal() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    // The results (BSNNormalMeanResults getters) have one entry per test
    // variable, in the order of GetCovariates().

    // The steps of BuildModel, public so that each can be exercised alone.
    // Sizes the per-variable storage; error 410004 without test variables.
    MCCommon_850::MCStatus init();
    // The data pass and the classical statistics; error 410003 without any
    // record, 1 when cancelled during the pass. Constant variables (410010)
    // and variables with fewer than two cases (410025) are reported in the
    // warnings, not in the returned status.
    MCCommon_850::MCStatus ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter);
    // True when the build must end: an error is pending, or a cancellation
    // was requested (which becomes error 410016).
    bool isStop();
    void createFactor();
    void createInference();
    // Copies the calculators' results and makes the result object.
    MCCommon_850::MCStatus GenerateOutput();

private:
    std::unique_ptr<BSN1SampleNormalFactor> m_factor;
    std::unique_ptr<BSN1SampleNormalInference> m_inference;
    std::vector<MCMath_850::MCContStats> m_stats;
};

} // namespace MCBSN_850
