#include "bsn/twosample/bsn2samplerelated.h"

#include <cmath>
#include <limits>
#include <ostream>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/onesample/bsn1samplenormalutils.h"
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

namespace {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

bool present(double x) { return !MCMV::IsMissing(x); }

// The variance of a difference comes from Sxx + Syy - 2 Sxy, which cancels
// badly when the two members move together. A value within a few rounding
// errors of the members' own spread is noise, and the difference is taken
// as constant.
constexpr double kConstantTolerance = 64.0 * std::numeric_limits<double>::epsilon();

} // namespace

BSN2SampleRelated::BSN2SampleRelated(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSNAlgorithm(settings, varList) {}

BSN2SampleRelated::~BSN2SampleRelated() = default;

MCStatus BSN2SampleRelated::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    const std::vector<int>& first = m_settings.GetCovariates();
    const std::vector<int>& second = m_settings.Get2ndRelatedList();
    // Checked before any record is read: nothing can be paired otherwise.
    if (first.empty() || first.size() != second.size()) {
        TakeStageStatus(MCStatus(410019, false));
        return FinishBuild();
    }
    if (!MCCommon_850::HasAnyRecord(iter)) {
        TakeStageStatus(MCStatus(410003, false));
        return FinishBuild();
    }

    // A cancellation noticed between stages ends the build like one noticed
    // inside a pass, with the bare cancellation status.
    auto mayContinue = [this]() {
        if (!m_status.IsOK()) return false;
        if (m_cancelInfo.WillCancel()) {
            m_status = MCStatus(1, false);
            return false;
        }
        return true;
    };

    TakeStageStatus(ComputeBasicStats(iter));
    if (!mayContinue()) return FinishBuild();

    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    if (type == BSNConst::BayesFactor || type == BSNConst::Both) {
        TakeStageStatus(computeFactor());
        if (!mayContinue()) return FinishBuild();
    }
    if (type == BSNConst::Posterior || type == BSNConst::Both) {
        TakeStageStatus(computeInference());
        if (!mayContinue()) return FinishBuild();
    }

    TakeStageStatus(GenerateOutput());
    return FinishBuild();
}

bool BSN2SampleRelated::HasMissing(const MCCommon_850::Record& record, const int pairVars[2], double values[2]) {
    values[0] = record.GetValue(pairVars[0]);
    values[1] = record.GetValue(pairVars[1]);
    return MCMV::IsMissing(values[0]) || MCMV::IsMissing(values[1]);
}

MCStatus BSN2SampleRelated::ComputeBasicStats(MCCommon_850::MultiPassRecordIter& iter) {
    const std::vector<int>& first = m_settings.GetCovariates();
    const std::vector<int>& second = m_settings.Get2ndRelatedList();
    const std::size_t nPairs = std::min(first.size(), second.size());
    m_pairStats.assign(nPairs, MCMath_850::MCMeansXProdData(2));
    ResetBasicStats(nPairs);

    // A case counts for a pair only when both of its members are present;
    // the frame's pass already drops records whose weight rounds to 0.
    const MCStatus pass = RunDataPass(
        iter,
        [&](const MCCommon_850::Record& record, double weight) {
            for (std::size_t i = 0; i < nPairs; ++i) {
                const int vars[2] = {first[i], second[i]};
                double values[2];
                if (!HasMissing(record, vars, values)) m_pairStats[i].AddCase(values, weight);
            }
        },
        FinalReport::IfPending);
    if (pass.IsError()) return pass;

    for (std::size_t i = 0; i < nPairs; ++i) {
        const MCMath_850::MCMeansXProdData& acc = m_pairStats[i];
        const double n = acc.GetNCases();
        if (!present(n) || n < 2.0) {
            MCStatus w(410029, true);
            w.SetDiscreteDatum(0, static_cast<int>(i));
            m_warnings.AddWarning(w, nullptr);
            continue;
        }
        const double sxx = acc.GetXProd(0, 0), syy = acc.GetXProd(1, 1), sxy = acc.GetXProd(0, 1);
        // Taken from the accumulator's origins and shifted means, so that two
        // members near 1e9 give their difference without rounding at 1e9.
        m_means[i] = acc.GetMeanDifference(0, 1);
        m_dfs[i] = n - 1.0;
        m_ns[i] = n;
        const double variance = sxx / (n - 1.0) + syy / (n - 1.0) - 2.0 * sxy / (n - 1.0);
        const double noise = kConstantTolerance * (sxx + syy) / (n - 1.0);
        m_stdDevs[i] = variance > noise ? std::sqrt(variance) : 0.0;
        if (m_stdDevs[i] == 0.0) {
            MCStatus w(410028, true);
            w.SetDiscreteDatum(0, static_cast<int>(i));
            m_warnings.AddWarning(w, nullptr);
            m_stdErrors[i] = 0.0;
        } else {
            m_stdErrors[i] = m_stdDevs[i] / std::sqrt(n);
        }
    }
    return {};
}

