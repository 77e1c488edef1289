#pragma once
// BSNLogLinDirichletBF: the Bayes factor for independence with Dirichlet
// priors on the cell probabilities. The alternative (the saturated table)
// puts Dirichlet(α) on the cells, or on each category of the fixed margin
// its row (or column) of α; the null puts Dirichlet priors on the margins
// whose parameters are the row and column sums of α, so that the two
// models' priors agree in what they say about the margins.
//
// Cells of empty rows and columns are left out (their shapes count as 0),
// as everywhere else in the log-linear analysis: a declared category that
// was never observed does not change the factor.
#include <iosfwd>
#include <vector>

#include "bsn/loglinear/bsnloglinbayesfactor.h"

namespace MCBSN_850 {

class BSNLogLinDirichletBF : public BSNLogLinBayesFactor {
public:
    // Shapes from the settings: none (all 1), one for every cell, or one per
    // cell (R·C, row by row); any other number is error 410060. A used cell
    // whose shape is not positive is warning 410055 (the prior would not
    // be proper) and no factor.
    BSNLogLinDirichletBF(const BSNSettings& settings, const BSNContingency& table);
    ~BSNLogLinDirichletBF() override;

    double ComputeBayesFactor() override;
    void Display(std::ostream& os) const override;

    // R·C shapes, row by row; 0 in empty rows and columns.
    const std::vector<double>& GetCellShapes() const { return m_alpha; }

private:
    BSNConst::FixType m_fixType;
    std::vector<double> m_alpha;
};

} // namespace MCBSN_850
