#pragma once
// INumIntegration: an estimator of a one-dimensional integral over [a, b].
// SumUp returns the raw accumulated sum behind the estimate (the weighted
// ordinates of a quadrature rule, which is the integral itself, or the sum
// of Monte-Carlo summands before division by the sample count); Integrate
// returns the estimate of the integral.
namespace MCMath_850 {

class INumIntegration {
public:
    virtual ~INumIntegration() = default;
    virtual double SumUp(double a, double b) = 0;
    virtual double Integrate(double a, double b) = 0;
};

} // namespace MCMath_850
