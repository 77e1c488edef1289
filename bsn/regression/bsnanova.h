#pragma once
// BSNAnova: the one-way analysis of variance of a continuous dependent
// across the categories of one factor: a regression on one indicator column
// per category without an intercept (a cell-means model), so X'X is diagonal
// (the cell weights) and no sweep is needed. One pass over the records keeps
// per cell the weight, the weighted mean and the weighted sum of squared
// deviations (updated in the manner of Welford, so the sums keep their
// precision for data far from zero). The ANOVA table, the Bayes factor
// against the intercept-only model and the posterior follow as for the
// regression.
//
// A case is used when its frequency weight rounds to at least 1, its
// regression weight (if any) is positive, the dependent has a value and the
// factor value is a category (value + 0.1, rounded down, within 0..n-1).
// A cell whose weight is not above the tolerance is dropped from the model.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/regression/bsnregrfit.h"
#include "bsn/regression/bsnregrposterior.h"
#include "platform/matrix/mcfastdesignmatrix.h"

namespace MCBSN_850 {

class BSNAnova : public BSNAlgorithm {
public:
    static constexpr int kMaxParameters = 4999;

    BSNAnova(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSNAnova() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    const BSNRegrPosterior* GetRegrPosterior() const { return m_posterior.get(); }
    const BSNRegrFit& GetFit() const { return m_fit; }
    const MCMath_850::MCFastDesignMatrix& GetDesign() const { return m_design; }
    bool IsSparse() const { return true; }
    const MCXML_850::MCVarList& GetVarList() const { return m_varList; }

    // Per cell: weight, weighted mean (missing for an empty cell).
    const std::vector<double>& GetCellWeights() const { return m_cellW; }
    const std::vector<double>& GetCellMeans() const { return m_cellMean; }

private:
    MCCommon_850::MCStatus checkInputs() const;
    MCCommon_850::MCStatus pass(MCCommon_850::MultiPassRecordIter& iter);
    MCCommon_850::MCStatus computeFactor();
    MCCommon_850::MCStatus computePosterior();

    int m_depVar;
    int m_factorVar;
    int m_nCategories;
    int m_freqVar;
    int m_regrWeightVar;
    MCMath_850::MCFastDesignMatrix m_design;
    std::vector<double> m_cellW, m_cellMean, m_cellM2;
    BSNRegrFit m_fit;
    std::unique_ptr<BSNRegrPosterior> m_posterior;
};

} // namespace MCBSN_850
