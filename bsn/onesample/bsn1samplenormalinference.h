#pragma once
// BSN1SampleNormalInference: the posterior of a normal mean for every test
// variable, from the summary statistics (mean, standard deviation, N) of the
// one-sample normal procedure, or of paired differences for the related-
// samples procedure. The variance is either known (per variable, from the
// settings) or unknown; the prior on the mean is Normal or Diffuse, and with
// an unknown variance and a Normal mean prior the variance (or precision)
// prior is one of four conjugate families.
//
// For every variable it stores the posterior mode, mean and variance, an
// equal-tailed credible interval, and three sampled curves: the
// log-likelihood (up to an additive constant), the prior density and the
// posterior density, each on its own grid of arguments.
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"

namespace MCBSN_850 {

class BSN1SampleNormalInference {
public:
    using Curves = std::vector<std::vector<double>>;

    // Everything computed for the test variables, one entry per variable:
    // what the procedures copy into their own results.
    struct Results {
        std::vector<double> modes;
        std::vector<double> postMeans;
        std::vector<double> variances;
        std::vector<double> lowerLimits;
        std::vector<double> upperLimits;
        Curves argsLikelihood;
        Curves argsPrior;
        Curves argsPosterior;
        Curves likelihoods;  // log-likelihood up to an additive constant
        Curves posteriors;
        Curves priors;

        // Labelled lines of every vector, to the current dump stream.
        void Display() const;
    };

    // The settings, warnings and statistic vectors are borrowed from the
    // owning procedure and must outlive this object. The vectors have one
    // entry per test variable (GetCovariates()).
    BSN1SampleNormalInference(const BSNSettings& settings, MCCommon_850::MCWarnings& warnings,
                              const std::vector<double>& means, const std::vector<double>& stdDevs,
                              const std::vector<double>& ns);

    // Computes the posterior of every variable. Error 410004 without test
    // variables; unsupported prior combinations fall back to Diffuse with
    // warning 410017.
    MCCommon_850::MCStatus BuildModel();

    const Results& GetResults() const { return m_results; }
    const std::vector<double>& getModeValues() const { return m_results.modes; }
    const std::vector<double>& getPostMeanValues() const { return m_results.postMeans; }
    const std::vector<double>& getVariances() const { return m_results.variances; }
    const std::vector<double>& getLowerimits() const { return m_results.lowerLimits; }
    const std::vector<double>& getUpperLimits() const { return m_results.upperLimits; }
    const Curves& GetPlotArguments4Likelihoods() const { return m_results.argsLikelihood; }
    const Curves& GetPlotArguments4Prior() const { return m_results.argsPrior; }
    const Curves& GetPlotArguments4Posterior() const { return m_results.argsPosterior; }
    const Curves& GetPlotLikelihoods() const { return m_results.likelihoods; }
    const Curves& GetPlotPosterior() const { return m_results.posteriors; }
    const Curves& GetPlotPrior() const { return m_results.priors; }

    // The credible interval's total tail mass (0.05 for a 95% level).
    double GetAlpha() const { return m_alpha; }

    void Display(std::ostream& os) const;

private:
    // One routine per prior; each fills variable i's results and curves.
    void computeDiffuse(int i);
    void computeJeffrey(int i);
    void computeNormalInvChiSqu(int i);
    void computeNormalInvGam(int i);
    void computeNormalChiSqu(int i);
    void computeNormalGam(int i);
    void computeNormalVar(double variance, int i);
    void computeDiffuseVar(double variance, int i);
    // Scaled inverse chi-square prior (nu0, s0^2) on the variance.
    void common134_135(int i, double nu0, double s02);
    // Gamma prior (shape a0, rate b0) on the precision.
    void common136_137(int i, double a0, double b0);

    // Reads the conjugate families' prior mean and prior sample size
    // (kappa0, 1 when not given); false when variable i cannot be used.
    bool conjugateInputs(int i, double& mu0, double& kappa0) const;
    // Unknown variance, a t posterior (centre, scale2, df) with the given
    // posterior variance: stores the results and draws the likelihood and
    // posterior curves.
    void tPosterior(int i, double centre, double scale2, double df, double variance);
    // Known variance sigma2, a normal posterior (mean, variance): likewise.
    void normalPosterior(int i, double sigma2, double mean, double variance);
    // The prior curve of the mean: a normal (mean, variance), or an
    // improper flat prior drawn as the likelihood's arguments and two
    // values 1.0.
    void normalPrior(int i, double mean, double variance);
    void flatPrior(int i);

    // n evenly spaced arguments from low to high into target[i]; nothing
    // when either limit is missing.
    void calculatePlotArguments(int i, double low, double high, Curves& target) const;
    // Grid over the central range of a normal (mean, variance) or of a t
    // (centre, scale2, df) that leaves tail mass GetPlotDomainLevel() out.
    void normalPlotArguments(int i, double mean, double variance, Curves& target) const;
    void tPlotArguments(int i, double centre, double scale2, double df, Curves& target) const;
    // Log-likelihood of the mean (unknown variance, profiled over sigma) and
    // with a known variance, at every likelihood argument.
    void calculateLogLikelihood(int i);
    void calculateLogLikelihoodKnownVar(int i, double variance);
    // Student-t density (df, centre, scale^2) at every posterior argument.
    void calculatePosteriorCurvT(int i, double df, double centre, double scale2);
    // Normal density (mean, variance) at each argument; nothing unless
    // variance > 0.
    static void calculateNormalCurve(double mean, double variance, const std::vector<double>& arguments,
                                     std::vector<double>& target);

    double m_alpha = 0.05;
    const BSNSettings& m_settings;
    MCCommon_850::MCWarnings& m_warnings;
    const std::vector<int>& m_varIndices;
    const std::vector<double>& m_means;
    const std::vector<double>& m_stdDevs;
    const std::vector<double>& m_ns;

    Results m_results;
};

} // namespace MCBSN_850
