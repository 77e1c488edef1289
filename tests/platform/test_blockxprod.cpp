// The block accumulators (complete cases; pairwise) against two-pass sums: block sizes, zero weights, holes, offsets.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/stats/mcblockxproddata.h"
#include "platform/stats/mcpairwisexproddata.h"

using MCCommon_850::MCMV;
using MCMath_850::MCBlockXProdData;
using MCMath_850::MCPairwiseXProdData;

namespace {

constexpr int kVars = 6;
constexpr int kCases = 301;
// 1e9 + k 2^-20 is a double for every k used: the offset comes out exactly.
constexpr double kFar = 1e9;

struct Data {
    std::vector<std::vector<double>> rows;  // kCases x kVars, missing allowed
    std::vector<double> weights;
};

// Variable 2 at 1e9 with a spread of 1e-4, variable 4 constant; 12% holes if asked.
Data makeData(bool holes, unsigned seed) {
    std::mt19937 gen(seed);
    std::normal_distribution<double> z(0.0, 1.0);
    std::uniform_int_distribution<int> wDist(0, 4);  // 0: the case adds nothing
    std::uniform_real_distribution<double> u(0.0, 1.0);
    Data d;
    for (int c = 0; c < kCases; ++c) {
        std::vector<double> row(kVars);
        const double common = z(gen);
        row[0] = 10.0 + 2.0 * common;
        row[1] = -3.0 + common + z(gen);
        row[2] = kFar + std::round(100.0 * (common + z(gen))) * 0x1p-20;
        row[3] = 1000.0 * z(gen);
        row[4] = 7.25;
        row[5] = std::round(5.0 * u(gen));
        if (holes)
            for (double& v : row)
                if (u(gen) < 0.12) v = MCMV::Missing();
        d.rows.push_back(row);
        d.weights.push_back(wDist(gen));
    }
    return d;
}

struct Ref {
    long double n = 0, meanJ = 0, meanK = 0, ssJ = 0, ssK = 0, sxy = 0;
};

// Two passes in long double over the cases with j and k (listwise: all) present.
Ref reference(const Data& d, int j, int k, bool listwise) {
    auto value = [&](int c, int v) -> long double {
        const double x = d.rows[c][v];
        return v == 2 ? static_cast<long double>(x - kFar) : static_cast<long double>(x);
    };
    auto used = [&](int c) {
        const auto& row = d.rows[c];
        return listwise ? std::ranges::none_of(row, [](double v) { return MCMV::IsMissing(v); })
                        : !MCMV::IsMissing(row[j]) && !MCMV::IsMissing(row[k]);
    };
    Ref r;
    for (int c = 0; c < kCases; ++c)
        if (used(c)) {
            r.n += d.weights[c];
            r.meanJ += d.weights[c] * value(c, j);
            r.meanK += d.weights[c] * value(c, k);
        }
    if (r.n == 0) return r;
    r.meanJ /= r.n;
    r.meanK /= r.n;
    for (int c = 0; c < kCases; ++c)
        if (used(c)) {
            const long double dj = value(c, j) - r.meanJ, dk = value(c, k) - r.meanK;
            r.ssJ += d.weights[c] * dj * dj;
            r.ssK += d.weights[c] * dk * dk;
            r.sxy += d.weights[c] * dj * dk;
        }
    if (j == 2) r.meanJ += kFar;
    if (k == 2) r.meanK += kFar;
    return r;
}

void expectClose(double got, long double want, double scale, const char* what) {
    EXPECT_NEAR(got, static_cast<double>(want), 1e-12 * scale + 1e-300) << what;
}

} // namespace

TEST(BlockXProd, CompleteCasesAndPairsMatchTwoPassSums) {
    for (bool holes : {false, true}) {
        const Data d = makeData(holes, holes ? 23u : 29u);
        std::vector<bool> whole(kCases, true);
        int added = 0;
        for (int c = 0; c < kCases; ++c) {
            for (double v : d.rows[c]) whole[c] = whole[c] && !MCMV::IsMissing(v);
            added += whole[c] && d.weights[c] > 0;
        }
        for (const auto& [block, limit] : std::vector<std::pair<int, double>>{
                 {1, 0.0}, {3, 1.0}, {17, 0.0}, {17, 1.0}, {256, 0.0}, {256, 1.0}, {256, 0.125}}) {
            SCOPED_TRACE(testing::Message() << "holes " << holes << " block " << block << " limit " << limit);
            MCPairwiseXProdData acc(kVars, block);
            MCBlockXProdData complete(kVars, block);
            acc.SetHoleDensityLimit(limit);
            for (int c = 0; c < kCases; ++c) {
                acc.AddCase(d.rows[c].data(), d.weights[c]);
                if (whole[c]) complete.AddCase(d.rows[c].data(), d.weights[c]);
            }
            acc.Flush();
            EXPECT_EQ(complete.GetNPending(), added % block);
            complete.Flush();
            for (int j = 0; j < kVars; ++j)
                for (int k = 0; k < kVars; ++k) {
                    SCOPED_TRACE(testing::Message() << "pair " << j << "," << k);
                    const Ref r = reference(d, j, k, false);
                    const MCPairwiseXProdData::Pair p = acc.GetPair(j, k);
                    EXPECT_EQ(p.n, static_cast<double>(r.n));
                    expectClose(p.meanJ, r.meanJ, std::fabs(static_cast<double>(r.meanJ)) + 1.0, "mean j");
                    expectClose(p.meanK, r.meanK, std::fabs(static_cast<double>(r.meanK)) + 1.0, "mean k");
                    expectClose(p.sumSqJ, r.ssJ, static_cast<double>(r.ssJ), "sum of squares j");
                    expectClose(p.sumSqK, r.ssK, static_cast<double>(r.ssK), "sum of squares k");
                    expectClose(p.xprod, r.sxy, std::sqrt(static_cast<double>(r.ssJ * r.ssK)), "cross-product");
                    const Ref all = reference(d, j, k, true);
                    EXPECT_EQ(complete.GetNCases(), static_cast<double>(all.n));
                    if (all.n > 0)
                        expectClose(complete.GetXProd(j, k), all.sxy, std::sqrt(static_cast<double>(all.ssJ * all.ssK)),
                                    "complete cross-product");
                }
            // A constant variable's sums are exactly 0, not rounding noise.
            EXPECT_EQ(acc.GetPair(4, 0).sumSqJ, 0.0);
            EXPECT_EQ(complete.GetXProd(4, 1), 0.0);
            EXPECT_EQ(acc.GetPair(0, kVars).n, 0.0);
            EXPECT_EQ(acc.GetNCases(0), static_cast<double>(reference(d, 0, 0, false).n));
        }
    }
}
