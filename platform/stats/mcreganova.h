#pragma once
// MCRegANOVA: the analysis-of-variance table of a linear model: sums of
// squares, degrees of freedom and mean squares of the regression, the
// residual and the total, with the F statistic and its significance. Every
// value starts missing; one that cannot be computed stays so.
#include <iosfwd>

#include "platform/common/mcmv.h"

namespace MCMath_850 {

struct MCRegANOVA {
    double regressionSS = MCCommon_850::MCMV::Missing();
    double regressionDF = MCCommon_850::MCMV::Missing();
    double regressionMS = MCCommon_850::MCMV::Missing();
    double residualSS = MCCommon_850::MCMV::Missing();
    double residualDF = MCCommon_850::MCMV::Missing();
    double residualMS = MCCommon_850::MCMV::Missing();
    double totalSS = MCCommon_850::MCMV::Missing();
    double totalDF = MCCommon_850::MCMV::Missing();
    double f = MCCommon_850::MCMV::Missing();
    double sig = MCCommon_850::MCMV::Missing();

    // Every value passed through MCMV::Sanitize.
    void Sanitize();
    void Display(std::ostream& os) const;
};

} // namespace MCMath_850
