#include "cli/scoring.h"

#include <charconv>
#include <map>
#include <ostream>
#include <unordered_map>

#include <fmt/format.h>

#include "bsn/regression/bsnpmmlexporter.h"
#include "cli/atomicfile.h"
#include "cli/outputfile.h"
#include "cli/settingsjson.h"
#include "platform/common/mcmv.h"
#include "platform/pmml/mcregsettings.h"
#include "platform/records/csvrecorditer.h"

namespace bsncli {

using MCBSN_850::BSNMultiRegOutputStats;
using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
namespace C = MCBSN_850::BSNConst;

const char* const kScoreColumns[5] = {"predicted_mode", "predicted_mean", "predicted_variance", "predicted_lower",
                                      "predicted_upper"};

bool WantsModelOutputs(const RunOptions& options) { return !options.pmmlPath.empty() || !options.scorePath.empty(); }

bool ScoresToStdout(const RunOptions& options) {
    return !options.scorePath.empty() && (options.scoresPath.empty() || options.scoresPath == "-");
}

void CheckModelOutputOptions(const RunOptions& options, const MCBSN_850::BSNSettings& settings) {
    if (!options.scoresPath.empty() && options.scorePath.empty())
        throw InputError("--scores names where the scores of --score go; give --score NEW.csv as well");
    if (options.pmmlCovariance && options.pmmlPath.empty())
        throw InputError("--pmml-covariance adds to the document of --pmml; give --pmml MODEL.pmml as well");
    if (!WantsModelOutputs(options)) return;
    const C::ModelTypes model = settings.GetModelType();
    if (model != C::Regression && model != C::Anova)
        throw InputError(fmt::format("{} works on regression (model type 4) and ANOVA (model type 5) models; the "
                                     "settings give model type {} ({})",
                                     options.pmmlPath.empty() ? "--score" : "--pmml", static_cast<int>(model),
                                     EnumWord(model)));
    if (ScoresToStdout(options) && options.jsonPath == "-")
        throw InputError("--json - and the scores of --score cannot both go to standard output; name a file for one "
                         "of them (--scores OUT.csv)");
}

namespace {

std::string location(const std::string& path, long line) { return fmt::format("{}:{}: ", path, line); }

// A field as CSV text: quoted when it holds a comma, a quote or a line break.
void appendField(std::string& out, std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        out.append(text);
        return;
    }
    out.push_back('"');
    for (char c : text) {
        if (c == '"') out.push_back('"');
        out.push_back(c);
    }
    out.push_back('"');
}

// A comma and the shortest text that reads back as v (nothing for missing).
void appendNumber(std::string& out, double v) {
    out.push_back(',');
    if (MCMV::IsMissing(v)) return;
    char text[32];
    const auto r = std::to_chars(text, text + sizeof text, v);
    out.append(text, r.ptr);
}

// A predictor of the model: its column in the new file and, for a factor,
// how its values turn into the category codes of the training data (the
// same rule as the training file's: a spelling seen there, or a number
// equal to one seen there).
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>()(s); }
};

struct Predictor {
    int variable = -1;
    std::size_t column = 0;
    bool factor = false;
    std::unordered_map<std::string, int, TextHash, std::equal_to<>> codeOfText;
    std::map<double, int> codeOfNumber;
};

std::vector<Predictor> predictorsOf(const BSNMultiRegOutputStats& result, const DataInfo& data,
                                    const std::vector<std::string>& header, const std::string& newPath) {
    std::vector<Predictor> predictors;
    for (const auto& e : result.GetDesign().GetEffects()) {
        Predictor p;
        p.variable = e.variable;
        p.factor = !e.IsCovariate();
        const std::string name = data.Name(e.variable);
        std::size_t c = 0;
        while (c < header.size() && header[c] != name) ++c;
        if (c == header.size())
            throw InputError(fmt::format("{}: no column '{}'; the model needs every predictor ({} '{}') by the name it "
                                         "has in the training data",
                                         newPath, name, p.factor ? "factor" : "covariate", name));
        p.column = c;
        if (p.factor && data.varList.IsValidIndex(e.variable)) {
            const auto& labels = data.varList.Get(e.variable).GetValueLabels();
            for (std::size_t k = 0; k < labels.size(); ++k) {
                p.codeOfText.emplace(labels[k], static_cast<int>(k));
                double number = 0.0;
                if (MCCommon_850::CsvParseNumber(labels[k], number) && !MCMV::IsMissing(number))
                    p.codeOfNumber.emplace(number, static_cast<int>(k));
            }
        }
        predictors.push_back(std::move(p));
    }
    return predictors;
}

} // namespace

