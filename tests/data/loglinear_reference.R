# Reference values for the log-linear tests, from R (stats, MASS) and from
# the marginal likelihoods of the sampling models written out directly.
# Run from the repository root:   Rscript tests/data/loglinear_reference.R
# Writes tests/data/loglinear/{classical,factors,posterior_mc}.csv.
# Tables are written as "a b c|d e f": rows separated by '|', cells by ' '.

suppressMessages(library(MASS))
dir.create("tests/data/loglinear", showWarnings = FALSE, recursive = TRUE)
fmt <- function(x) ifelse(is.na(x), "NA", trimws(formatC(x, digits = 17, format = "g")))
enc <- function(m) paste(apply(m, 1, function(r) paste(fmt(r), collapse = " ")), collapse = "|")
tab <- function(...) { rows <- list(...); do.call(rbind, rows) }

# ---------------------------------------------------------------------------
# Classical tests. The statistics are taken over the non-empty rows and
# columns only; chisq.test and loglm see that reduced table. Fisher's test
# takes the counts rounded half up; its one-sided value is P(X11 >= x11)
# ("greater") when c11 c22 - c12 c21 > 0, else P(X11 <= x11) ("less").
classical <- list(
  list("positive2x2", tab(c(12, 5), c(3, 10))),
  list("negative2x2", tab(c(2, 9), c(8, 3))),
  list("offdiagonal_tie", tab(c(10, 4), c(4, 10))),
  list("diagonal_tie", tab(c(3, 9), c(8, 3))),
  list("balanced", tab(c(5, 5), c(5, 5))),
  list("near_independent", tab(c(10, 9), c(11, 10))),
  list("zeros_offdiagonal", tab(c(0, 7), c(6, 0))),
  list("large2x2", tab(c(1234, 1000), c(980, 1300))),
  list("skewed2x2", tab(c(1, 40), c(12, 3))),
  list("fractional2x2", tab(c(3.4, 7.6), c(8.2, 2.5))),
  list("table3x3", tab(c(34, 9, 5), c(13, 24, 20), c(25, 23, 11))),
  list("table2x4", tab(c(3, 8, 12, 1), c(7, 2, 4, 9))),
  list("table4x3", tab(c(20, 3, 7), c(4, 15, 2), c(6, 5, 11), c(1, 9, 8))),
  list("empty_second_row", tab(c(10, 4, 6), c(0, 0, 0), c(3, 9, 8))),
  list("empty_column", tab(c(10, 0, 6), c(5, 0, 9), c(3, 0, 8)))
)
rows <- c("name,table,x2,g2,df,sig_x2,sig_g2,cont,sig_cont,fisher1,fisher2")
for (case in classical) {
  m <- case[[2]]
  used <- m[rowSums(m) > 0, colSums(m) > 0, drop = FALSE]
  x2 <- suppressWarnings(chisq.test(used, correct = FALSE))
  lr <- loglm(~ 1 + 2, data = as.table(used))
  cont <- sig_cont <- f1 <- f2 <- NA
  if (all(dim(m) == c(2, 2))) {
    cc <- suppressWarnings(chisq.test(used, correct = TRUE))
    cont <- unname(cc$statistic); sig_cont <- cc$p.value
    r <- floor(m + 0.5)
    d <- m[1, 1] * m[2, 2] - m[1, 2] * m[2, 1]
    f1 <- fisher.test(r, alternative = if (d > 0) "greater" else "less")$p.value
    f2 <- fisher.test(r)$p.value
  }
  rows <- c(rows, paste(case[[1]], enc(m), fmt(unname(x2$statistic)), fmt(lr$lrt), fmt(unname(x2$parameter)),
                        fmt(x2$p.value), fmt(pchisq(lr$lrt, lr$df, lower.tail = FALSE)), fmt(cont), fmt(sig_cont), fmt(f1), fmt(f2),
                        sep = ","))
}
writeLines(rows, "tests/data/loglinear/classical.csv")

