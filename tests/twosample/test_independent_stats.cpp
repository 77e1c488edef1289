// The independent-samples data pass (the per-group accumulators, group coding, weights and the
// procedure's own messages), the classical tests against exact 50-digit statistics (within 1e-15 of R's
// t.test on the rows repeated by their weights), and the three Bayes factors of equal means against
// high-precision evaluations (tests/data).
#include <limits>
#include <numbers>
#include <tuple>

#include "bsn/twosample/bsn2samplecontstats.h"
#include "bsn/twosample/bsn2sampleindbasicstats.h"
#include "bsn/twosample/gonenbayesfactor.h"
#include "bsn/twosample/hyperpriorbayesfactor.h"
#include "bsn/twosample/rouderbayesfactor.h"
#include "tests/twosample/test_independent_support.h"

using namespace indeptest;
using MCBSN_850::BSN2SampleContStats;
using MCBSN_850::BSN2SampleIndBasicStats;
using MCBSN_850::GonenBayesFactor;
using MCBSN_850::HyperPriorBayesFactor;
using MCBSN_850::RouderBayesFactor;

TEST(IndependentStats, AccumulatorWeightsMeanByBothWeightsAndVarianceByFrequencies) {
    // The mean is weighted by f c; the variance's divisor is sum(f) - 1.
    BSN2SampleContStats w;
    const std::vector<double> x = {2.0, 5.0, 9.0}, f = {2.0, 1.0, 3.0}, c = {0.5, 4.0, 1.5};
    std::vector<double> fc;
    for (std::size_t i = 0; i < x.size(); ++i) {
        EXPECT_TRUE(w.Update(x[i], f[i], c[i]));
        fc.push_back(f[i] * c[i]);
    }
    const Moments m = moments(x, fc);
    for (const auto& [v, fw, cw] : {std::tuple{kMiss, 1.0, 1.0}, {1.0, 1.0, 0.0}, {1.0, 0.0, 1.0}})
        EXPECT_FALSE(w.Update(v, fw, cw)) << v << " " << fw << " " << cw;
    EXPECT_EQ(w.GetSumFreqWeights(), 6.0);
    EXPECT_DOUBLE_EQ(w.GetSumCombinedWeights(), m.n);
    EXPECT_NEAR(w.GetMean(), m.mean, 1e-14);
    EXPECT_NEAR(w.GetVariance(), m.var * (m.n - 1) / 5.0, 1e-13);

    // One case: mean but no variance; none: neither.
    BSN2SampleContStats one;
    EXPECT_TRUE(MCMV::IsMissing(one.GetMean()));
    one.Update(3.5);
    EXPECT_EQ(one.GetMean(), 3.5);
    EXPECT_TRUE(MCMV::IsMissing(one.GetVariance()));
}

TEST(IndependentStats, BasicStatsRoundFrequenciesAndDropUnusableWeights) {
    const std::vector<int> vars = {0, 1};  // the accumulators keep a pointer to it
    BSN2SampleIndBasicStats s(vars), big(vars);
    const double r1[] = {2.0, 5.0}, r2[] = {4.0, kMiss}, r3[] = {6.0, 7.0};
    const MCCommon_850::Record a(r1, 2), b(r2, 2), c(r3, 2);
    EXPECT_TRUE(s.Update(a, 1.5, 1.0));  // rounds to 2
    // Frequencies rounding to 0, negative or missing; case weights 0, negative or missing.
    for (const auto& [f, cw] : {std::pair{0.4, 1.0}, {-3.0, 1.0}, {kMiss, 1.0}, {1.0, 0.0}, {1.0, -2.0}, {1.0, kMiss}})
        EXPECT_FALSE(s.Update(b, f, cw)) << f << " " << cw;
    EXPECT_TRUE(s.Update(b, 2.49, 1.0));  // rounds to 2; its second value is missing
    s.Update(c);
    EXPECT_EQ(s.GetNWeightedCases(), (std::vector<double>{5.0, 3.0}));
    EXPECT_EQ(s.GetNWeightedIntCases(), (std::vector<int>{5, 3}));
    EXPECT_NEAR(s.GetMeans()[1], (2 * 5.0 + 7.0) / 3.0, 1e-14);

    // Sums beyond the int range saturate instead of wrapping.
    big.Update(a, 3e9, 1.0);
    EXPECT_EQ(big.GetNWeightedIntCases()[0], std::numeric_limits<int>::max());
    EXPECT_EQ(big.GetStdErrors()[0], 0.0);  // 3e9 copies of one value
}

