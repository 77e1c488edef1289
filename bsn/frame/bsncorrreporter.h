#pragma once
// BSNCorrReporter: the correlation procedure's progress report, which adds
// the number of variable pairs done ("pairs") to the record count.
#include "bsn/frame/bsnreporter.h"

namespace MCBSN_850 {

class BSNCorrReporter : public BSNReporter {
public:
    explicit BSNCorrReporter(int nRecords) : BSNReporter(nRecords) {}

    void SetNPairs(int n) { m_nPairs = n; }
    int DiscreteMeasure(const std::string& name) const override;
    void Display(std::ostream& os) const override;

private:
    int m_nPairs = -1;
};

} // namespace MCBSN_850
