#pragma once
// BSNCorrTask: the Bayes factors, posteriors and plot curves of a run of
// consecutive variable pairs, [first pair, first pair + number of pairs).
// The correlation procedure makes one task (run on its own thread) or
// several (run on the host's threads). A task reads the procedure's shared
// per-pair inputs and writes only its own pairs' entries of the shared
// result vectors; everything else it uses (status, warnings, quadrature,
// random generators, scratch) is its own, so tasks never wait for each
// other and take no lock.
//
// JZS factor (EstBFType 0): BF = sqrt(pi) / (sqrt(n/2) I), with I the
// integral over g in [eps, 1e6] of the integrand of JZSFunction, computed
// on the log scale (log BF is kept beside BF). The factor is never stored
// as a logarithm.
// Fractional factor (other EstBFType): log BF from the null model's
// integrals over V (FractionFunctionG1V, adaptive quadrature) and the
// alternative's integrals over (V, rho) (BayesFactor2DimMC, Monte Carlo with
// the task's seed); where |log BF| leaves the exponent range the logarithm
// is stored and flagged, with warning 410041 once.
// Posterior: M draws of z from the normal approximation on Fisher's scale,
// rho = tanh z; mean, divide-by-M variance, the mode among the draws of
// the posterior kernel c log(1-rho^2) + (n-1)/2 log(1-rho^2)
// - (n-3/2) log(1 - rho r), and the narrowest interval spanning
// floor(L M / 100) + 1 sorted draws. The generator is seeded once per task.
#include <atomic>
#include <iosfwd>
#include <utility>
#include <vector>

#include "bsn/correlation/fractionfunctiong1v.h"
#include "bsn/correlation/jzsfunction.h"
#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mccancelinfo.h"
#include "platform/progress/progress.h"
#include "platform/quadrature/lobattoquad.h"
#include "platform/random/mcrandomvalues.h"
#include "platform/threads/mcthread.h"

namespace MCBSN_850 {

class BSNCorrTask : public MCThread_850::IMCThreadTask {
public:
    // Limits of the JZS integral over g.
    static constexpr double kEpsilon = 2.220446049250313e-16;
    static constexpr double kUpperG = 1000000.0;
    // Shares of the JZS integrand's mass beyond g = 1e6 that are reported:
    // more than 1e-6 of the integral (the factor is not the factor over the
    // whole range to six digits), and more than 1% (it is far from it).
    static constexpr double kTruncationNotice = 1e-6;
    static constexpr double kTruncationSevere = 1e-2;

    // The procedure's per-pair vectors a task reads.
    struct Inputs {
        const std::vector<std::pair<int, int>>* pairs = nullptr;
        const std::vector<double>* correlations = nullptr;
        const std::vector<double>* ns = nullptr;
        const std::vector<double>* logSxxSyy = nullptr;
        const std::vector<double>* plotXAxis = nullptr;
    };
    // The procedure's result vectors, sized beforehand (a vector a stage
    // does not fill may be empty). The is-log flags are bytes, so that
    // neighbouring pairs of different tasks never share a memory location.
    struct Outputs {
        std::vector<double>* bayesFactors = nullptr;
        std::vector<unsigned char>* isLogBayesFactor = nullptr;
        std::vector<double>* logBayesFactors = nullptr;
        std::vector<double>* modes = nullptr;
        std::vector<double>* means = nullptr;
        std::vector<double>* variances = nullptr;
        std::vector<double>* lowerBounds = nullptr;
        std::vector<double>* upperBounds = nullptr;
        std::vector<std::vector<double>>* plotLogLikelihood = nullptr;
        std::vector<std::vector<double>>* plotPrior = nullptr;
        std::vector<std::vector<double>>* plotPosterior = nullptr;
    };
    // The first pair of the task whose JZS integrand has more than a given
    // share of its mass beyond g = 1e6, and that share.
    struct Truncation {
        int pair = -1;
        double share = 0.0;
    };

