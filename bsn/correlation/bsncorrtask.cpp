#include "bsn/correlation/bsncorrtask.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <ostream>

#include "bsn/correlation/bayesfactor2dimmc.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/frame/bsncorrreporter.h"
#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSqrtPi = 1.7724538509055159;
constexpr double kLog2Pi = 1.8378770664093456;
// The JZS integrand in t = 1/g is cut where it has fallen below e^-745 of
// its value at the left end: beyond, nothing a double can hold is left.
constexpr double kJzsDrop = 745.0;
// Cancellation is polled every so many posterior draws or interval widths.
constexpr long kCancelStride = 256;

// log(1 - rho^2) with the digits kept near |rho| = 1.
inline double logOneMinusSquare(double rho) { return std::log((1.0 - rho) * (1.0 + rho)); }

} // namespace

BSNCorrTask::BSNCorrTask(int firstPair, int nPairs, MCCommon_850::ProgressListener* listener,
                         const BSNSettings& settings, MCMath_850::MCCancelInfo& cancelInfo, unsigned long seed,
                         const Inputs& inputs, const Outputs& outputs)
    : m_firstPair(firstPair), m_nPairs(nPairs > 0 ? nPairs : 0), m_listener(listener), m_settings(settings),
      m_cancelInfo(cancelInfo), m_seed(seed), m_in(inputs), m_out(outputs), m_quad(m_current),
      m_c(settings.GetCorrCValue()) {
    m_quad.SetTolerance(settings.GetTolValue());
    m_quad.SetMaxIter(settings.GetMaxIterations());
    m_random.SetSeed(seed);
}

void BSNCorrTask::SetProgress(std::atomic<long>* pairSteps, int stepsPerPair, int nRecords) {
    m_pairSteps = pairSteps;
    m_stepsPerPair = stepsPerPair > 0 ? stepsPerPair : 1;
    m_nRecords = nRecords;
}

bool BSNCorrTask::RunTask() {
    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    if (type != BSNConst::Posterior) {
        if (m_settings.GetEstBFType() != BSNConst::JZS)
            ComputeBayesFactorFraction();
        else
            ComputeBayesFactorJZS();
    }
    if (type != BSNConst::BayesFactor && !m_status.IsError()) ComputePosterior();
    // A finished task waits for the others with its results only: the
    // draws of thousands of tasks would otherwise pile up.
    std::vector<double>().swap(m_draws);
    std::vector<double>().swap(m_lowTail);
    std::vector<double>().swap(m_highTail);
    return true;
}

bool BSNCorrTask::cancelled() {
    if (!m_cancelInfo.WillCancel()) return false;
    m_status = MCStatus(1, false);
    return true;
}

void BSNCorrTask::pairDone() {
    if (m_pairSteps == nullptr) return;
    const long done = m_pairSteps->fetch_add(1, std::memory_order_relaxed) + 1;
    if (m_listener == nullptr) return;
    const int frequency = std::max(1, m_settings.GetProgressFrequency());
    if (done % frequency != 0) return;
    BSNCorrReporter reporter(m_nRecords);
    reporter.SetNPairs(static_cast<int>(done / m_stepsPerPair));
    m_listener->Notify(reporter);
}

bool BSNCorrTask::validPair(int i, double& r, double& n) const {
    r = (*m_in.correlations)[static_cast<std::size_t>(i)];
    n = (*m_in.ns)[static_cast<std::size_t>(i)];
    return !MCMV::IsMissing(r) && std::fabs(r) < 1.0 && !MCMV::IsMissing(n) && n > 0.0;
}

double BSNCorrTask::integrate(MCMath_850::IIntegrand& f, double a, double b, bool* failed) {
    // A fresh copy of the configured quadrature per integral, so that its
    // warnings tell whether this integral converged.
    m_current.target = &f;
    MCMath_850::LobattoQuad quad = m_quad;
    const double value = quad.Integrate(a, b);
    if (failed != nullptr) *failed = !quad.GetWarnings().IsEmpty();
    return value;
}

