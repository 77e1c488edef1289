#include "bsn/loglinear/bsnloglinbayesfactor.h"

#include <cmath>

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/common/mcmv.h"
#include "platform/common/mcpower.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCMath_850::MCDistFun;

namespace {

constexpr double kHalfLn2Pi = 0.91893853320467274178032973640562;

// lnΓ(z) for z > 0, and 0 for z <= 0: the positive-argument rule of the
// log multivariate beta.
double lgammaPositive(double z) { return z > 0.0 ? MCDistFun::quondnlgam(z) : 0.0; }

} // namespace

BSNLogLinBayesFactor::BSNLogLinBayesFactor(const BSNSettings& settings, const BSNContingency& table)
    : m_settings(settings), m_table(table), m_R(table.GetNRows()), m_C(table.GetNCols()),
      m_bayesFactor(MCMV::Missing()), m_logBayesFactor(MCMV::Missing()), m_cancelInfo(nullptr) {
    m_cancelInfo.SetCancelPtr(settings.GetCancelPointer());
}

BSNLogLinBayesFactor::~BSNLogLinBayesFactor() = default;

void BSNLogLinBayesFactor::ProcessLogBayesFactor(double logBF) {
    if (MCMV::IsMissing(logBF)) return;
    m_logBayesFactor = logBF;
    if (logBF >= MCMath_850::MCPower::gMachineMinExp && logBF <= MCMath_850::MCPower::gMachineMaxExp) {
        m_bayesFactor = std::exp(logBF);
        m_isLog = false;
        return;
    }
    m_bayesFactor = logBF;
    m_isLog = true;
    m_status = MCCommon_850::MCStatus(410041, true);
    m_warnings.AddWarning(m_status, nullptr);
}

double BSNLogLinBayesFactor::EntropyPart(double x) { return x > 0.0 ? x * std::log(x) - x : 0.0; }

double BSNLogLinBayesFactor::LogGammaExcess(double a, double x) {
    if (!(x > 0.0)) return 0.0;
    const double z = a + x;
    if (z <= 0.0) return -EntropyPart(x);
    // While x is no larger than the shape nothing large cancels.
    if (z < 10.0 || x <= a) return lgammaPositive(z) - lgammaPositive(a) - EntropyPart(x);
    // lnΓ(z) = (z - 1/2) ln z - z + ln √(2π) + ω(z) with ln z = ln x +
    // ln(1 + a/x): the x ln x - x of lnΓ(z) is taken out exactly, and what
    // is left is of the size of a ln x.
    return (a - 0.5) * std::log(x) + (z - 0.5) * std::log1p(a / x) - a + kHalfLn2Pi +
           MCDistFun::StirlingRemainder(z) - lgammaPositive(a);
}

double BSNLogLinBayesFactor::LogBetaRatioExcess(const std::vector<double>& a, const std::vector<double>& x) {
    double sum = 0.0, shapeSum = 0.0, countSum = 0.0, dropped = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double xi = i < x.size() ? x[i] : 0.0;
        sum += LogGammaExcess(a[i], xi);
        countSum += xi;
        if (a[i] > 0.0)
            shapeSum += a[i];
        else if (a[i] + xi > 0.0)
            dropped += a[i];  // enters B(a + x) but not B(a)
        else
            dropped -= xi;  // enters neither
    }
    // The total term lnΓ(Σ⁺(a + x)) - lnΓ(Σ⁺ a): Σ⁺(a + x) is shapeSum +
    // countSum + dropped, the last non-zero only for non-positive shapes.
    double total = LogGammaExcess(shapeSum, countSum);
    if (dropped != 0.0) total += lgammaPositive(shapeSum + countSum + dropped) - lgammaPositive(shapeSum + countSum);
    return sum - total;
}

void BSNLogLinBayesFactor::displayBase() const {
    using namespace MCDisplay_850;
    DisplayI("Number of rows", m_R);
    DisplayI("Number of columns", m_C);
    DisplayD("Bayes factor", m_bayesFactor);
    DisplayB("Is log Bayes factor", m_isLog);
    DisplayD("Log Bayes factor", m_logBayesFactor);
    DisplayI("T for intrinsic priors", m_T);
    DisplayI("T1 for intrinsic priors", m_T1);
    DisplayI("T2 for intrinsic priors", m_T2);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
}

void BSNLogLinBayesFactor::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "BSNLogLinBayesFactor display start");
    displayBase();
    MCDisplay_850::DisplayText(0, "End of display BSNLogLinBayesFactor object");
}

} // namespace MCBSN_850
