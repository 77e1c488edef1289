# Reference numbers for the regression tests, computed independently with
# R's lm and plain matrix algebra. Run from this directory:
#   Rscript regr_reference.R > regr_reference.csv
d <- read.csv("regr_small.csv")
d$g <- factor(d$g, levels = 0:2)
d$h <- factor(d$h, levels = 0:3)
# Frequency weights are case counts: repeat the rows; regression weights
# are lm weights.
e <- d[rep(seq_len(nrow(d)), d$freq), ]
out <- function(name, value) for (i in seq_along(value)) cat(sprintf("%s,%d,%.17g\n", name, i - 1, value[i]))
cat("name,index,value\n")

# Model: y ~ g + x1 + x2 with weights; the last category of g is the
# reference (redundant) level, as the sweep in column order finds it.
e$g2 <- relevel(e$g, ref = "2")
fit <- lm(y ~ g2 + x1 + x2, data = e, weights = rw)
s <- summary(fit)
cf <- coef(fit)  # (Intercept), g20, g21, x1, x2
out("coef", c(cf[1], cf[2], cf[3], 0, cf[4], cf[5]))
out("r2", s$r.squared)
out("adjr2", s$adj.r.squared)
a <- anova(fit)
ssr <- sum(a$"Sum Sq"[1:3]); sse <- a$"Sum Sq"[4]; dfe <- a$Df[4]
out("ss", c(ssr, sse, ssr + sse))
out("df", c(sum(a$Df[1:3]), dfe, nrow(e) - 1))
fstat <- s$fstatistic
out("f", fstat[1])
out("fsig", pf(fstat[1], fstat[2], fstat[3], lower.tail = FALSE))

# Full model: add h; its R squared.
full <- lm(y ~ g2 + x1 + x2 + h, data = e, weights = rw)
out("r2full", summary(full)$r.squared)

# Design of the non-redundant parameters, original scale.
X <- model.matrix(~ g2 + x1 + x2, data = e)
W <- diag(e$rw)
yv <- e$y
N <- nrow(e)
k <- ncol(X)
XtX <- t(X) %*% W %*% X
Xty <- t(X) %*% W %*% yv
yty <- sum(e$rw * yv^2)
G <- solve(XtX)
bhat <- G %*% Xty
SSE <- sum(e$rw * (yv - X %*% bhat)^2)

# Reference prior.
nu <- N - k
s2 <- SSE / nu
out("ref_nu", nu)
out("ref_var", c(diag(G) * s2 * nu / (nu - 2)))
tq <- qt(0.975, nu)
out("ref_lower", c(bhat - tq * sqrt(diag(G) * s2)))
out("ref_sigma2", c(nu * s2 / (nu + 2), nu * s2 / (nu - 2), 2 * nu^2 * s2^2 / ((nu - 2)^2 * (nu - 4)),
                    nu * s2 / 2 / qgamma(0.975, nu / 2), nu * s2 / 2 / qgamma(0.025, nu / 2)))
# Prediction at g = 1, x1 = 1.5, x2 = 9 (row of the non-redundant design).
x0 <- c(1, 0, 1, 1.5, 9)
yhat <- sum(x0 * bhat)
sc2 <- (t(x0) %*% G %*% x0 + 1) * s2
out("ref_pred", c(yhat, sc2 * nu / (nu - 2), yhat - tq * sqrt(sc2), yhat + tq * sqrt(sc2)))
Qall <- t(bhat) %*% XtX %*% bhat
out("ref_fall", (Qall * nu) / (SSE * k))
# F test: x1 = 0.5 and x2 = -0.25 jointly.
L <- rbind(c(0, 0, 0, 1, 0), c(0, 0, 0, 0, 1))
dv <- L %*% bhat - c(0.5, -0.25)
Ft <- t(dv) %*% solve(L %*% G %*% t(L)) %*% dv / (2 * s2)
out("ref_ftest", c(Ft, pf(Ft, 2, nu, lower.tail = FALSE)))

# Conjugate prior: beta ~ N(beta0, sigma^2 V0), sigma^2 ~ IG(a0, b0), on the
# non-redundant parameters (V0's rows and columns of the redundant one
# dropped).
a0 <- 3; b0 <- 2
beta0 <- c(1, 0.5, -0.5, 0.7, -0.2)
V0full <- matrix(0, 6, 6)
packed <- c(4, 0.5, 2, 0.2, 0.1, 3, 0, 0, 0, 1, 0.3, 0, 0.1, 0, 1.5, 0.1, 0, 0, 0, 0.2, 0.8)
at <- 1
for (i in 1:6) for (j in 1:i) { V0full[i, j] <- packed[at]; V0full[j, i] <- packed[at]; at <- at + 1 }
keep <- c(1, 2, 3, 5, 6)  # parameter 3 (the last category of g) is redundant
V0 <- V0full[keep, keep]
P0 <- solve(V0)
Lam <- P0 + XtX
Sig <- solve(Lam)
m <- P0 %*% beta0 + Xty
bstar <- Sig %*% m
astar <- a0 + N / 2
bstarb <- b0 + (t(beta0) %*% P0 %*% beta0 + yty - t(bstar) %*% Lam %*% bstar) / 2
nuc <- 2 * a0 + N
s2c <- as.numeric(bstarb / astar)
out("conj_mean", bstar)
out("conj_var", diag(Sig) * s2c * nuc / (nuc - 2))
tqc <- qt(0.975, nuc)
out("conj_lower", bstar - tqc * sqrt(diag(Sig) * s2c))
out("conj_sigma2", c(bstarb / (astar + 1), bstarb / (astar - 1), bstarb^2 / ((astar - 1)^2 * (astar - 2)),
                     bstarb / qgamma(0.975, astar), bstarb / qgamma(0.025, astar)))
h <- t(x0) %*% Sig %*% x0 + 1
yc <- sum(x0 * bstar)
out("conj_pred", c(yc, h * bstarb / (astar - 1), yc - tqc * sqrt(h * s2c), yc + tqc * sqrt(h * s2c)))
out("conj_fall", (t(bstar) %*% Lam %*% bstar / bstarb) * astar / k)
dvc <- L %*% bstar - c(0.5, -0.25)
Fc <- t(dvc) %*% solve(L %*% Sig %*% t(L)) %*% dvc / (2 * s2c)
out("conj_ftest", c(Fc, pf(Fc, 2, nuc, lower.tail = FALSE)))
out("N", N)
