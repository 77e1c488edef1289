// The classical two-sample tests and the three Bayes factors of equal
// means, against exact 50-digit statistics (within 1e-15 of R's t.test on the
// rows repeated by their weights) and high-precision evaluations of each factor (tests/data).
#include <numbers>

#include "bsn/twosample/gonenbayesfactor.h"
#include "bsn/twosample/hyperpriorbayesfactor.h"
#include "bsn/twosample/rouderbayesfactor.h"
#include "tests/twosample/test_independent_support.h"

using namespace indeptest;
using MCBSN_850::GonenBayesFactor;
using MCBSN_850::HyperPriorBayesFactor;
using MCBSN_850::RouderBayesFactor;

TEST(IndependentTests, PooledAndWelchAsRAndExactArithmetic) {
    std::vector<std::vector<double>> data(4);
    const char* const columns[] = {"group", "freq", "x", "y"};
    for (const auto& row : readTable("independent_ttest_data.csv"))
        for (int c = 0; c < 4; ++c) data[c].push_back(number(row, columns[c]));
    ASSERT_EQ(data[0].size(), 26u) << "tests/data/independent_ttest_data.csv not found";
    BSNSettings s = indepSettings({2, 3}, 0, BC::BayesFactor);
    s.SetFrequencyWeightVar(1);
    NormalRun r(s, data);
    ASSERT_TRUE(r.status.IsOK());
    const auto& o = output(r);
    EXPECT_EQ(o.GetTTestVarIndices(), (std::vector<int>{2, 3}));
    EXPECT_TRUE(o.GetPostVarIndices().empty() && o.GetModeValues().empty());  // no posterior asked for

    const auto exact = readTable("independent_ttest_exact.csv");
    ASSERT_EQ(exact.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        SCOPED_TRACE(exact[i].at("variable"));
        const auto& e = exact[i];
        // y is near 1e9 with a spread of 1e-3: only the shifted accumulation keeps the digits.
        const double tol = i == 0 ? 1e-12 : 1e-8;
        EXPECT_EQ(o.GetGroup1StatsNs()[i], number(e, "n0"));
        EXPECT_EQ(o.GetGroup2StatsNs()[i], number(e, "n1"));
        EXPECT_EQ(o.GetDFValues()[i], number(e, "df_pooled"));
        EXPECT_LT(rel(o.GetGroup1StdDevs()[i], std::sqrt(number(e, "var0"))), tol);
        EXPECT_LT(rel(o.GetGroup2StdDevs()[i], std::sqrt(number(e, "var1"))), tol);
        EXPECT_LT(rel(o.GetGroup1EMs()[i], std::sqrt(number(e, "var0") / number(e, "n0"))), tol);
        const std::vector<std::pair<double, const char*>> stats = {
            {o.GetMeanDiffValues()[i], "diff"},    {o.GetTValues()[i], "t_pooled"},
            {o.GetSigs()[i], "p_pooled"},          {o.GetPStdEDDevs()[i], "se_pooled"},
            {o.GetWelchTValues()[i], "t_welch"},   {o.GetWelchDFValues()[i], "df_welch"},
            {o.GetWelchSigs()[i], "p_welch"},      {o.GetWelchStdEDDevs()[i], "se_welch"}};
        for (const auto& [ours, key] : stats) EXPECT_LT(rel(ours, number(e, key)), tol) << key;
    }
}

