// Data-pass benchmarks: the cost of an analysis pass next to the cost of
// merely reading the same records, in the same run.
//
//   BSN_BENCH_RECORDS   records per data set (default 10,000,000)
//   BSN_BENCH_DIR       where the CSV file is written (default /tmp)
//
// Ten test variables. Binomial data are 0/1 with about 2% missing; normal
// data are decimals. Two CSV files (the binomial 0/1 data, two bytes a
// field; the normal data with three decimals, about eight bytes a field)
// are written once per run and removed at exit; its validating scan (which a host runs once before the analysis) is
// done outside the timed loops.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <memory>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "platform/records/columnrecorditer.h"
#include "platform/records/csvrecorditer.h"

using namespace MCBSN_850;

namespace {

constexpr int kVars = 10;

long long nRecords() {
    const char* env = std::getenv("BSN_BENCH_RECORDS");
    return env != nullptr ? std::atoll(env) : 10'000'000LL;
}

struct Data {
    std::vector<std::vector<double>> binomial, normal;
    std::string csvPath, numericCsvPath;
    double csvBytes = 0, numericCsvBytes = 0;

    Data() {
        const long long n = nRecords();
        std::mt19937_64 gen(12345);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        std::normal_distribution<double> z(50.0, 10.0);
        binomial.assign(kVars, std::vector<double>(static_cast<std::size_t>(n)));
        normal.assign(kVars, std::vector<double>(static_cast<std::size_t>(n)));
        for (int v = 0; v < kVars; ++v)
            for (long long r = 0; r < n; ++r) {
                const double x = u(gen);
                binomial[v][r] = x < 0.02 ? MCCommon_850::MCMV::Missing() : (x < 0.3 + 0.04 * v ? 1.0 : 0.0);
                normal[v][r] = z(gen) + v;
            }
        const char* dir = std::getenv("BSN_BENCH_DIR");
        csvPath = std::string(dir != nullptr ? dir : "/tmp") + "/bsn_bench_binomial.csv";
        std::ofstream out(csvPath, std::ios::binary);
        for (int v = 0; v < kVars; ++v) out << (v ? "," : "") << "v" << v;
        out << '\n';
        std::string line;
        for (long long r = 0; r < n; ++r) {
            line.clear();
            for (int v = 0; v < kVars; ++v) {
                if (v) line += ',';
                const double x = binomial[v][r];
                if (!MCCommon_850::MCMV::IsMissing(x)) line += x == 1.0 ? '1' : '0';
            }
            line += '\n';
            out << line;
        }
        out.close();
        csvBytes = static_cast<double>(std::ifstream(csvPath, std::ios::ate | std::ios::binary).tellg());

        // The normal data as decimals with three places: typical numeric CSV.
        numericCsvPath = std::string(dir != nullptr ? dir : "/tmp") + "/bsn_bench_numeric.csv";
        std::ofstream num(numericCsvPath, std::ios::binary);
        for (int v = 0; v < kVars; ++v) num << (v ? "," : "") << "x" << v;
        num << '\n';
        char buf[32];
        for (long long r = 0; r < n; ++r) {
            line.clear();
            for (int v = 0; v < kVars; ++v) {
                if (v) line += ',';
                const auto res = std::to_chars(buf, buf + sizeof buf, normal[v][r], std::chars_format::fixed, 3);
                line.append(buf, res.ptr);
            }
            line += '\n';
            num << line;
        }
        num.close();
        numericCsvBytes =
            static_cast<double>(std::ifstream(numericCsvPath, std::ios::ate | std::ios::binary).tellg());
    }
    ~Data() {
        std::remove(csvPath.c_str());
        std::remove(numericCsvPath.c_str());
    }
};

Data& data() {
    static Data d;
    return d;
}

std::vector<int> allVars() {
    std::vector<int> v(kVars);
    for (int i = 0; i < kVars; ++i) v[i] = i;
    return v;
}

MCXML_850::MCVarList varList() {
    MCXML_850::MCVarList list;
    for (int i = 0; i < kVars; ++i) list.Add(MCXML_850::MCContVar("v" + std::to_string(i)));
    return list;
}

BSNSettings binomialSettings() {
    BSNSettings s;
    s.SetModelType(BSNConst::OneSample, true);
    s.SetTestDistType(BSNConst::Binomial);
    s.SetFactors(allVars());
    s.SetFactorNCategs(std::vector<int>(kVars, 2));
    s.SetAnalysType(BSNConst::Both);
    s.SetAlterPrior1s(std::vector<double>(kVars, 1.0));
    s.SetAlterPrior2s(std::vector<double>(kVars, 1.0));
    s.SetPriorParam1(1.0);
    s.SetPriorParam2(1.0);
    return s;
}

BSNSettings normalSettings() {
    BSNSettings s;
    s.SetModelType(BSNConst::OneSample, true);
    s.SetCovariates(allVars());
    s.SetAnalysType(BSNConst::Both);
    return s;
}

// Reading alone: every value of every record is touched once.
void readPass(MCCommon_850::MultiPassRecordIter& iter) {
    double sum = 0;
    iter.Reset();
    while (iter.Advance()) {
        const MCCommon_850::Record* r = iter.GetRecord();
        for (int v = 0; v < kVars; ++v) sum += r->GetValue(v);
    }
    benchmark::DoNotOptimize(sum);
}

void analysisPass(const BSNSettings& s, MCCommon_850::MultiPassRecordIter& iter, benchmark::State& state) {
    BSNComponent component(s, varList());
    const MCCommon_850::MCStatus st = component.BuildModel(iter);
    if (st.IsError()) state.SkipWithError(("status " + std::to_string(st.GetCode())).c_str());
}

void BM_ReadMemory(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().binomial);
    for (auto _ : state) readPass(iter);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_BinomialMemory(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().binomial);
    const BSNSettings s = binomialSettings();
    for (auto _ : state) analysisPass(s, iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

void BM_NormalMemory(benchmark::State& state) {
    MCCommon_850::ColumnRecordIter iter(data().normal);
    const BSNSettings s = normalSettings();
    for (auto _ : state) analysisPass(s, iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
}

// A scanned CSV source, as a host has it after its validating scan.
std::unique_ptr<MCCommon_850::CsvRecordIter> scannedCsv(const std::string& path) {
    auto iter = std::make_unique<MCCommon_850::CsvRecordIter>(path, allVars());
    const auto result = iter->Scan();
    if (!result.error.empty()) std::fprintf(stderr, "%s\n", result.error.c_str());
    return iter;
}

MCCommon_850::CsvRecordIter& csvIter() {
    static auto iter = scannedCsv(data().csvPath);
    return *iter;
}

MCCommon_850::CsvRecordIter& numericCsvIter() {
    static auto iter = scannedCsv(data().numericCsvPath);
    return *iter;
}

void BM_ReadCsv(benchmark::State& state) {
    auto& iter = csvIter();
    for (auto _ : state) readPass(iter);
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data().csvBytes));
}

void BM_ReadNumericCsv(benchmark::State& state) {
    auto& iter = numericCsvIter();
    for (auto _ : state) readPass(iter);
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data().numericCsvBytes));
}

void BM_NormalNumericCsv(benchmark::State& state) {
    auto& iter = numericCsvIter();
    const BSNSettings s = normalSettings();
    for (auto _ : state) analysisPass(s, iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data().numericCsvBytes));
}

void BM_BinomialCsv(benchmark::State& state) {
    auto& iter = csvIter();
    const BSNSettings s = binomialSettings();
    for (auto _ : state) analysisPass(s, iter, state);
    state.SetItemsProcessed(state.iterations() * nRecords());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data().csvBytes));
}

} // namespace

BENCHMARK(BM_ReadMemory)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_BinomialMemory)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_NormalMemory)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReadCsv)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_BinomialCsv)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReadNumericCsv)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_NormalNumericCsv)->Unit(benchmark::kMillisecond)->Iterations(3);

BENCHMARK_MAIN();
