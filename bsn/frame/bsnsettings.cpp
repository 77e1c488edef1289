#include "bsn/frame/bsnsettings.h"

namespace MCBSN_850 {

using namespace BSNConst;

void BSNSettings::SetModelType(ModelTypes type, bool adjust) {
    m_modelType = type;
    if (!adjust) return;
    switch (type) {
    case OneSample:
    case Related:
        m_missScope = MissingAnalysis;
        m_priorType = Conjugate;
        break;
    case Independent:
        m_missScope = MissingListwise;
        m_priorType = Conjugate;
        m_regrCompType = Rouder;
        break;
    case Correlation:
        m_missScope = MissingAnalysis;
        m_priorType = Conjugate;
        // Correlation factors are integrated more loosely by default; a
        // tolerance the user chose is kept.
        if (m_tolValue == 1e-06) m_tolValue = 0.0001;
        break;
    case Regression:
    case Anova:
        m_missScope = MissingListwise;
        m_priorType = Reference;
        break;
    case LogLinear:
        m_missScope = MissingListwise;
        m_priorType = Conjugate;
        break;
    default:
        break;
    }
}

bool BSNSettings::SetDependVar(int index) {
    if (index < 0) return false;
    m_dependentVar = index;
    return true;
}

bool BSNSettings::SetFrequencyWeightVar(int index) {
    if (index < 0) return false;
    m_frequencyWeightVar = index;
    return true;
}

bool BSNSettings::SetRegrWeightVar(int index) {
    if (index < 0) return false;
    m_regrWeightVar = index;
    return true;
}

bool BSNSettings::SetGroupVar(int index) {
    if (index < 0) return false;
    m_groupVar = index;
    return true;
}

namespace {
bool validSizes(const std::vector<int>& sizes, std::size_t nFactors) {
    if (sizes.size() != nFactors) return false;
    for (int s : sizes)
        if (s <= 0) return false;
    return true;
}
} // namespace

bool BSNSettings::SetFactorNCategs(const std::vector<int>& sizes) {
    if (!validSizes(sizes, m_factors.size())) return false;
    m_factorSizes = sizes;
    return true;
}

bool BSNSettings::SetFullModFactorNCategs(const std::vector<int>& sizes) {
    if (!validSizes(sizes, m_fullModFactors.size())) return false;
    m_fullModFactorSizes = sizes;
    return true;
}

bool BSNSettings::Set2ndRelatedList(const std::vector<int>& v) {
    if (v.size() != m_covariates.size()) return false;
    m_2ndRelatedList = v;
    return true;
}

void BSNSettings::SetRegrCompType(RegrCompute v) {
    m_regrCompType = v;
    if (!MCCommon_850::MCMV::IsMissing(m_regrComPar)) return;
    if (v == Hyper) m_regrComPar = 3.0;
    if (v == Rouder) m_regrComPar = 1.0;
}

} // namespace MCBSN_850
