#pragma once
// BSNRegrPosterior: common base of the two regression posteriors (the
// natural conjugate normal-inverse-gamma prior and the reference prior). It
// holds the least-squares fit it is given, the posterior summaries of every
// coefficient, of the error variance sigma^2 and of a predicted response, the
// overall F statistic and the user's F tests, and it draws the plot curves.
//
// Every coefficient, the prediction and sigma^2 follow closed-form
// posteriors: a Student t of nu degrees of freedom with a location and scale
// for a coefficient or a prediction, an inverse gamma (shape, rate) for
// sigma^2. A subclass fills these in ComputeStats(); the curves and the F
// tests are drawn from them here.
//
// Curves (CalculatePlots): for each plotted coefficient, sigma^2 and the
// prediction, over a range cut at the plot-domain tail mass:
//  - likelihood: the profile likelihood (the other coefficients and sigma^2
//    at their maximising values), scaled to peak 1, over the range of its own
//    t shape with N - k degrees of freedom;
//  - prior: the conjugate prior's marginal density (a t for a coefficient and
//    for a new response, an inverse gamma for sigma^2), or, for the reference
//    prior, the flat prior: the two ends of the posterior range and two 1.0;
//  - posterior: the posterior density scaled to peak 1.
#include <iosfwd>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "bsn/frame/bsnsettings.h"
#include "bsn/regression/bayesestimation.h"
#include "bsn/regression/bayesftest.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/matrix/mcbitset.h"
#include "platform/matrix/mcfastdesignmatrix.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/stats/mcteststats.h"

namespace MCBSN_850 {

// One family of sampled curves (a coefficient, sigma^2 or the prediction).
struct BSNRegrCurves {
    std::vector<double> likelihoodArgs, likelihood;
    std::vector<double> priorArgs, prior;
    std::vector<double> posteriorArgs, posterior;
};

class BSNRegrPosterior {
public:
    BSNRegrPosterior(const BSNSettings& settings, double N, int p, const std::vector<double>& coefficients,
                     const MCMath_850::MCFastDesignMatrix& design, const MCMath_850::MCSymMatrix& XtX,
                     const MCMath_850::MCSymMatrix& XtXinverse, const MCMath_850::MCBitSet& nonRedundant,
                     const std::vector<double>& Xty, double yty, double sigma2, MCCommon_850::MCWarnings& warnings);
    virtual ~BSNRegrPosterior();
    BSNRegrPosterior(const BSNRegrPosterior&) = delete;
    BSNRegrPosterior& operator=(const BSNRegrPosterior&) = delete;

    // The residual sum of squares of the least-squares fit as the data pass
    // found it; without it, y'y - b'X'y is used, which cancels badly when the
    // fit is close.
    void SetResidualSS(double sse) { m_sse = sse; }
    // Skips the prediction (the conjugate posterior honours it).
    void SetSkipPrediction(bool skip) { m_skipPrediction = skip; }

    virtual MCCommon_850::MCStatus ComputeStats() = 0;
    // Fills the plot curves; warnings 410032/410033 for plot requests that
    // name no factor or covariate of the model.
    void CalculatePlots(MCCommon_850::MCWarnings& warnings);

    double GetFStatistic() const { return m_fStatistic; }
    double GetSig() const { return m_fSig; }
    double GetFDF() const { return m_fDF; }
    double GetFDF2() const { return m_nu; }
    double GetDF() const { return m_nu; }

    const std::vector<BayesEstimation>& GetCoeffEstimations() const { return m_coeffs; }
    const std::vector<double>& GetLowerDomain() const { return m_lowerDomain; }
    const std::vector<double>& GetUpperDomain() const { return m_upperDomain; }
    const BayesEstimation& GetErrorEstimation() const { return m_error; }
    const BayesEstimation& GetPredictedEstimation() const { return m_predicted; }
    bool HasPrediction() const { return m_hasPrediction; }
    const std::vector<MCMath_850::MCTestStats>& GetFTestStats() const { return m_fTests; }

    // What scoring needs: the posterior mean of the coefficients, the
    // covariance factor S (the posterior covariance is S times the sigma^2
    // scale), and the scales and t quantile of a prediction:
    // variance = (x'Sx + 1) * variance scale, interval = yhat -+ t sqrt((x'Sx + 1) * interval scale).
    const std::vector<double>& GetPosteriorCoefficients() const { return m_postCoeffs; }
    const MCMath_850::MCSymMatrix& GetCovarianceFactor() const { return m_covFactor; }
    double GetPredVarianceScale() const { return m_predVarScale; }
    double GetPredIntervalScale() const { return m_predIntScale; }
    double GetTQuantile() const { return m_tCI; }

