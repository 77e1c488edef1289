#include "cli/host.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <sstream>
#include <thread>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "bsn/frame/bsncomponent.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "cli/helptext.h"
#include "cli/htmlreport.h"
#include "cli/outputfile.h"
#include "cli/resultview.h"
#include "cli/scoring.h"
#include "cli/runcontrol.h"
#include "cli/settingsjson.h"
#include "cli/svgplot.h"
#include "platform/common/mcmessages.h"
#include "platform/records/csvrecorditer.h"
#include "platform/threads/mcthreadpoolfactory.h"

namespace bsncli {

using MCBSN_850::BSNComponent;
using MCBSN_850::BSNSettings;
using MCCommon_850::MCStatus;
using nlohmann::ordered_json;
namespace C = MCBSN_850::BSNConst;

// --- statuses --------------------------------------------------------------------

std::string StatusMessage(int code) {
    if (code == 0) return "";
    std::string text;
    MCBSN_850::BSNComponentDisplay::ParseErrCodeToStr(code, text);
    if (!text.empty()) return text;
    if (MCCommon_850::PlatformMessage(code, text)) return text;
    if (code == 1) return "The analysis was cancelled";
    return fmt::format("status code {}", code);
}

namespace {

ordered_json statusJson(const MCStatus& status) {
    ordered_json j;
    j["code"] = status.GetCode();
    j["error"] = status.IsError();
    j["message"] = StatusMessage(status.GetCode());
    return j;
}

// --- columns ---------------------------------------------------------------------

bool isBinomialTest(const BSNSettings& s) { return s.GetModelType() == C::OneSample && s.GetTestDistType() == C::Binomial; }

void addColumn(std::vector<int>& columns, int index) {
    if (index >= 0 && std::find(columns.begin(), columns.end(), index) == columns.end()) columns.push_back(index);
}

void addColumns(std::vector<int>& columns, const std::vector<int>& indices) {
    for (int i : indices) addColumn(columns, i);
}

} // namespace

std::vector<int> UsedColumns(const BSNSettings& s) {
    std::vector<int> used;
    for (int v : {s.GetDependentVar(), s.GetFrequencyWeightVar(), s.GetRegrWeightVar(), s.GetGroupVar()})
        addColumn(used, v);
    for (const auto* list : {&s.GetFactors(), &s.GetCovariates(), &s.GetFullModFactors(), &s.GetFullModCovariates(),
                             &s.Get2ndRelatedList(), &s.GetPlotFactors(), &s.GetPlotCovars()})
        addColumns(used, *list);
    for (const auto& test : s.GetFTests()) addColumns(used, test.GetPredictors());
    return used;
}

std::vector<int> NominalColumns(const BSNSettings& s) {
    std::vector<int> nominal;
    if (!isBinomialTest(s)) addColumns(nominal, s.GetFactors());
    addColumns(nominal, s.GetFullModFactors());
    addColumn(nominal, s.GetGroupVar());
    return nominal;
}

namespace {

// --- procedures this build offers -----------------------------------------------------

bool hasProcedure(C::ModelTypes model, C::DistTypes dist) {
    BSNSettings probe;
    probe.SetModelType(model, true);
    probe.SetTestDistType(dist);
    return BSNComponent(probe, MCXML_850::MCVarList()).HasProcedure();
}

} // namespace

std::string AvailableAnalyses() {
    std::vector<std::string> items;
    std::vector<std::string> oneSample;
    for (int d = 0; d <= 2; ++d)
        if (hasProcedure(C::OneSample, static_cast<C::DistTypes>(d)))
            oneSample.push_back(EnumWord(static_cast<C::DistTypes>(d)));
    if (!oneSample.empty()) {
        std::string joined;
        for (const auto& w : oneSample) joined += (joined.empty() ? "" : ", ") + w;
        items.push_back(fmt::format("0 One-Sample ({})", joined));
    }
    for (int m = 1; m <= 6; ++m)
        if (hasProcedure(static_cast<C::ModelTypes>(m), C::Normal))
            items.push_back(fmt::format("{} {}", m, EnumWord(static_cast<C::ModelTypes>(m))));
    std::string out;
    for (const auto& i : items) out += (out.empty() ? "" : "; ") + i;
    return out.empty() ? std::string("none") : out;
}

namespace {

void requireProcedure(const BSNSettings& s) {
    if (hasProcedure(s.GetModelType(), s.GetTestDistType())) return;
    std::string what = fmt::format("model type {} ({})", static_cast<int>(s.GetModelType()), EnumWord(s.GetModelType()));
    if (s.GetModelType() == C::OneSample)
        what += fmt::format(" with test distribution {} ({})", static_cast<int>(s.GetTestDistType()),
                            EnumWord(s.GetTestDistType()));
    throw InputError(fmt::format("{} has no analysis in this build of bsn; available: {}", what, AvailableAnalyses()));
}

// --- input -------------------------------------------------------------------------

nlohmann::json readSettingsFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw InputError(fmt::format("{}: cannot open the settings file", path));
    try {
        return nlohmann::json::parse(in);
    } catch (const nlohmann::json::parse_error& e) {
        throw InputError(fmt::format("{}: not valid JSON: {}", path, e.what()));
    }
}

// Fills in category counts the user left out: the number of labels of each
// coded factor, and 2 (success, failure) for binomial test variables.
void fillFactorSizes(BSNSettings& s, const std::vector<std::string>& given, const MCCommon_850::CsvScanResult& scan) {
    auto sizes = [&](const std::vector<int>& factors, bool binomial) {
        std::vector<int> n;
        for (int f : factors) n.push_back(binomial ? 2 : static_cast<int>(scan.labels[static_cast<std::size_t>(f)].size()));
        return n;
    };
    const bool wasGiven = std::find(given.begin(), given.end(), "FactorSizes") != given.end();
    if (!wasGiven && !s.GetFactors().empty()) s.SetFactorNCategs(sizes(s.GetFactors(), isBinomialTest(s)));
    const bool fullGiven = std::find(given.begin(), given.end(), "FullModFactorSizes") != given.end();
    if (!fullGiven && !s.GetFullModFactors().empty()) s.SetFullModFactorNCategs(sizes(s.GetFullModFactors(), false));
}

DataInfo describeData(const std::vector<std::string>& columns, const std::vector<int>& nominal,
                      const MCCommon_850::CsvScanResult& scan) {
    DataInfo data;
    data.columns = columns;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        const bool isNominal = std::find(nominal.begin(), nominal.end(), static_cast<int>(c)) != nominal.end();
        MCXML_850::MCContVar var(columns[c], isNominal ? MCXML_850::MCVarKind::Nominal : MCXML_850::MCVarKind::Scale,
                                 scan.minimum[c], scan.maximum[c]);
        if (isNominal) {
            var.SetValueLabels(scan.labels[c]);
            if (!scan.labels[c].empty()) var.SetRange(0.0, static_cast<double>(scan.labels[c].size() - 1));
        }
        data.varList.Add(var);
    }
    return data;
}

