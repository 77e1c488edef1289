#pragma once
// Shared pieces of the regression and ANOVA tests: a component run over
// in-memory columns with a chosen variable list, and the reference files of
// tests/data (regr_small.csv and the numbers computed from it).
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bsn/regression/bsnmultiregoutputstats.h"
#include "platform/common/mcmv.h"
#include "tests/frame/componentrun.h"

namespace regrtest {

using MCBSN_850::BSNMultiRegOutputStats;
using MCBSN_850::BSNSettings;
using MCCommon_850::MCMV;
namespace BC = MCBSN_850::BSNConst;

inline const double kMiss = MCMV::Missing();

struct RegrRun : bsntest::ComponentRun {
    using ComponentRun::ComponentRun;
    const BSNMultiRegOutputStats& result() const { return Result<BSNMultiRegOutputStats>(); }
    bool hasResult() const { return component.GetOutputStats() != nullptr; }
};

using bsntest::ScaleVars;

// Regression of variable `dep` on the covariates `covs`; the model type
// brings the reference prior.
inline BSNSettings regression(int dep, const std::vector<int>& covs) {
    BSNSettings s;
    s.SetModelType(BC::Regression, true);
    s.SetDependVar(dep);
    s.SetCovariates(covs);
    return s;
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
