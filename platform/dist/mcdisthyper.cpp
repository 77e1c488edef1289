// The hypergeometric distribution for tables whose totals reach billions
// through frequency weights. Boost.Math's version takes 32-bit unsigned
// arguments and forms some sums in int, so totals above about two billion
// are out of its reach; and a probability formed from separate log-gamma
// values of arguments near 1e9 keeps only about six significant digits.
//
// The probability uses the saddle-point form of binomial probabilities
// (Loader, "Fast and accurate computation of binomial probabilities", 2000):
// every large quantity enters through the Stirling remainder and the
// deviance term x log(x/np) + np - x, both computed without cancellation, so
// the probability is accurate to a few units in the last place at any size.
//
// The distribution function sums the tail on the side of the mode where x
// lies, by the ratio of neighbouring probabilities, in extended precision.
// The terms fall off like a normal density, so the loop runs to about nine
// standard deviations of the distribution past x and never over the whole
// support: some 70,000 terms at most for a total of a billion.
#include <cmath>
#include <limits>

#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"

namespace MCMath_850 {

namespace {

using MCCommon_850::MCMV;

constexpr double kLn2Pi = 1.8378770664093454835606594728112353;
constexpr double kNegInf = -std::numeric_limits<double>::infinity();
// Whole numbers beyond this are no longer exact in a double.
constexpr double kLargestExact = 9007199254740992.0;

bool isWhole(double x) { return std::isfinite(x) && std::floor(x) == x; }

// x log(x/np) + np - x, by its series in v = (x - np)/(x + np) when x is
// close to np, where the closed form would cancel.
double deviance(double x, double np) {
    if (std::fabs(x - np) < 0.1 * (x + np)) {
        double v = (x - np) / (x + np);
        double s = (x - np) * v;
        double ej = 2.0 * x * v;
        v *= v;
        for (int j = 1; j < 1000; ++j) {
            ej *= v;
            const double next = s + ej / (2 * j + 1);
            if (next == s) return next;
            s = next;
        }
        return s;
    }
    return x * std::log(x / np) + np - x;
}

// ln of the binomial probability of x successes in n trials with success
// probability p and q = 1 - p (both given, so neither is formed by
// subtraction).
double logBinomial(double x, double n, double p, double q) {
    if (p == 0.0) return x == 0.0 ? 0.0 : kNegInf;
    if (q == 0.0) return x == n ? 0.0 : kNegInf;
    if (x < 0.0 || x > n) return kNegInf;
    if (x == 0.0) return n == 0.0 ? 0.0 : (p < 0.1 ? -deviance(n, n * q) - n * p : n * std::log(q));
    if (x == n) return q < 0.1 ? -deviance(n, n * p) - n * q : n * std::log(p);
    const double lc = MCDistFun::StirlingRemainder(n) - MCDistFun::StirlingRemainder(x) -
                      MCDistFun::StirlingRemainder(n - x) - deviance(x, n * p) - deviance(n - x, n * q);
    const double lf = kLn2Pi + std::log(x) + std::log1p(-x / n);
    return lc - 0.5 * lf;
}

// A population of n items, r of them successes, and a sample of c: valid
// when all are whole, 0 <= r, c <= n and n is exactly representable.
struct Urn {
    double n, r, c;
    double Lowest() const { return std::fmax(0.0, c - (n - r)); }
    double Highest() const { return std::fmin(r, c); }
};

bool makeUrn(double n, double r, double c, Urn& urn) {
    if (MCMV::IsMissing(n) || MCMV::IsMissing(r) || MCMV::IsMissing(c)) return false;
    if (!isWhole(n) || !isWhole(r) || !isWhole(c)) return false;
    if (n < 0.0 || n > kLargestExact || r < 0.0 || r > n || c < 0.0 || c > n) return false;
    urn = {n, r, c};
    return true;
}

// ln P(X = x) for a whole x; -infinity outside the support.
double logProbability(double x, const Urn& u) {
    const double lo = u.Lowest(), hi = u.Highest();
    if (x < lo || x > hi) return kNegInf;
    if (lo == hi) return 0.0;
    // Here 0 < c < n. The sample fraction plays the role of the success
    // probability of the three binomial terms.
    const double p = u.c / u.n, q = (u.n - u.c) / u.n;
    return logBinomial(x, u.r, p, q) + logBinomial(u.c - x, u.n - u.r, p, q) - logBinomial(u.c, u.n, p, q);
}

} // namespace

double MCDistFun::StirlingRemainder(double z) {
    if (MCMV::IsMissing(z) || z <= 0.0) return MCMV::Missing();
    // Below 10 the series is not yet accurate; step up with
    // ω(z) = ω(z + 1) + (z + 1/2) ln(1 + 1/z) - 1, whose terms are small.
    double shift = 0.0;
    while (z < 10.0) {
        shift += (z + 0.5) * std::log1p(1.0 / z) - 1.0;
        z += 1.0;
    }
    // Σ B_2k / (2k (2k - 1) z^(2k-1)), k = 1..7: the next term is below 1e-16
    // of the first at z = 10.
    const double w = 1.0 / z, w2 = w * w;
    const double series =
        w * (1.0 / 12 +
             w2 * (-1.0 / 360 +
                   w2 * (1.0 / 1260 +
                         w2 * (-1.0 / 1680 + w2 * (1.0 / 1188 + w2 * (-691.0 / 360360 + w2 * (1.0 / 156)))))));
    return series + shift;
}

double MCDistFun::PdfHyper(double x, double n, double r, double c) {
    Urn u{};
    if (!makeUrn(n, r, c, u) || MCMV::IsMissing(x) || !isWhole(x)) return MCMV::Missing();
    const double lp = logProbability(x, u);
    return lp == kNegInf ? 0.0 : MCMV::Sanitize(std::exp(lp));
}

double MCDistFun::CDFHyper(double x, double n, double r, double c) {
    Urn u{};
    if (!makeUrn(n, r, c, u) || MCMV::IsMissing(x)) return MCMV::Missing();
    x = std::floor(x);
    const double lo = u.Lowest(), hi = u.Highest();
    if (x < lo) return 0.0;
    if (x >= hi) return 1.0;

    using Wide = long double;
    const Wide nl = u.n, rl = u.r, cl = u.c;
    const Wide mode = std::floor((rl + 1) * (cl + 1) / (nl + 2));
    const Wide negligible = 1e-20L;
    if (x < mode) {
        // P(X <= x): from x down, each term P(y - 1)/P(y) times the last.
        Wide term = std::exp(static_cast<Wide>(logProbability(x, u)));
        Wide sum = term;
        for (Wide y = x; y > lo && term > sum * negligible; --y) {
            term *= y * (nl - rl - cl + y) / ((rl - y + 1) * (cl - y + 1));
            sum += term;
        }
        return MCMV::Sanitize(static_cast<double>(std::fmin(sum, Wide(1))));
    }
    // 1 - P(X > x): from x + 1 up, each term P(y + 1)/P(y) times the last.
    Wide term = std::exp(static_cast<Wide>(logProbability(x + 1, u)));
    Wide sum = term;
    for (Wide y = x + 1; y < hi && term > sum * negligible; ++y) {
        term *= (rl - y) * (cl - y) / ((y + 1) * (nl - rl - cl + y + 1));
        sum += term;
    }
    return MCMV::Sanitize(static_cast<double>(std::fmax(Wide(1) - sum, Wide(0))));
}

} // namespace MCMath_850
