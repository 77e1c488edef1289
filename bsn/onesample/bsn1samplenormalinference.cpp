#include "bsn/onesample/bsn1samplenormalinference.h"

#include <cmath>
#include <numbers>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

bool present(double x) { return !MCMV::IsMissing(x); }

// A variance prior of a conjugate family reads as a variance (or precision)
// only when both its parameters were given.
bool bothPresent(double a, double b) { return present(a) && present(b); }

} // namespace

BSN1SampleNormalInference::BSN1SampleNormalInference(const BSNSettings& settings,
                                                     MCCommon_850::MCWarnings& warnings,
                                                     const std::vector<double>& means,
                                                     const std::vector<double>& stdDevs,
                                                     const std::vector<double>& ns)
    : m_settings(settings), m_warnings(warnings), m_varIndices(settings.GetCovariates()), m_means(means),
      m_stdDevs(stdDevs), m_ns(ns) {
    const double level = settings.GetCILevel();
    if (present(level)) m_alpha = (100.0 - level) / 100.0;
}

MCStatus BSN1SampleNormalInference::BuildModel() {
    const std::size_t nVars = m_varIndices.size();
    if (nVars == 0) return MCStatus(410004, false);

    for (auto* v : {&m_modes, &m_postMeans, &m_variances, &m_lowerLimits, &m_upperLimits})
        v->assign(nVars, MCMV::Missing());
    for (auto* c : {&m_argsLikelihood, &m_argsPrior, &m_argsPosterior, &m_likelihoods, &m_posteriors, &m_priors})
        c->assign(nVars, {});

    const std::vector<double>& knownVars = m_settings.GetDataVarVals();
    const bool haveKnownVars = knownVars.size() == nVars;
    const BSNConst::DistTypes meanPrior = m_settings.GetMeanDistType();
    const BSNConst::DistTypes varPrior = m_settings.GetPriorDistType();
    const MCStatus unsupported(410017, true);

    for (std::size_t k = 0; k < nVars; ++k) {
        const int i = static_cast<int>(k);
        // The statistic vectors are the owner's; read them defensively so a
        // shorter vector means "no statistics" rather than a fault.
        const double n = k < m_ns.size() ? m_ns[k] : MCMV::Missing();
        const double s = k < m_stdDevs.size() ? m_stdDevs[k] : MCMV::Missing();
        if (!present(n) || !present(s) || n < 2.0 || s <= 0.0) continue;

        if (haveKnownVars && present(knownVars[k])) {
            const double sigma2 = knownVars[k];
            if (meanPrior == BSNConst::Normal) {
                computeNormalVar(sigma2, i);
            } else {
                if (meanPrior != BSNConst::Diffuse) m_warnings.AddWarning(unsupported, nullptr);
                computeDiffuseVar(sigma2, i);
            }
            continue;
        }

        if (meanPrior != BSNConst::Normal) {
            if (meanPrior == BSNConst::Diffuse && (varPrior == BSNConst::Jeffreys2 || varPrior == BSNConst::Jeffreys4)) {
                computeJeffrey(i);
            } else {
                if (!(meanPrior == BSNConst::Diffuse && varPrior == BSNConst::Diffuse))
                    m_warnings.AddWarning(unsupported, nullptr);
                computeDiffuse(i);
            }
            continue;
        }

        switch (varPrior) {
        case BSNConst::ChiSquare: computeNormalChiSqu(i); break;
        case BSNConst::InverseChiSquare: computeNormalInvChiSqu(i); break;
        case BSNConst::Gamma: computeNormalGam(i); break;
        case BSNConst::InverseGamma: computeNormalInvGam(i); break;
        default:
            m_warnings.AddWarning(unsupported, nullptr);
            computeDiffuse(i);
            break;
        }
    }
    return {};
}

// ---------------------------------------------------------------------------
// Flat priors

void BSN1SampleNormalInference::computeDiffuse(int i) {
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    if (!present(n) || !present(m) || !present(s) || s <= 0.0) return;
    if (n < 6.0) {
        // Below six cases the posterior t has at most 2 degrees of freedom
        // and no finite variance.
        MCStatus w(410027, true);
        w.SetDiscreteDatum(0, i);
        m_warnings.AddWarning(w, nullptr);
        return;
    }
    // p(mu, sigma^2) flat: the marginal posterior of mu is a t with N - 3
    // degrees of freedom around the sample mean.
    const double nu = n - 3.0;
    const double s2 = s * s;
    const double scale2 = s2 * (n - 1.0) / (n * (n - 3.0));
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCIT(m_alpha, m, scale2, nu, lower, upper);
    storeResults(i, m, m, nu / (nu - 2.0) * scale2, lower, upper);

    normalPlotArguments(i, m, s2, m_argsLikelihood);
    calculateLogLikelihood(i);
    flatPrior(i);
    tPlotArguments(i, m, scale2, nu, m_argsPosterior);
    calculatePosteriorCurvT(i, nu, m, scale2);
}