// --- progress and cancellation -------------------------------------------------------

// A one-line progress display on a terminal, redrawn at most ten times a
// second.
class TerminalProgress : public MCCommon_850::ProgressListener {
public:
    TerminalProgress(std::ostream& err, long long total) : m_err(err), m_total(total) {}
    ~TerminalProgress() override {
        if (m_shown) m_err << "\r\033[K" << std::flush;
    }
    // The pairs of a correlation analysis, counted after its data pass.
    void SetTotalPairs(long long total) { m_totalPairs = total; }
    void Notify(const MCCommon_850::ProgressReport& report) override {
        if (const int pairs = report.DiscreteMeasure("pairs"); pairs >= 0) {
            const auto now = std::chrono::steady_clock::now();
            if (m_shown && now - m_lastShown < std::chrono::milliseconds(100)) return;
            m_lastShown = now;
            m_shown = true;
            m_err << fmt::format("\r\033[Kbsn: {} of {} pairs (Ctrl-C cancels)", pairs, m_totalPairs) << std::flush;
            return;
        }
        const int n = report.DiscreteMeasure("records");
        if (n < 0) return;
        if (n < m_last) ++m_pass;  // the count starts again with every pass
        m_last = n;
        const auto now = std::chrono::steady_clock::now();
        if (m_shown && now - m_lastShown < std::chrono::milliseconds(100)) return;
        m_lastShown = now;
        m_shown = true;
        m_err << fmt::format("\rbsn: pass {}: {} of {} records (Ctrl-C cancels)", m_pass, n, m_total) << std::flush;
    }

private:
    std::ostream& m_err;
    long long m_total;
    long long m_totalPairs = 0;
    int m_last = 0;
    int m_pass = 1;
    bool m_shown = false;
    std::chrono::steady_clock::time_point m_lastShown;
};

// --- reports ------------------------------------------------------------------------

