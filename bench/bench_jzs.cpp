// Cost of one JZS Bayes factor by quadrature and by Monte Carlo, against
// two baselines measured in the same run: 1000 evaluations of the
// integrand, and 10000 uniform draws.
#include <benchmark/benchmark.h>

#include <string>

#include "bsn/onesample/bayesfactordenomif.h"
#include "bsn/onesample/bayesfactoronesamplett.h"
#include "bsn/onesample/bayesfactoronesamplettmc.h"
#include "platform/random/mcrandomvalues.h"

namespace {

struct Case {
    double N, t;
};
const Case kCases[] = {{10.0, 0.0}, {30.0, 2.0}, {1000.0, 3.0}, {1e5, 1.0}, {1e9, 2.0}};

void setLabel(benchmark::State& state, const Case& c) {
    state.SetLabel("N=" + std::to_string(static_cast<long long>(c.N)) + " t=" + std::to_string(c.t).substr(0, 4));
}

void BM_IntegrandX1000(benchmark::State& state) {
    MCBSN_850::BayesFactorDenomIF f(30.0, 29.0, 2.0);
    for (auto _ : state) {
        double s = 0.0;
        for (int i = 1; i <= 1000; ++i) s += f.ComputeNI(0.01 * i);
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(BM_IntegrandX1000);

void BM_Uniform10000(benchmark::State& state) {
    MCMath_850::MCRandomValues r(2000000);
    for (auto _ : state) {
        double s = 0.0;
        for (int i = 0; i < 10000; ++i) s += r.GetUniform();
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(BM_Uniform10000);

void BM_JZSQuadrature(benchmark::State& state) {
    const Case& c = kCases[state.range(0)];
    const double tol = state.range(1) == 8 ? 1e-8 : 1e-6;
    int iterations = 0;
    for (auto _ : state) {
        MCBSN_850::BayesFactorOneSampleTT bf(c.N, c.N - 1.0, c.t);
        bf.SetTolerance(tol);
        benchmark::DoNotOptimize(bf.Compute());
        iterations = bf.GetNIterations();
    }
    state.counters["intervals"] = iterations;
    setLabel(state, c);
}
BENCHMARK(BM_JZSQuadrature)->ArgsProduct({{0, 1, 2, 3, 4}, {8, 6}});

// The log of the factor as the procedures compute it: a search for the
// integrand's peak, then the quadrature of the scaled integrand. The last
// case is one where the factor itself underflows.
void BM_JZSLogQuadrature(benchmark::State& state) {
    const Case c = state.range(0) < 5 ? kCases[state.range(0)] : Case{1e9, 100.0};
    int iterations = 0;
    for (auto _ : state) {
        MCBSN_850::BayesFactorOneSampleTT bf(c.N, c.N - 1.0, c.t);
        bf.SetTolerance(1e-6);
        benchmark::DoNotOptimize(bf.ComputeLog());
        iterations = bf.GetNIterations();
    }
    state.counters["intervals"] = iterations;
    setLabel(state, c);
}
BENCHMARK(BM_JZSLogQuadrature)->DenseRange(0, 5);

void BM_JZSMonteCarlo10000(benchmark::State& state) {
    const Case& c = kCases[state.range(0)];
    for (auto _ : state) {
        MCBSN_850::BayesFactorOneSampleTTMC bf(c.N, c.N - 1.0, c.t, 10000, 2000000);
        benchmark::DoNotOptimize(bf.Compute());
    }
    setLabel(state, c);
}
BENCHMARK(BM_JZSMonteCarlo10000)->DenseRange(0, 4);

} // namespace

BENCHMARK_MAIN();
