// Analyses at extreme sizes against 40-digit values made outside the project
// (tests/data/make_extreme.py): a billion cases and more through frequency
// weights, data far from zero, and Bayes factors that underflow.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <boost/math/distributions/students_t.hpp>

#include "bsn/onesample/bayesfactoronesamplett.h"
#include "bsn/onesample/bsn1samplebinooutputstats.h"
#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "bsn/onesample/bsn1samplepoisnoutputstats.h"
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "platform/records/csvrecorditer.h"
#include "tests/onesample/discrete_test_support.h"
#include "tests/onesample/extremedata.h"
#include "tests/onesample/normaltestsupport.h"

using namespace discrete_test;
using namespace MCBSN_850;
using extremedata::num;
using normaltest::oneSampleNormal;
namespace C = BSNConst;

namespace {

// One weighted test variable (column 1) of a reference row: null and
// posterior prior (a0, b0), alternative (a1, b1).
BSNSettings extremeSettings(C::DistTypes dist, const std::vector<std::string>& r, C::AnalysTypes type) {
    BSNSettings s = discreteSettings(dist, {1}, type, num(r[3]), num(r[4]), num(r[5]), num(r[6]));
    s.SetFrequencyWeightVar(0);
    s.SetNullPrior1s({num(r[3])});
    s.SetNullPrior2s({num(r[4])});
    s.SetNPlotPoints(3);
    return s;
}

// Checks a stored factor against its exact log: the log to 1e-11 (the
// factor's relative error), and the factor itself, or beyond the exponent
// range its log with the bit set and warning 410041; and the case count.
template <class Output>
void expectFactor(const Build& run, double exactLog, double n) {
    ASSERT_TRUE(run.status.IsOK());
    const auto& out = run.Result<Output>();
    EXPECT_EQ(out.GetNs()[0], n);
    const double logBf = out.GetLogBayesFactors()[0];
    EXPECT_NEAR(logBf, exactLog, 1e-11 * std::max(1.0, std::fabs(exactLog)));
    const bool isLog = std::fabs(exactLog) > 708.0;
    EXPECT_EQ(out.GetIsLogBayesFactor()[0], isLog);
    EXPECT_EQ(run.Count(410041), isLog ? 1 : 0);
    if (isLog)
        EXPECT_EQ(out.GetBayesFactors()[0], logBf);
    else
        EXPECT_NEAR(out.GetBayesFactors()[0], std::exp(exactLog), 1e-11 * std::exp(exactLog));
}

} // namespace

// Binomial: n trials and x successes as two weighted records; Poisson: N
// cases and S counts as two weighted records of neighbouring counts.
TEST(ExtremeSizes, BinomialAndPoissonFactorsToTheLastDigits) {
    const auto rows = extremedata::read("extreme_factors.csv");
    ASSERT_EQ(rows.size(), 12u);
    for (const auto& r : rows) {
        SCOPED_TRACE(r[0] + " " + r[1] + " " + r[2]);
        const double n = num(r[1]), x = num(r[2]), exactLog = num(r[7]);
        if (r[0] == "binomial") {
            Build run(extremeSettings(C::Binomial, r, C::Both), {{x, n - x}, {1, 0}});
            expectFactor<BSN1SampleBinoOutputStats>(run, exactLog, n);
            if (r[1] != "1000000000.0") continue;
            // The posterior Beta(500005123, 500004877) of the first case:
            // its density at the middle grid point 0.5 to 1e-12.
            const auto& out = run.Result<BSN1SampleBinoOutputStats>();
            for (const auto& row : extremedata::read("extreme_lgamma.csv"))
                if (row[0] == "betapdf" && row[1] == "0.5" && row[2] == "500005123.0") {
                    ASSERT_EQ(out.GetPlotArguments()[0][1], 0.5);
                    EXPECT_NEAR(out.GetPlotPosterior()[0][1], std::exp(num(row[7])), 1e-12 * std::exp(num(row[7])));
                }
        } else {
            const double q = std::floor(x / n), rest = x - q * n;
            Build run(extremeSettings(C::Poisson, r, C::BayesFactor), {{rest, n - rest}, {q + 1, q}});
            expectFactor<BSN1SamplePoisnOutputStats>(run, exactLog, n);
        }
    }
}