struct Outcome {
    MCStatus status;
    std::string message;  // the status text, when more precise than the table's
    std::vector<MCStatus> warnings;
    bool built = false;
    bool haveResults = false;
    ResultView view;
    ModelOutputReport modelOutputs;
    // Kept past the build for the model outputs, which are written with the
    // run's other files.
    std::unique_ptr<BSNComponent> component;
};

// The test variable a build warning's datum 0 points at: its position in
// the list of test variables (or pairs) of the analysis.
std::string datumVariable(const BSNSettings& s, const DataInfo& data, int datum) {
    if (datum < 0) return {};
    const auto at = [&](const std::vector<int>& list) {
        return static_cast<std::size_t>(datum) < list.size() ? data.Name(list[static_cast<std::size_t>(datum)])
                                                             : std::string();
    };
    if (isBinomialTest(s)) return at(s.GetFactors());
    if (s.GetModelType() == C::OneSample) return at(s.GetCovariates());
    if (s.GetModelType() == C::Independent) return at(s.GetCovariates());
    if (s.GetModelType() == C::Related) {
        const std::string first = at(s.GetCovariates()), second = at(s.Get2ndRelatedList());
        return first.empty() ? first : first + " - " + second;
    }
    if (s.GetModelType() == C::Correlation) {
        // Pairs are numbered row by row: (0,1), (0,2), ..., (1,2), ...
        const std::vector<int>& v = s.GetCovariates();
        long long rest = datum;
        for (std::size_t i = 0; i + 1 < v.size(); ++i) {
            const long long row = static_cast<long long>(v.size() - 1 - i);
            if (rest < row) return data.Name(v[i]) + " with " + data.Name(v[i + 1 + static_cast<std::size_t>(rest)]);
            rest -= row;
        }
    }
    return {};
}

// The warnings as the terminal and the report show them: code, message and
// the variable (or datum) the warning points at.
std::vector<std::string> warningLines(const Outcome& outcome, std::size_t nValidationWarnings,
                                      const BSNSettings& settings, const DataInfo& data) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < outcome.warnings.size(); ++i) {
        const MCStatus& w = outcome.warnings[i];
        std::string where;
        if (w.HasDiscreteDatum(0)) {
            const int datum = w.GetDiscreteDatum(0);
            const std::string name = i >= nValidationWarnings ? datumVariable(settings, data, datum) : "";
            const char* what = settings.GetModelType() == C::Correlation ? "pair" : "variable";
            where = name.empty() ? fmt::format(" [datum {}]", datum) : fmt::format(" [{} {}]", what, name);
        }
        lines.push_back(fmt::format("{}  {}{}", w.GetCode(), StatusMessage(w.GetCode()), where));
    }
    return lines;
}

std::string statusText(const Outcome& outcome) {
    const MCStatus& s = outcome.status;
    if (s.IsError()) return fmt::format("error {}: {}", s.GetCode(), StatusMessage(s.GetCode()));
    return std::string("OK, ") + (outcome.built ? "model built" : "model not built");
}

void printStatusAndWarnings(std::ostream& os, const Outcome& outcome, const std::vector<std::string>& warnings) {
    if (!warnings.empty()) {
        os << "Warnings:\n";
        for (const std::string& line : warnings) os << "  " << line << '\n';
    }
    os << "Status: " << statusText(outcome) << '\n';
}

std::string analysisName(const BSNSettings& s) {
    std::string what = EnumWord(s.GetModelType());
    if (s.GetModelType() == C::OneSample) what += " " + EnumWord(s.GetTestDistType());
    return what;
}

void writeJson(const RunOptions& options, const Outcome& outcome, const DataInfo& data, std::ostream& out) {
    ordered_json doc;
    doc["status"] = statusJson(outcome.status);
    if (!outcome.message.empty()) doc["status"]["message"] = outcome.message;
    ordered_json warnings = ordered_json::array();
    for (const MCStatus& w : outcome.warnings) {
        ordered_json item;
        item["code"] = w.GetCode();
        item["message"] = StatusMessage(w.GetCode());
        item["datum"] = w.HasDiscreteDatum(0) ? ordered_json(w.GetDiscreteDatum(0)) : ordered_json(nullptr);
        warnings.push_back(item);
    }
    doc["warnings"] = warnings;
    doc["model_built"] = outcome.built;
    // The data file's column names in order: every variable index in the
    // results is a position in this list.
    doc["columns"] = data.columns;
    doc["results"] = outcome.haveResults ? outcome.view.getters : ordered_json(nullptr);
    const std::string text = DumpJson(doc) + "\n";
    if (options.jsonPath == "-") {
        out << text << std::flush;
        return;
    }
    WriteFileWhole(options.jsonPath, text, "--json");
}

