// Adapter of BSNLogLinearOutputStats: the contingency table with expected
// counts, the classical tests, the Bayes factor for independence and the
// posterior log odds ratios of pairs of categories; a heat map of the table
// and the posterior density of the first pairs' log odds ratios.
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "bsn/loglinear/bsnloglinearoutputstats.h"
#include "cli/results.h"
#include "platform/common/mcmv.h"

namespace bsncli {

using MCBSN_850::BayesEstimation;
using MCBSN_850::BSNContingency;
using MCBSN_850::BSNSettings;
using MCCommon_850::MCMV;
using nlohmann::ordered_json;
namespace C = MCBSN_850::BSNConst;

namespace {

ordered_json tableJson(const BSNContingency& t) {
    ordered_json j;
    j["GetAllCounts"] = ToJson(t.GetAllCounts());
    j["GetExpectedCounts"] = ToJson(t.GetExpectedCounts());
    j["GetRowTotals"] = ToJson(t.GetRowTotals());
    j["GetColTotals"] = ToJson(t.GetColTotals());
    j["GetTotalWeight"] = ToJson(t.GetTotalWeight());
    j["GetNonEmptyRows"] = ToJson(t.GetNonEmptyRows());
    j["GetNonEmptyCols"] = ToJson(t.GetNonEmptyCols());
    j["GetNCellsExpLess5"] = t.GetNCellsExpLess5();
    j["GetMinExpectedCount"] = ToJson(t.GetMinExpectedCount());
    j["GetPctCellsExpLess5"] = ToJson(t.GetPctCellsExpLess5());
    return j;
}

// The label of category `code` of a factor: its value label when the host
// coded the column, else the code itself.
std::string categoryLabel(const DataInfo& data, int var, int code) {
    if (var >= 0 && var < data.varList.Size()) {
        const auto& labels = data.varList.Get(var).GetValueLabels();
        if (code >= 0 && static_cast<std::size_t>(code) < labels.size()) return labels[static_cast<std::size_t>(code)];
    }
    return std::to_string(code);
}

std::vector<std::string> categoryLabels(const DataInfo& data, int var, int n) {
    std::vector<std::string> out;
    for (int k = 0; k < n; ++k) out.push_back(categoryLabel(data, var, k));
    return out;
}

// One table of R rows by C columns of numbers, with a label column and, when
// given, a column and a row of totals.
TextTable matrixTable(std::string title, const std::string& corner, const std::vector<std::string>& rowLabels,
                      const std::vector<std::string>& colLabels, const std::vector<std::vector<double>>& values,
                      const std::vector<double>* rowTotals, const std::vector<double>* colTotals, double total) {
    TextTable table(std::move(title));
    std::vector<std::string> first = rowLabels;
    if (rowTotals != nullptr) first.push_back("Total");
    table.AddColumn(corner, first);
    for (std::size_t j = 0; j < colLabels.size(); ++j) {
        std::vector<std::string> cells;
        for (const auto& row : values) cells.push_back(FormatNumber(j < row.size() ? row[j] : MCMV::Missing()));
        if (colTotals != nullptr) cells.push_back(FormatNumber(j < colTotals->size() ? (*colTotals)[j] : MCMV::Missing()));
        table.AddColumn(colLabels[j], cells);
    }
    if (rowTotals != nullptr) {
        std::vector<std::string> cells = FormatNumbers(*rowTotals, rowLabels.size());
        cells.push_back(FormatNumber(total));
        table.AddColumn("Total", cells);
    }
    return table;
}

// Which factor the settings' dispatch computes, in words.
std::string factorMethod(const BSNSettings& s, int rows, int cols) {
    const C::FixType fix = s.GetFixType();
    const std::string margin = fix == C::FixedRow ? "rows fixed" : fix == C::FixedColumn ? "columns fixed" : "total fixed";
    switch (s.GetLogLinModel()) {
    case C::Poisson:
        return "Poisson model, conjugate prior";
    case C::Nonparametric:
        if ((fix == C::FixedRow && rows == 2) || (fix == C::FixedColumn && cols == 2))
            return "nonparametric prior, " + margin;
        return "Dirichlet prior (in place of nonparametric), " + margin;
    default:
        switch (s.GetLogLinPriorType()) {
        case C::LogLinConjugate:
            return "multinomial model, conjugate prior, " + margin;
        case C::LogLinDirichlet:
            return "multinomial model, Dirichlet prior, " + margin;
        case C::LogLinIntrinsic:
            if (rows < 3 && cols < 3) return "intrinsic prior, " + margin;
            return "Dirichlet prior (in place of intrinsic), " + margin;
        default:
            return "no method";
        }
    }
}

std::string escapeXml(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '"')
            out += "&quot;";
        else
            out.push_back(c);
    }
    return out;
}

