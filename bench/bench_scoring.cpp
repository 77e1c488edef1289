// Scoring and PMML export benchmarks, each beside the cost of merely reading
// the same records in the same run.
//
//   BSN_BENCH_RECORDS   records scored (default 10,000,000)
//   BSN_BENCH_DIR       where the CSV file is written (default /tmp)
//
// Models (fitted once, outside the timed loops, on 200,000 records):
//  - dense rows: y ~ f4 + x1 + x2 + x3 (a 4-category factor, 8 parameters);
//  - sparse rows: y ~ f10 + x1 (a 10-category factor, 12 parameters);
// both with the reference posterior, scored with variances and limits.
// The records to score: the predictors in memory (columns) and as a CSV file
// (three-decimal covariates, factor labels c0..c9), whose validating scan is
// done before the timed loops, as a host does. Export: a one-way ANOVA of
// 4000 categories (4000 parameters) written as PMML to memory.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "bsn/regression/bsnmultiregoutputstats.h"
#include "bsn/regression/bsnpmmlexporter.h"
#include "cli/scoring.h"
#include "platform/records/columnrecorditer.h"
#include "platform/records/csvrecorditer.h"

using namespace MCBSN_850;

namespace {

long long nRecords() {
    const char* env = std::getenv("BSN_BENCH_RECORDS");
    return env != nullptr ? std::atoll(env) : 10'000'000LL;
}

// Columns: 0 y, 1..3 x1..x3, 4 f4, 5 f10, 6 f4000.
enum { kY, kX1, kX2, kX3, kF4, kF10, kF4000, kNCols };
const char* const kNames[kNCols] = {"y", "x1", "x2", "x3", "f4", "f10", "f4000"};

std::vector<std::vector<double>> makeColumns(long long n, unsigned seed) {
    std::vector<std::vector<double>> cols(kNCols, std::vector<double>(static_cast<std::size_t>(n)));
    std::mt19937_64 gen(seed);
    std::normal_distribution<double> z(0.0, 1.0);
    std::uniform_int_distribution<int> four(0, 3), ten(0, 9), big(0, 3999);
    for (long long r = 0; r < n; ++r) {
        const auto i = static_cast<std::size_t>(r);
        cols[kX1][i] = std::round((10.0 + z(gen)) * 1000.0) / 1000.0;
        cols[kX2][i] = std::round((5.0 + 2.0 * z(gen)) * 1000.0) / 1000.0;
        cols[kX3][i] = std::round(z(gen) * 1000.0) / 1000.0;
        cols[kF4][i] = four(gen);
        cols[kF10][i] = ten(gen);
        cols[kF4000][i] = big(gen);
        cols[kY][i] = 1.0 + 0.5 * cols[kX1][i] - 0.3 * cols[kX2][i] + 0.2 * cols[kX3][i] + 0.4 * cols[kF4][i] +
                      0.1 * cols[kF10][i] + 0.0005 * cols[kF4000][i] + z(gen);
    }
    return cols;
}

bsncli::DataInfo dataInfo() {
    bsncli::DataInfo info;
    for (int c = 0; c < kNCols; ++c) {
        info.columns.push_back(kNames[c]);
        const bool factor = c >= kF4;
        MCXML_850::MCContVar var(kNames[c], factor ? MCXML_850::MCVarKind::Nominal : MCXML_850::MCVarKind::Scale);
        if (factor) {
            const int k = c == kF4 ? 4 : c == kF10 ? 10 : 4000;
            std::vector<std::string> labels;
            for (int j = 0; j < k; ++j) labels.push_back("c" + std::to_string(j));
            var.SetValueLabels(labels);
        }
        info.varList.Add(var);
    }
    return info;
}

// A fitted model kept alive with its component.
struct Fitted {
    std::vector<std::vector<double>> cols;
    std::unique_ptr<MCCommon_850::ColumnRecordIter> iter;
    std::unique_ptr<BSNComponent> component;
    const BSNMultiRegOutputStats* result = nullptr;

