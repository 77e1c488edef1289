# Reference values of the classical two-sample statistics for
# independent_ttest_data.csv: cases of group 0 and group 1 only (other
# group values and missing ones are not in either group), each row repeated
# `freq` times (frequency weights as replication), missing values dropped per
# variable. t tests of the second group (1) against the first (0), pooled and
# Welch, as R's t.test gives them. Writes independent_ttest_expected.csv.
d <- read.csv("independent_ttest_data.csv", na.strings = "NA")
d <- d[!is.na(d$group) & d$group %in% c(0, 1), ]
d <- d[rep(seq_len(nrow(d)), d$freq), ]
out <- NULL
for (v in c("x", "y")) {
  g0 <- d[[v]][d$group == 0]; g0 <- g0[!is.na(g0)]
  g1 <- d[[v]][d$group == 1]; g1 <- g1[!is.na(g1)]
  p <- t.test(g1, g0, var.equal = TRUE)
  w <- t.test(g1, g0, var.equal = FALSE)
  out <- rbind(out, data.frame(variable = v, n0 = length(g0), n1 = length(g1),
    mean0 = mean(g0), mean1 = mean(g1), sd0 = sd(g0), sd1 = sd(g1),
    diff = mean(g1) - mean(g0),
    t_pooled = unname(p$statistic), df_pooled = unname(p$parameter), p_pooled = p$p.value,
    se_pooled = unname(p$stderr),
    t_welch = unname(w$statistic), df_welch = unname(w$parameter), p_welch = w$p.value,
    se_welch = unname(w$stderr)))
}
write.csv(format(out, digits = 17), "independent_ttest_expected.csv", row.names = FALSE, quote = FALSE)
