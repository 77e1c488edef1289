#include "bsn/loglinear/bsnloglinear.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <iostream>

#include <boost/math/distributions/chi_squared.hpp>

#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/loglinear/bsnloglinconjugatebf.h"
#include "bsn/loglinear/bsnloglindirichletbf.h"
#include "bsn/loglinear/bsnloglinearoutputstats.h"
#include "bsn/loglinear/bsnloglinintrinsicbf.h"
#include "bsn/loglinear/bsnloglinnonparametricbf.h"
#include "bsn/loglinear/bsnloglinposterior.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/dist/mcdistfun.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;
using MCMath_850::MCTestStats;

namespace {

// P(χ²_df > x), from the upper tail itself so that small significances
// keep their digits (1 - P(χ² <= x) would round them to 0).
double chiSquareSignificance(double x, double df) {
    if (MCMV::IsMissing(x) || MCMV::IsMissing(df) || !(df > 0.0)) return MCMV::Missing();
    if (x <= 0.0) return 1.0;
    namespace bm = boost::math;
    using NoThrow = bm::policies::policy<bm::policies::domain_error<bm::policies::ignore_error>,
                                         bm::policies::overflow_error<bm::policies::ignore_error>,
                                         bm::policies::underflow_error<bm::policies::ignore_error>,
                                         bm::policies::evaluation_error<bm::policies::ignore_error>>;
    return MCMV::Sanitize(bm::cdf(bm::complement(bm::chi_squared_distribution<double, NoThrow>(df), x)));
}

MCTestStats chiSquareTest(double statistic, double df) {
    MCTestStats t;
    t.SetWald(MCMV::Sanitize(statistic));
    t.SetDF(df);
    t.SetTestType(MCTestStats::ChiSquare);
    const double sig = chiSquareSignificance(statistic, df);
    if (!MCMV::IsMissing(sig)) t.SetSig(sig);
    return t;
}

// Probabilities this close to the point probability count as equal to it:
// tables that are mirror images of each other have equal probabilities in
// theory, and computed ones agree to about 1e-13.
constexpr double kTieTolerance = 1e-9;

double roundHalfUp(double x) { return std::floor(x + 0.5); }

} // namespace

BSNLogLinear::BSNLogLinear(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSNAlgorithm(settings, varList), m_fisher1(MCMV::Missing()), m_fisher2(MCMV::Missing()),
      m_bayesFactor(MCMV::Missing()), m_logBayesFactor(MCMV::Missing()) {}

BSNLogLinear::~BSNLogLinear() = default;

MCStatus BSNLogLinear::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    const std::vector<int>& factors = m_settings.GetFactors();
    const BSNConst::AnalysTypes analysis = m_settings.GetAnalysType();
    if (factors.size() != 2 || m_settings.GetFactorSizes().size() != 2) {
        m_status = MCStatus(410049, false);
        m_status.SetDiscreteDatum(0, static_cast<int>(factors.size()));
        return FinishBuild();
    }
    if (analysis != BSNConst::Posterior && m_settings.GetLogLinModel() == BSNConst::Nonparametric &&
        m_settings.GetFixType() == BSNConst::FixedTotal) {
        m_status = MCStatus(410056, false);
        return FinishBuild();
    }
    if (!MCCommon_850::HasAnyRecord(iter)) {
        m_status = MCStatus(410003, false);
        return FinishBuild();
    }

    m_table = std::make_unique<BSNContingency>(factors, m_settings.GetFactorSizes(),
                                               m_settings.GetFrequencyWeightVar(), m_cancelInfo);
    const MCStatus tableStatus = m_table->BuildModel(iter, m_progressListener, m_settings.GetProgressFrequency());
    m_nRowsUsed = static_cast<int>(m_table->GetNonEmptyRows().size());
    m_nColsUsed = static_cast<int>(m_table->GetNonEmptyCols().size());
    if (m_table->GetNInvalidRecords() > 0) {
        MCStatus dropped(420040, true);
        dropped.SetDiscreteDatum(0, static_cast<int>(std::min<std::int64_t>(m_table->GetNInvalidRecords(), INT_MAX)));
        m_warnings.AddWarning(dropped, nullptr);
    }
    if (tableStatus.IsWarning()) m_warnings.AddWarning(tableStatus, nullptr);

    if (tableStatus.IsOK()) {
        if (!TakeStageStatus(ComputeTests()) || m_cancelInfo.WillCancel()) return FinishBuild();
        if (analysis != BSNConst::Posterior &&
            (!TakeStageStatus(ComputeBayesFactor()) || m_cancelInfo.WillCancel()))
            return FinishBuild();
        if (analysis != BSNConst::BayesFactor &&
            (!TakeStageStatus(ComputePosterior()) || m_cancelInfo.WillCancel()))
            return FinishBuild();
    } else if (!(tableStatus.IsWarning() && (m_nRowsUsed == 1 || m_nColsUsed == 1))) {
        m_status = tableStatus.IsError() ? tableStatus : MCStatus();
        return FinishBuild();
    }
    m_outputStats = std::make_unique<BSNLogLinearOutputStats>(m_settings, *this);
    return FinishBuild();
}

