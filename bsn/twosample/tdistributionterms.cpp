#include "bsn/twosample/tdistributionterms.h"

#include <cmath>
#include <numbers>

#include <boost/math/special_functions/gamma.hpp>

#include "platform/common/mcmv.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

double TDistributionTerms::LogGammaHalfRatio(double df) {
    if (MCMV::IsMissing(df) || !(df > 0.0)) return MCMV::Missing();
    // Gamma(df/2) / Gamma(df/2 + 1/2)
    const double ratio = boost::math::tgamma_delta_ratio(df / 2.0, 0.5, Policy());
    return !MCMV::IsMissing(ratio) && ratio > 0.0 ? -std::log(ratio) : MCMV::Missing();
}

double TDistributionTerms::LogPdf(double x, double df) {
    if (MCMV::IsMissing(x)) return MCMV::Missing();
    const double lr = LogGammaHalfRatio(df);
    if (MCMV::IsMissing(lr)) return MCMV::Missing();
    return MCMV::Sanitize(lr - 0.5 * std::log(df * std::numbers::pi) - (df + 1.0) / 2.0 * std::log1p(x * x / df));
}

} // namespace MCBSN_850
