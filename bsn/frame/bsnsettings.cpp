#include "bsn/frame/bsnsettings.h"

#include "bsn/frame/bsncomponentdisplay.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using namespace BSNConst;

void BSNSettings::SetModelType(ModelTypes type, bool adjust) {
    m_modelType = type;
    if (!adjust) return;
    switch (type) {
    case OneSample:
    case Related:
        m_missScope = MissingAnalysis;
        m_priorType = Conjugate;
        break;
    case Independent:
        m_missScope = MissingListwise;
        m_priorType = Conjugate;
        m_regrCompType = Rouder;
        break;
    case Correlation:
        m_missScope = MissingAnalysis;
        m_priorType = Conjugate;
        // Correlation factors are integrated more loosely by default; a
        // tolerance the user chose is kept.
        if (m_tolValue == 1e-06) m_tolValue = 0.0001;
        break;
    case Regression:
    case Anova:
        m_missScope = MissingListwise;
        m_priorType = Reference;
        break;
    case LogLinear:
        m_missScope = MissingListwise;
        m_priorType = Conjugate;
        break;
    default:
        break;
    }
}

bool BSNSettings::SetDependVar(int index) {
    if (index < 0) return false;
    m_dependentVar = index;
    return true;
}

bool BSNSettings::SetFrequencyWeightVar(int index) {
    if (index < 0) return false;
    m_frequencyWeightVar = index;
    return true;
}

bool BSNSettings::SetRegrWeightVar(int index) {
    if (index < 0) return false;
    m_regrWeightVar = index;
    return true;
}

bool BSNSettings::SetGroupVar(int index) {
    if (index < 0) return false;
    m_groupVar = index;
    return true;
}

namespace {
bool validSizes(const std::vector<int>& sizes, std::size_t nFactors) {
    if (sizes.size() != nFactors) return false;
    for (int s : sizes)
        if (s <= 0) return false;
    return true;
}
} // namespace

bool BSNSettings::SetFactorNCategs(const std::vector<int>& sizes) {
    if (!validSizes(sizes, m_factors.size())) return false;
    m_factorSizes = sizes;
    return true;
}

bool BSNSettings::SetFullModFactorNCategs(const std::vector<int>& sizes) {
    if (!validSizes(sizes, m_fullModFactors.size())) return false;
    m_fullModFactorSizes = sizes;
    return true;
}

bool BSNSettings::Set2ndRelatedList(const std::vector<int>& v) {
    if (v.size() != m_covariates.size()) return false;
    m_2ndRelatedList = v;
    return true;
}

void BSNSettings::SetRegrCompType(RegrCompute v) {
    m_regrCompType = v;
    if (!MCCommon_850::MCMV::IsMissing(m_regrComPar)) return;
    if (v == Hyper) m_regrComPar = 3.0;
    if (v == Rouder) m_regrComPar = 1.0;
}

} // namespace MCBSN_850

// ---------------------------------------------------------------------------
// Validation

