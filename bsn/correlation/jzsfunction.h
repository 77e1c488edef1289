#pragma once
// JZSFunction: the integrand of the JZS Bayes factor of a correlation,
//   f(g) = exp( (n-2)/2 log(1+g) - (n-1)/2 log(1+(1-r^2) g)
//               - 3/2 log g - n/(2g) ),
// integrated over g. The quadrature works in t = 1/g instead: the integral
// of f over [g1, g2] equals that of
//   h(t) = f(1/t) / t^2,
//   log h(t) = (n-2)/2 log(1+t) - (n-1)/2 log(1-r^2+t) - n t/2,
// over [1/g2, 1/g1]. h is smooth and strictly decreasing on t >= 0 (the
// derivative of log h is below -1 everywhere), so its mass sits at the
// left end and the whole range is covered by a short interval; f itself
// has a peak near g = n/(4(1-r^2)) and a g^-2 tail over many decades.
//
// Values are scaled by h at a reference point t0 (the left end of the
// range, where h is largest) and computed as the difference
// log h(t) - log h(t0) directly, so they neither overflow nor underflow
// however large n is, and the log of the integral is
// GetLogScale() + log(integral of the scaled values).
#include <iosfwd>

#include "platform/quadrature/iintegrand.h"

namespace MCBSN_850 {

class JZSFunction : public MCMath_850::IIntegrand {
public:
    JZSFunction() = default;

    // n (the pair's case count) and r (its correlation); the scale point is
    // kept.
    void SetParam(double n, double r);
    // Sets the reference point t0 >= 0 of the scaled values.
    void SetScalePoint(double t0);

    double GetN() const { return m_n; }
    double GetHalfNMinus2() const { return m_a; }     // (n-2)/2
    double GetOneMinusR2() const { return m_c; }      // 1 - r^2
    double GetHalfNMinus1() const { return m_b; }     // (n-1)/2
    double GetScalePoint() const { return m_t0; }
    // log h(t0).
    double GetLogScale() const { return m_logScale; }

    // log f(g), g > 0.
    double LogIntegrandG(double g) const;
    // log h(t), t >= 0.
    double LogIntegrandT(double t) const;
    // log h(t) - log h(t0), accurate for t near t0.
    double LogRatio(double t) const;
    // Derivative of log h at t.
    double Slope(double t) const;
    // A point t > t0 beyond which h(t)/h(t0) < exp(-drop), found by
    // doubling steps from t0; never beyond tMax.
    double UpperEnd(double drop, double tMax) const;

    // h(t)/h(t0); the missing value where its exponent would overflow (it
    // cannot for t >= t0) or t < 0.
    double ComputeNI(double t) override;

    void Display(std::ostream& os) const;

private:
    double m_n = 0.0;
    double m_a = 0.0;
    double m_c = 1.0;
    double m_b = 0.0;
    double m_t0 = 0.0;
    double m_logScale = 0.0;
};

} // namespace MCBSN_850
