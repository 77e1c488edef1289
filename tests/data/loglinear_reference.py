"""Reference values for the log-linear tests computed with mpmath at high
precision: hypergeometric probabilities and Fisher's test at totals of 1e9
and more, Bayes factors of tables with large totals (from the literal
log-gamma sums at 60 digits), intrinsic-prior factors by numerical
integration against the prior built from every training table, and the
exact posterior of log odds ratios by inversion of the characteristic
function.

Run from the repository root:   /usr/bin/python3 tests/data/loglinear_reference.py
Writes tests/data/loglinear/{hyper,fisher_large,factors_large,tests_large,intrinsic,posterior_exact}.csv.
"""
import os

import mpmath as mp

OUT = "tests/data/loglinear"
os.makedirs(OUT, exist_ok=True)
mp.mp.dps = 60


def fmt(x):
    if x is None:
        return "NA"
    return mp.nstr(mp.mpf(x), 20, min_fixed=-5, max_fixed=5) if not isinstance(x, str) else x


def enc(m):
    return "|".join(" ".join(mp.nstr(mp.mpf(v), 20) for v in row) for row in m)


# --- hypergeometric ---------------------------------------------------------
def log_pdf(x, n, r, c):
    return (mp.log(mp.binomial(r, x)) + mp.log(mp.binomial(n - r, c - x)) - mp.log(mp.binomial(n, c)))


def pdf(x, n, r, c):
    lo, hi = max(0, c - (n - r)), min(r, c)
    if x < lo or x > hi:
        return mp.mpf(0)
    return mp.exp(log_pdf(x, n, r, c))


def cdf(x, n, r, c):
    """P(X <= x), summed from x towards the nearer tail by term ratios."""
    lo, hi = max(0, c - (n - r)), min(r, c)
    if x < lo:
        return mp.mpf(0)
    if x >= hi:
        return mp.mpf(1)
    mode = (r + 1) * (c + 1) // (n + 2)
    if x < mode:
        term = pdf(x, n, r, c)
        total, y = term, x
        while y > lo and term > total * mp.mpf(10) ** -40:
            term *= mp.mpf(y * (n - r - c + y)) / ((r - y + 1) * (c - y + 1))
            total += term
            y -= 1
        return total
    term = pdf(x + 1, n, r, c)
    total, y = term, x + 1
    while y < hi and term > total * mp.mpf(10) ** -40:
        term *= mp.mpf((r - y) * (c - y)) / ((y + 1) * (n - r - c + y + 1))
        total += term
        y += 1
    return 1 - total


hyper_cases = [
    (5, 30, 12, 10), (0, 30, 12, 10), (10, 30, 12, 10), (2, 20, 15, 8),
    (499_990_000, 1_000_000_000, 500_000_000, 999_980_000),
    (249_990_000, 1_000_000_000, 500_000_000, 500_000_000),
    (250_003_000, 1_000_000_000, 500_000_000, 500_000_000),
    (249_960_000, 1_000_000_000, 500_000_000, 500_000_000),
    (1_000, 1_000_000_000, 3_000_000, 400_000),
    (1_150, 1_000_000_000, 3_000_000, 400_000),
    (299_999_000_000, 1_000_000_000_000, 600_000_000_000, 500_000_000_000),
    (7, 4_000_000_000, 2, 3_500_000_000),
]
with open(f"{OUT}/hyper.csv", "w") as f:
    f.write("x,n,r,c,pdf,cdf\n")
    for x, n, r, c in hyper_cases:
        f.write(f"{x},{n},{r},{c},{fmt(pdf(x, n, r, c))},{fmt(cdf(x, n, r, c))}\n")


