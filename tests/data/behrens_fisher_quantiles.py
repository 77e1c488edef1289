#!/usr/bin/env python3
"""Reference quantiles of the Behrens-Fisher distribution
Y = a0 T0 + a1 T1 (T_g Student t with df_g degrees of freedom, independent),
at 30 digits with mpmath: the distribution function as the convolution
    P(Y <= y) = integral f_0(u) F_1((y - a0 u) / a1) du
over the whole line (split at 0 and at the point where the other variable's
argument is 0), the t distribution function from the regularised incomplete
beta function, and the quantile by a secant root search.

Writes behrens_fisher_quantiles.csv: a0,df0,a1,df1,p,quantile."""
import mpmath as mp

mp.mp.dps = 30


def t_pdf(x, nu):
    return mp.exp(mp.loggamma((nu + 1) / 2) - mp.loggamma(nu / 2) - mp.log(nu * mp.pi) / 2
                  - (nu + 1) / 2 * mp.log1p(x * x / nu))


def t_cdf(x, nu):
    tail = mp.betainc(nu / 2, mp.mpf(1) / 2, 0, nu / (nu + x * x), regularized=True) / 2
    return tail if x < 0 else 1 - tail


def cdf(y, a0, nu0, a1, nu1):
    f = lambda u: t_pdf(u, nu0) * t_cdf((y - a0 * u) / a1, nu1)
    cut = y / a0
    points = sorted({mp.mpf(0), cut})
    return mp.quad(f, [-mp.inf] + points + [mp.inf])


def quantile(p, a0, nu0, a1, nu1):
    s = mp.sqrt(a0 * a0 + a1 * a1)
    start = s * mp.sqrt(2) * mp.erfinv(2 * p - 1)
    return mp.findroot(lambda y: cdf(y, a0, nu0, a1, nu1) - p, (start, start * mp.mpf("1.05")),
                       solver="secant", tol=mp.mpf(10) ** -24)


CASES = [  # a0, df0, a1, df1, p
    (0.5, 4, 1, 3, 0.025), (1, 1, 1, 1, 0.025), (1, 2, 0.01, 2, 0.025), (0.3, 5, 2, 3, 0.0025),
    (1, 30, 1, 30, 0.025), (1, 9, 1.3, 19, 0.005), (0.3, 49, 0.2, 99, 0.025), (1, 10000, 1, 8, 0.0025),
    (1, 51, 0.7, 60, 0.025), (1, 200, 0.5, 201, 0.05), (2.5, 1, 0.1, 1000, 0.025), (1, 2, 1, 1, 0.0005),
]


def main():
    with open("behrens_fisher_quantiles.csv", "w") as out:
        out.write("a0,df0,a1,df1,p,quantile\n")
        for a0, nu0, a1, nu1, p in CASES:
            q = quantile(*map(mp.mpf, (p, a0, nu0, a1, nu1)))
            out.write(f"{a0},{nu0},{a1},{nu1},{p},{mp.nstr(q, 20)}\n")
            out.flush()


if __name__ == "__main__":
    main()
