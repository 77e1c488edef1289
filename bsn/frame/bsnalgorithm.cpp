#include "bsn/frame/bsnalgorithm.h"

namespace MCBSN_850 {

BSNAlgorithm::BSNAlgorithm(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : m_settings(settings), m_varList(varList), m_cancelInfo(nullptr),
      m_progressListener(settings.GetProgressListener()) {
    m_cancelInfo.SetCancelPtr(settings.GetCancelPointer());
}

BSNAlgorithm::~BSNAlgorithm() = default;

bool BSNAlgorithm::TakeStageStatus(const MCCommon_850::MCStatus& status) {
    m_status = status;
    if (m_status.IsWarning()) {
        m_warnings.AddWarning(m_status, nullptr);
        m_status = MCCommon_850::MCStatus();
    }
    return !m_status.IsError();
}

MCCommon_850::MCStatus BSNAlgorithm::FinishBuild() {
    m_modelBuilt = !m_status.IsError();
    return m_status;
}

} // namespace MCBSN_850
