#include "platform/pmml/mcregsettings.h"

#include <ostream>

#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

void MCRegSettings::SetDesign(const MCFastDesignMatrix& design) {
    m_design = design;
    m_design.ClearShifts();
}

std::vector<int> MCRegSettings::GetFactors() const {
    std::vector<int> v;
    for (const auto& e : m_design.GetEffects())
        if (!e.IsCovariate()) v.push_back(e.variable);
    return v;
}

std::vector<int> MCRegSettings::GetFactorSizes() const {
    std::vector<int> v;
    for (const auto& e : m_design.GetEffects())
        if (!e.IsCovariate()) v.push_back(e.nCategories);
    return v;
}

std::vector<int> MCRegSettings::GetCovariates() const {
    std::vector<int> v;
    for (const auto& e : m_design.GetEffects())
        if (e.IsCovariate()) v.push_back(e.variable);
    return v;
}

bool MCRegSettings::IsRedundant(int parameter) const {
    return parameter >= 0 && static_cast<std::size_t>(parameter) < m_redundant.size() &&
           m_redundant[static_cast<std::size_t>(parameter)];
}

void MCRegSettings::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "MCRegSettings display start");
    m_design.Display(os);
    DisplayI("Frequency weight", m_frequencyWeight);
    DisplayI("Regression weight", m_regrWeight);
    DisplayDV("Coefficients", m_coefficients);
    DisplayBV("Redundant", m_redundant);
    for (std::size_t i = 0; i < m_labels.size(); ++i) DisplayS("Parameter " + std::to_string(i), m_labels[i]);
    DisplayText(0, "MCRegSettings display end");
}

} // namespace MCMath_850
