#pragma once
// RouderBayesFactor: the JZS Bayes factor of equal group means, the
// one-sample JZS integral over g applied with the effective sample size
// n0 n1 / (n0 + n1) and n0 + n1 - 2 degrees of freedom. By quadrature the
// integral runs from machine epsilon to 1e6 (the last stretch beyond 1e5 by
// its large-g form); by Monte Carlo it averages over draws of g from its
// prior, seeded afresh for every variable.
#include <iosfwd>

#include "bsn/twosample/bsn2sampleindbayesfactor.h"

namespace MCBSN_850 {

class RouderBayesFactor : public BSN2SampleIndBayesFactor {
public:
    RouderBayesFactor(const BSNSettings& settings, const MCXML_850::MCVarList& varList,
                      MCCommon_850::MCWarnings& warnings);

    // The factor for effective size n, df and pooled t (missing when it
    // cannot be computed); quadrature warnings go to `warnings`.
    static double Factor(const BSNSettings& settings, double n, double df, double t,
                         MCCommon_850::MCWarnings& warnings);
    // Its natural logarithm, computed on the log scale.
    static double LogFactor(const BSNSettings& settings, double n, double df, double t,
                            MCCommon_850::MCWarnings& warnings);

    void Display(std::ostream& os) const override;

protected:
    MCCommon_850::MCStatus ComputeBF() override;

private:
    // Where the quadrature's warnings go.
    MCCommon_850::MCWarnings& m_quadWarnings;
};

} // namespace MCBSN_850
