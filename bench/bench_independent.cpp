// Independent-samples benchmarks: the data pass next to the cost of merely
// reading the same records (in memory and from a CSV file, in the same
// run), and the exact Behrens-Fisher credible interval of one variable.
//
//   BSN_BENCH_RECORDS   records per data set (default 10,000,000)
//   BSN_BENCH_DIR       where the CSV file is written (default /tmp)
//
// Ten test variables (decimals with three places, about 2% missing) and a
// group column (0, 1 and about 1% other codes). The CSV file is written once
// per run and removed at exit; its validating scan, which a host runs once
// before the analysis, is done outside the timed loops.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "bsn/twosample/behrensfisherdistribution.h"
#include "platform/dist/mcdistfun.h"
#include "platform/records/columnrecorditer.h"
#include "platform/records/csvrecorditer.h"

using namespace MCBSN_850;

namespace {

constexpr int kVars = 10;
constexpr int kColumns = kVars + 1;  // the group column last

long long nRecords() {
    const char* env = std::getenv("BSN_BENCH_RECORDS");
    return env != nullptr ? std::atoll(env) : 10'000'000LL;
}

struct Data {
    std::vector<std::vector<double>> columns;
    std::string csvPath;
    double csvBytes = 0;

    Data() {
        const long long n = nRecords();
        std::mt19937_64 gen(2718);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        std::normal_distribution<double> z(0.0, 1.0);
        columns.assign(kColumns, std::vector<double>(static_cast<std::size_t>(n)));
        for (long long r = 0; r < n; ++r) {
            const double g = u(gen);
            const double group = g < 0.01 ? 2.0 : (g < 0.5 ? 0.0 : 1.0);
            columns[kVars][r] = group;
            for (int v = 0; v < kVars; ++v) {
                // Rounded to three places, as the CSV file holds them.
                const double x = std::round((50.0 + v + 10.0 * z(gen) + 0.3 * group) * 1000.0) / 1000.0;
                columns[v][r] = u(gen) < 0.02 ? MCCommon_850::MCMV::Missing() : x;
            }
        }
        const char* dir = std::getenv("BSN_BENCH_DIR");
        csvPath = std::string(dir != nullptr ? dir : "/tmp") + "/bsn_bench_independent.csv";
        std::ofstream out(csvPath, std::ios::binary);
        for (int v = 0; v < kVars; ++v) out << "x" << v << ',';
        out << "group\n";
        std::string line;
        char buf[32];
        for (long long r = 0; r < n; ++r) {
            line.clear();
            for (int v = 0; v < kVars; ++v) {
                const double x = columns[v][r];
                if (!MCCommon_850::MCMV::IsMissing(x)) {
                    const auto res = std::to_chars(buf, buf + sizeof buf, x, std::chars_format::fixed, 3);
                    line.append(buf, res.ptr);
                }
                line += ',';
            }
            line += static_cast<char>('0' + static_cast<int>(columns[kVars][r]));
            line += '\n';
            out << line;
        }
        out.close();
        csvBytes = static_cast<double>(std::ifstream(csvPath, std::ios::ate | std::ios::binary).tellg());
    }
    ~Data() { std::remove(csvPath.c_str()); }
};

Data& data() {
    static Data d;
    return d;
}

std::vector<int> testVars() {
    std::vector<int> v(kVars);
    for (int i = 0; i < kVars; ++i) v[i] = i;
    return v;
}

MCXML_850::MCVarList varList() {
    MCXML_850::MCVarList list;
    for (int i = 0; i < kColumns; ++i) list.Add(MCXML_850::MCContVar("c" + std::to_string(i)));
    return list;
}

BSNSettings independentSettings() {
    BSNSettings s;
    s.SetModelType(BSNConst::Independent, true);
    s.SetCovariates(testVars());
    s.SetGroupVar(kVars);
    s.SetAnalysType(BSNConst::Both);  // t tests, JZS factors, Behrens-Fisher posteriors
    return s;
}

// Reading alone: every value of every record (the group included) is
// touched once.
void readPass(MCCommon_850::MultiPassRecordIter& iter) {
    double sum = 0;
    iter.Reset();
    while (iter.Advance()) {
        const MCCommon_850::Record* r = iter.GetRecord();
        for (int v = 0; v < kColumns; ++v) sum += r->GetValue(v);
    }
    benchmark::DoNotOptimize(sum);
}

void analysisPass(MCCommon_850::MultiPassRecordIter& iter, benchmark::State& state) {
    BSNComponent component(independentSettings(), varList());
    const MCCommon_850::MCStatus st = component.BuildModel(iter);
    if (st.IsError()) state.SkipWithError(("status " + std::to_string(st.GetCode())).c_str());
}

MCCommon_850::CsvRecordIter& csvIter() {
    static auto iter = [] {
        std::vector<int> all(kColumns);
        for (int i = 0; i < kColumns; ++i) all[i] = i;
        auto it = std::make_unique<MCCommon_850::CsvRecordIter>(data().csvPath, all, std::vector<int>{kVars});
        const auto result = it->Scan();
        if (!result.error.empty()) std::fprintf(stderr, "%s\n", result.error.c_str());
        return it;
    }();
    return *iter;
}

void BM_ReadMemory(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().columns);
    for (auto _ : state) readPass(iter);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_IndependentMemory(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().columns);
    for (auto _ : state) analysisPass(iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_ReadCsv(benchmark::State& state) {
    auto& iter = csvIter();
    for (auto _ : state) readPass(iter);
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data().csvBytes));
}

void BM_IndependentCsv(benchmark::State& state) {
    auto& iter = csvIter();
    for (auto _ : state) analysisPass(iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data().csvBytes));
}

// The exact 95% interval of one variable: groups of n0 and n1 cases with
// standard errors a0 and a1 (the distribution object and one quantile; the
// upper limit follows by symmetry).
struct Groups {
    double n0, a0, n1, a1;
};
const Groups kGroups[] = {{8, 0.9, 12, 0.6}, {30, 0.4, 50, 0.3}, {100, 0.2, 200, 0.25}, {1000, 0.05, 2000, 0.04},
                          {5e8, 1e-4, 5e8, 1.2e-4}, {3, 1.0, 4, 0.7}};

void BM_BehrensFisherInterval(benchmark::State& state) {
    const Groups& g = kGroups[state.range(0)];
    long evaluations = 0;
    for (auto _ : state) {
        const BehrensFisherDistribution d(g.a0, g.n0 - 1, g.a1, g.n1 - 1);
        benchmark::DoNotOptimize(d.Quantile(0.025));
        evaluations = d.GetNEvaluations();
    }
    state.counters["evaluations"] = static_cast<double>(evaluations);
    state.SetLabel("n0 " + std::to_string(static_cast<long long>(g.n0)) + ", n1 " +
                   std::to_string(static_cast<long long>(g.n1)));
}

// Baseline: the Welch approximation of the same limit, one t quantile.
void BM_WelchQuantile(benchmark::State& state) {
    const Groups& g = kGroups[state.range(0)];
    const double s = g.a0 * g.a0 + g.a1 * g.a1;
    const double df = s * s / (g.a0 * g.a0 * g.a0 * g.a0 / (g.n0 - 1) + g.a1 * g.a1 * g.a1 * g.a1 / (g.n1 - 1));
    for (auto _ : state) benchmark::DoNotOptimize(MCMath_850::MCDistFun::IdfT(0.025, df));
}

} // namespace

BENCHMARK(BM_ReadMemory)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_IndependentMemory)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReadCsv)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_IndependentCsv)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_BehrensFisherInterval)->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WelchQuantile)->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