MCStatus BSNLogLinear::ComputeTests() {
    const BSNContingency& t = *m_table;
    const double df = static_cast<double>(m_nRowsUsed - 1) * (m_nColsUsed - 1);
    m_chiSquare = chiSquareTest(t.ComputePearson(), df);
    m_likeRatio = chiSquareTest(2.0 * t.ComputeInformation(), df);

    const std::vector<int>& sizes = m_settings.GetFactorSizes();
    if (sizes[0] != 2 || sizes[1] != 2) return {};
    const auto& c = t.GetAllCounts();
    const double n = t.GetTotalWeight();
    const double d = BSNContingency::CrossDifference(c[0][0], c[1][1], c[0][1], c[1][0]);
    const bool positive = !(d <= 0.0);
    const double absD = std::fabs(d);
    double statistic = 0.0;
    if (absD > n / 2.0) {
        const auto& r = t.GetRowTotals();
        const auto& k = t.GetColTotals();
        statistic = (absD - n / 2.0) * (absD - n / 2.0) * n / (k[0] * k[1] * r[0] * r[1]);
    }
    m_contCorrect = chiSquareTest(statistic, 1.0);
    return ComputeExactTests(positive);
}

MCStatus BSNLogLinear::ComputeExactTests(bool positive) {
    const auto& c = m_table->GetAllCounts();
    const std::array<double, 2> sig = FisherExact(c[0][0], c[0][1], c[1][0], c[1][1], positive);
    m_fisher1 = sig[0];
    m_fisher2 = sig[1];
    return {};
}

std::array<double, 2> BSNLogLinear::FisherExact(double c11, double c12, double c21, double c22, bool positive) {
    // Weights need not be whole: the test takes the counts rounded half up.
    c11 = roundHalfUp(c11);
    c12 = roundHalfUp(c12);
    c21 = roundHalfUp(c21);
    c22 = roundHalfUp(c22);
    const double n = c11 + c12 + c21 + c22;
    const double r1 = c11 + c12, r2 = c21 + c22, k1 = c11 + c21, k2 = c12 + c22;
    double x, rows, cols;
    if (positive) {
        const bool upper = c12 < c21;
        x = upper ? c12 : c21;
        rows = upper ? r1 : r2;
        cols = upper ? k2 : k1;
    } else {
        const bool second = c22 < c11;
        x = second ? c22 : c11;
        rows = second ? r2 : r1;
        cols = second ? k2 : k1;
    }
    const double oneSided = MCDistFun::CDFHyper(x, n, rows, cols);
    if (MCMV::IsMissing(oneSided)) return {MCMV::Missing(), MCMV::Missing()};
    // The probability of the table itself, P(X = x); computed directly, it
    // keeps its digits where the difference of two distribution values near
    // 1 would not.
    const double p = MCDistFun::PdfHyper(x, n, rows, cols);
    const double top = std::min(rows, cols);
    if (top <= x) return {oneSided, 1.0};

    // Stepping y down from the top while P(y) <= p ends at the largest y
    // with P(y) > p. The probabilities rise up to the mode and fall after
    // it, so that y lies at or above the mode and is found by bisection; if
    // even the mode is not above p, or x is past the mode, every y > x is
    // at most p and the test gives 1.
    const long double mode = std::floor((static_cast<long double>(rows) + 1) * (static_cast<long double>(cols) + 1) /
                                        (static_cast<long double>(n) + 2));
    const double threshold = p * (1.0 + kTieTolerance);
    const auto above = [&](double y) { return MCDistFun::PdfHyper(y, n, rows, cols) > threshold; };
    const double start = std::max(static_cast<double>(mode), x + 1.0);
    if (x >= mode || !above(start)) return {oneSided, 1.0};
    double lo = start, hi = top;
    if (above(hi)) {
        lo = hi;
    } else {
        while (hi - lo > 1.0) {
            const double mid = std::floor(lo + (hi - lo) / 2.0);
            (above(mid) ? lo : hi) = mid;
        }
    }
    // P(X > y) = P(C - X < C - y): the failures drawn are hypergeometric
    // with the roles of successes and failures exchanged.
    const double upperTail = MCDistFun::CDFHyper(cols - lo - 1.0, n, n - rows, cols);
    return {oneSided, std::min(1.0, oneSided + upperTail)};
}

