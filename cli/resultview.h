#pragma once
// What the host shows of one result object: its getters as JSON, its
// readable tables and its curves. Each result class has a small adapter
// (results_*.cpp) that fills a ResultView; the host then prints, writes and
// plots it without knowing the class.
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "bsn/frame/bsnoutputstats.h"
#include "bsn/frame/bsnsettings.h"
#include "bsn/regression/bayesestimation.h"
#include "platform/common/mcmv.h"
#include "platform/stats/mcteststats.h"
#include "platform/variables/mcvarlist.h"

namespace bsncli {

// The data as the host loaded it: column names (a variable's index is its
// column) and the variable list with the labels of coded columns.
struct DataInfo {
    std::vector<std::string> columns;
    MCXML_850::MCVarList varList;

    std::string Name(int index) const;
    std::vector<std::string> Names(const std::vector<int>& indices) const;
};

// One sampled curve; missing points are the system-missing value.
struct Curve {
    std::vector<double> x;
    std::vector<double> y;
};

// Which way a Bayes factor points: most analyses report the null against
// the alternative (above 1 favours the null); the regression's null
// comparison reports the model against the intercept-only model, and its
// full comparison the model against the full model.
enum class FactorDirection { NullOverAlternative, ModelOverNull, ModelOverFull };

// The curves of one plotted quantity (a test variable, a pair, a
// coefficient, a cell...) and what the picture should say about them. The
// likelihood holds log-likelihood values up to a constant unless
// `likelihoodIsScaled` says it is already exp(ll - max ll). A flat prior is
// stored as its arguments and exactly two values 1.0. Every annotation is
// optional: a missing number is not drawn.
struct PlotSet {
    std::string variable;   // the title: what is plotted
    std::string parameter;  // what the x axis shows ("proportion", "rate", ...)
    Curve logLikelihood;
    Curve prior;
    Curve posterior;
    bool likelihoodIsScaled = false;

    double ciLower = MCCommon_850::MCMV::Missing();  // credible interval of the posterior
    double ciUpper = MCCommon_850::MCMV::Missing();
    double ciLevel = MCCommon_850::MCMV::Missing();  // percent
    double nullValue = MCCommon_850::MCMV::Missing();
    double bayesFactor = MCCommon_850::MCMV::Missing();
    bool bayesFactorIsLog = false;  // bayesFactor holds ln(BF)
    FactorDirection direction = FactorDirection::NullOverAlternative;
};

// A picture that is not a set of curves (a heat map of a table, ...),
// already rendered as a complete SVG document. --plots writes it as
// <name>.svg; the report inlines it into one page beside the other figures,
// so any id it uses must be unique to it (e.g. prefixed with its name).
struct SvgFigure {
    std::string name;  // file-name stem and caption
    std::string svg;
};

// A plain aligned text table: labelled columns, one row per test variable.
class TextTable {
public:
    explicit TextTable(std::string title) : m_title(std::move(title)) {}
    // The first column added is the row label and is left-aligned.
    void AddColumn(std::string header, std::vector<std::string> cells);
    void AddNote(std::string note) { m_notes.push_back(std::move(note)); }
    void Print(std::ostream& os) const;
    std::size_t Rows() const;

