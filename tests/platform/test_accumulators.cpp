#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/stats/mccontstats.h"
#include "platform/stats/mcmeansxproddata.h"

using MCCommon_850::MCMV;
using MCMath_850::MCContStats;
using MCMath_850::MCMeansXProdData;

namespace {

// Two-pass mean and (n-1)-divisor variance of data expanded by whole weights.
void twoPass(const std::vector<double>& x, const std::vector<int>& w, double& mean, double& var) {
    double n = 0.0, s = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i)
        for (int k = 0; k < w[i]; ++k) {
            s += x[i];
            n += 1.0;
        }
    mean = s / n;
    double ss = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i)
        for (int k = 0; k < w[i]; ++k) ss += (x[i] - mean) * (x[i] - mean);
    var = ss / (n - 1.0);
}

} // namespace

TEST(MCContStats, WeightedMomentsMatchExpandedData) {
    const std::vector<double> x = {3.5, -1.25, 7.0, 2.0, 0.5, 11.0};
    const std::vector<int> w = {1, 3, 2, 5, 1, 4};
    MCContStats s;
    for (std::size_t i = 0; i < x.size(); ++i) s.Update(x[i], w[i]);
    double mean = 0.0, var = 0.0;
    twoPass(x, w, mean, var);
    EXPECT_DOUBLE_EQ(s.GetSumWeights(), 16.0);
    EXPECT_NEAR(s.GetMean(), mean, 1e-13);
    EXPECT_NEAR(s.GetVariance(), var, 1e-12);
    EXPECT_EQ(s.GetMinimum(), -1.25);
    EXPECT_EQ(s.GetMaximum(), 11.0);

    // Missing values, missing weights and non-positive weights change nothing.
    s.Update(MCMV::Missing(), 2.0);
    s.Update(100.0, 0.0);
    s.Update(100.0, -1.0);
    s.Update(100.0, MCMV::Missing());
    s.Update(std::nan(""), 1.0);
    EXPECT_DOUBLE_EQ(s.GetSumWeights(), 16.0);
    EXPECT_NEAR(s.GetMean(), mean, 1e-13);
    EXPECT_EQ(s.GetMaximum(), 11.0);
}

TEST(MCContStats, EmptySingleAndConstant) {
    MCContStats s;
    EXPECT_EQ(s.GetSumWeights(), 0.0);
    EXPECT_TRUE(MCMV::IsMissing(s.GetMean()));
    EXPECT_TRUE(MCMV::IsMissing(s.GetVariance()));
    EXPECT_TRUE(MCMV::IsMissing(s.GetMinimum()));
    EXPECT_TRUE(MCMV::IsMissing(s.GetMaximum()));
    s.Update(4.0, 1.0);
    EXPECT_EQ(s.GetMean(), 4.0);
    EXPECT_TRUE(MCMV::IsMissing(s.GetVariance()));  // sum of weights 1: no variance
    s.Update(4.0, 3.0);
    EXPECT_EQ(s.GetMean(), 4.0);
    EXPECT_EQ(s.GetVariance(), 0.0);
}

TEST(MCContStats, StableForLargeMeansAndHugeWeights) {
    // A naive sum-of-squares formula loses every digit here.
    MCContStats s;
    for (double v : {1e9 + 1.0, 1e9 + 2.0, 1e9 + 3.0}) s.Update(v, 1.0);
    EXPECT_DOUBLE_EQ(s.GetMean(), 1e9 + 2.0);
    EXPECT_NEAR(s.GetVariance(), 1.0, 1e-9);

    // Frequency weights of a billion: N = 2e9, values 0 and 1 in equal parts:
    // mean 1/2, variance N/(4(N-1)).
    MCContStats big;
    big.Update(0.0, 1e9);
    big.Update(1.0, 1e9);
    EXPECT_DOUBLE_EQ(big.GetSumWeights(), 2e9);
    EXPECT_DOUBLE_EQ(big.GetMean(), 0.5);
    EXPECT_NEAR(big.GetVariance(), 2e9 / (4.0 * (2e9 - 1.0)), 1e-15);
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
    EXPECT_DOUBLE_EQ(acc.GetNCases(), W);
    ASSERT_EQ(acc.GetMeans().size(), 3u);
    for (int j = 0; j < 3; ++j) {
        EXPECT_NEAR(acc.GetMeans()[j], m[j], 1e-13);
        for (int k = 0; k < 3; ++k) {
            double s = 0.0;
            for (std::size_t i = 0; i < rows.size(); ++i) s += w[i] * (rows[i][j] - m[j]) * (rows[i][k] - m[k]);
            EXPECT_NEAR(acc.GetXProd(j, k), s, 1e-12) << j << "," << k;
            EXPECT_EQ(acc.GetXProds()[j * 3 + k], acc.GetXProd(j, k));
        }
    }
    EXPECT_TRUE(MCMV::IsMissing(acc.GetXProd(3, 0)));
    EXPECT_TRUE(MCMV::IsMissing(acc.GetXProd(0, -1)));
}
