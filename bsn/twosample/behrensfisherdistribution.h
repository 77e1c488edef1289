#pragma once
// BehrensFisherDistribution: the distribution of Y = a0 T0 + a1 T1 for
// independent Student t variables T0, T1 with df0 and df1 degrees of
// freedom and positive scales a0, a1: the posterior of a difference of two
// normal means under flat priors on the means and 1/sigma_g^2 priors on two
// unequal variances (centred at the observed difference). Y is symmetric
// about 0 and unimodal.
//
// The distribution function is a one-dimensional integral of one t density
// times the other t distribution function. It is split along the line
// a0 T0 + a1 T1 = y at the point nearest the origin in the scaled sense, so
// that each piece integrates a density over a half-line on which the other
// factor is a smooth tail: no piece contains the jump of the other
// variable's distribution function. The pieces are integrated together by
// globally adaptive Gauss-Kronrod quadrature (21 points, the worst panel
// halved until the summed error estimate meets the tolerance), in the angle
// u = sqrt(df) tan(theta) for few degrees of freedom (algebraic tails) and
// in u itself, cut where the tail is below 1e-20, for many. The density is
// integrated on the same panels at the same time. Quantiles are found by
// safeguarded Newton iteration from the Welch-Satterthwaite approximation.
#include <iosfwd>

namespace MCBSN_850 {

class BehrensFisherDistribution {
public:
    // Valid when both scales are positive and both df are positive.
    BehrensFisherDistribution(double a0, double df0, double a1, double df1);

    bool IsValid() const { return m_valid; }
    // P(Y <= y); missing when invalid.
    double Cdf(double y) const;
    // The density of Y at y; relTol is the quadrature's relative tolerance.
    double Pdf(double y, double relTol = 1e-8) const;
    // The p-quantile, 0 < p < 1, to a relative accuracy of about 1e-12;
    // missing when invalid or p is outside (0, 1).
    double Quantile(double p) const;
    // Variance when both df > 2, else missing; the mean (0) exists when both
    // df > 1.
    double Variance() const;

    // Integrand evaluations of the calls so far (for diagnostics and
    // benchmarks).
    long GetNEvaluations() const { return m_evaluations; }
    // False once a quadrature stopped at its panel limit short of its
    // tolerance or a quantile search ran out of steps: the values returned
    // since may be less accurate than intended.
    bool Converged() const { return m_converged; }

    void Display(std::ostream& os) const;

    // One of the two t variables: df, scale and the pieces of its density.
    struct Component {
        double df = 0.0;
        double scale = 0.0;
        double logNorm = 0.0;    // ln of the t density's constant
        double angleNorm = 0.0;  // Gamma((df+1)/2) / (sqrt(pi) Gamma(df/2))
        double cut = 0.0;        // |u| beyond which the tail is negligible (many df)
        bool useAngle = true;
        bool useSeries = false;  // whole df up to 200: the finite trigonometric series
        double Pdf(double u) const;
        double Cdf(double u) const;
    };

private:
    // P(Y <= y) and the density at y, for y <= 0, to the given relative
    // tolerances (a tolerance of 1 or more leaves that value rough).
    void lowerTail(double y, double cdfTol, double pdfTol, double& cdf, double& pdf) const;

    Component m_big;    // the larger scale
    Component m_small;  // the smaller scale
    bool m_valid = false;
    mutable long m_evaluations = 0;
    mutable bool m_converged = true;
};

} // namespace MCBSN_850
