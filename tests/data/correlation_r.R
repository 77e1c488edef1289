# Reference correlations for the correlation procedure's tests, from R's
# cor() on the data expanded by whole frequency weights (each record
# repeated floor(w + 0.5) times; a missing weight or one below 0.5 drops it).
#   Rscript tests/data/correlation_r.R   (run from the repository root)
# writes tests/data/correlation_data.csv (the records, with their weights)
# and tests/data/correlation_r.csv (scope, i, j, r, n): for every pair of the
# six variables, R's cor(use = "pairwise.complete.obs") and
# cor(use = "complete.obs") with the number of cases used.
set.seed(20240611)
n <- 60
x1 <- rnorm(n, 10, 2)
x2 <- 0.6 * x1 + rnorm(n, 0, 1.5)
x3 <- 1e9 + 0.001 * (0.3 * x1 + rnorm(n))        # far from zero, tiny spread
x4 <- -0.8 * x2 + rnorm(n, 0, 0.5)
x5 <- round(runif(n, 0, 5))                      # few distinct values
x6 <- rexp(n) * 100
w <- sample(c(1, 1, 1, 2, 3, 0.49, 1.5, 2.4, 0.5, 0), n, replace = TRUE)
w[c(5, 17)] <- NA
x1[c(3, 9, 22)] <- NA
x2[c(9, 40)] <- NA
x3[c(1, 50, 51)] <- NA
x5[c(12)] <- NA
x6[c(2, 3, 4, 5)] <- NA
d <- data.frame(x1, x2, x3, x4, x5, x6, w)
write.csv(d, "tests/data/correlation_data.csv", row.names = FALSE, na = "")
# The tests read the file, so the references come from the values as written.
d <- read.csv("tests/data/correlation_data.csv")
w <- d$w

rw <- ifelse(is.na(w) | w < 0.5, 0, floor(w + 0.5))
e <- d[rep(seq_len(n), rw), 1:6]
out <- NULL
for (scope in c("pairwise", "listwise")) {
  complete <- complete.cases(e)
  # complete.obs loses about 1e-10 on the column far from zero (its means
  # are formed in one pass); the same correlations of the complete cases by
  # the pairwise code agree with exact rational arithmetic to 1e-16.
  r <- if (scope == "pairwise") cor(e, use = "pairwise.complete.obs") else
    cor(e[complete, ], use = "pairwise.complete.obs")
  stopifnot(max(abs(r - cor(e, use = if (scope == "pairwise") "pairwise.complete.obs" else "complete.obs"))) < 1e-9)
  for (i in 1:5) for (j in (i + 1):6) {
    used <- if (scope == "pairwise") !is.na(e[, i]) & !is.na(e[, j]) else complete
    out <- rbind(out, data.frame(scope = scope, i = i - 1, j = j - 1, r = sprintf("%.17g", r[i, j]),
                                 n = sum(used)))
  }
}
write.csv(out, "tests/data/correlation_r.csv", row.names = FALSE, quote = FALSE)
