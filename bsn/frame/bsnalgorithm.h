#pragma once
// BSNAlgorithm: abstract base of every analysis procedure. It holds what all
// procedures share (a copy of the settings and variable list, the status,
// the collected warnings, cancellation and progress, the owned result) and
// the two mechanisms every build uses: stage bookkeeping and the data pass.
#include <cmath>
#include <iosfwd>
#include <memory>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnreporter.h"
#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mccancelinfo.h"
#include "platform/records/multipassrecorditer.h"
#include "platform/variables/mcvarlist.h"

namespace MCBSN_850 {

class BSNAlgorithm {
public:
    // Final progress report of a pass: the frame's rule reports the total
    // once more after every pass; the normal-mean procedures only when
    // records were read since the last report.
    enum class FinalReport { Always, IfPending };

    BSNAlgorithm(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    virtual ~BSNAlgorithm();
    BSNAlgorithm(const BSNAlgorithm&) = delete;
    BSNAlgorithm& operator=(const BSNAlgorithm&) = delete;

    virtual MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) = 0;
    virtual void Display(std::ostream& os) const = 0;

    MCCommon_850::MCStatus GetStatus() const { return m_status; }
    bool IsModelBuilt() const { return m_modelBuilt; }
    const MCCommon_850::MCWarnings& GetWarningMessages() const { return m_warnings; }
    const BSNOutputStats* GetOutputStats() const { return m_outputStats.get(); }
    void SetCancelPtr(MCCommon_850::MCQueryCancel* query) { m_cancelInfo.SetCancelPtr(query); }
    void SetProgressListener(MCCommon_850::ProgressListener* listener) { m_progressListener = listener; }
    const BSNSettings& GetSettings() const { return m_settings; }

    // A frequency weight rounded half up (value + 0.5, truncated). Missing,
    // negative and small weights give 0; the result is a whole number kept as
    // a double so that weights beyond the int range stay exact.
    static double RoundFrequencyWeight(double value) {
        if (MCCommon_850::MCMV::IsMissing(value)) return 0.0;
        const double w = std::trunc(value + 0.5);
        return w >= 1.0 ? w : 0.0;
    }

protected:
    // Stores a stage's status. A warning is moved to the warnings and the
    // status cleared, so a warning never stops the build. Returns true when
    // the build may go on (no error).
    bool TakeStageStatus(const MCCommon_850::MCStatus& status);

    // Appends a helper object's warnings to the procedure's own.
    void AppendWarnings(const MCCommon_850::MCWarnings& warnings) { m_warnings.Append(warnings); }

    // One data pass over the records. Each non-null record is counted and,
    // when its frequency weight (if any) rounds to at least 1, handed to
    // update(record, weight). Progress goes to the listener every
    // GetProgressFrequency() records. A cancellation ends the pass with the
    // bare error status 1. Nothing is stored per record.
    template <class Update>
    MCCommon_850::MCStatus RunDataPass(MCCommon_850::MultiPassRecordIter& iter, Update&& update,
                                       FinalReport finalReport = FinalReport::Always);

    // Sets the model-built flag from the final status and returns it.
    MCCommon_850::MCStatus FinishBuild();

    BSNSettings m_settings;
    MCXML_850::MCVarList m_varList;
    bool m_modelBuilt = false;
    std::unique_ptr<BSNOutputStats> m_outputStats;
    MCMath_850::MCCancelInfo m_cancelInfo;
    MCCommon_850::ProgressListener* m_progressListener = nullptr;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
};

template <class Update>
MCCommon_850::MCStatus BSNAlgorithm::RunDataPass(MCCommon_850::MultiPassRecordIter& iter, Update&& update,
                                                 FinalReport finalReport) {
    const int weightVar = m_settings.GetFrequencyWeightVar();
    const int frequency = m_settings.GetProgressFrequency();
    BSNReporter reporter(0);
    int countdown = frequency;
    int counter = 0;

    iter.Reset();
    while (iter.Advance()) {
        const MCCommon_850::Record* record = iter.GetRecord();
        if (record == nullptr) continue;
        if (m_cancelInfo.WillCancel()) return MCCommon_850::MCStatus(1, false);
        const double weight = weightVar >= 0 ? RoundFrequencyWeight(record->GetValue(weightVar)) : 1.0;
        if (weight >= 1.0) update(*record, weight);
        --countdown;
        ++counter;
        if (m_progressListener != nullptr && countdown <= 0) {
            reporter.SetNRecords(counter);
            m_progressListener->Notify(reporter);
            countdown = frequency;
        }
    }
    const bool pending = finalReport == FinalReport::Always ? countdown >= 1 : countdown < frequency;
    if (m_progressListener != nullptr && pending) {
        reporter.SetNRecords(counter);
        m_progressListener->Notify(reporter);
    }
    return {};
}

} // namespace MCBSN_850
