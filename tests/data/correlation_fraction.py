# Reference fractional Bayes factors of a correlation, by deterministic
# nested quadrature (mpmath, tanh-sinh) of the integrals the Monte-Carlo
# estimate approximates:
#   null model, likelihood power m (m = n, and m = b n):
#     L(m) = log( integral over V in [eps, 1e6] of
#                 ((2 - 2 r rho0) / (s + 1/s - 2 r rho0))^(m-1) / V dV )
#            + (m-1) (log(1 - rho0^2)/2 - log(2 - 2 r rho0)),   s = sqrt(V)
#   alternative, p = n (fraction 1) and p = b n:
#     I(p) = integral over V in [0, 1000], rho in [-1, 1] of
#            (1-rho^2)^((p-3)/2) / V * (s + 1/s - 2 r rho)^-(p-1)
#   log BF = log I(b n) - log I(n) + L(n) - L(b n)
#   /usr/bin/python3 tests/data/correlation_fraction.py > tests/data/correlation_fraction.csv
import mpmath as mp

mp.mp.dps = 20
EPS = mp.mpf(2) ** -52

CASES = [(10, 0.3, 0.0, 0.5), (20, -0.5, 0.0, 0.5), (40, 0.6, 0.2, 0.5), (15, 0.1, -0.3, 0.8), (8, 0.0, 0.0, 0.5)]


def null_log(m, r, rho0):
    base = 2 - 2 * mp.mpf(r) * rho0
    g = lambda V: mp.exp(-(m - 1) * mp.log1p((mp.sqrt(V) - 1) ** 2 / mp.sqrt(V) / base)) / V
    pts = [EPS, mp.mpf('1e-8'), mp.mpf('1e-4'), mp.mpf('0.01'), mp.mpf('0.1'), mp.mpf('0.5'), 1, 2, 10, 100,
           mp.mpf('1e4'), mp.mpf(10) ** 6]
    return mp.log(mp.quad(g, pts)) + (m - 1) * (mp.log(1 - mp.mpf(rho0) ** 2) / 2 - mp.log(base))


def alt_log(p, r):
    r = mp.mpf(r)

    def h(V, rho):
        s = mp.sqrt(V)
        return (1 - rho * rho) ** ((p - 3) / 2) / V * ((s - 1) ** 2 / s + 2 * (1 - r * rho)) ** (-(p - 1))

    total = 0
    vs = [0, mp.mpf('0.01'), mp.mpf('0.1'), mp.mpf('0.5'), 1, 2, 10, 100, 1000]
    rhos = [-1, -mp.mpf('0.5'), 0, r, mp.mpf('0.5'), 1] if abs(r) not in (0.5, 0) else [-1, -mp.mpf('0.5'), 0, mp.mpf('0.5'), 1]
    rhos = sorted(set(rhos))
    for a, b in zip(vs[:-1], vs[1:]):
        inner = lambda V: mp.quad(lambda rho: h(V, rho), rhos)
        total += mp.quad(inner, [a, b])
    return mp.log(total)


print("n,r,rho0,b,log_bf,log_i1,log_ib,l1,lb")
for n0, r, rho0, b0 in CASES:
    n = mp.mpf(n0)
    b = mp.mpf(b0)
    l1 = null_log(n, r, rho0)
    lb = null_log(n * b, r, rho0)
    i1 = alt_log(n, r)
    ib = alt_log(n * b, r)
    log_bf = ib - i1 + l1 - lb
    vals = [log_bf, i1, ib, l1, lb]
    print(f"{n0},{r},{rho0},{b0}," + ",".join(mp.nstr(v, 15) for v in vals), flush=True)
