#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "cli/host.h"
#include "cli/settingsjson.h"
#include "platform/common/mcmv.h"

using bsncli::InputError;
using bsncli::SettingsFromJson;
using bsncli::SettingsToJson;
using MCBSN_850::BSNSettings;
using MCCommon_850::MCMV;
using nlohmann::json;
namespace C = MCBSN_850::BSNConst;

namespace {

const std::vector<std::string> kColumns = {"w", "a", "b", "g", "y"};

BSNSettings parse(const std::string& text) { return SettingsFromJson(json::parse(text), kColumns); }

// The message of the InputError the settings raise, or "" when accepted.
std::string errorOf(const std::string& text) {
    try {
        parse(text);
    } catch (const InputError& e) {
        return e.what();
    }
    return "";
}

} // namespace

TEST(SettingsJson, EnumerationsNullsAndColumnPositionsReadAndWrittenBack) {
    const BSNSettings s = parse(R"({"ModelType": "related", "TestDistType": "jeffreys-2", "AnalysType": 2,
        "PriorDistType": "Inverse Chi-Square", "MeanDistType": "DIFFUSE", "LogLinPriorType": "Dirichlet",
        "FixType": "fixed row", "RegrCompType": "Gonen", "EstBFType": "Simple", "MethodType": "MCA"})");
    const std::vector<int> got = {s.GetModelType(),     s.GetTestDistType(),    s.GetAnalysType(), s.GetPriorDistType(),
                                  s.GetMeanDistType(),  s.GetLogLinPriorType(), s.GetFixType(),    s.GetRegrCompType(),
                                  s.GetEstBFType(),     s.GetMethodType()};
    EXPECT_EQ(got, (std::vector<int>{C::Related, C::Jeffreys2, C::Both, C::InverseChiSquare, C::Diffuse,
                                     C::LogLinDirichlet, C::FixedRow, C::Gonen, C::Simple, C::MCA}));
    // Null is the missing value; variables are column positions.
    const BSNSettings n = parse(R"({"PriorParam1": null, "PriorParam2": 4.5, "CILevel": null, "PriorDistType": "Jeffreys 4",
        "NullPrior1s": [1, null, 3], "FrequencyWeightVar": null, "GroupVar": "g", "DependentVar": "w",
        "RegrWeightVar": "y", "FTests": [{"UseIntercept": true, "Predictors": ["b", "a"],
        "TestValues": [0.5, null], "Label": "b and a"}]})");
    const double M = MCMV::Missing();
    EXPECT_EQ((std::vector<double>{n.GetPriorParam1(), n.GetPriorParam2(), n.GetCILevel()}),
              (std::vector<double>{M, 4.5, M}));
    EXPECT_EQ(n.GetNullPrior1s(), (std::vector<double>{1, M, 3}));
    const std::vector<int> vars = {n.GetFrequencyWeightVar(), n.GetGroupVar(), n.GetDependentVar(), n.GetRegrWeightVar()};
    EXPECT_EQ(vars, (std::vector<int>{-1, 3, 0, 4}));
    ASSERT_EQ(n.GetFTests().size(), 1u);
    const auto& t = n.GetFTests()[0];
    EXPECT_TRUE(t.GetUseIntercept());
    EXPECT_EQ(t.GetPredictors(), (std::vector<int>{2, 1}));
    EXPECT_EQ(t.GetTestValues(), (std::vector<double>{0.5, M}));
    EXPECT_EQ(t.GetLabel(), "b and a");

    // Written back: ModelType first, enumerations by number, variables by name, missing as null.
    const auto out = SettingsToJson(n, kColumns);
    EXPECT_EQ(out.begin().key(), "ModelType");
    const auto expected = nlohmann::ordered_json::parse(R"({"PriorDistType": 8, "FrequencyWeightVar": null,
        "GroupVar": "g", "RegrWeightVar": "y", "NullPrior1s": [1, null, 3], "PriorParam1": null})");
    for (const auto& [key, value] : expected.items()) EXPECT_EQ(out.at(key), value) << key;
    for (const char* hostOnly : {"ProgressListener", "CancelPointer", "ThreadFactory", "WarningMessages"})
        EXPECT_FALSE(out.contains(hostOnly)) << hostOnly;
    // What is written reads back into the same record; so does a default record, every key of it.
    EXPECT_EQ(SettingsToJson(SettingsFromJson(json::parse(out.dump()), kColumns), kColumns), out);
    const auto defaults = SettingsToJson(BSNSettings(), kColumns);
    EXPECT_EQ(defaults.size(), 76u);
    EXPECT_EQ(SettingsToJson(SettingsFromJson(json::parse(defaults.dump()), kColumns), kColumns), defaults);
}