std::string shortened(const std::string& label, std::size_t most) {
    return label.size() <= most ? label : label.substr(0, most - 1) + "~";
}

// Red for more than expected, blue for fewer, white for as expected, by
// the standardised residual (O - E)/√E, saturating at ±4.
std::string residualColour(double residual) {
    const double s = std::clamp(residual / 4.0, -1.0, 1.0);
    const auto mix = [&](int full) { return static_cast<int>(std::lround(255.0 - (255.0 - full) * std::fabs(s))); };
    if (s >= 0) return fmt::format("rgb(255,{},{})", mix(60), mix(40));
    return fmt::format("rgb({},{},255)", mix(40), mix(110));
}

// A heat map of the table: one square per cell coloured by its
// standardised residual, the count written inside when the square is large
// enough; grey for the cells of empty rows and columns.
std::string heatMapSvg(const BSNContingency& t, const std::string& title, const std::vector<std::string>& rowLabels,
                       const std::vector<std::string>& colLabels) {
    const int R = t.GetNRows(), Cn = t.GetNCols();
    const double cell = std::clamp(560.0 / std::max({R, Cn, 1}), 6.0, 56.0);
    constexpr double kChar = 7.0, kFont = 12.0;
    std::size_t rowChars = 1, colChars = 1;
    for (const auto& l : rowLabels) rowChars = std::max(rowChars, shortened(l, 18).size());
    for (const auto& l : colLabels) colChars = std::max(colChars, shortened(l, 18).size());
    const bool labelRows = cell >= 10.0, labelCols = cell >= 10.0;
    const double left = 16.0 + (labelRows ? kChar * static_cast<double>(rowChars) + 8.0 : 0.0);
    const double titleWidth = 9.0 * static_cast<double>(title.size()) + 32.0;  // 15px bold
    const double top = 44.0 + (labelCols ? kChar * static_cast<double>(colChars) + 8.0 : 0.0);
    const double gridW = cell * Cn, gridH = cell * R;
    const std::string note = "colour: (observed - expected) / &#8730;expected; grey: empty row or column";
    const double noteWidth = 32.0 + 0.6 * 11.0 * static_cast<double>(note.size());  // ample: the entity is one glyph
    const double width = std::max({left + gridW + 24.0, titleWidth, noteWidth});
    const double height = top + gridH + 78.0;

    std::string svg = fmt::format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.0f}\" height=\"{1:.0f}\" viewBox=\"0 0 {0:.0f} {1:.0f}\" "
        "font-family=\"sans-serif\">\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n"
        "<text x=\"16\" y=\"26\" font-size=\"15\" font-weight=\"bold\">{2}</text>\n",
        width, height, escapeXml(title));
    const auto& counts = t.GetAllCounts();
    const auto& expected = t.GetExpectedCounts();
    const bool writeCounts = cell >= 30.0;
    for (int i = 0; i < R; ++i) {
        if (labelRows)
            svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" font-size=\"{}\" text-anchor=\"end\">{}</text>\n",
                               left - 6.0, top + cell * i + cell / 2 + 4, kFont,
                               escapeXml(shortened(rowLabels[static_cast<std::size_t>(i)], 18)));
        for (int j = 0; j < Cn; ++j) {
            const double o = counts[i][j], e = expected[i][j];
            const std::string fill = e > 0.0 ? residualColour((o - e) / std::sqrt(e)) : std::string("#d0d0d0");
            svg += fmt::format("<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" fill=\"{}\" "
                               "stroke=\"#ffffff\" stroke-width=\"1\"/>\n",
                               left + cell * j, top + cell * i, cell, cell, fill);
            if (writeCounts)
                svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" font-size=\"{:.0f}\" text-anchor=\"middle\">{}</text>\n",
                                   left + cell * j + cell / 2, top + cell * i + cell / 2 + 4,
                                   std::min(11.0, cell / 4.0), escapeXml(FormatNumber(o)));
        }
    }
    if (labelCols)
        for (int j = 0; j < Cn; ++j) {
            const double x = left + cell * j + cell / 2 + 4, y = top - 6.0;
            svg += fmt::format("<text x=\"{0:.1f}\" y=\"{1:.1f}\" font-size=\"{2}\" transform=\"rotate(-90 {0:.1f} "
                               "{1:.1f})\">{3}</text>\n",
                               x, y, kFont, escapeXml(shortened(colLabels[static_cast<std::size_t>(j)], 18)));
        }
    // Legend: the residual scale.
    const double ly = top + gridH + 22.0, lw = 200.0;
    svg += "<defs><linearGradient id=\"residual\">";
    for (int k = 0; k <= 8; ++k)
        svg += fmt::format("<stop offset=\"{:.3f}\" stop-color=\"{}\"/>", k / 8.0, residualColour(-4.0 + k));
    svg += "</linearGradient></defs>\n";
    svg += fmt::format("<rect x=\"16\" y=\"{:.1f}\" width=\"{:.0f}\" height=\"12\" fill=\"url(#residual)\" "
                       "stroke=\"#808080\"/>\n",
                       ly, lw);
    for (int k : {-4, 0, 4})
        svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" font-size=\"11\" text-anchor=\"middle\">{}</text>\n",
                           16.0 + lw * (k + 4) / 8.0, ly + 26.0, k == 4 ? "+4" : std::to_string(k));
    svg += fmt::format("<text x=\"16\" y=\"{:.1f}\" font-size=\"11\">{}</text>\n", ly + 46.0, note);
    svg += "</svg>\n";
    return svg;
}

} // namespace

