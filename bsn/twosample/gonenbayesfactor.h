#pragma once
// GonenBayesFactor: a closed-form Bayes factor of equal group means against
// a normal prior on the standardised effect, with prior mean a
// (GetRegrComPar) and prior variance s2 (GetSecondGonenPar). With
// q = 1 + s2 n (n the effective sample size) and nu = n0 + n1 - 2:
//   a != 0: BF = sqrt(q) pdf_t(t; nu) / pdf_nct(t / sqrt(q); nu, a sqrt(n) / sqrt(q))
//   a == 0: BF = sqrt(q) ((1 + t^2/nu) / (1 + t^2/(nu q)))^(-(nu+1)/2)
// Both are computed from the logarithm, which comes from log densities: the
// non-central density by an integral on the log scale, which stays exact
// far out in its tails (large t, huge samples), where the density itself
// underflows and series evaluations lose their digits.
#include <iosfwd>

#include "bsn/twosample/bsn2sampleindbayesfactor.h"

namespace MCBSN_850 {

class GonenBayesFactor : public BSN2SampleIndBayesFactor {
public:
    GonenBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList);

    // ln BF for effective size n, df and t with prior mean a and variance
    // s2 of the standardised effect; missing for invalid input.
    static double LogFactor(double n, double df, double t, double a, double s2);
    // BF itself: exp(LogFactor), 0 below the exponent range and missing
    // above it.
    static double Factor(double n, double df, double t, double a, double s2);

    // ln of the non-central t density (df degrees of freedom,
    // non-centrality delta), by integrating the normal density of the
    // numerator over the distribution of the scaled chi denominator on the
    // log scale; accurate where the density is far below the smallest
    // double.
    static double LogNonCentralPdfT(double x, double df, double delta);

    void Display(std::ostream& os) const override;

protected:
    MCCommon_850::MCStatus ComputeBF() override;
};

} // namespace MCBSN_850
