#include "bsn/correlation/bsnpearsoncorrelation.h"

#include <algorithm>
#include <atomic>
#include <ostream>

#include "bsn/correlation/bsncorrtask.h"
#include "bsn/correlation/bsnpearsoncorrelationoutputstats.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/frame/bsncorrreporter.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"
#include "platform/threads/mcthread.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

namespace {
// How often the calling thread reports pairs done while workers run.
constexpr int kProgressMilliseconds = 100;
} // namespace

BSNPearsonCorrelation::BSNPearsonCorrelation(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
    : BSNAlgorithm(settings, varList) {}

BSNPearsonCorrelation::~BSNPearsonCorrelation() = default;

MCStatus BSNPearsonCorrelation::BuildModel(MCCommon_850::MultiPassRecordIter& iter) {
    CheckSetting();
    if (m_status.IsError()) return FinishBuild();
    CalculateBasicStats(iter);
    if (m_status.IsError()) return FinishBuild();
    if (m_cancelInfo.WillCancel()) {
        m_status = MCStatus(1, false);
        return FinishBuild();
    }
    m_pairs = m_stats->GetVarIndexPair();
    m_correlations = m_stats->GetCorrelation();
    m_pairN = m_stats->GetVarPairN();
    m_varN = m_stats->GetVarN();
    m_logSxxSyy = m_stats->GetLogSxxSyy();
    m_nRecords = m_stats->GetNRecords();

    CalculateBFAndPosterior();
    if (m_status.IsError()) return FinishBuild();
    if (m_cancelInfo.WillCancel()) {
        m_status = MCStatus(1, false);
        return FinishBuild();
    }
    m_outputStats = std::make_unique<BSNPearsonCorrelationOutputStats>(m_settings, *this);
    return FinishBuild();
}

void BSNPearsonCorrelation::CheckSetting() {
    if (m_settings.GetCovariates().size() < 2) m_status = MCStatus(410004, false);
}

void BSNPearsonCorrelation::CalculateBasicStats(MCCommon_850::MultiPassRecordIter& iter) {
    m_stats = std::make_unique<BSNPearsonCorrelationStats>(m_settings, m_warnings, m_cancelInfo);
    m_stats->SetProgressListener(m_progressListener);
    m_stats->SetBlockSize(m_blockSize);
    TakeStageStatus(m_stats->Calculate(iter));
}

void BSNPearsonCorrelation::CalculateBFAndPosterior() {
    const std::size_t P = m_pairs.size();
    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    const bool factors = type != BSNConst::Posterior, posterior = type != BSNConst::BayesFactor;
    if (factors) {
        m_bayesFactors.assign(P, MCMV::Missing());
        m_logBayesFactors.assign(P, MCMV::Missing());
        m_isLog.assign(P, 0);
    }
    if (posterior)
        for (auto* v : {&m_modes, &m_means, &m_variances, &m_lowerBounds, &m_upperBounds}) v->assign(P, MCMV::Missing());
    const std::size_t plots = std::min(P, static_cast<std::size_t>(std::max(0, m_settings.GetMaxNPlots())));
    if (plots > 0) {
        const int n = std::max(0, m_settings.GetNPlotPoints());
        m_plotX.resize(static_cast<std::size_t>(n));
        // n points strictly inside (-1, 1), evenly spaced.
        for (int i = 0; i < n; ++i) m_plotX[static_cast<std::size_t>(i)] = -1.0 + (i + 1) * 2.0 / (n + 1);
        for (Curves* c : {&m_plotLogLikelihood, &m_plotPrior, &m_plotPosterior}) c->assign(plots, {});
    }
    if (P == 0) return;

    BSNCorrTask::Inputs in;
    in.pairs = &m_pairs;
    in.correlations = &m_correlations;
    in.ns = &m_pairN;
    in.logSxxSyy = &m_logSxxSyy;
    in.plotXAxis = &m_plotX;
    BSNCorrTask::Outputs out;
    out.bayesFactors = &m_bayesFactors;
    out.isLogBayesFactor = &m_isLog;
    out.logBayesFactors = &m_logBayesFactors;
    out.modes = &m_modes;
    out.means = &m_means;
    out.variances = &m_variances;
    out.lowerBounds = &m_lowerBounds;
    out.upperBounds = &m_upperBounds;
    out.plotLogLikelihood = &m_plotLogLikelihood;
    out.plotPrior = &m_plotPrior;
    out.plotPosterior = &m_plotPosterior;

    const unsigned long seed = m_settings.GetRandomSeed();
    const std::size_t K = static_cast<std::size_t>(std::max(1, m_settings.GetNPairsPerTask()));
    const bool serial =
        m_settings.GetThreadFactory() == nullptr || m_settings.GetMaxThreadNum() <= 1 || P < K + 1;
    std::vector<std::unique_ptr<BSNCorrTask>> tasks;
    if (serial) {
        tasks.push_back(std::make_unique<BSNCorrTask>(0, static_cast<int>(P), m_progressListener, m_settings,
                                                      m_cancelInfo, seed, in, out));
    } else {
        // T tasks of K pairs and one for the rest; the listener stays with
        // this thread.
        for (std::size_t first = 0; first < P; first += K)
            tasks.push_back(std::make_unique<BSNCorrTask>(static_cast<int>(first),
                                                          static_cast<int>(std::min(K, P - first)), nullptr,
                                                          m_settings, m_cancelInfo, seed, in, out));
    }
    runTasks(tasks, !serial);
    mergeTaskResults(tasks);
}

void BSNPearsonCorrelation::runTasks(std::vector<std::unique_ptr<BSNCorrTask>>& tasks, bool threaded) {
    const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
    const int steps = (type != BSNConst::Posterior ? 1 : 0) + (type != BSNConst::BayesFactor ? 1 : 0);
    std::atomic<long> pairSteps{0};
    for (auto& t : tasks) t->SetProgress(&pairSteps, steps, m_nRecords);
    m_nTasks = static_cast<int>(tasks.size());
    m_nThreads = 0;

    auto report = [&]() {
        if (m_progressListener == nullptr) return;
        BSNCorrReporter reporter(m_nRecords);
        reporter.SetNPairs(static_cast<int>(pairSteps.load(std::memory_order_relaxed) / std::max(1, steps)));
        m_progressListener->Notify(reporter);
    };

    MCThread_850::IMCThreadFactory* factory = m_settings.GetThreadFactory();
    MCThread_850::IMCThreadExecutor* executor = nullptr;
    if (threaded) {
        const int nThreads = std::min(static_cast<int>(tasks.size()), m_settings.GetMaxThreadNum());
        executor = factory->CreateExecutor(nThreads);
        std::vector<MCThread_850::IMCThreadTask*> list;
        for (auto& t : tasks) list.push_back(t.get());
        if (executor != nullptr && executor->Execute(list)) {
            m_nThreads = executor->GetNThreads();
            while (!executor->WaitFor(kProgressMilliseconds)) report();
            const int failed = executor->GetNFailedTasks();
            factory->ReleaseExecutor(executor);
            if (failed > 0) m_status = MCStatus(kTaskFailedCode, false);
            report();
            return;
        }
        // No executor to be had: the tasks run here, one after another.
        if (executor != nullptr) factory->ReleaseExecutor(executor);
        for (auto& t : tasks) {
            t->RunTask();
            report();
            if (t->GetStatus().IsError()) break;
        }
        return;
    }
    tasks.front()->RunTask();
    report();
}

void BSNPearsonCorrelation::mergeTaskResults(const std::vector<std::unique_ptr<BSNCorrTask>>& tasks) {
    if (!m_status.IsError()) {
        for (const auto& t : tasks)
            if (t->GetStatus().IsError()) {
                m_status = t->GetStatus();
                break;
            }
    }
    if (tasks.size() > 1 && m_cancelInfo.WillCancel()) m_status = MCStatus(1, false);

    // Each code once, from the first task that raised it: the list is then
    // the one a single task over all pairs would give.
    std::vector<int> seen;
    for (const auto& t : tasks) {
        for (const MCStatus& w : t->GetWarningMessages()) {
            if (std::find(seen.begin(), seen.end(), w.GetCode()) != seen.end()) continue;
            seen.push_back(w.GetCode());
            m_warnings.AddWarning(w, nullptr);
        }
        const std::vector<int>& failed = t->GetIndIntegralFailed();
        m_integralFailed.insert(m_integralFailed.end(), failed.begin(), failed.end());
    }
    for (int level = 0; level < 2; ++level) {
        for (const auto& t : tasks) {
            const BSNCorrTask::Truncation& cut = level == 0 ? t->GetTruncationNotice() : t->GetTruncationSevere();
            if (cut.pair < 0) continue;
            MCStatus w(level == 0 ? kTruncatedIntegralCode : kSeverelyTruncatedIntegralCode, true);
            w.SetDiscreteDatum(0, cut.pair);
            w.SetDiscreteDatum(1, m_pairs[static_cast<std::size_t>(cut.pair)].first);
            w.SetDiscreteDatum(2, m_pairs[static_cast<std::size_t>(cut.pair)].second);
            w.SetScaleDatum(0, cut.share);
            m_warnings.AddWarning(w, nullptr);
            break;
        }
    }
}

void BSNPearsonCorrelation::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNPearsonCorrelation display start");
    BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
    BSNComponentDisplay::DisplayC("Bayes Factor Type", m_settings.GetEstBFType());
    BSNComponentDisplay::DisplayC("Missing Scope", m_settings.GetMissScope());
    DisplayIV("Variables", m_settings.GetCovariates());
    DisplayI("Frequency Weight", m_settings.GetFrequencyWeightVar());
    DisplayB("Model Built", m_modelBuilt);
    BSNComponentDisplay::DisplayStatus("Status", m_status);
    BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
    DisplayI("Tasks", m_nTasks);
    DisplayI("Threads", m_nThreads);
    if (m_stats) m_stats->Display(os);
    DisplayDV("BayesFactor", m_bayesFactors);
    DisplayDV("LogBayesFactor", m_logBayesFactors);
    DisplayIV("Indices where Integral Failed", m_integralFailed);
    DisplayDV("PosteriorMode", m_modes);
    DisplayDV("PosteriorMean", m_means);
    DisplayDV("PosteriorVariance", m_variances);
    DisplayDV("PosteriorLowerBound", m_lowerBounds);
    DisplayDV("PosteriorUpperBound", m_upperBounds);
    DisplayDV("PlotXAxis", m_plotX);
    if (m_outputStats) m_outputStats->Display(os);
    DisplayText(0, "End of display BSNPearsonCorrelation object");
}

} // namespace MCBSN_850
