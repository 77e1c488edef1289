#pragma once
// TDistributionTerms: pieces of the Student t density shared by the
// independent-samples factors and the Behrens-Fisher posterior, written to
// stay exact for any degrees of freedom up to the billions that frequency
// weights can give, and the Boost.Math policy they evaluate with.
#include <boost/math/policies/policy.hpp>

namespace MCBSN_850 {

class TDistributionTerms {
public:
    // Double precision throughout (the default would evaluate in long
    // double, several times slower), and no exceptions: a failure shows as
    // NaN and becomes the missing value.
    using Policy = boost::math::policies::policy<
        boost::math::policies::promote_double<false>,
        boost::math::policies::domain_error<boost::math::policies::ignore_error>,
        boost::math::policies::pole_error<boost::math::policies::ignore_error>,
        boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
        boost::math::policies::evaluation_error<boost::math::policies::ignore_error>>;

    // ln(Gamma((df + 1)/2) / Gamma(df/2)) as one ratio: the difference of
    // two log-gamma values of a billion keeps only about seven digits.
    // Missing unless df > 0.
    static double LogGammaHalfRatio(double df);
    // ln of the t density with df degrees of freedom at x.
    static double LogPdf(double x, double df);
};

} // namespace MCBSN_850
