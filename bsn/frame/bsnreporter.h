#pragma once
// BSNReporter: the progress report a procedure hands to the host's listener
// during a data pass; it knows one measure, "records" (records read so far).
#include <iosfwd>

#include "platform/progress/progress.h"

namespace MCBSN_850 {

class BSNReporter : public MCCommon_850::ProgressReport {
public:
    explicit BSNReporter(int nRecords = 0) : m_nRecords(nRecords) {}
    ~BSNReporter() override = default;

    void SetNRecords(int n) { m_nRecords = n; }
    int DiscreteMeasure(const std::string& name) const override;
    double ScaleMeasure(const std::string& name) const override;
    virtual void Display(std::ostream& os) const;

protected:
    int m_nRecords;
};

} // namespace MCBSN_850
