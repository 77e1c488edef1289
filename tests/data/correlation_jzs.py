# Reference JZS Bayes factors of a correlation: for each (n, r), the
# integral over g in [eps, 1e6] (eps = 2^-52) of
#   f(g) = exp((n-2)/2 log(1+g) - (n-1)/2 log(1+(1-r^2) g) - 3/2 log g - n/(2g))
# by mpmath's tanh-sinh quadrature at 40 digits, straight in g on
# log-spaced pieces (breakpoints at every power of 2 and around the peak
# near g = n/(4(1-r^2))), and
#   log BF = log(sqrt(pi)) - log(sqrt(n/2)) - log(integral),
# with the share of f's mass beyond g = 1e6 relative to the integral.
#   /usr/bin/python3 tests/data/correlation_jzs.py > tests/data/correlation_jzs.csv
import mpmath as mp

mp.mp.dps = 40
EPS = mp.mpf(2) ** -52
TOP = mp.mpf(10) ** 6

CASES = [
    (3, 0.0), (3, 0.9), (4, -0.5), (10, 0.3), (30, 0.5), (30, -0.7), (100, 0.1), (100, -0.25),
    (1000, 0.05), (1000, 0.2), (10000, 0.02), (10000, 0.5), (100000, 0.01), (1000000, 0.001),
    (10000000, 0.0), (100000000, 0.0005), (100000000, 0.3), (50, 0.999999), (50, -0.999999),
    (7, 0.999999),
]


def logf(g, n, r):
    n = mp.mpf(n)
    c = (1 - mp.mpf(r)) * (1 + mp.mpf(r))
    return (n - 2) / 2 * mp.log1p(g) - (n - 1) / 2 * mp.log1p(c * g) - mp.mpf(3) / 2 * mp.log(g) - n / (2 * g)


def breakpoints(lo, hi, peak):
    pts = {lo, hi}
    k = -60
    while mp.mpf(2) ** k < hi:
        p = mp.mpf(2) ** k
        if lo < p < hi:
            pts.add(p)
        k += 1
    for j in range(-40, 41):
        p = peak * mp.mpf(2) ** (mp.mpf(j) / 4)
        if lo < p < hi:
            pts.add(p)
    return sorted(pts)


def integral(lo, hi, n, r):
    c = (1 - mp.mpf(r)) * (1 + mp.mpf(r))
    peak = mp.mpf(n) / (4 * c)
    # Scaled by the value at the peak (or the nearest end) to keep mpmath's
    # error estimates relative.
    ref = logf(min(max(peak, lo), hi if hi != mp.inf else peak), n, r)
    g = lambda x: mp.exp(logf(x, n, r) - ref)
    pts = breakpoints(lo, hi if hi != mp.inf else peak * 2 ** 40 + TOP * 2 ** 40, peak)
    if hi == mp.inf:
        pts.append(mp.inf)
    return mp.quad(g, pts), ref


print("n,r,log_bf,tail_share")
for n, r in CASES:
    main, ref = integral(EPS, TOP, n, r)
    tail, ref2 = integral(TOP, mp.inf, n, r)
    log_i = mp.log(main) + ref
    log_bf = mp.log(mp.sqrt(mp.pi)) - mp.log(mp.sqrt(mp.mpf(n) / 2)) - log_i
    share = tail * mp.exp(ref2 - ref) / main
    print(f"{n},{r!r},{mp.nstr(log_bf, 20)},{mp.nstr(share, 10)}")
