#pragma once
// BSNPearsonCorrelation: the correlation procedure (model type 3). Every
// unordered pair of the analysis variables (the settings' covariates) gets
// its Pearson correlation from one pass over the records
// (BSNPearsonCorrelationStats), then, as the analysis type asks, its Bayes
// factor and the posterior of the population correlation with plot curves
// for the first GetMaxNPlots() pairs (BSNCorrTask).
//
// The pair work is cut into tasks of GetNPairsPerTask() pairs (and one
// remainder) and run on the host's thread factory when there is one, more
// than one thread is allowed and there are more pairs than one task holds;
// otherwise one task runs on the calling thread. Every task has the same
// seed, so a pair's Bayes factor does not depend on the split; its
// posterior draws do (the generator is seeded once per task). Task
// warnings are merged in task order, each code once (its first
// occurrence), so the warnings too are the same whatever the split.
//
// Progress: records during the pass, then pairs (BSNCorrReporter). With
// worker threads the listener is still called only on the calling thread,
// which reports the pairs done while it waits for the tasks.
#include <iosfwd>
#include <memory>
#include <utility>
#include <vector>

#include "bsn/correlation/bsnpearsoncorrelationstats.h"
#include "bsn/frame/bsnalgorithm.h"

namespace MCBSN_850 {

class BSNCorrTask;

class BSNPearsonCorrelation : public BSNAlgorithm {
public:
    using Curves = std::vector<std::vector<double>>;

    // Codes of our own: the JZS integral, cut at g = 1e6, leaves out more
    // than 1e-6 (resp. 1%) of the integrand's mass for some pair (datum 0
    // the first such pair, data 1 and 2 its variables, scale datum 0 the
    // share left out).
    static constexpr int kTruncatedIntegralCode = 420010;
    static constexpr int kSeverelyTruncatedIntegralCode = 420011;
    // The host's executor failed to run some task.
    static constexpr int kTaskFailedCode = 410001;

    BSNPearsonCorrelation(const BSNSettings& settings, const MCXML_850::MCVarList& varList);
    ~BSNPearsonCorrelation() override;

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override;
    void Display(std::ostream& os) const override;

    // The steps of BuildModel, each leaving its result in the status.
    void CheckSetting();
    void CalculateBasicStats(MCCommon_850::MultiPassRecordIter& iter);
    void CalculateBFAndPosterior();

    // Cases folded a block at a time in the data pass (0: the default).
    void SetBlockSize(int cases) { m_blockSize = cases; }

    // Results, one entry per pair in pair order (the Bayes-factor vectors
    // empty for analysis type 0, the posterior vectors for type 1); what
    // could not be computed is the missing value.
    const std::vector<std::pair<int, int>>& GetVarPairIndices() const { return m_pairs; }
    const std::vector<double>& GetCorrelations() const { return m_correlations; }
    const std::vector<double>& GetVarPairN() const { return m_pairN; }
    const std::vector<double>& GetVarN() const { return m_varN; }
    const std::vector<double>& GetLogSxxSyy() const { return m_logSxxSyy; }
    const std::vector<double>& GetBayesFactors() const { return m_bayesFactors; }
    const std::vector<double>& GetLogBayesFactors() const { return m_logBayesFactors; }
    // One byte per pair: 1 where the Bayes factor is stored as its log.
    const std::vector<unsigned char>& GetIsLogFlags() const { return m_isLog; }
    const std::vector<int>& GetIndIntegralFailed() const { return m_integralFailed; }
    const std::vector<double>& GetPosteriorModes() const { return m_modes; }
    const std::vector<double>& GetPosteriorMeans() const { return m_means; }
    const std::vector<double>& GetPosteriorVariances() const { return m_variances; }
    const std::vector<double>& GetPosteriorLowerBounds() const { return m_lowerBounds; }
    const std::vector<double>& GetPosteriorUpperBounds() const { return m_upperBounds; }
    const std::vector<double>& GetPlotXAxis() const { return m_plotX; }
    const Curves& GetPlotLogLikelihood() const { return m_plotLogLikelihood; }
    const Curves& GetPlotPrior() const { return m_plotPrior; }
    const Curves& GetPlotPosterior() const { return m_plotPosterior; }
    // How the pair work was run: tasks made and threads asked for (0 when
    // run on the calling thread).
    int GetNTasks() const { return m_nTasks; }
    int GetNThreads() const { return m_nThreads; }

private:
    void runTasks(std::vector<std::unique_ptr<BSNCorrTask>>& tasks, bool threaded);
    void mergeTaskResults(const std::vector<std::unique_ptr<BSNCorrTask>>& tasks);

    int m_blockSize = 0;
    std::unique_ptr<BSNPearsonCorrelationStats> m_stats;
    std::vector<std::pair<int, int>> m_pairs;
    std::vector<double> m_correlations, m_pairN, m_varN, m_logSxxSyy;
    std::vector<double> m_bayesFactors, m_logBayesFactors;
    std::vector<unsigned char> m_isLog;
    std::vector<int> m_integralFailed;
    std::vector<double> m_modes, m_means, m_variances, m_lowerBounds, m_upperBounds;
    std::vector<double> m_plotX;
    Curves m_plotLogLikelihood, m_plotPrior, m_plotPosterior;
    int m_nRecords = 0;
    int m_nTasks = 0;
    int m_nThreads = 0;
};

} // namespace MCBSN_850