long long ScoreCsv(const BSNMultiRegOutputStats& result, const DataInfo& data, const std::string& newPath,
                   std::ostream& out) {
    std::vector<std::string> header;
    if (std::string e = MCCommon_850::ReadCsvHeader(newPath, header); !e.empty()) throw InputError(e);
    std::vector<Predictor> predictors = predictorsOf(result, data, header, newPath);

    MCCommon_850::CsvTokenizer tokenizer;
    std::string error;
    if (!tokenizer.Open(newPath, error)) throw InputError(error);
    std::vector<MCCommon_850::CsvField> fields;
    std::size_t nFields = 0;
    long line = 0;
    if (tokenizer.Next(fields, header.size() + 1, nFields, line, error) != MCCommon_850::CsvTokenizer::Status::Row)
        throw InputError(error.empty() ? newPath + ": the header row changed while it was read" : error);

    std::string buffer;
    buffer.reserve(1 << 20);
    for (std::size_t c = 0; c < header.size(); ++c) {
        if (c > 0) buffer.push_back(',');
        appendField(buffer, header[c]);
    }
    for (const char* name : kScoreColumns) buffer.append(",").append(name);
    buffer.push_back('\n');

    std::vector<double> values(std::max<std::size_t>(data.columns.size(), 1), MCMV::Missing());
    const MCCommon_850::Record record(values.data(), values.size());
    std::string scratch;
    MCBSN_850::BayesEstimation scores;
    long long nRecords = 0;
    for (;;) {
        const auto status = tokenizer.Next(fields, header.size() + 1, nFields, line, error);
        if (status == MCCommon_850::CsvTokenizer::Status::End) break;
        if (status == MCCommon_850::CsvTokenizer::Status::Error) throw InputError(error);
        if (nFields != header.size())
            throw InputError(fmt::format("{}expected {} fields, found {}", location(newPath, line), header.size(),
                                         nFields));
        for (Predictor& p : predictors) {
            const MCCommon_850::CsvField& field = fields[p.column];
            const std::string_view text = MCCommon_850::CsvFieldText(field, scratch);
            double& value = values[static_cast<std::size_t>(p.variable)];
            value = MCMV::Missing();
            if (MCCommon_850::CsvIsMissingText(text)) continue;
            if (!p.factor) {
                if (!MCCommon_850::CsvParseNumber(text, value))
                    throw InputError(fmt::format("{}column '{}': '{}' is not a number", location(newPath, field.line),
                                                 header[p.column], text));
                continue;
            }
            if (const auto it = p.codeOfText.find(text); it != p.codeOfText.end()) {
                value = it->second;
                continue;
            }
            double number = 0.0;
            if (MCCommon_850::CsvParseNumber(text, number)) {
                if (const auto it = p.codeOfNumber.find(number); it != p.codeOfNumber.end()) {
                    value = it->second;
                    continue;
                }
            }
            throw InputError(fmt::format("{}column '{}': value '{}' of the factor does not occur in the training "
                                         "data, so the model has no parameter for it",
                                         location(newPath, field.line), header[p.column], text));
        }
        result.Score(record, scores);
        for (std::size_t c = 0; c < nFields; ++c) {
            if (c > 0) buffer.push_back(',');
            appendField(buffer, MCCommon_850::CsvFieldText(fields[c], scratch));
        }
        appendNumber(buffer, scores.GetMode());
        appendNumber(buffer, scores.GetMean());
        appendNumber(buffer, scores.GetVariance());
        appendNumber(buffer, scores.GetLower());
        appendNumber(buffer, scores.GetUpper());
        buffer.push_back('\n');
        // Scoring a long file is part of writing the output: a cancellation
        // stops it like any other output file.
        if (++nRecords % 4096 == 0)
            if (const OutputBatch* batch = OutputBatch::Active(); batch != nullptr) batch->Poll();
        if (buffer.size() >= (1u << 20)) {
            out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
            buffer.clear();
        }
    }
    out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    out.flush();
    return nRecords;
}

