#include "platform/quadrature/iintegrand.h"

#include "platform/common/mcmv.h"

namespace MCMath_850 {

double IIntegrand::ComputeMC(double /*x*/, double /*y*/) { return MCCommon_850::MCMV::Missing(); }

} // namespace MCMath_850