void BSN1SampleNormalInference::computeJeffrey(int i) {
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    if (!present(n) || !present(m) || !present(s) || s <= 0.0) return;
    double nu = 0.0;
    if (m_settings.GetPriorDistType() == BSNConst::Jeffreys2) {
        // p(sigma^2) ~ 1/sigma^2
        nu = n - 1.0;
        if (n < 4.0) {
            MCStatus w(410026, true);
            w.SetDiscreteDatum(0, i);
            m_warnings.AddWarning(w, nullptr);
            return;
        }
    } else {
        // p(sigma^2) ~ 1/sigma^4
        nu = n + 1.0;
    }
    const double s2 = s * s;
    const double scale2 = s2 * (n - 1.0) / (n * nu);
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCIT(m_alpha, m, scale2, nu, lower, upper);
    storeResults(i, m, m, nu / (nu - 2.0) * scale2, lower, upper);

    normalPlotArguments(i, m, s2, m_argsLikelihood);
    calculateLogLikelihood(i);
    flatPrior(i);
    tPlotArguments(i, m, scale2, nu, m_argsPosterior);
    calculatePosteriorCurvT(i, nu, m, scale2);
}

void BSN1SampleNormalInference::computeDiffuseVar(double variance, int i) {
    const double n = m_ns[i], m = m_means[i];
    if (!present(n) || !present(m) || !present(variance) || n < 2.0 || variance <= 0.0) return;
    const double postVar = variance / n;
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCINormal(m_alpha, m, postVar, lower, upper);
    storeResults(i, m, m, postVar, lower, upper);

    normalPlotArguments(i, m, variance, m_argsLikelihood);
    calculateLogLikelihoodKnownVar(i, variance);
    flatPrior(i);
    normalPlotArguments(i, m, postVar, m_argsPosterior);
    calculateNormalCurve(m, postVar, m_argsPosterior[i], m_posteriors[i]);
}

// ---------------------------------------------------------------------------
// Conjugate priors

void BSN1SampleNormalInference::computeNormalInvChiSqu(int i) {
    const double nu0 = m_settings.GetPriorDistParam1();
    const double s02 = m_settings.GetPriorDistParam2();
    if (!bothPresent(nu0, s02)) return;
    common134_135(i, nu0, s02);
}

void BSN1SampleNormalInference::computeNormalInvGam(int i) {
    // An inverse gamma (a, b) on the variance is the scaled inverse
    // chi-square with 2a degrees of freedom and scale b/a.
    const double a = m_settings.GetPriorDistParam1();
    const double b = m_settings.GetPriorDistParam2();
    if (!bothPresent(a, b)) return;
    common134_135(i, 2.0 * a, 2.0 * b / (2.0 * a));
}

void BSN1SampleNormalInference::common134_135(int i, double nu0, double s02) {
    const double mu0 = m_settings.GetMeanDistParam1();
    const double kappa0 = present(m_settings.GetKappaValue()) ? m_settings.GetKappaValue() : 1.0;
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    if (!present(mu0) || !present(n) || !present(m) || !present(s) || n < 2.0 || s <= 0.0) return;

    const double s2 = s * s;
    const double nun = n + nu0;
    const double kappan = n + kappa0;
    const double mun = kappa0 * mu0 / kappan + n * m / kappan;
    const double dev = m - mu0;
    const double sn2 = (nu0 * s02 + (n - 1.0) * s2 + n * kappa0 * dev * dev / kappan) / nun;
    // The t posterior has a variance only beyond 2 degrees of freedom.
    const double postVar = nun > 2.0 ? nun * sn2 / (nun - 2.0) / kappan : MCMV::Missing();
    const double scale2 = sn2 / kappan;
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCIT(m_alpha, mun, scale2, nun, lower, upper);
    storeResults(i, mun, mun, postVar, lower, upper);

    normalPlotArguments(i, m, s2, m_argsLikelihood);
    calculateLogLikelihood(i);
    // The prior of mu is drawn as a normal whose variance is the prior mode
    // of sigma^2 over kappa0.
    const double w0 = nu0 * s02 / (nu0 + 2.0) / kappa0;
    normalPlotArguments(i, mu0, w0, m_argsPrior);
    calculateNormalCurve(mu0, w0, m_argsPrior[i], m_priors[i]);
    tPlotArguments(i, mun, scale2, nun, m_argsPosterior);
    calculatePosteriorCurvT(i, nun, mun, scale2);
}

