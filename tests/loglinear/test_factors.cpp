// Bayes factors for independence: the choice of method, its warnings and
// errors, and the values against the sampling models' marginal likelihoods
// (R, tests/data/loglinear_reference.R) and against 60-digit sums at totals
// of 1e9 and 1e12 (mpmath, tests/data/loglinear_reference.py).
#include <cmath>
#include <iostream>
#include <sstream>

#include <gtest/gtest.h>

#include "bsn/loglinear/bsnloglinconjugatebf.h"
#include "bsn/loglinear/bsnloglindirichletbf.h"
#include "bsn/loglinear/bsnloglinintrinsicbf.h"
#include "bsn/loglinear/bsnloglinnonparametricbf.h"
#include "tests/loglinear/loglinear_test_support.h"

namespace {

using namespace MCBSN_850;
using namespace loglinear_test;
namespace C = BSNConst;

// Settings of one reference case: kind (joint, rows, cols, poisson,
// dirichlet, np, intrinsic) and fixed margin (total, rows, cols).
BSNSettings caseSettings(const Row& row, const Matrix& table) {
    BSNSettings s = Settings(table.size(), table[0].size());
    s.SetAnalysType(C::BayesFactor);
    const std::string kind = row.Text("kind"), fix = row.Text("fix");
    s.SetFixType(fix == "rows" ? C::FixedRow : fix == "cols" ? C::FixedColumn : C::FixedTotal);
    if (kind == "joint" || kind == "rows" || kind == "cols") {
        s.SetFixType(kind == "rows" ? C::FixedRow : kind == "cols" ? C::FixedColumn : C::FixedTotal);
        s.SetLogLinPriorType(C::LogLinConjugate);
    } else if (kind == "poisson") {
        s.SetLogLinModel(C::Poisson);
    } else if (kind == "dirichlet") {
        s.SetLogLinPriorType(C::LogLinDirichlet);
    } else if (kind == "np") {
        s.SetLogLinModel(C::Nonparametric);
    } else if (kind == "intrinsic") {
        s.SetLogLinPriorType(C::LogLinIntrinsic);
    }
    if (row.cells.count("shapes")) s.SetLogLinShapes(row.Nums("shapes"));
    if (row.cells.count("extra")) {
        const std::vector<double> extra = row.Nums("extra");
        if (kind == "poisson" && !MCCommon_850::MCMV::IsMissing(extra[0])) s.SetPriorScale(extra[0]);
        if (kind == "np" && !MCCommon_850::MCMV::IsMissing(extra[0])) s.SetLambdas(extra);
    }
    if (row.cells.count("t")) s.SetLogLinIntrinsicT(static_cast<int>(row.Num("t")));
    return s;
}

TEST(LogLinearFactors, AgreeWithTheModelsMarginalLikelihoods) {
    const auto rows = ReadReference("factors.csv");
    ASSERT_GE(rows.size(), 20u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.Text("name"));
        const Matrix table = row.Table();
        Build b(caseSettings(row, table), table);
        ASSERT_TRUE(b.component.IsModelBuilt());
        const auto* r = b.Result();
        ASSERT_NE(r, nullptr);
        EXPECT_TRUE(b.WarningCodes().empty());
        EXPECT_TRUE(Near(r->GetLogBayesFactor(), row.Num("log_bf"), 1e-12, 1e-11));
        EXPECT_FALSE(r->IsLogBayesFactor());
        EXPECT_TRUE(Near(r->GetBayesFactor(), std::exp(row.Num("log_bf")), 1e-11));
    }
}

TEST(LogLinearFactors, AccurateAtTotalsOfABillionAndATrillion) {
    // Summed as separate log-gamma values these factors would keep about
    // six digits at 1e9 and three at 1e12; here every log factor is within
    // 1e-10 (or 2e-15 of itself when it is huge) of the 60-digit value.
    // Very strong association gives the log factor with its flag and 410041.
    const auto rows = ReadReference("factors_large.csv");
    ASSERT_GE(rows.size(), 23u);
    double worst = 0.0;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.Text("name"));
        const Matrix table = row.Table();
        Build b(caseSettings(row, table), table);
        const auto* r = b.Result();
        ASSERT_NE(r, nullptr);
        const double expected = row.Num("log_bf");
        worst = std::max(worst, std::fabs(r->GetLogBayesFactor() - expected));
        std::cout << "[          ] " << row.Text("name") << ": ln BF " << expected << ", error "
                  << r->GetLogBayesFactor() - expected << "\n";
        EXPECT_TRUE(Near(r->GetLogBayesFactor(), expected, 2e-15, 1e-10));
        const bool flagged = expected < -708.0 || expected > 709.0;
        EXPECT_EQ(r->IsLogBayesFactor(), flagged);
        EXPECT_EQ(b.WarningCodes(), flagged ? std::vector<int>{410041} : std::vector<int>{});
        if (flagged)
            EXPECT_EQ(r->GetBayesFactor(), r->GetLogBayesFactor());
        else
            EXPECT_TRUE(Near(r->GetBayesFactor(), std::exp(expected), 1e-9));
    }
    std::cout << "[          ] largest error of a log factor at large totals: " << worst << "\n";
}

