#pragma once
// BSN2SampleIndependent: the independent-samples procedure. The group field
// (GetGroupVar) splits the cases: value 0 is the first group, 1 the second,
// anything else (missing included) neither. One pass over the records
// accumulates per-group weighted moments of every test variable
// (GetCovariates); then, by analysis type, the Bayes-factor stage (the
// classical pooled and Welch t tests and a Bayes factor of equal means) and
// the posterior stage (the posterior of the mean difference, second group
// minus first), and finally the result, a BSN2SampleIndOutputStats.
//
// Weighting is on when a frequency-weight or a regression-weight field is
// set. A case's frequency is the frequency-weight field's value (1 without
// one), rounded half up; its case weight is 1 without a regression-weight
// field and otherwise is read from the frequency-weight field: the same
// field serves both, by design. Cases whose rounded frequency or case
// weight is not positive (or missing) are dropped.
#include <iosfwd>
#include <memory>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/twosample/bsn2sampleindbasicstats.h"
#include "bsn/twosample/bsn2sampleindbayesfactor.h"
#include "bsn/twosample/bsn2sampleindposterior.h"

namespace MCBSN_850 {

class BSN2SampleIndependent : public BSNAlgorithm {
public:
    BSN2SampleIndependent(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSN2SampleIndependent() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    // The data pass: error 410040 without a group field, 410039 without test
    // variables, 1 when cancelled; warning 410030 (no datum) when some
    // variable has fewer than three weighted cases in both groups together.
    MCCommon_850::MCStatus ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter);
    // True, with the status set to the cancellation error 1, when the host
    // asks to stop.
    bool IsCancel();

    const BSN2SampleIndBasicStats& GetFirstGroupStats() const { return m_first; }
    const BSN2SampleIndBasicStats& GetSecondGroupStats() const { return m_second; }
    // The stage objects; null when the analysis type did not ask for them
    // (or the stage could not be set up).
    const BSN2SampleIndBayesFactor* GetBayesFactor() const { return m_bayesFactor.get(); }
    const BSN2SampleIndPosterior* GetPosterior() const { return m_posterior.get(); }

private:
    BSN2SampleIndBasicStats m_first;
    BSN2SampleIndBasicStats m_second;
    std::unique_ptr<BSN2SampleIndBayesFactor> m_bayesFactor;
    std::unique_ptr<BSN2SampleIndPosterior> m_posterior;
};

} // namespace MCBSN_850
