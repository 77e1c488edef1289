// Regression and ANOVA benchmarks, each beside the cost of merely reading
// the same records in the same run.
//
//   BSN_BENCH_RECORDS   records per data set (default 10,000,000)
//
// Data in memory (columns): 20 covariates, 2 ten-category factors and the
// dependent; a 4000-category factor with one covariate (sparse rows); the
// sweep of a 2000-parameter cross-product matrix.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/records/columnrecorditer.h"

using namespace MCBSN_850;

namespace {

constexpr int kCovariates = 20;

long long nRecords() {
    const char* env = std::getenv("BSN_BENCH_RECORDS");
    return env != nullptr ? std::atoll(env) : 10'000'000LL;
}

// Columns: 0 dependent, 1..20 covariates, 21 and 22 ten-category factors,
// 23 a 4000-category factor, 24 the same folded to 400 categories.
struct Data {
    std::vector<std::vector<double>> cols;
    Data() {
        const long long n = nRecords();
        cols.assign(25, std::vector<double>(static_cast<std::size_t>(n)));
        std::mt19937_64 gen(99);
        std::normal_distribution<double> z(0.0, 1.0);
        std::uniform_int_distribution<int> ten(0, 9), big(0, 3999);
        for (long long r = 0; r < n; ++r) {
            double y = 5.0;
            for (int c = 1; c <= kCovariates; ++c) {
                const double x = 10.0 + z(gen);
                cols[c][r] = x;
                y += 0.1 * c * x;
            }
            const int f1 = ten(gen), f2 = ten(gen), f3 = big(gen);
            cols[21][r] = f1;
            cols[22][r] = f2;
            cols[23][r] = f3;
            cols[24][r] = f3 % 400;
            cols[0][r] = y + 0.3 * f1 - 0.2 * f2 + 0.001 * f3 + z(gen);
        }
    }
};

Data& data() {
    static Data d;
    return d;
}

MCXML_850::MCVarList varList() {
    MCXML_850::MCVarList list;
    for (int i = 0; i < 25; ++i)
        list.Add(MCXML_850::MCContVar("v" + std::to_string(i),
                                      i >= 21 ? MCXML_850::MCVarKind::Nominal : MCXML_850::MCVarKind::Scale));
    return list;
}

void readPass(MCCommon_850::MultiPassRecordIter& iter, int nVars) {
    double sum = 0;
    iter.Reset();
    while (iter.Advance()) {
        const MCCommon_850::Record* r = iter.GetRecord();
        for (int v = 0; v < nVars; ++v) sum += r->GetValue(v);
    }
    benchmark::DoNotOptimize(sum);
}

void build(const BSNSettings& s, MCCommon_850::MultiPassRecordIter& iter, benchmark::State& state) {
    BSNComponent component(s, varList());
    const MCCommon_850::MCStatus st = component.BuildModel(iter);
    if (st.IsError()) state.SkipWithError(("status " + std::to_string(st.GetCode())).c_str());
}

void BM_ReadRegressionData(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().cols);
    for (auto _ : state) readPass(iter, 23);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_Regression20Covariates2Factors(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().cols);
    BSNSettings s;
    s.SetModelType(BSNConst::Regression, true);
    s.SetDependVar(0);
    std::vector<int> covs;
    for (int c = 1; c <= kCovariates; ++c) covs.push_back(c);
    s.SetCovariates(covs);
    s.SetFactors({21, 22});
    s.SetFactorNCategs({10, 10});
    s.SetAnalysType(BSNConst::Both);
    for (auto _ : state) build(s, iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

// A factor of 4000 (or 400) categories and one covariate: sparse rows. The
// per-record cost should not depend on the number of categories.
void BM_RegressionSparseFactor(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().cols);
    BSNSettings s;
    s.SetModelType(BSNConst::Regression, true);
    s.SetDependVar(0);
    s.SetCovariates({1});
    s.SetFactors({state.range(0) == 4000 ? 23 : 24});
    s.SetFactorNCategs({static_cast<int>(state.range(0))});
    s.SetAnalysType(BSNConst::BayesFactor);
    for (auto _ : state) build(s, iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_Anova(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().cols);
    BSNSettings s;
    s.SetModelType(BSNConst::Anova, true);
    s.SetDependVar(0);
    s.SetFactors({21});
    s.SetFactorNCategs({10});
    s.SetAnalysType(BSNConst::Both);
    for (auto _ : state) build(s, iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_ReadAnovaData(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().cols);
    for (auto _ : state) {
        double sum = 0;
        iter.Reset();
        while (iter.Advance()) {
            const MCCommon_850::Record* r = iter.GetRecord();
            sum += r->GetValue(0) + r->GetValue(21);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * nRecords());
}

// Sweeping every pivot of an n x n positive definite matrix (plus the
// dependent's row and column), as the fit does.
void BM_Sweep(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::mt19937_64 gen(5);
    std::normal_distribution<double> z(0.0, 1.0);
    Eigen::MatrixXd a(n + 1, 3 * (n + 1));
    for (Eigen::Index i = 0; i < a.size(); ++i) a.data()[i] = z(gen);
    MCMath_850::MCSymMatrix base(n + 1);
    base.Dense() = a * a.transpose();
    const std::vector<double> diagonal = base.GetDiagonal();
    for (auto _ : state) {
        MCMath_850::MCSymMatrix m = base;
        MCMath_850::MCBitSet pivots(n + 1);
        benchmark::DoNotOptimize(m.SweepRange(0, n, 1e-12, diagonal, pivots));
    }
}

} // namespace

BENCHMARK(BM_ReadRegressionData)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Regression20Covariates2Factors)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_RegressionSparseFactor)->Arg(4000)->Arg(400)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_ReadAnovaData)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Anova)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Sweep)->Arg(2000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_MAIN();
