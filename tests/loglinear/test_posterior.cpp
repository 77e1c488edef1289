// Posterior log odds ratios of pairs of categories: the moments (digamma and trigamma sums), the
// mode and limits against the exact distribution (mpmath inversion of the characteristic function)
// and against a long Monte Carlo (R), the order and codes of the pairs, and their curves.
#include <cmath>

#include <boost/math/special_functions/digamma.hpp>
#include <gtest/gtest.h>

#include "bsn/loglinear/bsnloglinposterior.h"
#include "tests/loglinear/loglinear_test_support.h"

namespace {

using namespace MCBSN_850;
using namespace loglinear_test;

// A 2×2 table whose Dirichlet posterior has parameters b1..b4, with
// ψ = ln θ11 + ln θ22 - ln θ12 - ln θ21: cell shapes b - count, counts 1.
BayesEstimation estimateFor(const std::vector<double>& b, double level, std::vector<double>* xs = nullptr,
                            std::vector<double>* ys = nullptr) {
    BSNSettings s = Settings(2, 2);
    s.SetCILevel(level);
    s.SetLogLinShapes({b[0] - 1, b[2] - 1, b[3] - 1, b[1] - 1});
    const BSNLogLinPosterior::Matrix counts{{1, 1}, {1, 1}};
    BSNLogLinPosterior p(s, counts, {0, 1}, {0, 1});
    EXPECT_TRUE(p.Compute().IsOK());
    EXPECT_EQ(p.GetEstimations().size(), 1u);
    if (xs != nullptr && !p.GetPlotArguments().empty()) {
        *xs = p.GetPlotArguments()[0];
        *ys = p.GetPlotDensities()[0];
    }
    return p.GetEstimations().at(0);
}

// Against the exact distribution, and within 5 standard errors of a Monte Carlo of 2e7 draws.
TEST(LogLinearPosterior, ModeAndLimitsAgainstExactValuesAndMonteCarlo) {
    for (const std::string file : {"posterior_exact.csv", "posterior_mc.csv"}) {
        const auto rows = ReadReference(file);
        ASSERT_GE(rows.size(), 5u);
        for (const Row& row : rows) {
            SCOPED_TRACE(row.Text("name"));
            const std::vector<double> b{row.Num("b1"), row.Num("b2"), row.Num("b3"), row.Num("b4")};
            const BayesEstimation e = estimateFor(b, row.Num("level"));
            EXPECT_TRUE(Near(e.GetMean(), row.Num("mean"), 1e-13, 1e-14));
            if (file == "posterior_mc.csv") {
                EXPECT_NEAR(e.GetLower(), row.Num("lower"), 5 * row.Num("se_lower"));
                EXPECT_NEAR(e.GetUpper(), row.Num("upper"), 5 * row.Num("se_upper"));
                continue;
            }
            EXPECT_TRUE(Near(e.GetVariance(), row.Num("variance"), 1e-13));
            EXPECT_TRUE(Near(e.GetLower(), row.Num("lower"), 0.0, 1e-9));
            EXPECT_TRUE(Near(e.GetUpper(), row.Num("upper"), 0.0, 1e-9));
            EXPECT_TRUE(Near(e.GetMode(), row.Num("mode"), 0.0, 1e-9));
        }
    }
}

TEST(LogLinearPosterior, PairsOverNonEmptyRowsAndColumns) {
    // Rows 0, 2, 3 and columns 0, 1, 3 are non-empty: 3 × 3 pairs, rows
    // outer; each pair's mean is the digamma contrast of its own cells.
    const Matrix table{{5, 2, 0, 7}, {0, 0, 0, 0}, {3, 9, 0, 1}, {4, 4, 0, 6}};
    BSNSettings s = Settings(4, 4);
    s.SetLogLinShapes({0.5});
    Build b(s, table);
    const auto* r = b.Result();
    ASSERT_NE(r, nullptr);
    const std::vector<std::array<int, 4>> pairs = {{0, 2, 0, 1}, {0, 2, 0, 3}, {0, 2, 1, 3}, {0, 3, 0, 1},
                                                   {0, 3, 0, 3}, {0, 3, 1, 3}, {2, 3, 0, 1}, {2, 3, 0, 3},
                                                   {2, 3, 1, 3}};
    EXPECT_EQ(r->GetPosteriorPairs(), pairs);
    ASSERT_EQ(r->GetPosteriorEstimations().size(), pairs.size());
    for (std::size_t k = 0; k < pairs.size(); ++k) {
        const auto [i, i2, j, j2] = pairs[k];
        const auto psi = [&](int a, int c) { return boost::math::digamma(table[a][c] + 0.5); };
        const double mean = psi(i, j) + psi(i2, j2) - psi(i, j2) - psi(i2, j);
        EXPECT_NEAR(r->GetPosteriorEstimations()[k].GetMean(), mean, 1e-13) << k;
        EXPECT_LT(r->GetPosteriorEstimations()[k].GetLower(), r->GetPosteriorEstimations()[k].GetMode());
        EXPECT_LT(r->GetPosteriorEstimations()[k].GetMode(), r->GetPosteriorEstimations()[k].GetUpper());
    }
    // A single non-empty column pair of a 2-row table: one pair.
    Build two(Settings(2, 3), Matrix{{4, 0, 6}, {3, 0, 1}});
    ASSERT_NE(two.Result(), nullptr);
    EXPECT_EQ(two.Result()->GetPosteriorPairs(), (std::vector<std::array<int, 4>>{{0, 1, 0, 2}}));
}

TEST(LogLinearPosterior, ImproperAndTooManyPairsStayMissing) {
    // Shape 0 on an empty cell leaves Gamma(0): no proper posterior for the
    // pairs that use it (420041 once); the other pairs are estimated.
    const Matrix table{{5, 0, 7}, {3, 9, 1}};
    BSNSettings s = Settings(2, 3);
    s.SetLogLinShapes({0});
    s.SetAnalysType(BSNConst::Posterior);
    Build b(s, table);
    ASSERT_NE(b.Result(), nullptr);
    EXPECT_EQ(b.WarningCodes(), std::vector<int>{420041});
    const auto& e = b.Result()->GetPosteriorEstimations();
    ASSERT_EQ(e.size(), 3u);  // columns (0,1), (0,2), (1,2)
    EXPECT_EQ(e[0].GetMean(), kMiss);
    EXPECT_EQ(e[0].GetLower(), kMiss);
    EXPECT_NE(e[1].GetMean(), kMiss);
    EXPECT_EQ(e[2].GetUpper(), kMiss);
    // Wrong number of shapes: 410060 with R·C and the count.
    s.SetLogLinShapes({1, 1, 1});
    Build wrong(s, table);
    EXPECT_EQ(wrong.status.GetCode(), 410060);
    EXPECT_EQ(wrong.status.GetDiscreteDatum(0), 6);
    EXPECT_EQ(wrong.status.GetDiscreteDatum(1), 3);

    // 81 × 81 non-empty categories: 3240² = 10.5 million pairs, refused rather than attempted.
    BSNSettings big = Settings(81, 81);
    big.SetAnalysType(BSNConst::Posterior);
    Build many(big, Matrix(81, std::vector<double>(81, 1.0)));
    ASSERT_NE(many.Result(), nullptr);
    EXPECT_EQ(many.WarningCodes(), std::vector<int>{420042});
    EXPECT_TRUE(many.Result()->GetPosteriorEstimations().empty());
    EXPECT_NE(many.Result()->GetChiSquareResult().GetWald(), kMiss);
}

TEST(LogLinearPosterior, DensityCurvesOfTheFirstPairs) {
    std::vector<double> xs, ys;
    const BayesEstimation e = estimateFor({35, 25, 10, 14}, 95, &xs, &ys);
    ASSERT_EQ(xs.size(), 100u);
    // The curve spans the central 99% (plot domain level 0.005) and holds
    // that much mass (trapezoids), peaking at the mode.
    double mass = 0.0, peakAt = xs[0], peak = 0.0;
    for (std::size_t k = 1; k < xs.size(); ++k) mass += 0.5 * (ys[k] + ys[k - 1]) * (xs[k] - xs[k - 1]);
    for (std::size_t k = 0; k < xs.size(); ++k)
        if (ys[k] > peak) peak = ys[k], peakAt = xs[k];
    EXPECT_NEAR(mass, 0.99, 2e-3);
    EXPECT_NEAR(peakAt, e.GetMode(), xs[1] - xs[0]);
    EXPECT_LT(xs.front(), e.GetLower());
    EXPECT_GT(xs.back(), e.GetUpper());
}

} // namespace