# --- Fisher's test at large totals -------------------------------------------
def fisher(t):
    """One- and two-sided significance: reference cell, P(X <= x), and
    P(X <= x) + P(X > y) for the largest y with P(y) > P(x)."""
    (c11, c12), (c21, c22) = t
    n = c11 + c12 + c21 + c22
    r1, r2, k1, k2 = c11 + c12, c21 + c22, c11 + c21, c12 + c22
    if c11 * c22 - c12 * c21 > 0:
        x, r, c = (c12, r1, k2) if c12 < c21 else (c21, r2, k1)
    else:
        x, r, c = (c22, r2, k2) if c22 < c11 else (c11, r1, k1)
    one = cdf(x, n, r, c)
    p = pdf(x, n, r, c)
    top = min(r, c)
    mode = (r + 1) * (c + 1) // (n + 2)
    if top <= x or x >= mode or pdf(max(mode, x + 1), n, r, c) <= p:
        return one, mp.mpf(1)
    lo, hi = max(mode, x + 1), top
    if pdf(hi, n, r, c) > p:
        lo = hi
    while hi - lo > 1:
        mid = (lo + hi) // 2
        if pdf(mid, n, r, c) > p:
            lo = mid
        else:
            hi = mid
    upper = 1 - cdf(lo, n, r, c)
    return one, min(mp.mpf(1), one + upper)


fisher_cases = [
    [[250_010_000, 249_990_000], [249_990_000, 250_010_000]],
    [[300_000_000, 200_000_000], [199_990_000, 300_010_000]],
    [[120_004_000, 379_996_000], [119_996_000, 380_004_000]],
    [[5, 999_999_000], [20, 980]],
]
with open(f"{OUT}/fisher_large.csv", "w") as f:
    f.write("table,fisher1,fisher2\n")
    for t in fisher_cases:
        one, two = fisher(t)
        f.write(f"{enc(t)},{fmt(one)},{fmt(two)}\n")


# --- Bayes factors at large totals --------------------------------------------
def lmB(v):
    v = [mp.mpf(a) for a in v if a > 0]
    return sum(mp.loggamma(a) for a in v) - mp.loggamma(sum(v))


def used(m):
    rows = [i for i in range(len(m)) if sum(m[i]) > 0]
    cols = [j for j in range(len(m[0])) if sum(m[i][j] for i in range(len(m))) > 0]
    return [[mp.mpf(m[i][j]) for j in cols] for i in rows]


def conj(m, a, model, b=None):
    O = used(m)
    R, C = len(O), len(O[0])
    r = [sum(row) for row in O]
    k = [sum(O[i][j] for i in range(R)) for j in range(C)]
    N = sum(r)
    A = [[mp.mpf(a)] * C for _ in range(R)]
    xr = [a * C - (C - 1)] * R
    xc = [a * R - (R - 1)] * C
    mr = lmB([xr[i] + r[i] for i in range(R)]) - lmB(xr)
    mc = lmB([xc[j] + k[j] for j in range(C)]) - lmB(xc)
    flat_a = [x for row in A for x in row]
    flat_o = [x for row in O for x in row]
    if model == "joint":
        return mr + mc - (lmB([p + q for p, q in zip(flat_a, flat_o)]) - lmB(flat_a))
    if model == "rows":
        return mc - sum(lmB([A[i][j] + O[i][j] for j in range(C)]) - lmB(A[i]) for i in range(R))
    if model == "cols":
        return mr - sum(lmB([A[i][j] + O[i][j] for i in range(R)]) - lmB([A[i][j] for i in range(R)])
                        for j in range(C))
    df = (R - 1) * (C - 1)
    a0 = a * R * C - df
    if b is None:
        b = mp.mpf(R * C * a) / N
    return (df * mp.log(1 + 1 / mp.mpf(b)) + mp.loggamma(N + a0) - mp.loggamma(a0)
            + sum(mp.loggamma(a) - mp.loggamma(a + o) for o in flat_o) + mr + mc)


def dirich(m, a, fix):
    O = used(m)
    R, C = len(O), len(O[0])
    A = [[mp.mpf(a)] * C for _ in range(R)]
    rs = [sum(row) for row in A]
    cs = [sum(A[i][j] for i in range(R)) for j in range(C)]
    r = [sum(row) for row in O]
    k = [sum(O[i][j] for i in range(R)) for j in range(C)]
    mr = lmB([rs[i] + r[i] for i in range(R)]) - lmB(rs)
    mc = lmB([cs[j] + k[j] for j in range(C)]) - lmB(cs)
    if fix == "total":
        fa = [x for row in A for x in row]
        fo = [x for row in O for x in row]
        return mr + mc - (lmB([p + q for p, q in zip(fa, fo)]) - lmB(fa))
    if fix == "rows":
        return mc - sum(lmB([A[i][j] + O[i][j] for j in range(C)]) - lmB(A[i]) for i in range(R))
    return mr - sum(lmB([A[i][j] + O[i][j] for i in range(R)]) - lmB([A[i][j] for i in range(R)]) for j in range(C))


