#pragma once
// The system-missing value: the one marker for "not given" in settings and
// "not computed" in results. It is the most negative finite double, so it
// survives copying, comparison and serialisation unchanged, and no
// computation ever produces it by accident.
#include <cmath>
#include <limits>
#include <vector>

namespace MCCommon_850 {

class MCMV {
public:
    static constexpr double Missing() { return std::numeric_limits<double>::lowest(); }

    // NaN and infinities are treated as missing as well: a value that is not a
    // finite number can never be used, whatever produced it.
    static bool IsMissing(double x) { return x == Missing() || !std::isfinite(x); }

    // Turns anything that is not a usable finite number into the missing value;
    // result objects pass every number through this before a host can see it.
    static double Sanitize(double x) { return IsMissing(x) ? Missing() : x; }
    static std::vector<double> Sanitize(std::vector<double> values) {
        for (double& x : values) x = Sanitize(x);
        return values;
    }
    static std::vector<std::vector<double>> Sanitize(std::vector<std::vector<double>> curves) {
        for (auto& curve : curves)
            for (double& x : curve) x = Sanitize(x);
        return curves;
    }
};

} // namespace MCCommon_850