void BSN2SampleRelated::computeTtest(int i) {
    m_tValues[i] = MCMV::Missing();
    m_sigs[i] = MCMV::Missing();
    const double d = m_means[i], sd = m_stdDevs[i], se = m_stdErrors[i], n = m_ns[i];
    if (!present(d) || !present(se) || !present(sd) || !present(n) || sd == 0.0 || se == 0.0 || n < 2.0) return;
    // The pair's null value is used as given; a list too short to hold one
    // for this pair tests against 0.
    const std::vector<double>& nulls = m_settings.GetNullValues();
    const double mu0 = static_cast<std::size_t>(i) < nulls.size() ? nulls[i] : 0.0;
    // The distance from the null value straight from the accumulator (exact
    // for members far from zero), not from the rounded mean difference.
    const double t = m_pairStats[i].GetMeanDifference(0, 1, mu0) / se;
    if (!present(t)) return;
    const double p = MCMath_850::MCDistFun::CdfT(std::fabs(t), m_dfs[i]);
    if (!present(p)) return;
    m_tValues[i] = t;
    m_sigs[i] = 2.0 * (1.0 - p);
}

MCStatus BSN2SampleRelated::computeFactor() {
    const std::size_t nPairs = m_means.size();
    for (auto* v : {&m_factors, &m_logFactors, &m_tValues, &m_sigs}) v->assign(nPairs, MCMV::Missing());
    for (std::size_t i = 0; i < nPairs; ++i) computeTtest(static_cast<int>(i));

    for (std::size_t i = 0; i < nPairs; ++i) {
        if (m_cancelInfo.WillCancel()) return MCStatus(1, false);
        // A pair without a t (too few cases, constant difference) gets no
        // factor in any variant: the shared choice sees the missing t.
        double bf = MCMV::Missing(), logBf = MCMV::Missing();
        const int pair = static_cast<int>(i);
        const double deviation =
            m_pairStats[i].GetMeanDifference(0, 1, BSN1SampleNormalUtils::NullValue(m_settings, pair));
        const MCStatus st = BSN1SampleNormalUtils::ComputeFactorForVariable(
            m_settings, pair, static_cast<int>(nPairs), m_ns[i], m_tValues[i], deviation, &bf, m_warnings, &logBf);
        m_factors[i] = MCMV::Sanitize(bf);
        m_logFactors[i] = MCMV::Sanitize(logBf);
        if (st.IsError()) return st;
        if (st.IsWarning()) m_warnings.AddWarning(st, nullptr);
    }
    return {};
}

void BSN2SampleRelated::createInference() {
    if (!m_inference)
        m_inference = std::make_unique<BSN1SampleNormalInference>(m_settings, m_warnings, m_means, m_stdDevs, m_ns);
}

MCStatus BSN2SampleRelated::computeInference() {
    createInference();
    return m_inference->BuildModel();
}

MCStatus BSN2SampleRelated::GenerateOutput() {
    if (m_inference) m_posterior = m_inference->GetResults();
    if (!m_outputStats) m_outputStats = std::make_unique<BSN2SampleRelatedOutputStats>(m_settings, *this);
    return {};
}

void BSN2SampleRelated::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleRelated display start");
    BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
    DisplayIV("First Variables", m_settings.GetCovariates());
    DisplayIV("Second Variables", m_settings.Get2ndRelatedList());
    DisplayI("Frequency Weight", m_settings.GetFrequencyWeightVar());
    DisplayB("Model Built", m_modelBuilt);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    for (const auto& s : m_pairStats) s.Display(os);
    DisplayResults("Mean Differences");
    if (m_inference) m_inference->Display(os);
    if (m_outputStats) m_outputStats->Display(os);
    DisplayText(0, "End of display BSN2SampleRelated object");
}

} // namespace MCBSN_850
