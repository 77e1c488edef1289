#pragma once
// RunControl: the cancel query of one host run. It answers yes once Ctrl-C
// was pressed (its own handler, installed for the whole run) or the
// caller's query says so, and it knows the phase the run is in, so that a
// cancellation or a failure can be reported with the phase it ended.
#include <memory>
#include <stdexcept>
#include <string>

#include "platform/common/mcstatus.h"
#include "platform/progress/mcquerycancel.h"

namespace bsncli {

enum class RunPhase { Settings, Choice, Data, Build, Output };

// "checking the settings", "reading the data", ...
const char* RunPhaseText(RunPhase phase);

// Thrown when a run notices a cancellation; carries the status to report
// (code 1 unless the analysis gave its own).
class RunCancelled : public std::runtime_error {
public:
    RunCancelled(RunPhase phase, MCCommon_850::MCStatus status);
    RunPhase Phase() const { return m_phase; }
    const MCCommon_850::MCStatus& Status() const { return m_status; }

private:
    RunPhase m_phase;
    MCCommon_850::MCStatus m_status;
};

class RunControl : public MCCommon_850::MCQueryCancel {
public:
    // Installs the Ctrl-C handler until destruction; `external` (may be
    // null) is asked as well, first.
    explicit RunControl(MCCommon_850::MCQueryCancel* external);
    ~RunControl() override;
    RunControl(const RunControl&) = delete;
    RunControl& operator=(const RunControl&) = delete;

    bool IsCancel() const override;

    // Moves to a phase and checks for a cancellation on the way in.
    void Enter(RunPhase phase);
    // Throws RunCancelled when a cancellation is pending.
    void Check() const;
    RunPhase Phase() const { return m_phase; }

    // The status code that a failure of the input in the current phase is
    // reported with (the settings file, the data file, the analysis asked
    // for, an output file).
    int FailureCode() const;

private:
    MCCommon_850::MCQueryCancel* m_external;
    MCCommon_850::MCAtomicCancel m_interrupted;
    RunPhase m_phase = RunPhase::Settings;
    struct Handler;
    std::unique_ptr<Handler> m_handler;
};

} // namespace bsncli
