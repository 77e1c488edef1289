// Bayes factors for independence: the choice of method, its warnings and errors, and the values
// against the sampling models' marginal likelihoods (R, tests/data/loglinear_reference.R) and
// against 60-digit sums at totals of 1e9 and 1e12 (mpmath, tests/data/loglinear_reference.py).
#include <array>
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

// Settings of one reference case: kind (joint, rows, cols, poisson, dirichlet, np, intrinsic;
// intrinsic when not given) and fixed margin (total, rows, cols).
BSNSettings caseSettings(const Row& row, const Matrix& table) {
    BSNSettings s = Settings(table.size(), table[0].size());
    s.SetAnalysType(C::BayesFactor);
    const std::string kind = row.cells.count("kind") ? row.Text("kind") : "intrinsic", fix = row.Text("fix");
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
    for (const char* t : {"t", "t_given"})
        if (row.cells.count(t)) s.SetLogLinIntrinsicT(static_cast<int>(row.Num(t)));
    return s;
}

// factors.csv against R; factors_large.csv at totals of 1e9 and 1e12, where separate log-gamma values
// would keep about six digits and three: within 1e-10 (or 2e-15 of itself when huge) of the 60-digit
// value, with the log flag and 410041 for very strong association; intrinsic.csv integrates the likelihood
// against the intrinsic prior (the mixture over every pair of training samples), with T, T1 and T2.
TEST(LogLinearFactors, AgreeWithTheModelsMarginalLikelihoods) {
    struct File { const char* name; std::size_t rows; double rel, abs, bfRel; };
    const File files[] = {{"factors.csv", 20, 1e-12, 1e-11, 1e-11}, {"factors_large.csv", 23, 2e-15, 1e-10, 1e-9},
                          {"intrinsic.csv", 7, 1e-11, 1e-11, 1e-10}};
    for (const File& f : files) {
        const auto rows = ReadReference(f.name);
        ASSERT_GE(rows.size(), f.rows);
        for (const Row& row : rows) {
            const bool intrinsic = row.cells.count("T1") > 0;
            SCOPED_TRACE(intrinsic ? row.Text("table") + " " + row.Text("fix") + " T " + row.Text("t_given")
                                   : row.Text("name"));
            const Matrix table = row.Table();
            Build b(caseSettings(row, table), table);
            const auto* r = b.Result();
            ASSERT_NE(r, nullptr);
            const double expected = row.Num("log_bf");
            EXPECT_TRUE(Near(r->GetLogBayesFactor(), expected, f.rel, f.abs));
            const bool flagged = expected < -708.0 || expected > 709.0;
            EXPECT_EQ(r->IsLogBayesFactor(), flagged);
            EXPECT_EQ(b.WarningCodes(), flagged ? std::vector<int>{410041} : std::vector<int>{});
            if (flagged)
                EXPECT_EQ(r->GetBayesFactor(), r->GetLogBayesFactor());
            else
                EXPECT_TRUE(Near(r->GetBayesFactor(), std::exp(expected), f.bfRel));
            if (intrinsic) {
                EXPECT_EQ((std::array{r->GetT(), r->GetT1(), r->GetT2()}),
                          (std::array{int(row.Num("T")), int(row.Num("T1")), int(row.Num("T2"))}));
            }
        }
    }
}

