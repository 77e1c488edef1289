#pragma once
// BSNLogLinear: log-linear analysis of a two-way table. One data pass
// cross-tabulates the two factors (BSNContingency); then the classical
// tests of independence (Pearson and likelihood-ratio chi-square, and for a
// 2×2 table the continuity-corrected chi-square and Fisher's exact test),
// as the analysis type asks a Bayes factor for independence, and posterior
// estimates of the log odds ratios of every pair of rows and pair of
// columns.
#include <array>
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/loglinear/bsncontingency.h"
#include "bsn/regression/bayesestimation.h"
#include "platform/stats/mcteststats.h"

namespace MCBSN_850 {

class BSNLogLinear : public BSNAlgorithm {
public:
    using Matrix = std::vector<std::vector<double>>;

    BSNLogLinear(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSNLogLinear() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    MCCommon_850::MCStatus ComputeTests();
    MCCommon_850::MCStatus ComputeExactTests(bool positive);
    // Warnings are added as they arise; returns an error or no error.
    MCCommon_850::MCStatus ComputeBayesFactor();
    MCCommon_850::MCStatus ComputePosterior();

    // Fisher's exact test of the 2×2 table c11 c12 / c21 c22 (whole counts).
    // The reference cell is the smaller off-diagonal cell for a positive
    // association (c21 on a tie), else the smaller diagonal cell (c11 on a
    // tie); one-sided = P(X <= x), two-sided adds P(X > y) for the largest
    // y whose probability exceeds P(X = x). Returns {one-sided, two-sided}.
    static std::array<double, 2> FisherExact(double c11, double c12, double c21, double c22, bool positive);

    // The table (null before the data pass) and what the stages left.
    const BSNContingency* GetContingency() const { return m_table.get(); }
    int GetNNonEmptyRows() const { return m_nRowsUsed; }
    int GetNNonEmptyCols() const { return m_nColsUsed; }
    const MCMath_850::MCTestStats& GetChiSquareResult() const { return m_chiSquare; }
    const MCMath_850::MCTestStats& GetLikeRatioResult() const { return m_likeRatio; }
    const MCMath_850::MCTestStats& GetContCorrectResult() const { return m_contCorrect; }
    double GetFisher1SidedSig() const { return m_fisher1; }
    double GetFisher2SidedSig() const { return m_fisher2; }
    double GetBayesFactor() const { return m_bayesFactor; }
    bool IsLogBayesFactor() const { return m_isLogBayesFactor; }
    double GetLogBayesFactor() const { return m_logBayesFactor; }
    int GetT() const { return m_T; }
    int GetT1() const { return m_T1; }
    int GetT2() const { return m_T2; }
    const std::vector<BayesEstimation>& GetPosteriorEstimations() const { return m_estimations; }
    const std::vector<std::array<int, 4>>& GetPosteriorPairs() const { return m_pairs; }
    const Matrix& GetPlotArguments() const { return m_plotArguments; }
    const Matrix& GetPlotDensities() const { return m_plotDensities; }

private:
    std::unique_ptr<BSNContingency> m_table;
    int m_nRowsUsed = 0;
    int m_nColsUsed = 0;
    MCMath_850::MCTestStats m_chiSquare;
    MCMath_850::MCTestStats m_likeRatio;
    MCMath_850::MCTestStats m_contCorrect;
    double m_fisher1;
    double m_fisher2;
    double m_bayesFactor;
    bool m_isLogBayesFactor = false;
    double m_logBayesFactor;
    int m_T = -1;
    int m_T1 = -1;
    int m_T2 = -1;
    std::vector<BayesEstimation> m_estimations;
    std::vector<std::array<int, 4>> m_pairs;
    Matrix m_plotArguments;
    Matrix m_plotDensities;
};

} // namespace MCBSN_850