def nonparam(g0, g1, lam):
    lam = [mp.mpf(v) for v in lam]
    return (lmB([l + p + q for l, p, q in zip(lam, g0, g1)]) + lmB(lam)
            - lmB([l + p for l, p in zip(lam, g0)]) - lmB([l + q for l, q in zip(lam, g1)]))


def intrinsic_sum(x, n, T1, T2):
    """ln m0 - ln m1 by the closed-form sum over every pair of training
    samples (y1 of T1, y2 of T2)."""
    lB = lambda a, b: mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b)
    lC = lambda t, y: mp.loggamma(t + 1) - mp.loggamma(y + 1) - mp.loggamma(t - y + 1)
    s = x[0] + x[1]
    N = n[0] + n[1]
    m0 = lB(1 + s, 1 + N - s)
    per = []
    for g, T in ((0, T1), (1, T2)):
        per.append([lC(T, y) + lB(1 + y + x[g], 1 + T - y + n[g] - x[g]) - lB(1 + y, 1 + T - y) for y in range(T + 1)])
    T = T1 + T2
    w = [lB(1 + t, 1 + T - t) for t in range(T + 1)]
    terms = [per[0][a] + per[1][b] + w[a + b] for a in range(T1 + 1) for b in range(T2 + 1)]
    top = max(terms)
    return m0 - (top + mp.log(mp.fsum(mp.exp(t - top) for t in terms)))


def groups(m, fix):
    """Successes and sizes of the two groups of a 2x2 table."""
    if fix == "cols":
        return [m[0][0], m[0][1]], [m[0][0] + m[1][0], m[0][1] + m[1][1]]
    return [m[0][0], m[1][0]], [m[0][0] + m[0][1], m[1][0] + m[1][1]]


def t_sizes(m, fix, t_given):
    x, n = groups(m, fix)
    N = sum(n)
    T = t_given if t_given >= 2 else int(mp.floor(min(N, 1000) + mp.mpf("0.5")))
    T1 = int(mp.floor(T * mp.mpf(n[0]) / N + mp.mpf("0.5")))
    return x, n, T, T1, T - T1


big3 = [[100_012_345, 199_990_000, 50_001_000], [200_000_000, 399_987_655, 99_990_000],
        [50_000_000, 100_010_000, 199_997_000]]
near3 = [[100_012_345, 199_990_000, 50_001_000], [199_990_000, 400_010_000, 99_995_000],
         [25_000_000, 50_001_000, 12_499_000]]
big2x4 = [[250_000_000, 125_010_000, 62_500_000, 62_490_000], [250_010_000, 124_990_000, 62_505_000, 62_495_000]]
big12 = [[250_000_012_345, 249_999_987_655], [250_000_000_000, 250_000_000_000]]
strong = [[900_000_000, 1_000_000], [2_000_000, 97_000_000]]
big2 = [[250_012_345, 249_987_655], [249_990_000, 250_010_000]]