TEST(SettingsJson, ModelTypeComesFirstAndDependentKeysFollowTheirLists) {
    // The model type resets MissScope and RegrCompType; the file's own values survive.
    BSNSettings s = parse(R"({"MissScope": 0, "RegrCompType": "Siow", "ModelType": "Independent"})");
    EXPECT_EQ(s.GetMissScope(), C::MissingAnalysis);
    EXPECT_EQ(s.GetRegrCompType(), C::Siow);
    // Without them, the model type's own defaults apply (it is set with adjust).
    s = parse(R"({"ModelType": "Independent"})");
    EXPECT_EQ(s.GetMissScope(), C::MissingListwise);
    EXPECT_EQ(s.GetRegrCompType(), C::Rouder);
    // A method parameter given with the method is kept, not the method's default.
    EXPECT_DOUBLE_EQ(parse(R"({"RegrComPar": 7, "RegrCompType": "Hyper"})").GetRegrComPar(), 7.0);
    EXPECT_DOUBLE_EQ(parse(R"({"RegrCompType": "Hyper"})").GetRegrComPar(), 3.0);

    // Sizes and second lists are checked against lists that sort after them.
    s = parse(R"({"FactorSizes": [2, 3], "Factors": ["b", "a"], "2ndRelatedList": ["y"], "Covariates": ["g"]})");
    EXPECT_EQ((std::vector<std::vector<int>>{s.GetFactors(), s.GetFactorSizes(), s.GetCovariates(), s.Get2ndRelatedList()}),
              (std::vector<std::vector<int>>{{2, 1}, {2, 3}, {3}, {4}}));
}

// Every refusal names the key and what is wrong with its value.
TEST(SettingsJson, RefusalsNameTheKeyAndTheProblem) {
    const std::pair<std::string, std::string> cases[] = {
        {R"({"GetCILevel": 90})", "unknown settings key 'GetCILevel' (did you mean 'CILevel'?)"},
        {R"({"CancelPointer": null})", "settings key 'CancelPointer' cannot be given"},
        {R"([1, 2])", "JSON object"},
        {R"({"AnalysType": 3})", "settings key 'AnalysType': 3 is outside 0..2"},
        {R"({"TestDistType": "Binomal"})",
         "settings key 'TestDistType': unknown value 'Binomal'; expected one of 0 \"Normal\", 1 \"Binomial\", 2"},
        {R"({"ModelType": true})", "settings key 'ModelType': expected an enumeration number or word, got"},
        {R"({"CILevel": "95"})", "settings key 'CILevel': expected a number or null, got a string"},
        {R"({"Factors": "a"})", "settings key 'Factors': expected an array, got a string"},
        {R"({"Factors": [1]})", "settings key 'Factors': expected a column name, got a number"},
        {R"({"EqualDataVar": 1})", "settings key 'EqualDataVar': expected true or false, got a number"},
        {R"({"MCSamples": 2.5})", "settings key 'MCSamples': expected a whole number, got a number with a fraction"},
        {R"({"MaxNPlots": null})", "settings key 'MaxNPlots': expected a whole number, got null"},
        {R"({"RandomSeed": -1})", "settings key 'RandomSeed': -1 is outside"},
        {R"({"NullValues": [1, "x"]})", "settings key 'NullValues': expected a number or null, got a string"},
        {R"({"FTests": [{"Predictors": ["a"], "Weight": 2}]})", "settings key 'FTests[0]': unknown key 'Weight'"},
        {R"({"FTests": [{"Label": 3}]})", "settings key 'FTests[0].Label': expected text"},
        {R"({"Covariates": ["a", "zz"]})", "settings key 'Covariates': unknown column 'zz' (the data has: w, a, b, g, y)"},
        {R"({"FTests": [{"Predictors": ["A"]}]})", "settings key 'FTests[0].Predictors': unknown column 'A'"},
        // Values the settings record itself refuses.
        {R"({"Factors": ["a", "b"], "FactorSizes": [2]})", "settings key 'FactorSizes': the value was refused"},
        {R"({"Factors": ["a", "b"], "FactorSizes": [2, 0]})", "settings key 'FactorSizes': the value was refused"},
        {R"({"FullModFactors": ["a"], "FullModFactorSizes": [-1]})", "settings key 'FullModFactorSizes': the value was refused"},
        {R"({"Covariates": ["a", "b"], "2ndRelatedList": ["y"]})", "settings key '2ndRelatedList': the value was refused"},
        {R"({"ProgressFrequency": 0})", "settings key 'ProgressFrequency': the value was refused"},
        {R"({"NCases": -4})", "settings key 'NCases': the value was refused"},
        {R"({"SecondGonenPar": 0})", "settings key 'SecondGonenPar': the value was refused"},
    };
    for (const auto& [text, message] : cases)
        EXPECT_NE(errorOf(text).find(message), std::string::npos) << text << " -> " << errorOf(text);
    EXPECT_EQ(errorOf(R"({"Factors": ["a", "b"], "FactorSizes": [2, 5], "ProgressFrequency": 7})"), "");
    // Whole numbers written with a zero fraction are whole numbers.
    EXPECT_EQ(parse(R"({"MCSamples": 500.0})").GetMCSamples(), 500);
}


