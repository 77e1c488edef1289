#pragma once
// Shared pieces of the regression and ANOVA tests: a component run over
// in-memory columns with a chosen variable list, and the reference files of
// tests/data (regr_small.csv and the numbers computed from it).
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "bsn/regression/bsnmultiregoutputstats.h"
#include "platform/common/mcmv.h"
#include "platform/records/columnrecorditer.h"
#include "platform/variables/mcvarlist.h"

namespace regrtest {

using MCBSN_850::BSNMultiRegOutputStats;
using MCBSN_850::BSNSettings;
using MCCommon_850::MCMV;
namespace BC = MCBSN_850::BSNConst;

inline const double kMiss = MCMV::Missing();

struct RegrRun {
    RegrRun(const BSNSettings& settings, std::vector<std::vector<double>> cols, MCXML_850::MCVarList vars)
        : columns(std::move(cols)), iter(columns), component(settings, vars) {
        status = component.BuildModel(iter);
    }
    const BSNMultiRegOutputStats& result() const {
        const auto* r = dynamic_cast<const BSNMultiRegOutputStats*>(component.GetOutputStats());
        if (r == nullptr) throw std::runtime_error("no result object");
        return *r;
    }
    bool hasResult() const { return component.GetOutputStats() != nullptr; }
    int count(int code) const {
        int n = 0;
        for (const auto& w : component.GetWarningMessages()) n += w.GetCode() == code;
        return n;
    }
    const MCCommon_850::MCStatus* warning(int code) const {
        for (const auto& w : component.GetWarningMessages())
            if (w.GetCode() == code) return &w;
        return nullptr;
    }

    std::vector<std::vector<double>> columns;
    MCCommon_850::ColumnRecordIter iter;
    MCBSN_850::BSNComponent component;
    MCCommon_850::MCStatus status;
};

// Scale variables v0.. without stored ranges, except the nominal ones.
inline MCXML_850::MCVarList varList(int n, const std::vector<int>& nominal = {}) {
    MCXML_850::MCVarList vars;
    for (int i = 0; i < n; ++i) {
        const bool nom = std::find(nominal.begin(), nominal.end(), i) != nominal.end();
        vars.Add(MCXML_850::MCContVar("v" + std::to_string(i), nom ? MCXML_850::MCVarKind::Nominal
                                                                   : MCXML_850::MCVarKind::Scale));
    }
    return vars;
}

inline std::string dataPath(const std::string& name) { return std::string(BSN_SOURCE_DIR) + "/tests/data/" + name; }

// A numeric CSV with a header: one column per field.
inline std::vector<std::vector<double>> readColumns(const std::string& name) {
    std::ifstream in(dataPath(name));
    if (!in) throw std::runtime_error("cannot read " + name);
    std::string line;
    std::getline(in, line);
    const auto nCols = static_cast<std::size_t>(std::count(line.begin(), line.end(), ',') + 1);
    std::vector<std::vector<double>> cols(nCols);
    while (std::getline(in, line)) {
        std::stringstream ss(line);
        std::string cell;
        for (std::size_t c = 0; c < nCols && std::getline(ss, cell, ','); ++c) cols[c].push_back(std::stod(cell));
    }
    return cols;
}

// name -> values by index, from a "name,index,value" file.
inline std::map<std::string, std::vector<double>> readReference(const std::string& name) {
    std::ifstream in(dataPath(name));
    if (!in) throw std::runtime_error("cannot read " + name);
    std::string line;
    std::getline(in, line);
    std::map<std::string, std::vector<double>> ref;
    while (std::getline(in, line)) {
        std::stringstream ss(line);
        std::string key, index, value;
        std::getline(ss, key, ',');
        std::getline(ss, index, ',');
        std::getline(ss, value, ',');
        auto& v = ref[key];
        const auto i = static_cast<std::size_t>(std::stoi(index));
        if (v.size() <= i) v.resize(i + 1);
        v[i] = std::stod(value);
    }
    return ref;
}

inline void expectRel(double actual, double expected, double rel, const std::string& what) {
    EXPECT_FALSE(MCMV::IsMissing(actual)) << what;
    EXPECT_NEAR(actual, expected, rel * std::max(1.0, std::fabs(expected))) << what;
}

} // namespace regrtest