factor_large = [
    ("joint_1e9", big3, "joint", "total", conj(big3, 1, "joint"), -1),
    ("rows_1e9", big3, "rows", "rows", conj(big3, 1, "rows"), -1),
    ("cols_1e9", big3, "cols", "cols", conj(big3, 1, "cols"), -1),
    ("poisson_1e9", big3, "poisson", "total", conj(big3, 1, "poisson"), -1),
    ("dirichlet_total_1e9", big3, "dirichlet", "total", dirich(big3, 1, "total"), -1),
    ("dirichlet_rows_1e9", big3, "dirichlet", "rows", dirich(big3, 1, "rows"), -1),
    ("dirichlet_cols_1e9", big3, "dirichlet", "cols", dirich(big3, 1, "cols"), -1),
    ("joint_near_1e9", near3, "joint", "total", conj(near3, 1, "joint"), -1),
    ("rows_near_1e9", near3, "rows", "rows", conj(near3, 1, "rows"), -1),
    ("cols_near_1e9", near3, "cols", "cols", conj(near3, 1, "cols"), -1),
    ("poisson_near_1e9", near3, "poisson", "total", conj(near3, 1, "poisson"), -1),
    ("dirichlet_total_near_1e9", near3, "dirichlet", "total", dirich(near3, 1, "total"), -1),
    ("dirichlet_rows_near_1e9", near3, "dirichlet", "rows", dirich(near3, 1, "rows"), -1),
    ("dirichlet_cols_near_1e9", near3, "dirichlet", "cols", dirich(near3, 1, "cols"), -1),
    ("np_rows_1e9", big2x4, "np", "rows", nonparam(big2x4[0], big2x4[1], [1] * 4), -1),
    ("joint_1e12", big12, "joint", "total", conj(big12, 1, "joint"), -1),
    ("dirichlet_rows_1e12", big12, "dirichlet", "rows", dirich(big12, 1, "rows"), -1),
    ("joint_strong", strong, "joint", "total", conj(strong, 1, "joint"), -1),
    ("poisson_strong", strong, "poisson", "total", conj(strong, 1, "poisson"), -1),
]
for fix in ("rows", "cols"):
    for t_given in (40, -1):
        x, n, T, T1, T2 = t_sizes(big2, fix, t_given)
        factor_large.append((f"intrinsic_{fix}_T{T}_1e9", big2, "intrinsic", fix, intrinsic_sum(x, n, T1, T2),
                             t_given))
with open(f"{OUT}/factors_large.csv", "w") as f:
    f.write("name,table,kind,fix,t,log_bf\n")
    for name, m, kind, fix, value, t_given in factor_large:
        f.write(f"{name},{enc(m)},{kind},{fix},{t_given},{fmt(value)}\n")


# Pearson and likelihood-ratio statistics of the large tables.
def statistics(m):
    O = used(m)
    r = [sum(row) for row in O]
    k = [sum(O[i][j] for i in range(len(O))) for j in range(len(O[0]))]
    N = sum(r)
    x2 = g2 = mp.mpf(0)
    for i in range(len(O)):
        for j in range(len(O[0])):
            e = r[i] * k[j] / N
            x2 += (O[i][j] - e) ** 2 / e
            if O[i][j] > 0:
                g2 += 2 * O[i][j] * mp.log(O[i][j] / e)
    return x2, g2


with open(f"{OUT}/tests_large.csv", "w") as f:
    f.write("table,x2,g2\n")
    for m in (big3, near3, big2x4, big12, strong, big2):
        x2, g2 = statistics(m)
        f.write(f"{enc(m)},{fmt(x2)},{fmt(g2)}\n")


# --- intrinsic factors by integration ------------------------------------------
def intrinsic_integral(m, fix, t_given):
    """m0 / m1 with m1 the likelihood integrated against the intrinsic prior
    density: the mixture over every training table (y1, y2) of the
    uniform-prior posteriors Beta(1 + y_g, 1 + T_g - y_g), weighted by the
    training table's probability under the null."""
    mp.mp.dps = 30
    x, n, T, T1, T2 = t_sizes(m, fix, t_given)
    beta = lambda a, b: mp.beta(a, b)
    comps = []
    for y1 in range(T1 + 1):
        for y2 in range(T2 + 1):
            w = mp.binomial(T1, y1) * mp.binomial(T2, y2) * beta(1 + y1 + y2, 1 + T - y1 - y2)
            comps.append((w, y1, y2))
    assert abs(sum(c[0] for c in comps) - 1) < mp.mpf(10) ** -25  # a proper prior

    def prior(p1, p2):
        return sum(w * p1 ** y1 * (1 - p1) ** (T1 - y1) / beta(1 + y1, 1 + T1 - y1)
                   * p2 ** y2 * (1 - p2) ** (T2 - y2) / beta(1 + y2, 1 + T2 - y2) for w, y1, y2 in comps)

    like = lambda p1, p2: (p1 ** x[0] * (1 - p1) ** (n[0] - x[0]) * p2 ** x[1] * (1 - p2) ** (n[1] - x[1]))
    m1 = mp.quad(lambda p1, p2: like(p1, p2) * prior(p1, p2), [0, 1], [0, 1], method="gauss-legendre")
    s = x[0] + x[1]
    m0 = mp.quad(lambda p: p ** s * (1 - p) ** (sum(n) - s), [0, 1])
    out = mp.log(m0) - mp.log(m1)
    mp.mp.dps = 60
    return out, T, T1, T2