    // The plotted coefficients (design parameter indices) and their curves.
    const std::vector<int>& GetPlotParameters() const { return m_plotParams; }
    const std::vector<BSNRegrCurves>& GetParamCurves() const { return m_paramCurves; }
    const BSNRegrCurves& GetErrorVarCurves() const { return m_errorCurves; }
    const BSNRegrCurves& GetPredictedCurves() const { return m_predCurves; }

    // The matrix L (one row per tested parameter that is not redundant) and
    // the test values c of F test j. False, with warning 410044 (a predictor
    // not in the model, datum 0 its variable, or -1 for an intercept the
    // model lacks), 410043 (test values not one per parameter, datum 0 = j)
    // or 410048 (every row on a redundant parameter, datum 0 = j).
    bool FillLMatrix(const BayesFTest& test, int j, Eigen::MatrixXd& L, std::vector<double>& c);
    // The settings' regressor values (one per predictor: factors first, as
    // category codes, then covariates) as record values indexed by variable.
    // False when their number or a category does not fit the model.
    bool CreateRecordFromRegressors(std::vector<double>& values) const;

    virtual void Display(std::ostream& os) const;

protected:
    // Sweeps every pivot of `in` with relative tolerance 1e-12 and returns
    // the inverse, with zero rows and columns where a pivot failed.
    static void invertBySweep(const MCMath_850::MCSymMatrix& in, MCMath_850::MCSymMatrix& out);
    // The user F tests for estimate b, covariance factor C and scale s2.
    MCCommon_850::MCStatus ComputeFTests(const std::vector<double>& b, const MCMath_850::MCSymMatrix& C, double s2);
    // The least-squares residual sum of squares (see SetResidualSS).
    double ResidualSS() const;
    // The design row of the regressor values; false when there is none.
    bool PredictionRow(std::vector<double>& x);
    // Tail of the credible interval and of the plot domain.
    double CITail() const;
    double DomainTail() const { return m_settings.GetPlotDomainLevel() / 2.0; }
    // Fills a BayesEstimation of a t posterior: location, squared scale, df.
    void FillT(BayesEstimation& e, double& lower, double& upper, double location, double scale2) const;
    // sigma^2 under an inverse gamma (shape, rate): limits and domain.
    void FillInverseGammaLimits(double shape, double rate);

    // The prior marginals, for the curves; false for a flat prior.
    virtual bool PriorCoefficient(int i, double& location, double& scale, double& df) const = 0;
    virtual bool PriorErrorVariance(double& shape, double& rate) const = 0;
    virtual bool PriorPrediction(const std::vector<double>& x, double& location, double& scale, double& df) const = 0;

    const BSNSettings& m_settings;
    double m_N;
    int m_p;
    int m_n;  // design parameters
    const std::vector<double>& m_lsCoeffs;
    const MCMath_850::MCFastDesignMatrix& m_design;
    const MCMath_850::MCSymMatrix& m_XtX;
    const MCMath_850::MCSymMatrix& m_XtXinv;
    const MCMath_850::MCBitSet& m_nonRedundant;
    const std::vector<double>& m_Xty;
    double m_yty;
    double m_sigma2;
    MCCommon_850::MCWarnings& m_warnings;
    double m_sse;
    bool m_skipPrediction = false;

    // Results.
    double m_nu;
    double m_tCI, m_tDom;
    std::vector<BayesEstimation> m_coeffs;
    std::vector<double> m_lowerDomain, m_upperDomain;
    std::vector<double> m_postScale;  // scale of each coefficient's t
    BayesEstimation m_error;
    double m_errorLowerDomain, m_errorUpperDomain;
    double m_postShape, m_postRate;  // inverse gamma of sigma^2
    BayesEstimation m_predicted;
    double m_predLowerDomain, m_predUpperDomain;
    double m_predScale;
    bool m_hasPrediction = false;
    std::vector<double> m_predX;
    double m_fStatistic, m_fSig, m_fDF;
    std::vector<MCMath_850::MCTestStats> m_fTests;
    std::vector<double> m_postCoeffs;
    MCMath_850::MCSymMatrix m_covFactor;
    double m_predVarScale, m_predIntScale;

    std::vector<int> m_plotParams;
    std::vector<BSNRegrCurves> m_paramCurves;
    BSNRegrCurves m_errorCurves, m_predCurves;
};

} // namespace MCBSN_850
