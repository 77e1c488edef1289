#pragma once
// Shared pieces of the scoring and PMML tests: the models fitted to tests/data/regr_small.csv whose
// predictions tests/data/scoring_reference.R computed with R (A: y ~ g + x1 + x2, dense rows; B: y
// ~ h + x1, sparse rows; C: one-way ANOVA of y on g), the new records of scoring_new.csv, and
// records as the library reads them.
#include <string>
#include <vector>

#include "tests/regression/regrtestsupport.h"

namespace scoringtest {

using namespace regrtest;

// Columns of regr_small.csv and scoring_new.csv.
enum Column { kY = 0, kX1 = 1, kX2 = 2, kG = 3, kH = 4, kFreq = 5, kRW = 6, kNColumns = 7 };

// Reference prior, variances in scoring, frequency and regression weights.
inline BSNSettings modelSettings(char model) {
    BSNSettings s;
    s.SetModelType(model == 'C' ? BC::Anova : BC::Regression, true);
    s.SetDependVar(kY);
    s.SetFactors({model == 'B' ? kH : kG});
    s.SetFactorNCategs({model == 'B' ? 4 : 3});
    if (model != 'C') s.SetCovariates(model == 'A' ? std::vector<int>{kX1, kX2} : std::vector<int>{kX1});
    s.SetFrequencyWeightVar(kFreq);
    s.SetRegrWeightVar(kRW);
    s.SetAnalysType(BC::Both);
    s.SetPriorType(BC::Reference);
    s.SetRegrCompType(BC::Zellner);
    s.SetRegrComPar(50.0);
    s.SetComputeVarianceInScoring(true);
    return s;
}

inline const std::map<std::string, std::vector<double>>& scoringReference() {
    static const auto ref = readReference("scoring_reference.csv");
    return ref;
}

// Row i of a column table as a record's values.
inline std::vector<double> row(const std::vector<std::vector<double>>& cols, std::size_t i) {
    std::vector<double> v;
    for (const auto& c : cols) v.push_back(c[i]);
    return v;
}

inline MCBSN_850::BayesEstimation score(const BSNMultiRegOutputStats& r, const std::vector<double>& values) {
    MCBSN_850::BayesEstimation e;
    const MCCommon_850::MCStatus s = r.Score(MCCommon_850::Record(values.data(), values.size()), e);
    EXPECT_TRUE(s.IsOK());
    return e;
}

} // namespace scoringtest
