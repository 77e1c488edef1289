#include "bsn/frame/bsncomponent.h"

#include <ostream>

#include "bsn/loglinear/bsnloglinear.h"
#include "bsn/onesample/bsn1samplebinomial.h"
#include "bsn/onesample/bsn1samplenormal.h"
#include "bsn/onesample/bsn1samplepoisson.h"
#include "bsn/regression/bsnanova.h"
#include "bsn/regression/bsnmultipleregr.h"
#include "bsn/twosample/bsn2samplerelated.h"

namespace MCBSN_850 {

namespace {

std::unique_ptr<BSNAlgorithm> createProcedure(const BSNSettings& settings, const MCXML_850::MCVarList& varList) {
    switch (settings.GetModelType()) {
    case BSNConst::OneSample:
        switch (settings.GetTestDistType()) {
        case BSNConst::Normal:
            return std::make_unique<BSN1SampleNormal>(settings, varList);
        case BSNConst::Binomial:
            return std::make_unique<BSN1SampleBinomial>(settings, varList);
        case BSNConst::Poisson:
            return std::make_unique<BSN1SamplePoisson>(settings, varList);
        default:
            return nullptr;
        }
    case BSNConst::Related:
        return std::make_unique<BSN2SampleRelated>(settings, varList);
    case BSNConst::Regression:
        return std::make_unique<BSNMultipleRegr>(settings, varList);
    case BSNConst::Anova:
        return std::make_unique<BSNAnova>(settings, varList);
    case BSNConst::LogLinear:
        return std::make_unique<BSNLogLinear>(settings, varList);
    default:
        return nullptr;
    }
}

const MCCommon_850::MCWarnings kNoWarnings;

} // namespace

BSNComponent::BSNComponent(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : m_algorithm(createProcedure(settings, varList)) {
    if (m_algorithm && settings.GetProgressListener() != nullptr)
        m_algorithm->SetProgressListener(settings.GetProgressListener());
}

BSNComponent::~BSNComponent() = default;

MCCommon_850::MCStatus BSNComponent::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    if (!m_algorithm) return MCCommon_850::MCStatus(410001, false);
    return m_algorithm->BuildModel(iter);
}

void BSNComponent::Display(std::ostream& os) const {
    if (m_algorithm) m_algorithm->Display(os);
}

MCCommon_850::MCStatus BSNComponent::GetStatus() const {
    return m_algorithm ? m_algorithm->GetStatus() : MCCommon_850::MCStatus(410001, false);
}

const MCCommon_850::MCWarnings& BSNComponent::GetWarningMessages() const {
    return m_algorithm ? m_algorithm->GetWarningMessages() : kNoWarnings;
}

const BSNOutputStats* BSNComponent::GetOutputStats() const {
    return m_algorithm ? m_algorithm->GetOutputStats() : nullptr;
}

bool BSNComponent::IsModelBuilt() const { return m_algorithm && m_algorithm->IsModelBuilt(); }

void BSNComponent::SetCancelPtr(MCCommon_850::MCQueryCancel* query) {
    if (m_algorithm) m_algorithm->SetCancelPtr(query);
}

void BSNComponent::SetProgressListener(MCCommon_850::ProgressListener* listener) {
    if (m_algorithm) m_algorithm->SetProgressListener(listener);
}

} // namespace MCBSN_850
