#pragma once
// BayesFactorOneSampleTT: the JZS Bayes factor of a normal mean (null over
// alternative) for sample size N, degrees of freedom df and t statistic,
// with the denominator integral over g evaluated by adaptive Lobatto
// quadrature. Also serves the two-sample factors, which pass an effective
// sample size.
#include <iosfwd>

#include "platform/common/mcwarnings.h"

namespace MCBSN_850 {

class BayesFactorDenomIF;

class BayesFactorOneSampleTT {
public:
    BayesFactorOneSampleTT(double N, double df, double t);

    // Valid when N > 0, df > 0 and t is not missing.
    bool IsValid() const { return m_valid; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }

    // The Bayes factor; missing when invalid or when the integral vanishes.
    // It underflows to 0 when the null term does (t of 40 and more with
    // many cases); ComputeLog then still has the answer.
    double Compute();
    // The natural log of the Bayes factor, computed on the log scale
    // throughout: the null term as a log, and the integrand divided by e^s,
    // s the log of its peak, before the same quadrature (same bounds, tail,
    // tolerance and fallback as Compute), so that neither the null term nor
    // the integrand underflows. Finite wherever the integral exists (t of
    // 100 with a billion cases gives about -4989). Missing when invalid.
    double ComputeLog();
    // The integral beyond the tail cutoff of the large-g form of the
    // integrand, (2 pi N)^(-1/2) g^(-2); missing when invalid.
    double RightTail() const;

    // Relative tolerance of the quadrature; only x > 0 is accepted.
    void SetTolerance(double x);
    // Refinement limit of the quadrature; only n > 0 is accepted.
    void SetMaxIter(int n);
    // Only x >= 0 is accepted.
    void SetLeftBound(double x);
    // Only x > 0 is accepted.
    void SetRightBound(double x);
    // Bounds of the piecewise integral used when the quadrature does not
    // converge; accepted (returns true) only when 0 < b1 < ... < b5.
    bool SetBoundsForNonConvergence(double b1, double b2, double b3, double b4, double b5);

    double GetTolerance() const { return m_tolerance; }
    int GetMaxIter() const { return m_maxIter; }
    // Quadrature refinements made by the last Compute, over all integrals.
    int GetNIterations() const { return m_nIterations; }
    // Whether the last Compute fell back to the piecewise integral.
    bool UsedPiecewise() const { return m_usedPiecewise; }

    void Display(std::ostream& os) const;

private:
    // The quadrature of Compute over [left, min(cutoff, right)], with the
    // piecewise fallback; warnings go to m_warnings. Missing when a piece is.
    double integrate(BayesFactorDenomIF& integrand);
    // About the largest ln f(g) over the integration range.
    double logPeak(const BayesFactorDenomIF& integrand) const;

    double m_N;
    double m_df;
    double m_t;
    bool m_valid;
    double m_tolerance = 1e-8;
    int m_maxIter = 1500;
    int m_nIterations = 0;
    double m_leftBound = 0.0;
    double m_rightBound;
    double m_tailCutoff = 100000.0;
    double m_nonConvBounds[5] = {1.0, 2.0, 10.0, 50.0, 500.0};
    MCCommon_850::MCWarnings m_warnings;
    bool m_usedPiecewise = false;
};

} // namespace MCBSN_850
