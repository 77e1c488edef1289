#!/usr/bin/env python3
"""Reference logarithms of the two closed-form Bayes factors of equal group
means (null over alternative), at 60 digits with mpmath.

Gonen (prior mean a and variance s2 of the standardised effect, effective
sample size n, df = nu, q = 1 + s2 n):
    BF = sqrt(q) pdf_t(t; nu) / pdf_nct(t / sqrt(q); nu, a sqrt(n) / sqrt(q))
with the non-central t density from its closed form in Kummer's confluent
hypergeometric function,
    f(x) = nu^(nu/2) Gamma(nu+1) exp(-d^2/2) / (2^nu (nu+x^2)^(nu/2) Gamma(nu/2))
           * [ sqrt(2) d x / (nu+x^2) 1F1(nu/2+1; 3/2; z) / Gamma((nu+1)/2)
             + 1F1((nu+1)/2; 1/2; z) / (sqrt(nu+x^2) Gamma(nu/2+1)) ],  z = d^2 x^2 / (2 (nu+x^2)),
which shares nothing with the integral the library evaluates.

Hyper-prior (parameter a):
    BF = Gamma((nu+1)/2) Gamma(a+1) / (Gamma(nu/2) Gamma(a+3/2)) (1 + t^2/nu)^(a+1-nu/2).

Writes gonen_hyper_factors.csv: kind,n,df,t,a,s2,log_bf; and nct_log_density.csv:
df,delta,x,log_pdf, the logarithm of the non-central t density on a grid
(at 2000 digits: the two terms of the closed form nearly cancel when x and
delta differ in sign)."""
import mpmath as mp

mp.mp.dps = 60


def log_pdf_t(x, nu):
    return (mp.loggamma((nu + 1) / 2) - mp.loggamma(nu / 2) - mp.log(nu * mp.pi) / 2
            - (nu + 1) / 2 * mp.log1p(x * x / nu))


def log_pdf_nct(x, nu, d):
    z = d * d * x * x / (2 * (nu + x * x))
    log_pre = (nu / 2 * mp.log(nu) + mp.loggamma(nu + 1) - d * d / 2 - nu * mp.log(2)
               - nu / 2 * mp.log(nu + x * x) - mp.loggamma(nu / 2))
    bracket = (mp.sqrt(2) * d * x / (nu + x * x) * mp.hyp1f1(nu / 2 + 1, mp.mpf(3) / 2, z)
               / mp.gamma((nu + 1) / 2)
               + mp.hyp1f1((nu + 1) / 2, mp.mpf(1) / 2, z) / (mp.sqrt(nu + x * x) * mp.gamma(nu / 2 + 1)))
    return log_pre + mp.log(bracket)


def gonen(n, nu, t, a, s2):
    q = 1 + s2 * n
    if a == 0:
        return mp.log(q) / 2 - (nu + 1) / 2 * (mp.log1p(t * t / nu) - mp.log1p(t * t / (nu * q)))
    return mp.log(q) / 2 + log_pdf_t(t, nu) - log_pdf_nct(t / mp.sqrt(q), nu, a * mp.sqrt(n) / mp.sqrt(q))


def hyper(nu, t, a):
    return (mp.loggamma((nu + 1) / 2) + mp.loggamma(a + 1) - mp.loggamma(nu / 2) - mp.loggamma(a + mp.mpf(3) / 2)
            + (a + 1 - nu / 2) * mp.log1p(t * t / nu))


BIG_N = mp.mpf(5) * 10 ** 8 * 5 * 10 ** 8 / (10 ** 9)  # n0 = n1 = 5e8
BIG_DF = mp.mpf(10) ** 9 - 2

GONEN = [  # n, df, t, a, s2
    (12.5, 48, 2.1, 0.5, 1), (7.5, 28, -1.3, 0.3, 0.5), (40, 158, 3.0, -0.2, 2), (5, 18, 0.7, 1.0, 0.25),
    (20, 78, 0, 0.4, 1), (12.5, 48, 2.1, 0, 1), (12.5, 48, 0, 0, 1), (12.5, 48, 50, 0.5, 1),
    (2.5, 8, -6, 1.5, 0.1), (BIG_N, BIG_DF, 50, 0.5, 1), (BIG_N, BIG_DF, 0.3, 0.5, 1),
    (BIG_N, BIG_DF, 50, 0.5, 1e-6), (BIG_N, BIG_DF, 0.001, 0, 1), (BIG_N, BIG_DF, 50, 0, 1),
]
HYPER = [  # df, t, a
    (48, 2.1, 3), (28, 0, 3), (158, 3, 0.5), (10, 4, -0.5), (1, 1.5, 3), (BIG_DF, 50, 3), (BIG_DF, 0.3, 3),
]


def nct_table():
    with open("nct_log_density.csv", "w") as out:
        out.write("df,delta,x,log_pdf\n")
        for nu in (1, 2.5, 9, 60, 1e4, 1e9):
            for d in (-3, 0.8, 7):
                for x in (-12, -1, 0, 0.4, 3, 25):
                    with mp.workdps(2000):
                        v = log_pdf_nct(mp.mpf(x), mp.mpf(nu), mp.mpf(d))
                    out.write(f"{nu},{d},{x},{mp.nstr(v, 20)}\n")


def main():
    nct_table()
    with open("gonen_hyper_factors.csv", "w") as out:
        out.write("kind,n,df,t,a,s2,log_bf\n")
        for n, nu, t, a, s2 in GONEN:
            n, nu, t, a, s2 = map(mp.mpf, (n, nu, t, a, s2))
            with mp.workdps(2000):
                value = gonen(n, nu, t, a, s2)
            out.write(f"gonen,{mp.nstr(n, 17)},{mp.nstr(nu, 17)},{mp.nstr(t, 17)},{mp.nstr(a, 17)},"
                      f"{mp.nstr(s2, 17)},{mp.nstr(value, 20)}\n")
        for nu, t, a in HYPER:
            nu, t, a = map(mp.mpf, (nu, t, a))
            out.write(f"hyper,,{mp.nstr(nu, 17)},{mp.nstr(t, 17)},{mp.nstr(a, 17)},,{mp.nstr(hyper(nu, t, a), 20)}\n")


if __name__ == "__main__":
    main()
