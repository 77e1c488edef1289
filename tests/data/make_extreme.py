#!/usr/bin/python3
"""Reference values for the tests of extreme sizes, at 40 significant digits.

Run from the repository root:  /usr/bin/python3 tests/data/make_extreme.py
(needs mpmath; Debian's python3-mpmath). It rewrites the extreme_*.csv files
in this folder. Every input is a double (Python float) and is converted
exactly (mpf(float)), so the values are the exact results for the inputs the
library sees; they are printed with 17 significant digits.
"""
import os
import random

from mpmath import mp, mpf, loggamma, log, exp, sqrt, pi, quad

mp.dps = 40
HERE = os.path.dirname(os.path.abspath(__file__))


def num(x):
    return mp.nstr(x, 17, min_fixed=-5, max_fixed=20) if x != 0 else "0"


def lgdiff(z, d1, d2):
    z, d1, d2 = mpf(z), mpf(d1), mpf(d2)
    return loggamma(z + d1) - loggamma(z + d2)


def logbeta(a, b):
    a, b = mpf(a), mpf(b)
    return loggamma(a) + loggamma(b) - loggamma(a + b)


def betadiff(x, y, a0, b0, a1, b1):
    x, y = mpf(x), mpf(y)
    return logbeta(x + a0, y + b0) - logbeta(x + a1, y + b1)


def betadelta(a, b, x, y):
    return logbeta(mpf(a) + x, mpf(b) + y) - logbeta(a, b)


def logbetapdf(t, a, b):
    t, a, b = mpf(t), mpf(a), mpf(b)
    return (a - 1) * log(t) + (b - 1) * log(1 - t) - logbeta(a, b)


def multibeta(a):
    a = [mpf(v) for v in a if v > 0]
    return sum(loggamma(v) for v in a) - loggamma(sum(a))


def multibetadelta(a, x):
    return multibeta([mpf(ai) + xi for ai, xi in zip(a, x)]) - multibeta(a)


def binomial_logbf(n, x, a0, b0, a1, b1):
    n, x = mpf(n), mpf(x)
    return logbeta(a0 + x, b0 + n - x) + logbeta(a1, b1) - logbeta(a1 + x, b1 + n - x) - logbeta(a0, b0)


def poisson_logbf(N, S, a0, b0, a1, b1):
    N, S = mpf(N), mpf(S)

    def lm(a, b):
        a, b = mpf(a), mpf(b)
        return a * log(b) - loggamma(a) + loggamma(a + S) - (a + S) * log(b + N)

    return lm(a0, b0) - lm(a1, b1)


def write(name, header, rows):
    with open(os.path.join(HERE, name), "w") as f:
        f.write(header + "\n")
        for r in rows:
            f.write(",".join(r) + "\n")


# --- log-gamma and log-beta differences ------------------------------------
lg_rows = []
for z in [0.5, 3.0, 9.5, 10.0, 1000.0, 123456.75, 5e8, 2.7e9, 999999999999.0]:
    for d1, d2 in [(1.0, 0.0), (2.7, 1.0), (5000.0, 1.0), (0.25, 0.5), (1e-9, 0.0), (3e6, 2.0)]:
        lg_rows.append(["diff", repr(z), repr(d1), repr(d2), "0", "0", "0", num(lgdiff(z, d1, d2))])
# one small and one huge argument in one call
for z, d1, d2 in [(0.3, 1e12, 0.0), (12.0, 0.0, 7e9), (2.5, 7.5, 0.0)]:
    lg_rows.append(["diff", repr(z), repr(d1), repr(d2), "0", "0", "0", num(lgdiff(z, d1, d2))])
for a, b in [(0.5, 0.5), (2.0, 3.0), (0.25, 1e9), (12.0, 7e11), (5000.0, 5000.0), (5e8, 5e8 + 123),
             (3e11, 7e11), (10.0, 10.0)]:
    lg_rows.append(["logbeta", repr(a), repr(b), "0", "0", "0", "0", num(logbeta(a, b))])
for x, y, a0, b0, a1, b1 in [(500000123.0, 499999877.0, 5000.0, 5000.0, 1.0, 1.0),
                             (3.0, 999999999997.0, 2.0, 2.0, 1.0, 1.0),
                             (4e11, 6e11, 0.5, 0.5, 2.5, 7.25),
                             (7.0, 3.0, 3.0, 5.0, 2.0, 0.5)]:
    lg_rows.append(["betadiff", repr(x), repr(y), repr(a0), repr(b0), repr(a1), repr(b1),
                    num(betadiff(x, y, a0, b0, a1, b1))])
for a, b, x, y in [(1.0, 1.0, 5.0, 5.0), (0.5, 2.0, 1e9, 3.0), (5000.0, 5000.0, 500000123.0, 499999877.0)]:
    lg_rows.append(["betadelta", repr(a), repr(b), repr(x), repr(y), "0", "0", num(betadelta(a, b, x, y))])
# densities of a billion-trial posterior at its mode region, and small ones
for t, a, b in [(0.5, 500005123.0, 500004877.0), (0.50001, 500005123.0, 500004877.0),
                (0.4999, 500005123.0, 500004877.0), (0.3, 2.0, 3.0), (1e-9, 0.5, 1e9), (0.7, 70.0, 30.5),
                (0.001, 12.0, 9000.0)]:
    lg_rows.append(["betapdf", repr(t), repr(a), repr(b), "0", "0", "0", num(logbetapdf(t, a, b))])
write("extreme_lgamma.csv", "function,p1,p2,p3,p4,p5,p6,value", lg_rows)