TEST(IndependentTests, HugeWeightsAndExtremeTStayFinite) {
    // n0 = n1 = 5e8 through weights, with t near 0 and t of 50; every
    // factor kind. Each group is {m - 0.5, m + 0.5} weighted n / 2: pooled
    // sd sp, and means d apart give pooled t = d / (sp sqrt(2 / n)).
    const double n = 5e8, sp = std::sqrt(0.25 * n / (n - 1));
    for (double t : {1e-6, 0.3, 50.0}) {
        for (int kind : {BC::Rouder, BC::Gonen, BC::Hyper}) {
            SCOPED_TRACE(testing::Message() << "t " << t << " kind " << kind);
            const double d = t * sp * std::sqrt(2.0 / n);
            BSNSettings s = indepSettings({0}, 1);
            s.SetFrequencyWeightVar(2); s.SetRegrCompType(static_cast<BC::RegrCompute>(kind));
            s.SetRegrComPar(kind == BC::Gonen ? 0.5 : 3.0); s.SetSecondGonenPar(1.0); s.SetEqualDataVar(true);
            NormalRun r(s, {{-0.5, 0.5, d - 0.5, d + 0.5}, {0, 0, 1, 1}, {n / 2, n / 2, n / 2, n / 2}});
            ASSERT_TRUE(r.status.IsOK());
            const auto& o = output(r);
            EXPECT_EQ(o.GetGroup1StatsNs()[0], 500000000);
            EXPECT_NEAR(o.GetTValues()[0], t, 1e-6 * std::max(1.0, t));
            EXPECT_EQ(o.GetDFValues()[0], 2 * n - 2);
            for (double v : {o.GetTValues()[0], o.GetSigs()[0], o.GetWelchTValues()[0], o.GetWelchSigs()[0],
                             o.GetModeValues()[0], o.GetLowerLimits()[0], o.GetUpperLimits()[0]})
                EXPECT_FALSE(MCMV::IsMissing(v));
            // For t = 50 the factor underflows to 0 and its log-scale logarithm carries it.
            const double bf = o.GetBayesFactors()[0], lbf = o.GetLogBayesFactors()[0];
            if (t < 1.0) {
                EXPECT_GT(bf, 1.0);  // a huge sample with t near 0 favours equal means
                EXPECT_NEAR(std::log(bf), lbf, 1e-9 * std::fabs(lbf));
            } else {
                EXPECT_EQ(bf, 0.0);
                EXPECT_LT(lbf, -1000.0);
            }
            for (const auto& curve : {o.GetPlotPosterior(), o.GetPlotXLikelihoods(), o.GetPlotYLikelihoods()})
                for (double v : curve[0]) EXPECT_FALSE(MCMV::IsMissing(v));
        }
    }
}

TEST(IndependentFactors, RouderAgreesWithTheBoundedIntegral) {
    // (The bounded integral is within 3e-6 of the one to infinity, tests/data/jzs_twosample.csv.)
    const auto rows = readTable("jzs_twosample_bounded.csv");
    ASSERT_EQ(rows.size(), 16u);
    BSNSettings s;  // procedure defaults: tolerance 1e-6
    BSNSettings tight;
    tight.SetTolValue(1e-10);
    for (const auto& row : rows) {
        const double n0 = number(row, "n0"), n1 = number(row, "n1"), t = number(row, "t");
        SCOPED_TRACE(testing::Message() << n0 << "/" << n1 << " t " << t);
        MCCommon_850::MCWarnings w;
        const double n = n0 * n1 / (n0 + n1), df = n0 + n1 - 2, ref = number(row, "bf01_bounded");
        EXPECT_LT(rel(RouderBayesFactor::Factor(s, n, df, t, w), ref), 1e-6);
        EXPECT_LT(rel(RouderBayesFactor::Factor(tight, n, df, t, w), ref), 1e-8);
        EXPECT_TRUE(w.IsEmpty());
    }
    // Underflowed, its logarithm still agrees with an independent evaluation (n = 1e9, t = 100).
    MCCommon_850::MCWarnings w;
    EXPECT_NEAR(RouderBayesFactor::LogFactor(s, 1e9, 1e9 - 1, 100.0, w), -4989.38757089456, 1e-6);
    EXPECT_EQ(RouderBayesFactor::Factor(s, 1e9, 1e9 - 1, 100.0, w), 0.0);
}

TEST(IndependentFactors, ComputationTypeChoosesTheFactor) {
    // Siow, Zellner and Rouder all give the JZS factor, Monte Carlo close to it.
    const auto cols = groupColumns({4.1, 5.3, 3.8, 6.0, 5.1, 4.4}, {5.9, 6.4, 5.0, 7.2, 6.1, 5.5, 6.8});
    auto settings = [](BC::RegrCompute kind) {
        BSNSettings s = indepSettings({0}, 1, BC::BayesFactor);
        s.SetRegrCompType(kind);
        return s;
    };
    double jzs = kMiss;
    for (BC::RegrCompute kind : {BC::Siow, BC::Zellner, BC::Rouder}) {
        const BSNSettings s = settings(kind);
        NormalRun r(s, cols);
        const auto& o = output(r);
        MCCommon_850::MCWarnings w;
        const double expect = RouderBayesFactor::Factor(s, 6.0 * 7 / 13, 11, o.GetTValues()[0], w);
        EXPECT_DOUBLE_EQ(o.GetBayesFactors()[0], expect) << kind;
        EXPECT_DOUBLE_EQ(o.GetLogBayesFactors()[0], std::log(expect));
        jzs = expect;
    }
    BSNSettings mc = settings(BC::Siow);
    mc.SetMethodType(BC::MCA); mc.SetMCSamples(200000);
    NormalRun r(mc, cols);
    EXPECT_LT(rel(output(r).GetBayesFactors()[0], jzs), 0.02);
    NormalRun h(settings(BC::Hyper), cols);  // a = 3 by default
    EXPECT_DOUBLE_EQ(output(h).GetLogBayesFactors()[0],
                     HyperPriorBayesFactor::LogFactor(11, output(h).GetTValues()[0], 3.0));
    // Gonen needs both of its parameters; without them no factor.
    NormalRun g(settings(BC::Gonen), cols);
    EXPECT_TRUE(MCMV::IsMissing(output(g).GetBayesFactors()[0]));
    EXPECT_TRUE(r.component.GetWarningMessages().IsEmpty());
}