MCStatus WritePmml(const BSNMultiRegOutputStats& result, const DataInfo& data, bool covariance, std::ostream& os) {
    MCMath_850::MCRegSettings regSettings;
    result.FillRegSettings(regSettings);
    MCMath_850::MCSymMatrix cov;
    if (covariance && !result.GetPosteriorCovariance(cov))
        throw InputError("--pmml-covariance: the model has no posterior covariance (AnalysType 1 builds no posterior, "
                         "and with 2 or fewer degrees of freedom the coefficients have no variance)");
    MCBSN_850::BSNPMMLExporter exporter(result.GetSettings(), regSettings, data.varList);
    exporter.SetTotalWeight(result.GetNCases());
    exporter.SetApplication("bsn", Version());
    return exporter.ExportPMML(os, covariance ? &cov : nullptr);
}

namespace {

std::string describeStatus(const MCStatus& s, const DataInfo& data) {
    std::string text = fmt::format("status {}: {}", s.GetCode(), StatusMessage(s.GetCode()));
    if (s.GetCode() == MCBSN_850::BSNPMMLExporter::kMissingVariable && s.HasDiscreteDatum(0))
        text += fmt::format(" [{} {}]", s.GetDiscreteDatum(1) == 1 ? "covariate" : "factor",
                            data.varList.IsValidIndex(s.GetDiscreteDatum(0)) ? data.Name(s.GetDiscreteDatum(0))
                                                                            : fmt::format("#{}", s.GetDiscreteDatum(0)));
    return text;
}

} // namespace

ModelOutputReport WriteModelOutputs(const RunOptions& options, const MCBSN_850::BSNOutputStats& output,
                                    const DataInfo& data, std::ostream& out) {
    ModelOutputReport report;
    const auto* result = dynamic_cast<const BSNMultiRegOutputStats*>(&output);
    if (result == nullptr) return report;
    try {
        if (!options.pmmlPath.empty()) {
            AtomicOutputFile file(options.pmmlPath, "--pmml");
            const MCStatus status = WritePmml(*result, data, options.pmmlCovariance, file.Stream());
            if (status.IsError()) {
                report.error = fmt::format("the PMML document was not written: {}", describeStatus(status, data));
                report.exitCode = kExitAnalysisError;
                return report;
            }
            file.Commit();
            report.notes.push_back(fmt::format("PMML: model written to {}{}", options.pmmlPath,
                                               options.pmmlCovariance ? " (with the posterior covariance)" : ""));
        }
        if (!options.scorePath.empty()) {
            if (ScoresToStdout(options)) {
                const long long n = ScoreCsv(*result, data, options.scorePath, out);
                report.notes.push_back(fmt::format("Scores: {} record(s) of {} written to standard output", n,
                                                   options.scorePath));
            } else {
                AtomicOutputFile file(options.scoresPath, "--scores");
                const long long n = ScoreCsv(*result, data, options.scorePath, file.Stream());
                file.Commit();
                report.notes.push_back(
                    fmt::format("Scores: {} record(s) of {} written to {}", n, options.scorePath, options.scoresPath));
            }
        }
    } catch (const InputError& e) {
        report.error = e.what();
        report.exitCode = kExitBadInput;
    }
    return report;
}

int ReportModelOutputs(const RunOptions& options, const ModelOutputReport& outputs, bool built, std::ostream& report,
                       std::ostream& err) {
    if (!WantsModelOutputs(options)) return 0;
    if (!built) {
        err << "bsn: note: no model was built, so no PMML document or scores were written\n";
        return 0;
    }
    if (!options.quiet)
        for (const std::string& note : outputs.notes) report << note << '\n';
    if (outputs.error.empty()) return 0;
    err << "bsn: error: " << outputs.error << '\n';
    return outputs.exitCode;
}

} // namespace bsncli
