#pragma once
// SiowNullFunction: the Zellner-Siow Cauchy integrand of the null
// comparison, which is the Rouder integrand with scale r = 1.
#include <iosfwd>

#include "bsn/regression/roudernullfunction.h"

namespace MCBSN_850 {

class SiowNullFunction : public RouderNullFunction {
public:
    SiowNullFunction(double N, double p, double R2) : RouderNullFunction(N, p, R2, 1.0) {}
    void Display(std::ostream& os) const;
};

} // namespace MCBSN_850
