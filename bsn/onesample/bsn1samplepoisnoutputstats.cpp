#include "bsn/onesample/bsn1samplepoisnoutputstats.h"

#include <cmath>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplediscreteoutputdata.h"
#include "bsn/onesample/bsn1samplepoisson.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCMath_850::MCDistFun;
using Curve = std::vector<double>;

namespace {

constexpr double kDefaultDomainLevel = 0.005;

// A domain [lo, hi] of positive rates; empty when it could not be formed.
struct Domain {
    double lo = MCMV::Missing();
    double hi = MCMV::Missing();
    bool IsValid() const { return !MCMV::IsMissing(lo) && !MCMV::IsMissing(hi) && hi > lo; }
};

} // namespace

class BSN1SamplePoisnOutputStatsImp : public BSN1SampleDiscreteOutputData {
public:
    BSN1SamplePoisnOutputStatsImp(const BSNSettings& settings, BSNAlgorithm& procedure);

    std::vector<double> minCnts, maxCnts;
    std::vector<std::pair<double, double>> posteriorParams, likelihoodParams;
    std::vector<Curve> likelihoodArgs, priorArgs, posteriorArgs;
    std::vector<Curve> likelihoods, priors, posteriors;

private:
    void fillCounts(const BSN1SamplePoisCounts& counts);
    void fillParams(const BSN1SamplePoisProir& posterior);
    void ComputePlots();
    double domainLevel() const;
    Domain gammaDomain(double shape, double rate) const;
};

BSN1SamplePoisnOutputStatsImp::BSN1SamplePoisnOutputStatsImp(const BSNSettings& s, BSNAlgorithm& procedure)
    : BSN1SampleDiscreteOutputData(s, s.GetCovariates()) {
    minCnts.assign(Size(), MCMV::Missing());
    maxCnts.assign(Size(), MCMV::Missing());
    posteriorParams.assign(Size(), {MCMV::Missing(), MCMV::Missing()});
    likelihoodParams.assign(Size(), {MCMV::Missing(), MCMV::Missing()});
    for (auto* v : {&likelihoodArgs, &priorArgs, &posteriorArgs, &likelihoods, &priors, &posteriors})
        v->assign(Size(), {});

    const auto* poisson = dynamic_cast<const BSN1SamplePoisson*>(&procedure);
    if (poisson == nullptr) return;
    const BSN1SamplePoisBayesFactor* factor = poisson->GetBayesFactorWorker();
    const BSN1SamplePoisProir* posterior = poisson->GetPosteriorWorker();
    if (factor != nullptr) CopyFactors(*factor);
    if (posterior != nullptr && posterior->GetCounts().Size() == Size()) {
        fillCounts(posterior->GetCounts());
        CopySummaries(*posterior);
        fillParams(*posterior);
        ComputePlots();
    } else if (factor != nullptr && factor->GetCounts().Size() == Size()) {
        fillCounts(factor->GetCounts());
    }
}

void BSN1SamplePoisnOutputStatsImp::fillCounts(const BSN1SamplePoisCounts& counts) {
    for (std::size_t i = 0; i < counts.Size(); ++i) {
        ns[i] = MCMV::Sanitize(counts.GetWeightSums()[i]);
        if (counts.GetRecordCounts()[i] > 0) {
            minCnts[i] = MCMV::Sanitize(counts.GetMinCounts()[i]);
            maxCnts[i] = MCMV::Sanitize(counts.GetMaxCounts()[i]);
        }
    }
}

void BSN1SamplePoisnOutputStatsImp::fillParams(const BSN1SamplePoisProir& posterior) {
    const auto sanitizePair = [](const std::pair<double, double>& p) {
        return std::make_pair(MCMV::Sanitize(p.first), MCMV::Sanitize(p.second));
    };
    for (std::size_t i = 0; i < Size(); ++i) {
        posteriorParams[i] = sanitizePair(posterior.GetPosteriorParams()[i]);
        likelihoodParams[i] = sanitizePair(posterior.GetLikelihoodParams()[i]);
    }
}

