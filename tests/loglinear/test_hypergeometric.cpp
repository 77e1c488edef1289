// The hypergeometric probability and distribution functions: against Boost.Math where its 32-bit
// arguments reach, and against 60-digit values for totals of a billion and a trillion.
#include <cmath>

#include <boost/math/distributions/hypergeometric.hpp>
#include <gtest/gtest.h>

#include "platform/dist/mcdistfun.h"
#include "tests/loglinear/loglinear_test_support.h"

namespace {

using MCMath_850::MCDistFun;
using namespace loglinear_test;

TEST(Hypergeometric, AgreesWithBoostOverWholeSupports) {
    // Every x of every small urn, including the degenerate ones.
    for (int n : {1, 2, 7, 30, 113})
        for (int r = 0; r <= n; r += std::max(1, n / 6))
            for (int c = 0; c <= n; c += std::max(1, n / 5)) {
                SCOPED_TRACE(::testing::Message() << "n=" << n << " r=" << r << " c=" << c);
                boost::math::hypergeometric_distribution<double> d(r, c, n);
                const int lo = std::max(0, c - (n - r)), hi = std::min(r, c);
                double total = 0.0;
                for (int x = lo; x <= hi; ++x) {
                    const double pdf = MCDistFun::PdfHyper(x, n, r, c);
                    const auto ux = static_cast<unsigned>(x);
                    total += pdf;
                    ASSERT_TRUE(Near(pdf, boost::math::pdf(d, ux), 1e-12)) << "x=" << x;
                    ASSERT_TRUE(Near(MCDistFun::CDFHyper(x, n, r, c), boost::math::cdf(d, ux), 1e-12, 1e-15)) << x;
                }
                EXPECT_NEAR(total, 1.0, 1e-13);
                EXPECT_EQ(MCDistFun::PdfHyper(lo - 1, n, r, c), 0.0);
                EXPECT_EQ(MCDistFun::PdfHyper(hi + 1, n, r, c), 0.0);
                EXPECT_EQ(MCDistFun::CDFHyper(lo - 1, n, r, c), 0.0);
                EXPECT_EQ(MCDistFun::CDFHyper(hi, n, r, c), 1.0);
            }
}

TEST(Hypergeometric, ExactAtTotalsOfBillions) {
    // From 60-digit sums (tests/data/loglinear_reference.py), on both sides
    // of the mode, in the far tail and at a trillion.
    const auto rows = ReadReference("hyper.csv");
    ASSERT_GE(rows.size(), 10u);
    for (const Row& row : rows) {
        const double x = row.Num("x"), n = row.Num("n"), r = row.Num("r"), c = row.Num("c");
        EXPECT_TRUE(Near(MCDistFun::PdfHyper(x, n, r, c), row.Num("pdf"), 1e-11)) << row.Text("x") << " " << row.Text("n");
        EXPECT_TRUE(Near(MCDistFun::CDFHyper(x, n, r, c), row.Num("cdf"), 1e-11, 1e-300))
            << row.Text("x") << " " << row.Text("n");
    }
}

TEST(Hypergeometric, RefusesWhatIsNotAnUrn) {
    const double miss = kMiss;
    struct Case { double x, n, r, c; };
    for (const Case& k : {Case{1, 10.5, 3, 4}, Case{1, 10, 11, 4}, Case{1, 10, 3, 11}, Case{1, -1, 0, 0},
                          Case{1, 10, -1, 4}, Case{1, miss, 3, 4}, Case{1, 10, 3.2, 4}, Case{miss, 10, 3, 4},
                          Case{1, 1e17, 3, 4}}) {
        EXPECT_EQ(MCDistFun::CDFHyper(k.x, k.n, k.r, k.c), miss) << k.n << " " << k.r << " " << k.c;
        EXPECT_EQ(MCDistFun::PdfHyper(k.x, k.n, k.r, k.c), miss) << k.n << " " << k.r << " " << k.c;
    }
    // The probability needs a whole x; the distribution function floors it.
    EXPECT_EQ(MCDistFun::PdfHyper(1.5, 10, 3, 4), miss);
    EXPECT_EQ(MCDistFun::CDFHyper(1.5, 10, 3, 4), MCDistFun::CDFHyper(1, 10, 3, 4));
}

TEST(Hypergeometric, StirlingRemainderMatchesLogGamma) {
    // ln Γ(z) - (z - 1/2) ln z + z - ln √(2π), with ln Γ in long double where
    // the subtraction still leaves 15 digits; 1/(12z) - 1/(360z³) far out.
    for (double z : {0.01, 0.3, 1.0, 2.5, 9.99, 10.0, 10.01, 37.0}) {
        const long double zl = z;
        const long double direct = std::lgamma(zl) - (zl - 0.5L) * std::log(zl) + zl - 0.91893853320467274178L;
        EXPECT_TRUE(Near(MCDistFun::StirlingRemainder(z), static_cast<double>(direct), 1e-13, 1e-16)) << z;
    }
    for (double z : {1e4, 1e9, 1e15}) EXPECT_TRUE(Near(MCDistFun::StirlingRemainder(z), 1 / (12 * z) - 1 / (360 * z * z * z), 1e-15));
    EXPECT_EQ(MCDistFun::StirlingRemainder(0.0), kMiss);
    EXPECT_EQ(MCDistFun::StirlingRemainder(-2.0), kMiss);
}

} // namespace
