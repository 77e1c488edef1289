#pragma once
// MCLogGamma: differences of log-gamma and log-beta values that stay exact to
// the last few bits when the arguments are huge.
//
// Why: with counts in the billions, lnΓ of a count is about 2e10 and a
// double holds it only to about 4e-6. A Bayes factor of counts is a
// difference of such terms that nearly cancel (the factor itself is of
// order 1), so summing separately rounded lnΓ values loses five or more
// digits of the factor, and with 1e12 counts nearly all of them. No
// summation trick repairs that afterwards: the digits are gone once each
// term is rounded. What works is to form each difference of two lnΓ values
// whose arguments share a large part analytically, before anything is
// rounded at the size of the terms.
//
// How: for arguments of 10 and more, lnΓ(w) is Stirling's series
// (w - 1/2) ln w - w + ln(2π)/2 + c(w), with c(w) = 1/(12w) - 1/(360w³) + ...
// summed to 1e-18. The difference of two such series at w and w + δ is
// rewritten as
//   δ ln w + (w + δ - 1/2) log1p(δ/w) - δ + c(w + δ) - c(w),
// where every term is of the size of the result, so the result is exact to a
// few units in its own last place. Below 10 the library log-gamma (exact to
// about one unit in the last place, and small there) is used directly.
//
// How to use it: the arguments are passed as a large shared part z and
// small offsets d (lnΓ(z + d1) - lnΓ(z + d2)), so that neither z + d1 nor
// z + d2 needs to be exact as a double: 2.7e9 + 2.7 is not, and using the
// rounded sum would cost 5e-6 in the log. Pair every lnΓ term of a count
// with the lnΓ term of the same count in the other model, inside one call;
// a sum of unpaired terms (lnΓ(x + a0) - lnΓ(a0) in one call and
// lnΓ(x + a1) - lnΓ(a1) in another) is exact only relative to its own size,
// which is the size of the terms, and cancels later at the caller's cost.
// When several paired differences still cancel among themselves (each
// grows like its offset times ln z), take them all at one scale with
// DiffAtScale, as BetaDiff does.
//
// Worked pairings:
//   binomial, Beta(a0, b0) against Beta(a1, b1), x successes of n:
//     BetaDiff(x, n - x, a0, b0, a1, b1) + ln B(a1, b1) - ln B(a0, b0);
//   Poisson, Gamma(a0, b0) against Gamma(a1, b1), S counts in N cases:
//     DiffAtScale(S, a0, a1, N) plus terms in log1p(b/N) (see the one-sample
//     Poisson factor);
//   a table of counts x under Dirichlet(a): MultiBetaDelta(a, x) for
//     ln B(a + x) - ln B(a); the same counts under two priors:
//     MultiBetaDiff(x, a0, a1). A difference of MultiBetaDelta values of
//     different tables (cells against margins) is exact only to about
//     1e-16 times the total count times its log.
//
// Accuracy (checked against 40-digit values): every function's absolute
// error is a few units in the last place of the largest term it pairs
// internally, which for the pairings above is the size of the result:
// within 1e-13 relative of the exact value up to arguments of 1e12.
//
// Argument rules: lnΓ is taken only at positive arguments; a non-positive
// argument, a missing argument, or a result that is not finite gives the
// system-missing value. The vector forms follow the log-linear convention
// of the multivariate beta function: entries whose argument is not
// positive are left out of every sum.
#include <vector>

namespace MCMath_850 {

class MCLogGamma {
public:
    // lnΓ(z + d) - lnΓ(z). Exact relative to the result when z is large and
    // d moderate; for z small and d large it is as exact as lnΓ(z + d) is.
    static double Delta(double z, double d);

    // lnΓ(z + d1) - lnΓ(z + d2): the log ratio of two gamma functions whose
    // arguments share the (possibly huge) part z. Neither sum is formed
    // exactly; only d1 - d2 and the sums' relative values matter.
    static double Diff(double z, double d1, double d2);

    // lnΓ(z + d1) - lnΓ(z + d2) - (d1 - d2) ln r, for a scale r > 0. Diff
    // grows like (d1 - d2) ln z, so a sum of differences that nearly cancel
    // (a ratio of beta functions: the offsets sum to zero) is still rounded
    // at that size. Taken at a common scale r (the total count, say), each
    // term is only of the size of what is left, and the (d1 - d2) ln r
    // parts, which cancel in the sum or meet the caller's own terms in
    // ln r, are never formed. z - r is used when z is near r, so pass the
    // same r and the exact z. Rules as for Diff.
    static double DiffAtScale(double z, double d1, double d2, double r);

    // ln B(a, b) = lnΓ(a) + lnΓ(b) - lnΓ(a + b), a, b > 0: exact relative to
    // the result also when a and b are both huge.
    static double LogBeta(double a, double b);

    // ln B(a + x, b + y) - ln B(a, b): the log marginal likelihood of x
    // successes and y failures under a Beta(a, b) prior, without the
    // binomial coefficient.
    static double BetaDelta(double a, double b, double x, double y);

    // ln B(x + a0, y + b0) - ln B(x + a1, y + b1): the log ratio of the
    // marginal likelihoods of the same counts under two beta priors. The
    // counts x and y cancel inside this call, so the ratio is exact to a few
    // units in its own last place however large they are.
    static double BetaDiff(double x, double y, double a0, double b0, double a1, double b1);

    // ln of the Beta(a, b) density at t, 0 < t < 1. For a and b of 10 and
    // more it is formed around the mode, so that the density of a posterior
    // with a billion trials is exact to about 1e-15 relative near its peak.
    static double LogBetaPdf(double t, double a, double b);

    // Σ_i [lnΓ(z_i + d1_i) - lnΓ(z_i + d2_i)] over the entries where both
    // arguments are positive; missing when the vectors differ in length or
    // some entry is missing. Summed with compensation.
    static double DiffSum(const std::vector<double>& z, const std::vector<double>& d1, const std::vector<double>& d2);

    // The log multivariate beta function Σ lnΓ(a_i) - lnΓ(Σ a_i), both over
    // the entries with a_i > 0 (missing when there is none).
    static double LogMultiBeta(const std::vector<double>& a);

    // ln B(a + x) - ln B(a) of the multivariate beta function, each over its
    // own positive entries (the log-linear convention): the log marginal
    // likelihood of the counts x under a Dirichlet(a) prior, without the
    // multinomial coefficient. Each cell's lnΓ(a_i + x_i) is paired with its
    // lnΓ(a_i), and lnΓ(Σ(a + x)) with lnΓ(Σ a). Missing when the lengths
    // differ, an entry is missing, or either total is not positive.
    // Note: this is exact relative to its own size, which is about the total
    // count times its log; a difference of two such values for the same
    // table cancels only at the caller. Pass counts that meet in one call
    // where the model allows it (MultiBetaDiff).
    static double MultiBetaDelta(const std::vector<double>& a, const std::vector<double>& x);

    // ln B(x + a0) - ln B(x + a1): the log ratio of the marginal likelihoods
    // of the same counts x under two Dirichlet priors, each over its own
    // positive entries; cell by cell the counts cancel inside one Diff, so
    // the result is exact relative to its own size. Missing as above.
    static double MultiBetaDiff(const std::vector<double>& x, const std::vector<double>& a0,
                                const std::vector<double>& a1);

    // Smallest argument from which Stirling's series is used.
    static constexpr double kStirlingFrom = 10.0;
};

} // namespace MCMath_850
