#pragma once
// Helpers of the log-linear tests: the reference tables under tests/data/loglinear (made by the
// scripts beside them), and a component built over a table of counts, one weighted record per cell.
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bsn/loglinear/bsnloglinearoutputstats.h"
#include "platform/common/mcmv.h"
#include "tests/frame/componentrun.h"

namespace loglinear_test {

using Matrix = std::vector<std::vector<double>>;
inline const double kMiss = MCCommon_850::MCMV::Missing();

// The fields of `text` split at `sep` (any whitespace when it is ' ').
inline std::vector<std::string> Split(const std::string& text, char sep) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string v; sep == ' ' ? static_cast<bool>(in >> v) : static_cast<bool>(std::getline(in, v, sep));)
        out.push_back(v);
    return out;
}

// Space-separated numbers, NA missing.
inline std::vector<double> ParseNums(const std::string& text) {
    std::vector<double> out;
    for (const auto& v : Split(text, ' ')) out.push_back(v == "NA" ? kMiss : std::strtod(v.c_str(), nullptr));
    return out;
}

// One row of a reference CSV, by column name.
struct Row {
    std::map<std::string, std::string> cells;
    const std::string& Text(const std::string& key) const {
        auto it = cells.find(key);
        if (it == cells.end()) throw std::runtime_error("no column " + key);
        return it->second;
    }
    double Num(const std::string& key) const { return ParseNums(Text(key)).at(0); }
    std::vector<double> Nums(const std::string& key) const { return ParseNums(Text(key)); }
    // "a b|c d": rows separated by '|', cells by spaces.
    Matrix Table(const std::string& key = "table") const {
        Matrix m;
        for (const auto& row : Split(Text(key), '|')) m.push_back(ParseNums(row));
        return m;
    }
};

inline std::vector<Row> ReadReference(const std::string& name) {
    const std::string path = std::string(BSN_SOURCE_DIR) + "/tests/data/loglinear/" + name;
    std::ifstream in(path);
    std::string line;
    if (!std::getline(in, line)) throw std::runtime_error("cannot open " + path);
    const std::vector<std::string> header = Split(line, ',');
    std::vector<Row> rows;
    while (std::getline(in, line)) {
        if (line.empty()) continue;
        const std::vector<std::string> fields = Split(line, ',');
        Row r;
        for (std::size_t k = 0; k < header.size(); ++k) r.cells[header[k]] = k < fields.size() ? fields[k] : "";
        rows.push_back(r);
    }
    return rows;
}

// Log-linear settings for a table of this size: factors 0 (rows) and 1 (columns), weight column 2.
inline MCBSN_850::BSNSettings Settings(std::size_t rows, std::size_t cols) {
    MCBSN_850::BSNSettings s;
    s.SetModelType(MCBSN_850::BSNConst::LogLinear, true);
    s.SetFactors({0, 1});
    s.SetFactorNCategs({static_cast<int>(rows), static_cast<int>(cols)});
    s.SetFrequencyWeightVar(2);
    s.SetAnalysType(MCBSN_850::BSNConst::Both);
    return s;
}

// One record per cell: row code, column code, count as weight.
inline std::vector<std::vector<double>> CellRecords(const Matrix& table) {
    std::vector<std::vector<double>> cols(3);
    for (std::size_t i = 0; i < table.size(); ++i)
        for (std::size_t j = 0; j < table[i].size(); ++j) {
            cols[0].push_back(static_cast<double>(i));
            cols[1].push_back(static_cast<double>(j));
            cols[2].push_back(table[i][j]);
        }
    return cols;
}

// Records given as columns (row code, column code, weight, ...) rather than as a table of counts.
struct Columns { std::vector<std::vector<double>> values; };

struct Build : bsntest::ComponentRun {
    Build(const MCBSN_850::BSNSettings& settings, Columns cols) : ComponentRun(settings, std::move(cols.values)) {}
    Build(const MCBSN_850::BSNSettings& settings, const Matrix& table) : Build(settings, Columns{CellRecords(table)}) {}
    const MCBSN_850::BSNLogLinearOutputStats* Result() const { return As<MCBSN_850::BSNLogLinearOutputStats>(); }
};

// |a - b| within a relative (and, near zero, absolute) tolerance.
inline ::testing::AssertionResult Near(double a, double b, double rel, double abs = 0.0) {
    const double tol = std::max(abs, rel * std::max(std::fabs(a), std::fabs(b)));
    if (std::fabs(a - b) <= tol) return ::testing::AssertionSuccess();
    std::ostringstream os;
    os.precision(17);
    os << a << " vs " << b << " (difference " << a - b << ", tolerance " << tol << ")";
    return ::testing::AssertionFailure() << os.str();
}

} // namespace loglinear_test
