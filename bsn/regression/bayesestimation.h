#pragma once
// BayesEstimation: the summary of one posterior distribution: its mode,
// mean, variance and the lower and upper limits of the credible interval.
// Every field starts missing; a summary that could not be computed keeps
// them so.
#include <iosfwd>

#include "platform/common/mcmv.h"

namespace MCBSN_850 {

class BayesEstimation {
public:
    BayesEstimation() = default;
    BayesEstimation(double mode, double mean, double variance, double lower, double upper)
        : mode_(mode), mean_(mean), variance_(variance), lower_(lower), upper_(upper) {}

    double GetMode() const { return mode_; }
    double GetMean() const { return mean_; }
    double GetVariance() const { return variance_; }
    double GetLower() const { return lower_; }
    double GetUpper() const { return upper_; }

    void SetMode(double v) { mode_ = v; }
    void SetMean(double v) { mean_ = v; }
    void SetVariance(double v) { variance_ = v; }
    void SetLower(double v) { lower_ = v; }
    void SetUpper(double v) { upper_ = v; }

    void Display(std::ostream& os) const;

private:
    double mode_ = MCCommon_850::MCMV::Missing();
    double mean_ = MCCommon_850::MCMV::Missing();
    double variance_ = MCCommon_850::MCMV::Missing();
    double lower_ = MCCommon_850::MCMV::Missing();
    double upper_ = MCCommon_850::MCMV::Missing();
};

} // namespace MCBSN_850
