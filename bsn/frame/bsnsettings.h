#pragma once
// BSNSettings: the one configuration record of an analysis. A plain value
// type: the host fills it through setters, may check it with
// IsValidSettings(), and hands it to BSNComponent, which keeps a copy.
// Parameters the user did not give hold the system-missing value.
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnconst.h"
#include "bsn/regression/bayesftest.h"
#include "platform/common/mcmv.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mcquerycancel.h"
#include "platform/progress/progress.h"
#include "platform/threads/mcthread.h"

namespace MCBSN_850 {

class BSNSettings {
public:
    BSNSettings() = default;

    // --- getters, in declaration order of the fields -----------------------
    BSNConst::ModelTypes GetModelType() const { return m_modelType; }
    int GetNCases() const { return m_nCases; }
    int GetMaxIterations() const { return m_maxIterations; }
    int GetDependentVar() const { return m_dependentVar; }
    int GetFrequencyWeightVar() const { return m_frequencyWeightVar; }
    int GetRegrWeightVar() const { return m_regrWeightVar; }
    const std::vector<int>& GetFactors() const { return m_factors; }
    const std::vector<int>& GetFactorSizes() const { return m_factorSizes; }
    const std::vector<int>& GetCovariates() const { return m_covariates; }
    const std::vector<int>& GetFullModFactors() const { return m_fullModFactors; }
    const std::vector<int>& GetFullModFactorSizes() const { return m_fullModFactorSizes; }
    const std::vector<int>& GetFullModCovariates() const { return m_fullModCovariates; }
    const std::vector<int>& Get2ndRelatedList() const { return m_2ndRelatedList; }
    int GetGroupVar() const { return m_groupVar; }
    BSNConst::MissScope GetMissScope() const { return m_missScope; }
    double GetCILevel() const { return m_ciLevel; }
    BSNConst::MethodTypes GetMethodType() const { return m_methodType; }
    unsigned long GetRandomSeed() const { return m_randomSeed; }
    double GetTolValue() const { return m_tolValue; }
    int GetMCSamples() const { return m_mcSamples; }
    BSNConst::DistTypes GetTestDistType() const { return m_testDistType; }
    BSNConst::AnalysTypes GetAnalysType() const { return m_analysType; }
    const std::vector<double>& GetDataVarVals() const { return m_dataVarVals; }
    bool GetEqualDataVar() const { return m_equalDataVar; }
    BSNConst::EstBFTypes GetEstBFType() const { return m_estBFType; }
    double GetNullValue() const { return m_nullValue; }
    const std::vector<double>& GetNullValues() const { return m_nullValues; }
    const std::vector<double>& GetNullPrior1s() const { return m_nullPrior1s; }
    const std::vector<double>& GetNullPrior2s() const { return m_nullPrior2s; }
    const std::vector<double>& GetAlterGValues() const { return m_alterGValues; }
    const std::vector<double>& GetAlterPrior1s() const { return m_alterPrior1s; }
    const std::vector<double>& GetAlterPrior2s() const { return m_alterPrior2s; }
    BSNConst::PriorTypes GetPriorType() const { return m_priorType; }
    double GetPriorParam1() const { return m_priorParam1; }
    double GetPriorParam2() const { return m_priorParam2; }
    BSNConst::DistTypes GetPriorDistType() const { return m_priorDistType; }
    double GetPriorDistParam1() const { return m_priorDistParam1; }
    double GetPriorDistParam2() const { return m_priorDistParam2; }
    BSNConst::DistTypes GetMeanDistType() const { return m_meanDistType; }
    double GetMeanDistParam1() const { return m_meanDistParam1; }
    double GetMeanDistParam2() const { return m_meanDistParam2; }
    double GetMeanDistParam3() const { return m_meanDistParam3; }
    double GetMeanDistParam4() const { return m_meanDistParam4; }
    double GetKappaValue() const { return m_kappaValue; }
    double GetPriorShape() const { return m_priorShape; }
    double GetPriorScale() const { return m_priorScale; }
    const std::vector<double>& GetPriorMeans() const { return m_priorMeans; }
    const std::vector<double>& GetPriorCovMatrix() const { return m_priorCovMatrix; }
    BSNConst::CorrTests GetCorrTest() const { return m_corrTest; }
    double GetCorrCValue() const { return m_corrCValue; }
    long GetPosteriorSamples() const { return m_posteriorSamples; }
    BSNConst::RegrCompute GetRegrCompType() const { return m_regrCompType; }
    double GetRegrComPar() const { return m_regrComPar; }
    double GetSecondGonenPar() const { return m_secondGonenPar; }
    double GetRegrPrecision() const { return m_regrPrecision; }
    BSNConst::CompareTypes GetCompareType() const { return m_compareType; }
    const std::vector<double>& GetRegressors() const { return m_regressors; }
    const std::vector<int>& GetPlotFactors() const { return m_plotFactors; }
    const std::vector<int>& GetPlotCovars() const { return m_plotCovars; }
    const std::vector<int>& GetPlotFactorCats() const { return m_plotFactorCats; }
    int GetMaxNPlotCategories() const { return m_maxNPlotCategories; }
    int GetMaxNPlots() const { return m_maxNPlots; }
    int GetNPlotPoints() const { return m_nPlotPoints; }
    double GetPlotDomainLevel() const { return m_plotDomainLevel; }
    const std::vector<BayesFTest>& GetFTests() const { return m_fTests; }
    BSNConst::LogLinPriorType GetLogLinPriorType() const { return m_logLinPriorType; }
    BSNConst::DistTypes GetLogLinModel() const { return m_logLinModel; }
    BSNConst::FixType GetFixType() const { return m_fixType; }
    const std::vector<double>& GetLogLinShapes() const { return m_logLinShapes; }
    const std::vector<double>& GetLambdas() const { return m_lambdas; }
    int GetLogLinIntrinsicT() const { return m_logLinIntrinsicT; }
    bool IsComputeVarianceInScoring() const { return m_computeVarianceInScoring; }
    MCCommon_850::ProgressListener* GetProgressListener() const { return m_progressListener; }
    int GetProgressFrequency() const { return m_progressFrequency; }
    MCCommon_850::MCQueryCancel* GetCancelPointer() const { return m_cancelPointer; }
    int GetMaxThreadNum() const { return m_maxThreadNum; }
    int GetNPairsPerTask() const { return m_nPairsPerTask; }
    int GetMemCacheKB() const { return m_memCacheKB; }
    MCThread_850::IMCThreadFactory* GetThreadFactory() const { return m_threadFactory; }
    MCThread_850::MCThreadIterFactory* GetThreadIterFactory() const { return m_threadIterFactory; }
    MCCommon_850::MCWarnings& GetWarningMessages() { return m_warnings; }
    const MCCommon_850::MCWarnings& GetWarningMessages() const { return m_warnings; }

