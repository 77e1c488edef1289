#pragma once
// The `bsn` command-line host: reads a settings file and a CSV data file,
// runs one analysis of the library on it and reports the status, the
// warnings and every result as tables, JSON and SVG plots.
#include <iosfwd>
#include <string>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "platform/progress/mcquerycancel.h"

namespace bsncli {

// Points per plotted curve the host asks for when the settings file does
// not set NPlotPoints.
constexpr int kHostPlotPoints = 400;

// Exit statuses of the host.
enum ExitCode { kExitBuilt = 0, kExitAnalysisError = 1, kExitBadInput = 2 };

struct RunOptions {
    std::string settingsPath;
    std::string dataPath;
    std::string jsonPath;   // empty: no JSON; "-": JSON on the output stream, no tables
    std::string plotsDir;   // empty: no plots
    std::string reportPath; // empty: no HTML report
    bool quiet = false;     // no tables
    bool progress = false;  // progress line on the error stream
    int threads = 0;        // worker threads (correlation); 0: every core
    // Regression and ANOVA models: the PMML document (with the posterior
    // covariance when asked), and the records of scorePath scored to
    // scoresPath (empty or "-": stdout, then no tables). See cli/scoring.h.
    std::string pmmlPath;
    bool pmmlCovariance = false;
    std::string scorePath;
    std::string scoresPath;
    // A cancel query asked besides Ctrl-C (whose handler the host installs
    // for the whole run) in every phase; may be null.
    MCCommon_850::MCQueryCancel* cancel = nullptr;
};

// Runs one analysis; returns the exit status. Reports go to `out`, errors,
// progress and (with JSON on `out`) the readable status to `err`.
int RunAnalysis(const RunOptions& options, std::ostream& out, std::ostream& err);

// The whole command line: `bsn run SETTINGS DATA [--json PATH] [--plots DIR]
// [--report FILE] [--quiet]`, `bsn --help`, `bsn --version`.
int Main(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

// The columns the analysis reads, and those of them that hold category
// labels (factors and the group variable; not the test variables of a
// one-sample binomial analysis, whose values count successes).
std::vector<int> UsedColumns(const MCBSN_850::BSNSettings& settings);
std::vector<int> NominalColumns(const MCBSN_850::BSNSettings& settings);

// The text of a status code: the library's table, then the platform's, then
// "status code N"; "" for 0.
std::string StatusMessage(int code);

const char* Version();

// The analyses this build of the library offers, e.g. "0 One-Sample
// (Normal, Binomial, Poisson); 1 Related".
std::string AvailableAnalyses();

} // namespace bsncli
