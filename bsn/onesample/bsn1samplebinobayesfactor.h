#pragma once
// BSN1SampleBinoBayesFactor: for every test variable of the one-sample
// binomial analysis, the Bayes factor of a null beta prior against an
// alternative beta prior on the success proportion (null over alternative).
// It makes its own data pass through Update(); the factors are computed from
// the accumulated trials and successes only.
#include <iosfwd>

#include "bsn/onesample/bsn1samplebinocounts.h"
#include "bsn/onesample/bsn1samplediscretefactor.h"

namespace MCBSN_850 {

class BSN1SampleBinoBayesFactor : public BSN1SampleDiscreteFactor<BSN1SampleBinoCounts> {
public:
    // The settings are borrowed from the owning procedure and must outlive
    // this object.
    explicit BSN1SampleBinoBayesFactor(const BSNSettings& settings);

    // Computes every variable's factor. Per-variable problems become
    // warnings (410018, 410037, datum = position) and, when a logarithm had
    // to be stored, 410041 once; the returned status carries no error.
    MCCommon_850::MCStatus ComputeBFs();

    // ln B(a, b) = lnΓ(a) + lnΓ(b) − lnΓ(a + b), with B(0, 0) taken as 1 so
    // that the improper prior Beta(0, 0) contributes nothing. Missing for any
    // other argument that is not positive. Exact also for huge arguments
    // (MCLogGamma).
    static double computeLogBeta(double a, double b);

    void Display(std::ostream& os) const;

private:
    // The natural log of the factor for one variable, or missing.
    static double logFactor(double n, double x, const Priors& p);
};

} // namespace MCBSN_850