    // listener: notified of pairs done from the thread running the task
    // (give one only when that is the host's thread); may be null.
    BSNCorrTask(int firstPair, int nPairs, MCCommon_850::ProgressListener* listener, const BSNSettings& settings,
                MCMath_850::MCCancelInfo& cancelInfo, unsigned long seed, const Inputs& inputs,
                const Outputs& outputs);
    BSNCorrTask(const BSNCorrTask&) = delete;
    BSNCorrTask& operator=(const BSNCorrTask&) = delete;

    // Progress: a counter of pair steps (one per pair and stage) shared by
    // all tasks, the steps per pair, and the record count the reports carry.
    void SetProgress(std::atomic<long>* pairSteps, int stepsPerPair, int nRecords);

    // Bayes factors (unless analysis type 0), then the posterior (unless
    // type 1). Always true: what went wrong is in GetStatus().
    bool RunTask() override;

    void ComputeBayesFactorJZS();
    void ComputeBayesFactorFraction();
    void ComputePosterior();

    // The integral of the current integrand over [a, b]; a quadrature that
    // did not converge adds its warning (once per task) and the pair to
    // GetIndIntegralFailed.
    double Calculate1DIntegral(double a, double b, int pairIndex);
    // Sets the null model's integrand (likelihood power m) that
    // Calculate1DIntegralG1V integrates; returns its log factor log F1.
    double SetNullIntegrand(double m, double r, double rho0);
    // The null model's integral over V in [eps, 1e6] (split at 0.5, 1, 2).
    double Calculate1DIntegralG1V(int pairIndex);
    void CalculatePosterior(double r, double n, int pairIndex);
    // The log posterior kernel of rho.
    double CalculateModeProb(double rho, double r, double n) const;
    void CalculatePlot(double r, double n, int pairIndex);

    int GetFirstPairIndex() const { return m_firstPair; }
    int GetNPairs() const { return m_nPairs; }
    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }
    const MCCommon_850::MCWarnings& GetWarningMessages() const { return m_warnings; }
    const std::vector<int>& GetIndIntegralFailed() const { return m_integralFailed; }
    const Truncation& GetTruncationNotice() const { return m_truncation[0]; }
    const Truncation& GetTruncationSevere() const { return m_truncation[1]; }

    void Display(std::ostream& os) const;

private:
    // Forwards the quadrature to whichever integrand is in use.
    class CurrentIntegrand : public MCMath_850::IIntegrand {
    public:
        MCMath_850::IIntegrand* target = nullptr;
        double ComputeNI(double x) override { return target->ComputeNI(x); }
    };

    bool cancelled();
    void pairDone();
    bool validPair(int i, double& r, double& n) const;
    void checkTruncation(int pairIndex, double scaledIntegral);
    double integrate(MCMath_850::IIntegrand& f, double a, double b, bool* failed);
    // The `count` smallest and largest draws, each ascending, into the
    // tail buffers; false when the quick cut did not keep enough of them.
    bool selectTails(double mu, double sd, std::size_t count);

    int m_firstPair;
    int m_nPairs;
    MCCommon_850::ProgressListener* m_listener;
    const BSNSettings& m_settings;
    MCMath_850::MCCancelInfo& m_cancelInfo;
    unsigned long m_seed;
    Inputs m_in;
    Outputs m_out;

    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
    CurrentIntegrand m_current;
    MCMath_850::LobattoQuad m_quad;
    MCMath_850::MCRandomValues m_random;
    double m_c;
    std::vector<int> m_integralFailed;
    bool m_quadWarned = false;
    Truncation m_truncation[2];
    JZSFunction m_jzs;
    FractionFunctionG1V m_g1v;
    std::vector<double> m_draws;
    std::vector<double> m_lowTail, m_highTail;

    std::atomic<long>* m_pairSteps = nullptr;
    int m_stepsPerPair = 1;
    int m_nRecords = 0;
};

} // namespace MCBSN_850