// Every key lands in its own field (a key wired to a neighbour's field passes a round trip).
TEST(SettingsJson, EveryScalarKeyReachesItsOwnField) {
    using Get = std::function<double(const BSNSettings&)>;
#define KEY(name) std::pair<std::string, Get>(#name, [](const BSNSettings& s) { return double(s.Get##name()); })
    const std::vector<std::pair<std::string, Get>> keys = {
        KEY(NCases),          KEY(MaxIterations),      KEY(CILevel),         KEY(RandomSeed),      KEY(TolValue),
        KEY(MCSamples),       KEY(NullValue),          KEY(PriorParam1),     KEY(PriorParam2),     KEY(PriorDistParam1),
        KEY(PriorDistParam2), KEY(MeanDistParam1),     KEY(MeanDistParam2),  KEY(MeanDistParam3),  KEY(MeanDistParam4),
        KEY(KappaValue),      KEY(PriorShape),         KEY(PriorScale),      KEY(CorrCValue),      KEY(PosteriorSamples),
        KEY(RegrComPar),      KEY(SecondGonenPar),     KEY(RegrPrecision),   KEY(MaxNPlotCategories), KEY(MaxNPlots),
        KEY(NPlotPoints),     KEY(PlotDomainLevel),    KEY(LogLinIntrinsicT), KEY(ProgressFrequency), KEY(MaxThreadNum),
        KEY(NPairsPerTask),   KEY(MemCacheKB)};
#undef KEY
    // Distinct values 11, 12, ... (valid for every key).
    json all = json::object();
    for (std::size_t i = 0; i < keys.size(); ++i) all[keys[i].first] = 11.0 + i;
    const BSNSettings s = SettingsFromJson(all, kColumns);
    for (std::size_t i = 0; i < keys.size(); ++i) EXPECT_EQ(keys[i].second(s), 11.0 + i) << keys[i].first;

    using GetList = const std::vector<double>& (BSNSettings::*)() const;
#define LIST(name) std::pair<std::string, GetList>(#name, &BSNSettings::Get##name)
    const std::vector<std::pair<std::string, GetList>> lists = {
        LIST(DataVarVals),  LIST(NullValues),   LIST(NullPrior1s), LIST(NullPrior2s),     LIST(AlterGValues),
        LIST(AlterPrior1s), LIST(AlterPrior2s), LIST(PriorMeans),  LIST(PriorCovMatrix), LIST(Regressors),
        LIST(LogLinShapes), LIST(Lambdas)};
#undef LIST
    json lj = json::object();
    for (std::size_t i = 0; i < lists.size(); ++i) lj[lists[i].first] = {double(i), 0.5};
    const BSNSettings ls = SettingsFromJson(lj, kColumns);
    for (std::size_t i = 0; i < lists.size(); ++i)
        EXPECT_EQ((ls.*lists[i].second)(), (std::vector<double>{double(i), 0.5})) << lists[i].first;

    const BSNSettings vs = parse(R"({"Factors": ["a"], "Covariates": ["b"], "FullModFactors": ["g"],
        "FullModCovariates": ["y"], "PlotFactors": ["w"], "PlotCovars": ["a", "b"], "PlotFactorCats": [4],
        "EqualDataVar": true, "ComputeVarianceInScoring": true})");
    const std::vector<std::vector<int>> got = {vs.GetFactors(),      vs.GetCovariates(), vs.GetFullModFactors(),
                                               vs.GetFullModCovariates(), vs.GetPlotFactors(), vs.GetPlotCovars(),
                                               vs.GetPlotFactorCats()};
    EXPECT_EQ(got, (std::vector<std::vector<int>>{{1}, {2}, {3}, {4}, {0}, {1, 2}, {4}}));
    EXPECT_TRUE(vs.GetEqualDataVar());
    EXPECT_TRUE(vs.IsComputeVarianceInScoring());
}

TEST(SettingsJson, ColumnsReadAndColumnsCoded) {
    BSNSettings s = parse(R"({"ModelType": 0, "TestDistType": "Binomial", "Factors": ["a", "b"],
        "FrequencyWeightVar": "w", "FullModFactors": ["g"]})");
    EXPECT_EQ(bsncli::UsedColumns(s), (std::vector<int>{0, 1, 2, 3}));
    // Binomial test variables count successes: never coded.
    EXPECT_EQ(bsncli::NominalColumns(s), (std::vector<int>{3}));
    s.SetTestDistType(C::Normal);
    EXPECT_EQ(bsncli::NominalColumns(s), (std::vector<int>{1, 2, 3}));
    s = parse(R"({"ModelType": "Independent", "Covariates": ["y"], "GroupVar": "g", "DependentVar": "w"})");
    EXPECT_EQ(bsncli::UsedColumns(s), (std::vector<int>{0, 3, 4}));
    EXPECT_EQ(bsncli::NominalColumns(s), (std::vector<int>{3}));
}