// Writes DIR/<name>.svg for each ready-made figure (tables drawn as pictures).
// Everything read from the two input files, checked.
struct Inputs {
    BSNSettings settings;
    DataInfo data;
    std::unique_ptr<MCCommon_850::CsvRecordIter> iter;
    long long nRecords = 0;
    bool maxThreadsGiven = false;
    // Lent to the analysis through the settings; lives as long as they do.
    std::unique_ptr<MCThread_850::MCThreadPoolFactory> threads;
};

// What a run had learnt when it stopped: enough for the JSON document of a
// failure.
struct RunRecord {
    std::vector<std::string> columns;
    std::vector<MCStatus> warnings;
};

Inputs loadInputs(const RunOptions& options, std::ostream& err, RunControl& control, RunRecord& record) {
    Inputs in;
    control.Enter(RunPhase::Settings);
    const nlohmann::json settingsJson = readSettingsFile(options.settingsPath);
    control.Enter(RunPhase::Data);
    std::vector<std::string> columns;
    if (std::string e = MCCommon_850::ReadCsvHeader(options.dataPath, columns); !e.empty()) throw InputError(e);
    record.columns = columns;
    control.Enter(RunPhase::Settings);
    std::vector<std::string> given;
    in.settings = SettingsFromJson(settingsJson, columns, &given);
    control.Enter(RunPhase::Choice);
    requireProcedure(in.settings);
    in.maxThreadsGiven = std::find(given.begin(), given.end(), "MaxThreadNum") != given.end();

    control.Enter(RunPhase::Data);
    const std::vector<int> nominal = NominalColumns(in.settings);
    in.iter = std::make_unique<MCCommon_850::CsvRecordIter>(options.dataPath, UsedColumns(in.settings), nominal);
    // The scan keeps the used columns in memory within the settings' budget,
    // so the passes of the analysis need not parse the file again.
    in.iter->SetMemoryBudget(static_cast<std::size_t>(std::max(0, in.settings.GetMemCacheKB())) * 1024);
    if (options.progress) err << fmt::format("bsn: checking {} ...", options.dataPath) << std::flush;
    const MCCommon_850::CsvScanResult scan = in.iter->Scan(&control);
    if (options.progress) err << "\r\033[K" << std::flush;
    control.Check();
    if (!scan.error.empty()) throw InputError(scan.error);
    in.nRecords = scan.nRecords;
    in.data = describeData(columns, nominal, scan);
    fillFactorSizes(in.settings, given, scan);
    // The library's default of 100 points draws visibly jagged curves at
    // the printed size of a plot.
    if (std::find(given.begin(), given.end(), "NPlotPoints") == given.end()) in.settings.SetNPlotPoints(kHostPlotPoints);
    if (std::find(given.begin(), given.end(), "NCases") == given.end())
        in.settings.SetNCases(static_cast<int>(std::min<long long>(scan.nRecords, std::numeric_limits<int>::max())));
    return in;
}

// The analysis's own statuses for a build it abandoned on request.
bool isCancelStatus(const MCStatus& s) { return s.IsError() && (s.GetCode() == 1 || s.GetCode() == 410016); }

