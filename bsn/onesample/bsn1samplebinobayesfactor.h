#pragma once
// BSN1SampleBinoBayesFactor: for every test variable of the one-sample
// binomial analysis, the Bayes factor of a null beta prior against an
// alternative beta prior on the success proportion (null over alternative).
// It makes its own data pass through Update(); the factors are computed from
// the accumulated trials and successes only.
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/onesample/bsn1samplebinocounts.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN1SampleBinoBayesFactor {
public:
    // The settings are borrowed from the owning procedure and must outlive
    // this object.
    explicit BSN1SampleBinoBayesFactor(const BSNSettings& settings);

    void Update(const MCCommon_850::Record& record, double weight) { m_counts.Update(record, weight); }
    // Closes the data pass: error 410003 when no variable has a trial.
    MCCommon_850::MCStatus EndDataPass();
    // Computes every variable's factor. Per-variable problems become
    // warnings (410018, 410037) and, when a logarithm had to be stored,
    // 410041 once; the returned status carries no error.
    MCCommon_850::MCStatus ComputeBFs();

    // ln B(a, b) = lnΓ(a) + lnΓ(b) − lnΓ(a + b), with B(0, 0) taken as 1 so
    // that the improper prior Beta(0, 0) contributes nothing. Missing for any
    // other argument that is not positive.
    static double computeLogBeta(double a, double b);

    const BSN1SampleBinoCounts& GetCounts() const { return m_counts; }
    const std::vector<double>& GetBayesFactors() const { return m_bayesFactors; }
    const std::vector<bool>& GetIsLogBayesFactor() const { return m_isLog; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }
    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }

    void Display(std::ostream& os) const;

private:
    // The natural log of the factor for one variable, or missing.
    static double logFactor(double n, double x, double a0, double b0, double a1, double b1);

    const BSNSettings& m_settings;
    BSN1SampleBinoCounts m_counts;
    std::vector<double> m_bayesFactors;
    std::vector<bool> m_isLog;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCBSN_850
