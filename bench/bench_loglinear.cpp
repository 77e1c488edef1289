// Log-linear benchmarks.
//
//   Counting: 10,000,000 records (BSN_BENCH_RECORDS) into a 50×50 table
//   next to merely reading the same records, in memory and from a CSV file
//   (written to BSN_BENCH_DIR, default /tmp, and removed at exit).
//   Bayes factors: every method on a 200×200 table (2×200 for the
//   nonparametric one, 2×2 with T = 1000 for the intrinsic one).
//   Posterior: all 189,225 pairs of categories of a 30×30 table.
//   Fisher's exact test with a total of a billion, beside Boost.Math's
//   hypergeometric distribution function at the same arguments.
#include <benchmark/benchmark.h>

#include <boost/math/distributions/hypergeometric.hpp>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "bsn/loglinear/bsncontingency.h"
#include "bsn/loglinear/bsnloglinconjugatebf.h"
#include "bsn/loglinear/bsnloglindirichletbf.h"
#include "bsn/loglinear/bsnloglinear.h"
#include "bsn/loglinear/bsnloglinintrinsicbf.h"
#include "bsn/loglinear/bsnloglinnonparametricbf.h"
#include "bsn/loglinear/bsnloglinposterior.h"
#include "platform/records/columnrecorditer.h"
#include "platform/records/csvrecorditer.h"

using namespace MCBSN_850;
using Matrix = std::vector<std::vector<double>>;

namespace {

constexpr int kCategories = 50;

long long nRecords() {
    const char* env = std::getenv("BSN_BENCH_RECORDS");
    return env != nullptr ? std::atoll(env) : 10'000'000LL;
}

// Row code, column code and a weight of 1 to 4; codes associated so that
// the table is not flat.
struct Records {
    std::vector<std::vector<double>> columns;
    std::string csvPath;

