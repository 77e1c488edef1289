#include "cli/resultview.h"

#include <algorithm>
#include <ostream>

#include <fmt/format.h>

#include "cli/settingsjson.h"
#include "platform/common/mcmv.h"

namespace bsncli {

using MCCommon_850::MCMV;
using nlohmann::ordered_json;

std::string DataInfo::Name(int index) const {
    if (index >= 0 && static_cast<std::size_t>(index) < columns.size()) return columns[static_cast<std::size_t>(index)];
    return fmt::format("#{}", index);
}

std::vector<std::string> DataInfo::Names(const std::vector<int>& indices) const {
    std::vector<std::string> names;
    for (int i : indices) names.push_back(Name(i));
    return names;
}

// --- tables -------------------------------------------------------------------

void TextTable::AddColumn(std::string header, std::vector<std::string> cells) {
    m_columns.emplace_back(std::move(header), std::move(cells));
}

std::size_t TextTable::Rows() const {
    std::size_t rows = 0;
    for (const auto& c : m_columns) rows = std::max(rows, c.second.size());
    return rows;
}

void TextTable::Print(std::ostream& os) const {
    const std::size_t rows = Rows();
    std::vector<std::size_t> width;
    for (const auto& [header, cells] : m_columns) {
        std::size_t w = header.size();
        for (const auto& cell : cells) w = std::max(w, cell.size());
        width.push_back(w);
    }
    auto line = [&](auto cellOf) {
        std::string out;
        for (std::size_t c = 0; c < m_columns.size(); ++c) {
            const std::string cell = cellOf(c);
            if (c > 0) out += "  ";
            out += c == 0 ? fmt::format("{:<{}}", cell, width[c]) : fmt::format("{:>{}}", cell, width[c]);
        }
        while (!out.empty() && out.back() == ' ') out.pop_back();
        os << "  " << out << '\n';
    };
    os << m_title << '\n';
    line([&](std::size_t c) { return m_columns[c].first; });
    std::size_t total = 0;
    for (std::size_t w : width) total += w;
    os << "  " << std::string(total + 2 * (width.empty() ? 0 : width.size() - 1), '-') << '\n';
    for (std::size_t r = 0; r < rows; ++r)
        line([&](std::size_t c) {
            const auto& cells = m_columns[c].second;
            return r < cells.size() ? cells[r] : std::string(".");
        });
    for (const auto& note : m_notes) os << "  " << note << '\n';
    os << '\n';
}

std::string FormatNumber(double value) {
    if (MCMV::IsMissing(value)) return ".";
    return fmt::format("{:.6g}", value);
}

std::vector<std::string> FormatNumbers(const std::vector<double>& values, std::size_t rows) {
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < rows; ++i) cells.push_back(i < values.size() ? FormatNumber(values[i]) : ".");
    return cells;
}

const char* const kLogFactorNote =
    "exp(x): the factor is too large or too small to print; x is its natural logarithm.";

std::vector<std::string> FormatBayesFactors(const std::vector<double>& values, const std::vector<bool>& isLog,
                                            std::size_t rows) {
    std::vector<std::string> cells = FormatNumbers(values, rows);
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (i < isLog.size() && isLog[i] && cells[i] != ".") cells[i] = "exp(" + cells[i] + ")";
    return cells;
}

TextTable BayesFactorTable(std::string title, const std::vector<std::string>& names,
                           const std::vector<double>& factors, const std::vector<bool>& isLog) {
    TextTable table(std::move(title));
    table.AddColumn("Variable", names);
    table.AddColumn("Bayes factor", FormatBayesFactors(factors, isLog, names.size()));
    table.AddNote("Bayes factor of the null against the alternative: values above 1 favour the null.");
    if (std::find(isLog.begin(), isLog.end(), true) != isLog.end()) table.AddNote(kLogFactorNote);
    return table;
}

