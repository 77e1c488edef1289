#pragma once
// Reads the reference tables of tests/data/ (made by make_extreme.py at 40
// digits): rows of comma-separated fields after one header line.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace extremedata {

using Row = std::vector<std::string>;

inline std::vector<Row> read(const std::string& name) {
    std::vector<Row> rows;
    std::ifstream in(std::string(BSN_SOURCE_DIR) + "/tests/data/" + name);
    std::string line, field;
    std::getline(in, line);  // the header
    while (std::getline(in, line)) {
        std::istringstream s(line);
        if (!line.empty()) rows.emplace_back();
        while (std::getline(s, field, ',')) rows.back().push_back(field);
    }
    return rows;
}

inline double num(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

// Space-separated numbers.
inline std::vector<double> nums(const std::string& text) {
    std::vector<double> out;
    std::istringstream s(text);
    std::string field;
    while (s >> field) out.push_back(num(field));
    return out;
}

// |a - b| relative to |b| (absolute below 1).
inline double err(double a, double b) { return std::abs(a - b) / std::max(1.0, std::abs(b)); }

} // namespace extremedata
