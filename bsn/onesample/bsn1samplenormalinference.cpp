#include "bsn/onesample/bsn1samplenormalinference.h"

#include <cmath>
#include <numbers>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/dist/mclgamma.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;
using MCMath_850::MCLogGamma;

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

    Results& r = m_results;
    for (auto* v : {&r.modes, &r.postMeans, &r.variances, &r.lowerLimits, &r.upperLimits})
        v->assign(nVars, MCMV::Missing());
    for (auto* c : {&r.argsLikelihood, &r.argsPrior, &r.argsPosterior, &r.likelihoods, &r.posteriors, &r.priors})
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
        if (k >= m_means.size() || !present(n) || !present(s) || n < 2.0 || s <= 0.0) continue;

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
    const double scale2 = s * s * (n - 1.0) / (n * (n - 3.0));
    tPosterior(i, m, scale2, nu, nu / (nu - 2.0) * scale2);
    flatPrior(i);
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
    const double scale2 = s * s * (n - 1.0) / (n * nu);
    tPosterior(i, m, scale2, nu, nu / (nu - 2.0) * scale2);
    flatPrior(i);
}

void BSN1SampleNormalInference::computeDiffuseVar(double variance, int i) {
    const double n = m_ns[i], m = m_means[i];
    if (!present(n) || !present(m) || !present(variance) || n < 2.0 || variance <= 0.0) return;
    normalPosterior(i, variance, m, variance / n);
    flatPrior(i);
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

bool BSN1SampleNormalInference::conjugateInputs(int i, double& mu0, double& kappa0) const {
    mu0 = m_settings.GetMeanDistParam1();
    kappa0 = present(m_settings.GetKappaValue()) ? m_settings.GetKappaValue() : 1.0;
    const double n = m_ns[i], s = m_stdDevs[i];
    return present(mu0) && present(n) && present(m_means[i]) && present(s) && n >= 2.0 && s > 0.0;
}

void BSN1SampleNormalInference::common134_135(int i, double nu0, double s02) {
    double mu0 = 0.0, kappa0 = 0.0;
    if (!conjugateInputs(i, mu0, kappa0)) return;
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    const double nun = n + nu0;
    const double kappan = n + kappa0;
    const double mun = kappa0 * mu0 / kappan + n * m / kappan;
    const double dev = m - mu0;
    const double sn2 = (nu0 * s02 + (n - 1.0) * s * s + n * kappa0 * dev * dev / kappan) / nun;
    // The t posterior has a variance only beyond 2 degrees of freedom.
    const double postVar = nun > 2.0 ? nun * sn2 / (nun - 2.0) / kappan : MCMV::Missing();
    tPosterior(i, mun, sn2 / kappan, nun, postVar);
    // The prior of mu is drawn as a normal whose variance is the prior mode
    // of sigma^2 over kappa0.
    normalPrior(i, mu0, nu0 * s02 / (nu0 + 2.0) / kappa0);
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
    double mu0 = 0.0, kappa0 = 0.0;
    if (!conjugateInputs(i, mu0, kappa0)) return;
    const double n = m_ns[i], m = m_means[i], s = m_stdDevs[i];
    const double an = n / 2.0 + a0;
    const double kappan = n + kappa0;
    const double mun = kappa0 * mu0 / kappan + n * m / kappan;
    const double dev = m - mu0;
    const double bn = b0 + (n - 1.0) * s * s / 2.0 + kappa0 * n * dev * dev / (2.0 * kappan);
    const double postVar = an > 1.0 ? bn / (an - 1.0) / kappan : MCMV::Missing();
    tPosterior(i, mun, bn / an / kappan, 2.0 * an, postVar);
    // A representative precision of the prior: its mode when there is one,
    // else its mean.
    const double p = a0 > 1.0 ? (a0 - 1.0) / b0 : a0 / b0;
    normalPrior(i, mu0, 1.0 / (kappa0 * p));
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
    normalPosterior(i, variance, mun, taun2);
    normalPrior(i, mu0, tau02);
}

// ---------------------------------------------------------------------------
// Results and curves

void BSN1SampleNormalInference::tPosterior(int i, double centre, double scale2, double df, double variance) {
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCIT(m_alpha, centre, scale2, df, lower, upper);
    Results& r = m_results;
    r.modes[i] = r.postMeans[i] = MCMV::Sanitize(centre);
    r.variances[i] = MCMV::Sanitize(variance);
    r.lowerLimits[i] = MCMV::Sanitize(lower);
    r.upperLimits[i] = MCMV::Sanitize(upper);
    const double s = m_stdDevs[i];
    normalPlotArguments(i, m_means[i], s * s, r.argsLikelihood);
    calculateLogLikelihood(i);
    tPlotArguments(i, centre, scale2, df, r.argsPosterior);
    calculatePosteriorCurvT(i, df, centre, scale2);
}

void BSN1SampleNormalInference::normalPosterior(int i, double sigma2, double mean, double variance) {
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCINormal(m_alpha, mean, variance, lower, upper);
    Results& r = m_results;
    r.modes[i] = r.postMeans[i] = MCMV::Sanitize(mean);
    r.variances[i] = MCMV::Sanitize(variance);
    r.lowerLimits[i] = MCMV::Sanitize(lower);
    r.upperLimits[i] = MCMV::Sanitize(upper);
    normalPlotArguments(i, m_means[i], sigma2, r.argsLikelihood);
    calculateLogLikelihoodKnownVar(i, sigma2);
    normalPlotArguments(i, mean, variance, r.argsPosterior);
    calculateNormalCurve(mean, variance, r.argsPosterior[i], r.posteriors[i]);
}

void BSN1SampleNormalInference::normalPrior(int i, double mean, double variance) {
    normalPlotArguments(i, mean, variance, m_results.argsPrior);
    calculateNormalCurve(mean, variance, m_results.argsPrior[i], m_results.priors[i]);
}

void BSN1SampleNormalInference::flatPrior(int i) {
    Results& r = m_results;
    r.argsPrior[i] = r.argsLikelihood[i];
    // An improper flat prior has no density to sample; two equal values
    // draw it as a level line over the arguments.
    if (r.argsPrior[i].empty())
        r.priors[i].clear();
    else
        r.priors[i] = {1.0, 1.0};
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
    std::vector<double>& out = m_results.likelihoods[i];
    out.clear();
    for (double x : m_results.argsLikelihood[i]) {
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
    std::vector<double>& out = m_results.likelihoods[i];
    out.clear();
    for (double x : m_results.argsLikelihood[i]) {
        if (!present(x)) {
            out.push_back(MCMV::Missing());
            continue;
        }
        const double d = x - m;
        out.push_back(MCMV::Sanitize(-(n * d * d + within) / (2.0 * variance)));
    }
}

void BSN1SampleNormalInference::calculatePosteriorCurvT(int i, double df, double centre, double scale2) {
    std::vector<double>& out = m_results.posteriors[i];
    out.clear();
    if (!present(df) || df <= 0.0 || !present(scale2) || scale2 <= 0.0) return;
    // lnΓ((ν+1)/2) − lnΓ(ν/2) as one difference: with a billion cases each
    // term is near 1e10 and their separate roundings would cost 1e-6 of the
    // density.
    const double logNorm =
        MCLogGamma::Diff(df / 2.0, 0.5, 0.0) - 0.5 * std::log(df * std::numbers::pi * scale2);
    for (double x : m_results.argsPosterior[i]) {
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

void BSN1SampleNormalInference::Results::Display() const {
    using namespace MCDisplay_850;
    DisplayDV("Mode Values", modes);
    DisplayDV("Posterior Mean Values", postMeans);
    DisplayDV("Variances", variances);
    DisplayDV("Lower Limits", lowerLimits);
    DisplayDV("Upper Limits", upperLimits);
    DisplayDVV("Plot Arguments for LogLikelihoods", argsLikelihood);
    DisplayDVV("Plot Arguments for Prior", argsPrior);
    DisplayDVV("Plot Arguments for Posterior", argsPosterior);
    DisplayDVV("Plot LogLikelihoods", likelihoods);
    DisplayDVV("Plot Posterior", posteriors);
    DisplayDVV("Plot Prior", priors);
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
    m_results.Display();
    DisplayText(0, "End of display BSN1SampleNormalInference object");
}

} // namespace MCBSN_850
