#pragma once
// BSNMultipleRegr: the linear regression procedure. Fits the weighted least
// squares regression of a continuous dependent on factors (one indicator
// column per category) and covariates in two passes over the records (the
// cross-products, then the residuals), then, as the settings ask, the Bayes
// factor against the intercept-only model or a full model and a conjugate or
// reference posterior.
//
// A case is used when its frequency weight rounds to at least 1, its
// regression weight (if any) is positive and every variable of the model
// (and of the full model, when there is one) has a value, each factor value
// being one of its categories. The weight of a case is its frequency weight
// times its regression weight; the case count N is the sum of frequency
// weights.
#include <iosfwd>
#include <memory>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/regression/bsnregrfit.h"
#include "bsn/regression/bsnregrposterior.h"
#include "platform/matrix/mcfastdesignmatrix.h"

namespace MCBSN_850 {

class BSNMultipleRegr : public BSNAlgorithm {
public:
    // Models with more parameters are refused (410057).
    static constexpr int kMaxParameters = 4999;

    BSNMultipleRegr(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSNMultipleRegr() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    const BSNRegrPosterior* GetRegrPosterior() const { return m_posterior.get(); }
    const BSNRegrFit& GetFit() const { return m_fit; }
    // The model's design (without shifts) and whether rows were sparse.
    const MCMath_850::MCFastDesignMatrix& GetDesign() const { return m_design; }
    bool IsSparse() const { return m_sparse; }
    const MCXML_850::MCVarList& GetVarList() const { return m_varList; }

private:
    MCCommon_850::MCStatus checkInputs() const;
    MCCommon_850::MCStatus fit(MCCommon_850::MultiPassRecordIter& iter);
    MCCommon_850::MCStatus computeFactor();
    MCCommon_850::MCStatus computePosterior();

    int m_depVar;
    int m_freqVar;
    int m_regrWeightVar;
    MCMath_850::MCFastDesignMatrix m_design;
    std::unique_ptr<MCMath_850::MCFastDesignMatrix> m_fullDesign;
    bool m_sparse = false;
    bool m_fullAbandoned = false;
    int m_kFull = 0;
    BSNRegrFit m_fit;
    std::unique_ptr<BSNRegrPosterior> m_posterior;
};

} // namespace MCBSN_850