double BSNCorrTask::Calculate1DIntegral(double a, double b, int pairIndex) {
    bool failed = false;
    MCMath_850::IIntegrand* f = m_current.target != nullptr ? m_current.target : &m_jzs;
    const double value = integrate(*f, a, b, &failed);
    if (failed) {
        if (!m_quadWarned) {
            // The quadrature's own warning, once per task, naming the first
            // pair; every such pair is listed in GetIndIntegralFailed.
            MCStatus w(MCMath_850::LobattoQuad::kNotConvergedCode, true);
            w.SetDiscreteDatum(0, pairIndex);
            w.SetScaleDatum(0, a);
            w.SetScaleDatum(1, b);
            m_warnings.AddWarning(w, nullptr);
            m_quadWarned = true;
        }
        if (m_integralFailed.empty() || m_integralFailed.back() < pairIndex) m_integralFailed.push_back(pairIndex);
    }
    return value;
}

double BSNCorrTask::SetNullIntegrand(double m, double r, double rho0) {
    m_g1v.SetParam(m, r, rho0);
    return m_g1v.GetLogF1();
}

double BSNCorrTask::Calculate1DIntegralG1V(int pairIndex) {
    // The integrand peaks at V = 1 with a width of order 1/sqrt(m); making
    // 1 a bound keeps the peak in sight of the quadrature however narrow.
    m_current.target = &m_g1v;
    const double bounds[5] = {kEpsilon, 0.5, 1.0, 2.0, kUpperG};
    double sum = 0.0;
    for (int k = 0; k < 4; ++k) {
        const double piece = Calculate1DIntegral(bounds[k], bounds[k + 1], pairIndex);
        if (MCMV::IsMissing(piece)) return MCMV::Missing();
        sum += piece;
    }
    return sum;
}

void BSNCorrTask::checkTruncation(int pairIndex, double scaledIntegral) {
    // The mass beyond g = 1e6 is the integral of the same scaled integrand
    // over t in [0, 1e-6], where it lies between 1 and its value at 0: the
    // bounds settle most pairs without a quadrature.
    const double t0 = m_jzs.GetScalePoint();
    const double upper = t0 * std::exp(std::min(m_jzs.LogRatio(0.0), MCMath_850::MCPower::gMachineMaxExp));
    double tail = MCMV::Missing();
    const double thresholds[2] = {kTruncationNotice, kTruncationSevere};
    for (int level = 0; level < 2; ++level) {
        if (m_truncation[level].pair >= 0) continue;
        const double limit = thresholds[level] * scaledIntegral;
        if (upper <= limit) continue;
        if (MCMV::IsMissing(tail)) tail = integrate(m_jzs, 0.0, t0, nullptr);
        if (!MCMV::IsMissing(tail) && tail > limit) {
            m_truncation[level].pair = pairIndex;
            m_truncation[level].share = tail / scaledIntegral;
        }
    }
}

void BSNCorrTask::ComputeBayesFactorJZS() {
    const double t0 = 1.0 / kUpperG, tMax = 1.0 / kEpsilon;
    m_jzs.SetScalePoint(t0);
    for (int i = m_firstPair; i < m_firstPair + m_nPairs; ++i) {
        if (cancelled()) return;
        const std::size_t k = static_cast<std::size_t>(i);
        double r = 0.0, n = 0.0;
        double bf = MCMV::Missing(), logBF = MCMV::Missing();
        if (validPair(i, r, n)) {
            // The integral over g in [eps, 1e6] is the integral over
            // t = 1/g in [1e-6, 1/eps], of which nothing beyond UpperEnd
            // counts.
            m_jzs.SetParam(n, r);
            m_current.target = &m_jzs;
            const double scaled = Calculate1DIntegral(t0, m_jzs.UpperEnd(kJzsDrop, tMax), i);
            if (!MCMV::IsMissing(scaled) && scaled > 0.0) {
                const double logIntegral = std::log(scaled) + m_jzs.GetLogScale();
                logBF = MCMV::Sanitize(std::log(kSqrtPi) - 0.5 * std::log(n / 2.0) - logIntegral);
                if (!MCMV::IsMissing(logBF)) bf = MCMV::Sanitize(std::exp(logBF));
                checkTruncation(i, scaled);
            }
        }
        (*m_out.bayesFactors)[k] = bf;
        (*m_out.logBayesFactors)[k] = logBF;
        (*m_out.isLogBayesFactor)[k] = 0;
        pairDone();
    }
}

