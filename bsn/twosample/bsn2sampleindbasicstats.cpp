#include "bsn/twosample/bsn2sampleindbasicstats.h"

#include <cmath>
#include <limits>
#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;

BSN2SampleIndBasicStats::BSN2SampleIndBasicStats(const std::vector<int>& testVars)
    : m_testVars(testVars), m_stats(testVars.size()) {}

void BSN2SampleIndBasicStats::Update(const MCCommon_850::Record& record) {
    const std::vector<int>& vars = m_testVars;
    for (std::size_t i = 0; i < m_stats.size(); ++i) m_stats[i].Update(record.GetValue(vars[i]));
}

bool BSN2SampleIndBasicStats::Update(const MCCommon_850::Record& record, double f, double w) {
    if (MCMV::IsMissing(f) || MCMV::IsMissing(w)) return false;
    const double rounded = std::floor(f + 0.5);
    if (!(rounded > 0.0) || !(w > 0.0)) return false;
    const std::vector<int>& vars = m_testVars;
    for (std::size_t i = 0; i < m_stats.size(); ++i) m_stats[i].Update(record.GetValue(vars[i]), rounded, w);
    return true;
}

std::vector<double> BSN2SampleIndBasicStats::GetNWeightedCases() const {
    std::vector<double> out;
    out.reserve(m_stats.size());
    for (const auto& s : m_stats) out.push_back(s.GetSumFreqWeights());
    return out;
}

std::vector<int> BSN2SampleIndBasicStats::GetNWeightedIntCases() const {
    constexpr double kIntMax = static_cast<double>(std::numeric_limits<int>::max());
    std::vector<int> out;
    out.reserve(m_stats.size());
    for (const auto& s : m_stats) {
        const double w = s.GetSumFreqWeights();
        out.push_back(w >= kIntMax ? std::numeric_limits<int>::max() : static_cast<int>(w));
    }
    return out;
}

std::vector<double> BSN2SampleIndBasicStats::GetMeans() const {
    std::vector<double> out;
    out.reserve(m_stats.size());
    for (const auto& s : m_stats) out.push_back(s.GetMean());
    return out;
}

std::vector<double> BSN2SampleIndBasicStats::GetVariances() const {
    std::vector<double> out;
    out.reserve(m_stats.size());
    for (const auto& s : m_stats) out.push_back(s.GetVariance());
    return out;
}

std::vector<double> BSN2SampleIndBasicStats::GetStdDevs() const {
    std::vector<double> out = GetVariances();
    for (double& v : out)
        if (!MCMV::IsMissing(v)) v = std::sqrt(v);
    return out;
}

std::vector<double> BSN2SampleIndBasicStats::GetStdErrors() const {
    std::vector<double> out = GetVariances();
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double w = m_stats[i].GetSumFreqWeights();
        out[i] = !MCMV::IsMissing(out[i]) && w > 0.0 ? std::sqrt(out[i] / w) : MCMV::Missing();
    }
    return out;
}

void BSN2SampleIndBasicStats::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSN2SampleIndBasicStats display start");
    DisplayIV("Test Variables", m_testVars);
    DisplayDV("Weighted Cases", GetNWeightedCases());
    DisplayDV("Means", GetMeans());
    DisplayDV("Variances", GetVariances());
    DisplayDV("Standard Errors", GetStdErrors());
    for (const auto& s : m_stats) s.Display(os);
    DisplayText(0, "End of display BSN2SampleIndBasicStats object");
}

} // namespace MCBSN_850
