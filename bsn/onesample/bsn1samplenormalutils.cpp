#include "bsn/onesample/bsn1samplenormalutils.h"

#include <cmath>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/onesample/bayesfactoronesamplett.h"
#include "bsn/onesample/bayesfactoronesamplettmc.h"
#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCCommon_850::MCWarnings;
using MCMath_850::MCDistFun;

double BSN1SampleNormalUtils::GetWeight(int weightIndex, const MCCommon_850::Record& record) {
    return BSNAlgorithm::RoundFrequencyWeight(record.GetValue(weightIndex));
}

bool BSN1SampleNormalUtils::ComputeCIT(double level, double centre, double scale2, double df, double& lower,
                                       double& upper) {
    lower = MCMV::Missing();
    upper = MCMV::Missing();
    if (MCMV::IsMissing(centre) || MCMV::IsMissing(scale2) || scale2 < 0.0) return false;
    const double q = MCDistFun::IdfT(1.0 - level / 2.0, df);
    if (MCMV::IsMissing(q)) return false;
    const double half = std::sqrt(scale2) * q;
    lower = MCMV::Sanitize(centre - half);
    upper = MCMV::Sanitize(centre + half);
    return !MCMV::IsMissing(lower) && !MCMV::IsMissing(upper);
}

bool BSN1SampleNormalUtils::ComputeCINormal(double level, double mean, double variance, double& lower,
                                            double& upper) {
    lower = MCMV::Missing();
    upper = MCMV::Missing();
    if (MCMV::IsMissing(variance) || variance < 0.0) return false;
    const double sd = std::sqrt(variance);
    lower = MCDistFun::IdfNorm(level / 2.0, mean, sd);
    upper = MCDistFun::IdfNorm(1.0 - level / 2.0, mean, sd);
    return !MCMV::IsMissing(lower) && !MCMV::IsMissing(upper);
}

namespace {

constexpr int kBadParameter = 410019;

// exp of a log factor; beyond the exponent range the factor cannot be
// stored directly and is missing (below it, exp gives 0, which is right).
double expFactor(double logFactor) {
    if (MCMV::IsMissing(logFactor) || logFactor > MCMath_850::MCPower::gMachineMaxExp) return MCMV::Missing();
    return std::exp(logFactor);
}

double entryOrMissing(const std::vector<double>& v, int i) {
    return (i >= 0 && static_cast<std::size_t>(i) < v.size()) ? v[static_cast<std::size_t>(i)] : MCMV::Missing();
}

// Stores a factor from its log through the optional pointers.
void storeLog(double logFactor, double* bf, double* logBf) {
    const double l = MCMV::Sanitize(logFactor);
    if (bf != nullptr) *bf = expFactor(l);
    if (logBf != nullptr) *logBf = l;
}

} // namespace

double BSN1SampleNormalUtils::NullValue(const BSNSettings& settings, int position) {
    const double mu0 = entryOrMissing(settings.GetNullValues(), position);
    return MCMV::IsMissing(mu0) ? 0.0 : mu0;
}

MCStatus BSN1SampleNormalUtils::computeBetaForUnKnownVarJZS(const BSNSettings& settings, double N, double t,
                                                            double* bf, MCWarnings& warnings, double* logBf) {
    if (logBf != nullptr) *logBf = MCMV::Missing();
    if (bf == nullptr) return MCStatus();
    *bf = MCMV::Missing();
    const double df = MCMV::IsMissing(N) ? MCMV::Missing() : N - 1.0;
    // One computation on the log scale gives both: the factor is its exp.
    if (settings.GetMethodType() != BSNConst::AQL) {
        BayesFactorOneSampleTTMC mc(N, df, t, settings.GetMCSamples(), settings.GetRandomSeed());
        mc.SetSeed(settings.GetRandomSeed());
        if (mc.IsValid()) storeLog(mc.ComputeLog(), bf, logBf);
        return MCStatus();
    }
    BayesFactorOneSampleTT quad(N, df, t);
    quad.SetTolerance(settings.GetTolValue());     // non-positive values keep 1e-8
    quad.SetMaxIter(settings.GetMaxIterations());  // non-positive values keep 1500
    if (quad.IsValid()) storeLog(quad.ComputeLog(), bf, logBf);
    warnings.Append(quad.GetWarnings());
    return MCStatus();
}