double BSN1SamplePoisnOutputStatsImp::domainLevel() const {
    // A tail mass of 0 would reach to an infinite rate and one of 1/2 or more
    // leaves no domain; such settings fall back to the usual level.
    const double level = settings.GetPlotDomainLevel();
    return !MCMV::IsMissing(level) && level > 0.0 && level < 0.5 ? level : kDefaultDomainLevel;
}

Domain BSN1SamplePoisnOutputStatsImp::gammaDomain(double shape, double rate) const {
    const double level = domainLevel();
    return {MCDistFun::IdfGam(level, shape, rate), MCDistFun::IdfGam(1.0 - level, shape, rate)};
}

// Plot domains. Every curve is drawn over the central part of its own
// distribution: the rates between its `level` and 1 − `level` quantiles
// (level = GetPlotDomainLevel()), sampled at GetNPlotPoints() equally spaced
// points. That keeps each curve's bulk on screen whatever the scale of the
// data, and no curve is cut by another's range. The distributions are:
//   likelihood  λ^S e^(−Nλ) normalised, i.e. Gamma(S + 1, N); its quantiles
//               come from the chi-square with 2(S + 1) degrees of freedom,
//               scaled by 1/(2N);
//   prior       Gamma(a, b) from the settings;
//   posterior   Gamma(α, β).
// A flat or improper prior (a or b missing or not positive) has no quantiles;
// it is kept as a flat line, two values 1.0 at the ends of the posterior's
// domain (the likelihood's when there is no posterior).
void BSN1SamplePoisnOutputStatsImp::ComputePlots() {
    const int nPoints = settings.GetNPlotPoints();
    const double level = domainLevel();
    const double a = settings.GetPriorParam1();
    const double b = settings.GetPriorParam2();
    const bool properPrior = !MCMV::IsMissing(a) && !MCMV::IsMissing(b) && a > 0.0 && b > 0.0;
    for (std::size_t i = 0; i < Size(); ++i) {
        const double N = -likelihoodParams[i].first;
        const double S = likelihoodParams[i].second;
        if (MCMV::IsMissing(N) || MCMV::IsMissing(S) || !(N > 0.0)) continue;

        const double df = 2.0 * (S + 1.0);
        const Domain likeDomain{MCMV::Sanitize(MCDistFun::IdfChi(level, df) / (2.0 * N)),
                                MCMV::Sanitize(MCDistFun::IdfChi(1.0 - level, df) / (2.0 * N))};
        if (likeDomain.IsValid()) {
            likelihoodArgs[i] = BSN1SampleDiscreteUtils::EqualGrid(likeDomain.lo, likeDomain.hi, nPoints);
            for (double lambda : likelihoodArgs[i])
                likelihoods[i].push_back(MCMV::Sanitize((S > 0.0 ? S * std::log(lambda) : 0.0) - N * lambda));
        }

        const double alpha = posteriorParams[i].first;
        const double beta = posteriorParams[i].second;
        const Domain postDomain = MCMV::IsMissing(alpha) || MCMV::IsMissing(beta) ? Domain{} : gammaDomain(alpha, beta);
        if (postDomain.IsValid()) {
            posteriorArgs[i] = BSN1SampleDiscreteUtils::EqualGrid(postDomain.lo, postDomain.hi, nPoints);
            for (double lambda : posteriorArgs[i]) posteriors[i].push_back(MCDistFun::PdfGamma(lambda, alpha, beta));
        }

        if (properPrior) {
            const Domain priorDomain = gammaDomain(a, b);
            if (!priorDomain.IsValid()) continue;
            priorArgs[i] = BSN1SampleDiscreteUtils::EqualGrid(priorDomain.lo, priorDomain.hi, nPoints);
            for (double lambda : priorArgs[i]) priors[i].push_back(MCDistFun::PdfGamma(lambda, a, b));
        } else {
            const Domain& span = postDomain.IsValid() ? postDomain : likeDomain;
            if (!span.IsValid()) continue;
            priorArgs[i] = {span.lo, span.hi};
            priors[i] = {1.0, 1.0};
        }
    }
}

