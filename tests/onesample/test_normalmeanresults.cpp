// The parts the one-sample normal and related-samples procedures share: the
// block of per-variable statistics in each procedure's dump, and the common
// result base (the two result classes stay apart for the host's dispatch,
// and a copied result is independent of its source).
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "bsn/onesample/bsn1samplenormoutputstats.h"
#include "bsn/twosample/bsn2samplerelatedoutputstats.h"
#include "tests/onesample/normaltestsupport.h"

using namespace normaltest;
using MCBSN_850::BSN1SampleNormOutputStats;
using MCBSN_850::BSN2SampleRelatedOutputStats;

namespace {

// Factors and posterior, with the settings a one-sample (related false) or
// related-samples (related true) run over variable 0 (and 1) needs.
BSNSettings bothSettings(bool related) {
    BSNSettings s;
    s.SetModelType(related ? BC::Related : BC::OneSample, false);
    if (!related) s.SetTestDistType(BC::Normal);
    s.SetCovariates({0});
    if (related) s.Set2ndRelatedList({1});
    s.SetAnalysType(BC::Both);
    s.SetEstBFType(BC::Simple);
    s.SetAlterGValues({1.0});
    s.SetMeanDistType(BC::Diffuse);
    s.SetPriorDistType(BC::Jeffreys2);
    return s;
}

// The procedure's own block of shared statistics in a dump: the nine lines
// that open with the means and run through the first posterior line. Found
// as the only place where the means stand right before "Standard
// Deviations" and "Standard Error Means".
std::vector<std::string> statisticsBlock(const std::string& dump) {
    std::vector<std::string> lines;
    std::istringstream in(dump);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    for (std::size_t i = 0; i + 8 < lines.size(); ++i) {
        if (lines[i + 1].rfind("Standard Deviations: ", 0) == 0 &&
            lines[i + 2].rfind("Standard Error Means: ", 0) == 0)
            return {lines.begin() + static_cast<std::ptrdiff_t>(i), lines.begin() + static_cast<std::ptrdiff_t>(i + 9)};
    }
    return {};
}

// The single number of a dump line "label: [x]".
double single(const std::string& line, const std::string& label) {
    const std::string head = label + ": [";
    if (line.rfind(head, 0) != 0 || line.back() != ']') throw std::runtime_error("not a '" + label + "' line: " + line);
    return std::stod(line.substr(head.size(), line.size() - head.size() - 1));
}

// t of a mean against 0 and its two-sided significance.
void tTest(double mean, double sd, double n, double& t, double& sig) {
    t = mean / (sd / std::sqrt(n));
    sig = 2.0 * bm::cdf(bm::complement(bm::students_t(n - 1.0), std::fabs(t)));
}

void expectBlock(const std::vector<std::string>& block, const std::string& meansLabel, const Moments& m) {
    ASSERT_EQ(block.size(), 9u);
    const double sd = std::sqrt(m.var);
    double t = 0, sig = 0;
    tTest(m.mean, sd, m.n, t, sig);
    EXPECT_NEAR(single(block[0], meansLabel), m.mean, 1e-12);
    EXPECT_NEAR(single(block[1], "Standard Deviations"), sd, 1e-12);
    EXPECT_NEAR(single(block[2], "Standard Error Means"), sd / std::sqrt(m.n), 1e-12);
    EXPECT_DOUBLE_EQ(single(block[3], "Degrees of Freedom"), m.n - 1.0);
    EXPECT_DOUBLE_EQ(single(block[4], "Ns"), m.n);
    EXPECT_GT(single(block[5], "Bayes Factors"), 0.0);
    EXPECT_NEAR(single(block[6], "T Values"), t, 1e-10);
    EXPECT_NEAR(single(block[7], "Significances"), sig, 1e-10);
    // Diffuse mean prior with Jeffreys' variance prior: the posterior of the
    // mean is a t centred on the sample mean.
    EXPECT_NEAR(single(block[8], "Mode Values"), m.mean, 1e-10);
}

} // namespace

TEST(NormalMeanResults, EachProcedureDumpsTheSharedStatisticsUnderItsOwnMeanLabel) {
    // One sample: the block reads "Means".
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun r1(bothSettings(false), {x});
    ASSERT_TRUE(r1.status.IsOK());
    std::ostringstream dump1;
    r1.component.Display(dump1);
    const auto block1 = statisticsBlock(dump1.str());
    expectBlock(block1, "Means", moments(x));

    // Related samples: the same block on the differences reads "Mean
    // Differences"; the row with a missing member drops out.
    const std::vector<double> a = {5.1, 6.0, 4.4, kMiss, 7.2, 5.5, 6.3};
    const std::vector<double> b = {4.0, 5.5, 4.9, 3.0, 6.1, 4.2, 6.0};
    NormalRun r2(bothSettings(true), {a, b});
    ASSERT_TRUE(r2.status.IsOK());
    std::ostringstream dump2;
    r2.component.Display(dump2);
    const auto block2 = statisticsBlock(dump2.str());
    expectBlock(block2, "Mean Differences", moments({1.1, 0.5, -0.5, 1.1, 1.3, 0.3}));
}

TEST(NormalMeanOutputStats, ResultsStayDistinctAndCopiesAreIndependent) {
    const std::vector<double> x = {1.0, 2.0, 4.0, 3.5, 2.2, 3.3};
    NormalRun r1(bothSettings(false), {x});
    NormalRun r2(bothSettings(true), {x, x});

    // The host picks its adapter by the concrete class: sharing a base must
    // not make either result pass for the other.
    EXPECT_NE(r1.out<BSN1SampleNormOutputStats>(), nullptr);
    EXPECT_EQ(r1.out<BSN2SampleRelatedOutputStats>(), nullptr);
    EXPECT_NE(r2.out<BSN2SampleRelatedOutputStats>(), nullptr);
    EXPECT_EQ(r2.out<BSN1SampleNormOutputStats>(), nullptr);

    // A copy refilled leaves its source alone, and so does an assignment.
    const auto& o = r1.result<BSN1SampleNormOutputStats>();
    const double mean = moments(x).mean;
    BSN1SampleNormOutputStats copy(o);
    copy.SetOutputValues(o.GetSettings(), {7}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11}, {12}, {13});
    EXPECT_EQ(o.GetVarIndices(), std::vector<int>{0});
    EXPECT_NEAR(o.GetMeanValues()[0], mean, 1e-12);
    BSN1SampleNormOutputStats assigned(o.GetSettings());
    EXPECT_TRUE(assigned.GetMeanValues().empty());
    assigned = copy;
    EXPECT_EQ(assigned.GetVarIndices(), std::vector<int>{7});
    EXPECT_EQ(assigned.GetMeanValues(), std::vector<double>{13});
    EXPECT_EQ(assigned.GetPlotPosterior(), o.GetPlotPosterior());
    assigned.SetOutputValues(o.GetSettings(), {8}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11}, {12}, {14});
    EXPECT_EQ(copy.GetMeanValues(), std::vector<double>{13});
    EXPECT_EQ(copy.GetVarIndices(), std::vector<int>{7});
}
