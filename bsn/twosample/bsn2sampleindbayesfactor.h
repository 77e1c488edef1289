#pragma once
// BSN2SampleIndBayesFactor: the Bayes-factor stage of the independent-samples
// procedure. Compute() first fills the classical two-sample statistics of
// every test variable (mean difference second group minus first, pooled and
// unpooled (Welch) t tests), then the subclass's ComputeBF() fills the Bayes
// factors of equal means against different means (above 1 favours equal
// means) and their natural logarithms.
//
// CreateBayesFactor chooses the subclass from GetRegrCompType(): Hyper gives
// HyperPriorBayesFactor, Gonen GonenBayesFactor, anything else
// RouderBayesFactor.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/twosample/bsn2sampleindbasicstats.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/variables/mcvarlist.h"

namespace MCBSN_850 {

class BSN2SampleIndBayesFactor {
public:
    virtual ~BSN2SampleIndBayesFactor();
    BSN2SampleIndBayesFactor(const BSN2SampleIndBayesFactor&) = delete;
    BSN2SampleIndBayesFactor& operator=(const BSN2SampleIndBayesFactor&) = delete;

    // A new calculator of the kind the settings ask for, owned by the caller.
    static std::unique_ptr<BSN2SampleIndBayesFactor> CreateBayesFactor(const BSNSettings& settings,
                                                                       const MCXML_850::MCVarList& varList,
                                                                       MCCommon_850::MCWarnings& warnings);

    // The classical statistics of every test variable from the two groups'
    // statistics (group 0 = cases coded 0), then the Bayes factors. A
    // variable with an empty group or fewer than three weighted cases in all
    // keeps missing values; one whose groups are both constant gets warning
    // 410045 (datum 0 = its position) and no t or factor.
    MCCommon_850::MCStatus Compute(const BSN2SampleIndBasicStats& first, BSN2SampleIndBasicStats second,
                                   MCCommon_850::MCWarnings& warnings);

    // Per test variable, missing where not computed.
    const std::vector<double>& GetEffectiveSizes() const { return m_effectiveSizes; }  // n0 n1 / (n0 + n1)
    const std::vector<double>& GetDFs() const { return m_dfs; }                        // n0 + n1 - 2
    const std::vector<double>& GetMeanDiffs() const { return m_meanDiffs; }            // m1 - m0
    const std::vector<double>& GetPooledVariances() const { return m_pooledVariances; }
    const std::vector<double>& GetPooledStdDevs() const { return m_pooledStdDevs; }
    const std::vector<double>& GetPooledStdErrors() const { return m_pooledStdErrors; }
    const std::vector<double>& GetUnpooledStdErrors() const { return m_unpooledStdErrors; }
    const std::vector<double>& GetPooledTs() const { return m_pooledTs; }
    const std::vector<double>& GetUnpooledTs() const { return m_unpooledTs; }
    const std::vector<double>& GetPooledSigs() const { return m_pooledSigs; }
    const std::vector<double>& GetUnpooledSigs() const { return m_unpooledSigs; }
    const std::vector<double>& GetWelchDFs() const { return m_welchDfs; }
    const std::vector<double>& GetBayesFactors() const { return m_bayesFactors; }
    // ln(BF), computed on the log scale where the factor itself would
    // overflow or underflow.
    const std::vector<double>& GetLogBayesFactors() const { return m_logBayesFactors; }

    virtual void Display(std::ostream& os) const;

protected:
    BSN2SampleIndBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList);

    // Fills m_bayesFactors and m_logBayesFactors for every variable whose
    // pooled t is present; the vectors are sized and missing on entry.
    virtual MCCommon_850::MCStatus ComputeBF() = 0;
    // The dump lines of the shared fields, to the current dump stream.
    void DisplayFields() const;

    // exp(logFactor) within the exponent range: missing above it (overflow),
    // 0 below it (an underflowing factor is 0 to double precision).
    static double FactorFromLog(double logFactor);

    const BSNSettings& m_settings;
    const MCXML_850::MCVarList& m_varList;
    // The procedure's warnings, as handed to the last Compute.
    MCCommon_850::MCWarnings* m_warnings = nullptr;

    std::vector<double> m_effectiveSizes;
    std::vector<double> m_dfs;
    std::vector<double> m_meanDiffs;
    std::vector<double> m_pooledVariances;
    std::vector<double> m_pooledStdDevs;
    std::vector<double> m_pooledStdErrors;
    std::vector<double> m_unpooledStdErrors;
    std::vector<double> m_pooledTs;
    std::vector<double> m_unpooledTs;
    std::vector<double> m_pooledSigs;
    std::vector<double> m_unpooledSigs;
    std::vector<double> m_welchDfs;
    std::vector<double> m_bayesFactors;
    std::vector<double> m_logBayesFactors;

private:
    void computeClassical(std::size_t i, const BSN2SampleContStats& g0, const BSN2SampleContStats& g1);
};

} // namespace MCBSN_850
