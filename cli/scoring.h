#pragma once
// What the host does with a fitted regression or ANOVA model besides
// reporting it: write it as a PMML document (--pmml, --pmml-covariance) and
// score the records of a new CSV file (--score NEW.csv, --scores OUT.csv|-).
#include <iosfwd>
#include <string>
#include <vector>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"
#include "bsn/regression/bsnmultiregoutputstats.h"
#include "cli/host.h"
#include "cli/resultview.h"

namespace bsncli {

// The columns appended to each scored record.
extern const char* const kScoreColumns[5];

// True when the run asks for a PMML document or for scores.
bool WantsModelOutputs(const RunOptions& options);
// True when the scores go to standard output (which then carries no tables).
bool ScoresToStdout(const RunOptions& options);
// Throws InputError when the options cannot be met: --pmml or --score with
// a model type other than 4 or 5, --scores or --pmml-covariance without
// the option they belong to, both the scores and the JSON on stdout.
void CheckModelOutputOptions(const RunOptions& options, const MCBSN_850::BSNSettings& settings);

// What writing the model outputs gave: lines for the report, and an error
// (with the exit status it calls for) that stopped them.
struct ModelOutputReport {
    std::vector<std::string> notes;
    std::string error;
    int exitCode = 0;
};

// Writes the PMML document and the scores the options ask for (`out` is
// standard output). Errors are caught into the report.
ModelOutputReport WriteModelOutputs(const RunOptions& options, const MCBSN_850::BSNOutputStats& result,
                                    const DataInfo& data, std::ostream& out);
// Prints the notes to `report` (unless quiet) and the error to `err`;
// returns the exit status the error calls for, 0 without one. When no model
// was built, says that nothing was written.
int ReportModelOutputs(const RunOptions& options, const ModelOutputReport& outputs, bool built,
                       std::ostream& report, std::ostream& err);

// Scores every record of the CSV file newPath and writes its columns with
// the five score columns to `out`; returns the number of records. The file
// must hold every predictor of the model under its name in the training
// data; a missing predictor value gives empty scores, a factor value not
// seen in the training data or a covariate value that is not a number is an
// InputError naming the file, line and column.
long long ScoreCsv(const MCBSN_850::BSNMultiRegOutputStats& result, const DataInfo& data, const std::string& newPath,
                   std::ostream& out);

// Writes the model's PMML document to `os`; with covariance, the posterior
// covariance of the coefficients as its PCovMatrix (InputError when the
// model has none). Returns the exporter's status.
MCCommon_850::MCStatus WritePmml(const MCBSN_850::BSNMultiRegOutputStats& result, const DataInfo& data,
                                 bool covariance, std::ostream& os);

} // namespace bsncli
