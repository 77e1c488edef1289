#pragma once
// BSN1SampleDiscreteProcedure: the build shared by the one-sample binomial
// and Poisson procedures. Both run one data pass and two kinds of worker:
// a Bayes-factor worker and a conjugate posterior worker, each keeping its
// own sums, status and warnings.
//
//   analysis type 0: the posterior worker makes its own pass and computes;
//   types 1 and 2:   the Bayes-factor worker makes the pass and computes;
//                    for type 2 a posterior worker then starts from the
//                    Bayes-factor worker's sums (no second pass).
//
// Every stage's status goes through TakeStageStatus; a worker's warnings are
// appended right after its computing stage, so the host sees them in the
// order raised. A cancellation noticed between stages skips the rest,
// including the result object.
#include <memory>
#include <ostream>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

template <class FactorWorker, class PosteriorWorker>
class BSN1SampleDiscreteProcedure : public BSNAlgorithm {
public:
    // The workers of the last build; null when their stage did not run.
    const FactorWorker* GetBayesFactorWorker() const { return m_bayesFactor.get(); }
    const PosteriorWorker* GetPosteriorWorker() const { return m_posterior.get(); }

    MCCommon_850::MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override {
        if (!MCCommon_850::HasAnyRecord(iter)) {
            m_status = MCCommon_850::MCStatus(410003, false);
            return FinishBuild();
        }
        if (runStages(iter) && !m_cancelInfo.WillCancel()) TakeStageStatus(GenerateOutput());
        return FinishBuild();
    }

protected:
    BSN1SampleDiscreteProcedure(const BSNSettings& settings, const MCXML_850::MCVarList& varList)
        : BSNAlgorithm(settings, varList) {}

    // Makes the result object from the workers and stores it in m_outputStats.
    virtual MCCommon_850::MCStatus GenerateOutput() = 0;

    // The body of Display(): the settings this procedure reads, build
    // state, workers and result.
    void displayBuild(std::ostream& os) const {
        using namespace MCDisplay_850;
        BSNComponentDisplay::DisplayC("Analysis Type", m_settings.GetAnalysType());
        BSNComponentDisplay::DisplayC("Prior Type", m_settings.GetPriorType());
        DisplayD("Prior Parameter 1", m_settings.GetPriorParam1());
        DisplayD("Prior Parameter 2", m_settings.GetPriorParam2());
        DisplayDV("Null Prior Parameter 1", m_settings.GetNullPrior1s());
        DisplayDV("Null Prior Parameter 2", m_settings.GetNullPrior2s());
        DisplayDV("Alter Prior Parameter 1", m_settings.GetAlterPrior1s());
        DisplayDV("Alter Prior Parameter 2", m_settings.GetAlterPrior2s());
        DisplayD("CI Level", m_settings.GetCILevel());
        DisplayI("N of plot points", m_settings.GetNPlotPoints());
        DisplayD("Level for plot domain", m_settings.GetPlotDomainLevel());
        DisplayI("Frequency Weight", m_settings.GetFrequencyWeightVar());
        DisplayB("Model built", m_modelBuilt);
        BSNComponentDisplay::DisplayStatus("Status", m_status);
        BSNComponentDisplay::DisplayVStatus("Warnings", m_warnings.GetAll());
        if (m_bayesFactor) m_bayesFactor->Display(os);
        if (m_posterior) m_posterior->Display(os);
        if (m_outputStats) m_outputStats->Display(os);
    }

    std::unique_ptr<FactorWorker> m_bayesFactor;
    std::unique_ptr<PosteriorWorker> m_posterior;

private:
    // One data pass feeding `worker`, then its end-of-pass check.
    template <class Worker>
    bool passOver(MCCommon_850::MultiPassRecordIter& iter, Worker& worker) {
        if (!TakeStageStatus(
                RunDataPass(iter, [&](const MCCommon_850::Record& r, double w) { worker.Update(r, w); })))
            return false;
        return TakeStageStatus(worker.EndDataPass()) && !m_cancelInfo.WillCancel();
    }

    template <class Worker, class Compute>
    bool computeStage(Worker& worker, Compute compute) {
        const bool ok = TakeStageStatus(compute(worker));
        AppendWarnings(worker.GetWarnings());
        return ok;
    }

    // False as soon as a stage ends in an error or a cancellation is pending.
    bool runStages(MCCommon_850::MultiPassRecordIter& iter) {
        const BSNConst::AnalysTypes type = m_settings.GetAnalysType();
        if (type == BSNConst::Posterior) {
            m_posterior = std::make_unique<PosteriorWorker>(m_settings);
            return passOver(iter, *m_posterior) &&
                   computeStage(*m_posterior, [](PosteriorWorker& w) { return w.Compute(); });
        }
        m_bayesFactor = std::make_unique<FactorWorker>(m_settings);
        if (!passOver(iter, *m_bayesFactor) ||
            !computeStage(*m_bayesFactor, [](FactorWorker& w) { return w.ComputeBFs(); }))
            return false;
        if (type != BSNConst::Both) return true;
        if (m_cancelInfo.WillCancel()) return false;
        m_posterior = std::make_unique<PosteriorWorker>(m_settings, m_bayesFactor->GetCounts());
        return computeStage(*m_posterior, [](PosteriorWorker& w) { return w.Compute(); });
    }
};

} // namespace MCBSN_850