namespace {

std::vector<double> readColumn(const std::string& file) {
    MCCommon_850::CsvRecordIter iter(std::string(BSN_SOURCE_DIR) + "/tests/data/" + file, {0});
    std::vector<double> values;
    for (iter.Reset(); iter.Advance();) values.push_back(iter.GetRecord()->GetValue(0));
    return values;
}

std::map<std::string, double> expectedNormal() {
    std::map<std::string, double> e;
    for (const auto& r : extremedata::read("extreme_normal_expected.csv")) e[r[0]] = num(r[1]);
    return e;
}

} // namespace

// 1000 values 1e9 + N(0, 0.001) written with six decimals: the t statistic
// and the standard deviation of the parsed doubles to 1e-9, one sample and
// as the first member of pairs.
TEST(ExtremeSizes, NormalDataFarFromZero) {
    const std::vector<double> x = readColumn("extreme_normal.csv");
    const auto e = expectedNormal();
    ASSERT_EQ(x.size(), 1000u);
    ASSERT_EQ(e.size(), 5u);

    BSNSettings s = oneSampleNormal({0}, C::BayesFactor);
    s.SetNullValues({1000000000.0001});
    ASSERT_EQ(s.GetNullValues()[0], e.at("null"));
    Build one(s, {x});
    ASSERT_TRUE(one.status.IsOK());
    const auto& o = one.Result<BSN1SampleNormOutputStats>();
    EXPECT_NEAR(o.GetTValues()[0], e.at("t"), 1e-9 * std::fabs(e.at("t")));
    EXPECT_NEAR(o.GetStdDevs()[0], e.at("sd"), 1e-9 * e.at("sd"));
    EXPECT_NEAR(o.GetMeanValues()[0] - e.at("null"), e.at("mean_minus_null"), 2e-7);  // one rounding at 1e9

    // Pairs (x_i, x_(i+1) - c) with c = 1e9 + 2^-30 (not a double; every
    // y_i is), against the same null value: the mean difference is exactly
    // c (the sum telescopes), and the spread of the differences is that of
    // the exact doubles x_i - x_(i+1), which a two-pass sum in extended
    // precision gives independently.
    std::vector<double> y(x.begin() + 1, x.end());
    y.push_back(x.front());
    long double m = 0.0L, ss = 0.0L;
    for (std::size_t i = 0; i < x.size(); ++i) m += static_cast<long double>(x[i] - y[i]);
    m /= x.size();
    for (std::size_t i = 0; i < x.size(); ++i) ss += std::pow(static_cast<long double>(x[i] - y[i]) - m, 2);
    const double sd = static_cast<double>(std::sqrt(ss / (x.size() - 1)));
    const double tiny = std::ldexp(1.0, -30);
    for (double& v : y) v = (v - 1e9) - tiny;  // both steps exact
    BSNSettings related = s;
    related.SetModelType(C::Related, false);
    related.Set2ndRelatedList({1});
    Build pairs(related, {x, y});
    ASSERT_TRUE(pairs.status.IsOK());
    const auto& p = pairs.Result<BSN2SampleRelatedOutputStats>();
    EXPECT_EQ(p.GetMeanValues()[0], 1e9);  // c rounded once
    EXPECT_NEAR(p.GetStdDevs()[0], sd, 1e-9 * sd);
    const double t = ((1e9 - e.at("null")) + tiny) / (sd / std::sqrt(1000.0));
    EXPECT_NEAR(p.GetTValues()[0], t, 1e-9 * std::fabs(t));
}

