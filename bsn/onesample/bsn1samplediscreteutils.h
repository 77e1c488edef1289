#pragma once
// BSN1SampleDiscreteUtils: small stateless helpers shared by the one-sample
// binomial and Poisson analyses (prior lists, the log switch of a Bayes
// factor, per-variable warnings, plot grids).
#include <cstddef>
#include <vector>

#include "platform/common/mcwarnings.h"

namespace MCBSN_850 {

class BSN1SampleDiscreteUtils {
public:
    // Entry i of a per-variable parameter list, or `fallback` when the list
    // is too short or the entry is missing.
    static double ListValue(const std::vector<double>& list, std::size_t i, double fallback);

    // Stores a Bayes factor from its logarithm: exp(logBF) when that is a
    // normal finite double, otherwise logBF itself with isLog set. A missing
    // logBF leaves both untouched. Returns true when the log was stored.
    static bool StoreFactor(double logBF, double& factor, bool& isLog);

    // Adds warning `code` whose discrete datum 0 is the variable position.
    static void AddVariableWarning(MCCommon_850::MCWarnings& warnings, int code, std::size_t position);

    // `nPoints` equally spaced points from lo to hi, the last one exactly hi.
    // Empty when nPoints < 1; {lo} when nPoints == 1.
    static std::vector<double> EqualGrid(double lo, double hi, int nPoints);
};

} // namespace MCBSN_850
