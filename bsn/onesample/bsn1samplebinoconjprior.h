#pragma once
// BSN1SampleBinoConjPrior: the conjugate beta posterior of the success
// proportion of every test variable: mode, mean, variance, equal-tailed
// credible interval and the plot curves (log likelihood, prior and
// posterior density on a fixed grid of proportions).
#include <iosfwd>
#include <vector>

#include "bsn/onesample/bsn1samplebinocounts.h"
#include "bsn/onesample/bsn1samplediscreteposterior.h"

namespace MCBSN_850 {

class BSN1SampleBinoConjPrior : public BSN1SampleDiscretePosterior<BSN1SampleBinoCounts> {
public:
    // For a data pass of its own (fed through Update). The settings are
    // borrowed from the owning procedure and must outlive this object.
    explicit BSN1SampleBinoConjPrior(const BSNSettings& settings);
    // From sums another worker has already accumulated: no data pass.
    BSN1SampleBinoConjPrior(const BSNSettings& settings, const BSN1SampleBinoCounts& counts);

    // The posterior of every variable. Error 410017 for a prior type other
    // than conjugate, error 410019 when a prior parameter is missing;
    // warning 410037 (datum = position) for a variable without a trial or
    // with an improper posterior.
    MCCommon_850::MCStatus Compute();

    // The Beta(α, β) density at t, exp(c + (α − 1) ln t + (β − 1) ln(1 − t))
    // with c = −ln B(α, β): 0 when the exponent underflows, missing when it
    // overflows or cannot be formed. The exponent is computed as one
    // expression around the mode (MCLogGamma::LogBetaPdf), since with a
    // billion trials c and the two logs are each near 1e10 and their sum
    // would keep no digit of the density.
    static double updateForBeta(double t, double alpha, double beta);
    // The plot grid: nPoints proportions from 2.220446049250313e-16 to
    // 0.9999999999999996 + 2.220446049250313e-16, so that ln t and ln(1 − t)
    // are finite at every point.
    static std::vector<double> PlotGrid(int nPoints);

    const std::vector<std::vector<double>>& GetPlotArguments() const { return m_plotArguments; }
    const std::vector<std::vector<double>>& GetPlotLikelihoods() const { return m_plotLikelihoods; }
    const std::vector<std::vector<double>>& GetPlotPrior() const { return m_plotPrior; }
    const std::vector<std::vector<double>>& GetPlotPosterior() const { return m_plotPosterior; }

    void Display(std::ostream& os) const;

private:
    void computeVariable(std::size_t i, double a, double b, const std::vector<double>& grid);
    static double computeMode(double alpha, double beta, double s);
    void ComputePlot(std::size_t i, double a, double b, double alpha, double beta, const std::vector<double>& grid);

    std::vector<std::vector<double>> m_plotArguments;
    std::vector<std::vector<double>> m_plotLikelihoods;
    std::vector<std::vector<double>> m_plotPrior;
    std::vector<std::vector<double>> m_plotPosterior;
};

} // namespace MCBSN_850