# multivariate: a 2x3 table of counts under Dirichlet priors, as one vector;
# "delta" is ln B(a + x) - ln B(a), "diff" ln B(x + a0) - ln B(x + a1)
mb_rows = []
cells = [3e11, 1e11 + 17, 2e11, 1.5e11, 2.5e11 - 17, 0.0]
priors = [[0.5] * 6, [1.0, 2.0, 0.0, 1.0, 1.0, 3.0]]
for a in priors:
    mb_rows.append(["delta", " ".join(repr(v) for v in a), "", " ".join(repr(v) for v in cells),
                    num(multibetadelta(a, cells))])
xa = [[mpf(c) + v for c, v in zip(cells, a)] for a in priors]
mb_rows.append(["diff", " ".join(repr(v) for v in priors[0]), " ".join(repr(v) for v in priors[1]),
                " ".join(repr(v) for v in cells), num(multibeta(xa[0]) - multibeta(xa[1]))])
write("extreme_multibeta.csv", "kind,prior,prior2,counts,value", mb_rows)

# --- binomial and Poisson factors up to 1e12 counts -------------------------
f_rows = []
for n, x, a0, b0, a1, b1 in [(1e9, 500000123.0, 5000.0, 5000.0, 1.0, 1.0),
                             (1e12, 500000123456.0, 2.0, 2.0, 1.0, 1.0),
                             (1e12, 250000000000.0, 1.0, 3.0, 0.5, 0.5),
                             (1e10, 3.0, 2.0, 2.0, 1.0, 1.0),
                             (12345678901.0, 6172839450.0, 10000.0, 10000.0, 2.0, 2.0),
                             (1e6, 1e6, 1.0, 1000.0, 1.0, 1.0),
                             (1e6, 1e6, 1.0, 1.0, 1.0, 1000.0)]:
    f_rows.append(["binomial", repr(n), repr(x), repr(a0), repr(b0), repr(a1), repr(b1),
                   num(binomial_logbf(n, x, a0, b0, a1, b1))])
for N, S, a0, b0, a1, b1 in [(1e9, 2.7e9, 2.7, 1.0, 1.0, 1.0),
                             (1e12, 3.1e12, 3.1, 1.0, 2.0, 0.5),
                             (1e10, 0.0, 2.0, 2.0, 1.0, 1.0),
                             (123456789.0, 987654321012.0, 8000.0, 1.0, 0.5, 0.25),
                             (1e6, 5e8, 2.0, 2.0, 500.0, 1.0)]:
    f_rows.append(["poisson", repr(N), repr(S), repr(a0), repr(b0), repr(a1), repr(b1),
                   num(poisson_logbf(N, S, a0, b0, a1, b1))])
write("extreme_factors.csv", "model,n,x,a0,b0,a1,b1,logbf", f_rows)

# --- one-sample normal far from zero ----------------------------------------
rng = random.Random(14)
texts = ["%.6f" % (1e9 + rng.gauss(0.0, 0.001)) for _ in range(1000)]
with open(os.path.join(HERE, "extreme_normal.csv"), "w") as f:
    f.write("value\n")
    for s in texts:
        f.write(s + "\n")
xs = [mpf(float(s)) for s in texts]  # the correctly rounded doubles
n = mpf(len(xs))
mean = sum(xs) / n
var = sum((v - mean) ** 2 for v in xs) / (n - 1)
mu0 = mpf(float("1000000000.0001"))
t = (mean - mu0) / sqrt(var / n)
write("extreme_normal_expected.csv", "quantity,value",
      [["n", num(n)], ["mean_minus_null", num(mean - mu0)], ["sd", num(sqrt(var))], ["t", num(t)],
       ["null", repr(float("1000000000.0001"))]])


# --- JZS factors where the factor underflows --------------------------------
def jzs_logbf(N, t):
    """ln BF as the library defines it: the integral over g up to 1e5 and the
    large-g form (2 pi N)^(-1/2) g^(-2) beyond."""
    N, t = mpf(N), mpf(t)
    nu = N - 1

    def logf(g):
        x = 1 + N * g
        return (-log(x) / 2 - (nu + 1) / 2 * log(1 + t * t / (x * nu)) - log(2 * pi) / 2 - mpf(3) / 2 * log(g)
                - 1 / (2 * g))

    # the peak, on a fine log grid, for the quadrature's break points
    grid = [mpf(10) ** (k / mpf(20)) for k in range(-80, 101)]
    peak = max(grid, key=logf)
    lf = logf(peak)
    pts = sorted(set([mpf(0)] + [p for p in grid[::10] if p < 1e5] + [peak * s for s in (0.2, 0.5, 1, 2, 5)
                                                                      if peak * s < 1e5] + [mpf(10) ** 5]))
    integral = quad(lambda g: exp(logf(g) - lf) if g > 0 else mpf(0), pts)
    tail = 1 / sqrt(2 * pi * N) / mpf(10) ** 5
    log_i = log(integral * exp(lf) + tail)
    return -(nu + 1) / 2 * log(1 + t * t / nu) - log_i


def weighted_t(m):
    """t of two records m - 1 and m + 1 (doubles) with weight 500000 each."""
    lo, hi = mpf(m - 1.0), mpf(m + 1.0)
    w = mpf(500000)
    N = 2 * w
    mean = (lo + hi) / 2
    var = (w * (lo - mean) ** 2 + w * (hi - mean) ** 2) / (N - 1)
    return mean / sqrt(var / N)


jzs_rows = []
for N, t in [(1e9, 100.0), (1e9, 2.0), (20.0, 1.5), (10.0, 1e4)]:
    jzs_rows.append([repr(N), repr(t), num(jzs_logbf(N, t))])
for m in [0.1, 0.05, 0.2]:
    t = weighted_t(m)
    jzs_rows.append(["1000000.0", num(t), num(jzs_logbf(1e6, t))])
write("extreme_jzs.csv", "N,t,logbf", jzs_rows)
