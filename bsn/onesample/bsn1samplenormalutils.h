#pragma once
// BSN1SampleNormalUtils: stateless helpers shared by the one-sample normal
// and related-samples procedures: frequency weights, credible intervals,
// and the three Bayes factors for a normal mean (known variance, Simple,
// JZS). Bayes factors are null over alternative and stored directly; each
// factor function also gives the factor's natural log through an optional
// pointer, computed on the log scale, so that a factor that underflows (a
// huge t) still has an exact logarithm.
#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/records/record.h"

namespace MCBSN_850 {

class BSN1SampleNormalUtils {
public:
    // The frequency weight of a record: the field's value rounded half up;
    // missing or below 0.5 gives 0.
    static double GetWeight(int weightIndex, const MCCommon_850::Record& record);

    // Equal-tailed interval centre -/+ sqrt(scale2) * IdfT(1 - level/2, df),
    // `level` being the total tail mass. False (both limits missing) when the
    // quantile cannot be computed.
    static bool ComputeCIT(double level, double centre, double scale2, double df, double& lower, double& upper);
    // Equal-tailed normal interval; true only when both limits exist.
    static bool ComputeCINormal(double level, double mean, double variance, double& lower, double& upper);

    // JZS factor for sample size N and t statistic, by quadrature or Monte
    // Carlo as the settings' method type says. Quadrature warnings are added
    // to `warnings`. *bf is missing when it cannot be computed; it is
    // exp(*logBf), 0 where that underflows.
    static MCCommon_850::MCStatus computeBetaForUnKnownVarJZS(const BSNSettings& settings, double N, double t,
                                                              double* bf, MCCommon_850::MCWarnings& warnings,
                                                              double* logBf = nullptr);
    // Closed-form factor with prior variance ratio g.
    static MCCommon_850::MCStatus computeBetaForUnKnownVarSimple(double t, double N, double g, double* bf,
                                                                 double* logBf = nullptr);
    // Known-variance factor. A missing null value counts as 0.
    static MCCommon_850::MCStatus computeBetaForKnownVar(double N, double g, double nullValue, double variance,
                                                         double mean, double* bf, double* logBf = nullptr);

    // The null value of test variable (or pair) `position`: its entry of
    // GetNullValues(), 0 when the list is too short or the entry missing.
    static double NullValue(const BSNSettings& settings, int position);

    // The Bayes factor of test variable (or pair) `position` of `nVariables`,
    // chosen as the settings say: the known-variance factor when a variance
    // is given for it, otherwise JZS or Simple by the estimation type.
    // Returns error 410019 when the g list or null-value list does not fit;
    // quadrature warnings go to `warnings`. `deviation` is the mean minus
    // NullValue(settings, position), which the known-variance factor uses;
    // the caller forms it from its accumulator so that it is exact for data
    // far from zero.
    static MCCommon_850::MCStatus ComputeFactorForVariable(const BSNSettings& settings, int position, int nVariables,
                                                           double N, double t, double deviation, double* bf,
                                                           MCCommon_850::MCWarnings& warnings,
                                                           double* logBf = nullptr);
};

} // namespace MCBSN_850
