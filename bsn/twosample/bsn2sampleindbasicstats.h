#pragma once
// BSN2SampleIndBasicStats: the running statistics of every test variable in
// one group of the independent-samples procedure, one BSN2SampleContStats
// per test variable in the order of the list it was made with.
#include <iosfwd>
#include <vector>

#include "bsn/twosample/bsn2samplecontstats.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN2SampleIndBasicStats {
public:
    // Keeps its own copy of the list of test-variable indices.
    explicit BSN2SampleIndBasicStats(const std::vector<int>& testVars);

    // An unweighted case: every test variable's value (missing values are
    // skipped by the accumulators).
    void Update(const MCCommon_850::Record& record);
    // A weighted case: f is rounded half up (floor(f + 0.5)); nothing is
    // added (false) when f or w is missing, the rounded f is not positive or
    // w is not positive.
    bool Update(const MCCommon_850::Record& record, double f, double w);

    std::size_t Size() const { return m_stats.size(); }
    const BSN2SampleContStats& Get(std::size_t i) const { return m_stats.at(i); }
    const std::vector<int>& GetVarIndices() const { return m_testVars; }

    // Per test variable; what cannot be computed is the system-missing
    // value. W as a double, and truncated to int (saturating at the int
    // range).
    std::vector<double> GetNWeightedCases() const;
    std::vector<int> GetNWeightedIntCases() const;
    std::vector<double> GetMeans() const;
    std::vector<double> GetVariances() const;
    // sqrt(variance).
    std::vector<double> GetStdDevs() const;
    // sqrt(variance / W) when the variance is present and W > 0.
    std::vector<double> GetStdErrors() const;

    void Display(std::ostream& os) const;

private:
    std::vector<int> m_testVars;
    std::vector<BSN2SampleContStats> m_stats;
};

} // namespace MCBSN_850
