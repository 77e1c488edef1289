#pragma once
// BayesEstimation: one posterior summary: mode, mean, variance and the
// limits of the credible interval. A field that is undefined (the variance of
// a t with 2 or fewer degrees of freedom, say) keeps the missing value.
#include <iosfwd>

#include "platform/common/mcmv.h"

namespace MCBSN_850 {

class BayesEstimation {
public:
    BayesEstimation() = default;
    BayesEstimation(double mode, double mean, double variance, double lower, double upper)
        : m_mode(mode), m_mean(mean), m_variance(variance), m_lower(lower), m_upper(upper) {}

    double GetMode() const { return m_mode; }
    double GetMean() const { return m_mean; }
    double GetVariance() const { return m_variance; }
    double GetLower() const { return m_lower; }
    double GetUpper() const { return m_upper; }
    void SetMode(double v) { m_mode = v; }
    void SetMean(double v) { m_mean = v; }
    void SetVariance(double v) { m_variance = v; }
    void SetLower(double v) { m_lower = v; }
    void SetUpper(double v) { m_upper = v; }

    // Every field passed through MCMV::Sanitize.
    BayesEstimation Sanitized() const;

    void Display(std::ostream& os) const;

private:
    double m_mode = MCCommon_850::MCMV::Missing();
    double m_mean = MCCommon_850::MCMV::Missing();
    double m_variance = MCCommon_850::MCMV::Missing();
    double m_lower = MCCommon_850::MCMV::Missing();
    double m_upper = MCCommon_850::MCMV::Missing();
};

} // namespace MCBSN_850
