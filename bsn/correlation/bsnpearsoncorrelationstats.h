#pragma once
// BSNPearsonCorrelationStats: the pair statistics of the correlation
// procedure, from one pass over the records: for every pair of the analysis
// variables (the settings' covariates, i outer, j inner, i < j) the sum of
// weights N of the cases used, the correlation r = Sxy / sqrt(Sxx Syy) and
// log(Sxx Syy), with Sxx, Syy, Sxy the sums of squared and cross-multiplied
// deviations from the weighted means.
//
// Missing values (GetMissScope): listwise deletion (1) uses the cases
// complete in every analysis variable for all pairs; pairwise deletion (0)
// uses, for each pair, the cases where both of its variables are present.
// Frequency weights are rounded to whole cases: a missing weight or one
// below 0.5 drops the case, others become floor(w + 0.5).
//
// Pairs with N < 2 (warning 410006) or a constant variable (410008) get no
// correlation (the missing value); |r| = 1 is kept and flagged (410009).
// Each warning is raised once, with the index of the first such pair as
// datum 0 and the pair's two variable indices as data 1 and 2.
#include <iosfwd>
#include <utility>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mccancelinfo.h"
#include "platform/progress/progress.h"
#include "platform/records/multipassrecorditer.h"

namespace MCBSN_850 {

class BSNPearsonCorrelationStats {
public:
    // Warnings go to `warnings`; both references must outlive the object.
    BSNPearsonCorrelationStats(const BSNSettings& settings, MCCommon_850::MCWarnings& warnings,
                               MCMath_850::MCCancelInfo& cancelInfo);

    // The listener notified every GetProgressFrequency() records during the
    // pass (and once at its end); null for none.
    void SetProgressListener(MCCommon_850::ProgressListener* listener) { m_listener = listener; }
    // Cases folded into the accumulators a block at a time (tests use small
    // blocks to exercise the folding).
    void SetBlockSize(int cases) { m_blockSize = cases; }

    // GenerateVarPairs, then PassData.
    MCCommon_850::MCStatus Calculate(MCCommon_850::MultiPassRecordIter& iter);
    void GenerateVarPairs();
    // Error 410003 when the source has no record; the bare error 1 when
    // cancelled.
    MCCommon_850::MCStatus PassData(MCCommon_850::MultiPassRecordIter& iter);

    // The rounded frequency weight of a record (1 without a weight variable).
    double GetWeight(const MCCommon_850::Record* record) const;
    // Every analysis variable's value into values[0..k-1]; true at the first
    // missing one (the values after it are not read).
    bool HasMissing(const MCCommon_850::Record* record, std::vector<double>& values) const;
    // The two variables' values into values[0..1]; true when either is missing.
    bool HasMissing(const MCCommon_850::Record* record, int var1, int var2, std::vector<double>& values) const;
    // r is present and not a perfect linear correlation.
    static bool IsValidCorrelation(double r);
    static bool IsPerfectLinearCorrelation(double r);

    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }
    // Pairs of variable indices, in pair order.
    const std::vector<std::pair<int, int>>& GetVarIndexPair() const { return m_pairs; }
    int GetValidStatsVarPairCount() const { return m_validPairs; }
    const std::vector<double>& GetCorrelation() const { return m_correlations; }
    const std::vector<double>& GetVarPairN() const { return m_pairN; }
    // Per analysis variable: the sum of weights of the cases used with it
    // (under listwise deletion the complete cases, the same for all).
    const std::vector<double>& GetVarN() const { return m_varN; }
    const std::vector<double>& GetLogSxxSyy() const { return m_logSxxSyy; }
    // Records read by the pass (used or not).
    int GetNRecords() const { return m_nRecords; }

    void Display(std::ostream& os) const;

private:
    const BSNSettings& m_settings;
    MCCommon_850::MCWarnings& m_warnings;
    MCMath_850::MCCancelInfo& m_cancelInfo;
    MCCommon_850::ProgressListener* m_listener = nullptr;
    MCCommon_850::MCStatus m_status;
    std::vector<int> m_vars;
    int m_weightVar = -1;
    int m_blockSize = 0;
    std::vector<std::pair<int, int>> m_pairs;
    std::vector<double> m_correlations;
    std::vector<double> m_pairN;
    std::vector<double> m_varN;
    std::vector<double> m_logSxxSyy;
    int m_validPairs = 0;
    int m_nRecords = 0;
};

} // namespace MCBSN_850
