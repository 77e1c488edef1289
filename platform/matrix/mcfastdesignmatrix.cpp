#include "platform/matrix/mcfastdesignmatrix.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

using MCCommon_850::MCMV;

MCFastDesignMatrix::MCFastDesignMatrix(const std::vector<int>& factors, const std::vector<int>& factorSizes,
                                       const std::vector<int>& covariates, bool intercept)
    : m_intercept(intercept), m_nParameters(intercept ? 1 : 0), m_nEffectsTotal(intercept ? 1 : 0) {
    AddModelEffects(factors, factorSizes, false);
    AddModelEffects(covariates, {}, true);
}

void MCFastDesignMatrix::AddModelEffects(const std::vector<int>& effects, const std::vector<int>& sizes,
                                         bool covariates) {
    for (std::size_t i = 0; i < effects.size(); ++i) {
        MCModelEffect e;
        e.variable = effects[i];
        e.nCategories = covariates ? 0 : std::max(1, i < sizes.size() ? sizes[i] : 1);
        e.firstParameter = m_nParameters;
        m_nParameters += covariates ? 1 : e.nCategories;
        m_effects.push_back(e);
        m_effectShift.push_back(0.0);
        ++m_nEffectsTotal;
    }
}

int MCFastDesignMatrix::FindEffect(int variable) const {
    for (std::size_t i = 0; i < m_effects.size(); ++i)
        if (m_effects[i].variable == variable) return static_cast<int>(i);
    return -1;
}

int MCFastDesignMatrix::CategoryCode(double value, int nCategories) {
    if (MCMV::IsMissing(value)) return -1;
    const double code = std::floor(value + 0.1);
    return code >= 0.0 && code < static_cast<double>(nCategories) ? static_cast<int>(code) : -1;
}

bool MCFastDesignMatrix::ExpandRowX(const MCCommon_850::Record& record, double* x) const {
    std::fill(x, x + m_nParameters, 0.0);
    if (m_intercept) x[0] = 1.0;
    for (std::size_t i = 0; i < m_effects.size(); ++i) {
        const MCModelEffect& e = m_effects[i];
        const double v = record.GetValue(e.variable);
        if (e.IsCovariate()) {
            if (MCMV::IsMissing(v)) return false;
            x[e.firstParameter] = v - m_effectShift[i];
        } else {
            const int c = CategoryCode(v, e.nCategories);
            if (c < 0) return false;
            x[e.firstParameter + c] = 1.0;
        }
    }
    return true;
}

bool MCFastDesignMatrix::ExpandRowXY(const MCCommon_850::Record& record, double* xy) const {
    const double y = record.GetValue(m_depVar);
    if (MCMV::IsMissing(y) || !ExpandRowX(record, xy)) return false;
    xy[m_nParameters] = y - m_depShift;
    return true;
}

int MCFastDesignMatrix::expandSparse(const MCCommon_850::Record& record, int* indices, double* values,
                                     bool withY) const {
    int n = 0;
    if (m_intercept) {
        indices[n] = 0;
        values[n++] = 1.0;
    }
    for (std::size_t i = 0; i < m_effects.size(); ++i) {
        const MCModelEffect& e = m_effects[i];
        const double v = record.GetValue(e.variable);
        if (e.IsCovariate()) {
            if (MCMV::IsMissing(v)) return -1;
            indices[n] = e.firstParameter;
            values[n++] = v - m_effectShift[i];
        } else {
            const int c = CategoryCode(v, e.nCategories);
            if (c < 0) return -1;
            indices[n] = e.firstParameter + c;
            values[n++] = 1.0;
        }
    }
    if (withY) {
        const double y = record.GetValue(m_depVar);
        if (MCMV::IsMissing(y)) return -1;
        indices[n] = m_nParameters;
        values[n++] = y - m_depShift;
    }
    return n;
}

int MCFastDesignMatrix::ExpandRowXY(const MCCommon_850::Record& record, int* indices, double* values) const {
    return expandSparse(record, indices, values, true);
}

int MCFastDesignMatrix::ExpandRowX(const MCCommon_850::Record& record, int* indices, double* values) const {
    return expandSparse(record, indices, values, false);
}

bool MCFastDesignMatrix::SetShifts(const MCCommon_850::Record& record) {
    std::vector<double> shifts(m_effects.size(), 0.0);
    for (std::size_t i = 0; i < m_effects.size(); ++i) {
        const MCModelEffect& e = m_effects[i];
        const double v = record.GetValue(e.variable);
        if (e.IsCovariate()) {
            if (MCMV::IsMissing(v)) return false;
            shifts[i] = v;
        } else if (CategoryCode(v, e.nCategories) < 0) {
            return false;
        }
    }
    double y = 0.0;
    if (m_depVar >= 0) {
        y = record.GetValue(m_depVar);
        if (MCMV::IsMissing(y)) return false;
    }
    m_effectShift = shifts;
    m_depShift = y;
    m_shifted = true;
    return true;
}

void MCFastDesignMatrix::ClearShifts() {
    std::fill(m_effectShift.begin(), m_effectShift.end(), 0.0);
    m_depShift = 0.0;
    m_shifted = false;
}

std::vector<double> MCFastDesignMatrix::GetParameterShifts() const {
    std::vector<double> s(static_cast<std::size_t>(m_nParameters), 0.0);
    for (std::size_t i = 0; i < m_effects.size(); ++i)
        if (m_effects[i].IsCovariate()) s[static_cast<std::size_t>(m_effects[i].firstParameter)] = m_effectShift[i];
    return s;
}

void MCFastDesignMatrix::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCFastDesignMatrix display start");
    DisplayB("Intercept", m_intercept);
    DisplayI("Dependent", m_depVar);
    DisplayI("Number of parameters", m_nParameters);
    std::vector<int> vars, sizes;
    for (const auto& e : m_effects) {
        vars.push_back(e.variable);
        sizes.push_back(e.nCategories);
    }
    DisplayIV("Effect variables", vars);
    DisplayIV("Effect categories (0: covariate)", sizes);
    DisplayDV("Covariate shifts", m_effectShift);
    DisplayD("Dependent shift", m_depShift);
    DisplayText(0, "MCFastDesignMatrix display end");
}

} // namespace MCMath_850