    Records() {
        const long long n = nRecords();
        columns.assign(3, std::vector<double>(static_cast<std::size_t>(n)));
        std::mt19937_64 gen(2024);
        std::uniform_int_distribution<int> code(0, kCategories - 1), shift(0, 4), weight(1, 4);
        for (long long r = 0; r < n; ++r) {
            const int i = code(gen);
            columns[0][r] = i;
            columns[1][r] = (i + shift(gen) * shift(gen)) % kCategories;
            columns[2][r] = weight(gen);
        }
        const char* dir = std::getenv("BSN_BENCH_DIR");
        csvPath = std::string(dir != nullptr ? dir : "/tmp") + "/bsn_bench_loglinear.csv";
        std::ofstream out(csvPath, std::ios::binary);
        out << "row,col,w\n";
        std::string line;
        for (long long r = 0; r < n; ++r) {
            line = std::to_string(static_cast<int>(columns[0][r])) + ',' +
                   std::to_string(static_cast<int>(columns[1][r])) + ',' +
                   std::to_string(static_cast<int>(columns[2][r])) + '\n';
            out << line;
        }
    }
    ~Records() { std::remove(csvPath.c_str()); }
};

Records& records() {
    static Records r;
    return r;
}

void readPass(MCCommon_850::MultiPassRecordIter& iter) {
    double sum = 0;
    iter.Reset();
    while (iter.Advance()) {
        const MCCommon_850::Record* r = iter.GetRecord();
        sum += r->GetValue(0) + r->GetValue(1) + r->GetValue(2);
    }
    benchmark::DoNotOptimize(sum);
}

void countPass(MCCommon_850::MultiPassRecordIter& iter, benchmark::State& state) {
    BSNContingency table({0, 1}, {kCategories, kCategories}, 2, MCMath_850::MCCancelInfo());
    if (!table.BuildModel(iter, nullptr, 50).IsOK()) state.SkipWithError("table not built");
    benchmark::DoNotOptimize(table.GetTotalWeight());
}

MCCommon_850::CsvRecordIter& csvIter() {
    // The host codes the factor columns; the weight is numeric.
    static auto iter = [] {
        auto it = std::make_unique<MCCommon_850::CsvRecordIter>(records().csvPath, std::vector<int>{0, 1, 2},
                                                                std::vector<int>{0, 1});
        const auto scan = it->Scan();
        if (!scan.error.empty()) std::fprintf(stderr, "%s\n", scan.error.c_str());
        return it;
    }();
    return *iter;
}

void BM_ReadMemory(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(records().columns);
    for (auto _ : state) readPass(iter);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_CountMemory(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(records().columns);
    for (auto _ : state) countPass(iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_ReadCsv(benchmark::State& state) {
    auto& iter = csvIter();
    for (auto _ : state) readPass(iter);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_CountCsv(benchmark::State& state) {
    auto& iter = csvIter();
    for (auto _ : state) countPass(iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

// --- Bayes factors -------------------------------------------------------------

Matrix randomTable(int rows, int cols, double scale, unsigned seed) {
    std::mt19937_64 gen(seed);
    std::uniform_real_distribution<double> u(0.2, 1.0);
    Matrix m(rows, std::vector<double>(cols));
    for (auto& row : m)
        for (double& v : row) v = std::floor(scale * u(gen));
    return m;
}

BSNSettings factorSettings(int rows, int cols, BSNConst::DistTypes model, BSNConst::LogLinPriorType prior,
                           BSNConst::FixType fix) {
    BSNSettings s;
    s.SetModelType(BSNConst::LogLinear, true);
    s.SetFactors({0, 1});
    s.SetFactorNCategs({rows, cols});
    s.SetLogLinModel(model);
    s.SetLogLinPriorType(prior);
    s.SetFixType(fix);
    return s;
}

template <class Factor>
void factorBench(benchmark::State& state, int rows, int cols, BSNConst::DistTypes model,
                 BSNConst::LogLinPriorType prior, BSNConst::FixType fix) {
    const BSNContingency table(randomTable(rows, cols, 400.0, 7));
    const BSNSettings s = factorSettings(rows, cols, model, prior, fix);
    for (auto _ : state) {
        Factor f(s, table);
        benchmark::DoNotOptimize(f.ComputeBayesFactor());
    }
}

void BM_ConjugateJoint200(benchmark::State& st) {
    factorBench<BSNLogLinConjugateBF>(st, 200, 200, BSNConst::Multinomial, BSNConst::LogLinConjugate,
                                      BSNConst::FixedTotal);
}
void BM_ConjugateRows200(benchmark::State& st) {
    factorBench<BSNLogLinConjugateBF>(st, 200, 200, BSNConst::Multinomial, BSNConst::LogLinConjugate,
                                      BSNConst::FixedRow);
}
void BM_ConjugatePoisson200(benchmark::State& st) {
    factorBench<BSNLogLinConjugateBF>(st, 200, 200, BSNConst::Poisson, BSNConst::LogLinConjugate,
                                      BSNConst::FixedTotal);
}
void BM_DirichletTotal200(benchmark::State& st) {
    factorBench<BSNLogLinDirichletBF>(st, 200, 200, BSNConst::Multinomial, BSNConst::LogLinDirichlet,
                                      BSNConst::FixedTotal);
}
void BM_DirichletRows200(benchmark::State& st) {
    factorBench<BSNLogLinDirichletBF>(st, 200, 200, BSNConst::Multinomial, BSNConst::LogLinDirichlet,
                                      BSNConst::FixedRow);
}
void BM_DirichletCols200(benchmark::State& st) {
    factorBench<BSNLogLinDirichletBF>(st, 200, 200, BSNConst::Multinomial, BSNConst::LogLinDirichlet,
                                      BSNConst::FixedColumn);
}
void BM_NonParametric2x200(benchmark::State& st) {
    factorBench<BSNLogLinNonParametricBF>(st, 2, 200, BSNConst::Nonparametric, BSNConst::LogLinConjugate,
                                          BSNConst::FixedRow);
}
void BM_Intrinsic2x2T1000(benchmark::State& st) {
    factorBench<BSNLogLinIntrinsicBF>(st, 2, 2, BSNConst::Multinomial, BSNConst::LogLinIntrinsic,
                                      BSNConst::FixedRow);
}
// The baseline of the factors: reading the 200×200 counts once, as a
// table's margins do.
void BM_TableMargins200(benchmark::State& st) {
    const Matrix m = randomTable(200, 200, 400.0, 7);
    for (auto _ : st) {
        BSNContingency table(m);
        benchmark::DoNotOptimize(table.ComputeInformation());
    }
}

// --- posterior -------------------------------------------------------------------

void BM_Posterior30x30(benchmark::State& st) {
    const Matrix m = randomTable(30, 30, 300.0, 11);
    std::vector<int> all(30);
    for (int k = 0; k < 30; ++k) all[k] = k;
    BSNSettings s = factorSettings(30, 30, BSNConst::Multinomial, BSNConst::LogLinConjugate, BSNConst::FixedTotal);
    for (auto _ : st) {
        BSNLogLinPosterior p(s, m, all, all);
        if (!p.Compute().IsOK() || p.GetEstimations().size() != 189225) st.SkipWithError("posterior failed");
    }
    st.SetItemsProcessed(st.iterations() * 189225);
}

// --- Fisher's test at a billion --------------------------------------------------

void BM_Fisher1e9(benchmark::State& st) {
    // Near independence: the slowest case, the tails are summed over about
    // nine standard deviations (some 70,000 terms).
    for (auto _ : st)
        benchmark::DoNotOptimize(BSNLogLinear::FisherExact(250010000, 249990000, 249990000, 250010000, true));
}

void BM_BoostHyperCdf1e9(benchmark::State& st) {
    const boost::math::hypergeometric_distribution<double> d(500000000u, 500000000u, 1000000000u);
    for (auto _ : st) benchmark::DoNotOptimize(boost::math::cdf(d, 249990000u));
}

} // namespace

BENCHMARK(BM_ReadMemory)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_CountMemory)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReadCsv)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_CountCsv)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TableMargins200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ConjugateJoint200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ConjugateRows200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ConjugatePoisson200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DirichletTotal200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DirichletRows200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DirichletCols200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NonParametric2x200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Intrinsic2x2T1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Posterior30x30)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Fisher1e9)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BoostHyperCdf1e9)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
