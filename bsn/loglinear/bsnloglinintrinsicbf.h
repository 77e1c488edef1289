#pragma once
// BSNLogLinIntrinsicBF: the Bayes factor of a 2×2 table under the intrinsic
// prior. The two categories of the fixed margin (the rows unless the
// columns are fixed) are two binomial groups, success being the first
// category of the other factor. The null is one common success probability
// with a uniform prior; the alternative's prior is the intrinsic prior: the
// mixture, over every pair of training samples of sizes T1 and T2, of the
// uniform-prior posteriors of the two probabilities, each pair weighted by
// its marginal probability under the null.
//
// T is the settings' LogLinIntrinsicT when it is 2 or more, otherwise
// min(N, 1000) rounded; T1 = round(T n1 / N), T2 = T - T1. The mixture has
// (T1 + 1)(T2 + 1) terms, so its cost grows as T²; the loop polls for
// cancellation, and beyond 4e9 terms (T about 120,000) the factor is not
// computed (warning 410059).
#include <iosfwd>

#include "bsn/loglinear/bsnloglinbayesfactor.h"

namespace MCBSN_850 {

class BSNLogLinIntrinsicBF : public BSNLogLinBayesFactor {
public:
    // Sets T, T1 and T2. A table that is not 2×2 gets warning 410053 and no
    // factor.
    BSNLogLinIntrinsicBF(const BSNSettings& settings, const BSNContingency& table);
    ~BSNLogLinIntrinsicBF() override;

    double ComputeBayesFactor() override;
    void Display(std::ostream& os) const override;

private:
    BSNConst::FixType m_fixType;
    // Per group: successes, failures, size.
    double m_successes[2] = {0.0, 0.0};
    double m_failures[2] = {0.0, 0.0};
};

} // namespace MCBSN_850