    const std::string& Title() const { return m_title; }
    const std::vector<std::pair<std::string, std::vector<std::string>>>& Columns() const { return m_columns; }
    const std::vector<std::string>& Notes() const { return m_notes; }

private:
    std::string m_title;
    std::vector<std::pair<std::string, std::vector<std::string>>> m_columns;
    std::vector<std::string> m_notes;
};

struct ResultView {
    nlohmann::ordered_json getters = nlohmann::ordered_json::object();
    std::vector<TextTable> tables;
    std::vector<PlotSet> plots;
    std::vector<SvgFigure> figures;
};

// Table cells: "." for a missing value, 6 significant digits otherwise.
std::string FormatNumber(double value);
// One cell per row; a vector shorter than the rows (a statistic that was
// not asked for) leaves its cells missing.
std::vector<std::string> FormatNumbers(const std::vector<double>& values, std::size_t rows);
// A factor whose log flag is set prints as "exp(<log>)": it is too large or
// too small to print as it stands.
std::vector<std::string> FormatBayesFactors(const std::vector<double>& values, const std::vector<bool>& isLog,
                                            std::size_t rows);
extern const char* const kLogFactorNote;

// JSON of getter values: missing numbers become null, also inside vectors;
// pairs become 2-arrays; settings use the settings-file keys.
nlohmann::ordered_json ToJson(double value);
nlohmann::ordered_json ToJson(const MCBSN_850::BayesEstimation& e);  // {"mode","mean","variance","lower","upper"}
nlohmann::ordered_json ToJson(const MCMath_850::MCTestStats& t);    // {"statistic","df","df2","type","sig"}
nlohmann::ordered_json ToJson(const std::vector<double>& values);
nlohmann::ordered_json ToJson(const std::vector<int>& values);
nlohmann::ordered_json ToJson(const std::vector<bool>& values);
nlohmann::ordered_json ToJson(const std::vector<std::vector<double>>& values);
nlohmann::ordered_json ToJson(const std::vector<std::pair<double, double>>& values);
nlohmann::ordered_json ToJson(const MCBSN_850::BSNSettings& settings, const DataInfo& data);

// The getters every result shares: GetModelType and GetOutputType (as
// numbers) and GetSettings.
void PutCommonGetters(const MCBSN_850::BSNOutputStats& result, const MCBSN_850::BSNSettings& settings,
                      const DataInfo& data, ResultView& view);

using Curves = std::vector<std::vector<double>>;

// The tables and plots every one-sample style result shares.
TextTable BayesFactorTable(std::string title, const std::vector<std::string>& names,
                           const std::vector<double>& factors, const std::vector<bool>& isLog);
TextTable PosteriorTable(std::string title, const std::vector<std::string>& names, double ciLevel,
                         const std::vector<double>& modes, const std::vector<double>& means,
                         const std::vector<double>& variances, const std::vector<double>& lower,
                         const std::vector<double>& upper);
// What the plots say beside the curves, one entry per name (a shorter or
// empty vector leaves the rest unannotated).
struct PlotNotes {
    std::vector<double> ciLower, ciUpper;
    double ciLevel = MCCommon_850::MCMV::Missing();
    std::vector<double> nullValues;
    std::vector<double> bayesFactors;
    std::vector<bool> bayesFactorIsLog;
    FactorDirection direction = FactorDirection::NullOverAlternative;
};
// The notes most analyses give: the credible limits at the settings' level
// and the Bayes factors (null over alternative).
PlotNotes MakePlotNotes(const MCBSN_850::BSNSettings& settings, const std::vector<double>& lower,
                        const std::vector<double>& upper, const std::vector<double>& factors,
                        const std::vector<bool>& factorIsLog = {});
void AddPlots(ResultView& view, const std::vector<std::string>& names, const std::string& parameter,
              const Curves& argsLikelihood,
              const Curves& argsPrior, const Curves& argsPosterior, const Curves& logLikelihoods,
              const Curves& priors, const Curves& posteriors, const PlotNotes& notes = {});

// The value each test variable's null hypothesis fixes (the entry of
// NullValues, 0 where the list is empty or the entry missing), or nothing
// when no Bayes factor was asked for.
std::vector<double> TestedNullValues(const MCBSN_850::BSNSettings& settings, std::size_t rows);

// Whether the settings asked for Bayes factors, and for a posterior.
bool WantsFactors(const MCBSN_850::BSNSettings& settings);
bool WantsPosterior(const MCBSN_850::BSNSettings& settings);

// The JSON text the host writes: objects one key per line, arrays of
// numbers on one line each, so curves stay readable.
std::string DumpJson(const nlohmann::ordered_json& value, int indent = 0);

// Fills the view from whichever result class the object is; false for a
// result kind the host has no adapter for.
bool DescribeResult(const MCBSN_850::BSNOutputStats& result, const DataInfo& data, ResultView& view);

} // namespace bsncli
