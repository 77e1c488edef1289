#include "bsn/onesample/bsn1samplebinoconjprior.h"

#include <cmath>

#include "bsn/onesample/bsn1samplediscreteutils.h"
#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"
#include "platform/dist/mclgamma.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

// The grid keeps clear of 0 and 1 by one machine epsilon at each end: the
// log likelihood and the beta densities are then finite everywhere on it.
constexpr double kGridOffset = 2.220446049250313e-16;
constexpr double kGridSpan = 0.9999999999999996;

} // namespace

BSN1SampleBinoConjPrior::BSN1SampleBinoConjPrior(const BSNSettings& settings)
    : BSN1SampleBinoConjPrior(settings, BSN1SampleBinoCounts(settings.GetFactors())) {}

BSN1SampleBinoConjPrior::BSN1SampleBinoConjPrior(const BSNSettings& settings, const BSN1SampleBinoCounts& counts)
    : BSN1SampleDiscretePosterior(settings, counts), m_plotArguments(counts.Size()),
      m_plotLikelihoods(counts.Size()), m_plotPrior(counts.Size()), m_plotPosterior(counts.Size()) {}

double BSN1SampleBinoConjPrior::updateForBeta(double t, double alpha, double beta) {
    const double exponent = MCMath_850::MCLogGamma::LogBetaPdf(t, alpha, beta);
    if (MCMV::IsMissing(exponent) || exponent > MCMath_850::MCPower::gMachineMaxExp) return MCMV::Missing();
    if (exponent < MCMath_850::MCPower::gMachineMinExp) return 0.0;
    return std::exp(exponent);
}

std::vector<double> BSN1SampleBinoConjPrior::PlotGrid(int nPoints) {
    std::vector<double> grid;
    if (nPoints < 1) return grid;
    const double step = nPoints > 1 ? kGridSpan / (nPoints - 1) : 0.0;
    grid.reserve(static_cast<std::size_t>(nPoints));
    for (int k = 0; k < nPoints; ++k) grid.push_back(k * step + kGridOffset);
    return grid;
}

double BSN1SampleBinoConjPrior::computeMode(double alpha, double beta, double s) {
    // Interior mode for a unimodal posterior; the formula is also kept for the
    // U-shaped case (both parameters below 1), where it marks the antimode.
    if ((alpha > 1.0 && beta > 1.0) || (alpha < 1.0 && beta < 1.0)) return (alpha - 1.0) / (s - 2.0);
    if (alpha < 1.0 || (alpha == 1.0 && beta > 1.0)) return 0.0;
    if (beta < 1.0 || (alpha > 1.0 && beta == 1.0)) return 1.0;
    // Beta(1, 1) is flat: every proportion is a mode; the centre is reported.
    return 0.5;
}

MCStatus BSN1SampleBinoConjPrior::Compute() {
    double a = 0.0, b = 0.0;
    if (readPrior(a, b).IsError()) return m_status;
    const std::vector<double> grid = PlotGrid(m_settings.GetNPlotPoints());
    for (std::size_t i = 0; i < m_counts.Size(); ++i) computeVariable(i, a, b, grid);
    return m_status;
}

void BSN1SampleBinoConjPrior::computeVariable(std::size_t i, double a, double b, const std::vector<double>& grid) {
    const double n = m_counts.GetTrials()[i];
    const double x = m_counts.GetSuccesses()[i];
    const double alpha = a + x;
    const double beta = b + n - x;
    const double s = a + b + n;
    // Without a trial, or when an improper prior meets data that cannot make
    // the posterior proper, there is nothing to summarise.
    if (n < 1.0 || !(alpha > 0.0) || !(beta > 0.0) || MCMV::IsMissing(alpha) || MCMV::IsMissing(beta)) {
        BSN1SampleDiscreteUtils::AddVariableWarning(m_warnings, 410037, i);
        return;
    }
    m_means[i] = MCMV::Sanitize(alpha / s);
    m_variances[i] = MCMV::Sanitize(alpha * beta / ((s + 1.0) * s * s));
    m_modes[i] = MCMV::Sanitize(computeMode(alpha, beta, s));
    setLimits(i, [&](double p) { return MCDistFun::IdfBeta(p, alpha, beta); });
    ComputePlot(i, a, b, alpha, beta, grid);
}

void BSN1SampleBinoConjPrior::ComputePlot(std::size_t i, double a, double b, double alpha, double beta,
                                          const std::vector<double>& grid) {
    const double n = m_counts.GetTrials()[i];
    const double x = m_counts.GetSuccesses()[i];
    // An improper prior has no density to draw; it is kept as a flat line,
    // two values 1.0 spanning the grid.
    const bool properPrior = a > 0.0 && b > 0.0;
    std::vector<double> likelihood, prior, posterior;
    likelihood.reserve(grid.size());
    posterior.reserve(grid.size());
    if (properPrior) prior.reserve(grid.size());
    for (double t : grid) {
        likelihood.push_back(MCMV::Sanitize(x * std::log(t) + (n - x) * std::log1p(-t)));
        posterior.push_back(updateForBeta(t, alpha, beta));
        if (properPrior) prior.push_back(updateForBeta(t, a, b));
    }
    if (!properPrior) prior = {1.0, 1.0};
    m_plotArguments[i] = grid;
    m_plotLikelihoods[i] = std::move(likelihood);
    m_plotPrior[i] = std::move(prior);
    m_plotPosterior[i] = std::move(posterior);
}

void BSN1SampleBinoConjPrior::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN1SampleBinoConjPrior display start");
    displaySummaries(os);
    DisplayDVV("Plot arguments", m_plotArguments);
    DisplayDVV("Plot likelihoods", m_plotLikelihoods);
    DisplayDVV("Plot prior", m_plotPrior);
    DisplayDVV("Plot posterior", m_plotPosterior);
    DisplayText(0, "End of display BSN1SampleBinoConjPrior object");
}

} // namespace MCBSN_850
