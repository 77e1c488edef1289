#pragma once
// MCDistFun: densities, distribution functions and their inverses. Every
// function returns the system-missing value instead of failing: for a missing
// argument, a domain error (a negative shape, a probability outside [0, 1]),
// or a result that is not a finite number.
//
// Parameterisations: gamma by shape and rate (density proportional to
// x^(shape-1) e^(-rate x)); normal by mean and standard deviation; t and
// chi-square by degrees of freedom.
namespace MCMath_850 {

class MCDistFun {
public:
    // ln Γ(x) for x > 0.
    static double quondnlgam(double x);

    // The remainder of Stirling's series, ln Γ(z) - [(z - 1/2) ln z - z +
    // ln √(2π)], for z > 0: small (about 1/(12 z)) and free of the
    // cancellation that subtracting two large log-gamma values brings.
    static double StirlingRemainder(double z);

    static double PdfBeta(double x, double a, double b);
    static double CdfBeta(double x, double a, double b);
    static double IdfBeta(double p, double a, double b);

    static double PdfGamma(double x, double shape, double rate);
    static double CdfGamma(double x, double shape, double rate);
    static double IdfGam(double p, double shape, double rate);

    static double CdfChi(double x, double df);
    static double IdfChi(double p, double df);

    static double PdfNormal(double x, double mean, double sd);
    static double CdfNorm(double x, double mean = 0.0, double sd = 1.0);
    static double IdfNorm(double p, double mean = 0.0, double sd = 1.0);

    static double PdfT(double x, double df);
    static double CdfT(double x, double df);
    static double IdfT(double p, double df);

    // Non-central Student t with non-centrality delta.
    static double NonCentralPdfT(double x, double df, double delta);

    // F with df1 numerator and df2 denominator degrees of freedom.
    static double PdfF(double x, double df1, double df2);
    static double CdfF(double x, double df1, double df2);
    static double IdfF(double p, double df1, double df2);
    // The upper tail 1 - CdfF, computed directly so that a small
    // significance keeps its digits.
    static double SigF(double x, double df1, double df2);

    // Hypergeometric: x successes in a sample of c items drawn from n items
    // of which r are successes. PdfHyper takes whole numbers; CDFHyper is
    // P(X <= x).
    static double PdfHyper(double x, double n, double r, double c);
    static double CDFHyper(double x, double n, double r, double c);
};

} // namespace MCMath_850