void BSNCorrTask::ComputeBayesFactorFraction() {
    const long S = m_settings.GetMCSamples();
    const double given = m_settings.GetRegrComPar();
    const double b = MCMV::IsMissing(given) ? 0.5 : given;
    const double rho0 = m_settings.GetNullValue();
    BayesFactor2DimMC mc;
    mc.SetSeed(m_seed);
    bool storedLog = false;
    for (int i = m_firstPair; i < m_firstPair + m_nPairs; ++i) {
        if (cancelled()) break;
        const std::size_t k = static_cast<std::size_t>(i);
        double r = 0.0, n = 0.0;
        double value = MCMV::Missing(), logBF = MCMV::Missing();
        bool isLog = false;
        if (validPair(i, r, n)) {
            const double logF1 = SetNullIntegrand(n, r, rho0);
            const double f1 = Calculate1DIntegralG1V(i);
            const double logFb = SetNullIntegrand(n * b, r, rho0);
            const double fb = Calculate1DIntegralG1V(i);
            if (!MCMV::IsMissing(f1) && !MCMV::IsMissing(fb) && f1 > 0.0 && fb > 0.0) {
                mc.SetParams(b, n, r, S);
                logBF = mc.ComputeBayesFactorFromLogs(std::log(f1) + logF1, std::log(fb) + logFb);
            }
            if (!MCMV::IsMissing(logBF)) {
                if (logBF > MCMath_850::MCPower::gMachineMaxExp || logBF < MCMath_850::MCPower::gMachineMinExp) {
                    value = logBF;
                    isLog = true;
                    storedLog = true;
                } else {
                    value = std::exp(logBF);
                }
            }
        }
        (*m_out.bayesFactors)[k] = value;
        (*m_out.logBayesFactors)[k] = logBF;
        (*m_out.isLogBayesFactor)[k] = isLog ? 1 : 0;
        pairDone();
    }
    if (storedLog) m_warnings.AddWarning(MCStatus(410041, true), nullptr);
}

void BSNCorrTask::ComputePosterior() {
    m_random.SetSeed(m_seed);
    const int maxPlots = m_settings.GetMaxNPlots();
    for (int i = m_firstPair; i < m_firstPair + m_nPairs; ++i) {
        if (cancelled()) return;
        const std::size_t k = static_cast<std::size_t>(i);
        const double r = (*m_in.correlations)[k], n = (*m_in.ns)[k];
        CalculatePosterior(r, n, i);
        if (m_status.IsError()) return;
        if (i < maxPlots && k < m_out.plotPosterior->size()) CalculatePlot(r, n, i);
        pairDone();
    }
}

double BSNCorrTask::CalculateModeProb(double rho, double r, double n) const {
    const double l = logOneMinusSquare(rho);
    return m_c * l + (n - 1.0) / 2.0 * l - (n - 1.5) * std::log(1.0 - rho * r);
}

