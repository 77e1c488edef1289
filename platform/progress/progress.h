#pragma once
// Progress reports: during a long data pass the library hands a small report
// object to the host's listener; the host asks it for named measures.
#include <string>

namespace MCCommon_850 {

class ProgressReport {
public:
    virtual ~ProgressReport() = default;
    // The value of a counted measure ("records", "pairs"), or -1 if the report
    // does not know that measure.
    virtual int DiscreteMeasure(const std::string& name) const = 0;
    // The value of a continuous measure, or the system-missing value.
    virtual double ScaleMeasure(const std::string& name) const = 0;
};

class ProgressListener {
public:
    virtual ~ProgressListener() = default;
    // Called on the thread that runs the build; the report is only valid
    // during the call.
    virtual void Notify(const ProgressReport& report) = 0;
};

} // namespace MCCommon_850
