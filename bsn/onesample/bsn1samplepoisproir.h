#pragma once
// BSN1SamplePoisProir: the conjugate gamma posterior of the Poisson rate of
// every test variable: its parameters, mode, mean, variance and
// equal-tailed credible interval, and the (−N, S) pair of the likelihood.
#include <iosfwd>
#include <utility>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/onesample/bsn1samplepoiscounts.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN1SamplePoisProir {
public:
    // For a data pass of its own (fed through Update). The settings are
    // borrowed from the owning procedure and must outlive this object.
    explicit BSN1SamplePoisProir(const BSNSettings& settings);
    // From sums another worker has already accumulated: no data pass.
    BSN1SamplePoisProir(const BSNSettings& settings, const BSN1SamplePoisCounts& counts);

    void Update(const MCCommon_850::Record& record, double weight) { m_counts.Update(record, weight); }
    // Closes the data pass: error 410003 when N is 0 for every variable.
    MCCommon_850::MCStatus EndDataPass();
    // Error 410017 for a prior type other than conjugate, error 410019 when
    // the prior shape or rate is missing. A variable with N = 0, or whose
    // posterior is improper, keeps missing entries.
    MCCommon_850::MCStatus Compute();

    const BSN1SamplePoisCounts& GetCounts() const { return m_counts; }
    const std::vector<double>& GetModeValues() const { return m_modes; }
    const std::vector<double>& GetMeanValues() const { return m_means; }
    const std::vector<double>& GetVarianceValues() const { return m_variances; }
    const std::vector<double>& GetLowerLimits() const { return m_lowerLimits; }
    const std::vector<double>& GetUpperLimits() const { return m_upperLimits; }
    // (α, β): shape and rate of the posterior.
    const std::vector<std::pair<double, double>>& GetPosteriorParams() const { return m_posteriorParams; }
    // (−N, S): the log likelihood of rate λ is S ln λ − N λ plus a constant.
    const std::vector<std::pair<double, double>>& GetLikelihoodParams() const { return m_likelihoodParams; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }
    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }

    void Display(std::ostream& os) const;

private:
    void initResults();
    void computeVariable(std::size_t i, double a, double b);

    const BSNSettings& m_settings;
    BSN1SamplePoisCounts m_counts;
    std::vector<double> m_modes;
    std::vector<double> m_means;
    std::vector<double> m_variances;
    std::vector<double> m_lowerLimits;
    std::vector<double> m_upperLimits;
    std::vector<std::pair<double, double>> m_posteriorParams;
    std::vector<std::pair<double, double>> m_likelihoodParams;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCBSN_850
