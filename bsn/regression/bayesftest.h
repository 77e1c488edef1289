#pragma once
// BayesFTest: one user linear hypothesis on regression coefficients, tested
// by an F test in the regression posterior.
#include <iosfwd>
#include <string>
#include <vector>

namespace MCBSN_850 {

class BayesFTest {
public:
    bool GetUseIntercept() const { return m_useIntercept; }
    const std::vector<int>& GetPredictors() const { return m_predictors; }
    const std::vector<double>& GetTestValues() const { return m_testValues; }
    const std::string& GetLabel() const { return m_label; }

    void SetUseIntercept(bool use) { m_useIntercept = use; }
    void SetPredictors(const std::vector<int>& predictors) { m_predictors = predictors; }
    void SetTestValues(const std::vector<double>& values) { m_testValues = values; }
    void SetLabel(const std::string& label) { m_label = label; }

    void Display(std::ostream& os) const;

private:
    bool m_useIntercept = false;
    std::vector<int> m_predictors;
    std::vector<double> m_testValues;
    std::string m_label;
};

} // namespace MCBSN_850