    // --- setters ------------------------------------------------------------
    // With adjust, also resets the defaults that depend on the model type
    // (missing scope, prior type, and a few method settings).
    void SetModelType(BSNConst::ModelTypes type, bool adjust);
    void SetNCases(int n) { m_nCases = n < 0 ? 0 : n; }
    void SetMaxIterations(int n) { m_maxIterations = n; }
    // Variable-index setters refuse a negative index (false, unchanged).
    bool SetDependVar(int index);
    bool SetFrequencyWeightVar(int index);
    bool SetRegrWeightVar(int index);
    bool SetGroupVar(int index);
    void SetFactors(const std::vector<int>& v) { m_factors = v; }
    // Accepted only with one entry per factor, each above 0.
    bool SetFactorNCategs(const std::vector<int>& sizes);
    void SetCovariates(const std::vector<int>& v) { m_covariates = v; }
    void SetFullModFactors(const std::vector<int>& v) { m_fullModFactors = v; }
    bool SetFullModFactorNCategs(const std::vector<int>& sizes);
    void SetFullModCovariates(const std::vector<int>& v) { m_fullModCovariates = v; }
    // Accepted only with one entry per covariate.
    bool Set2ndRelatedList(const std::vector<int>& v);
    void SetMissScope(BSNConst::MissScope v) { m_missScope = v; }
    void SetCILevel(double v) { m_ciLevel = v; }
    void SetMethodType(BSNConst::MethodTypes v) { m_methodType = v; }
    void SetRandomSeed(unsigned long v) { m_randomSeed = v; }
    void SetTolValue(double v) { m_tolValue = v; }
    void SetMCSamples(int v) { m_mcSamples = v; }
    void SetTestDistType(BSNConst::DistTypes v) { m_testDistType = v; }
    void SetAnalysType(BSNConst::AnalysTypes v) { m_analysType = v; }
    void SetDataVarVals(const std::vector<double>& v) { m_dataVarVals = v; }
    void SetEqualDataVar(bool v) { m_equalDataVar = v; }
    void SetEstBFType(BSNConst::EstBFTypes v) { m_estBFType = v; }
    void SetNullValue(double v) { m_nullValue = v; }
    void SetNullValues(const std::vector<double>& v) { m_nullValues = v; }
    void SetNullPrior1s(const std::vector<double>& v) { m_nullPrior1s = v; }
    void SetNullPrior2s(const std::vector<double>& v) { m_nullPrior2s = v; }
    void SetAlterGValues(const std::vector<double>& v) { m_alterGValues = v; }
    void SetAlterPrior1s(const std::vector<double>& v) { m_alterPrior1s = v; }
    void SetAlterPrior2s(const std::vector<double>& v) { m_alterPrior2s = v; }
    void SetPriorType(BSNConst::PriorTypes v) { m_priorType = v; }
    void SetPriorParam1(double v) { m_priorParam1 = v; }
    void SetPriorParam2(double v) { m_priorParam2 = v; }
    void SetPriorDistType(BSNConst::DistTypes v) { m_priorDistType = v; }
    void SetPriorDistParam1(double v) { m_priorDistParam1 = v; }
    void SetPriorDistParam2(double v) { m_priorDistParam2 = v; }
    void SetMeanDistType(BSNConst::DistTypes v) { m_meanDistType = v; }
    void SetMeanDistParam1(double v) { m_meanDistParam1 = v; }
    void SetMeanDistParam2(double v) { m_meanDistParam2 = v; }
    void SetMeanDistParam3(double v) { m_meanDistParam3 = v; }
    void SetMeanDistParam4(double v) { m_meanDistParam4 = v; }
    void SetKappaValue(double v) { m_kappaValue = v; }
    void SetPriorShape(double v) { m_priorShape = v; }
    void SetPriorScale(double v) { m_priorScale = v; }
    void SetPriorMeans(const std::vector<double>& v) { m_priorMeans = v; }
    void SetPriorCovMatrix(const std::vector<double>& v) { m_priorCovMatrix = v; }
    void SetCorrTest(BSNConst::CorrTests v) { m_corrTest = v; }
    void SetCorrCValue(double v) { m_corrCValue = v; }
    void SetPosteriorSamples(long v) { m_posteriorSamples = v; }
    // Hyper and Rouder get their customary parameter (3 and 1) when none was given.
    void SetRegrCompType(BSNConst::RegrCompute v);
    void SetRegrComPar(double v) { m_regrComPar = v; }
    void SetSecondGonenPar(double v) {
        if (v > 0.0) m_secondGonenPar = v;
    }
    void SetRegrPrecision(double v) { m_regrPrecision = v; }
    void SetCompareType(BSNConst::CompareTypes v) { m_compareType = v; }
    void SetRegressors(const std::vector<double>& v) { m_regressors = v; }
    void SetPlotFactors(const std::vector<int>& v) { m_plotFactors = v; }
    void SetPlotCovars(const std::vector<int>& v) { m_plotCovars = v; }
    void SetPlotFactorCats(const std::vector<int>& v) { m_plotFactorCats = v; }
    void SetMaxNPlotCategories(int v) { m_maxNPlotCategories = v; }
    void SetMaxNPlots(int v) { m_maxNPlots = v; }
    void SetNPlotPoints(int v) { m_nPlotPoints = v; }
    void SetPlotDomainLevel(double v) { m_plotDomainLevel = v; }
    void SetFTests(const std::vector<BayesFTest>& v) { m_fTests = v; }
    void SetLogLinPriorType(BSNConst::LogLinPriorType v) { m_logLinPriorType = v; }
    void SetLogLinModel(BSNConst::DistTypes v) { m_logLinModel = v; }
    void SetFixType(BSNConst::FixType v) { m_fixType = v; }
    void SetLogLinShapes(const std::vector<double>& v) { m_logLinShapes = v; }
    void SetLambdas(const std::vector<double>& v) { m_lambdas = v; }
    void SetLogLinIntrinsicT(int v) { m_logLinIntrinsicT = v; }
    void SetComputeVarianceInScoring(bool v) { m_computeVarianceInScoring = v; }
    void SetProgressListener(MCCommon_850::ProgressListener* p) { m_progressListener = p; }
    void SetProgressFrequency(int v) {
        if (v > 0) m_progressFrequency = v;
    }
    void SetCancelPointer(MCCommon_850::MCQueryCancel* p) { m_cancelPointer = p; }
    void SetMaxThreadNum(int v) { m_maxThreadNum = v; }
    void SetNPairsPerTask(int v) { m_nPairsPerTask = v; }
    void SetMemCacheKB(int v) { m_memCacheKB = v; }
    void SetThreadFactory(MCThread_850::IMCThreadFactory* p) { m_threadFactory = p; }
    void SetThreadIterFactory(MCThread_850::MCThreadIterFactory* p) { m_threadIterFactory = p; }

