// The host end to end on a large CSV file: a whole `bsn run` (one-sample
// normal analysis of ten variables, Bayes factors and posteriors) against
// one parse of the same file, and the peak memory of each.
//
//   BSN_BENCH_RECORDS   records (default 3,000,000)
//   BSN_BENCH_DIR       where the CSV file is written (default /tmp)
//
// Every measured run happens in a child process (fork), so that its peak
// resident memory (wait4's ru_maxrss) is its own. The time is the child's
// CPU time (user + system, from wait4): on a shared, loaded machine the
// wall-clock time of a run is mostly time spent waiting for a core.
// The parent holds no data: the file is written row by row.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "cli/host.h"
#include "platform/records/csvrecorditer.h"

namespace {

constexpr int kVars = 10;

long long nRecords() {
    const char* env = std::getenv("BSN_BENCH_RECORDS");
    return env != nullptr ? std::atoll(env) : 3'000'000LL;
}

std::string benchDir() {
    const char* dir = std::getenv("BSN_BENCH_DIR");
    return dir != nullptr ? dir : "/tmp";
}

struct Files {
    std::string csv, settings, settingsStreaming;
    double csvBytes = 0;

    Files() {
        const std::string base = benchDir() + "/bsn_bench_host_" + std::to_string(::getpid());
        csv = base + ".csv";
        std::ofstream out(csv, std::ios::binary);
        std::mt19937_64 gen(2024);
        std::normal_distribution<double> z(50.0, 10.0);
        for (int v = 0; v < kVars; ++v) out << (v ? "," : "") << "x" << v;
        out << '\n';
        std::string line;
        char buf[32];
        for (long long r = 0, n = nRecords(); r < n; ++r) {
            line.clear();
            for (int v = 0; v < kVars; ++v) {
                if (v) line += ',';
                const auto res = std::to_chars(buf, buf + sizeof buf, z(gen) + v, std::chars_format::fixed, 3);
                line.append(buf, res.ptr);
            }
            line += '\n';
            out << line;
        }
        out.close();
        csvBytes = static_cast<double>(std::ifstream(csv, std::ios::ate | std::ios::binary).tellg());
        // Read it once so that every measured run finds it in the page cache.
        std::ifstream warm(csv, std::ios::binary);
        std::vector<char> buffer(1 << 20);
        while (warm.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || warm.gcount() > 0) {
        }
        const std::string vars = R"("x0","x1","x2","x3","x4","x5","x6","x7","x8","x9")";
        settings = base + ".json";
        std::ofstream(settings) << R"({"ModelType": 0, "TestDistType": 0, "AnalysType": "Both", "Covariates": [)"
                                << vars << "]}";
        // A budget of 1 MiB: the file is far larger, so every pass reads it.
        settingsStreaming = base + "_streaming.json";
        std::ofstream(settingsStreaming) << R"({"ModelType": 0, "TestDistType": 0, "AnalysType": "Both",)"
                                         << R"("MemCacheKB": 1024, "Covariates": [)" << vars << "]}";
    }
    ~Files() {
        std::remove(csv.c_str());
        std::remove(settings.c_str());
        std::remove(settingsStreaming.c_str());
    }
};

Files& files() {
    static Files f;
    return f;
}

struct ChildCost {
    double peakMiB = -1;
    double cpuSeconds = 0;
};

// Runs `work` in a child; returns its peak resident memory and CPU time
// (peak -1 if it failed).
template <class Work>
ChildCost inChild(Work work) {
    std::fflush(nullptr);
    const pid_t pid = ::fork();
    if (pid == 0) ::_exit(work() ? 0 : 1);
    int status = 0;
    struct rusage usage {};
    ChildCost cost;
    if (::wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return cost;
    cost.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
    cost.cpuSeconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                      1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
    return cost;
}

template <class Work>
void measure(benchmark::State& state, Work work) {
    (void)files();  // written by the parent, never inside a measured child
    double peak = 0;
    for (auto _ : state) {
        const ChildCost cost = inChild(work);
        if (cost.peakMiB < 0) {
            state.SkipWithError("the child run failed");
            break;
        }
        state.SetIterationTime(cost.cpuSeconds);
        if (std::getenv("BSN_BENCH_VERBOSE")) std::fprintf(stderr, "cpu %.3f s peak %.1f MiB\n", cost.cpuSeconds, cost.peakMiB);
        peak = std::max(peak, cost.peakMiB);
    }
    state.counters["peak_MiB"] = peak;
    state.counters["file_MiB"] = files().csvBytes / (1024.0 * 1024.0);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * files().csvBytes));
}

// The baseline: one validating parse of every column, nothing kept.
void BM_OneParse(benchmark::State& state) {
    measure(state, [] {
        std::vector<int> all(kVars);
        for (int v = 0; v < kVars; ++v) all[v] = v;
        MCCommon_850::CsvRecordIter iter(files().csv, all);
        return iter.Scan().error.empty();
    });
}

void hostRun(benchmark::State& state, const std::string& settings) {
    measure(state, [&] {
        bsncli::RunOptions options;
        options.settingsPath = settings;
        options.dataPath = files().csv;
        options.quiet = true;
        std::ostringstream out, err;
        return bsncli::RunAnalysis(options, out, err) == 0;
    });
}

// Default budget: the scan keeps the ten columns, the passes read memory.
void BM_HostRun(benchmark::State& state) { hostRun(state, files().settings); }
// MemCacheKB 1024: every pass parses the file again.
void BM_HostRunStreaming(benchmark::State& state) { hostRun(state, files().settingsStreaming); }

} // namespace

// Interleaved repetitions (--benchmark_enable_random_interleaving) spread a
// shared machine's load over all three.
BENCHMARK(BM_OneParse)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(2);
BENCHMARK(BM_HostRun)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(2);
BENCHMARK(BM_HostRunStreaming)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(2);

BENCHMARK_MAIN();
