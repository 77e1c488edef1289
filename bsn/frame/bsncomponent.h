#pragma once
// BSNComponent: the library's public entry object. Built from the settings
// and the variable list, it creates the one procedure the model type asks
// for, owns it and forwards every call to it.
#include <iosfwd>
#include <memory>

#include "bsn/frame/bsnalgorithm.h"

namespace MCBSN_850 {

class BSNComponent {
public:
    BSNComponent(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSNComponent();
    BSNComponent(const BSNComponent&) = delete;
    BSNComponent& operator=(const BSNComponent&) = delete;

    // False when the model type (or one-sample test distribution) names no
    // procedure of this library; the other calls then report internal error
    // 410001 and an empty result instead of running anything.
    bool HasProcedure() const { return m_algorithm != nullptr; }

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter);
    void Display(std::ostream& os) const;
    MCCommon_850::MCStatus GetStatus() const;
    const MCCommon_850::MCWarnings& GetWarningMessages() const;
    const BSNOutputStats* GetOutputStats() const;
    bool IsModelBuilt() const;
    void SetCancelPtr(MCCommon_850::MCQueryCancel* query);
    void SetProgressListener(MCCommon_850::ProgressListener* listener);

private:
    std::unique_ptr<BSNAlgorithm> m_algorithm;
};

} // namespace MCBSN_850
