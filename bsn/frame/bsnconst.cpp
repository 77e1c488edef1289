#include "bsn/frame/bsnconst.h"

#include <array>
#include <cstddef>

namespace MCBSN_850::BSNConst {

namespace {

template <std::size_t N>
std::string lookup(const std::array<const char*, N>& texts, int v, const char* otherwise = " = unrecognized") {
    return v >= 0 && static_cast<std::size_t>(v) < N ? texts[static_cast<std::size_t>(v)] : otherwise;
}

} // namespace

std::string DisplayText(ModelTypes v) {
    static constexpr std::array<const char*, 7> t{" = One-Sample", " = Related",    " = Independent", " = Correlation",
                                                  " = Regression", " = Anova", " = LogLinear"};
    return lookup(t, v);
}

std::string DisplayText(DistTypes v) {
    static constexpr std::array<const char*, 12> t{
        " = Normal",        " = Binomial",   " = Poisson",    " = Chi-Square", " = Inverse Chi-Square", " = Gamma",
        " = Inverse Gamma", " = Jeffreys 2", " = Jeffreys 4", " = Diffuse",    " = Multinomial",        " = Nonparametric"};
    return lookup(t, v);
}

std::string DisplayText(MissScope v) {
    static constexpr std::array<const char*, 2> t{" = Missing Analysis", " = Missing Listwise"};
    return lookup(t, v);
}

std::string DisplayText(MethodTypes v) {
    static constexpr std::array<const char*, 2> t{" = AQL", " = MCA"};
    return lookup(t, v);
}

std::string DisplayText(CompareTypes v) {
    static constexpr std::array<const char*, 2> t{" = Null", " = Full"};
    return lookup(t, v);
}

std::string DisplayText(AnalysTypes v) {
    static constexpr std::array<const char*, 3> t{" = Posterior", " = Bayes Factor", " = Both"};
    return lookup(t, v);
}

std::string DisplayText(FixType v) {
    static constexpr std::array<const char*, 3> t{" = Fixed Total", " = Fixed Column", " = Fixed Row"};
    return lookup(t, v);
}

std::string DisplayText(CorrTests v) {
    static constexpr std::array<const char*, 3> t{" = Pearson", " = Spearman", " = Kendall"};
    return lookup(t, v);
}

std::string DisplayText(PriorTypes v) {
    static constexpr std::array<const char*, 3> t{" = Conjugate", " = Reference", " = Custom"};
    return lookup(t, v);
}

std::string DisplayText(LogLinPriorType v) {
    // Values outside this enumeration display nothing at all.
    static constexpr std::array<const char*, 3> t{" = Conjugate", " = Dirichlet", " = Intrinsic"};
    return lookup(t, v, "");
}

std::string DisplayText(EstBFTypes v) {
    static constexpr std::array<const char*, 4> t{" = JZS", " = Simple", " = Fraction", " = Custom"};
    return lookup(t, v);
}

std::string DisplayText(VarTypes v) {
    static constexpr std::array<const char*, 4> t{" = unspecified", " = Frequency Weight", " = Factor", " = Covariate"};
    return lookup(t, v);
}

std::string DisplayText(RegrCompute v) {
    static constexpr std::array<const char*, 5> t{" = Siow", " = Zellner", " = Hyper", " = Rouder", " = Gonen"};
    return lookup(t, v);
}

std::string DisplayText(OutputTypes v) {
    // "Correllation" is the established spelling of this label and is kept.
    static constexpr std::array<const char*, 9> t{
        " = Output 1 Sample Binomial",    " = Output 1 Sample Poisson", " = Output 1 Sample Normal",
        " = Output 2 Sample Related",     " = Output 2 Sample Independent", " = Output Correllation",
        " = Output Regression",           " = Output Anova",            " = Output LogLinear"};
    return lookup(t, v);
}

} // namespace MCBSN_850::BSNConst
