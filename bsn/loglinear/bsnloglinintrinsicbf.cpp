#include "bsn/loglinear/bsnloglinintrinsicbf.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {

int roundHalfUp(double x) { return static_cast<int>(std::floor(x + 0.5)); }

// Beyond this many pairs of training samples (T of about 120,000) the sum
// would run for minutes: the factor is not computed (warning 410059).
constexpr double kMaxTrainingPairs = 4e9;

// ln of the rising factorial a (a + 1) ... (a + k - 1) for k = 0..n, by
// running sums: exact to the last bits however large a is, where
// lnΓ(a + k) - lnΓ(a) would lose six digits at a = 1e9.
std::vector<double> logRising(double a, int n) {
    std::vector<double> out(static_cast<std::size_t>(n) + 1, 0.0);
    for (int k = 1; k <= n; ++k) out[k] = out[k - 1] + std::log(a + (k - 1));
    return out;
}

} // namespace

BSNLogLinIntrinsicBF::BSNLogLinIntrinsicBF(const BSNSettings& settings, const BSNContingency& table)
    : BSNLogLinBayesFactor(settings, table), m_fixType(settings.GetFixType()) {
    if (m_R != 2 || m_C != 2) {
        m_status = MCStatus(410053, true);
        return;
    }
    const auto& o = table.GetAllCounts();
    const bool byColumn = m_fixType == BSNConst::FixedColumn;
    for (int g = 0; g < 2; ++g) {
        m_successes[g] = byColumn ? o[0][g] : o[g][0];
        m_failures[g] = byColumn ? o[1][g] : o[g][1];
    }
    const double n = table.GetTotalWeight();
    const int given = settings.GetLogLinIntrinsicT();
    m_T = given >= 2 ? given : roundHalfUp(std::min(n, 1000.0));
    m_T1 = n > 0.0 ? roundHalfUp(m_T * (m_successes[0] + m_failures[0]) / n) : 0;
    m_T1 = std::clamp(m_T1, 0, m_T);
    m_T2 = m_T - m_T1;
}

BSNLogLinIntrinsicBF::~BSNLogLinIntrinsicBF() = default;

// ln m0 - ln m1 with, per group g, x_g successes of n_g:
//   m0 = B(1 + s, 1 + f), s and f the successes and failures of both;
//   m1 = Σ_y w(y) Π_g [B(1 + y_g + x_g, 1 + T_g - y_g + n_g - x_g) - B(1 + y_g, 1 + T_g - y_g)].
// The y-free parts K_g = B(1 + x_g, 1 + n_g - x_g) are taken out of m1 and
// set against m0: m0 - K_1 - K_2 is a sum of log-gamma excesses less I of
// the 2×2 table of the groups (its entropy parts are those of that table).
// What is left in each term of m1 is
//   ln C(T_g, y) + ln(1 + x_g)_y + ln(1 + n_g - x_g)_(T_g - y) - ln(2 + n_g)_T_g - B(1 + y, 1 + T_g - y)
// in rising factorials of at most T_g factors, plus B(1 + y1 + y2, 1 + T - y1 - y2) of the weight.
double BSNLogLinIntrinsicBF::ComputeBayesFactor() {
    if (!m_status.IsOK()) return m_bayesFactor;
    const int T = m_T, Tg[2] = {m_T1, m_T2};
    if ((Tg[0] + 1.0) * (Tg[1] + 1.0) > kMaxTrainingPairs) {
        m_status = MCStatus(410059, true);
        m_warnings.AddWarning(m_status, nullptr);
        return m_bayesFactor;
    }
    std::vector<double> logFactorial(static_cast<std::size_t>(T) + 2);
    for (int k = 0; k <= T + 1; ++k) logFactorial[k] = MCMath_850::MCDistFun::quondnlgam(k + 1.0);
    const auto lbeta1 = [&](int y, int t) { return logFactorial[y] + logFactorial[t - y] - logFactorial[t + 1]; };

    std::vector<double> groupTerms[2];
    for (int g = 0; g < 2; ++g) {
        const int t = Tg[g];
        const double x = m_successes[g], f = m_failures[g];
        const std::vector<double> up = logRising(1.0 + x, t), down = logRising(1.0 + f, t);
        const double all = logRising(2.0 + x + f, t)[t];
        groupTerms[g].resize(static_cast<std::size_t>(t) + 1);
        for (int y = 0; y <= t; ++y)
            groupTerms[g][y] = logFactorial[t] - logFactorial[y] - logFactorial[t - y] + up[y] + down[t - y] - all -
                               lbeta1(y, t);
    }
    std::vector<double> weight(static_cast<std::size_t>(T) + 1);
    for (int s = 0; s <= T; ++s) weight[s] = lbeta1(s, T);

    // ln Σ exp(term), by the largest term.
    double largest = -HUGE_VAL;
    for (int y1 = 0; y1 <= Tg[0]; ++y1)
        for (int y2 = 0; y2 <= Tg[1]; ++y2)
            largest = std::max(largest, groupTerms[0][y1] + groupTerms[1][y2] + weight[y1 + y2]);
    double sum = 0.0;
    for (int y1 = 0; y1 <= Tg[0]; ++y1) {
        if (m_cancelInfo.IsCancel()) {
            m_status = MCStatus(1, false);
            return m_bayesFactor = MCMV::Missing();
        }
        const double rowTerm = groupTerms[0][y1] - largest;
        for (int y2 = 0; y2 <= Tg[1]; ++y2) sum += std::exp(rowTerm + groupTerms[1][y2] + weight[y1 + y2]);
    }
    const double logM1 = largest + std::log(sum);

    const double s = m_successes[0] + m_successes[1], f = m_failures[0] + m_failures[1], n = s + f;
    double logM0 = LogGammaExcess(1.0, s) + LogGammaExcess(1.0, f) - LogGammaExcess(2.0, n);
    for (int g = 0; g < 2; ++g)
        logM0 -= LogGammaExcess(1.0, m_successes[g]) + LogGammaExcess(1.0, m_failures[g]) -
                 LogGammaExcess(2.0, m_successes[g] + m_failures[g]);
    const BSNContingency groups({{m_successes[0], m_failures[0]}, {m_successes[1], m_failures[1]}});
    logM0 -= groups.ComputeInformation();
    ProcessLogBayesFactor(MCMV::Sanitize(logM0 - logM1));
    return m_bayesFactor;
}

void BSNLogLinIntrinsicBF::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNLogLinIntrinsicBF display start");
    displayBase();
    BSNComponentDisplay::DisplayC("Fix type", m_fixType);
    DisplayDV("Group successes", {m_successes[0], m_successes[1]});
    DisplayDV("Group failures", {m_failures[0], m_failures[1]});
    DisplayText(0, "End of display BSNLogLinIntrinsicBF object");
}

} // namespace MCBSN_850
