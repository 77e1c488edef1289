#pragma once
// BSN1SamplePoisProir: the conjugate gamma posterior of the Poisson rate of
// every test variable: its parameters, mode, mean, variance and
// equal-tailed credible interval, and the (−N, S) pair of the likelihood.
#include <iosfwd>
#include <utility>
#include <vector>

#include "bsn/onesample/bsn1samplediscreteposterior.h"
#include "bsn/onesample/bsn1samplepoiscounts.h"

namespace MCBSN_850 {

class BSN1SamplePoisProir : public BSN1SampleDiscretePosterior<BSN1SamplePoisCounts> {
public:
    // For a data pass of its own (fed through Update). The settings are
    // borrowed from the owning procedure and must outlive this object.
    explicit BSN1SamplePoisProir(const BSNSettings& settings);
    // From sums another worker has already accumulated: no data pass.
    BSN1SamplePoisProir(const BSNSettings& settings, const BSN1SamplePoisCounts& counts);

    // Error 410017 for a prior type other than conjugate, error 410019 when
    // the prior shape or rate is missing. A variable with N = 0, or whose
    // posterior is improper, keeps missing entries.
    MCCommon_850::MCStatus Compute();

    // (α, β): shape and rate of the posterior.
    const std::vector<std::pair<double, double>>& GetPosteriorParams() const { return m_posteriorParams; }
    // (−N, S): the log likelihood of rate λ is S ln λ − N λ plus a constant.
    const std::vector<std::pair<double, double>>& GetLikelihoodParams() const { return m_likelihoodParams; }

    void Display(std::ostream& os) const;

private:
    void computeVariable(std::size_t i, double a, double b);

    std::vector<std::pair<double, double>> m_posteriorParams;
    std::vector<std::pair<double, double>> m_likelihoodParams;
};

} // namespace MCBSN_850