bool DescribeLogLinear(const MCBSN_850::BSNOutputStats& base, const DataInfo& data, ResultView& view) {
    const auto* r = dynamic_cast<const MCBSN_850::BSNLogLinearOutputStats*>(&base);
    if (r == nullptr) return false;
    const BSNSettings& s = r->GetSettings();
    const BSNContingency& t = r->GetContingencyMatrix();
    PutCommonGetters(*r, s, data, view);
    auto& j = view.getters;
    j["GetContingencyMatrix"] = tableJson(t);
    j["GetChiSquareResult"] = ToJson(r->GetChiSquareResult());
    j["GetLikeRatioResult"] = ToJson(r->GetLikeRatioResult());
    j["GetContCorrectResult"] = ToJson(r->GetContCorrectResult());
    j["GetFisher1SidedSig"] = ToJson(r->GetFisher1SidedSig());
    j["GetFisher2SidedSig"] = ToJson(r->GetFisher2SidedSig());
    j["GetBayesFactor"] = ToJson(r->GetBayesFactor());
    j["IsLogBayesFactor"] = r->IsLogBayesFactor();
    j["GetLogBayesFactor"] = ToJson(r->GetLogBayesFactor());
    j["GetT"] = r->GetT();
    j["GetT1"] = r->GetT1();
    j["GetT2"] = r->GetT2();
    ordered_json pairs = ordered_json::array(), estimates = ordered_json::array();
    for (const auto& p : r->GetPosteriorPairs()) pairs.push_back(ordered_json::array({p[0], p[1], p[2], p[3]}));
    for (const auto& e : r->GetPosteriorEstimations()) estimates.push_back(ToJson(e));
    j["GetPosteriorPairs"] = pairs;
    j["GetPosteriorEstimations"] = estimates;
    j["GetPlotArguments4Posterior"] = ToJson(r->GetPlotArguments4Posterior());
    j["GetPlotPosterior"] = ToJson(r->GetPlotPosterior());

    const int rowVar = t.GetRowVar(), colVar = t.GetColVar();
    const std::string rowName = data.Name(rowVar), colName = data.Name(colVar);
    const std::vector<std::string> rowLabels = categoryLabels(data, rowVar, t.GetNRows());
    const std::vector<std::string> colLabels = categoryLabels(data, colVar, t.GetNCols());
    const std::string corner = rowName + " \\ " + colName;

    TextTable counts = matrixTable(fmt::format("Contingency table: {} (rows) by {} (columns), frequency-weighted counts",
                                               rowName, colName),
                                   corner, rowLabels, colLabels, t.GetAllCounts(), &t.GetRowTotals(),
                                   &t.GetColTotals(), t.GetTotalWeight());
    if (t.GetNMissingRecords() > 0)
        counts.AddNote(fmt::format("{} record(s) with a missing factor value or weight were left out.",
                                   t.GetNMissingRecords()));
    view.tables.push_back(counts);
    TextTable expected = matrixTable("Expected counts under independence", corner, rowLabels, colLabels,
                                     t.GetExpectedCounts(), nullptr, nullptr, MCMV::Missing());
    expected.AddNote(fmt::format("{} cell(s) ({}% of the cells of non-empty rows and columns) have an expected count "
                                 "below 5; the smallest expected count is {}.",
                                 t.GetNCellsExpLess5(), FormatNumber(t.GetPctCellsExpLess5()),
                                 FormatNumber(t.GetMinExpectedCount())));
    view.tables.push_back(expected);

    const auto& chi = r->GetChiSquareResult();
    if (!MCMV::IsMissing(chi.GetWald())) {
        std::vector<std::string> names{"Pearson chi-square", "Likelihood ratio"};
        std::vector<const MCMath_850::MCTestStats*> tests{&chi, &r->GetLikeRatioResult()};
        if (!MCMV::IsMissing(r->GetContCorrectResult().GetWald())) {
            names.push_back("Continuity correction");
            tests.push_back(&r->GetContCorrectResult());
        }
        std::vector<double> stat, df, sig, one;
        for (const auto* test : tests) {
            stat.push_back(test->GetWald());
            df.push_back(test->GetDF());
            sig.push_back(test->GetSig());
            one.push_back(MCMV::Missing());
        }
        if (!MCMV::IsMissing(r->GetFisher2SidedSig())) {
            names.push_back("Fisher's exact test");
            stat.push_back(MCMV::Missing());
            df.push_back(MCMV::Missing());
            sig.push_back(r->GetFisher2SidedSig());
            one.push_back(r->GetFisher1SidedSig());
        }
        TextTable testTable("Tests of independence");
        testTable.AddColumn("Test", names);
        testTable.AddColumn("Statistic", FormatNumbers(stat, names.size()));
        testTable.AddColumn("df", FormatNumbers(df, names.size()));
        testTable.AddColumn("Sig. (2-sided)", FormatNumbers(sig, names.size()));
        testTable.AddColumn("Sig. (1-sided)", FormatNumbers(one, names.size()));
        testTable.AddNote("Over the non-empty rows and columns; Fisher's test takes the counts rounded half up.");
        view.tables.push_back(testTable);
    }

    if (WantsFactors(s) && !MCMV::IsMissing(chi.GetWald())) {
        TextTable factor("Bayes factor for independence");
        factor.AddColumn("Method", {factorMethod(s, t.GetNRows(), t.GetNCols())});
        factor.AddColumn("Bayes factor", FormatBayesFactors({r->GetBayesFactor()}, {r->IsLogBayesFactor()}, 1));
        factor.AddColumn("log BF", FormatNumbers({r->GetLogBayesFactor()}, 1));
        if (r->GetT() >= 0) {
            factor.AddColumn("T", {std::to_string(r->GetT())});
            factor.AddColumn("T1", {std::to_string(r->GetT1())});
            factor.AddColumn("T2", {std::to_string(r->GetT2())});
        }
        factor.AddNote("Independence (the null) against the saturated table: values above 1 favour independence.");
        if (r->IsLogBayesFactor()) factor.AddNote(kLogFactorNote);
        view.tables.push_back(factor);
    }

    const auto& pairs_ = r->GetPosteriorPairs();
    const auto& est = r->GetPosteriorEstimations();
    std::vector<std::string> pairNames;
    if (WantsPosterior(s) && !pairs_.empty()) {
        std::vector<std::string> rowPairs, colPairs;
        std::vector<double> mode, mean, var, lo, hi;
        for (std::size_t k = 0; k < pairs_.size() && k < est.size(); ++k) {
            const auto& p = pairs_[k];
            rowPairs.push_back(categoryLabel(data, rowVar, p[0]) + " / " + categoryLabel(data, rowVar, p[1]));
            colPairs.push_back(categoryLabel(data, colVar, p[2]) + " / " + categoryLabel(data, colVar, p[3]));
            pairNames.push_back(fmt::format("log OR {} {} by {} {}", rowName, rowPairs.back(), colName, colPairs.back()));
            mode.push_back(est[k].GetMode());
            mean.push_back(est[k].GetMean());
            var.push_back(est[k].GetVariance());
            lo.push_back(est[k].GetLower());
            hi.push_back(est[k].GetUpper());
        }
        TextTable withColumns("Posterior of the log odds ratio of pairs of categories");
        withColumns.AddColumn(rowName + " (rows)", rowPairs);
        withColumns.AddColumn(colName + " (columns)", colPairs);
        const std::string level = MCMV::IsMissing(s.GetCILevel()) ? "" : fmt::format("{:g}% ", s.GetCILevel());
        withColumns.AddColumn("Mode", FormatNumbers(mode, rowPairs.size()));
        withColumns.AddColumn("Mean", FormatNumbers(mean, rowPairs.size()));
        withColumns.AddColumn("Variance", FormatNumbers(var, rowPairs.size()));
        withColumns.AddColumn(level + "lower", FormatNumbers(lo, rowPairs.size()));
        withColumns.AddColumn(level + "upper", FormatNumbers(hi, rowPairs.size()));
        withColumns.AddNote("ln(θ_ij θ_i'j' / (θ_ij' θ_i'j)) for rows i / i' and columns j / j' under the "
                            "Dirichlet posterior; equal-tailed credible limits.");
        view.tables.push_back(withColumns);
    }

    // Pictures: the table, and the posterior density of the first pairs.
    view.figures.push_back({fmt::format("table {} by {}", rowName, colName),
                            heatMapSvg(t, fmt::format("{} (rows) by {} (columns): counts", rowName, colName),
                                       rowLabels, colLabels)});
    const auto& xs = r->GetPlotArguments4Posterior();
    const auto& ys = r->GetPlotPosterior();
    for (std::size_t k = 0; k < xs.size() && k < ys.size() && k < pairNames.size(); ++k) {
        PlotSet plot;
        plot.variable = pairNames[k];
        plot.parameter = "log odds ratio";
        plot.posterior = {xs[k], ys[k]};
        plot.ciLower = est[k].GetLower();
        plot.ciUpper = est[k].GetUpper();
        plot.ciLevel = s.GetCILevel();
        plot.nullValue = 0.0;
        view.plots.push_back(plot);
    }
    return true;
}

} // namespace bsncli
