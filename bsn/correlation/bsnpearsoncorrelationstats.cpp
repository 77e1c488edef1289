#include "bsn/correlation/bsnpearsoncorrelationstats.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <ostream>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/frame/bsncorrreporter.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/stats/mcblockxproddata.h"
#include "platform/stats/mcpairwisexproddata.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

BSNPearsonCorrelationStats::BSNPearsonCorrelationStats(const BSNSettings& settings,
                                                       MCCommon_850::MCWarnings& warnings,
                                                       MCMath_850::MCCancelInfo& cancelInfo)
    : m_settings(settings), m_warnings(warnings), m_cancelInfo(cancelInfo), m_vars(settings.GetCovariates()),
      m_weightVar(settings.GetFrequencyWeightVar()) {}

MCStatus BSNPearsonCorrelationStats::Calculate(MCCommon_850::MultiPassRecordIter& iter) {
    GenerateVarPairs();
    m_status = PassData(iter);
    return m_status;
}

void BSNPearsonCorrelationStats::GenerateVarPairs() {
    m_pairs.clear();
    const std::size_t k = m_vars.size();
    if (k >= 2) m_pairs.reserve(k * (k - 1) / 2);
    for (std::size_t i = 0; i + 1 < k; ++i)
        for (std::size_t j = i + 1; j < k; ++j) m_pairs.emplace_back(m_vars[i], m_vars[j]);
}

double BSNPearsonCorrelationStats::GetWeight(const MCCommon_850::Record* record) const {
    if (m_weightVar < 0) return 1.0;
    if (record == nullptr) return 0.0;
    // Whole cases: below 0.5 drops the record, 0.5 and above round half up.
    return BSNAlgorithm::RoundFrequencyWeight(record->GetValue(m_weightVar));
}

bool BSNPearsonCorrelationStats::HasMissing(const MCCommon_850::Record* record, std::vector<double>& values) const {
    if (values.size() < m_vars.size()) values.resize(m_vars.size());
    for (std::size_t j = 0; j < m_vars.size(); ++j) {
        values[j] = record->GetValue(m_vars[j]);
        if (MCMV::IsMissing(values[j])) return true;
    }
    return false;
}

bool BSNPearsonCorrelationStats::HasMissing(const MCCommon_850::Record* record, int var1, int var2,
                                            std::vector<double>& values) const {
    if (values.size() < 2) values.resize(2);
    values[0] = record->GetValue(var1);
    values[1] = record->GetValue(var2);
    return MCMV::IsMissing(values[0]) || MCMV::IsMissing(values[1]);
}

bool BSNPearsonCorrelationStats::IsPerfectLinearCorrelation(double r) { return std::fabs(r) == 1.0; }

bool BSNPearsonCorrelationStats::IsValidCorrelation(double r) {
    return !MCMV::IsMissing(r) && !IsPerfectLinearCorrelation(r);
}

