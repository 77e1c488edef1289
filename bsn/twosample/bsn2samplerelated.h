#pragma once
// BSN2SampleRelated: the related-samples (paired) procedure. The i-th
// variable of GetCovariates() is paired with the i-th of
// Get2ndRelatedList(), and each pair is analysed as a one-sample normal
// problem on the difference first minus second: its statistics come from
// weighted means and cross-products over the cases where both members are
// present, and the t test, Bayes factors and posterior are those of the
// one-sample normal procedure applied to the difference.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/onesample/bsn1samplenormalinference.h"
#include "bsn/onesample/bsnnormalmeanresults.h"
#include "platform/stats/mcmeansxproddata.h"

namespace MCBSN_850 {

class BSN2SampleRelated : public BSNAlgorithm, public BSNNormalMeanResults {
public:
    BSN2SampleRelated(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSN2SampleRelated() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    // The results (BSNNormalMeanResults getters) have one entry per pair, in
    // list order; the means are mean differences.

    // The steps of BuildModel, public so that each can be exercised alone.
    // The data pass and the difference statistics of every pair; error 1
    // when cancelled during the pass. Pairs with fewer than two cases
    // (410029) or a constant difference (410028) are reported in the
    // warnings, not in the returned status.
    MCCommon_850::MCStatus ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter);
    // Reads the two members of a pair into values[0..1]; true when either is
    // missing.
    static bool HasMissing(const MCCommon_850::Record& record, const int pairVars[2], double values[2]);
    // t and significance of pair i (missing when they cannot be computed).
    void computeTtest(int i);
    // t test and Bayes factor of every pair.
    MCCommon_850::MCStatus computeFactor();
    // Posterior of every pair's mean difference.
    MCCommon_850::MCStatus computeInference();
    void createInference();
    MCCommon_850::MCStatus GenerateOutput();

private:
    std::vector<MCMath_850::MCMeansXProdData> m_pairStats;
    std::unique_ptr<BSN1SampleNormalInference> m_inference;
};

} // namespace MCBSN_850
