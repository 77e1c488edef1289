#include "cli/runcontrol.h"

#include <signal.h>

namespace bsncli {

namespace {

MCCommon_850::MCAtomicCancel* g_interruptCancel = nullptr;

extern "C" void onInterrupt(int) {
    if (g_interruptCancel != nullptr) g_interruptCancel->Cancel();
}

} // namespace

const char* RunPhaseText(RunPhase phase) {
    switch (phase) {
    case RunPhase::Settings: return "checking the settings";
    case RunPhase::Choice: return "choosing the analysis";
    case RunPhase::Data: return "reading the data";
    case RunPhase::Build: return "building the model";
    case RunPhase::Output: return "writing the output";
    }
    return "running";
}

RunCancelled::RunCancelled(RunPhase phase, MCCommon_850::MCStatus status)
    : std::runtime_error(std::string("The analysis was cancelled while ") + RunPhaseText(phase)), m_phase(phase),
      m_status(status) {}

// Ctrl-C asks the run to stop; a second Ctrl-C ends the program at once (the
// handler is installed for one shot).
struct RunControl::Handler {
    struct sigaction previous {};
    bool installed = false;
};

RunControl::RunControl(MCCommon_850::MCQueryCancel* external) : m_external(external), m_handler(std::make_unique<Handler>()) {
    g_interruptCancel = &m_interrupted;
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    action.sa_flags = SA_RESETHAND;
    sigemptyset(&action.sa_mask);
    m_handler->installed = sigaction(SIGINT, &action, &m_handler->previous) == 0;
}

RunControl::~RunControl() {
    if (m_handler->installed) sigaction(SIGINT, &m_handler->previous, nullptr);
    g_interruptCancel = nullptr;
}

bool RunControl::IsCancel() const {
    // The caller's query first: a test may press Ctrl-C from inside it.
    const bool external = m_external != nullptr && m_external->IsCancel();
    return m_interrupted.IsCancel() || external;
}

void RunControl::Enter(RunPhase phase) {
    m_phase = phase;
    Check();
}

void RunControl::Check() const {
    if (IsCancel()) throw RunCancelled(m_phase, MCCommon_850::MCStatus(1, false));
}

int RunControl::FailureCode() const {
    switch (m_phase) {
    case RunPhase::Settings: return 420060;
    case RunPhase::Choice: return 420062;
    case RunPhase::Data:
    case RunPhase::Build: return 420061;
    case RunPhase::Output: return 420063;
    }
    return 420060;
}

} // namespace bsncli