// The dispatch: which calculator each model, prior and fixed margin gets, with its warnings (the
// expected value comes from the calculator itself on the same table), and the settings that give no
// factor (its warnings) or stop the build (the error with its data).
TEST(LogLinearFactors, ChoiceOfMethodAndSettingsThatGiveNoFactor) {
    enum Expect { Conjugate, Dirichlet, Intrinsic, NonParam, NoFactor, Error };
    // codes: the warnings, or the error and its data.
    struct Case { Matrix table; C::DistTypes model; int prior; C::FixType fix; Expect expect; std::vector<int> codes;
                  std::vector<double> shapes = {}, lambdas = {}; int t = 0; std::vector<int> factors = {0, 1}; };
    const Matrix t22{{12, 5}, {3, 10}}, t33{{34, 9, 5}, {13, 24, 20}, {25, 23, 11}}, t23{{3, 8, 12}, {7, 2, 4}},
        t32{{3, 7}, {8, 2}, {12, 4}};
    const auto M = C::Multinomial, NP = C::Nonparametric;
    const auto Total = C::FixedTotal, Rows = C::FixedRow, Cols = C::FixedColumn;
    const std::vector<Case> cases = {
        {t33, M, 0, Total, Conjugate, {}}, {t33, M, 0, Rows, Conjugate, {}},
        {t33, C::Poisson, 2, Cols, Conjugate, {}},  // Poisson: conjugate whatever the prior
        {t33, M, 1, Cols, Dirichlet, {}}, {t22, M, 2, Rows, Intrinsic, {}}, {t22, M, 2, Total, Intrinsic, {}},
        {t33, M, 2, Rows, Dirichlet, {410053}}, {t23, M, 2, Cols, Dirichlet, {410053}},
        {t23, NP, 0, Rows, NonParam, {}}, {t32, NP, 1, Cols, NonParam, {}},
        {t32, NP, 0, Rows, Dirichlet, {410054}}, {t33, NP, 0, Cols, Dirichlet, {410054}},
        {t33, NP, 0, Total, Error, {410056}}, {t33, M, 7, Total, NoFactor, {}},
        {t33, C::Binomial, 1, Total, Dirichlet, {}},  // any other model is multinomial
        // One shape 0.5 on 3×3: the rows' Dirichlet parameters are 0.5·3 - 3 + 1 < 0.
        {t33, M, 0, Total, NoFactor, {410055}, {0.5}},
        {t33, C::Poisson, 0, Total, NoFactor, {410055}, {0.5}},
        {t33, M, 1, Rows, NoFactor, {410055}, {1, 1, 1, 1, 0, 1, 1, 1, 1}},
        {t33, M, 0, Rows, Error, {410060, 9, 4}, {1, 2, 3, 4}},
        {t33, M, 1, Rows, Error, {410060, 9, 2}, {1, 2}},
        {t23, NP, 0, Rows, Error, {410050, 3, 2}, {}, {1, 2}},
        // The intrinsic prior refuses T = 200,000: 1e10 pairs of training samples.
        {t22, M, 2, Total, NoFactor, {410059}, {}, {}, 200000},
        // Not exactly two factors and sizes: 410049 with the number of factors.
        {t33, M, 0, Total, Error, {410049, 1}, {}, {}, 0, {0}},
        {t33, M, 0, Total, Error, {410049, 3}, {}, {}, 0, {0, 1, 2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "model " << c.model << " prior " << c.prior << " fix " << c.fix
                                          << " expect " << c.expect << " " << ::testing::PrintToString(c.codes));
        BSNSettings s = Settings(c.table.size(), c.table[0].size());
        s.SetAnalysType(C::BayesFactor);
        s.SetLogLinModel(c.model);
        s.SetLogLinPriorType(static_cast<C::LogLinPriorType>(c.prior));
        s.SetFixType(c.fix);
        s.SetLogLinShapes(c.shapes);
        s.SetLambdas(c.lambdas);
        s.SetFactors(c.factors);
        if (c.t != 0) s.SetLogLinIntrinsicT(c.t);
        std::ostringstream captured;
        std::streambuf* old = std::cout.rdbuf(captured.rdbuf());
        Build b(s, c.table);
        std::cout.rdbuf(old);
        if (c.expect == Error) {
            EXPECT_EQ(b.status.GetCode(), c.codes[0]);
            EXPECT_TRUE(b.status.IsError());
            for (std::size_t k = 1; k < c.codes.size(); ++k)
                EXPECT_EQ(b.status.GetDiscreteDatum(static_cast<int>(k - 1)), c.codes[k]);
            EXPECT_EQ(b.Result(), nullptr);
            continue;
        }
        EXPECT_TRUE(b.component.IsModelBuilt());
        ASSERT_NE(b.Result(), nullptr);
        EXPECT_EQ(b.WarningCodes(), c.codes);
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
            EXPECT_EQ(b.Result()->GetLogBayesFactor(), kMiss);
            EXPECT_EQ(captured.str(), c.codes.empty() ? "\nThe Requested Method is Not Ready Yet!\n" : "");
            if (c.t != 0) {
                EXPECT_EQ(b.Result()->GetT(), c.t);
            }
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
    s.SetLogLinModel(NP);
    s.SetAnalysType(C::Posterior);
    Build b(s, t33);
    EXPECT_TRUE(b.component.IsModelBuilt());
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
