#!/usr/bin/env python3
"""Two-sample JZS Bayes factors (null over alternative) with the integral over
g taken from machine epsilon to 1e5 and the stretch from 1e5 to 1e6 replaced
by the integral of the large-g form (2 pi n)^(-1/2) g^(-2) of the integrand,
as the independent-samples procedure defines it; also the plain integral over
[eps, 1e6] for comparison. n = n0 n1 / (n0 + n1), nu = n0 + n1 - 2.

Computed with mpmath at 40 digits. Writes jzs_twosample_bounded.csv."""
import csv
import mpmath as mp

mp.mp.dps = 40
EPS = mp.mpf(2) ** -52


def integrand(g, n, nu, t):
    x = 1 + n * g
    return (x ** mp.mpf(-0.5) * (1 + t * t / (x * nu)) ** (-(nu + 1) / 2) / mp.sqrt(2 * mp.pi)
            * g ** mp.mpf(-1.5) * mp.exp(-1 / (2 * g)))


def integral(n, nu, t, hi):
    points = [EPS] + [mp.mpf(10) ** k for k in range(-12, 7) if mp.mpf(10) ** k < hi] + [hi]
    return mp.quad(lambda g: integrand(g, n, nu, t), points)


def main():
    rows = []
    with open("jzs_twosample.csv") as f:
        for r in csv.DictReader(f):
            rows.append((int(r["n0"]), int(r["n1"]), mp.mpf(r["t"])))
    with open("jzs_twosample_bounded.csv", "w") as out:
        out.write("n0,n1,t,bf01_bounded,bf01_to_1e6\n")
        for n0, n1, t in rows:
            n = mp.mpf(n0) * n1 / (n0 + n1)
            nu = mp.mpf(n0 + n1 - 2)
            null = (1 + t * t / nu) ** (-(nu + 1) / 2)
            tail = 1 / mp.sqrt(2 * mp.pi * n) * (mp.mpf(1) / 10 ** 5 - mp.mpf(1) / 10 ** 6)
            bounded = null / (integral(n, nu, t, mp.mpf(10) ** 5) + tail)
            plain = null / integral(n, nu, t, mp.mpf(10) ** 6)
            out.write(f"{n0},{n1},{mp.nstr(t, 6)},{mp.nstr(bounded, 17)},{mp.nstr(plain, 17)}\n")


if __name__ == "__main__":
    main()