// Builds the model on checked settings, with cancellation by the run's
// control and progress on a terminal.
void buildModel(const RunOptions& options, Inputs& in, std::ostream& err, Outcome& outcome, RunControl& control) {
    // Worker threads: --threads (default every core), unless the settings
    // file says MaxThreadNum itself.
    if (!in.maxThreadsGiven) {
        const int cores = static_cast<int>(std::thread::hardware_concurrency());
        in.settings.SetMaxThreadNum(options.threads > 0 ? options.threads : std::max(1, cores));
    }
    in.threads = std::make_unique<MCThread_850::MCThreadPoolFactory>();
    in.settings.SetThreadFactory(in.threads.get());
    outcome.component = std::make_unique<BSNComponent>(in.settings, in.data.varList);
    BSNComponent& component = *outcome.component;
    component.SetCancelPtr(&control);
    std::unique_ptr<TerminalProgress> progress;
    if (options.progress) {
        progress = std::make_unique<TerminalProgress>(err, in.nRecords);
        if (in.settings.GetModelType() == C::Correlation) {
            const auto k = static_cast<long long>(in.settings.GetCovariates().size());
            progress->SetTotalPairs(k * (k - 1) / 2);
        }
        component.SetProgressListener(progress.get());
    }
    component.BuildModel(*in.iter);
    component.SetProgressListener(nullptr);
    progress.reset();
    // Results computed from a file that failed half way must not be shown.
    if (const std::string failure = in.iter->GetSourceError(); !failure.empty()) throw InputError(failure);
    if (isCancelStatus(component.GetStatus())) throw RunCancelled(RunPhase::Build, component.GetStatus());
    control.Check();

    outcome.status = component.GetStatus();
    for (const MCStatus& w : component.GetWarningMessages()) outcome.warnings.push_back(w);
    outcome.built = component.IsModelBuilt();
    if (const auto* result = component.GetOutputStats(); result != nullptr && outcome.built) {
        outcome.haveResults = DescribeResult(*result, in.data, outcome.view);
        if (!outcome.haveResults)
            err << fmt::format("bsn: note: no report for result kind {} ({})\n",
                               static_cast<int>(result->GetOutputType()), EnumWord(result->GetOutputType()));
    }
}

void writeReport(const RunOptions& options, const Inputs& in, const Outcome& outcome,
                 const std::vector<std::string>& warnings) {
    ReportInput report;
    report.analysis = analysisName(in.settings);
    report.settingsPath = options.settingsPath;
    report.dataPath = options.dataPath;
    report.nRecords = in.nRecords;
    report.settings = &in.settings;
    report.data = &in.data;
    report.status = statusText(outcome);
    report.failed = outcome.status.IsError();
    report.warnings = warnings;
    report.view = outcome.haveResults ? &outcome.view : nullptr;
    WriteFileWhole(options.reportPath, RenderHtmlReport(report), "--report");
}

int runChecked(const RunOptions& options, std::ostream& out, std::ostream& err, RunControl& control,
               RunRecord& record) {
    Inputs in = loadInputs(options, err, control, record);
    CheckModelOutputOptions(options, in.settings);
    Outcome outcome;
    control.Enter(RunPhase::Settings);
    outcome.status = in.settings.IsValidSettings();
    const bool refused = outcome.status.IsError();
    outcome.warnings = in.settings.GetWarningMessages().GetAll();
    record.warnings = outcome.warnings;
    const std::size_t nValidationWarnings = outcome.warnings.size();
    if (!refused) {
        control.Enter(RunPhase::Build);
        buildModel(options, in, err, outcome, control);
    }
    control.Enter(RunPhase::Output);

    const bool jsonToStdout = options.jsonPath == "-";
    const bool jsonOnOut = jsonToStdout || ScoresToStdout(options);
    std::ostream& report = jsonOnOut ? err : out;
    const std::vector<std::string> warnings = warningLines(outcome, nValidationWarnings, in.settings, in.data);
    // Every output file is written in full before any is put in place, so a
    // cancellation or a failure on the way leaves none of them behind.
    std::size_t nPlots = 0;
    {
        OutputBatch batch([&control] { control.Check(); });
        if (outcome.built && WantsModelOutputs(options))
            if (const auto* result = outcome.component->GetOutputStats(); result != nullptr)
                outcome.modelOutputs = WriteModelOutputs(options, *result, in.data, out);
        if (!options.jsonPath.empty() && !jsonToStdout) writeJson(options, outcome, in.data, out);
        if (!options.plotsDir.empty() && outcome.haveResults)
            nPlots = WritePlots(outcome.view.plots, options.plotsDir, outcome.view.figures).size();
        if (!options.reportPath.empty()) writeReport(options, in, outcome, warnings);
        control.Check();
        batch.Commit();
    }
    if (!options.quiet && !jsonOnOut && !refused) {
        out << fmt::format("bsn: {} analysis of {} ({} records)\n\n", analysisName(in.settings), options.dataPath,
                           in.nRecords);
        for (const TextTable& t : outcome.view.tables) t.Print(out);
    }
    printStatusAndWarnings(report, outcome, warnings);
    if (jsonToStdout) writeJson(options, outcome, in.data, out);
    if (!refused)
        if (const int code = ReportModelOutputs(options, outcome.modelOutputs, outcome.built, report, err); code != 0)
            return code;
    if (!options.quiet && !options.plotsDir.empty() && outcome.haveResults)
        report << fmt::format("Plots: {} file(s) in {}\n", nPlots, options.plotsDir);
    if (!options.quiet && !options.reportPath.empty()) report << fmt::format("Report: {}\n", options.reportPath);
    if (refused) {
        err << fmt::format("bsn: error: the settings were refused: {}\n", StatusMessage(outcome.status.GetCode()));
        return kExitBadInput;
    }
    return outcome.built ? kExitBuilt : kExitAnalysisError;
}

