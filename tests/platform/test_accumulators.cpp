#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/stats/mccontstats.h"
#include "platform/stats/mcmeansxproddata.h"

using MCCommon_850::MCMV;
using MCMath_850::MCContStats;
using MCMath_850::MCMeansXProdData;

TEST(MCContStats, WeightedMomentsEdgeCasesAndIgnoredInput) {
    // Two-pass moments of the data expanded by whole weights.
    const std::vector<double> x = {3.5, -1.25, 7.0, 2.0, 0.5, 11.0};
    const std::vector<int> w = {1, 3, 2, 5, 1, 4};
    MCContStats s;
    EXPECT_TRUE(MCMV::IsMissing(s.GetMean()) && MCMV::IsMissing(s.GetMinimum()));
    double n = 0.0, sum = 0.0, ss = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        s.Update(x[i], w[i]);
        n += w[i];
        sum += w[i] * x[i];
    }
    for (std::size_t i = 0; i < x.size(); ++i) ss += w[i] * (x[i] - sum / n) * (x[i] - sum / n);
    // Missing values and weights, non-positive weights and NaN change nothing.
    for (const auto& [v, wt] : {std::pair{MCMV::Missing(), 2.0}, std::pair{100.0, 0.0}, std::pair{100.0, -1.0},
                                std::pair{100.0, MCMV::Missing()}, std::pair{std::nan(""), 1.0}})
        s.Update(v, wt);
    EXPECT_EQ(s.GetSumWeights(), 16.0);
    EXPECT_NEAR(s.GetMean(), sum / n, 1e-13);
    EXPECT_NEAR(s.GetVariance(), ss / (n - 1), 1e-12);
    EXPECT_EQ(s.GetMinimum(), -1.25);
    EXPECT_EQ(s.GetMaximum(), 11.0);
    // One case has no variance; a constant has 0.
    MCContStats c;
    c.Update(4.0, 1.0);
    EXPECT_TRUE(MCMV::IsMissing(c.GetVariance()));
    c.Update(4.0, 3.0);
    EXPECT_EQ(c.GetMean(), 4.0);
    EXPECT_EQ(c.GetVariance(), 0.0);
    // Weights of a billion: N = 2e9, values 0 and 1 in equal parts.
    MCContStats big;
    big.Update(0.0, 1e9);
    big.Update(1.0, 1e9);
    EXPECT_EQ(big.GetMean(), 0.5);
    EXPECT_NEAR(big.GetVariance(), 2e9 / (4.0 * (2e9 - 1.0)), 1e-15);
}

// 1e9 + k/8 (exact doubles), ordered so that a running mean would round on
// every case: the mean's distance from a nearby value and the variance are exact.
TEST(MCContStats, DataFarFromZeroKeepAllDigits) {
    MCContStats s;
    const double k[] = {3, -5, 1, 7, -2, 0, 6, -4};  // mean 0.75, sum of squared deviations 135.5
    for (double v : k) s.Update(1e9 + v / 8, 1.0);
    EXPECT_NEAR(s.GetMeanMinus(1e9), 0.75 / 8, 1e-16);
    EXPECT_NEAR(s.GetMeanMinus(1e9 + 0.25), 0.75 / 8 - 0.25, 1e-16);
    EXPECT_NEAR(s.GetVariance(), 135.5 / 64 / 7, 1e-15);
    EXPECT_EQ(s.GetMean(), 1e9 + 0.75 / 8);
    EXPECT_TRUE(MCMV::IsMissing(s.GetMeanMinus(MCMV::Missing())));
    EXPECT_TRUE(MCMV::IsMissing(MCContStats().GetMeanMinus(0.0)));
}

TEST(MCMeansXProdData, CrossProductsMatchTwoPass) {
    const std::vector<std::vector<double>> rows = {
        {1.0, 2.0, -1.0}, {2.5, 0.0, 4.0}, {-3.0, 1.5, 2.0}, {0.25, 8.0, 1.0}, {6.0, -2.0, 0.0}};
    const std::vector<double> w = {1.0, 2.0, 1.0, 3.0, 2.0};
    MCMeansXProdData acc(3);
    for (std::size_t i = 0; i < rows.size(); ++i) acc.AddCase(rows[i].data(), w[i]);
    acc.AddCase(rows[0].data(), 0.0);   // ignored
    acc.AddCase(rows[0].data(), -2.0);  // ignored
    double W = 0.0;
    std::vector<double> m(3, 0.0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        W += w[i];
        for (int j = 0; j < 3; ++j) m[j] += w[i] * rows[i][j];
    }
    for (double& v : m) v /= W;
    EXPECT_EQ(acc.GetNCases(), W);
    for (int j = 0; j < 3; ++j) {
        EXPECT_NEAR(acc.GetMeans()[j], m[j], 1e-13);
        for (int k = 0; k < 3; ++k) {
            double s = 0.0;
            for (std::size_t i = 0; i < rows.size(); ++i) s += w[i] * (rows[i][j] - m[j]) * (rows[i][k] - m[k]);
            EXPECT_NEAR(acc.GetXProd(j, k), s, 1e-12) << j << "," << k;
            EXPECT_EQ(acc.GetXProds()[j * 3 + k], acc.GetXProd(j, k));
        }
    }
    EXPECT_NEAR(acc.GetMeanDifference(0, 2, 0.5), m[0] - m[2] - 0.5, 1e-13);
    EXPECT_TRUE(MCMV::IsMissing(acc.GetXProd(3, 0)));
    EXPECT_TRUE(MCMV::IsMissing(acc.GetMeanDifference(0, -1)));
}

TEST(MCMeansXProdData, PairsFarFromZeroAndFarApart) {
    // Pairs (1e9 + k/8, k/8 - 2^-30): every difference is 1e9 + 2^-30, not a double.
    const double k[] = {3, -5, 1, 7, -2, 0, 6, -4};
    const double tiny = std::ldexp(1.0, -30);
    MCMeansXProdData acc(2);
    for (double v : k) {
        const double pair[2] = {1e9 + v / 8, v / 8 - tiny};
        acc.AddCase(pair, 1.0);
    }
    EXPECT_EQ(acc.GetMeanDifference(0, 1, 1e9), tiny);
    EXPECT_EQ(acc.GetMeanDifference(0, 1), 1e9);
    EXPECT_NEAR(acc.GetXProd(0, 0), 135.5 / 64, 1e-15);
    EXPECT_NEAR(acc.GetXProd(0, 1), 135.5 / 64, 1e-15);
}
