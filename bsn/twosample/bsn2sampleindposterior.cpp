#include "bsn/twosample/bsn2sampleindposterior.h"

#include <cmath>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "bsn/twosample/diffuseinversechipriorsequalvariances.h"
#include "bsn/twosample/diffusejeffreyspriorsequalvariances.h"
#include "bsn/twosample/diffusepriorsknownvariances.h"
#include "bsn/twosample/diffusepriorsunequalvariances.h"
#include "bsn/twosample/normalpriorsknownvariances.h"
#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

bool present(double x) { return !MCMV::IsMissing(x); }
bool positive(double x) { return present(x) && x > 0.0; }

// The known data variances: the first two entries of GetDataVarVals().
enum class KnownVariances { None, Both, Bad };

KnownVariances knownVariances(const BSNSettings& settings) {
    const std::vector<double>& v = settings.GetDataVarVals();
    const bool given0 = !v.empty() && present(v[0]);
    const bool given1 = v.size() > 1 && present(v[1]);
    if (!given0 && !given1) return KnownVariances::None;
    return given0 && given1 && v[0] > 0.0 && v[1] > 0.0 ? KnownVariances::Both : KnownVariances::Bad;
}

} // namespace

BSN2SampleIndPosterior::BSN2SampleIndPosterior(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                               const MCMath_850::MCCancelInfo& cancel)
    : m_settings(settings), m_varList(varList), m_cancel(cancel) {
    const double level = settings.GetCILevel();
    if (present(level)) m_alpha = (100.0 - level) / 100.0;
}

BSN2SampleIndPosterior::~BSN2SampleIndPosterior() = default;

MCStatus BSN2SampleIndPosterior::CreatePosterior(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                                                 const MCMath_850::MCCancelInfo& cancel,
                                                 std::unique_ptr<BSN2SampleIndPosterior>* posterior) {
    if (posterior == nullptr) return MCStatus(410001, false);
    posterior->reset();
    const KnownVariances known = knownVariances(settings);
    const BSNConst::DistTypes meanPrior = settings.GetMeanDistType();
    std::vector<MCStatus> raised;

    if (meanPrior == BSNConst::Normal) {
        if (known != KnownVariances::Both) return MCStatus(410002, false);
        if (!present(settings.GetMeanDistParam1()) || !positive(settings.GetMeanDistParam2()) ||
            !present(settings.GetMeanDistParam3()) || !positive(settings.GetMeanDistParam4()))
            return MCStatus(410019, false);
        *posterior = std::make_unique<NormalPriorsKnownVariances>(settings, varList, cancel);
        return {};
    }
    // Every other mean prior is treated as Diffuse.
    if (meanPrior != BSNConst::Diffuse) raised.emplace_back(410017, true);
    const BSNConst::DistTypes varPrior = settings.GetPriorDistType();
    if (known == KnownVariances::Bad) return MCStatus(410019, false);
    if (known == KnownVariances::Both) {
        *posterior = std::make_unique<DiffusePriorsKnownVariances>(settings, varList, cancel);
    } else if (settings.GetEqualDataVar() && varPrior == BSNConst::InverseChiSquare) {
        if (!positive(settings.GetPriorDistParam1()) || !positive(settings.GetPriorDistParam2()))
            return MCStatus(410019, false);
        *posterior = std::make_unique<DiffuseInverseChiPriorsEqualVariances>(settings, varList, cancel);
    } else if (settings.GetEqualDataVar()) {
        if (varPrior != BSNConst::Diffuse && raised.empty()) raised.emplace_back(410017, true);
        *posterior = std::make_unique<DiffuseJeffreysPriorsEqualVariances>(settings, varList, cancel);
    } else {
        if (varPrior != BSNConst::Diffuse) raised.emplace_back(410036, true);
        *posterior = std::make_unique<DiffusePriorsUnequalVariances>(settings, varList, cancel);
    }
    if (raised.empty()) return {};
    // The first warning is the stage's status; any further one is reported
    // with the posterior's results.
    for (std::size_t k = 1; k < raised.size(); ++k) (*posterior)->m_pending.AddWarning(raised[k], nullptr);
    return raised.front();
}