TEST(LogLinearFactors, IntrinsicAgainstThePriorOfEveryTrainingTable) {
    // m1 by integrating the likelihood against the intrinsic prior density,
    // itself the mixture over every pair of training samples.
    const auto rows = ReadReference("intrinsic.csv");
    ASSERT_GE(rows.size(), 7u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.Text("table") + " " + row.Text("fix") + " T " + row.Text("t_given"));
        const Matrix table = row.Table();
        BSNSettings s = Settings(2, 2);
        s.SetAnalysType(C::BayesFactor);
        s.SetLogLinPriorType(C::LogLinIntrinsic);
        const std::string fix = row.Text("fix");
        s.SetFixType(fix == "rows" ? C::FixedRow : fix == "cols" ? C::FixedColumn : C::FixedTotal);
        s.SetLogLinIntrinsicT(static_cast<int>(row.Num("t_given")));
        Build b(s, table);
        const auto* r = b.Result();
        ASSERT_NE(r, nullptr);
        EXPECT_EQ(r->GetT(), static_cast<int>(row.Num("T")));
        EXPECT_EQ(r->GetT1(), static_cast<int>(row.Num("T1")));
        EXPECT_EQ(r->GetT2(), static_cast<int>(row.Num("T2")));
        EXPECT_TRUE(Near(r->GetLogBayesFactor(), row.Num("log_bf"), 1e-11, 1e-11));
    }
}

// The dispatch: which calculator each model, prior and fixed margin gets,
// with its warnings; the expected value comes from the calculator itself
// on the same table.
TEST(LogLinearFactors, ChoiceOfMethod) {
    enum Expect { Conjugate, Dirichlet, Intrinsic, NonParam, NoFactor, Error56 };
    struct Case {
        Matrix table;
        C::DistTypes model;
        int prior;
        C::FixType fix;
        Expect expect;
        std::vector<int> warnings;
    };
    const Matrix t22{{12, 5}, {3, 10}}, t33{{34, 9, 5}, {13, 24, 20}, {25, 23, 11}}, t23{{3, 8, 12}, {7, 2, 4}},
        t32{{3, 7}, {8, 2}, {12, 4}};
    const std::vector<Case> cases = {
        {t33, C::Multinomial, 0, C::FixedTotal, Conjugate, {}},
        {t33, C::Multinomial, 0, C::FixedRow, Conjugate, {}},
        {t33, C::Poisson, 2, C::FixedColumn, Conjugate, {}},  // Poisson: conjugate whatever the prior
        {t33, C::Multinomial, 1, C::FixedColumn, Dirichlet, {}},
        {t22, C::Multinomial, 2, C::FixedRow, Intrinsic, {}},
        {t22, C::Multinomial, 2, C::FixedTotal, Intrinsic, {}},
        {t33, C::Multinomial, 2, C::FixedRow, Dirichlet, {410053}},
        {t23, C::Multinomial, 2, C::FixedColumn, Dirichlet, {410053}},
        {t23, C::Nonparametric, 0, C::FixedRow, NonParam, {}},
        {t32, C::Nonparametric, 1, C::FixedColumn, NonParam, {}},
        {t32, C::Nonparametric, 0, C::FixedRow, Dirichlet, {410054}},
        {t33, C::Nonparametric, 0, C::FixedColumn, Dirichlet, {410054}},
        {t33, C::Nonparametric, 0, C::FixedTotal, Error56, {}},
        {t33, C::Multinomial, 7, C::FixedTotal, NoFactor, {}},
        {t33, C::Binomial, 1, C::FixedTotal, Dirichlet, {}},  // any other model is multinomial
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "model " << c.model << " prior " << c.prior << " fix " << c.fix);
        BSNSettings s = Settings(c.table.size(), c.table[0].size());
        s.SetAnalysType(C::BayesFactor);
        s.SetLogLinModel(c.model);
        s.SetLogLinPriorType(static_cast<C::LogLinPriorType>(c.prior));
        s.SetFixType(c.fix);
        std::ostringstream captured;
        std::streambuf* old = std::cout.rdbuf(captured.rdbuf());
        Build b(s, c.table);
        std::cout.rdbuf(old);
        if (c.expect == Error56) {
            EXPECT_EQ(b.status.GetCode(), 410056);
            EXPECT_TRUE(b.status.IsError());
            EXPECT_EQ(b.Result(), nullptr);
            continue;
        }
        ASSERT_NE(b.Result(), nullptr);
        EXPECT_EQ(b.WarningCodes(), c.warnings);
        const BSNContingency table(c.table);
        std::unique_ptr<BSNLogLinBayesFactor> direct;
        switch (c.expect) {
        case Conjugate: direct = std::make_unique<BSNLogLinConjugateBF>(s, table); break;
        case Dirichlet: direct = std::make_unique<BSNLogLinDirichletBF>(s, table); break;
        case Intrinsic: direct = std::make_unique<BSNLogLinIntrinsicBF>(s, table); break;
        case NonParam: direct = std::make_unique<BSNLogLinNonParametricBF>(s, table); break;
        default: break;
        }
        if (!direct) {
            EXPECT_EQ(b.Result()->GetBayesFactor(), kMiss);
            EXPECT_EQ(captured.str(), "\nThe Requested Method is Not Ready Yet!\n");
            continue;
        }
        EXPECT_EQ(b.Result()->GetBayesFactor(), direct->ComputeBayesFactor());
        EXPECT_EQ(b.Result()->GetT(), direct->GetT());
        // The methods differ on these tables: a wrong choice shows.
        BSNLogLinDirichletBF other(s, table);
        if (c.expect != Dirichlet) {
            EXPECT_NE(b.Result()->GetBayesFactor(), other.ComputeBayesFactor());
        }
    }
    // With the posterior alone the nonparametric fixed-total choice is no error.
    BSNSettings s = Settings(3, 3);
    s.SetLogLinModel(C::Nonparametric);
    s.SetAnalysType(C::Posterior);
    Build b(s, t33);
    EXPECT_TRUE(b.component.IsModelBuilt());
}