// The JZS factor underflows for a large t; its log does not.
TEST(ExtremeSizes, JZSLogFactorWhereTheFactorUnderflows) {
    const auto rows = extremedata::read("extreme_jzs.csv");
    ASSERT_EQ(rows.size(), 7u);
    for (std::size_t k = 0; k < 4; ++k) {
        const double N = num(rows[k][0]), t = num(rows[k][1]), exact = num(rows[k][2]);
        BayesFactorOneSampleTT bf(N, N - 1.0, t);
        const double logBf = bf.ComputeLog();
        EXPECT_NEAR(logBf, exact, 1e-7 * std::max(1.0, std::fabs(exact))) << N << " " << t;
        const double direct = bf.Compute();
        EXPECT_NEAR(direct, exact > -700.0 ? std::exp(logBf) : 0.0, 1e-7 * direct);  // 0 where it underflows
    }

    // Three columns of a million cases (two weighted records each) with means
    // 0.1, 0.05 and 0.2: t near 100, 50 and 200. Quadrature, Simple and
    // known variance, and Monte Carlo; and the posterior t density with a
    // million degrees of freedom.
    BSNSettings s = oneSampleNormal({1, 2, 3}, C::Both);
    s.SetFrequencyWeightVar(0);
    const std::vector<std::vector<double>> cols = {
        {500000, 500000}, {0.1 - 1.0, 0.1 + 1.0}, {0.05 - 1.0, 0.05 + 1.0}, {0.2 - 1.0, 0.2 + 1.0}};
    Build jzs(s, cols);
    ASSERT_TRUE(jzs.status.IsOK());
    const auto& o = jzs.Result<BSN1SampleNormOutputStats>();
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(o.GetTValues()[i], num(rows[4 + i][1]), 1e-12 * num(rows[4 + i][1]));
        EXPECT_NEAR(o.GetLogBayesFactors()[i], num(rows[4 + i][2]), 1e-7 * std::fabs(num(rows[4 + i][2])));
        EXPECT_EQ(o.GetBayesFactors()[i], 0.0);
        const double sc = o.GetStdDevs()[i] / 1e3, c = o.GetPostMeanValues()[i];  // scale^2 = s^2 (N - 1)/(N ν)
        for (std::size_t k : {0u, 50u}) {
            const double x = o.GetPlotArguments4Posterior()[i][k];
            const double pdf = boost::math::pdf(boost::math::students_t(1e6 - 1.0), (x - c) / sc) / sc;
            EXPECT_NEAR(o.GetPlotPosterior()[i][k], pdf, 1e-12 * pdf);
        }
    }

    s.SetEstBFType(C::Simple);
    s.SetAlterGValues({1.0, 1.0, 1.0});
    Build simple(s, cols);
    const auto& so = simple.Result<BSN1SampleNormOutputStats>();
    s.SetDataVarVals({1.0, 1.0, 1.0});
    Build known(s, cols);
    const auto& ko = known.Result<BSN1SampleNormOutputStats>();
    s.SetDataVarVals({});
    s.SetEstBFType(C::JZS);
    s.SetMethodType(C::MCA);
    s.SetMCSamples(20000);
    Build mc(s, cols);
    const auto& mo = mc.Result<BSN1SampleNormOutputStats>();
    for (std::size_t i = 0; i < 3; ++i) {
        const double N = 1e6, t = so.GetTValues()[i], nu = N - 1.0, d = ko.GetMeanValues()[i];
        EXPECT_NEAR(so.GetLogBayesFactors()[i],
                    0.5 * std::log1p(N) + N / 2 * (std::log1p(t * t / ((1 + N) * nu)) - std::log1p(t * t / nu)),
                    1e-9 * std::fabs(so.GetLogBayesFactors()[i]));
        EXPECT_NEAR(ko.GetLogBayesFactors()[i], 0.5 * std::log1p(N) - N * d * d / 2 / (1 + 1 / N),
                    1e-9 * std::fabs(ko.GetLogBayesFactors()[i]));
        // Monte Carlo estimates the same integral: close, and finite.
        EXPECT_NEAR(mo.GetLogBayesFactors()[i], o.GetLogBayesFactors()[i], 0.5);
        for (const auto* v : {&so, &ko, &mo}) EXPECT_EQ(v->GetBayesFactors()[i], 0.0);
    }
}
