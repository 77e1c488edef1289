#pragma once
// Shared pieces of the regression and ANOVA tests: a component run over in-memory columns, and the
// reference files of tests/data (regr_small.csv and the numbers computed from it).
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "bsn/regression/bsnmultiregoutputstats.h"
#include "platform/common/mcmv.h"
#include "tests/frame/componentrun.h"
#include "tests/onesample/extremedata.h"

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

// Regression of variable `dep` on the covariates `covs`; the model type brings the reference prior.
inline BSNSettings regression(int dep, const std::vector<int>& covs) {
    BSNSettings s;
    s.SetModelType(BC::Regression, true);
    s.SetDependVar(dep);
    s.SetCovariates(covs);
    return s;
}

// The conjugate prior of tests/data/regr_reference.R for y ~ g + x1 + x2;
// the prior mean of the redundant parameter (index 3) plays no part.
inline void setConjugatePrior(BSNSettings& s, bool covariance = true) {
    s.SetPriorType(BC::Conjugate);
    s.SetPriorShape(3);
    s.SetPriorScale(2);
    s.SetPriorMeans({1, 0.5, -0.5, 123.0, 0.7, -0.2});
    if (covariance)
        s.SetPriorCovMatrix({4, 0.5, 2, 0.2, 0.1, 3, 0, 0, 0, 1, 0.3, 0, 0.1, 0, 1.5, 0.1, 0, 0, 0, 0.2, 0.8});
}

// A numeric CSV with a header: one column per field.
inline std::vector<std::vector<double>> readColumns(const std::string& name) {
    const auto rows = extremedata::read(name);
    if (rows.empty()) throw std::runtime_error("cannot read " + name);
    std::vector<std::vector<double>> cols(rows[0].size());
    for (const auto& r : rows)
        for (std::size_t c = 0; c < cols.size(); ++c) cols[c].push_back(std::stod(r.at(c)));
    return cols;
}

// name -> values by index, from a "name,index,value" file.
inline std::map<std::string, std::vector<double>> readReference(const std::string& name) {
    std::map<std::string, std::vector<double>> ref;
    for (const auto& r : extremedata::read(name)) {
        auto& v = ref[r.at(0)];
        const auto i = static_cast<std::size_t>(std::stoi(r.at(1)));
        if (v.size() <= i) v.resize(i + 1);
        v[i] = std::stod(r.at(2));
    }
    if (ref.empty()) throw std::runtime_error("cannot read " + name);
    return ref;
}

inline void expectRel(double actual, double expected, double rel, const std::string& what) {
    EXPECT_FALSE(MCMV::IsMissing(actual)) << what;
    EXPECT_NEAR(actual, expected, rel * std::max(1.0, std::fabs(expected))) << what;
}

// A posterior estimate's parts in the order mode, mean, variance, lower, upper.
inline std::array<double, 5> parts(const MCBSN_850::BayesEstimation& e) {
    return {e.GetMode(), e.GetMean(), e.GetVariance(), e.GetLower(), e.GetUpper()};
}

} // namespace regrtest
