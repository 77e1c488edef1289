#pragma once
// BayesFactorOneSampleTTRng: draws of the prior variance ratio g of the JZS
// factor, g ~ inverse-gamma(1/2, 1/2), as the reciprocal of a gamma draw
// with shape 1/2 and rate 1/2 (a chi-square with one degree of freedom).
#include <iosfwd>

#include "platform/random/mcrandomvalues.h"

namespace MCBSN_850 {

class BayesFactorOneSampleTTRng {
public:
    BayesFactorOneSampleTTRng();

    void SetSeed(unsigned long seed) { m_random.SetSeed(seed); }
    // One draw of g (never infinite: a zero gamma draw is drawn again).
    double GetRandom();

    void Display(std::ostream& os) const;

private:
    MCMath_850::MCRandomValues m_random;
};

} // namespace MCBSN_850
