#pragma once
// BSN1SampleBinoCounts: the running sums of the one-sample binomial analysis,
// one entry per test variable. Both the Bayes-factor worker and the
// posterior worker keep one; it is fed record by record and stores nothing
// per record.
#include <cstddef>
#include <iosfwd>
#include <vector>

#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN1SampleBinoCounts {
public:
    explicit BSN1SampleBinoCounts(const std::vector<int>& varIndices);

    // Adds one record of (already rounded) frequency weight `weight`. A value
    // that is missing or negative is skipped for its variable only; a value k
    // counts as k successes out of one trial.
    void Update(const MCCommon_850::Record& record, double weight);

    std::size_t Size() const { return m_varIndices.size(); }
    // True when some variable has at least one trial.
    bool HasAnyCase() const;

    const std::vector<int>& GetVarIndices() const { return m_varIndices; }
    // Trials n: sum of the weights of the used records.
    const std::vector<double>& GetTrials() const { return m_trials; }
    // Successes x: sum of value times weight.
    const std::vector<double>& GetSuccesses() const { return m_successes; }
    // Whole cases (sum of the whole-number weights). Weights reach Update
    // already rounded to whole numbers, so this is the trial count itself;
    // a double so that large weights cannot overflow an integer.
    const std::vector<double>& GetCaseCounts() const { return m_trials; }
    // Records (unweighted) whose value is 0.
    const std::vector<int>& GetZeroCounts() const { return m_zeroCounts; }

    void Display(std::ostream& os) const;

private:
    std::vector<int> m_varIndices;
    std::vector<double> m_trials;
    std::vector<double> m_successes;
    std::vector<int> m_zeroCounts;
};

} // namespace MCBSN_850
