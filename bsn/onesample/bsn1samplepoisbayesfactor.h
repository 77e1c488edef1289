#pragma once
// BSN1SamplePoisBayesFactor: for every test variable of the one-sample
// Poisson analysis, the Bayes factor of a null gamma prior against an
// alternative gamma prior on the rate (shape and rate parameters; null over
// alternative). It makes its own data pass through Update().
#include <iosfwd>

#include "bsn/onesample/bsn1samplediscretefactor.h"
#include "bsn/onesample/bsn1samplepoiscounts.h"

namespace MCBSN_850 {

class BSN1SamplePoisBayesFactor : public BSN1SampleDiscreteFactor<BSN1SamplePoisCounts> {
public:
    // The settings are borrowed from the owning procedure and must outlive
    // this object.
    explicit BSN1SamplePoisBayesFactor(const BSNSettings& settings);

    // Computes every variable's factor. A variable without usable
    // alternative prior parameters (missing or not positive) gets none, and
    // the returned status is then warning 410018 whose datum is the first
    // such position; warning 410041 goes to GetWarnings() once when some
    // logarithm had to be stored.
    MCCommon_850::MCStatus ComputeBFs();

    // ln of the marginal likelihood under a Gamma(a, b) prior, up to the
    // data-only factor that cancels in the ratio:
    // a ln b − lnΓ(a) + lnΓ(a + S) − (a + S) ln(b + N). Missing when a or b is
    // not positive.
    static double logMarginal(double a, double b, double N, double S);

    void Display(std::ostream& os) const;

private:
    // ln of the factor, logMarginal(a0, b0) − logMarginal(a1, b1), computed
    // so that it stays exact for N and S in the billions and beyond (the two
    // marginals are each of the size of S ln S). Missing when a prior is not
    // usable.
    static double logFactor(double N, double S, const Priors& p);
};

} // namespace MCBSN_850
