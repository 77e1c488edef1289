#pragma once
// BayesFactorOneSampleTTMC: the JZS Bayes factor of a normal mean with the
// denominator integral estimated by Monte Carlo: the mean of the likelihood
// h(g) over draws of g from its prior. The same seed gives the same value.
#include <iosfwd>

#include "platform/quadrature/inumintegration.h"

namespace MCBSN_850 {

class BayesFactorOneSampleTTMC : public MCMath_850::INumIntegration {
public:
    BayesFactorOneSampleTTMC(double N, double df, double t, int samples, unsigned long seed);
    ~BayesFactorOneSampleTTMC() override = default;

    // The sum of h(g) over the samples (the bounds are not used: the
    // sampling distribution is the prior); missing when invalid.
    double SumUp(double a, double b) override;
    // SumUp divided by the number of samples; missing when invalid or when
    // there are no samples.
    double Integrate(double a, double b) override;

    // Valid when N > 0, df > 0, t is not missing and samples >= 0.
    bool IsValid() const { return m_valid; }
    void SetSeed(unsigned long seed) { m_seed = seed; }
    // The Bayes factor; missing when invalid or not computable.
    double Compute();
    // Its natural log from the same draws, on the log scale where the
    // factor or the mean of h would underflow. Missing as Compute.
    double ComputeLog();

    void Display(std::ostream& os) const;

private:
    double m_N;
    double m_df;
    double m_t;
    int m_samples;
    unsigned long m_seed;
    bool m_valid;
};

} // namespace MCBSN_850