TextTable PosteriorTable(std::string title, const std::vector<std::string>& names, double ciLevel,
                         const std::vector<double>& modes, const std::vector<double>& means,
                         const std::vector<double>& variances, const std::vector<double>& lower,
                         const std::vector<double>& upper) {
    const std::size_t rows = names.size();
    const std::string level = MCMV::IsMissing(ciLevel) ? std::string() : fmt::format("{:g}% ", ciLevel);
    TextTable table(std::move(title));
    table.AddColumn("Variable", names);
    table.AddColumn("Mode", FormatNumbers(modes, rows));
    table.AddColumn("Mean", FormatNumbers(means, rows));
    table.AddColumn("Variance", FormatNumbers(variances, rows));
    table.AddColumn(level + "lower", FormatNumbers(lower, rows));
    table.AddColumn(level + "upper", FormatNumbers(upper, rows));
    table.AddNote("Limits of the equal-tailed credible interval.");
    return table;
}

namespace {
Curve curveAt(const Curves& x, const Curves& y, std::size_t i) {
    Curve c;
    if (i < x.size()) c.x = x[i];
    if (i < y.size()) c.y = y[i];
    return c;
}
} // namespace

PlotNotes MakePlotNotes(const MCBSN_850::BSNSettings& settings, const std::vector<double>& lower,
                        const std::vector<double>& upper, const std::vector<double>& factors,
                        const std::vector<bool>& factorIsLog) {
    PlotNotes notes;
    notes.ciLower = lower;
    notes.ciUpper = upper;
    notes.ciLevel = settings.GetCILevel();
    notes.bayesFactors = factors;
    notes.bayesFactorIsLog = factorIsLog;
    return notes;
}

void AddPlots(ResultView& view, const std::vector<std::string>& names, const std::string& parameter,
              const Curves& argsLikelihood,
              const Curves& argsPrior, const Curves& argsPosterior, const Curves& logLikelihoods,
              const Curves& priors, const Curves& posteriors, const PlotNotes& notes) {
    const auto at = [](const std::vector<double>& v, std::size_t i) { return i < v.size() ? v[i] : MCMV::Missing(); };
    for (std::size_t i = 0; i < names.size(); ++i) {
        PlotSet plot;
        plot.variable = names[i];
        plot.parameter = parameter;
        plot.logLikelihood = curveAt(argsLikelihood, logLikelihoods, i);
        plot.prior = curveAt(argsPrior, priors, i);
        plot.posterior = curveAt(argsPosterior, posteriors, i);
        if (plot.logLikelihood.y.empty() && plot.prior.y.empty() && plot.posterior.y.empty()) continue;
        plot.ciLower = at(notes.ciLower, i);
        plot.ciUpper = at(notes.ciUpper, i);
        plot.ciLevel = notes.ciLevel;
        plot.nullValue = at(notes.nullValues, i);
        plot.bayesFactor = at(notes.bayesFactors, i);
        plot.bayesFactorIsLog = i < notes.bayesFactorIsLog.size() && notes.bayesFactorIsLog[i];
        plot.direction = notes.direction;
        view.plots.push_back(plot);
    }
}

std::vector<double> TestedNullValues(const MCBSN_850::BSNSettings& settings, std::size_t rows) {
    if (!WantsFactors(settings)) return {};
    const std::vector<double>& given = settings.GetNullValues();
    std::vector<double> values(rows, 0.0);
    for (std::size_t i = 0; i < rows && i < given.size(); ++i)
        if (!MCMV::IsMissing(given[i])) values[i] = given[i];
    return values;
}

bool WantsFactors(const MCBSN_850::BSNSettings& settings) {
    return settings.GetAnalysType() != MCBSN_850::BSNConst::Posterior;
}

bool WantsPosterior(const MCBSN_850::BSNSettings& settings) {
    return settings.GetAnalysType() != MCBSN_850::BSNConst::BayesFactor;
}

// --- JSON -----------------------------------------------------------------------

