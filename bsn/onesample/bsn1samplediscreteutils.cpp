#include "bsn/onesample/bsn1samplediscreteutils.h"

#include <cmath>

#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

double BSN1SampleDiscreteUtils::ListValue(const std::vector<double>& list, std::size_t i, double fallback) {
    if (i >= list.size() || MCMV::IsMissing(list[i])) return fallback;
    return list[i];
}

bool BSN1SampleDiscreteUtils::StoreFactor(double logBF, double& factor, bool& isLog) {
    if (MCMV::IsMissing(logBF)) return false;
    if (logBF >= MCMath_850::MCPower::gMachineMinExp && logBF <= MCMath_850::MCPower::gMachineMaxExp) {
        factor = std::exp(logBF);
        isLog = false;
        return false;
    }
    factor = logBF;
    isLog = true;
    return true;
}

void BSN1SampleDiscreteUtils::AddVariableWarning(MCCommon_850::MCWarnings& warnings, int code,
                                                 std::size_t position) {
    MCCommon_850::MCStatus warning(code, true);
    warning.SetDiscreteDatum(0, static_cast<int>(position));
    warnings.AddWarning(warning, nullptr);
}

std::vector<double> BSN1SampleDiscreteUtils::EqualGrid(double lo, double hi, int nPoints) {
    std::vector<double> grid;
    if (nPoints < 1) return grid;
    grid.reserve(static_cast<std::size_t>(nPoints));
    const double step = nPoints > 1 ? (hi - lo) / (nPoints - 1) : 0.0;
    for (int k = 0; k < nPoints; ++k) grid.push_back(lo + k * step);
    if (nPoints > 1) grid.back() = hi;
    return grid;
}

} // namespace MCBSN_850
