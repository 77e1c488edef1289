#include "platform/dist/mcdistfun.h"

#include <cmath>
#include <initializer_list>

#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/non_central_t.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include "platform/common/mcmv.h"

namespace MCMath_850 {

namespace {

using MCCommon_850::MCMV;
namespace bm = boost::math;

// Errors become NaN (then the missing value), never exceptions; underflow
// quietly gives 0, which is the right answer for a vanishing tail.
using NoThrow = bm::policies::policy<
    bm::policies::domain_error<bm::policies::ignore_error>, bm::policies::pole_error<bm::policies::ignore_error>,
    bm::policies::overflow_error<bm::policies::ignore_error>,
    bm::policies::underflow_error<bm::policies::ignore_error>,
    bm::policies::denorm_error<bm::policies::ignore_error>,
    bm::policies::evaluation_error<bm::policies::ignore_error>,
    bm::policies::rounding_error<bm::policies::ignore_error>,
    bm::policies::indeterminate_result_error<bm::policies::ignore_error>>;

bool anyMissing(std::initializer_list<double> xs) {
    for (double x : xs)
        if (MCMV::IsMissing(x)) return true;
    return false;
}

bool isProb(double p) { return p >= 0.0 && p <= 1.0; }

// Boost's distribution constructors check their parameters and, under the
// ignore policy, produce NaN downstream; checking here as well keeps the
// intent readable and avoids evaluating with nonsense parameters.
double finite(double x) { return MCMV::Sanitize(x); }

} // namespace

double MCDistFun::quondnlgam(double x) {
    if (anyMissing({x}) || x <= 0.0) return MCMV::Missing();
    return finite(bm::lgamma(x, NoThrow()));
}

double MCDistFun::PdfBeta(double x, double a, double b) {
    if (anyMissing({x, a, b}) || a <= 0.0 || b <= 0.0 || x < 0.0 || x > 1.0) return MCMV::Missing();
    return finite(bm::pdf(bm::beta_distribution<double, NoThrow>(a, b), x));
}

double MCDistFun::CdfBeta(double x, double a, double b) {
    if (anyMissing({x, a, b}) || a <= 0.0 || b <= 0.0) return MCMV::Missing();
    if (x <= 0.0) return 0.0;
    if (x >= 1.0) return 1.0;
    return finite(bm::cdf(bm::beta_distribution<double, NoThrow>(a, b), x));
}

double MCDistFun::IdfBeta(double p, double a, double b) {
    if (anyMissing({p, a, b}) || a <= 0.0 || b <= 0.0 || !isProb(p)) return MCMV::Missing();
    return finite(bm::quantile(bm::beta_distribution<double, NoThrow>(a, b), p));
}

double MCDistFun::PdfGamma(double x, double shape, double rate) {
    if (anyMissing({x, shape, rate}) || shape <= 0.0 || rate <= 0.0 || x < 0.0) return MCMV::Missing();
    return finite(bm::pdf(bm::gamma_distribution<double, NoThrow>(shape, 1.0 / rate), x));
}

double MCDistFun::CdfGamma(double x, double shape, double rate) {
    if (anyMissing({x, shape, rate}) || shape <= 0.0 || rate <= 0.0) return MCMV::Missing();
    if (x <= 0.0) return 0.0;
    return finite(bm::cdf(bm::gamma_distribution<double, NoThrow>(shape, 1.0 / rate), x));
}

double MCDistFun::IdfGam(double p, double shape, double rate) {
    if (anyMissing({p, shape, rate}) || shape <= 0.0 || rate <= 0.0 || !isProb(p)) return MCMV::Missing();
    return finite(bm::quantile(bm::gamma_distribution<double, NoThrow>(shape, 1.0 / rate), p));
}

double MCDistFun::CdfChi(double x, double df) {
    if (anyMissing({x, df}) || df <= 0.0) return MCMV::Missing();
    if (x <= 0.0) return 0.0;
    return finite(bm::cdf(bm::chi_squared_distribution<double, NoThrow>(df), x));
}

double MCDistFun::IdfChi(double p, double df) {
    if (anyMissing({p, df}) || df <= 0.0 || !isProb(p)) return MCMV::Missing();
    return finite(bm::quantile(bm::chi_squared_distribution<double, NoThrow>(df), p));
}

double MCDistFun::PdfNormal(double x, double mean, double sd) {
    if (anyMissing({x, mean, sd}) || sd <= 0.0) return MCMV::Missing();
    return finite(bm::pdf(bm::normal_distribution<double, NoThrow>(mean, sd), x));
}

double MCDistFun::CdfNorm(double x, double mean, double sd) {
    if (anyMissing({x, mean, sd}) || sd <= 0.0) return MCMV::Missing();
    return finite(bm::cdf(bm::normal_distribution<double, NoThrow>(mean, sd), x));
}

double MCDistFun::IdfNorm(double p, double mean, double sd) {
    if (anyMissing({p, mean, sd}) || sd <= 0.0 || !isProb(p)) return MCMV::Missing();
    return finite(bm::quantile(bm::normal_distribution<double, NoThrow>(mean, sd), p));
}

double MCDistFun::PdfT(double x, double df) {
    if (anyMissing({x, df}) || df <= 0.0) return MCMV::Missing();
    return finite(bm::pdf(bm::students_t_distribution<double, NoThrow>(df), x));
}

double MCDistFun::CdfT(double x, double df) {
    if (anyMissing({x, df}) || df <= 0.0) return MCMV::Missing();
    return finite(bm::cdf(bm::students_t_distribution<double, NoThrow>(df), x));
}

double MCDistFun::IdfT(double p, double df) {
    if (anyMissing({p, df}) || df <= 0.0 || !isProb(p)) return MCMV::Missing();
    return finite(bm::quantile(bm::students_t_distribution<double, NoThrow>(df), p));
}

double MCDistFun::NonCentralPdfT(double x, double df, double delta) {
    if (anyMissing({x, df, delta}) || df <= 0.0) return MCMV::Missing();
    return finite(bm::pdf(bm::non_central_t_distribution<double, NoThrow>(df, delta), x));
}

double MCDistFun::PdfF(double x, double df1, double df2) {
    if (anyMissing({x, df1, df2}) || df1 <= 0.0 || df2 <= 0.0 || x < 0.0) return MCMV::Missing();
    return finite(bm::pdf(bm::fisher_f_distribution<double, NoThrow>(df1, df2), x));
}

double MCDistFun::CdfF(double x, double df1, double df2) {
    if (anyMissing({x, df1, df2}) || df1 <= 0.0 || df2 <= 0.0) return MCMV::Missing();
    if (x <= 0.0) return 0.0;
    return finite(bm::cdf(bm::fisher_f_distribution<double, NoThrow>(df1, df2), x));
}

double MCDistFun::SigF(double x, double df1, double df2) {
    if (anyMissing({x, df1, df2}) || df1 <= 0.0 || df2 <= 0.0) return MCMV::Missing();
    if (x <= 0.0) return 1.0;
    return finite(bm::cdf(bm::complement(bm::fisher_f_distribution<double, NoThrow>(df1, df2), x)));
}

double MCDistFun::IdfF(double p, double df1, double df2) {
    if (anyMissing({p, df1, df2}) || df1 <= 0.0 || df2 <= 0.0 || !isProb(p)) return MCMV::Missing();
    return finite(bm::quantile(bm::fisher_f_distribution<double, NoThrow>(df1, df2), p));
}

} // namespace MCMath_850
