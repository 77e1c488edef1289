#pragma once
// Shared pieces of the independent-samples tests: settings, columns, tables under tests/data.
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "bsn/twosample/bsn2sampleindoutputstats.h"
#include "tests/onesample/extremedata.h"
#include "tests/onesample/normaltestsupport.h"

namespace indeptest {

using namespace normaltest;
using MCBSN_850::BSN2SampleIndOutputStats;

// Model type 2 over test variables `vars`, groups in column `group`.
inline BSNSettings indepSettings(std::vector<int> vars, int group, BC::AnalysTypes type = BC::Both) {
    BSNSettings s;
    s.SetModelType(BC::Independent, true); s.SetAnalysType(type); s.SetCovariates(vars);
    s.SetGroupVar(group);
    return s;
}

// One test variable in column 0 over two groups (column 1: 0, 1).
inline std::vector<std::vector<double>> groupColumns(const std::vector<double>& g0, const std::vector<double>& g1,
                                                     double offset = 0.0) {
    std::vector<std::vector<double>> cols(2);
    for (int g = 0; g < 2; ++g)
        for (double v : g == 0 ? g0 : g1) cols[0].push_back(v + offset), cols[1].push_back(g);
    return cols;
}

inline const BSN2SampleIndOutputStats& output(const NormalRun& r) { return r.result<BSN2SampleIndOutputStats>(); }

// A CSV table under tests/data: a map from column name to text per row.
inline std::vector<std::map<std::string, std::string>> readTable(const std::string& name) {
    std::ifstream in(std::string(BSN_SOURCE_DIR) + "/tests/data/" + name);
    std::string line, cell;
    std::getline(in, line);
    std::vector<std::string> header;
    for (std::stringstream ss(line); std::getline(ss, cell, ',');) header.push_back(cell.substr(0, cell.find('\r')));
    std::vector<std::map<std::string, std::string>> rows;
    for (const auto& cells : extremedata::read(name)) {
        rows.emplace_back();
        for (std::size_t i = 0; i < header.size(); ++i) rows.back()[header[i]] = i < cells.size() ? cells[i] : "";
    }
    return rows;
}

inline double number(const std::map<std::string, std::string>& row, const std::string& key) {
    const std::string& text = row.at(key);
    return text.empty() || text == "NA" ? kMiss : std::stod(text);
}

inline double rel(double a, double b) { return std::fabs(a / b - 1.0); }

} // namespace indeptest
