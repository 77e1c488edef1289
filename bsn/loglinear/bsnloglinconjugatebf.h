#pragma once
// BSNLogLinConjugateBF: Bayes factors for independence under conjugate
// priors, for three sampling models: Poisson counts, one multinomial over
// the whole table (total fixed), and independent multinomials for the
// categories of the fixed margin. The cell shapes α come from the settings
// (one shape for every cell, or one per cell); the margins get Dirichlet
// parameters derived from them.
#include <iosfwd>
#include <vector>

#include "bsn/loglinear/bsnloglinbayesfactor.h"

namespace MCBSN_850 {

class BSNLogLinConjugateBF : public BSNLogLinBayesFactor {
public:
    // Builds the priors. Status: warning 410055 when a margin's Dirichlet
    // parameter or the Poisson shape a0 is not positive, error 410060 when
    // the number of shapes is neither 1 nor R·C.
    BSNLogLinConjugateBF(const BSNSettings& settings, const BSNContingency& table);
    ~BSNLogLinConjugateBF() override;

    double ComputeBayesFactor() override;
    void Display(std::ostream& os) const override;

    // Σ lnΓ(a_i) - lnΓ(Σ a_i), both over the entries with a_i > 0.
    static double ComputeLogBeta(const std::vector<double>& a);
    // The same over the entries a_i + x_i (length that of a).
    static double ComputeLogBetaSum(const std::vector<double>& a, const std::vector<double>& x);

    double ComputeLogBaBya() const;
    double ComputePoisson() const;
    double ComputeJointMultinom() const;
    double ComputeIndepMultinom() const;

    const std::vector<double>& GetCellShapes() const { return m_alpha; }
    double GetPriorScale() const { return m_b; }
    double GetPoissonShape() const { return m_a0; }

private:
    // The cell counts laid out row by row, as the shapes are.
    std::vector<double> cellCounts() const;

    bool m_isPoisson;
    BSNConst::FixType m_fixType;
    int m_nRowsUsed;
    int m_nColsUsed;
    std::vector<double> m_alpha;
    double m_b;
    std::vector<double> m_rowShapeSums;  // ρs
    std::vector<double> m_rowParams;     // ρ
    std::vector<double> m_colShapeSums;  // γs
    std::vector<double> m_colParams;     // γ
    double m_A = 0.0;
    double m_a0 = 0.0;
};

} // namespace MCBSN_850
