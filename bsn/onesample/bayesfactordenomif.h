#pragma once
// BayesFactorDenomIF: the integrand of the denominator of the JZS Bayes
// factor of a normal mean, as a function of the prior variance ratio g.
// For quadrature (ComputeNI) it is the marginal likelihood of the t
// statistic given g times the inverse-gamma(1/2, 1/2) prior density of g;
// for Monte Carlo (ComputeMC) only the likelihood part, g being drawn from
// its prior.
#include <iosfwd>

#include "platform/quadrature/iintegrand.h"

namespace MCBSN_850 {

class BayesFactorDenomIF : public MCMath_850::IIntegrand {
public:
    // N: sample size (sum of frequency weights), df: degrees of freedom, t:
    // the observed t statistic.
    BayesFactorDenomIF(double N, double df, double t);
    ~BayesFactorDenomIF() override = default;

    // h(g) = x^(-1/2) (1 + t^2/(x df))^(-(df+1)/2) with x = 1 + N g;
    // missing when invalid or x <= 0.
    double ComputeMC(double g, double unused) override;
    // f(g) = h(g) (2 pi)^(-1/2) g^(-3/2) exp(-1/(2g)); missing when invalid
    // or g < 0, exactly 0 at g = 0 (and wherever the prior underflows).
    // With a log scale s set, f(g) e^(-s) instead, evaluated as
    // exp(ln f(g) - s) so that neither factor under- or overflows.
    double ComputeNI(double g) override;

    // The null term (1 + t^2/df)^(-(df+1)/2): the factor's numerator on
    // the scale of h. Missing when invalid; underflows to 0 for huge t.
    double ComputeNull() const;

    // The same three quantities on the log scale, where nothing under- or
    // overflows: ln h(g) (g >= 0), ln f(g) (g > 0) and ln of the null term.
    // Missing when invalid or outside those ranges.
    double ComputeLogMC(double g) const;
    double ComputeLogNI(double g) const;
    double ComputeLogNull() const;

    // Divides ComputeNI by e^s from now on (0, the default, leaves it as it
    // is): a quadrature of the scaled integrand with s near the maximum of
    // ln f gives the integral's logarithm as s + ln(result).
    void SetLogScale(double s) { m_logScale = s; }
    double GetLogScale() const { return m_logScale; }

    void SetParams(double N, double df, double t);
    bool IsValid() const { return m_valid; }

    void Display(std::ostream& os) const;

private:
    double m_N;
    double m_df;
    double m_t;
    bool m_valid = false;
    double m_logScale = 0.0;
    static constexpr double m_invSqrt2Pi = 0.3989422804014327;
};

} // namespace MCBSN_850