void BSN1SampleNormalInference::computeNormalGam(int i) {
    const double a0 = m_settings.GetPriorDistParam1();
    const double b0 = m_settings.GetPriorDistParam2();
    if (!bothPresent(a0, b0)) return;
    common136_137(i, a0, b0);
}

void BSN1SampleNormalInference::computeNormalChiSqu(int i) {
    // A chi-square with k degrees of freedom is a gamma with shape k/2 and
    // rate 1/2.
    const double k = m_settings.GetPriorDistParam1();
    if (!present(k)) return;
    common136_137(i, k / 2.0, 0.5);
}

void BSN1SampleNormalInference::common136_137(int i, double a0, double b0) {
    const double mu0 = m_settings.GetMeanDistParam1();
    const double kappa0 = present(m_settings.GetKappaValue()) ? m_settings.GetKappaValue() : 1.0;
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    if (!present(mu0) || !present(n) || !present(m) || !present(s) || n < 2.0 || s <= 0.0) return;

    const double s2 = s * s;
    const double an = n / 2.0 + a0;
    const double kappan = n + kappa0;
    const double mun = kappa0 * mu0 / kappan + n * m / kappan;
    const double dev = m - mu0;
    const double bn = b0 + (n - 1.0) * s2 / 2.0 + kappa0 * n * dev * dev / (2.0 * kappan);
    const double postVar = an > 1.0 ? bn / (an - 1.0) / kappan : MCMV::Missing();
    const double nu = 2.0 * an;
    const double scale2 = bn / an / kappan;
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCIT(m_alpha, mun, scale2, nu, lower, upper);
    storeResults(i, mun, mun, postVar, lower, upper);

    normalPlotArguments(i, m, s2, m_argsLikelihood);
    calculateLogLikelihood(i);
    // A representative precision of the prior: its mode when there is one,
    // else its mean.
    const double p = a0 > 1.0 ? (a0 - 1.0) / b0 : a0 / b0;
    const double w0 = 1.0 / (kappa0 * p);
    normalPlotArguments(i, mu0, w0, m_argsPrior);
    calculateNormalCurve(mu0, w0, m_argsPrior[i], m_priors[i]);
    tPlotArguments(i, mun, scale2, nu, m_argsPosterior);
    calculatePosteriorCurvT(i, nu, mun, scale2);
}

void BSN1SampleNormalInference::computeNormalVar(double variance, int i) {
    const double mu0 = m_settings.GetMeanDistParam1();
    const double tau02 = m_settings.GetMeanDistParam2();
    const double n = m_ns[i], m = m_means[i];
    if (!present(mu0) || !present(tau02) || !present(n) || !present(m) || !present(variance) || n < 2.0 ||
        tau02 <= 0.0 || variance <= 0.0)
        return;
    const double taun2 = 1.0 / (1.0 / tau02 + n / variance);
    const double mun = (mu0 / tau02 + n * m / variance) * taun2;
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCINormal(m_alpha, mun, taun2, lower, upper);
    storeResults(i, mun, mun, taun2, lower, upper);

    normalPlotArguments(i, m, variance, m_argsLikelihood);
    calculateLogLikelihoodKnownVar(i, variance);
    normalPlotArguments(i, mu0, tau02, m_argsPrior);
    calculateNormalCurve(mu0, tau02, m_argsPrior[i], m_priors[i]);
    normalPlotArguments(i, mun, taun2, m_argsPosterior);
    calculateNormalCurve(mun, taun2, m_argsPosterior[i], m_posteriors[i]);
}

// ---------------------------------------------------------------------------
// Results and curves

void BSN1SampleNormalInference::storeResults(int i, double mode, double mean, double variance, double lower,
                                             double upper) {
    m_modes[i] = MCMV::Sanitize(mode);
    m_postMeans[i] = MCMV::Sanitize(mean);
    m_variances[i] = MCMV::Sanitize(variance);
    m_lowerLimits[i] = MCMV::Sanitize(lower);
    m_upperLimits[i] = MCMV::Sanitize(upper);
}

void BSN1SampleNormalInference::calculatePlotArguments(int i, double low, double high, Curves& target) const {
    std::vector<double>& args = target[i];
    args.clear();
    if (!present(low) || !present(high)) return;
    const int n = m_settings.GetNPlotPoints();
    if (n <= 0) return;
    args.reserve(static_cast<std::size_t>(n));
    // With a single point the step is 0/0; that lone argument has no
    // position and is stored as missing.
    const double step = (high - low) / (n - 1);
    for (int k = 0; k < n; ++k) args.push_back(MCMV::Sanitize(low + k * step));
}

void BSN1SampleNormalInference::normalPlotArguments(int i, double mean, double variance, Curves& target) const {
    const double level = m_settings.GetPlotDomainLevel();
    if (!present(variance) || variance <= 0.0 || !present(level)) {
        target[i].clear();
        return;
    }
    const double sd = std::sqrt(variance);
    calculatePlotArguments(i, MCDistFun::IdfNorm(level / 2.0, mean, sd), MCDistFun::IdfNorm(1.0 - level / 2.0, mean, sd),
                           target);
}

