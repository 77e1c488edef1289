#pragma once
// MCTestStats: one classical test result: the statistic (a Wald, F or
// chi-square value), its degrees of freedom (a second df for F tests), the
// kind of test and its significance. Every field starts missing; a test that
// could not be computed keeps them so.
#include <iosfwd>

#include "platform/common/mcmv.h"

namespace MCMath_850 {

class MCTestStats {
public:
    // What the statistic is referred to.
    enum TestType { Unknown = 0, FTest = 1, ChiSquare = 2, TTest = 3 };

    void SetWald(double value) { m_statistic = value; }
    void SetDF(double value) { m_df = value; }
    void SetDF2(double value) { m_df2 = value; }
    void SetTestType(int type) { m_type = type; }
    void SetSig(double value) { m_sig = value; }

    double GetWald() const { return m_statistic; }
    double GetDF() const { return m_df; }
    double GetDF2() const { return m_df2; }
    int GetTestType() const { return m_type; }
    double GetSig() const { return m_sig; }

    void Display(std::ostream& os) const;

private:
    double m_statistic = MCCommon_850::MCMV::Missing();
    double m_df = MCCommon_850::MCMV::Missing();
    double m_df2 = MCCommon_850::MCMV::Missing();
    int m_type = Unknown;
    double m_sig = MCCommon_850::MCMV::Missing();
};

} // namespace MCMath_850