    // Checks that the record describes a runnable analysis of its model type;
    // returns the first error, or the default status. May pad prior lists,
    // drop unusable regressor values and add warnings to GetWarningMessages().
    MCCommon_850::MCStatus IsValidSettings();

    void Display(std::ostream& os) const;

private:
    MCCommon_850::MCStatus preparePriorLists(const std::vector<int>& testVars);

    static constexpr double kMissing = MCCommon_850::MCMV::Missing();

    BSNConst::ModelTypes m_modelType = BSNConst::OneSample;
    int m_nCases = 0;
    int m_maxIterations = 2000;
    int m_dependentVar = -1;
    int m_frequencyWeightVar = -1;
    int m_regrWeightVar = -1;
    std::vector<int> m_factors;
    std::vector<int> m_factorSizes;
    std::vector<int> m_covariates;
    std::vector<int> m_fullModFactors;
    std::vector<int> m_fullModFactorSizes;
    std::vector<int> m_fullModCovariates;
    std::vector<int> m_2ndRelatedList;
    int m_groupVar = -1;
    BSNConst::MissScope m_missScope = BSNConst::MissingAnalysis;
    double m_ciLevel = 95.0;
    BSNConst::MethodTypes m_methodType = BSNConst::AQL;
    unsigned long m_randomSeed = 2000000;
    double m_tolValue = 1e-06;
    int m_mcSamples = 10000;
    BSNConst::DistTypes m_testDistType = BSNConst::Normal;
    BSNConst::AnalysTypes m_analysType = BSNConst::Posterior;
    std::vector<double> m_dataVarVals;
    bool m_equalDataVar = false;
    BSNConst::EstBFTypes m_estBFType = BSNConst::JZS;
    double m_nullValue = 0.0;
    std::vector<double> m_nullValues;
    std::vector<double> m_nullPrior1s;
    std::vector<double> m_nullPrior2s;
    std::vector<double> m_alterGValues;
    std::vector<double> m_alterPrior1s;
    std::vector<double> m_alterPrior2s;
    BSNConst::PriorTypes m_priorType = BSNConst::Conjugate;
    double m_priorParam1 = kMissing;
    double m_priorParam2 = kMissing;
    BSNConst::DistTypes m_priorDistType = BSNConst::Diffuse;
    double m_priorDistParam1 = kMissing;
    double m_priorDistParam2 = kMissing;
    BSNConst::DistTypes m_meanDistType = BSNConst::Diffuse;
    double m_meanDistParam1 = kMissing;
    double m_meanDistParam2 = kMissing;
    double m_meanDistParam3 = kMissing;
    double m_meanDistParam4 = kMissing;
    double m_kappaValue = 1.0;
    double m_priorShape = kMissing;
    double m_priorScale = kMissing;
    std::vector<double> m_priorMeans;
    std::vector<double> m_priorCovMatrix;
    BSNConst::CorrTests m_corrTest = BSNConst::Pearson;
    double m_corrCValue = 0.0;
    long m_posteriorSamples = 10000;
    BSNConst::RegrCompute m_regrCompType = BSNConst::Siow;
    double m_regrComPar = kMissing;
    double m_secondGonenPar = kMissing;
    double m_regrPrecision = 1e-06;
    BSNConst::CompareTypes m_compareType = BSNConst::CompareNull;
    std::vector<double> m_regressors;
    std::vector<int> m_plotFactors;
    std::vector<int> m_plotCovars;
    std::vector<int> m_plotFactorCats;
    int m_maxNPlotCategories = 2;
    int m_maxNPlots = 10;
    int m_nPlotPoints = 100;
    double m_plotDomainLevel = 0.005;
    std::vector<BayesFTest> m_fTests;
    BSNConst::LogLinPriorType m_logLinPriorType = BSNConst::LogLinConjugate;
    BSNConst::DistTypes m_logLinModel = BSNConst::Multinomial;
    BSNConst::FixType m_fixType = BSNConst::FixedTotal;
    std::vector<double> m_logLinShapes;
    std::vector<double> m_lambdas;
    int m_logLinIntrinsicT = -1;
    bool m_computeVarianceInScoring = false;
    MCCommon_850::ProgressListener* m_progressListener = nullptr;
    int m_progressFrequency = 50;
    MCCommon_850::MCQueryCancel* m_cancelPointer = nullptr;
    int m_maxThreadNum = 1;
    int m_nPairsPerTask = 50;
    int m_memCacheKB = 1048576;
    MCThread_850::IMCThreadFactory* m_threadFactory = nullptr;
    MCThread_850::MCThreadIterFactory* m_threadIterFactory = nullptr;
    MCCommon_850::MCWarnings m_warnings;
};

} // namespace MCBSN_850