void BSN1SampleNormalInference::tPlotArguments(int i, double centre, double scale2, double df, Curves& target) const {
    const double level = m_settings.GetPlotDomainLevel();
    if (!present(scale2) || scale2 <= 0.0 || !present(level) || !present(centre)) {
        target[i].clear();
        return;
    }
    const double q = MCDistFun::IdfT(1.0 - level / 2.0, df);
    if (!present(q)) {
        target[i].clear();
        return;
    }
    const double half = std::sqrt(scale2) * q;
    calculatePlotArguments(i, centre - half, centre + half, target);
}

void BSN1SampleNormalInference::calculateLogLikelihood(int i) {
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    const double spread = (n - 1.0) * s * s / n;
    std::vector<double>& out = m_likelihoods[i];
    out.clear();
    for (double x : m_argsLikelihood[i]) {
        if (!present(x)) {
            out.push_back(MCMV::Missing());
            continue;
        }
        const double d = x - m;
        out.push_back(MCMV::Sanitize(-(n / 2.0) * std::log(d * d + spread)));
    }
}

void BSN1SampleNormalInference::calculateLogLikelihoodKnownVar(int i, double variance) {
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    const double within = (n - 1.0) * s * s;
    std::vector<double>& out = m_likelihoods[i];
    out.clear();
    for (double x : m_argsLikelihood[i]) {
        if (!present(x)) {
            out.push_back(MCMV::Missing());
            continue;
        }
        const double d = x - m;
        out.push_back(MCMV::Sanitize(-(n * d * d + within) / (2.0 * variance)));
    }
}

void BSN1SampleNormalInference::calculatePosteriorCurvT(int i, double df, double centre, double scale2) {
    std::vector<double>& out = m_posteriors[i];
    out.clear();
    if (!present(df) || df <= 0.0 || !present(scale2) || scale2 <= 0.0) return;
    const double logNorm = MCDistFun::quondnlgam((df + 1.0) / 2.0) - MCDistFun::quondnlgam(df / 2.0) -
                           0.5 * std::log(df * std::numbers::pi * scale2);
    for (double x : m_argsPosterior[i]) {
        if (!present(x)) {
            out.push_back(MCMV::Missing());
            continue;
        }
        const double z = x - centre;
        out.push_back(MCMV::Sanitize(std::exp(logNorm - (df + 1.0) / 2.0 * std::log1p(z * z / (df * scale2)))));
    }
}

void BSN1SampleNormalInference::calculateNormalCurve(double mean, double variance, const std::vector<double>& arguments,
                                                     std::vector<double>& target) {
    target.clear();
    if (!present(variance) || variance <= 0.0) return;
    const double sd = std::sqrt(variance);
    target.reserve(arguments.size());
    for (double x : arguments) target.push_back(MCDistFun::PdfNormal(x, mean, sd));
}

void BSN1SampleNormalInference::flatPrior(int i) {
    m_argsPrior[i] = m_argsLikelihood[i];
    // An improper flat prior has no density to sample; two equal values
    // draw it as a level line over the arguments.
    if (m_argsPrior[i].empty())
        m_priors[i].clear();
    else
        m_priors[i] = {1.0, 1.0};
}

void BSN1SampleNormalInference::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleNormalInference display start");
    DisplayD("Alpha", m_alpha);
    DisplayIV("Test Variables", m_varIndices);
    DisplayDV("Means", m_means);
    DisplayDV("Standard Deviations", m_stdDevs);
    DisplayDV("Ns", m_ns);
    BSNComponentDisplay::DisplayC("Mean Distribution Type", m_settings.GetMeanDistType());
    BSNComponentDisplay::DisplayC("Prior Distribution Type", m_settings.GetPriorDistType());
    DisplayDV("Mode Values", m_modes);
    DisplayDV("Posterior Mean Values", m_postMeans);
    DisplayDV("Variances", m_variances);
    DisplayDV("Lower Limits", m_lowerLimits);
    DisplayDV("Upper Limits", m_upperLimits);
    DisplayDVV("Plot Arguments for LogLikelihoods", m_argsLikelihood);
    DisplayDVV("Plot Arguments for Prior", m_argsPrior);
    DisplayDVV("Plot Arguments for Posterior", m_argsPosterior);
    DisplayDVV("Plot LogLikelihoods", m_likelihoods);
    DisplayDVV("Plot Posterior", m_posteriors);
    DisplayDVV("Plot Prior", m_priors);
    DisplayText(0, "End of display BSN1SampleNormalInference object");
}

} // namespace MCBSN_850