MCStatus BSN1SampleNormalUtils::computeBetaForUnKnownVarSimple(double t, double N, double g, double* bf,
                                                               double* logBf) {
    if (logBf != nullptr) *logBf = MCMV::Missing();
    if (bf == nullptr) return MCStatus();
    *bf = MCMV::Missing();
    if (MCMV::IsMissing(N) || MCMV::IsMissing(t) || MCMV::IsMissing(g) || g <= 0.0) return MCStatus();
    const double df = N - 1.0;
    if (!(df > 0.0)) return MCStatus();
    const double ng = N * g;
    // sqrt(1+Ng) (1 + t^2/((1+Ng) df))^((df+1)/2) / (1 + t^2/df)^((df+1)/2),
    // in logs so that neither power overflows on its own.
    const double logBF =
        0.5 * std::log1p(ng) + (df + 1.0) / 2.0 * (std::log1p(t * t / ((1.0 + ng) * df)) - std::log1p(t * t / df));
    storeLog(logBF, bf, logBf);
    return MCStatus();
}

MCStatus BSN1SampleNormalUtils::computeBetaForKnownVar(double N, double g, double nullValue, double variance,
                                                       double mean, double* bf, double* logBf) {
    if (logBf != nullptr) *logBf = MCMV::Missing();
    if (bf == nullptr) return MCStatus();
    *bf = MCMV::Missing();
    if (MCMV::IsMissing(N) || N <= 0.0 || MCMV::IsMissing(variance) || variance < 0.0 || MCMV::IsMissing(mean) ||
        MCMV::IsMissing(g) || g <= 0.0)
        return MCStatus();
    const double mu0 = MCMV::IsMissing(nullValue) ? 0.0 : nullValue;
    const double d = mean - mu0;
    const double ng = N * g;
    if (d == 0.0) {
        storeLog(0.5 * std::log1p(ng), bf, logBf);
        return MCStatus();
    }
    // A zero variance with the mean off the null value: the null density of
    // the mean is a point mass elsewhere, so the factor is 0 (its log is
    // minus infinity and stays missing).
    if (variance == 0.0) {
        *bf = 0.0;
        return MCStatus();
    }
    // sqrt(1+Ng) exp(-(N d^2/(2 sigma^2)) / (1 + 1/(Ng)))
    const double z2 = N * (d / std::sqrt(variance)) * (d / std::sqrt(variance));
    storeLog(0.5 * std::log1p(ng) - (z2 / 2.0) / (1.0 + 1.0 / ng), bf, logBf);
    return MCStatus();
}

MCStatus BSN1SampleNormalUtils::ComputeFactorForVariable(const BSNSettings& settings, int position, int nVariables,
                                                         double N, double t, double deviation, double* bf,
                                                         MCWarnings& warnings, double* logBf) {
    if (logBf != nullptr) *logBf = MCMV::Missing();
    if (bf == nullptr) return MCStatus();
    *bf = MCMV::Missing();
    // Variables without a t statistic (too few cases, constant data) get no
    // factor of any kind.
    if (MCMV::IsMissing(t)) return MCStatus();
    const std::vector<double>& variances = settings.GetDataVarVals();
    const std::vector<double>& gValues = settings.GetAlterGValues();
    const std::vector<double>& nullValues = settings.GetNullValues();
    const auto n = static_cast<std::size_t>(nVariables > 0 ? nVariables : 0);
    // A variance list of the wrong length is ignored as a whole.
    const double variance = variances.size() == n ? entryOrMissing(variances, position) : MCMV::Missing();

    if (MCMV::IsMissing(variance)) {
        switch (settings.GetEstBFType()) {
        case BSNConst::JZS:
            return computeBetaForUnKnownVarJZS(settings, N, t, bf, warnings, logBf);
        case BSNConst::Simple:
            if (gValues.empty()) return MCStatus(kBadParameter, false);
            return computeBetaForUnKnownVarSimple(t, N, entryOrMissing(gValues, position), bf, logBf);
        default:
            return MCStatus();  // the other estimation types have no factor here
        }
    }
    if (gValues.size() != n || (!nullValues.empty() && nullValues.size() != n)) return MCStatus(kBadParameter, false);
    return computeBetaForKnownVar(N, entryOrMissing(gValues, position), 0.0, variance, deviation, bf, logBf);
}

} // namespace MCBSN_850