namespace MCBSN_850 {

namespace {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;

MCStatus error(int code) { return MCStatus(code, false); }

MCStatus errorAt(int code, int datum) {
    MCStatus s(code, false);
    s.SetDiscreteDatum(0, datum);
    return s;
}

bool given(double v) { return !MCMV::IsMissing(v); }

void padTo(std::vector<double>& v, std::size_t n, double value) {
    if (v.size() < n) v.resize(n, value);
}

// Binomial prior pairs are both positive or both zero (a zero pair is the
// improper Haldane prior). Returns the first position where `first` is
// negative, or zero while its partner is not; -1 when all pairs are fine.
int badBinomialPair(const std::vector<double>& first, const std::vector<double>& second, std::size_t n) {
    for (std::size_t i = 0; i < n && i < first.size() && i < second.size(); ++i) {
        const double a = first[i], b = second[i];
        if (a < 0.0 || (a == 0.0 && b != 0.0)) return static_cast<int>(i);
    }
    return -1;
}

// Gamma prior parameters must be strictly positive (missing is not).
int firstNotPositive(const std::vector<double>& v, std::size_t n) {
    for (std::size_t i = 0; i < n && i < v.size(); ++i)
        if (!given(v[i]) || v[i] <= 0.0) return static_cast<int>(i);
    return -1;
}

bool contains(const std::vector<int>& list, int value) {
    for (int x : list)
        if (x == value) return true;
    return false;
}

} // namespace

// The binomial and Poisson tests share this preamble: the null priors default
// to (2, 2) for every test variable, and a Bayes factor needs an alternative
// prior for each; the error names the first test variable without one.
MCStatus BSNSettings::preparePriorLists(const std::vector<int>& testVars) {
    const std::size_t n = testVars.size();
    padTo(m_nullPrior1s, n, 2.0);
    padTo(m_nullPrior2s, n, 2.0);
    if (m_analysType == Posterior) return {};
    if (m_alterPrior1s.size() < n) return errorAt(410018, testVars[m_alterPrior1s.size()]);
    if (m_alterPrior2s.size() < n) return errorAt(410018, testVars[m_alterPrior2s.size()]);
    return {};
}

MCStatus BSNSettings::IsValidSettings() {
    const std::size_t nFactors = m_factors.size();
    const std::size_t nCovariates = m_covariates.size();

    switch (m_modelType) {
    case OneSample:
        if (m_testDistType == Binomial) {
            if (nFactors == 0 || nFactors != m_factorSizes.size()) return error(410031);
            if (const MCStatus s = preparePriorLists(m_factors); !s.IsOK()) return s;
            if (m_analysType == Posterior) return {};
            if (int i = badBinomialPair(m_alterPrior1s, m_alterPrior2s, nFactors); i >= 0) return errorAt(410018, i);
            if (int i = badBinomialPair(m_alterPrior2s, m_alterPrior1s, nFactors); i >= 0) return errorAt(410018, i);
            if (int i = badBinomialPair(m_nullPrior1s, m_nullPrior2s, nFactors); i >= 0) return errorAt(410019, i);
            if (int i = badBinomialPair(m_nullPrior2s, m_nullPrior1s, nFactors); i >= 0) return errorAt(410019, i);
            return {};
        }
        if (m_testDistType == Poisson) {
            if (nCovariates == 0) return error(410039);
            if (const MCStatus s = preparePriorLists(m_covariates); !s.IsOK()) return s;
            if (m_analysType == Posterior) return {};
            if (int i = firstNotPositive(m_alterPrior1s, nCovariates); i >= 0) return errorAt(410018, i);
            if (int i = firstNotPositive(m_alterPrior2s, nCovariates); i >= 0) return errorAt(410018, i);
            if (int i = firstNotPositive(m_nullPrior1s, nCovariates); i >= 0) return errorAt(410019, i);
            if (int i = firstNotPositive(m_nullPrior2s, nCovariates); i >= 0) return errorAt(410019, i);
            return {};
        }
        if (m_testDistType == Normal && nCovariates == 0) return error(410039);
        return {};

    case Related:
        if (nCovariates == 0 || m_2ndRelatedList.size() != nCovariates) return error(410039);
        return {};

    case Independent:
        if (nCovariates == 0) return error(410039);
        if (m_analysType != BayesFactor && m_meanDistType == Normal) {
            if (!given(m_meanDistParam1) || !given(m_meanDistParam2) || !given(m_meanDistParam3) ||
                !given(m_meanDistParam4))
                return error(410019);
            if (m_dataVarVals.size() <= 1 || !given(m_dataVarVals[0]) || !given(m_dataVarVals[1]) ||
                m_dataVarVals[0] <= 0.0 || m_dataVarVals[1] <= 0.0)
                return error(410002);
        }
        if (m_dataVarVals.empty() && m_priorDistType == InverseChiSquare) {
            if (!given(m_priorDistParam1) || !given(m_priorDistParam2) || m_priorDistParam1 <= 0.0 ||
                m_priorDistParam2 <= 0.0)
                return error(410019);
        }
        if (m_groupVar < 0) return error(410040);
        return {};

    case Correlation: {
        if (nCovariates <= 1) return error(410004);
        if (m_maxNPlots > 50) return errorAt(410019, m_maxNPlots);
        if (!(m_nullValue > -1.0 && m_nullValue < 1.0)) {
            MCStatus s = error(410019);
            s.SetScaleDatum(0, m_nullValue);
            return s;
        }
        return {};
    }

    case Regression: {
        if (m_dependentVar == -1) return error(410034);
        if (nFactors == 0 && nCovariates == 0) return error(410035);
        if (m_analysType != Posterior && m_compareType == CompareFull &&
            (m_fullModFactors.size() < nFactors || m_fullModCovariates.size() < nCovariates))
            return error(410015);
        if (m_analysType != BayesFactor && m_priorType == Conjugate) {
            if (!given(m_priorShape) || !given(m_priorScale)) return error(410019);
            std::size_t nParams = 1 + nCovariates;
            for (int size : m_factorSizes) nParams += static_cast<std::size_t>(size > 0 ? size : 0);
            if (m_priorMeans.size() != nParams) return error(410020);
        }
        for (int f : m_plotFactors)
            if (!contains(m_factors, f)) return error(410032);
        for (int c : m_plotCovars)
            if (!contains(m_covariates, c)) return error(410033);
        if (!m_regressors.empty() && m_regressors.size() != nCovariates + nFactors) {
            m_warnings.AddWarning(MCStatus(410022, true), nullptr);
            m_regressors.clear();
        }
        return {};
    }

    case Anova: {
        if (m_dependentVar < 0) return error(410034);
        if (nFactors != 1 || m_factors[0] < 0) return error(410035);
        const int nCategories = m_factorSizes.empty() ? 0 : m_factorSizes[0];
        if (m_analysType != BayesFactor && m_priorType == Conjugate) {
            if (!given(m_priorShape) || !given(m_priorScale)) return error(410019);
            if (m_priorMeans.size() != static_cast<std::size_t>(nCategories)) return error(410020);
        }
        for (int category : m_plotFactorCats)
            if (category < 0 || category > nCategories - 1) return errorAt(410032, category);
        return {};
    }

    case LogLinear:
        if (nFactors != 2 || m_factors[0] < 0 || m_factors[1] < 0 || m_factors[0] == m_factors[1])
            return errorAt(410049, static_cast<int>(nFactors));
        return {};

    default:
        // Model types beyond those of this library are the host's business.
        return {};
    }
}

// ---------------------------------------------------------------------------
// Diagnostic dump

void BSNSettings::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    using D = BSNComponentDisplay;
    StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "BSNSettings display start");
    D::DisplayC("Model Type", m_modelType);
    DisplayI("Number of cases", m_nCases);
    DisplayI("Max Iterations", m_maxIterations);
    DisplayI("Dependent Variable", m_dependentVar);
    DisplayI("Frequency Weight", m_frequencyWeightVar);
    DisplayI("Regression Weight", m_regrWeightVar);
    DisplayIV("Factors", m_factors);
    DisplayIV("Factor sizes", m_factorSizes);
    DisplayIV("Covariates", m_covariates);
    DisplayIV("Full Model Factors", m_fullModFactors);
    DisplayIV("Full Model Factor sizes", m_fullModFactorSizes);
    DisplayIV("Full Model Covariates", m_fullModCovariates);
    DisplayIV("Second list for Related", m_2ndRelatedList);
    D::DisplayC("Missing Scope", m_missScope);
    DisplayD("CI Level", m_ciLevel);
    D::DisplayC("Method Type", m_methodType);
    DisplayL("Random Seed", static_cast<long>(m_randomSeed));
    DisplayD("Tolerance", m_tolValue);
    DisplayI("Monte Carlo Samples", m_mcSamples);
    D::DisplayC("Test Distribution Type", m_testDistType);
    D::DisplayC("Analysis Type", m_analysType);
    DisplayDV("Data Variance Values", m_dataVarVals);
    D::DisplayC("Estimation BF Type", m_estBFType);
    DisplayD("Null Value", m_nullValue);
    DisplayDV("Null Values", m_nullValues);
    DisplayDV("Alter G Values", m_alterGValues);
    DisplayDV("Null Prior Parameter 1", m_nullPrior1s);
    DisplayDV("Null Prior Parameter 2", m_nullPrior2s);
    DisplayDV("Alter Prior Parameter 1", m_alterPrior1s);
    DisplayDV("Alter Prior Parameter 2", m_alterPrior2s);
    D::DisplayC("Prior Type", m_priorType);
    DisplayD("Prior Parameter 1", m_priorParam1);
    DisplayD("Prior Parameter 2", m_priorParam2);
    D::DisplayC("Prior Distribution Type", m_priorDistType);
    DisplayD("Prior Distribution Parameter 1", m_priorDistParam1);
    DisplayD("Prior Distribution Parameter 2", m_priorDistParam2);
    D::DisplayC("Mean Distribution Type", m_meanDistType);
    DisplayD("Mean Distribution Parameter 1", m_meanDistParam1);
    DisplayD("Mean Distribution Parameter 2", m_meanDistParam2);
    DisplayD("Mean Distribution Parameter 3", m_meanDistParam3);
    DisplayD("Mean Distribution Parameter 4", m_meanDistParam4);
    DisplayD("Second Gonen Parameter", m_secondGonenPar);
    DisplayD("Kappa Value", m_kappaValue);
    DisplayD("Shape Value", m_priorShape);
    DisplayD("Scale Value", m_priorScale);
    DisplayDV("Mean Values", m_priorMeans);
    DisplayDV("Covariance Matrix", m_priorCovMatrix);
    DisplayDV("Regressor Values", m_regressors);
    D::DisplayC("Correlation Test Type", m_corrTest);
    D::DisplayC("Regression Computation Type", m_regrCompType);
    DisplayD("Regression Computation Parameter", m_regrComPar);
    DisplayD("Regression Precision", m_regrPrecision);
    D::DisplayC("Compare Type", m_compareType);
    DisplayI("N of plot points", m_nPlotPoints);
    DisplayD("Level for plot domain", m_plotDomainLevel);
    DisplayIV("Plot factors", m_plotFactors);
    DisplayIV("Plot covariates", m_plotCovars);
    DisplayIV("Plot factor categories", m_plotFactorCats);
    DisplayB("Indicator of computing variance in scoring", m_computeVarianceInScoring);
    DisplayDV("LogLinear Shape params", m_logLinShapes);
    D::DisplayC("Prior type", m_logLinPriorType);
    D::DisplayC("Model type", m_logLinModel);
    D::DisplayC("Fix type", m_fixType);
    DisplayI("T for intrinsic priors", m_logLinIntrinsicT);
    DisplayI("Max number of threads", m_maxThreadNum);
    DisplayI("Max memory cache limit", m_memCacheKB);
    DisplayI("Progress Report Frequency", m_progressFrequency);
    MCDisplay_850::DisplayText(0, "End of display BSNSettings object");
}

} // namespace MCBSN_850
