# Reference values of the regression Bayes factors: each integral over g in
# [2.220446049250313e-16, 1e6] evaluated with mpmath at 40 digits (split
# where the integrand peaks), the fixed-g factor in closed form, and the
# hyper-g null factor also by its Gauss hypergeometric closed form (whose
# agreement with the truncated integral is printed as a check). Run from
# this directory:
#   /usr/bin/python3 regr_factors_reference.py > regr_factors_reference.csv
import mpmath as mp

mp.mp.dps = 40
LO, HI = mp.mpf("2.220446049250313e-16"), mp.mpf(10) ** 6


def log_integrand(compare, method, N, p, pF, R2, RF2, par):
    N, p, pF, R2, RF2 = map(mp.mpf, (N, p, pF, R2, RF2))
    A = (N - p - 1) / 2
    AF = (N - pF - 1) / 2
    if method in ("siow", "rouder"):
        r = mp.mpf(1) if method == "siow" else mp.mpf(par)
        c = r * mp.sqrt(N / (2 * mp.pi))
        if compare == "null":
            return lambda g: -N * r * r / (2 * g) + A * mp.log1p(g) + (1 - N) / 2 * mp.log1p((1 - R2) * g) + mp.log(c) - mp.mpf(1.5) * mp.log(g)
        rho = (1 - RF2) / (1 - R2)
        return lambda g: -N * r * r / (2 * g) - AF * mp.log1p(g) + A * mp.log1p(rho * g) + mp.log(c) - mp.mpf(1.5) * mp.log(g)
    a = mp.mpf(par)
    if compare == "null":
        return lambda g: (N - 1 - p - a) / 2 * mp.log1p(g) + (1 - N) / 2 * mp.log1p((1 - R2) * g)
    rho = (1 - RF2) / (1 - R2)
    return lambda g: -(N - 1 - pF + a) / 2 * mp.log1p(g) + A * mp.log1p(rho * g)


def log_factor(compare, method, N, p, pF, R2, RF2, par):
    if method == "zellner":
        g = mp.mpf(par)
        N, p, pF, R2, RF2 = map(mp.mpf, (N, p, pF, R2, RF2))
        if compare == "null":
            return (N - p - 1) / 2 * mp.log1p(g) + (1 - N) / 2 * mp.log1p((1 - R2) * g)
        return (1 + pF - N) / 2 * mp.log1p(g) + (N - p - 1) / 2 * mp.log((1 - RF2) * g / (1 - R2) + 1)
    f = log_integrand(compare, method, N, p, pF, R2, RF2, par)
    # The peak on a log grid, then breakpoints around it.
    us = [mp.log(LO) + (mp.log(HI) - mp.log(LO)) * i / 400 for i in range(401)]
    vals = [f(mp.e ** u) for u in us]
    top = max(vals)
    i = vals.index(top)
    pts = sorted(set([LO, HI] + [mp.e ** us[j] for j in range(max(i - 8, 0), min(i + 9, 401))]))
    total = mp.mpf(0)
    for a, b in zip(pts[:-1], pts[1:]):
        total += mp.quad(lambda g: mp.e ** (f(g) - top), [a, b])
    logI = top + mp.log(total)
    if method == "hyper":
        logI += mp.log((mp.mpf(par) - 2) / 2)
    return logI


cases = [
    ("null", "siow", 30, 3, 0, 0.4, 0, 0),
    ("null", "siow", 200, 5, 0, 0.1, 0, 0),
    ("null", "siow", 50, 2, 0, 0.02, 0, 0),
    ("null", "rouder", 30, 3, 0, 0.4, 0, 0.5),
    ("null", "rouder", 80, 4, 0, 0.25, 0, 2.0),
    ("null", "hyper", 30, 3, 0, 0.4, 0, 3.0),
    ("null", "hyper", 100, 2, 0, 0.15, 0, 4.0),
    ("null", "zellner", 30, 3, 0, 0.4, 0, 30),
    ("null", "siow", 100000, 4, 0, 0.3, 0, 0),
    ("null", "rouder", 1000000, 3, 0, 0.001, 0, 0.7),
    ("full", "siow", 40, 2, 4, 0.3, 0.35, 0),
    ("full", "rouder", 40, 2, 4, 0.3, 0.35, 0.5),
    ("full", "hyper", 40, 2, 4, 0.3, 0.35, 3.0),
    ("full", "zellner", 40, 2, 4, 0.3, 0.35, 40),
    ("full", "siow", 60, 3, 5, 0.2, 0.6, 0),
]
print("compare,method,N,p,pF,R2,RF2,par,logbf")
for c in cases:
    print(",".join(map(str, c)) + "," + mp.nstr(log_factor(*c), 20))

# The hyper-g null factor in closed form: with the bound 1e6 far beyond the
# integrand's mass the two agree.
import sys
for N, p, R2, a in [(30, 3, 0.4, 3.0), (100, 2, 0.15, 4.0)]:
    closed = mp.log((mp.mpf(a) - 2) / (p + a - 2) * mp.hyp2f1((mp.mpf(N) - 1) / 2, 1, (mp.mpf(p) + a) / 2, R2))
    sys.stderr.write("hyper closed form %s vs integral %s\n" % (mp.nstr(closed, 15), mp.nstr(log_factor("null", "hyper", N, p, 0, R2, 0, a), 15)))