    Fitted(const BSNSettings& s, std::vector<std::vector<double>> data) : cols(std::move(data)) {
        iter = std::make_unique<MCCommon_850::ColumnRecordIter>(cols);
        component = std::make_unique<BSNComponent>(s, dataInfo().varList);
        component->BuildModel(*iter);
        result = dynamic_cast<const BSNMultiRegOutputStats*>(component->GetOutputStats());
    }
};

BSNSettings regression(bool dense) {
    BSNSettings s;
    s.SetModelType(BSNConst::Regression, true);
    s.SetDependVar(kY);
    if (dense) {
        s.SetFactors({kF4});
        s.SetFactorNCategs({4});
        s.SetCovariates({kX1, kX2, kX3});
    } else {
        s.SetFactors({kF10});
        s.SetFactorNCategs({10});
        s.SetCovariates({kX1});
    }
    s.SetAnalysType(BSNConst::Posterior);
    s.SetPriorType(BSNConst::Reference);
    s.SetComputeVarianceInScoring(true);
    return s;
}

Fitted& model(bool dense) {
    static Fitted d(regression(true), makeColumns(200'000, 7)), s(regression(false), makeColumns(200'000, 7));
    return dense ? d : s;
}

// The records to score, in memory and as CSV.
struct ScoreData {
    std::vector<std::vector<double>> cols;
    std::string csvPath;
    double csvBytes = 0;
    std::unique_ptr<MCCommon_850::CsvRecordIter> csv;

