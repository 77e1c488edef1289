#pragma once
// LobattoQuad: adaptive Gauss-Lobatto quadrature after Gander and Gautschi
// ("Adaptive quadrature - revisited", BIT 40, 2000). Each interval is
// integrated by the 4-point Gauss-Lobatto rule and its 7-point Kronrod
// extension; an interval is accepted when the two agree to within the
// relative tolerance times a rough estimate of the whole integral (a
// 13-point Kronrod sum over [a, b]), otherwise it is split at the six
// inner nodes. Ordinates are shared between an interval and its parts, so
// each refinement costs five integrand evaluations.
//
// Guarantees: the run always ends (each refinement is counted and no
// interval is split once GetMaxIter() refinements have been made, or once
// it holds no more machine numbers), and the result is a finite number or
// the missing value. An ordinate that is missing or not finite counts as 0:
// integrands signal "outside the support" that way, and a lone pole at an
// end point (1/sqrt(x) at 0) is then integrated correctly by refinement
// towards it. Such ordinates are counted (GetNMissingOrdinates).
//
// Reaching the refinement limit adds warning 420001 to GetWarnings(),
// once per object however many integrals hit the limit; its scale data
// 0 and 1 hold the bounds of the first integral that did.
#include <iosfwd>

#include "platform/common/mcwarnings.h"
#include "platform/quadrature/iintegrand.h"
#include "platform/quadrature/inumintegration.h"

namespace MCMath_850 {

class LobattoQuad : public INumIntegration {
public:
    static constexpr int kNotConvergedCode = 420001;
    static constexpr double kDefaultTolerance = 1e-8;
    static constexpr int kDefaultMaxIter = 1500;

    // The integrand is borrowed and must outlive this object.
    explicit LobattoQuad(IIntegrand& integrand);

    // Relative tolerance; only x > 0 is accepted. Values below the machine
    // epsilon act as the epsilon.
    void SetTolerance(double tolerance);
    // Maximum number of refinements of one integral; only n > 0 is accepted.
    void SetMaxIter(int maxIter);
    double GetTolerance() const { return m_tolerance; }
    int GetMaxIter() const { return m_maxIter; }

    // The integral over [a, b] (b < a gives the negated integral over
    // [b, a]); missing when a bound is missing or b - a is not finite.
    double Integrate(double a, double b) override;
    // For a quadrature rule the weighted sum of ordinates is the integral.
    double SumUp(double a, double b) override { return Integrate(a, b); }

    // Refinements made by the last Integrate (each evaluates one interval).
    int GetNIterations() const { return m_nIterations; }
    // Integrand evaluations of the last Integrate.
    int GetNEvaluations() const { return m_nEvaluations; }
    // Ordinates of the last Integrate that were missing or not finite.
    int GetNMissingOrdinates() const { return m_nMissing; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }

    void Display(std::ostream& os) const;

private:
    double eval(double x);
    // Integral over [a, b] given the ordinates at a and b.
    double step(double a, double b, double fa, double fb);
    // Same, with the five inner Lobatto/Kronrod ordinates already known.
    double refine(double a, double b, double fa, double fb, double fmll, double fml, double fm, double fmr,
                  double fmrr);

    IIntegrand* m_integrand;
    double m_tolerance = kDefaultTolerance;
    int m_maxIter = kDefaultMaxIter;
    int m_nIterations = 0;
    int m_nEvaluations = 0;
    int m_nMissing = 0;
    bool m_limitReached = false;
    double m_errorTarget = 0.0;  // absolute acceptance bound of the current integral
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCMath_850
