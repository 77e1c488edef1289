#pragma once
// BSN1SamplePoisBayesFactor: for every test variable of the one-sample
// Poisson analysis, the Bayes factor of a null gamma prior against an
// alternative gamma prior on the rate (shape and rate parameters; null over
// alternative). It makes its own data pass through Update().
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/onesample/bsn1samplepoiscounts.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN1SamplePoisBayesFactor {
public:
    // The settings are borrowed from the owning procedure and must outlive
    // this object.
    explicit BSN1SamplePoisBayesFactor(const BSNSettings& settings);

    void Update(const MCCommon_850::Record& record, double weight) { m_counts.Update(record, weight); }
    // Closes the data pass: error 410003 when N is 0 for every variable.
    MCCommon_850::MCStatus EndDataPass();
    // Computes every variable's factor. A variable without usable
    // alternative prior parameters gets none, and the returned status is then
    // warning 410018 whose datum is the first such position; warning 410041
    // goes to GetWarnings() once when some logarithm had to be stored.
    MCCommon_850::MCStatus ComputeBFs();

    // ln of the marginal likelihood under a Gamma(a, b) prior, up to the
    // data-only factor that cancels in the ratio:
    // a ln b − lnΓ(a) + lnΓ(a + S) − (a + S) ln(b + N). Missing when a or b is
    // not positive.
    static double logMarginal(double a, double b, double N, double S);

    const BSN1SamplePoisCounts& GetCounts() const { return m_counts; }
    const std::vector<double>& GetBayesFactors() const { return m_bayesFactors; }
    const std::vector<bool>& GetIsLogBayesFactor() const { return m_isLog; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }
    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }

    void Display(std::ostream& os) const;

private:
    const BSNSettings& m_settings;
    BSN1SamplePoisCounts m_counts;
    std::vector<double> m_bayesFactors;
    std::vector<bool> m_isLog;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCBSN_850