namespace {
ordered_json number(double v) { return MCMV::IsMissing(v) ? ordered_json(nullptr) : ordered_json(v); }
} // namespace

ordered_json ToJson(double value) { return number(value); }

ordered_json ToJson(const MCBSN_850::BayesEstimation& e) {
    ordered_json j;
    j["mode"] = number(e.GetMode());
    j["mean"] = number(e.GetMean());
    j["variance"] = number(e.GetVariance());
    j["lower"] = number(e.GetLower());
    j["upper"] = number(e.GetUpper());
    return j;
}

ordered_json ToJson(const MCMath_850::MCTestStats& t) {
    ordered_json j;
    j["statistic"] = number(t.GetWald());
    j["df"] = number(t.GetDF());
    j["df2"] = number(t.GetDF2());
    j["type"] = t.GetTestType();
    j["sig"] = number(t.GetSig());
    return j;
}

ordered_json ToJson(const std::vector<double>& values) {
    ordered_json out = ordered_json::array();
    for (double v : values) out.push_back(number(v));
    return out;
}

ordered_json ToJson(const std::vector<int>& values) { return ordered_json(values); }

ordered_json ToJson(const std::vector<bool>& values) {
    ordered_json out = ordered_json::array();
    for (bool v : values) out.push_back(v);
    return out;
}

ordered_json ToJson(const std::vector<std::vector<double>>& values) {
    ordered_json out = ordered_json::array();
    for (const auto& v : values) out.push_back(ToJson(v));
    return out;
}

ordered_json ToJson(const std::vector<std::pair<double, double>>& values) {
    ordered_json out = ordered_json::array();
    for (const auto& [a, b] : values) out.push_back(ordered_json::array({number(a), number(b)}));
    return out;
}

ordered_json ToJson(const MCBSN_850::BSNSettings& settings, const DataInfo& data) {
    return SettingsToJson(settings, data.columns);
}

namespace {
bool isFlatArray(const ordered_json& j) {
    return j.is_array() && std::none_of(j.begin(), j.end(), [](const ordered_json& e) { return e.is_structured(); });
}
} // namespace

namespace {

// Text from the data (column names, labels, a bad cell quoted in a message)
// need not be valid UTF-8; a bad byte becomes U+FFFD rather than failing
// the whole document.
std::string dumpScalar(const ordered_json& value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace

std::string DumpJson(const ordered_json& value, int indent) {
    const std::string inner(static_cast<std::size_t>(indent) + 2, ' '), outer(static_cast<std::size_t>(indent), ' ');
    if (isFlatArray(value)) {
        std::string out = "[";
        for (std::size_t i = 0; i < value.size(); ++i) out += (i ? ", " : "") + dumpScalar(value[i]);
        return out + "]";
    }
    if (value.is_array()) {
        std::string out = "[\n";
        for (std::size_t i = 0; i < value.size(); ++i)
            out += inner + DumpJson(value[i], indent + 2) + (i + 1 < value.size() ? ",\n" : "\n");
        return out + outer + "]";
    }
    if (value.is_object() && !value.empty()) {
        std::string out = "{\n";
        std::size_t i = 0;
        for (auto it = value.begin(); it != value.end(); ++it, ++i)
            out += inner + dumpScalar(ordered_json(it.key())) + ": " + DumpJson(it.value(), indent + 2) +
                   (i + 1 < value.size() ? ",\n" : "\n");
        return out + outer + "}";
    }
    return dumpScalar(value);
}

void PutCommonGetters(const MCBSN_850::BSNOutputStats& result, const MCBSN_850::BSNSettings& settings,
                      const DataInfo& data, ResultView& view) {
    view.getters["GetModelType"] = static_cast<int>(result.GetModelType());
    view.getters["GetOutputType"] = static_cast<int>(result.GetOutputType());
    view.getters["GetSettings"] = ToJson(settings, data);
}

} // namespace bsncli
