#pragma once
// BSN2SampleIndPosterior: the posterior stage of the independent-samples
// procedure: for every test variable the posterior of the difference of
// the group means, delta = mu1 - mu0 (second group minus first), with its
// mode, mean, variance and equal-tailed credible limits, and the curves a
// host draws: the likelihood and prior of each group mean and the
// posterior density of delta.
//
// CreatePosterior chooses one of five prior classes from the settings:
//   mean prior Normal (two known variances required) -> NormalPriorsKnownVariances;
//   otherwise Diffuse (another mean prior warns 410017), and
//     two known variances                           -> DiffusePriorsKnownVariances;
//     equal variances, inverse chi-square prior     -> DiffuseInverseChiPriorsEqualVariances;
//     equal variances, any other variance prior     -> DiffuseJeffreysPriorsEqualVariances (410017 unless Diffuse);
//     unequal variances                             -> DiffusePriorsUnequalVariances (410036 unless Diffuse).
//
// Curves, per variable: X is the first group (coded 0), Y the second. The
// likelihood of a group mean is stored scaled to a peak of 1,
// exp(ll - max ll); a flat prior is stored as the likelihood's arguments
// and the two values 1.0; the posterior density of delta is scaled to a
// peak of 1. Each curve has GetNPlotPoints() arguments over the range that
// leaves GetPlotDomainLevel() of its mass outside, half on each side.
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/twosample/bsn2sampleindbasicstats.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mccancelinfo.h"
#include "platform/records/multipassrecorditer.h"
#include "platform/variables/mcvarlist.h"

namespace MCBSN_850 {

class BSN2SampleIndPosterior {
public:
    using Curves = std::vector<std::vector<double>>;

    virtual ~BSN2SampleIndPosterior();
    BSN2SampleIndPosterior(const BSN2SampleIndPosterior&) = delete;
    BSN2SampleIndPosterior& operator=(const BSN2SampleIndPosterior&) = delete;

    // Makes the posterior the settings ask for into *posterior and returns
    // the status of the choice: error 410002 (normal mean prior without two
    // positive known variances) or 410019 (a prior parameter missing or not
    // positive, or a known-variance list that is neither empty nor two
    // positive values), else a warning (410017, 410036) or OK; *posterior is
    // null after an error. Further warnings of the choice are kept and
    // reported by Compute. The settings, variable list and cancel
    // information are borrowed.
    static MCCommon_850::MCStatus CreatePosterior(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                                  const MCMath_850::MCCancelInfo& cancel,
                                                  std::unique_ptr<BSN2SampleIndPosterior>* posterior);

    // The posterior of every test variable from the two groups' statistics.
    // The records are not read again. Warnings go to `warnings`; a
    // cancellation ends the stage with error status 1.
    MCCommon_850::MCStatus Compute(MCCommon_850::MultiPassRecordIter& iter, const BSN2SampleIndBasicStats& first,
                                   const BSN2SampleIndBasicStats& second, MCCommon_850::MCWarnings& warnings);

    // Per test variable; missing (or an empty curve) where not computed.
    const std::vector<double>& GetModeValues() const { return m_modes; }
    const std::vector<double>& GetPostMeanValues() const { return m_postMeans; }
    const std::vector<double>& GetVarianceValues() const { return m_variances; }
    const std::vector<double>& GetLowerLimits() const { return m_lowerLimits; }
    const std::vector<double>& GetUpperLimits() const { return m_upperLimits; }
    const Curves& GetPlotXArguments() const { return m_xArgs; }
    const Curves& GetPlotYArguments() const { return m_yArgs; }
    const Curves& GetPlotXLikelihoods() const { return m_xLikelihoods; }
    const Curves& GetPlotYLikelihoods() const { return m_yLikelihoods; }
    const Curves& GetPlotXPriorArguments() const { return m_xPriorArgs; }
    const Curves& GetPlotYPriorArguments() const { return m_yPriorArgs; }
    const Curves& GetPlotXPrior() const { return m_xPrior; }
    const Curves& GetPlotYPrior() const { return m_yPrior; }
    const Curves& GetPlotArguments() const { return m_postArgs; }
    const Curves& GetPlotPosterior() const { return m_posterior; }

    // The class name, for dumps and reports.
    virtual std::string GetName() const = 0;
    virtual void Display(std::ostream& os) const;

protected:
    BSN2SampleIndPosterior(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                           const MCMath_850::MCCancelInfo& cancel);

    // One group of one variable: sum of frequency weights, mean, variance
    // (missing below two cases) and the sum of squared deviations.
    struct Group {
        double n = 0.0;
        double mean = 0.0;
        double variance = 0.0;
        double ss = 0.0;
    };

    // Fills variable i's results from the groups and the difference of
    // their means m1 - m0 (computed without the rounding of the two means);
    // the vectors are sized and missing (the curves empty) on entry.
    virtual void computeVariable(std::size_t i, const Group& g0, const Group& g1, double diff,
                                 MCCommon_850::MCWarnings& warnings) = 0;

    // The labelled lines of the shared fields, to the current dump stream.
    void DisplayFields() const;

    // Equal-tailed tail mass of the credible interval (0.05 for 95%).
    double Alpha() const { return m_alpha; }
    // Adds warning `code` with datum 0 = i.
    static void warnAt(MCCommon_850::MCWarnings& warnings, int code, std::size_t i);

    // Results: a normal posterior of delta, and a Student t posterior
    // (centre, squared scale, df; mean only beyond 1 df, variance only
    // beyond 2).
    void normalPosterior(std::size_t i, double mean, double variance);
    void tPosterior(std::size_t i, double centre, double scale2, double df);
    // Summary values, each sanitised.
    void setSummary(std::size_t i, double mode, double mean, double variance, double lower, double upper);
    // The posterior curve, scaled to a peak of 1 by the caller's values.
    void setPosteriorCurve(std::size_t i, std::vector<double> args, std::vector<double> values);

    // Group curves (group 0 = X, 1 = Y). The likelihood of a group mean
    // with known variance s2; the profile likelihood
    // (1 + n (mu - m)^2 / ss)^(-N/2) drawn over the t range with df degrees
    // of freedom and squared scale ss / (n df); a flat prior; a normal prior.
    void knownVarianceLikelihood(std::size_t i, int group, double n, double mean, double s2);
    void profileLikelihood(std::size_t i, int group, double n, double mean, double ss, double exponentN, double df);
    void flatPrior(std::size_t i, int group);
    void normalPrior(std::size_t i, int group, double mean, double variance);

    // NPlotPoints evenly spaced arguments from low to high (empty when
    // either is missing).
    std::vector<double> grid(double low, double high) const;
    // The plotted range of a normal and of a t: PlotDomainLevel / 2 left out
    // on each side; false when it cannot be computed.
    bool normalRange(double mean, double variance, double& low, double& high) const;
    bool tRange(double centre, double scale2, double df, double& low, double& high) const;

    const BSNSettings& m_settings;
    const MCXML_850::MCVarList& m_varList;
    const MCMath_850::MCCancelInfo& m_cancel;
    MCCommon_850::MCWarnings m_pending;  // warnings of the choice, reported by Compute

private:
    double m_alpha = 0.05;
    std::vector<double> m_modes, m_postMeans, m_variances, m_lowerLimits, m_upperLimits;
    Curves m_xArgs, m_yArgs, m_xLikelihoods, m_yLikelihoods, m_xPriorArgs, m_yPriorArgs, m_xPrior, m_yPrior,
        m_postArgs, m_posterior;
};

} // namespace MCBSN_850