BSN1SamplePoisnOutputStats::BSN1SamplePoisnOutputStats(const BSNSettings& settings, BSNAlgorithm& procedure)
    : m_imp(std::make_unique<BSN1SamplePoisnOutputStatsImp>(settings, procedure)) {}

BSN1SamplePoisnOutputStats::~BSN1SamplePoisnOutputStats() = default;

const BSNSettings& BSN1SamplePoisnOutputStats::GetSettings() const { return m_imp->settings; }
const std::vector<int>& BSN1SamplePoisnOutputStats::GetVarIndices() const { return m_imp->varIndices; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetBayesFactors() const { return m_imp->bayesFactors; }
const std::vector<bool>& BSN1SamplePoisnOutputStats::GetIsLogBayesFactor() const { return m_imp->isLogBayesFactor; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetLogBayesFactors() const { return m_imp->logBayesFactors; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetNs() const { return m_imp->ns; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetMinCnts() const { return m_imp->minCnts; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetMaxCnts() const { return m_imp->maxCnts; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetModeValues() const { return m_imp->modes; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetMeanValues() const { return m_imp->means; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetVarianceValues() const { return m_imp->variances; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetLowerLimits() const { return m_imp->lowerLimits; }
const std::vector<double>& BSN1SamplePoisnOutputStats::GetUpperLimits() const { return m_imp->upperLimits; }
const std::vector<std::pair<double, double>>& BSN1SamplePoisnOutputStats::GetPosteriorParams() const {
    return m_imp->posteriorParams;
}
const std::vector<std::pair<double, double>>& BSN1SamplePoisnOutputStats::GetLikelihoodParams() const {
    return m_imp->likelihoodParams;
}
const std::vector<Curve>& BSN1SamplePoisnOutputStats::GetPlotArguments4Likelihoods() const {
    return m_imp->likelihoodArgs;
}
const std::vector<Curve>& BSN1SamplePoisnOutputStats::GetPlotArguments4Prior() const { return m_imp->priorArgs; }
const std::vector<Curve>& BSN1SamplePoisnOutputStats::GetPlotArguments4Posterior() const {
    return m_imp->posteriorArgs;
}
const std::vector<Curve>& BSN1SamplePoisnOutputStats::GetPlotLikelihoods() const { return m_imp->likelihoods; }
const std::vector<Curve>& BSN1SamplePoisnOutputStats::GetPlotPrior() const { return m_imp->priors; }
const std::vector<Curve>& BSN1SamplePoisnOutputStats::GetPlotPosterior() const { return m_imp->posteriors; }

void BSN1SamplePoisnOutputStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    const BSN1SamplePoisnOutputStatsImp& d = *m_imp;
    DisplayText(0, "BSN1SamplePoisnOutputStats display start");
    BSNComponentDisplay::DisplayC("Model Type", GetModelType());
    BSNComponentDisplay::DisplayC("Output Type", GetOutputType());
    d.DisplayFactors();
    DisplayDV("Min counts", d.minCnts);
    DisplayDV("Max counts", d.maxCnts);
    d.DisplaySummaries();
    DisplayVPD("Posterior parameters", d.posteriorParams);
    DisplayVPD("Likelihood parameters", d.likelihoodParams);
    DisplayDVV("Plot arguments for likelihoods", d.likelihoodArgs);
    DisplayDVV("Plot arguments for prior", d.priorArgs);
    DisplayDVV("Plot arguments for posterior", d.posteriorArgs);
    DisplayDVV("Plot likelihoods", d.likelihoods);
    DisplayDVV("Plot prior", d.priors);
    DisplayDVV("Plot posterior", d.posteriors);
    DisplayText(0, "End of display BSN1SamplePoisnOutputStats object");
}

} // namespace MCBSN_850
