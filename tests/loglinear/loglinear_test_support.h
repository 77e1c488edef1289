#pragma once
// Helpers of the log-linear tests: the reference tables under
// tests/data/loglinear (made by the scripts beside them), and a component
// built over a table of counts given as one weighted record per cell.
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bsn/frame/bsncomponent.h"
#include "bsn/loglinear/bsnloglinearoutputstats.h"
#include "platform/common/mcmv.h"
#include "platform/records/columnrecorditer.h"
#include "platform/variables/mcvarlist.h"

namespace loglinear_test {

using Matrix = std::vector<std::vector<double>>;
inline const double kMiss = MCCommon_850::MCMV::Missing();

// One row of a reference CSV, by column name.
struct Row {
    std::map<std::string, std::string> cells;
    const std::string& Text(const std::string& key) const {
        auto it = cells.find(key);
        if (it == cells.end()) throw std::runtime_error("no column " + key);
        return it->second;
    }
    double Num(const std::string& key) const {
        const std::string& s = Text(key);
        return s == "NA" ? kMiss : std::strtod(s.c_str(), nullptr);
    }
    std::vector<double> Nums(const std::string& key) const {
        std::vector<double> out;
        std::istringstream in(Text(key));
        std::string v;
        while (in >> v) out.push_back(v == "NA" ? kMiss : std::strtod(v.c_str(), nullptr));
        return out;
    }
    // "a b|c d": rows separated by '|', cells by spaces.
    Matrix Table(const std::string& key = "table") const {
        Matrix m;
        std::istringstream rows(Text(key));
        std::string row;
        while (std::getline(rows, row, '|')) {
            std::istringstream cells(row);
            std::vector<double> r;
            double v;
            while (cells >> v) r.push_back(v);
            m.push_back(r);
        }
        return m;
    }
};

inline std::vector<Row> ReadReference(const std::string& name) {
    const std::string path = std::string(BSN_SOURCE_DIR) + "/tests/data/loglinear/" + name;
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot open " + path);
    std::string line;
    std::getline(in, line);
    std::vector<std::string> header;
    {
        std::istringstream h(line);
        std::string k;
        while (std::getline(h, k, ',')) header.push_back(k);
    }
    std::vector<Row> rows;
    while (std::getline(in, line)) {
        if (line.empty()) continue;
        std::istringstream l(line);
        std::string v;
        Row r;
        for (const auto& k : header) {
            std::getline(l, v, ',');
            r.cells[k] = v;
        }
        rows.push_back(r);
    }
    return rows;
}

// Log-linear settings for a table of the given size: factors 0 (rows) and 1
// (columns), weight column 2.
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

inline MCXML_850::MCVarList VarList(std::size_t n) {
    MCXML_850::MCVarList list;
    for (std::size_t i = 0; i < n; ++i) list.Add(MCXML_850::MCContVar("v" + std::to_string(i)));
    return list;
}

// Marks records given as columns (row code, column code, weight, ...)
// rather than as a table of counts.
struct Columns {
    std::vector<std::vector<double>> values;
};

// The component of one build over in-memory records.
struct Build {
    Build(const MCBSN_850::BSNSettings& settings, Columns cols)
        : columns(std::move(cols.values)), component(settings, VarList(columns.size())) {
        MCCommon_850::ColumnRecordIter iter(columns);
        status = component.BuildModel(iter);
    }
    Build(const MCBSN_850::BSNSettings& settings, const Matrix& table) : Build(settings, Columns{CellRecords(table)}) {}

    const MCBSN_850::BSNLogLinearOutputStats* Result() const {
        return dynamic_cast<const MCBSN_850::BSNLogLinearOutputStats*>(component.GetOutputStats());
    }
    std::vector<int> WarningCodes() const {
        std::vector<int> codes;
        for (const auto& w : component.GetWarningMessages()) codes.push_back(w.GetCode());
        return codes;
    }

    std::vector<std::vector<double>> columns;
    MCBSN_850::BSNComponent component;
    MCCommon_850::MCStatus status;
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