    ScoreData() : cols(makeColumns(nRecords(), 11)) {
        const char* dir = std::getenv("BSN_BENCH_DIR");
        csvPath = std::string(dir != nullptr ? dir : "/tmp") + "/bsn_bench_scoring.csv";
        std::ofstream out(csvPath, std::ios::binary);
        out << "x1,x2,x3,f4,f10\n";
        std::string line;
        char buf[32];
        for (std::size_t r = 0; r < cols[0].size(); ++r) {
            line.clear();
            for (int c : {kX1, kX2, kX3}) {
                const auto res = std::to_chars(buf, buf + sizeof buf, cols[c][r], std::chars_format::fixed, 3);
                line.append(buf, res.ptr).push_back(',');
            }
            line.append("c").append(std::to_string(static_cast<int>(cols[kF4][r]))).append(",c");
            line.append(std::to_string(static_cast<int>(cols[kF10][r]))).push_back('\n');
            out << line;
        }
        out.close();
        csvBytes = static_cast<double>(std::ifstream(csvPath, std::ios::ate | std::ios::binary).tellg());
        csv = std::make_unique<MCCommon_850::CsvRecordIter>(csvPath, std::vector<int>{0, 1, 2, 3, 4},
                                                            std::vector<int>{3, 4});
        csv->Scan();
    }
    ~ScoreData() { std::remove(csvPath.c_str()); }
};

ScoreData& scoreData() {
    static ScoreData d;
    return d;
}

// Reading the CSV records: every used field of every record touched once.
void BM_ReadCsv(benchmark::State& state) {
    ScoreData& d = scoreData();
    for (auto _ : state) {
        double sum = 0;
        d.csv->Reset();
        while (d.csv->Advance()) {
            const MCCommon_850::Record* r = d.csv->GetRecord();
            for (int v = 0; v < 5; ++v) sum += r->GetValue(v);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(state.iterations() * static_cast<long long>(d.csvBytes));
}

// Score() over the records in memory (the read included).
void BM_ScoreInMemory(benchmark::State& state) {
    const bool dense = state.range(0) == 1;
    const bool variances = state.range(1) == 1;
    BSNSettings settings = regression(dense);
    settings.SetComputeVarianceInScoring(variances);
    Fitted fitted(settings, makeColumns(200'000, 7));
    if (fitted.result == nullptr || fitted.result->IsSparse() == dense) {
        state.SkipWithError("the model was not fitted as intended");
        return;
    }
    MCCommon_850::ColumnRecordIter iter(scoreData().cols);
    BayesEstimation e;
    for (auto _ : state) {
        double sum = 0;
        iter.Reset();
        while (iter.Advance()) {
            fitted.result->Score(*iter.GetRecord(), e);
            sum += e.GetMean() + e.GetUpper();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * nRecords());
}

// The host's whole scoring of a CSV file: read, code, score, write the
// output CSV (to a stream that discards it).
void BM_ScoreCsvHost(benchmark::State& state) {
    const bool dense = state.range(0) == 1;
    const Fitted& fitted = model(dense);
    if (fitted.result == nullptr) {
        state.SkipWithError("no model");
        return;
    }
    const bsncli::DataInfo info = dataInfo();
    struct NullBuffer : std::streambuf {
        std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
        int overflow(int c) override { return c; }
    } sink;
    std::ostream out(&sink);
    for (auto _ : state) benchmark::DoNotOptimize(bsncli::ScoreCsv(*fitted.result, info, scoreData().csvPath, out));
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(state.iterations() * static_cast<long long>(scoreData().csvBytes));
}

// Baseline of the output side of BM_ScoreCsvHost: writing five numbers a
// record as their shortest round-trip text, as a CSV line, into a buffer
// flushed every megabyte (the numbers are the records' covariates and sums).
void BM_WriteFiveNumbers(benchmark::State& state) {
    const auto& cols = scoreData().cols;
    for (auto _ : state) {
        std::string buffer;
        buffer.reserve(1 << 20);
        std::size_t total = 0;
        char text[32];
        for (std::size_t r = 0; r < cols[0].size(); ++r) {
            const double x = cols[kY][r] * 1.000001, v[5] = {x, x, x * 0.01, x - 1.96, x + 1.96};
            for (double d : v) {
                buffer.push_back(',');
                buffer.append(text, std::to_chars(text, text + sizeof text, d).ptr);
            }
            buffer.push_back('\n');
            if (buffer.size() >= (1u << 20)) {
                total += buffer.size();
                buffer.clear();
            }
        }
        benchmark::DoNotOptimize(total + buffer.size());
    }
    state.SetItemsProcessed(state.iterations() * nRecords());
}

// Writes the model's PMML document to memory in each iteration.
void exportLoop(benchmark::State& state, const Fitted& fitted, bool covariance) {
    if (fitted.result == nullptr) {
        state.SkipWithError("no model");
        return;
    }
    const bsncli::DataInfo info = dataInfo();
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::ostringstream os;
        if (bsncli::WritePmml(*fitted.result, info, covariance, os).IsError()) state.SkipWithError("export failed");
        bytes = os.str().size();
    }
    state.counters["parameters"] = fitted.result->GetDesign().GetNParameters();
    state.counters["bytes"] = static_cast<double>(bytes);
}

BSNSettings bigFactorModel(BSNConst::ModelTypes type, int categories) {
    BSNSettings s;
    s.SetModelType(type, true);
    s.SetDependVar(kY);
    s.SetFactors({kF4000});
    s.SetFactorNCategs({categories});
    s.SetAnalysType(BSNConst::Posterior);
    s.SetPriorType(BSNConst::Reference);
    return s;
}

// PMML export of a 4000-parameter model (a one-way ANOVA of 4000 cells).
void BM_ExportPmml(benchmark::State& state) {
    static Fitted fitted(bigFactorModel(BSNConst::Anova, 4000), makeColumns(400'000, 7));
    exportLoop(state, fitted, false);
}

// With the posterior covariance, for a 401-parameter regression (a
// 400-category factor): 80,200 PCovCells (none for the redundant one).
void BM_ExportPmmlWithCovariance(benchmark::State& state) {
    const auto folded = [] {
        auto cols = makeColumns(400'000, 13);
        for (double& v : cols[kF4000]) v = std::fmod(v, 400.0);
        return cols;
    };
    static Fitted fitted(bigFactorModel(BSNConst::Regression, 400), folded());
    exportLoop(state, fitted, true);
}

} // namespace

BENCHMARK(BM_ReadCsv)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_ScoreInMemory)
    ->ArgNames({"dense", "variances"})
    ->Args({1, 1})
    ->Args({0, 1})
    ->Args({0, 0})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(BM_ScoreCsvHost)->ArgName("dense")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_WriteFiveNumbers)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_ExportPmml)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportPmmlWithCovariance)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