MCStatus BSN2SampleIndPosterior::Compute(MCCommon_850::MultiPassRecordIter& /*iter*/,
                                         const BSN2SampleIndBasicStats& first, const BSN2SampleIndBasicStats& second,
                                         MCCommon_850::MCWarnings& warnings) {
    warnings.Append(m_pending);
    m_pending.Clear();
    const std::size_t n = std::min(first.Size(), second.Size());
    for (auto* v : {&m_modes, &m_postMeans, &m_variances, &m_lowerLimits, &m_upperLimits})
        v->assign(n, MCMV::Missing());
    for (auto* c : {&m_xArgs, &m_yArgs, &m_xLikelihoods, &m_yLikelihoods, &m_xPriorArgs, &m_yPriorArgs, &m_xPrior,
                    &m_yPrior, &m_postArgs, &m_posterior})
        c->assign(n, {});
    auto group = [](const BSN2SampleContStats& s) {
        Group g;
        g.n = s.GetSumFreqWeights();
        g.mean = s.GetMean();
        g.variance = s.GetVariance();
        g.ss = s.GetSumSquares();
        return g;
    };
    for (std::size_t i = 0; i < n; ++i) {
        if (m_cancel.WillCancel()) return MCStatus(1, false);
        computeVariable(i, group(first.Get(i)), group(second.Get(i)),
                        BSN2SampleContStats::MeanDifference(first.Get(i), second.Get(i)), warnings);
    }
    return {};
}

void BSN2SampleIndPosterior::warnAt(MCCommon_850::MCWarnings& warnings, int code, std::size_t i) {
    MCStatus w(code, true);
    w.SetDiscreteDatum(0, static_cast<int>(i));
    warnings.AddWarning(w, nullptr);
}

void BSN2SampleIndPosterior::setSummary(std::size_t i, double mode, double mean, double variance, double lower,
                                        double upper) {
    m_modes[i] = MCMV::Sanitize(mode);
    m_postMeans[i] = MCMV::Sanitize(mean);
    m_variances[i] = MCMV::Sanitize(variance);
    m_lowerLimits[i] = MCMV::Sanitize(lower);
    m_upperLimits[i] = MCMV::Sanitize(upper);
}

void BSN2SampleIndPosterior::setPosteriorCurve(std::size_t i, std::vector<double> args, std::vector<double> values) {
    for (double& v : values) v = MCMV::Sanitize(v);
    m_postArgs[i] = std::move(args);
    m_posterior[i] = std::move(values);
}

void BSN2SampleIndPosterior::normalPosterior(std::size_t i, double mean, double variance) {
    if (!present(mean) || !positive(variance)) return;
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCINormal(m_alpha, mean, variance, lower, upper);
    setSummary(i, mean, mean, variance, lower, upper);
    double low = 0.0, high = 0.0;
    if (!normalRange(mean, variance, low, high)) return;
    std::vector<double> args = grid(low, high), values;
    for (double x : args) values.push_back(std::exp(-(x - mean) * (x - mean) / (2.0 * variance)));
    setPosteriorCurve(i, std::move(args), std::move(values));
}

void BSN2SampleIndPosterior::tPosterior(std::size_t i, double centre, double scale2, double df) {
    if (!present(centre) || !positive(scale2) || !positive(df)) return;
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    BSN1SampleNormalUtils::ComputeCIT(m_alpha, centre, scale2, df, lower, upper);
    setSummary(i, centre, df > 1.0 ? centre : MCMV::Missing(),
               df > 2.0 ? df / (df - 2.0) * scale2 : MCMV::Missing(), lower, upper);
    double low = 0.0, high = 0.0;
    if (!tRange(centre, scale2, df, low, high)) return;
    std::vector<double> args = grid(low, high), values;
    for (double x : args)
        values.push_back(std::exp(-(df + 1.0) / 2.0 * std::log1p((x - centre) * (x - centre) / (df * scale2))));
    setPosteriorCurve(i, std::move(args), std::move(values));
}

std::vector<double> BSN2SampleIndPosterior::grid(double low, double high) const {
    std::vector<double> args;
    const int n = m_settings.GetNPlotPoints();
    if (!present(low) || !present(high) || n <= 0) return args;
    if (n == 1) return {MCMV::Sanitize((low + high) / 2.0)};
    args.reserve(static_cast<std::size_t>(n));
    const double step = (high - low) / (n - 1);
    for (int k = 0; k < n; ++k) args.push_back(MCMV::Sanitize(k == n - 1 ? high : low + k * step));
    return args;
}

bool BSN2SampleIndPosterior::normalRange(double mean, double variance, double& low, double& high) const {
    const double level = m_settings.GetPlotDomainLevel();
    if (!present(mean) || !positive(variance) || !present(level)) return false;
    const double sd = std::sqrt(variance);
    low = MCDistFun::IdfNorm(level / 2.0, mean, sd);
    high = MCDistFun::IdfNorm(1.0 - level / 2.0, mean, sd);
    return present(low) && present(high) && low < high;
}

