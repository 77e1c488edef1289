#include "bsn/regression/bsnregrintegrand.h"

#include <cmath>

namespace MCBSN_850 {

double BSNRegrIntegrand::ComputeNI(double g) {
    // The exponent is summed first and exp taken once, so no large power is
    // ever formed on its own.
    return std::exp(LogNI(g) - m_logScale);
}

} // namespace MCBSN_850
