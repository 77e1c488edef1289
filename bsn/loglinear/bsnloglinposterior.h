#pragma once
// BSNLogLinPosterior: posterior estimates on pairs of categories. With the
// cell probabilities θ Dirichlet(α + O) a posteriori, the log odds ratio of
// rows i < i' and columns j < j',
//   ψ = ln θ_ij + ln θ_i'j' - ln θ_ij' - ln θ_i'j,
// is the same contrast of independent log-gamma variables ln G_c, G_c ~
// Gamma(β_c) with β = α + O (the normalising sum cancels in the contrast).
// So its mean is the matching sum of digammas and its variance the sum of
// trigammas, exactly; its mode and equal-tailed credible limits come from
// the exact distribution, whose characteristic function is the product of
// Γ(β_c ± it)/Γ(β_c).
//
// The distribution function is recovered from the characteristic function
// by the Fourier series of its periodised form,
//   F(x) = 1/2 + h x/(2π) - Σ_k≥1 Im[φ(kh) e^(-ikhx)] / (πk)   (ψ centred),
// exact while all but a negligible mass of ψ lies within 2π/h of x: the
// step h comes from the four cells' own tail quantiles (mass below 1e-17
// each), and the series stops where |φ| is below e^-40. Each cell's
// log characteristic function on a grid of steps is computed once and
// shared by every pair that uses the cell. Limits and mode are then solved
// by safeguarded Newton steps, to a relative 1e-10 of ψ's standard
// deviation.
//
// Pairs go over the non-empty rows (outer) and non-empty columns (inner);
// a pair with a cell whose α + O is not positive has no proper posterior
// and keeps missing estimates (warning 420041 once).
#include <array>
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/regression/bayesestimation.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mccancelinfo.h"

namespace MCBSN_850 {

class BSNLogLinPosterior {
public:
    using Matrix = std::vector<std::vector<double>>;

    BSNLogLinPosterior(const BSNSettings& settings, const Matrix& counts, const std::vector<int>& rows,
                       const std::vector<int>& cols);
    ~BSNLogLinPosterior();
    BSNLogLinPosterior(const BSNLogLinPosterior&) = delete;
    BSNLogLinPosterior& operator=(const BSNLogLinPosterior&) = delete;

    // Error 410060 when the number of shapes is neither 1 nor R·C; error 1
    // on cancellation; warning 420041 for pairs without a proper posterior;
    // warning 420042 (and no estimates) for more than ten million pairs.
    MCCommon_850::MCStatus Compute();

    MCCommon_850::MCStatus GetStatus() const { return m_status; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }
    // One entry per pair, in the same order: {i, i', j, j'} category codes.
    const std::vector<std::array<int, 4>>& GetPairs() const { return m_pairs; }
    const std::vector<BayesEstimation>& GetEstimations() const { return m_estimations; }
    // Posterior density curves of the first pairs (at most GetMaxNPlots()).
    const Matrix& GetPlotArguments() const { return m_plotArguments; }
    const Matrix& GetPlotDensities() const { return m_plotDensities; }

    void Display(std::ostream& os) const;

private:
    BSNSettings m_settings;
    Matrix m_counts;
    std::vector<int> m_rows;
    std::vector<int> m_cols;
    MCMath_850::MCCancelInfo m_cancelInfo;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
    std::vector<std::array<int, 4>> m_pairs;
    std::vector<BayesEstimation> m_estimations;
    Matrix m_plotArguments;
    Matrix m_plotDensities;
};

} // namespace MCBSN_850
