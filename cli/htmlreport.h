#pragma once
// The one-file report of a run: an HTML page that holds everything the
// terminal shows (the analysis, the input files, the status and warnings,
// every result table) together with the settings used and every plot and
// figure. CSS and SVG are inline, there is no script and nothing is fetched,
// so the file opens in any browser without a network. The page is also
// well-formed XML, which lets programs read it back.
//
// Nothing in it belongs to one analysis: the tables, plots and figures
// come from the ResultView that the analysis's adapter filled.
#include <string>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "cli/resultview.h"

namespace bsncli {

struct ReportInput {
    std::string analysis;  // e.g. "One-Sample Normal"
    std::string settingsPath;
    std::string dataPath;
    long long nRecords = 0;
    const MCBSN_850::BSNSettings* settings = nullptr;  // as the analysis ran them
    const DataInfo* data = nullptr;
    std::string status;  // as on the terminal, without "Status: "
    bool failed = false;  // the status is an error
    std::vector<std::string> warnings;  // one line each, as on the terminal
    const ResultView* view = nullptr;  // null when there are no results
};

// The settings as rows of (key, readable value): enumerations with their
// words, variables by name, missing values as "missing". `changedOnly`
// keeps the keys whose value differs from a fresh record of the same model
// type, i.e. what the settings file or the host set.
std::vector<std::pair<std::string, std::string>> SettingsRows(const MCBSN_850::BSNSettings& settings,
                                                              const DataInfo& data, bool changedOnly);

// The whole page.
std::string RenderHtmlReport(const ReportInput& input);

} // namespace bsncli
