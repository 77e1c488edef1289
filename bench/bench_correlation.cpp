// Correlation benchmarks: every pair of many variables.
//
//   BSN_BENCH_VARS     variables (default 1000: 499,500 pairs)
//   BSN_BENCH_RECORDS  records (default 10,000)
//
// The data are in memory (columns), drawn from five latent factors so that
// the correlations spread over (-1, 1). The data pass is timed beside the
// cost of merely reading the same records; the whole analysis (JZS factors
// only, then factors and posteriors with 10,000 draws each) on one and two
// threads, with wall-clock and process CPU time, so that the scaling can
// be judged on a shared machine.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "bsn/correlation/bsnpearsoncorrelation.h"
#include "bsn/correlation/bsnpearsoncorrelationstats.h"
#include "platform/common/mcmv.h"
#include "platform/records/columnrecorditer.h"
#include "platform/threads/mcthreadpoolfactory.h"

using namespace MCBSN_850;

namespace {

int envInt(const char* name, int fallback) {
    const char* v = std::getenv(name);
    return v != nullptr ? std::atoi(v) : fallback;
}

int nVars() { return envInt("BSN_BENCH_VARS", 1000); }
int nRecords() { return envInt("BSN_BENCH_RECORDS", 10000); }

// Columns without and with missing values (each value missing with
// probability 0.002: with 1000 variables almost every record is incomplete).
struct Data {
    std::vector<std::vector<double>> complete, holes;
    Data() {
        const int p = nVars(), n = nRecords();
        std::mt19937_64 gen(2024);
        std::normal_distribution<double> z(0.0, 1.0);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        std::vector<std::vector<double>> loadings(static_cast<std::size_t>(p), std::vector<double>(5));
        for (auto& l : loadings)
            for (double& x : l) x = z(gen) * 0.6;
        complete.assign(static_cast<std::size_t>(p), std::vector<double>(static_cast<std::size_t>(n)));
        for (int r = 0; r < n; ++r) {
            double f[5];
            for (double& x : f) x = z(gen);
            for (int v = 0; v < p; ++v) {
                double x = 50.0 + z(gen);
                for (int k = 0; k < 5; ++k) x += loadings[v][k] * f[k];
                complete[v][r] = x;
            }
        }
        holes = complete;
        for (auto& col : holes)
            for (double& x : col)
                if (u(gen) < 0.002) x = MCCommon_850::MCMV::Missing();
    }
};

Data& data() {
    static Data d;
    return d;
}

std::vector<int> allVars() {
    std::vector<int> v(static_cast<std::size_t>(nVars()));
    for (int i = 0; i < nVars(); ++i) v[static_cast<std::size_t>(i)] = i;
    return v;
}

MCXML_850::MCVarList varList() {
    MCXML_850::MCVarList list;
    for (int i = 0; i < nVars(); ++i) list.Add(MCXML_850::MCContVar("v" + std::to_string(i)));
    return list;
}

BSNSettings settings(BSNConst::AnalysTypes type, BSNConst::MissScope scope) {
    BSNSettings s;
    s.SetModelType(BSNConst::Correlation, true);
    s.SetCovariates(allVars());
    s.SetAnalysType(type);
    s.SetMissScope(scope);
    return s;
}

// Reading alone: every value of every record touched once.
void BM_ReadRecords(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().complete);
    const int p = nVars();
    for (auto _ : state) {
        double sum = 0;
        iter.Reset();
        while (iter.Advance()) {
            const MCCommon_850::Record* r = iter.GetRecord();
            for (int v = 0; v < p; ++v) sum += r->GetValue(v);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * nRecords());
}

// The data pass and the pair statistics of every pair.
void dataPass(benchmark::State& state, BSNConst::MissScope scope, bool holes) {
    MCCommon_850::ColumnRecordIter iter(holes ? data().holes : data().complete);
    const BSNSettings s = settings(BSNConst::BayesFactor, scope);
    for (auto _ : state) {
        MCCommon_850::MCWarnings warnings;
        MCMath_850::MCCancelInfo cancel;
        BSNPearsonCorrelationStats stats(s, warnings, cancel);
        const MCCommon_850::MCStatus st = stats.Calculate(iter);
        if (st.IsError()) state.SkipWithError("pass failed");
        benchmark::DoNotOptimize(stats.GetCorrelation().data());
    }
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_PassListwise(benchmark::State& state) { dataPass(state, BSNConst::MissingListwise, false); }
void BM_PassPairwiseComplete(benchmark::State& state) { dataPass(state, BSNConst::MissingAnalysis, false); }
void BM_PassPairwiseHoles(benchmark::State& state) { dataPass(state, BSNConst::MissingAnalysis, true); }

// The whole analysis on state.range(0) threads.
void analysis(benchmark::State& state, BSNConst::AnalysTypes type) {
    MCCommon_850::ColumnRecordIter iter(data().complete);
    BSNSettings s = settings(type, BSNConst::MissingAnalysis);
    MCThread_850::MCThreadPoolFactory factory;
    s.SetThreadFactory(&factory);
    s.SetMaxThreadNum(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        BSNPearsonCorrelation procedure(s, varList());
        const MCCommon_850::MCStatus st = procedure.BuildModel(iter);
        if (st.IsError()) state.SkipWithError("analysis failed");
    }
    const double pairs = static_cast<double>(nVars()) * (nVars() - 1) / 2;
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * pairs));
}

void BM_JZSAllPairs(benchmark::State& state) { analysis(state, BSNConst::BayesFactor); }
void BM_JZSAndPosteriorAllPairs(benchmark::State& state) { analysis(state, BSNConst::Both); }

} // namespace

BENCHMARK(BM_ReadRecords)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassListwise)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassPairwiseComplete)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassPairwiseHoles)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JZSAllPairs)->Arg(1)->Arg(2)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(BM_JZSAndPosteriorAllPairs)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kSecond)
    ->Iterations(1)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

BENCHMARK_MAIN();
