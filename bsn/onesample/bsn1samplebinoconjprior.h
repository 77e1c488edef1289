#pragma once
// BSN1SampleBinoConjPrior: the conjugate beta posterior of the success
// proportion of every test variable: mode, mean, variance, equal-tailed
// credible interval and the plot curves (log likelihood, prior and
// posterior density on a fixed grid of proportions).
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/onesample/bsn1samplebinocounts.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN1SampleBinoConjPrior {
public:
    // For a data pass of its own (fed through Update). The settings are
    // borrowed from the owning procedure and must outlive this object.
    explicit BSN1SampleBinoConjPrior(const BSNSettings& settings);
    // From sums another worker has already accumulated: no data pass.
    BSN1SampleBinoConjPrior(const BSNSettings& settings, const BSN1SampleBinoCounts& counts);

    void Update(const MCCommon_850::Record& record, double weight) { m_counts.Update(record, weight); }
    // Closes the data pass: error 410003 when no record was usable for any
    // variable.
    MCCommon_850::MCStatus EndDataPass();
    // The posterior of every variable. Error 410017 for a prior type other
    // than conjugate, error 410019 when a prior parameter is missing;
    // warning 410037 (datum = position) for a variable without a trial or
    // with an improper posterior.
    MCCommon_850::MCStatus Compute();

    // The beta density at t written as exp(c + (α − 1) ln t + (β − 1) ln(1 − t))
    // with c = −ln B(α, β): 0 when the exponent underflows, missing when it
    // overflows.
    static double updateForBeta(double t, double alpha, double beta, double c);
    // The plot grid: nPoints proportions from 2.220446049250313e-16 to
    // 0.9999999999999996 + 2.220446049250313e-16, so that ln t and ln(1 − t)
    // are finite at every point.
    static std::vector<double> PlotGrid(int nPoints);

    const BSN1SampleBinoCounts& GetCounts() const { return m_counts; }
    const std::vector<double>& GetModeValues() const { return m_modes; }
    const std::vector<double>& GetMeanValues() const { return m_means; }
    const std::vector<double>& GetVarianceValues() const { return m_variances; }
    const std::vector<double>& GetLowerLimits() const { return m_lowerLimits; }
    const std::vector<double>& GetUpperLimits() const { return m_upperLimits; }
    const std::vector<std::vector<double>>& GetPlotArguments() const { return m_plotArguments; }
    const std::vector<std::vector<double>>& GetPlotLikelihoods() const { return m_plotLikelihoods; }
    const std::vector<std::vector<double>>& GetPlotPrior() const { return m_plotPrior; }
    const std::vector<std::vector<double>>& GetPlotPosterior() const { return m_plotPosterior; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }
    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }

    void Display(std::ostream& os) const;

private:
    void initResults();
    void computeVariable(std::size_t i, double a, double b, const std::vector<double>& grid);
    static double computeMode(double alpha, double beta, double s);
    void ComputePlot(std::size_t i, double a, double b, double alpha, double beta, const std::vector<double>& grid);

    const BSNSettings& m_settings;
    BSN1SampleBinoCounts m_counts;
    std::vector<double> m_modes;
    std::vector<double> m_means;
    std::vector<double> m_variances;
    std::vector<double> m_lowerLimits;
    std::vector<double> m_upperLimits;
    std::vector<std::vector<double>> m_plotArguments;
    std::vector<std::vector<double>> m_plotLikelihoods;
    std::vector<std::vector<double>> m_plotPrior;
    std::vector<std::vector<double>> m_plotPosterior;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCBSN_850