TEST(LogLinearFactors, SettingsThatGiveNoFactor) {
    const Matrix t33{{34, 9, 5}, {13, 24, 20}, {25, 23, 11}};
    // Not exactly two factors and sizes: 410049 with the number of factors.
    for (const std::vector<int>& factors : {std::vector<int>{0}, std::vector<int>{0, 1, 2}}) {
        BSNSettings s = Settings(3, 3);
        s.SetFactors(factors);
        Build b(s, t33);
        EXPECT_EQ(b.status.GetCode(), 410049);
        EXPECT_TRUE(b.status.IsError());
        EXPECT_EQ(b.status.GetDiscreteDatum(0), static_cast<int>(factors.size()));
        EXPECT_EQ(b.Result(), nullptr);
    }
    struct Case {
        C::DistTypes model;
        C::LogLinPriorType prior;
        C::FixType fix;
        std::vector<double> shapes, lambdas;
        int code;
        bool error;
        std::vector<int> data;
    };
    const std::vector<Case> cases = {
        // One shape 0.5 on 3×3: the rows' Dirichlet parameters are 0.5·3 - 3 + 1 < 0.
        {C::Multinomial, C::LogLinConjugate, C::FixedTotal, {0.5}, {}, 410055, false, {}},
        {C::Poisson, C::LogLinConjugate, C::FixedTotal, {0.5}, {}, 410055, false, {}},
        {C::Multinomial, C::LogLinConjugate, C::FixedRow, {1, 2, 3, 4}, {}, 410060, true, {9, 4}},
        {C::Multinomial, C::LogLinDirichlet, C::FixedRow, {1, 2}, {}, 410060, true, {9, 2}},
        {C::Multinomial, C::LogLinDirichlet, C::FixedRow, {1, 1, 1, 1, 0, 1, 1, 1, 1}, {}, 410055, false, {}},
        {C::Nonparametric, C::LogLinConjugate, C::FixedRow, {}, {1, 2}, 410050, true, {3, 2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        const Matrix& table = c.code == 410050 ? Matrix{{3, 8, 12}, {7, 2, 4}} : t33;
        BSNSettings s = Settings(table.size(), table[0].size());
        s.SetAnalysType(C::BayesFactor);
        s.SetLogLinModel(c.model);
        s.SetLogLinPriorType(c.prior);
        s.SetFixType(c.fix);
        s.SetLogLinShapes(c.shapes);
        s.SetLambdas(c.lambdas);
        Build b(s, table);
        if (c.error) {
            EXPECT_EQ(b.status.GetCode(), c.code);
            EXPECT_TRUE(b.status.IsError());
            for (std::size_t k = 0; k < c.data.size(); ++k)
                EXPECT_EQ(b.status.GetDiscreteDatum(static_cast<int>(k)), c.data[k]);
            EXPECT_EQ(b.Result(), nullptr);
        } else {
            EXPECT_TRUE(b.component.IsModelBuilt());
            EXPECT_EQ(b.WarningCodes(), std::vector<int>{c.code});
            ASSERT_NE(b.Result(), nullptr);
            EXPECT_EQ(b.Result()->GetBayesFactor(), kMiss);
            EXPECT_EQ(b.Result()->GetLogBayesFactor(), kMiss);
        }
    }
}

TEST(LogLinearFactors, IntrinsicRefusesAnEndlessSum) {
    // T = 200,000 would mean 1e10 pairs of training samples.
    BSNSettings s = Settings(2, 2);
    s.SetAnalysType(C::BayesFactor);
    s.SetLogLinPriorType(C::LogLinIntrinsic);
    s.SetLogLinIntrinsicT(200000);
    Build b(s, Matrix{{12, 5}, {3, 10}});
    ASSERT_NE(b.Result(), nullptr);
    EXPECT_EQ(b.WarningCodes(), std::vector<int>{410059});
    EXPECT_EQ(b.Result()->GetBayesFactor(), kMiss);
    EXPECT_EQ(b.Result()->GetT(), 200000);
}

TEST(LogLinearFactors, LogBetaPiecesFollowThePositiveArgumentRule) {
    // The excess form against the literal log-beta sums, with zero and
    // negative shapes whose entries drop out of one sum or of both.
    const std::vector<std::vector<double>> shapes = {
        {1, 2, 0.5}, {0, 1, 3}, {-0.5, 2, 1}, {-3, 1, 1}, {0, 0, 0}, {2.5, -1, 0}};
    const std::vector<std::vector<double>> counts = {{0, 3, 7}, {4, 0, 2.5}, {1, 1, 1}, {2, 5, 0}};
    for (const auto& a : shapes)
        for (const auto& x : counts) {
            double h = 0.0, total = 0.0;
            for (double v : x) {
                h += BSNLogLinBayesFactor::EntropyPart(v);
                total += v;
            }
            const double literal =
                BSNLogLinConjugateBF::ComputeLogBetaSum(a, x) - BSNLogLinConjugateBF::ComputeLogBeta(a);
            EXPECT_NEAR(BSNLogLinBayesFactor::LogBetaRatioExcess(a, x) + h - BSNLogLinBayesFactor::EntropyPart(total),
                        literal, 1e-12)
                << a[0] << " " << a[1] << " " << a[2] << " / " << x[0] << " " << x[1] << " " << x[2];
        }
    EXPECT_DOUBLE_EQ(BSNLogLinConjugateBF::ComputeLogBeta({1, 2, 0, -1}), -std::log(2.0));
    EXPECT_DOUBLE_EQ(BSNLogLinNonParametricBF::ComputeLogDirichlet({1, 2}), std::log(2.0));
    EXPECT_DOUBLE_EQ(BSNLogLinNonParametricBF::ComputeLogDirichletSum({1, -0.5}, {1, 2}),
                     std::lgamma(3.5) - std::lgamma(2.0) - std::lgamma(1.5));
}

TEST(LogLinearFactors, ProcessLogKeepsTheLogarithm) {
    const BSNContingency table(Matrix{{12, 5}, {3, 10}});
    BSNSettings s = Settings(2, 2);
    for (double l : {-708.0, 709.0, -708.5, 709.5, -1e6}) {
        BSNLogLinDirichletBF f(s, table);
        f.ProcessLogBayesFactor(l);
        const bool inRange = l >= -708.0 && l <= 709.0;
        EXPECT_EQ(f.IsLogBayesFactor(), !inRange) << l;
        EXPECT_EQ(f.GetLogBayesFactor(), l);
        EXPECT_EQ(f.GetBayesFactor(), inRange ? std::exp(l) : l);
        EXPECT_EQ(f.GetWarnings().Size(), inRange ? 0u : 1u);
    }
    BSNLogLinDirichletBF f(s, table);
    f.ProcessLogBayesFactor(kMiss);
    EXPECT_EQ(f.GetBayesFactor(), kMiss);
    EXPECT_TRUE(f.GetStatus().IsOK());
}

} // namespace