intrinsic_cases = [
    ([[7, 3], [2, 8]], "rows", 2), ([[7, 3], [2, 8]], "rows", 5), ([[7, 3], [2, 8]], "cols", 3),
    ([[4, 4], [5, 3]], "rows", 4), ([[1, 9], [6, 2]], "total", 6), ([[3, 2], [1, 4]], "rows", -1),
    ([[3, 2], [1, 4]], "cols", -1),
]
with open(f"{OUT}/intrinsic.csv", "w") as f:
    f.write("table,fix,t_given,T,T1,T2,log_bf,log_bf_sum\n")
    for m, fix, t_given in intrinsic_cases:
        value, T, T1, T2 = intrinsic_integral(m, fix, t_given)
        x, n, _, _, _ = t_sizes(m, fix, t_given)
        f.write(f"{enc(m)},{fix},{t_given},{T},{T1},{T2},{fmt(value)},{fmt(intrinsic_sum(x, n, T1, T2))}\n")


# --- posterior of log odds ratios ------------------------------------------------
def posterior(b, level):
    """Mean, variance, mode and equal-tailed limits of
    ln G1 + ln G2 - ln G3 - ln G4, G ~ Gamma(b), from its characteristic
    function by the inversion integrals of the distribution function and
    the density's slope."""
    mp.mp.dps = 25
    b = [mp.mpf(v) for v in b]
    signs = [1, 1, -1, -1]
    mean = sum(s * mp.digamma(v) for s, v in zip(signs, b))
    var = sum(mp.psi(1, v) for v in b)
    sd = mp.sqrt(var)

    def phi(t):  # characteristic function of the centred log odds ratio
        return mp.exp(sum(mp.loggamma(v + 1j * s * t) - mp.loggamma(v) for s, v in zip(signs, b)) - 1j * t * mean)

    tmax = mp.mpf(1)
    while abs(phi(tmax)) > mp.mpf(10) ** -22:
        tmax *= 1.5
    knots = [tmax * k / 60 for k in range(61)]
    cache = {}

    def phis(t):
        key = mp.nstr(t, 30)
        if key not in cache:
            cache[key] = phi(t)
        return cache[key]

    def cdf(x):
        return mp.mpf(1) / 2 - mp.quad(lambda t: mp.im(mp.exp(-1j * t * x) * phis(t)) / t, knots) / mp.pi

    def slope(x):
        return mp.quad(lambda t: t * mp.im(mp.exp(-1j * t * x) * phis(t)), knots) / mp.pi

    alpha = (100 - mp.mpf(level)) / 100
    z = mp.sqrt(2) * mp.erfinv(1 - alpha)
    lower = mp.findroot(lambda x: cdf(x) - alpha / 2, (-z * sd, -0.9 * z * sd), solver="secant", tol=1e-30)
    upper = mp.findroot(lambda x: cdf(x) - (1 - alpha / 2), (z * sd, 0.9 * z * sd), solver="secant", tol=1e-30)
    mode = mp.findroot(slope, (mp.mpf(0), -0.05 * sd), solver="secant", tol=1e-30)
    mp.mp.dps = 60
    return mean, var, mean + mode, mean + lower, mean + upper


posterior_cases = [
    ("moderate", (35, 25, 10, 14), 95), ("small_shapes", (0.5, 1.5, 2, 0.7), 95),
    ("mixed", (1.2, 900, 40, 3.5), 90), ("large", (5e5, 4.9e5, 5.1e5, 5.05e5), 95),
    ("one_large", (2, 3e4, 2.5e4, 4), 99), ("symmetric", (3, 3, 3, 3), 80),
]
with open(f"{OUT}/posterior_exact.csv", "w") as f:
    f.write("name,b1,b2,b3,b4,level,mean,variance,mode,lower,upper\n")
    for name, b, level in posterior_cases:
        values = posterior(b, level)
        f.write(",".join([name] + [fmt(v) for v in b] + [str(level)] + [fmt(v) for v in values]) + "\n")
