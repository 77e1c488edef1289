#pragma once
// BayesFactor2DimIF: the integrand over (V, rho) of the alternative's
// marginal in the fractional Bayes factor of a correlation, for the
// likelihood power p = b n:
//   log h(V, rho) = (p-3)/2 log(1-rho^2) - log V - (p-1) log(s + 1/s - 2 r rho),
// s = sqrt(V). For Monte-Carlo sums the values are scaled by exp(-log
// scale), the scale being chosen from the largest log value met in a pilot
// pass over the same points (ComputeLogScale), so that a sum of S scaled
// values stays below the largest double with e^3 to spare.
#include <cmath>
#include <iosfwd>

namespace MCBSN_850 {

class BayesFactor2DimIF {
public:
    // Logarithm of the largest double less 3: the headroom of the scale.
    static constexpr double kHeadroom = 706.782712893384;

    BayesFactor2DimIF();

    // Fraction b, case count n, correlation r. Valid when 0 < b <= 1,
    // n > 0 and -1 <= r <= 1.
    void SetParams(double b, double n, double r);
    bool IsValid() const { return m_valid; }
    double GetFraction() const { return m_b; }

    // (p-3)/2 and -(p-1), p = b n.
    void ComputeTempPower();

    // log h(V, rho); missing when invalid or outside V > 0, -1 < rho < 1.
    double ComputeLogIntegrand(double V, double rho) const;
    // The same from the parts of a point that do not depend on b, n or r:
    // log(1-rho^2), log V and (s-1)^2/s. (s + 1/s - 2 r rho is formed as
    // (s-1)^2/s + 2 (1 - r rho), which keeps its digits near s = 1.)
    double LogIntegrandFromParts(double logOneMinusRho2, double logV, double sExcess, double rho) const {
        return m_power1 * logOneMinusRho2 - logV + m_power2 * std::log(sExcess + 2.0 * (1.0 - m_r * rho));
    }

    // Running maximum of the log integrand: reset to minus the largest
    // double (the log scale to 0), raised by valid points.
    void ResetMaxLog();
    void UpdateMaxLog(double V, double rho);
    void UpdateMaxLogValue(double logValue);
    double GetMaxLog() const { return m_maxLog; }
    // Log scale = running maximum - (headroom - log S).
    void ComputeLogScale(long S);
    void SetLogScale(double x) { m_logScale = x; }
    double GetLogScale() const { return m_logScale; }

    // exp(log h - log scale) for V > 0 and -1 < rho < 1, 0 outside; missing
    // when invalid.
    double ComputeMC(double V, double rho) const;
    // exp(log h), unscaled.
    double ComputeMCDirect(double V, double rho) const;

    void Display(std::ostream& os) const;

private:
    double m_b = 0.0;
    double m_n = 0.0;
    double m_r = 0.0;
    bool m_valid = false;
    double m_maxLog;
    double m_logScale = 0.0;
    double m_headroom = kHeadroom;
    double m_power1 = 0.0;  // (p-3)/2
    double m_power2 = 0.0;  // -(p-1)
};

} // namespace MCBSN_850