# ---------------------------------------------------------------------------
# Bayes factors of independence (null) against the saturated table, as
# ln m0 - ln m1 of the sampling models, lmB the log multivariate beta.
lmB <- function(v) { v <- v[v > 0]; sum(lgamma(v)) - lgamma(sum(v)) }
used_part <- function(m, a) {
  keep_r <- rowSums(m) > 0; keep_c <- colSums(m) > 0
  list(O = m[keep_r, keep_c, drop = FALSE], a = a[keep_r, keep_c, drop = FALSE])
}
# Conjugate priors: cells Dirichlet(a) (or Gamma(a, b) for Poisson counts);
# under independence the margins get Dirichlet(rowSums(a) - (C - 1)) and
# Dirichlet(colSums(a) - (R - 1)), and the Poisson total Gamma(sum(a) - df, b).
conj <- function(m, a, model, b = NA) {
  u <- used_part(m, a); O <- u$O; a <- u$a
  R <- nrow(O); C <- ncol(O); r <- rowSums(O); k <- colSums(O); N <- sum(O)
  xr <- rowSums(a) - (C - 1); xc <- colSums(a) - (R - 1)
  margin_r <- lmB(xr + r) - lmB(xr); margin_c <- lmB(xc + k) - lmB(xc)
  if (model == "joint") return(margin_r + margin_c - (lmB(a + O) - lmB(a)))
  if (model == "rows") {  # each row its own Dirichlet(a_i); null: one Dirichlet(xc) for all rows
    m1 <- sum(sapply(1:R, function(i) lmB(a[i, ] + O[i, ]) - lmB(a[i, ])))
    return(margin_c - m1)
  }
  if (model == "cols") {
    m1 <- sum(sapply(1:C, function(j) lmB(a[, j] + O[, j]) - lmB(a[, j])))
    return(margin_r - m1)
  }
  df <- (R - 1) * (C - 1); a0 <- sum(a) - df
  if (is.na(b)) b <- R * C * min(a) / N
  df * log(1 + 1 / b) + lgamma(N + a0) - lgamma(a0) + sum(lgamma(a) - lgamma(a + O)) + margin_r + margin_c
}
# Dirichlet priors: cells Dirichlet(a); the null's margins Dirichlet with
# the row and column sums of a. Cells of empty rows and columns left out.
dirich <- function(m, a, fix) {
  u <- used_part(m, a); O <- u$O; a <- u$a
  R <- nrow(O); C <- ncol(O)
  mr <- lmB(rowSums(a) + rowSums(O)) - lmB(rowSums(a))
  mc <- lmB(colSums(a) + colSums(O)) - lmB(colSums(a))
  if (fix == "total") return(mr + mc - (lmB(a + O) - lmB(a)))
  if (fix == "rows") return(mc - sum(sapply(1:R, function(i) lmB(a[i, ] + O[i, ]) - lmB(a[i, ]))))
  mr - sum(sapply(1:C, function(j) lmB(a[, j] + O[, j]) - lmB(a[, j])))
}
# Nonparametric: two groups over K categories, Dirichlet(lambda): one
# common distribution against two.
np <- function(g0, g1, lambda) lmB(lambda + g0 + g1) + lmB(lambda) - lmB(lambda + g0) - lmB(lambda + g1)

