#pragma once
// Independent evaluation of the JZS Bayes factor for the tests: the
// integrand written out again and integrated by Boost's double-exponential
// rules, which share nothing with the library's Lobatto quadrature.
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <boost/math/quadrature/exp_sinh.hpp>
#include <boost/math/quadrature/tanh_sinh.hpp>

namespace jzsref {

// Marginal likelihood of t given g times the inverse-gamma(1/2, 1/2)
// density of g, in logs throughout.
inline double integrand(double N, double t, double g) {
    if (!(g > 0.0)) return 0.0;
    const double nu = N - 1.0;
    const double pi = std::acos(-1.0);
    return std::exp(-0.5 * std::log1p(N * g) - (nu + 1.0) / 2.0 * std::log1p(t * t / ((1.0 + N * g) * nu)) -
                    0.5 * std::log(2.0 * pi) - 1.5 * std::log(g) - 0.5 / g);
}

inline double nullTerm(double N, double t) {
    const double nu = N - 1.0;
    return std::pow(1.0 + t * t / nu, -(nu + 1.0) / 2.0);
}

// The integral over [lo, hi]; hi may be infinite.
inline double integral(double N, double t, double lo, double hi) {
    auto f = [&](double g) { return integrand(N, t, g); };
    if (std::isinf(hi)) {
        boost::math::quadrature::exp_sinh<double> es;
        return es.integrate(f, lo, hi, 1e-13);
    }
    boost::math::quadrature::tanh_sinh<double> ts;
    return ts.integrate(f, lo, hi, 1e-13);
}

// The large-g form (2 pi N)^(-1/2) g^(-2) integrated over [lo, hi].
inline double tail(double N, double lo, double hi) {
    const double pi = std::acos(-1.0);
    return 1.0 / std::sqrt(2.0 * pi * N) * (1.0 / lo - (std::isinf(hi) ? 0.0 : 1.0 / hi));
}

// The exact factor, integrating to infinity.
inline double exactFactor(double N, double t) {
    return nullTerm(N, t) / integral(N, t, 0.0, std::numeric_limits<double>::infinity());
}

// The factor as the library defines it: the integral up to 1e5 and the
// large-g form beyond.
inline double cutoffFactor(double N, double t) {
    return nullTerm(N, t) / (integral(N, t, 0.0, 1e5) + tail(N, 1e5, std::numeric_limits<double>::infinity()));
}

struct Row {
    double N, t, bf01;
};

// Rows of a reference table under tests/data; empty when it cannot be read.
inline std::vector<Row> readReference(const std::string& file) {
    std::vector<Row> rows;
    std::ifstream in(std::string(BSN_SOURCE_DIR) + "/tests/data/" + file);
    std::string line;
    if (!std::getline(in, line)) return rows;
    while (std::getline(in, line)) {
        std::istringstream s(line);
        Row r{};
        char c1 = 0, c2 = 0;
        if (s >> r.N >> c1 >> r.t >> c2 >> r.bf01) rows.push_back(r);
    }
    return rows;
}

} // namespace jzsref
