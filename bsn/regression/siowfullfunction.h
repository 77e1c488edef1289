#pragma once
// SiowFullFunction: the Zellner-Siow Cauchy integrand of the full
// comparison, which is the Rouder integrand with scale r = 1.
#include <iosfwd>

#include "bsn/regression/rouderfullfunction.h"

namespace MCBSN_850 {

class SiowFullFunction : public RouderFullFunction {
public:
    SiowFullFunction(double N, double p, double pF, double R1squared, double RFsquared)
        : RouderFullFunction(N, p, pF, R1squared, RFsquared, 1.0) {}
    void Display(std::ostream& os) const;
};

} // namespace MCBSN_850
