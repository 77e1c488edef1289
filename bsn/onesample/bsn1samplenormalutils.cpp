#include "bsn/onesample/bsn1samplenormalutils.h"

#include <cmath>

#include "bsn/frame/bsnalgorithm.h"
#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCCommon_850::MCWarnings;
using MCMath_850::MCDistFun;

double BSN1SampleNormalUtils::GetWeight(int weightIndex, const MCCommon_850::Record& record) {
    return BSNAlgorithm::RoundFrequencyWeight(record.GetValue(weightIndex));
}

bool BSN1SampleNormalUtils::ComputeCIT(double level, double centre, double scale2, double df, double& lower,
                                       double& upper) {
    lower = MCMV::Missing();
    upper = MCMV::Missing();
    if (MCMV::IsMissing(centre) || MCMV::IsMissing(scale2) || scale2 < 0.0) return false;
    const double q = MCDistFun::IdfT(1.0 - level / 2.0, df);
    if (MCMV::IsMissing(q)) return false;
    const double half = std::sqrt(scale2) * q;
    lower = MCMV::Sanitize(centre - half);
    upper = MCMV::Sanitize(centre + half);
    return !MCMV::IsMissing(lower) && !MCMV::IsMissing(upper);
}

bool BSN1SampleNormalUtils::ComputeCINormal(double level, double mean, double variance, double& lower,
                                            double& upper) {
    lower = MCMV::Missing();
    upper = MCMV::Missing();
    if (MCMV::IsMissing(variance) || variance < 0.0) return false;
    const double sd = std::sqrt(variance);
    lower = MCDistFun::IdfNorm(level / 2.0, mean, sd);
    upper = MCDistFun::IdfNorm(1.0 - level / 2.0, mean, sd);
    return !MCMV::IsMissing(lower) && !MCMV::IsMissing(upper);
}

} // namespace MCBSN_850
