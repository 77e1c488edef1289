#pragma once
// IIntegrand: a function of one variable handed to a numerical integration.
// ComputeNI is the ordinate used by deterministic quadrature; ComputeMC is
// the summand of a Monte-Carlo estimate, evaluated at a random draw (the
// second argument is free for integrands that need a second coordinate).
// Either may return the system-missing value where the function is not
// defined; integrators decide how to treat it.
namespace MCMath_850 {

class IIntegrand {
public:
    virtual ~IIntegrand() = default;
    // Integrands meant only for quadrature need not provide a Monte-Carlo
    // form; the default says "not defined".
    virtual double ComputeMC(double x, double y);
    virtual double ComputeNI(double x) = 0;
};

} // namespace MCMath_850
