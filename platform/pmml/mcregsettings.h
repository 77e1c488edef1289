#pragma once
// MCRegSettings: the description of a fitted linear model that the PMML
// regression exporter writes: the design (intercept, factors with their
// category counts, covariates, dependent), the weight variables, and per
// design parameter its coefficient, whether it is redundant and a readable
// label. A result object fills it; the exporter only reads it.
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/matrix/mcfastdesignmatrix.h"

namespace MCMath_850 {

class MCRegSettings {
public:
    MCRegSettings() = default;

    // The design, whose parameters the coefficients follow; any shifts it
    // carries are dropped (the model is written on the variables' scale).
    void SetDesign(const MCFastDesignMatrix& design);
    const MCFastDesignMatrix& GetDesign() const { return m_design; }
    int GetNParameters() const { return m_design.GetNParameters(); }
    int GetDependentVar() const { return m_design.GetDepVar(); }
    bool HasIntercept() const { return m_design.HasIntercept(); }
    // The model's factors and covariates in design order, and the category
    // count of each factor.
    std::vector<int> GetFactors() const;
    std::vector<int> GetFactorSizes() const;
    std::vector<int> GetCovariates() const;

    // Weight variables; -1 when absent.
    void SetFrequencyWeightVar(int variable) { m_frequencyWeight = variable; }
    void SetRegrWeightVar(int variable) { m_regrWeight = variable; }
    int GetFrequencyWeightVar() const { return m_frequencyWeight; }
    int GetRegrWeightVar() const { return m_regrWeight; }

    // One entry per design parameter each (shorter vectors leave the
    // remaining parameters without a coefficient, which the exporter refuses).
    void SetCoefficients(const std::vector<double>& coefficients) { m_coefficients = coefficients; }
    void SetRedundancy(const std::vector<bool>& redundant) { m_redundant = redundant; }
    void SetParameterLabels(const std::vector<std::string>& labels) { m_labels = labels; }
    const std::vector<double>& GetCoefficients() const { return m_coefficients; }
    const std::vector<bool>& GetRedundancy() const { return m_redundant; }
    const std::vector<std::string>& GetParameterLabels() const { return m_labels; }
    bool IsRedundant(int parameter) const;

    void Display(std::ostream& os) const;

private:
    MCFastDesignMatrix m_design;
    int m_frequencyWeight = -1;
    int m_regrWeight = -1;
    std::vector<double> m_coefficients;
    std::vector<bool> m_redundant;
    std::vector<std::string> m_labels;
};

} // namespace MCMath_850
