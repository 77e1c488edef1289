#pragma once
// BSN1SampleNormalFactor: the t test and Bayes factor of every test variable
// of the one-sample normal procedure (and, on paired differences, of the
// related-samples procedure).
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mccancelinfo.h"
#include "platform/records/multipassrecorditer.h"
#include "platform/stats/mccontstats.h"
#include "platform/variables/mcvarlist.h"

namespace MCBSN_850 {

class BSN1SampleNormalFactor {
public:
    // All references are borrowed from the owning procedure and must outlive
    // this object; warnings raised here are appended to `warnings`.
    BSN1SampleNormalFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                           const std::vector<MCMath_850::MCContStats>& stats, const std::vector<double>& stdErrors,
                           MCCommon_850::MCWarnings& warnings);

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter, MCMath_850::MCCancelInfo& cancel);

    const std::vector<double>& getFactor() const { return m_factors; }
    // The natural log of each factor, computed on the log scale: finite
    // where the factor underflows to 0.
    const std::vector<double>& getLogFactor() const { return m_logFactors; }
    const std::vector<double>& getTtest() const { return m_tValues; }
    const std::vector<double>& getSig() const { return m_sigs; }

    void Display(std::ostream& os) const;

private:
    void computeTtest();
    bool isStop(MCMath_850::MCCancelInfo& cancel);
    void computeBeta(MCMath_850::MCCancelInfo& cancel);
    void computeBetaForUnKnownVarJZS();
    void computeBetaForUnKnownVarSimple(MCMath_850::MCCancelInfo& cancel);

    const BSNSettings& m_settings;
    const MCXML_850::MCVarList& m_varList;
    const std::vector<MCMath_850::MCContStats>& m_stats;
    const std::vector<double>& m_stdErrors;
    std::vector<double> m_factors;
    std::vector<double> m_logFactors;
    std::vector<double> m_tValues;
    std::vector<double> m_sigs;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings* m_warnings;
};

} // namespace MCBSN_850