shape_matrix <- function(m, s) if (length(s) == 1) matrix(s, nrow(m), ncol(m)) else matrix(s, nrow(m), byrow = TRUE)
factor_cases <- list(
  # name, table, kind, fix, shapes, extra (prior scale or lambdas)
  list("joint_2x2", tab(c(12, 5), c(3, 10)), "joint", "total", 1, NA),
  list("joint_3x3", tab(c(34, 9, 5), c(13, 24, 20), c(25, 23, 11)), "joint", "total", 1, NA),
  list("joint_shape2", tab(c(3, 8, 12, 1), c(7, 2, 4, 9)), "joint", "total", 2, NA),
  list("joint_cellshapes", tab(c(20, 3, 7), c(4, 15, 2)), "joint", "total", c(1, 2, 0.5, 1.5, 1, 3), NA),
  list("rows_2x4", tab(c(3, 8, 12, 1), c(7, 2, 4, 9)), "rows", "rows", 1, NA),
  list("rows_4x3", tab(c(20, 3, 7), c(4, 15, 2), c(6, 5, 11), c(1, 9, 8)), "rows", "rows", 1.5, NA),
  list("cols_4x3", tab(c(20, 3, 7), c(4, 15, 2), c(6, 5, 11), c(1, 9, 8)), "cols", "cols", 1, NA),
  list("cols_cellshapes", tab(c(20, 3, 7), c(4, 15, 2)), "cols", "cols", c(1, 2, 0.5, 1.5, 1, 3), NA),
  list("poisson_2x2", tab(c(12, 5), c(3, 10)), "poisson", "total", 1, NA),
  list("poisson_3x3_scale", tab(c(34, 9, 5), c(13, 24, 20), c(25, 23, 11)), "poisson", "total", 1, 0.2),
  list("poisson_cellshapes", tab(c(20, 3, 7), c(4, 15, 2)), "poisson", "rows", c(1, 2, 0.5, 1.5, 1, 3), NA),
  list("dirichlet_total", tab(c(34, 9, 5), c(13, 24, 20), c(25, 23, 11)), "dirichlet", "total", 1, NA),
  list("dirichlet_rows", tab(c(34, 9, 5), c(13, 24, 20), c(25, 23, 11)), "dirichlet", "rows", 1, NA),
  list("dirichlet_cols", tab(c(20, 3, 7), c(4, 15, 2), c(6, 5, 11), c(1, 9, 8)), "dirichlet", "cols", 0.5, NA),
  list("dirichlet_cellshapes", tab(c(20, 3, 7), c(4, 15, 2)), "dirichlet", "total", c(1, 2, 0.5, 1.5, 1, 3), NA),
  list("dirichlet_empty_row", tab(c(10, 4, 6), c(0, 0, 0), c(3, 9, 8)), "dirichlet", "total", 1, NA),
  list("np_rows", tab(c(3, 8, 12, 1), c(7, 2, 4, 9)), "np", "rows", 1, NA),
  list("np_rows_lambdas", tab(c(3, 8, 12, 1), c(7, 2, 4, 9)), "np", "rows", 1, c(0.5, 1, 2, 1)),
  list("np_rows_empty_category", tab(c(3, 0, 12, 1), c(7, 0, 4, 9)), "np", "rows", 1, 2),
  list("np_cols", tab(c(20, 3), c(4, 15), c(6, 5)), "np", "cols", 1, NA)
)
rows <- c("name,table,kind,fix,shapes,extra,log_bf")
for (case in factor_cases) {
  m <- case[[2]]; kind <- case[[3]]; fix <- case[[4]]; s <- case[[5]]; extra <- case[[6]]
  a <- shape_matrix(m, s)
  value <- switch(kind,
    joint = conj(m, a, "joint"), rows = conj(m, a, "rows"), cols = conj(m, a, "cols"),
    poisson = conj(m, a, "poisson", extra),
    dirichlet = dirich(m, a, fix),
    np = {
      lambda <- if (all(is.na(extra))) 1 else extra
      if (fix == "rows") np(m[1, ], m[2, ], rep_len(lambda, ncol(m))) else np(m[, 1], m[, 2], rep_len(lambda, nrow(m)))
    })
  rows <- c(rows, paste(case[[1]], enc(m), kind, fix, paste(fmt(s), collapse = " "),
                        paste(fmt(extra), collapse = " "), fmt(value), sep = ","))
}
writeLines(rows, "tests/data/loglinear/factors.csv")

# ---------------------------------------------------------------------------
# Posterior log odds ratios: a long Monte Carlo of
# ln G1 + ln G2 - ln G3 - ln G4, G ~ Gamma(beta), in 20 batches; the limits'
# standard errors from the spread of the batch quantiles.
set.seed(20240611)
posterior_cases <- list(
  list("moderate", c(35, 25, 10, 14), 95),
  list("small_shapes", c(0.5, 1.5, 2, 0.7), 95),
  list("mixed", c(1.2, 900, 40, 3.5), 90),
  list("large", c(5e5, 4.9e5, 5.1e5, 5.05e5), 95),
  list("one_large", c(2, 3e4, 2.5e4, 4), 99)
)
rows <- c("name,b1,b2,b3,b4,level,mean,variance,lower,upper,se_lower,se_upper")
for (case in posterior_cases) {
  b <- case[[2]]; level <- case[[3]]; alpha <- (100 - level) / 100
  batches <- 20; per <- 1e6
  q <- matrix(0, batches, 2); all_mean <- 0
  for (k in 1:batches) {
    x <- log(rgamma(per, b[1])) + log(rgamma(per, b[2])) - log(rgamma(per, b[3])) - log(rgamma(per, b[4]))
    q[k, ] <- quantile(x, c(alpha / 2, 1 - alpha / 2), type = 8)
  }
  rows <- c(rows, paste(case[[1]], fmt(b[1]), fmt(b[2]), fmt(b[3]), fmt(b[4]), fmt(level),
                        fmt(digamma(b[1]) + digamma(b[2]) - digamma(b[3]) - digamma(b[4])),
                        fmt(sum(trigamma(b))), fmt(mean(q[, 1])), fmt(mean(q[, 2])),
                        fmt(sd(q[, 1]) / sqrt(batches)), fmt(sd(q[, 2]) / sqrt(batches)), sep = ","))
}
writeLines(rows, "tests/data/loglinear/posterior_mc.csv")
