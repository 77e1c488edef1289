#pragma once
// BSN1SamplePoisCounts: the running sums of the one-sample Poisson analysis,
// one entry per test variable: fed record by record, nothing kept per record.
#include <cstddef>
#include <iosfwd>
#include <vector>

#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN1SamplePoisCounts {
public:
    explicit BSN1SamplePoisCounts(const std::vector<int>& varIndices);

    // Adds one record of (already rounded) frequency weight `weight`. A value
    // that is missing or negative is skipped for its variable only; others
    // count as their integer part.
    void Update(const MCCommon_850::Record& record, double weight);

    std::size_t Size() const { return m_varIndices.size(); }
    // True when some variable has a positive sum of weights.
    bool HasAnyCase() const;

    const std::vector<int>& GetVarIndices() const { return m_varIndices; }
    // Used records per variable, unweighted.
    const std::vector<int>& GetRecordCounts() const { return m_recordCounts; }
    // N: sum of weights.
    const std::vector<double>& GetWeightSums() const { return m_weightSums; }
    // S: sum of floored value times weight.
    const std::vector<double>& GetCountSums() const { return m_countSums; }
    // Sum of the floored values, unweighted.
    const std::vector<double>& GetRawCountSums() const { return m_rawCountSums; }
    // Smallest and largest floored value seen; meaningful only where the
    // record count is positive. Kept as doubles: a count beyond the int range
    // must not overflow.
    const std::vector<double>& GetMinCounts() const { return m_minCounts; }
    const std::vector<double>& GetMaxCounts() const { return m_maxCounts; }

    void Display(std::ostream& os) const;

private:
    std::vector<int> m_varIndices;
    std::vector<int> m_recordCounts;
    std::vector<double> m_weightSums;
    std::vector<double> m_countSums;
    std::vector<double> m_rawCountSums;
    std::vector<double> m_minCounts;
    std::vector<double> m_maxCounts;
};

} // namespace MCBSN_850
