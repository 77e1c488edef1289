#pragma once
// The small enumerations of the settings record. They have a fixed int
// representation because a host may store any number in a field: values
// outside an enumeration are legal. Each value has a display text used by
// the diagnostic dumps (DisplayText returns " = unrecognized" for a value
// outside the enumeration, or "" for LogLinPriorType).
#include <string>

namespace MCBSN_850::BSNConst {

enum ModelTypes : int { OneSample = 0, Related = 1, Independent = 2, Correlation = 3, Regression = 4, Anova = 5, LogLinear = 6 };

enum DistTypes : int {
    Normal = 0, Binomial = 1, Poisson = 2, ChiSquare = 3, InverseChiSquare = 4, Gamma = 5, InverseGamma = 6,
    Jeffreys2 = 7, Jeffreys4 = 8, Diffuse = 9, Multinomial = 10, Nonparametric = 11
};

enum MissScope : int { MissingAnalysis = 0, MissingListwise = 1 };
enum MethodTypes : int { AQL = 0, MCA = 1 };
enum CompareTypes : int { CompareNull = 0, CompareFull = 1 };
enum AnalysTypes : int { Posterior = 0, BayesFactor = 1, Both = 2 };
enum FixType : int { FixedTotal = 0, FixedColumn = 1, FixedRow = 2 };
enum CorrTests : int { Pearson = 0, Spearman = 1, Kendall = 2 };
enum PriorTypes : int { Conjugate = 0, Reference = 1, Custom = 2 };
enum LogLinPriorType : int { LogLinConjugate = 0, LogLinDirichlet = 1, LogLinIntrinsic = 2 };
enum EstBFTypes : int { JZS = 0, Simple = 1, Fraction = 2, CustomBF = 3 };
enum VarTypes : int { Unspecified = 0, FrequencyWeight = 1, Factor = 2, Covariate = 3 };
enum RegrCompute : int { Siow = 0, Zellner = 1, Hyper = 2, Rouder = 3, Gonen = 4 };
enum OutputTypes : int {
    Output1SampleBinomial = 0, Output1SamplePoisson = 1, Output1SampleNormal = 2, Output2SampleRelated = 3,
    Output2SampleIndependent = 4, OutputCorrelation = 5, OutputRegression = 6, OutputAnova = 7, OutputLogLinear = 8
};

// The display texts, e.g. DisplayText(Jeffreys2) == " = Jeffreys 2".
std::string DisplayText(ModelTypes v);
std::string DisplayText(DistTypes v);
std::string DisplayText(MissScope v);
std::string DisplayText(MethodTypes v);
std::string DisplayText(CompareTypes v);
std::string DisplayText(AnalysTypes v);
std::string DisplayText(FixType v);
std::string DisplayText(CorrTests v);
std::string DisplayText(PriorTypes v);
std::string DisplayText(LogLinPriorType v);
std::string DisplayText(EstBFTypes v);
std::string DisplayText(VarTypes v);
std::string DisplayText(RegrCompute v);
std::string DisplayText(OutputTypes v);

// The bare names ("Jeffreys 2", "Binomial") a host may accept in place of the
// numbers; Names<E>() lists them by value. Empty for values without one.
template <class E>
std::string Name(E v) {
    const std::string text = DisplayText(v);
    return text.rfind(" = ", 0) == 0 && text != " = unrecognized" ? text.substr(3) : std::string();
}

} // namespace MCBSN_850::BSNConst