MCStatus BSNPearsonCorrelationStats::PassData(MCCommon_850::MultiPassRecordIter& iter) {
    const int k = static_cast<int>(m_vars.size());
    const std::size_t nPairs = m_pairs.size();
    m_correlations.assign(nPairs, MCMV::Missing());
    m_pairN.assign(nPairs, 0.0);
    m_logSxxSyy.assign(nPairs, MCMV::Missing());
    m_varN.assign(static_cast<std::size_t>(k), 0.0);
    m_validPairs = 0;
    m_nRecords = 0;

    iter.Reset();
    if (!iter.Advance()) return MCStatus(410003, false);

    const bool listwise = m_settings.GetMissScope() == BSNConst::MissingListwise;
    const int block = m_blockSize > 0 ? m_blockSize : MCMath_850::MCBlockXProdData::kDefaultBlockSize;
    std::unique_ptr<MCMath_850::MCBlockXProdData> complete;
    std::unique_ptr<MCMath_850::MCPairwiseXProdData> pairwise;
    if (listwise)
        complete = std::make_unique<MCMath_850::MCBlockXProdData>(k, block);
    else
        pairwise = std::make_unique<MCMath_850::MCPairwiseXProdData>(k, block);

    const int frequency = m_settings.GetProgressFrequency();
    BSNCorrReporter reporter(0);
    int countdown = frequency;
    std::vector<double> values(static_cast<std::size_t>(k));
    do {
        const MCCommon_850::Record* record = iter.GetRecord();
        if (record == nullptr) continue;
        if (m_cancelInfo.WillCancel()) return MCStatus(1, false);
        const double weight = GetWeight(record);
        if (weight > 0.0) {
            if (listwise) {
                if (!HasMissing(record, values)) complete->AddCase(values.data(), weight);
            } else {
                for (int j = 0; j < k; ++j) values[static_cast<std::size_t>(j)] = record->GetValue(m_vars[j]);
                pairwise->AddCase(values.data(), weight);
            }
        }
        --countdown;
        ++m_nRecords;
        if (m_listener != nullptr && countdown <= 0) {
            reporter.SetNRecords(m_nRecords);
            m_listener->Notify(reporter);
            countdown = frequency;
        }
    } while (iter.Advance());
    if (m_listener != nullptr && countdown >= 1) {
        reporter.SetNRecords(m_nRecords);
        m_listener->Notify(reporter);
    }
    if (listwise)
        complete->Flush();
    else
        pairwise->Flush();

    for (int j = 0; j < k; ++j)
        m_varN[static_cast<std::size_t>(j)] = listwise ? complete->GetNCases() : pairwise->GetNCases(j);

    int firstFew = -1, firstConstant = -1, firstPerfect = -1;
    std::size_t p = 0;
    for (int a = 0; a + 1 < k; ++a) {
        for (int b = a + 1; b < k; ++b, ++p) {
            double n = 0.0, sxx = 0.0, syy = 0.0, sxy = 0.0;
            if (listwise) {
                n = complete->GetNCases();
                sxx = complete->GetXProd(a, a);
                syy = complete->GetXProd(b, b);
                sxy = complete->GetXProd(a, b);
            } else {
                const MCMath_850::MCPairwiseXProdData::Pair s = pairwise->GetPair(a, b);
                n = s.n;
                sxx = s.sumSqJ;
                syy = s.sumSqK;
                sxy = s.xprod;
            }
            m_pairN[p] = n;
            const int at = static_cast<int>(p);
            if (n < 2.0) {
                if (firstFew < 0) firstFew = at;
                continue;
            }
            if (!(sxx > 0.0) || !(syy > 0.0)) {
                if (firstConstant < 0) firstConstant = at;
                continue;
            }
            // Rounding may carry |r| a hair past 1; it is then a perfect
            // linear correlation.
            // sqrt(Sxx Syy) in one step where the product is a normal
            // double (so that exactly proportional data give exactly 1).
            const double product = sxx * syy;
            const double denominator = std::isnormal(product) ? std::sqrt(product) : std::sqrt(sxx) * std::sqrt(syy);
            const double r = std::clamp(sxy / denominator, -1.0, 1.0);
            ++m_validPairs;
            m_correlations[p] = MCMV::Sanitize(r);
            m_logSxxSyy[p] = MCMV::Sanitize(std::log(sxx) + std::log(syy));
            if (IsPerfectLinearCorrelation(r) && firstPerfect < 0) firstPerfect = at;
        }
    }
    for (const auto& [code, pair] : {std::pair{410006, firstFew}, std::pair{410008, firstConstant},
                                     std::pair{410009, firstPerfect}}) {
        if (pair < 0) continue;
        MCStatus w(code, true);
        w.SetDiscreteDatum(0, pair);
        w.SetDiscreteDatum(1, m_pairs[static_cast<std::size_t>(pair)].first);
        w.SetDiscreteDatum(2, m_pairs[static_cast<std::size_t>(pair)].second);
        m_warnings.AddWarning(w, nullptr);
    }
    return {};
}

void BSNPearsonCorrelationStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNPearsonCorrelationStats display start");
    DisplayIV("Variables", m_vars);
    DisplayI("Frequency Weight", m_weightVar);
    BSNComponentDisplay::DisplayC("Missing Scope", m_settings.GetMissScope());
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    DisplayI("Records", m_nRecords);
    DisplayI("Valid pairs", m_validPairs);
    DisplayVPII("VarPairIndices", m_pairs);
    DisplayDV("PearsonCorrelation", m_correlations);
    DisplayDV("VarPairRecordNumber", m_pairN);
    DisplayDV("VarRecordNumber", m_varN);
    DisplayDV("LogSxxSyy", m_logSxxSyy);
    DisplayText(0, "End of display BSNPearsonCorrelationStats object");
}

} // namespace MCBSN_850
