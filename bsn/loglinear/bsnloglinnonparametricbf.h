#pragma once
// BSNLogLinNonParametricBF: the Bayes factor of a table with one fixed
// margin of exactly two categories (a 2×K or K×2 table): the two
// fixed-margin groups are multinomials over the K categories of the free
// margin, with Dirichlet(λ) priors; the null is one common distribution,
// the alternative two separate ones.
#include <iosfwd>
#include <vector>

#include "bsn/loglinear/bsnloglinbayesfactor.h"

namespace MCBSN_850 {

class BSNLogLinNonParametricBF : public BSNLogLinBayesFactor {
public:
    // λ from the settings (none: every λ is 1; one value: repeated to K).
    // Error 410050 when their number is then not K.
    BSNLogLinNonParametricBF(const BSNSettings& settings, const BSNContingency& table);
    ~BSNLogLinNonParametricBF() override;

    double ComputeBayesFactor() override;
    void Display(std::ostream& os) const override;

    // lnΓ(Σ λ_i) - Σ lnΓ(λ_i), both over the entries with λ_i > 0.
    static double ComputeLogDirichlet(const std::vector<double>& lambda);
    // The same over λ_i + x_i (length that of λ).
    static double ComputeLogDirichletSum(const std::vector<double>& lambda, const std::vector<double>& x);

    const std::vector<double>& GetLambdas() const { return m_lambda; }

private:
    BSNConst::FixType m_fixType;
    std::vector<double> m_lambda;
};

} // namespace MCBSN_850
