#pragma once
// BayesFactor2DimMC: Monte-Carlo estimates of the two integrals over (V, rho)
// of the fractional Bayes factor of a correlation, for the full likelihood
// (fraction 1) and the fraction b, and the Bayes factor formed from them
// and the null model's integrals over V.
//
// The V range [0, 1000] is cut into [0, 0.5], [0.5, 2] and [2, 1000]; rho
// runs over [-1, 1]. In each region S uniform points are drawn (V from the
// stream seeded s + 2, rho from the stream seeded s), the integrands are
// evaluated on the log scale, scaled from a pilot pass over the same points
// and averaged; each region's average times its area is its integral. The
// regions are combined on the log scale. Every region of every call starts
// its streams again from the seed, so all pairs of variables see the same
// points, and the factor of a pair does not depend on which other pairs
// were computed with the same object. The points of a region, which depend
// only on the seed, the region and S, are kept between calls.
#include <iosfwd>
#include <vector>

#include "bsn/correlation/bayesfactor2dimif.h"
#include "platform/quadrature/inumintegration.h"

namespace MCBSN_850 {

class BayesFactor2DimMC : public MCMath_850::INumIntegration {
public:
    static constexpr double kLowerRho = -1.0;
    static constexpr double kUpperRho = 1.0;
    static constexpr double kLowerV = 0.0;
    static constexpr double kFirstInnerV = 0.5;
    static constexpr double kSecondInnerV = 2.0;
    static constexpr double kUpperV = 1000.0;

    BayesFactor2DimMC();

    // Fraction b, case count n, correlation r, points per region S. Valid
    // when 0 < b <= 1, n > 0, -1 <= r <= 1 and S >= 0.
    void SetParams(double b, double n, double r, long S);
    void SetSeed(unsigned long seed) { m_seed = seed; }
    // A fixed log scale for both integrands instead of the pilot pass's;
    // the missing value restores the pilot pass.
    void SetLogScale(double x) { m_fixedLogScale = x; }
    bool IsValid() const { return m_valid; }

    // Both integrals over the three regions.
    void Compute();
    // The running averages of the region [Va, Vb] x [-1, 1] (both kept);
    // returns that of fraction b.
    double SumUp(double Va, double Vb) override;
    // SumUp times the region's area; returns the fraction-b integral.
    double Integrate(double Va, double Vb) override;

    // log BF = log Ib + lb + (logF1 - logFb) - log I1 - l1, with Ik and lk
    // the scaled integrals and their log scales (Compute runs first when
    // they are missing) and logF1, logFb the logs of the null model's
    // integrals for fraction 1 and fraction b. Returns log BF (missing when
    // it cannot be formed).
    double ComputeBayesFactorFromLogs(double logF1, double logFb);
    // The same from the null integrals themselves; returns the factor.
    double ComputeBayesFactor(double F1, double Fb);
    double GetLogBayesFactor() const { return m_logBF; }

    // Scaled integrals (fraction 1, fraction b) and their log scales.
    void GetIntegrals(double& I1, double& Ib) const;
    void GetLogScales(double& l1, double& lb) const;
    // Natural logs of the integrals themselves.
    void GetLogIntegrals(double& logI1, double& logIb) const;
    // Ib / I1 and its log; missing when not computed (or not representable).
    double GetRatioOfIntegrals() const;
    double GetLogRatioOfIntegrals() const;
    // Updates of the last Compute that left an average unchanged.
    void GetNumberOfUnderflows(long& n1, long& nb) const;

    void Display(std::ostream& os) const;

private:
    // The S points of one region with the parts of the integrand that do
    // not depend on b, n or r.
    struct Points {
        unsigned long seed = 0;
        double Va = 0.0, Vb = 0.0;
        long S = -1;
        std::vector<double> rho, logOneMinusRho2, logV, sExcess;
    };
    const Points& points(double Va, double Vb);
    void clearResults();

    double m_b = 0.0;
    double m_n = 0.0;
    double m_r = 0.0;
    long m_S = 0;
    unsigned long m_seed = 0;
    bool m_valid = false;
    double m_fixedLogScale;
    BayesFactor2DimIF m_integrand1, m_integrandB;
    // The last region summed.
    double m_average1 = 0.0, m_averageB = 0.0;
    // Combined results.
    double m_integral1, m_integralB, m_logScale1, m_logScaleB, m_logBF;
    long m_underflows1 = 0, m_underflowsB = 0;
    std::vector<Points> m_points;
    std::vector<double> m_log1, m_logB;  // scratch: log integrand at the points
};

} // namespace MCBSN_850