MCStatus BSNLogLinear::ComputeBayesFactor() {
    const int rows = m_table->GetNRows(), cols = m_table->GetNCols();
    const BSNConst::FixType fix = m_settings.GetFixType();
    std::unique_ptr<BSNLogLinBayesFactor> factor;
    switch (m_settings.GetLogLinModel()) {
    case BSNConst::Poisson:
        factor = std::make_unique<BSNLogLinConjugateBF>(m_settings, *m_table);
        break;
    case BSNConst::Nonparametric:
        if ((fix == BSNConst::FixedRow && rows == 2) || (fix == BSNConst::FixedColumn && cols == 2)) {
            factor = std::make_unique<BSNLogLinNonParametricBF>(m_settings, *m_table);
        } else {
            m_warnings.AddWarning(MCStatus(410054, true), nullptr);
            factor = std::make_unique<BSNLogLinDirichletBF>(m_settings, *m_table);
        }
        break;
    default:
        switch (m_settings.GetLogLinPriorType()) {
        case BSNConst::LogLinConjugate:
            factor = std::make_unique<BSNLogLinConjugateBF>(m_settings, *m_table);
            break;
        case BSNConst::LogLinDirichlet:
            factor = std::make_unique<BSNLogLinDirichletBF>(m_settings, *m_table);
            break;
        case BSNConst::LogLinIntrinsic:
            if (rows < 3 && cols < 3) {
                factor = std::make_unique<BSNLogLinIntrinsicBF>(m_settings, *m_table);
            } else {
                m_warnings.AddWarning(MCStatus(410053, true), nullptr);
                factor = std::make_unique<BSNLogLinDirichletBF>(m_settings, *m_table);
            }
            break;
        default:
            std::cout << "\nThe Requested Method is Not Ready Yet!\n";
            return {};
        }
    }
    const MCStatus status = factor->GetStatus();
    if (status.IsError()) return status;
    if (status.IsWarning()) {
        m_warnings.AddWarning(status, nullptr);
        return {};
    }
    factor->ComputeBayesFactor();
    if (factor->GetStatus().IsError()) return factor->GetStatus();
    m_bayesFactor = factor->GetBayesFactor();
    m_isLogBayesFactor = factor->IsLogBayesFactor();
    m_logBayesFactor = factor->GetLogBayesFactor();
    AppendWarnings(factor->GetWarnings());
    m_T = factor->GetT();
    m_T1 = factor->GetT1();
    m_T2 = factor->GetT2();
    return {};
}

MCStatus BSNLogLinear::ComputePosterior() {
    BSNLogLinPosterior posterior(m_settings, m_table->GetAllCounts(), m_table->GetNonEmptyRows(),
                                 m_table->GetNonEmptyCols());
    const MCStatus status = posterior.Compute();
    m_estimations = posterior.GetEstimations();
    m_pairs = posterior.GetPairs();
    m_plotArguments = posterior.GetPlotArguments();
    m_plotDensities = posterior.GetPlotDensities();
    return status;
}

void BSNLogLinear::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNLogLinear display start");
    BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
    BSNComponentDisplay::DisplayC("Model type", m_settings.GetLogLinModel());
    BSNComponentDisplay::DisplayC("Prior type", m_settings.GetLogLinPriorType());
    BSNComponentDisplay::DisplayC("Fix type", m_settings.GetFixType());
    DisplayIV("Factors", m_settings.GetFactors());
    DisplayIV("Factor sizes", m_settings.GetFactorSizes());
    DisplayI("Frequency Weight", m_settings.GetFrequencyWeightVar());
    if (m_table) m_table->Display(os);
    DisplayI("Non-empty rows", m_nRowsUsed);
    DisplayI("Non-empty columns", m_nColsUsed);
    DisplayText(0, "Chi Square statistic");
    m_chiSquare.Display(os);
    DisplayText(0, "Likelihood ratio statistic");
    m_likeRatio.Display(os);
    DisplayText(0, "Continuity correction statistic");
    m_contCorrect.Display(os);
    DisplayD("Fisher one-sided significance", m_fisher1);
    DisplayD("Fisher two-sided significance", m_fisher2);
    DisplayD("Bayes factor", m_bayesFactor);
    DisplayB("Is log Bayes factor", m_isLogBayesFactor);
    DisplayD("Log Bayes factor", m_logBayesFactor);
    DisplayI("T for intrinsic priors", m_T);
    DisplayI("T1 for intrinsic priors", m_T1);
    DisplayI("T2 for intrinsic priors", m_T2);
    DisplayI("Number of pairs", static_cast<int>(m_pairs.size()));
    DisplayB("Model built", m_modelBuilt);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    if (m_outputStats) m_outputStats->Display(os);
    DisplayText(0, "End of display BSNLogLinear object");
}

} // namespace MCBSN_850