TEST(IndependentFactors, GonenAndHyperAgainstTheirClosedForms) {
    const auto rows = readTable("gonen_hyper_factors.csv");
    ASSERT_EQ(rows.size(), 21u);
    for (const auto& row : rows) {
        const double df = number(row, "df"), t = number(row, "t"), a = number(row, "a"), ref = number(row, "log_bf");
        SCOPED_TRACE(testing::Message() << row.at("kind") << " df " << df << " t " << t << " a " << a);
        if (row.at("kind") == "hyper") {
            EXPECT_NEAR(HyperPriorBayesFactor::LogFactor(df, t, a), ref, 1e-12 * std::max(1.0, std::fabs(ref)));
            continue;
        }
        const double n = number(row, "n"), s2 = number(row, "s2");
        EXPECT_NEAR(GonenBayesFactor::LogFactor(n, df, t, a, s2), ref, 1e-10 * std::max(1.0, std::fabs(ref)));
        const double bf = GonenBayesFactor::Factor(n, df, t, a, s2);
        // Beyond the exponent range: missing above, 0 below.
        if (ref > 709.0 || ref < -708.0)
            EXPECT_EQ(bf, ref > 0 ? kMiss : 0.0);
        else
            EXPECT_LT(rel(bf, std::exp(ref)), 1e-9);
    }
    // a = 0 and t = 0: sqrt(q); the hyper-prior at t = 0: the gamma ratio alone.
    EXPECT_DOUBLE_EQ(GonenBayesFactor::Factor(30.0, 58.0, 0.0, 0.0, 0.7), std::sqrt(1.0 + 0.7 * 30.0));
    const double ratio = std::exp(std::lgamma(15.5) + std::lgamma(4.0) - std::lgamma(15.0) - std::lgamma(4.5));
    EXPECT_NEAR(std::exp(HyperPriorBayesFactor::LogFactor(30.0, 0.0, 3.0)), ratio, 1e-13 * ratio);
    // Invalid parameters: missing, no message.
    EXPECT_TRUE(MCMV::IsMissing(GonenBayesFactor::LogFactor(10, 18, 1.0, 0.5, kMiss)) &&
                MCMV::IsMissing(HyperPriorBayesFactor::LogFactor(18, 1.0, -1.0)));
}

TEST(IndependentFactors, LogNonCentralDensityAgainstItsClosedForm) {
    const auto rows = readTable("nct_log_density.csv");
    ASSERT_EQ(rows.size(), 108u);
    for (const auto& row : rows) {
        const double df = number(row, "df"), delta = number(row, "delta"), x = number(row, "x");
        const double ref = number(row, "log_pdf");
        EXPECT_NEAR(GonenBayesFactor::LogNonCentralPdfT(x, df, delta), ref, 1e-11 * std::max(1.0, std::fabs(ref)))
            << df << " " << delta << " " << x;
    }
    EXPECT_TRUE(MCMV::IsMissing(GonenBayesFactor::LogNonCentralPdfT(1.0, 0.0, 1.0)));
    // Far below the double range the logarithm is still finite and keeps falling.
    const double a = GonenBayesFactor::LogNonCentralPdfT(3.0, 1e9, 400.0);
    const double b = GonenBayesFactor::LogNonCentralPdfT(3.0, 1e9, 500.0);
    EXPECT_NEAR(a, -0.5 * std::log(2 * std::numbers::pi) - 397.0 * 397.0 / 2, 1e-3);
    EXPECT_LT(b, a);
}
