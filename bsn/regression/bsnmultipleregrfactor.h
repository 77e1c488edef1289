#pragma once
// BSNMultipleRegrFactor: abstract base of the regression Bayes factors, which
// weigh a model of p predictors (fitted to N cases) against a reference
// model with a prior on the scale g of Zellner's g-prior: a fixed g
// (Zellner), the Zellner-Siow Cauchy prior (Siow), the hyper-g prior (Hyper)
// or the Zellner-Siow prior with scale r (Rouder). All but the fixed g are an
// integral over g in [machine epsilon, 1e6] by adaptive Lobatto quadrature.
//
// Besides the factor as stored (the fixed-g factor as its logarithm, with
// warning 410041, when it would overflow or underflow; the integrals on the
// natural scale, missing when they overflow), GetLogBayesFactor() gives its
// natural logarithm computed on the log scale: the integrand is scaled by
// its maximum, so the logarithm is right at any sample size.
#include <iosfwd>

#include "bsn/frame/bsnsettings.h"
#include "bsn/regression/bsnregrintegrand.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"

namespace MCBSN_850 {

class BSNMultipleRegrFactor {
public:
    static constexpr double kLowerBound = 2.220446049250313e-16;
    static constexpr double kUpperBound = 1e6;

    virtual ~BSNMultipleRegrFactor() = default;
    BSNMultipleRegrFactor(const BSNMultipleRegrFactor&) = delete;
    BSNMultipleRegrFactor& operator=(const BSNMultipleRegrFactor&) = delete;

    // Dispatches on the settings' Bayes-factor method; always succeeds.
    virtual MCCommon_850::MCStatus Compute();

    double GetBayesFactor() const { return m_bayesFactor; }
    // ln of the factor, computed on the log scale; missing when no factor
    // was computed or the factor is not positive.
    double GetLogBayesFactor() const { return m_logBayesFactor; }
    // True when the stored factor is its logarithm (warning 410041 raised).
    bool IsLogBayesFactor() const { return m_isLog; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }

    // The integral of an integrand over [kLowerBound, kUpperBound] on the
    // natural scale (infinite when it overflows); its logarithm is left in
    // GetLastLogIntegral(). The quadrature's warnings join the factor's.
    double Compute1DIntegral(BSNRegrIntegrand* integrand);
    double GetLastLogIntegral() const { return m_lastLogIntegral; }

    virtual void Display(std::ostream& os) const = 0;

protected:
    BSNMultipleRegrFactor(const BSNSettings& settings, double N, double p);

    virtual MCCommon_850::MCStatus ComputeZellnerFactor() = 0;
    virtual MCCommon_850::MCStatus ComputeSiowFactor() = 0;
    virtual MCCommon_850::MCStatus ComputeHyperFactor() = 0;
    virtual MCCommon_850::MCStatus ComputeRouderFactor() = 0;

    // Stores a closed-form log factor L: exp(L), or L itself with warning
    // 410041 when exp(L) would overflow or underflow.
    void StoreLogFactor(double logFactor);
    // Stores prefactor x an integral whose log is logIntegral.
    void StoreIntegral(double prefactor, double integral, double logIntegral);

    MCCommon_850::MCStatus m_status;
    double m_N;
    double m_p;
    double m_bayesFactor;
    const BSNSettings& m_settings;
    double m_tolerance;
    int m_maxIterations;
    MCCommon_850::MCWarnings m_warnings;
    double m_logBayesFactor;
    bool m_isLog = false;
    double m_lastLogIntegral;
};

} // namespace MCBSN_850
