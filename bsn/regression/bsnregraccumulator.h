#pragma once
// BSNRegrAccumulator: the weighted cross-products of one design and its
// least-squares fit. The first pass adds each case's row (x, y) to the
// augmented matrix [X'X X'y; y'X y'y]; covariates and the dependent are
// shifted by their values in the first case used, so the products keep
// their precision for data far from zero. Dense rows are gathered in blocks
// and added by a symmetric rank-k product; sparse rows (one entry per
// effect) touch only their own entries, so the cost of a case does not
// depend on the number of factor categories.
//
// The fit sweeps the first n pivots with relative tolerance 1e-12 against
// the diagonal before sweeping. The coefficients, X'X, X'y, y'y and the
// generalised inverse of X'X are then turned back to the variables' own
// scale (the shift moves only the intercept).
#include <functional>
#include <vector>

#include <Eigen/Dense>

#include "platform/matrix/mcbitset.h"
#include "platform/matrix/mcfastdesignmatrix.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

class BSNRegrAccumulator {
public:
    static constexpr double kSweepTolerance = 1e-12;

    BSNRegrAccumulator(MCMath_850::MCFastDesignMatrix& design, bool sparse);

    // Sets the shifts from the case when none are set yet; false when the
    // case does not expand.
    bool PrepareShifts(const MCCommon_850::Record& record) {
        return m_design.HasShifts() || m_design.SetShifts(record);
    }
    // Adds a case with weight w (frequency times regression weight); false
    // when it does not expand.
    bool Add(const MCCommon_850::Record& record, double w);
    // Ends the pass: the matrix is complete afterwards.
    void Finish();

    // Sweeps the pivots; `stop` is asked between blocks of pivots and ends
    // the sweep early (returning false) when it says so.
    bool Sweep(const std::function<bool()>& stop);

    // The shifted fitted value and dependent of a case; false when it does
    // not expand. Needs Sweep() first.
    bool Residual(const MCCommon_850::Record& record, double& yShifted, double& fitShifted);

    int GetNParameters() const { return m_n; }
    const MCMath_850::MCBitSet& GetNonRedundant() const { return m_nonRedundant; }
    // Coefficients on the variables' own scale (0 for redundant ones).
    std::vector<double> GetCoefficients() const;
    // X'X, X'y and y'y on the variables' own scale (from the unswept matrix:
    // call before Sweep()).
    void GetCrossProducts(MCMath_850::MCSymMatrix& XtX, std::vector<double>& Xty, double& yty) const;
    // The generalised inverse of X'X on the variables' own scale, redundant
    // rows and columns zero (after Sweep()).
    void GetInverse(MCMath_850::MCSymMatrix& inverse) const;
    // Sum of w (y - first y) and of w.
    double GetSumWY() const { return m_sumWY; }
    double GetSumW() const { return m_sumW; }
    const MCMath_850::MCSymMatrix& GetMatrix() const { return m_matrix; }

private:
    void flush();

    MCMath_850::MCFastDesignMatrix& m_design;
    bool m_sparse;
    int m_n;
    MCMath_850::MCSymMatrix m_matrix;
    Eigen::MatrixXd m_block;  // dense rows times sqrt(w), one per column
    int m_inBlock = 0;
    std::vector<int> m_indices;
    std::vector<double> m_values;
    std::vector<double> m_row;
    double m_sumWY = 0.0;
    double m_sumW = 0.0;
    MCMath_850::MCBitSet m_nonRedundant;
    std::vector<double> m_shiftedCoeffs;
};

} // namespace MCBSN_850
