#pragma once
// LobattoQuad: adaptive Gauss-Lobatto quadrature after Gander and Gautschi
// ("Adaptive quadrature - revisited", BIT 40, 2000). Each interval is
// integrated by the 4-point Gauss-Lobatto rule and its 7-point Kronrod
// extension; an interval is accepted when the two agree to within the
// relative tolerance times an estimate of the whole integral, otherwise it
// is split at its five inner nodes into six parts. The estimate is the sum
// of the 7-point values of the current intervals, updated with every split.
// Ordinates are shared between an interval and its parts, so each part
// costs five integrand evaluations; one iteration is one interval
// evaluated and tested.
//
// Guarantees: the run always ends (no interval is split once GetMaxIter()
// intervals have been evaluated, nor once it holds too few machine numbers
// to split), and the result is a finite number or the missing value. An
// integral that cancels to about 0 cannot meet a relative tolerance and
// runs to the limit. An ordinate that is missing or not finite counts as 0:
// integrands signal "outside the support" that way, and a lone pole at an
// end point (1/sqrt(x) at 0) is then integrated correctly by refinement
// towards it (intervals ending in such an ordinate must meet a 32 times
// stricter bound, as both rules miss the same mass there). Such ordinates
// are counted (GetNMissingOrdinates).
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
    // Iteration limit of one integral; only n > 0 is accepted.
    void SetMaxIter(int maxIter);
    double GetTolerance() const { return m_tolerance; }
    int GetMaxIter() const { return m_maxIter; }

    // The integral over [a, b] (b < a gives the negated integral over
    // [b, a]); missing when a bound is missing or b - a is not finite.
    double Integrate(double a, double b) override;
    // For a quadrature rule the weighted sum of ordinates is the integral.
    double SumUp(double a, double b) override { return Integrate(a, b); }

    // Iterations of the last Integrate: intervals evaluated and tested.
    int GetNIterations() const { return m_nIterations; }
    // Integrand evaluations of the last Integrate.
    int GetNEvaluations() const { return m_nEvaluations; }
    // Ordinates of the last Integrate that were missing or not finite.
    int GetNMissingOrdinates() const { return m_nMissing; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }

    void Display(std::ostream& os) const;

private:
    struct Panel;
    double eval(double x);
    static void rules(Panel& p);
    // The integral over a panel whose ordinates and rules are known.
    double refine(const Panel& p);

    IIntegrand* m_integrand;
    double m_tolerance = kDefaultTolerance;
    int m_maxIter = kDefaultMaxIter;
    int m_nIterations = 0;
    int m_nEvaluations = 0;
    int m_nMissing = 0;
    bool m_limitReached = false;
    double m_tolEff = kDefaultTolerance;  // the tolerance, at least the machine epsilon
    double m_estimate = 0.0;              // running estimate of the whole integral
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCMath_850