// With --json, a run that fails still leaves a document a program can
// parse: the status with the reason, no model and no results.
void writeFailureJson(const RunOptions& options, const RunRecord& record, const MCStatus& status,
                      const std::string& message, std::ostream& out, std::ostream& err) {
    if (options.jsonPath.empty()) return;
    Outcome outcome;
    outcome.status = status;
    outcome.message = message;
    outcome.warnings = record.warnings;
    DataInfo data;
    data.columns = record.columns;
    try {
        writeJson(options, outcome, data, out);
    } catch (const std::exception& e) {
        err << "bsn: error: " << e.what() << '\n';
    }
}

} // namespace

int RunAnalysis(const RunOptions& options, std::ostream& out, std::ostream& err) {
    RunControl control(options.cancel);
    RunRecord record;
    try {
        return runChecked(options, out, err, control, record);
    } catch (const RunCancelled& c) {
        err << "bsn: " << c.what() << '\n';
        const int code = c.Status().GetCode();
        writeFailureJson(options, record, c.Status(), code == 1 ? StatusMessage(1) : StatusMessage(code), out, err);
        return kExitAnalysisError;
    } catch (const InputError& e) {
        err << "bsn: error: " << e.what() << '\n';
        const int code = control.FailureCode();
        writeFailureJson(options, record, MCStatus(code, false), StatusMessage(code) + ": " + e.what(), out, err);
        return kExitBadInput;
    } catch (const std::exception& e) {
        err << "bsn: internal error: " << e.what() << '\n';
        writeFailureJson(options, record, MCStatus(420064, false), StatusMessage(420064) + ": " + e.what(), out, err);
        return kExitAnalysisError;
    }
}

int Main(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    CLI::App app{"bsn runs one Bayesian analysis, described by a JSON settings file, on a CSV data file.", "bsn"};
    app.set_version_flag("--version", Version());
    app.require_subcommand(1);
    app.footer(MainHelpFooter());
    RunOptions options;
    CLI::App* run = app.add_subcommand("run", "Run the analysis SETTINGS describes on the records of DATA");
    run->add_option("SETTINGS", options.settingsPath, "JSON settings file (keys listed below)")->required();
    run->add_option("DATA", options.dataPath, "CSV data file; its first row names the columns")->required();
    run->add_option("--json", options.jsonPath, "Write status, warnings and results as JSON to PATH ('-': stdout, "
                                                "then no tables)")
        ->type_name("PATH");
    run->add_option("--plots", options.plotsDir, "Write one SVG per test variable (prior, posterior and likelihood on "
                                                 "one axis) and per figure into DIR")
        ->type_name("DIR");
    run->add_option("--report", options.reportPath,
                     "Write one self-contained HTML page (settings, status, warnings, every table and plot) to FILE")
        ->type_name("FILE");
    run->add_flag("-q,--quiet", options.quiet, "No tables; only warnings and status");
    run->add_option("--threads", options.threads, "Worker threads for the pairs of a correlation analysis (default: "
                                                  "every core); MaxThreadNum in SETTINGS takes precedence")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    run->add_option("--pmml", options.pmmlPath, "Regression and ANOVA: write the fitted model as a PMML 4.4 document "
                                                "to PATH")
        ->type_name("PATH");
    run->add_flag("--pmml-covariance", options.pmmlCovariance, "With --pmml: add the posterior covariance of the "
                                                               "coefficients (PCovMatrix)");
    run->add_option("--score", options.scorePath, "Regression and ANOVA: score every record of NEW (a CSV file with "
                                                  "the predictors' columns)")
        ->type_name("NEW");
    run->add_option("--scores", options.scoresPath, "Where the scores of --score go (default '-': stdout, then no "
                                                    "tables)")
        ->type_name("PATH");
    run->footer(RunHelpFooter());
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        const int code = app.exit(e, out, err);
        return code == 0 ? kExitBuilt : kExitBadInput;
    }
    options.progress = &err == &std::cerr && ::isatty(STDERR_FILENO) != 0 && !options.quiet;
    return RunAnalysis(options, out, err);
}

} // namespace bsncli
