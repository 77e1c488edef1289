# Reference numbers for the scoring tests, computed with R's lm and predict.
# Run from this directory:
#   Rscript scoring_reference.R > scoring_reference.csv
# Under the reference prior the posterior predictive of a new response is a
# Student t with the residual degrees of freedom nu, centred at the lm
# prediction with squared scale s^2 (1 + x'(X'X)^-1 x): its limits are those
# of predict(interval = "prediction") and its variance (se.fit^2 + s^2) *
# nu / (nu - 2). The posterior covariance of the coefficients is
# vcov * nu / (nu - 2).
d <- read.csv("regr_small.csv")
nw <- read.csv("scoring_new.csv")
for (v in c("g", "h")) {
  d[[v]] <- factor(d[[v]], levels = sort(unique(d[[v]])))
  nw[[v]] <- factor(nw[[v]], levels = levels(d[[v]]))
}
# Frequency weights are case counts: repeat the rows; regression weights
# are lm weights.
e <- d[rep(seq_len(nrow(d)), d$freq), ]
out <- function(name, value) for (i in seq_along(value)) cat(sprintf("%s,%d,%.17g\n", name, i - 1, value[i]))
cat("name,index,value\n")

model <- function(prefix, formula) {
  fit <- lm(formula, data = e, weights = rw)
  nu <- fit$df.residual
  s2 <- sum(fit$weights * fit$residuals^2) / nu
  out(paste0(prefix, "_fit"), predict(fit, newdata = d))
  p <- predict(fit, newdata = nw, interval = "prediction", level = 0.95, se.fit = TRUE)
  out(paste0(prefix, "_new_fit"), p$fit[, "fit"])
  out(paste0(prefix, "_new_lower"), p$fit[, "lwr"])
  out(paste0(prefix, "_new_upper"), p$fit[, "upr"])
  out(paste0(prefix, "_new_var"), (p$se.fit^2 + s2) * nu / (nu - 2))
  out(paste0(prefix, "_nu"), nu)
  V <- vcov(fit) * nu / (nu - 2)
  out(paste0(prefix, "_cov"), V[lower.tri(V, diag = TRUE)][order(row(V)[lower.tri(V, diag = TRUE)])])
}
# The last category of each factor is the redundant one beside the intercept.
e$g2 <- relevel(e$g, ref = "2"); d$g2 <- relevel(d$g, ref = "2"); nw$g2 <- relevel(nw$g, ref = "2")
e$h3 <- relevel(e$h, ref = "3"); d$h3 <- relevel(d$h, ref = "3"); nw$h3 <- relevel(nw$h, ref = "3")
model("A", y ~ g2 + x1 + x2)  # coefficients: (Intercept), g0, g1, x1, x2
model("B", y ~ h3 + x1)       # (Intercept), h0, h1, h2, x1
model("C", y ~ g - 1)         # one mean per category of g
