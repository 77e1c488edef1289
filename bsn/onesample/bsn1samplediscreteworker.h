#pragma once
// BSN1SampleDiscreteWorker: what every worker of the one-sample binomial and
// Poisson analyses shares: the borrowed settings, its own running sums
// (`Counts`, fed record by record), its own status and warnings.
//
// `Counts` provides Update(record, weight), Size(), HasAnyCase() and
// Display(os).
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

template <class Counts>
class BSN1SampleDiscreteWorker {
public:
    void Update(const MCCommon_850::Record& record, double weight) { m_counts.Update(record, weight); }
    // Closes a data pass: error 410003 when no variable has a case.
    MCCommon_850::MCStatus EndDataPass() {
        m_status = m_counts.HasAnyCase() ? MCCommon_850::MCStatus() : MCCommon_850::MCStatus(410003, false);
        return m_status;
    }

    const Counts& GetCounts() const { return m_counts; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }
    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }

protected:
    // The settings are borrowed from the owning procedure and must outlive
    // the worker.
    BSN1SampleDiscreteWorker(const BSNSettings& settings, const Counts& counts)
        : m_settings(settings), m_counts(counts) {}
    ~BSN1SampleDiscreteWorker() = default;

    void displayWorker(std::ostream& os) const {
        m_counts.Display(os);
        BSNComponentDisplay::DisplayStatus("Status", m_status);
        BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    }

    const BSNSettings& m_settings;
    Counts m_counts;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCBSN_850