bool BSN2SampleIndPosterior::tRange(double centre, double scale2, double df, double& low, double& high) const {
    const double level = m_settings.GetPlotDomainLevel();
    if (!present(centre) || !positive(scale2) || !positive(df) || !present(level)) return false;
    const double q = MCDistFun::IdfT(1.0 - level / 2.0, df);
    if (!positive(q)) return false;
    const double half = std::sqrt(scale2) * q;
    low = MCMV::Sanitize(centre - half);
    high = MCMV::Sanitize(centre + half);
    return present(low) && present(high) && low < high;
}

void BSN2SampleIndPosterior::knownVarianceLikelihood(std::size_t i, int group, double n, double mean, double s2) {
    double low = 0.0, high = 0.0;
    if (!positive(n) || !normalRange(mean, s2 / n, low, high)) return;
    std::vector<double> args = grid(low, high), values;
    for (double mu : args) values.push_back(MCMV::Sanitize(std::exp(-n * (mu - mean) * (mu - mean) / (2.0 * s2))));
    (group == 0 ? m_xArgs : m_yArgs)[i] = std::move(args);
    (group == 0 ? m_xLikelihoods : m_yLikelihoods)[i] = std::move(values);
}

void BSN2SampleIndPosterior::profileLikelihood(std::size_t i, int group, double n, double mean, double ss,
                                               double exponentN, double df) {
    double low = 0.0, high = 0.0;
    if (!positive(n) || !positive(ss) || !positive(df) || !tRange(mean, ss / (n * df), df, low, high)) return;
    std::vector<double> args = grid(low, high), values;
    for (double mu : args)
        values.push_back(MCMV::Sanitize(std::exp(-exponentN / 2.0 * std::log1p(n * (mu - mean) * (mu - mean) / ss))));
    (group == 0 ? m_xArgs : m_yArgs)[i] = std::move(args);
    (group == 0 ? m_xLikelihoods : m_yLikelihoods)[i] = std::move(values);
}

void BSN2SampleIndPosterior::flatPrior(std::size_t i, int group) {
    // An improper flat prior has no density to sample: two equal values draw
    // it as a level line over the likelihood's arguments.
    const std::vector<double>& args = (group == 0 ? m_xArgs : m_yArgs)[i];
    (group == 0 ? m_xPriorArgs : m_yPriorArgs)[i] = args;
    (group == 0 ? m_xPrior : m_yPrior)[i] = args.empty() ? std::vector<double>{} : std::vector<double>{1.0, 1.0};
}

void BSN2SampleIndPosterior::normalPrior(std::size_t i, int group, double mean, double variance) {
    double low = 0.0, high = 0.0;
    if (!normalRange(mean, variance, low, high)) return;
    std::vector<double> args = grid(low, high), values;
    const double sd = std::sqrt(variance);
    for (double mu : args) values.push_back(MCDistFun::PdfNormal(mu, mean, sd));
    (group == 0 ? m_xPriorArgs : m_yPriorArgs)[i] = std::move(args);
    (group == 0 ? m_xPrior : m_yPrior)[i] = std::move(values);
}

void BSN2SampleIndPosterior::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleIndPosterior display start");
    DisplayFields();
    DisplayText(0, "End of display BSN2SampleIndPosterior object");
}

void BSN2SampleIndPosterior::DisplayFields() const {
    using namespace MCDisplay_850;
    DisplayS("Prior Class", GetName());
    DisplayD("Alpha", m_alpha);
    BSNComponentDisplay::DisplayC("Mean Distribution Type", m_settings.GetMeanDistType());
    BSNComponentDisplay::DisplayC("Prior Distribution Type", m_settings.GetPriorDistType());
    DisplayB("Equal Variances", m_settings.GetEqualDataVar());
    DisplayDV("Known Variances", m_settings.GetDataVarVals());
    DisplayDV("Mode Values", m_modes);
    DisplayDV("Posterior Mean Values", m_postMeans);
    DisplayDV("Variance Values", m_variances);
    DisplayDV("Lower Limits", m_lowerLimits);
    DisplayDV("Upper Limits", m_upperLimits);
    DisplayDVV("Plot X Arguments", m_xArgs);
    DisplayDVV("Plot Y Arguments", m_yArgs);
    DisplayDVV("Plot X Likelihoods", m_xLikelihoods);
    DisplayDVV("Plot Y Likelihoods", m_yLikelihoods);
    DisplayDVV("Plot X Prior Arguments", m_xPriorArgs);
    DisplayDVV("Plot Y Prior Arguments", m_yPriorArgs);
    DisplayDVV("Plot X Prior", m_xPrior);
    DisplayDVV("Plot Y Prior", m_yPrior);
    DisplayDVV("Plot Arguments", m_postArgs);
    DisplayDVV("Plot Posterior", m_posterior);
}

} // namespace MCBSN_850