void BSNCorrTask::CalculatePosterior(double r, double n, int pairIndex) {
    const std::size_t k = static_cast<std::size_t>(pairIndex);
    double mode = MCMV::Missing(), mean = MCMV::Missing(), variance = MCMV::Missing();
    double lower = MCMV::Missing(), upper = MCMV::Missing();
    auto store = [&]() {
        (*m_out.modes)[k] = MCMV::Sanitize(mode);
        (*m_out.means)[k] = MCMV::Sanitize(mean);
        (*m_out.variances)[k] = MCMV::Sanitize(variance);
        (*m_out.lowerBounds)[k] = MCMV::Sanitize(lower);
        (*m_out.upperBounds)[k] = MCMV::Sanitize(upper);
    };
    const long M = m_settings.GetPosteriorSamples();
    if (MCMV::IsMissing(r) || !(std::fabs(r) < 1.0) || MCMV::IsMissing(n) || !(n > 0.0) || M < 1) {
        store();
        return;
    }
    // Fisher's z is close to normal: mean atanh r - 2.5 r/n, variance
    // 1/(n + 1 - 2.5 r^2).
    const double mu = std::atanh(r) - 2.5 * r / n;
    const double sd = std::sqrt(1.0 / (n + 1.0 - 2.5 * r * r));
    const std::size_t m = static_cast<std::size_t>(M);

    // Mode: the draw with the largest kernel value. With A = c + (n-1)/2 > 0
    // the kernel is unimodal on (-1, 1) with its peak at the root of
    // r (2A - B) rho^2 - 2 A rho + B r = 0 (B = n - 3/2) inside (-1, 1), so
    // the best draw is one of the two around that root, which are tracked
    // as the draws are made.
    const double A = m_c + (n - 1.0) / 2.0, B = n - 1.5;
    const double disc = std::max(0.0, A * A - r * r * B * (2.0 * A - B));
    const double peak = B * r / (A + std::sqrt(disc));
    const bool unimodal = A > 0.0 && std::fabs(peak) < 1.0;
    double below = -kLargest, above = kLargest;

    m_draws.resize(m);
    double* s = m_draws.data();
    double sum = 0.0;
    for (std::size_t d = 0; d < m; ++d) {
        if (d % kCancelStride == 0 && cancelled()) return;
        const double rho = std::tanh(m_random.GetNormal(mu, sd));
        s[d] = rho;
        sum += rho;
        if (rho <= peak) {
            below = std::max(below, rho);
        } else {
            above = std::min(above, rho);
        }
    }
    // Mean and divide-by-M variance (the second pass keeps the digits when
    // the draws crowd near +-1).
    mean = sum / static_cast<double>(m);
    double ss = 0.0;
    for (std::size_t d = 0; d < m; ++d) ss += (s[d] - mean) * (s[d] - mean);
    variance = ss / static_cast<double>(m);

    double best = -kLargest;
    if (unimodal) {
        for (double candidate : {below, above}) {
            if (candidate == -kLargest || candidate == kLargest) continue;
            const double value = CalculateModeProb(candidate, r, n);
            if (value > best) {
                best = value;
                mode = candidate;
            }
        }
    } else {
        for (std::size_t d = 0; d < m; ++d) {
            const double value = CalculateModeProb(s[d], r, n);
            if (value > best) {
                best = value;
                mode = s[d];
            }
        }
    }

    // Narrowest interval spanning w + 1 sorted draws, w = floor(L M / 100).
    const double level = m_settings.GetCILevel();
    double span = std::floor(level * static_cast<double>(m) / 100.0);
    if (!(span >= 0.0)) span = 0.0;
    const std::size_t w = std::min(static_cast<std::size_t>(span), m - 1);
    const std::size_t starts = m - w;
    const double* low = nullptr;   // the `starts` smallest draws, ascending
    const double* high = nullptr;  // the `starts` largest draws, ascending
    if (starts <= w && selectTails(mu, sd, starts)) {
        low = m_lowTail.data();
        high = m_highTail.data();
    } else {
        std::sort(s, s + m);
        low = s;
        high = s + w;
    }
    double narrowest = kLargest;
    for (std::size_t i = 0; i < starts; ++i) {
        if (i % kCancelStride == 0 && cancelled()) return;
        const double width = high[i] - low[i];
        if (width < narrowest) {
            narrowest = width;
            lower = low[i];
            upper = high[i];
        }
    }
    store();
}