TEST(IndependentStats, GroupCodingAndWeightsThroughTheProcedure) {
    // Columns: variable, group, frequency weight, a regression weight that must not be used.
    const std::vector<double> x = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, 10.0, 11.0, 12.0};
    const std::vector<double> g = {0, 1, 0, 1, 2, -1, 0.5, kMiss, 0, 1, 0, 1};
    const std::vector<double> f = {1, 2, 3, 1, 5, 5, 5, 5, 0.4, 1, 1.6, -1};
    const std::vector<double> rw = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};

    struct Case {
        const char* what;
        int freq, regr, n0;                  // n0: the first group's (frequency) count
        std::vector<double> x0, w0, x1, w1;  // the cases each group should hold, with weights
    };
    const std::vector<Case> cases = {
        {"unweighted", -1, -1, 4, {1, 3, 9, 11}, {1, 1, 1, 1}, {2, 4, 10, 12}, {1, 1, 1, 1}},
        // 0.4 rounds to 0 and -1 is not positive: those cases are dropped.
        {"frequency", 2, -1, 6, {1, 3, 11}, {1, 3, 2}, {2, 4, 10}, {2, 1, 1}},
        // The case weight is read at the frequency field: each case weighs f * f_raw in the mean.
        {"frequency and case weights", 2, 3, 6, {1, 3, 11}, {1, 9, 3.2}, {2, 4, 10}, {4, 1, 1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        BSNSettings s = indepSettings({0}, 1, BC::BayesFactor);
        if (c.freq >= 0) s.SetFrequencyWeightVar(c.freq);
        if (c.regr >= 0) s.SetRegrWeightVar(c.regr);
        NormalRun r(s, {x, g, f, rw});
        ASSERT_TRUE(r.status.IsOK()) << r.status.GetCode();
        EXPECT_NEAR(output(r).GetGroup1MeanValues()[0], moments(c.x0, c.w0).mean, 1e-13);
        EXPECT_NEAR(output(r).GetGroup2MeanValues()[0], moments(c.x1, c.w1).mean, 1e-13);
        EXPECT_EQ(output(r).GetGroup1StatsNs()[0], c.n0);
    }

    // A regression weight alone is read at the absent frequency field: every case is dropped.
    BSNSettings s = indepSettings({0}, 1, BC::BayesFactor);
    s.SetRegrWeightVar(3);
    NormalRun r(s, {x, g, f, rw});
    EXPECT_EQ(std::pair(output(r).GetGroup1StatsNs()[0], output(r).GetGroup2StatsNs()[0]), std::pair(0, 0));
    EXPECT_EQ(r.count(410030), 1);
}

TEST(IndependentStats, MessagesCancellationAndProgressOfTheDataPass) {
    const std::vector<double> x = {1, 2, 3, 4, 5}, g = {0, 1, 0, 1, 0};
    // No group variable; no test variables; cancelled at the first progress report.
    MCCommon_850::MCAtomicCancel cancel;
    CancellingListener stopper(cancel, 1);
    BSNSettings cancelled = indepSettings({0}, 1);
    cancelled.SetProgressFrequency(1); cancelled.SetProgressListener(&stopper); cancelled.SetCancelPointer(&cancel);
    for (const auto& [s, code] :
         {std::pair{indepSettings({0}, -1), 410040}, {indepSettings({}, 1), 410039}, {cancelled, 1}}) {
        NormalRun r(s, {x, g});
        EXPECT_EQ(r.status.GetCode(), code);
        EXPECT_TRUE(r.status.IsError()) << code;
        EXPECT_FALSE(r.component.IsModelBuilt()) << code;
        EXPECT_EQ(r.component.GetOutputStats(), nullptr) << code;
    }
    // Variable 1 has two cases in all: 410030 (no datum); the other variable still gets its factor.
    // Progress every second record and at the end.
    const std::vector<double> y = {kMiss, 7.0, kMiss, kMiss, 3.0};
    bsntest::RecordCounts listener;
    BSNSettings s = indepSettings({0, 2}, 1, BC::BayesFactor);
    s.SetProgressFrequency(2); s.SetProgressListener(&listener);
    NormalRun r(s, {x, g, y});
    ASSERT_TRUE(r.status.IsOK());
    EXPECT_EQ(listener.counts, (std::vector<int>{2, 4, 5}));
    EXPECT_EQ(r.count(410030), 1);
    EXPECT_FALSE(r.component.GetWarningMessages().Get(0).HasDiscreteDatum(0));
    EXPECT_FALSE(MCMV::IsMissing(output(r).GetTValues()[0]));
    EXPECT_TRUE(MCMV::IsMissing(output(r).GetTValues()[1]) && MCMV::IsMissing(output(r).GetBayesFactors()[1]));
}

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

TEST(IndependentFactors, RouderAgreesWithTheBoundedIntegralAndTheOneToInfinity) {
    // The procedure bounds the integral over g (tests/data/README.md); the
    // bound moves the factor by at most 3e-6 from the 20-digit integral to
    // infinity of jzs_twosample.csv.
    const auto rows = readTable("jzs_twosample_bounded.csv"), open = readTable("jzs_twosample.csv");
    ASSERT_EQ(rows.size(), 16u);
    ASSERT_EQ(open.size(), rows.size());
    BSNSettings s;  // procedure defaults: tolerance 1e-6
    BSNSettings tight;
    tight.SetTolValue(1e-10);
    for (std::size_t k = 0; k < rows.size(); ++k) {
        const auto& row = rows[k];
        const double n0 = number(row, "n0"), n1 = number(row, "n1"), t = number(row, "t");
        SCOPED_TRACE(testing::Message() << n0 << "/" << n1 << " t " << t);
        ASSERT_EQ(number(open[k], "t"), t);
        MCCommon_850::MCWarnings w;
        const double n = n0 * n1 / (n0 + n1), df = n0 + n1 - 2, ref = number(row, "bf01_bounded");
        EXPECT_LT(rel(RouderBayesFactor::Factor(s, n, df, t, w), ref), 1e-7);
        EXPECT_LT(rel(RouderBayesFactor::Factor(s, n, df, t, w), number(open[k], "bf01")), 4e-6);
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