bool BSNCorrTask::selectTails(double mu, double sd, std::size_t count) {
    // Only the `count` smallest and largest draws matter. The draws come
    // from a known distribution, so a cut a few standard errors beyond its
    // count/M quantile keeps all of them and few others; those few are then
    // ordered. Should a cut keep too few (a chance below 1e-9), the caller
    // sorts everything instead: the result never depends on the cut.
    const std::size_t m = m_draws.size();
    const double p = static_cast<double>(count) / static_cast<double>(m);
    const double q = std::min(0.5, p + 6.0 * std::sqrt(p * (1.0 - p) / static_cast<double>(m)) + 2.0 / static_cast<double>(m));
    const double zq = MCMath_850::MCDistFun::IdfNorm(q);
    if (MCMV::IsMissing(zq)) return false;
    const double lowCut = std::tanh(mu + sd * zq), highCut = std::tanh(mu - sd * zq);
    m_lowTail.clear();
    m_highTail.clear();
    for (double x : m_draws) {
        if (x <= lowCut) m_lowTail.push_back(x);
        if (x >= highCut) m_highTail.push_back(x);
    }
    if (m_lowTail.size() < count || m_highTail.size() < count) return false;
    std::nth_element(m_lowTail.begin(), m_lowTail.begin() + static_cast<std::ptrdiff_t>(count - 1), m_lowTail.end());
    m_lowTail.resize(count);
    std::sort(m_lowTail.begin(), m_lowTail.end());
    std::nth_element(m_highTail.begin(), m_highTail.begin() + static_cast<std::ptrdiff_t>(count - 1), m_highTail.end(),
                     std::greater<double>());
    m_highTail.resize(count);
    std::sort(m_highTail.begin(), m_highTail.end());
    return true;
}

void BSNCorrTask::CalculatePlot(double r, double n, int pairIndex) {
    if (MCMV::IsMissing(r) || !(std::fabs(r) < 1.0) || MCMV::IsMissing(n) || !(n > 0.0)) return;
    const std::size_t k = static_cast<std::size_t>(pairIndex);
    const std::vector<double>& x = *m_in.plotXAxis;
    const double lambda = (*m_in.logSxxSyy)[k];
    std::vector<double> ll(x.size()), prior(x.size()), post(x.size());
    double top = -kLargest;
    for (std::size_t j = 0; j < x.size(); ++j) {
        const double rho = x[j];
        const double l = logOneMinusSquare(rho);
        ll[j] = MCMV::Sanitize(-n / 2.0 * (l + lambda + 2.0 * (kLog2Pi - std::log(n))) -
                               n * (1.0 - rho * r) / ((1.0 - rho) * (1.0 + rho)));
        prior[j] = MCMV::Sanitize(std::exp(m_c * l));
        post[j] = CalculateModeProb(rho, r, n);
        if (post[j] > top) top = post[j];
    }
    for (double& p : post) p = MCMV::Sanitize(std::exp(p - top));
    (*m_out.plotLogLikelihood)[k] = std::move(ll);
    (*m_out.plotPrior)[k] = std::move(prior);
    (*m_out.plotPosterior)[k] = std::move(post);
}

void BSNCorrTask::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNCorrTask display start");
    DisplayI("First pair index", m_firstPair);
    DisplayI("Number of pairs", m_nPairs);
    DisplayL("Seed", static_cast<long>(m_seed));
    DisplayD("C value", m_c);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayIV("Indices where Integral Failed", m_integralFailed);
    DisplayI("First pair cut at g = 1e6 (share > 1e-6)", m_truncation[0].pair);
    DisplayI("First pair cut at g = 1e6 (share > 1e-2)", m_truncation[1].pair);
    m_quad.Display(os);
    m_jzs.Display(os);
    m_g1v.Display(os);
    DisplayText(0, "End of display BSNCorrTask object");
}

} // namespace MCBSN_850
