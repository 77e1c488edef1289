#include "cli/settingsjson.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>

#include <fmt/format.h>

namespace bsncli {

using MCBSN_850::BayesFTest;
using MCBSN_850::BSNSettings;
using nlohmann::json;
using nlohmann::ordered_json;
namespace C = MCBSN_850::BSNConst;

namespace {

constexpr double kMissing = MCCommon_850::MCMV::Missing();

// What every reader needs to word its errors and resolve column names.
struct Context {
    std::string key;
    const std::vector<std::string>* columns = nullptr;

    [[noreturn]] void fail(const std::string& what) const {
        throw InputError(fmt::format("settings key '{}': {}", key, what));
    }
};

std::string kindOf(const json& j) {
    switch (j.type()) {
    case json::value_t::null: return "null";
    case json::value_t::boolean: return "true/false";
    case json::value_t::string: return "a string";
    case json::value_t::array: return "an array";
    case json::value_t::object: return "an object";
    case json::value_t::number_float: return "a number with a fraction";
    default: return "a number";
    }
}

// "Jeffreys 2", "jeffreys-2" and "JEFFREYS2" all name the same value.
std::string normalizeWord(const std::string& s) {
    std::string out;
    for (char c : s)
        if (c != ' ' && c != '-' && c != '_') out.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    return out;
}

// --- readers -----------------------------------------------------------------

long long readInteger(const json& j, const Context& ctx, long long lo, long long hi) {
    long long v = 0;
    if (j.is_number_integer()) {
        if (j.is_number_unsigned() &&
            j.get<unsigned long long>() > static_cast<unsigned long long>(std::numeric_limits<long long>::max()))
            ctx.fail(fmt::format("{} is too large", j.dump()));
        v = j.get<long long>();
    } else if (j.is_number_float() && std::floor(j.get<double>()) == j.get<double>() &&
               std::fabs(j.get<double>()) < 9.0e15) {
        v = static_cast<long long>(j.get<double>());
    } else {
        ctx.fail("expected a whole number, got " + kindOf(j));
    }
    if (v < lo || v > hi) ctx.fail(fmt::format("{} is outside {}..{}", v, lo, hi));
    return v;
}

int readInt(const json& j, const Context& ctx) {
    return static_cast<int>(readInteger(j, ctx, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

double readDouble(const json& j, const Context& ctx) {
    if (j.is_null()) return kMissing;
    if (!j.is_number()) ctx.fail("expected a number or null, got " + kindOf(j));
    const double v = j.get<double>();
    if (!std::isfinite(v)) ctx.fail("expected a finite number");
    return v;
}

bool readBool(const json& j, const Context& ctx) {
    if (!j.is_boolean()) ctx.fail("expected true or false, got " + kindOf(j));
    return j.get<bool>();
}

const json& readArray(const json& j, const Context& ctx) {
    if (!j.is_array()) ctx.fail("expected an array, got " + kindOf(j));
    return j;
}

std::string columnList(const std::vector<std::string>& columns) {
    std::string out;
    for (std::size_t i = 0; i < columns.size() && i < 30; ++i) out += (i ? ", " : "") + columns[i];
    if (columns.size() > 30) out += ", ...";
    return out;
}

int readColumn(const json& j, const Context& ctx) {
    if (!j.is_string()) ctx.fail("expected a column name, got " + kindOf(j));
    const std::string name = j.get<std::string>();
    const auto& columns = *ctx.columns;
    const auto it = std::find(columns.begin(), columns.end(), name);
    if (it == columns.end())
        ctx.fail(fmt::format("unknown column '{}' (the data has: {})", name, columnList(columns)));
    return static_cast<int>(it - columns.begin());
}

std::vector<int> readIntList(const json& j, const Context& ctx) {
    std::vector<int> v;
    for (const json& e : readArray(j, ctx)) v.push_back(readInt(e, ctx));
    return v;
}

std::vector<double> readDoubleList(const json& j, const Context& ctx) {
    std::vector<double> v;
    for (const json& e : readArray(j, ctx)) v.push_back(readDouble(e, ctx));
    return v;
}

std::vector<int> readColumnList(const json& j, const Context& ctx) {
    std::vector<int> v;
    for (const json& e : readArray(j, ctx)) v.push_back(readColumn(e, ctx));
    return v;
}

// --- writers -----------------------------------------------------------------

ordered_json writeDouble(double v) { return MCCommon_850::MCMV::IsMissing(v) ? ordered_json(nullptr) : ordered_json(v); }

ordered_json writeColumn(int index, const std::vector<std::string>& columns) {
    if (index < 0) return nullptr;
    if (static_cast<std::size_t>(index) < columns.size()) return columns[static_cast<std::size_t>(index)];
    return index;
}

ordered_json writeDoubleList(const std::vector<double>& v) {
    ordered_json out = ordered_json::array();
    for (double x : v) out.push_back(writeDouble(x));
    return out;
}

ordered_json writeColumnList(const std::vector<int>& v, const std::vector<std::string>& columns) {
    ordered_json out = ordered_json::array();
    for (int x : v) out.push_back(writeColumn(x, columns));
    return out;
}

// --- the key table -------------------------------------------------------------

struct SettingKey {
    std::string key;
    std::string kind;
    std::function<void(BSNSettings&, const json&, const Context&)> apply;
    std::function<ordered_json(const BSNSettings&, const std::vector<std::string>&)> write;
    std::function<std::string(int)> word;  // enumerations only: the word of a value
};

// Calls a setter and insists the record kept the value: a setter that
// answers false, or one that silently keeps its old value (such as a
// progress frequency of 0), has refused it.
template <class T, class Get, class Set>
void setChecked(BSNSettings& s, Get get, Set set, const T& value, const Context& ctx, const char* rule) {
    bool accepted = true;
    if constexpr (std::is_same_v<std::invoke_result_t<Set, BSNSettings&, const T&>, bool>)
        accepted = std::invoke(set, s, value);
    else
        std::invoke(set, s, value);
    if (!accepted || !(std::invoke(get, s) == value))
        ctx.fail(std::string("the value was refused: ") + rule);
}

template <class T, class Get, class Set, class Read, class Write>
SettingKey makeKey(std::string key, std::string kind, Get get, Set set, Read read, Write write,
                const char* rule = "not accepted by the settings record") {
    SettingKey entry;
    entry.key = std::move(key);
    entry.kind = std::move(kind);
    entry.apply = [get, set, read, rule](BSNSettings& s, const json& j, const Context& ctx) {
        const T value = read(j, ctx);
        setChecked<T>(s, get, set, value, ctx, rule);
    };
    entry.write = [get, write](const BSNSettings& s, const std::vector<std::string>& columns) {
        return write(std::invoke(get, s), columns);
    };
    return entry;
}

template <class Get, class Set>
SettingKey intKey(std::string key, Get get, Set set, const char* rule = "not accepted by the settings record") {
    return makeKey<int>(std::move(key), "whole number", get, set, readInt,
                        [](int v, const std::vector<std::string>&) { return ordered_json(v); }, rule);
}

template <class Get, class Set>
SettingKey doubleKey(std::string key, Get get, Set set, const char* rule = "not accepted by the settings record") {
    return makeKey<double>(std::move(key), "number or null", get, set, readDouble,
                           [](double v, const std::vector<std::string>&) { return writeDouble(v); }, rule);
}

template <class Get, class Set>
SettingKey boolKey(std::string key, Get get, Set set) {
    return makeKey<bool>(std::move(key), "true or false", get, set, readBool,
                         [](bool v, const std::vector<std::string>&) { return ordered_json(v); });
}

template <class Get, class Set>
SettingKey doubleListKey(std::string key, Get get, Set set) {
    return makeKey<std::vector<double>>(
        std::move(key), "array of numbers (null for missing)", get, set, readDoubleList,
        [](const std::vector<double>& v, const std::vector<std::string>&) { return writeDoubleList(v); });
}

template <class Get, class Set>
SettingKey intListKey(std::string key, Get get, Set set, const char* rule = "not accepted by the settings record") {
    return makeKey<std::vector<int>>(
        std::move(key), "array of whole numbers", get, set, readIntList,
        [](const std::vector<int>& v, const std::vector<std::string>&) { return ordered_json(v); }, rule);
}

template <class Get, class Set>
SettingKey columnListKey(std::string key, Get get, Set set, const char* rule = "not accepted by the settings record") {
    return makeKey<std::vector<int>>(std::move(key), "array of column names", get, set, readColumnList,
                                     writeColumnList, rule);
}

// A single variable: null (or leaving the key out) means none.
template <class Get, class Set>
SettingKey columnKey(std::string key, Get get, Set set) {
    SettingKey entry = makeKey<int>(std::move(key), "column name or null", get, set, readColumn, writeColumn);
    auto apply = entry.apply;
    entry.apply = [apply](BSNSettings& s, const json& j, const Context& ctx) {
        if (!j.is_null()) apply(s, j, ctx);
    };
    return entry;
}

template <class E>
std::string enumKind(int count) {
    std::string kind = "one of";
    for (int v = 0; v < count; ++v) kind += fmt::format("{} {} \"{}\"", v ? "," : "", v, C::Name(static_cast<E>(v)));
    return kind;
}

template <class E>
E readEnum(const json& j, const Context& ctx, int count) {
    if (j.is_number()) {
        const long long v = readInteger(j, ctx, 0, count - 1);
        return static_cast<E>(v);
    }
    if (j.is_string()) {
        const std::string word = normalizeWord(j.get<std::string>());
        for (int v = 0; v < count; ++v)
            if (normalizeWord(C::Name(static_cast<E>(v))) == word) return static_cast<E>(v);
        ctx.fail(fmt::format("unknown value '{}'; expected {}", j.get<std::string>(), enumKind<E>(count)));
    }
    ctx.fail("expected an enumeration number or word, got " + kindOf(j));
}

template <class E, class Get, class Set>
SettingKey enumKey(std::string key, Get get, Set set, int count) {
    SettingKey entry = makeKey<E>(
        std::move(key), enumKind<E>(count), get, set,
        [count](const json& j, const Context& ctx) { return readEnum<E>(j, ctx, count); },
        [](E v, const std::vector<std::string>&) { return ordered_json(static_cast<int>(v)); });
    entry.word = [](int v) { return EnumWord(static_cast<E>(v)); };
    return entry;
}

SettingKey fTestsKey() {
    SettingKey entry;
    entry.key = "FTests";
    entry.kind = "array of objects {UseIntercept: true/false, Predictors: [columns], TestValues: [numbers], Label: text}";
    entry.apply = [](BSNSettings& s, const json& j, const Context& ctx) {
        std::vector<BayesFTest> tests;
        for (const json& item : readArray(j, ctx)) {
            Context at{fmt::format("{}[{}]", ctx.key, tests.size()), ctx.columns};
            if (!item.is_object()) at.fail("expected an object, got " + kindOf(item));
            BayesFTest test;
            for (const auto& [name, value] : item.items()) {
                Context field{at.key + "." + name, ctx.columns};
                if (name == "UseIntercept") test.SetUseIntercept(readBool(value, field));
                else if (name == "Predictors") test.SetPredictors(readColumnList(value, field));
                else if (name == "TestValues") test.SetTestValues(readDoubleList(value, field));
                else if (name == "Label") {
                    if (!value.is_string()) field.fail("expected text, got " + kindOf(value));
                    test.SetLabel(value.get<std::string>());
                } else {
                    at.fail(fmt::format("unknown key '{}' (expected UseIntercept, Predictors, TestValues, Label)", name));
                }
            }
            tests.push_back(test);
        }
        s.SetFTests(tests);
    };
    entry.write = [](const BSNSettings& s, const std::vector<std::string>& columns) {
        ordered_json out = ordered_json::array();
        for (const BayesFTest& t : s.GetFTests()) {
            ordered_json o;
            o["UseIntercept"] = t.GetUseIntercept();
            o["Predictors"] = writeColumnList(t.GetPredictors(), columns);
            o["TestValues"] = writeDoubleList(t.GetTestValues());
            o["Label"] = t.GetLabel();
            out.push_back(o);
        }
        return out;
    };
    return entry;
}

const char* const kSizesRule = "it needs one entry, above 0, per entry of the matching factor list";

// Every key, in the settings record's field order, which is also the order in
// which they are applied (ModelType first).
const std::vector<SettingKey>& keyTable() {
    using S = BSNSettings;
    static const std::vector<SettingKey> table = [] {
        std::vector<SettingKey> t;
        // The model type also resets the defaults that depend on it, so it
        // comes first and the file's own values for those fields win.
        t.push_back(enumKey<C::ModelTypes>(
            "ModelType", &S::GetModelType, [](S& s, C::ModelTypes v) { s.SetModelType(v, true); }, 7));
        t.push_back(intKey("NCases", &S::GetNCases, &S::SetNCases, "it must not be negative"));
        t.push_back(intKey("MaxIterations", &S::GetMaxIterations, &S::SetMaxIterations));
        t.push_back(columnKey("DependentVar", &S::GetDependentVar, &S::SetDependVar));
        t.push_back(columnKey("FrequencyWeightVar", &S::GetFrequencyWeightVar, &S::SetFrequencyWeightVar));
        t.push_back(columnKey("RegrWeightVar", &S::GetRegrWeightVar, &S::SetRegrWeightVar));
        t.push_back(columnListKey("Factors", &S::GetFactors, &S::SetFactors));
        t.push_back(intListKey("FactorSizes", &S::GetFactorSizes, &S::SetFactorNCategs, kSizesRule));
        t.push_back(columnListKey("Covariates", &S::GetCovariates, &S::SetCovariates));
        t.push_back(columnListKey("FullModFactors", &S::GetFullModFactors, &S::SetFullModFactors));
        t.push_back(
            intListKey("FullModFactorSizes", &S::GetFullModFactorSizes, &S::SetFullModFactorNCategs, kSizesRule));
        t.push_back(columnListKey("FullModCovariates", &S::GetFullModCovariates, &S::SetFullModCovariates));
        t.push_back(columnListKey("2ndRelatedList", &S::Get2ndRelatedList, &S::Set2ndRelatedList,
                                  "it needs exactly one entry per entry of Covariates"));
        t.push_back(columnKey("GroupVar", &S::GetGroupVar, &S::SetGroupVar));
        t.push_back(enumKey<C::MissScope>("MissScope", &S::GetMissScope, &S::SetMissScope, 2));
        t.push_back(doubleKey("CILevel", &S::GetCILevel, &S::SetCILevel));
        t.push_back(enumKey<C::MethodTypes>("MethodType", &S::GetMethodType, &S::SetMethodType, 2));
        t.push_back(makeKey<unsigned long>(
            "RandomSeed", "whole number, 0 or more", &S::GetRandomSeed, &S::SetRandomSeed,
            [](const json& j, const Context& ctx) {
                if (j.is_number_unsigned()) return static_cast<unsigned long>(j.get<unsigned long long>());
                return static_cast<unsigned long>(readInteger(j, ctx, 0, std::numeric_limits<long long>::max()));
            },
            [](unsigned long v, const std::vector<std::string>&) { return ordered_json(v); }));
        t.push_back(doubleKey("TolValue", &S::GetTolValue, &S::SetTolValue));
        t.push_back(intKey("MCSamples", &S::GetMCSamples, &S::SetMCSamples));
        t.push_back(enumKey<C::DistTypes>("TestDistType", &S::GetTestDistType, &S::SetTestDistType, 12));
        t.push_back(enumKey<C::AnalysTypes>("AnalysType", &S::GetAnalysType, &S::SetAnalysType, 3));
        t.push_back(doubleListKey("DataVarVals", &S::GetDataVarVals, &S::SetDataVarVals));
        t.push_back(boolKey("EqualDataVar", &S::GetEqualDataVar, &S::SetEqualDataVar));
        t.push_back(enumKey<C::EstBFTypes>("EstBFType", &S::GetEstBFType, &S::SetEstBFType, 4));
        t.push_back(doubleKey("NullValue", &S::GetNullValue, &S::SetNullValue));
        t.push_back(doubleListKey("NullValues", &S::GetNullValues, &S::SetNullValues));
        t.push_back(doubleListKey("NullPrior1s", &S::GetNullPrior1s, &S::SetNullPrior1s));
        t.push_back(doubleListKey("NullPrior2s", &S::GetNullPrior2s, &S::SetNullPrior2s));
        t.push_back(doubleListKey("AlterGValues", &S::GetAlterGValues, &S::SetAlterGValues));
        t.push_back(doubleListKey("AlterPrior1s", &S::GetAlterPrior1s, &S::SetAlterPrior1s));
        t.push_back(doubleListKey("AlterPrior2s", &S::GetAlterPrior2s, &S::SetAlterPrior2s));
        t.push_back(enumKey<C::PriorTypes>("PriorType", &S::GetPriorType, &S::SetPriorType, 3));
        t.push_back(doubleKey("PriorParam1", &S::GetPriorParam1, &S::SetPriorParam1));
        t.push_back(doubleKey("PriorParam2", &S::GetPriorParam2, &S::SetPriorParam2));
        t.push_back(enumKey<C::DistTypes>("PriorDistType", &S::GetPriorDistType, &S::SetPriorDistType, 12));
        t.push_back(doubleKey("PriorDistParam1", &S::GetPriorDistParam1, &S::SetPriorDistParam1));
        t.push_back(doubleKey("PriorDistParam2", &S::GetPriorDistParam2, &S::SetPriorDistParam2));
        t.push_back(enumKey<C::DistTypes>("MeanDistType", &S::GetMeanDistType, &S::SetMeanDistType, 12));
        t.push_back(doubleKey("MeanDistParam1", &S::GetMeanDistParam1, &S::SetMeanDistParam1));
        t.push_back(doubleKey("MeanDistParam2", &S::GetMeanDistParam2, &S::SetMeanDistParam2));
        t.push_back(doubleKey("MeanDistParam3", &S::GetMeanDistParam3, &S::SetMeanDistParam3));
        t.push_back(doubleKey("MeanDistParam4", &S::GetMeanDistParam4, &S::SetMeanDistParam4));
        t.push_back(doubleKey("KappaValue", &S::GetKappaValue, &S::SetKappaValue));
        t.push_back(doubleKey("PriorShape", &S::GetPriorShape, &S::SetPriorShape));
        t.push_back(doubleKey("PriorScale", &S::GetPriorScale, &S::SetPriorScale));
        t.push_back(doubleListKey("PriorMeans", &S::GetPriorMeans, &S::SetPriorMeans));
        t.push_back(doubleListKey("PriorCovMatrix", &S::GetPriorCovMatrix, &S::SetPriorCovMatrix));
        t.push_back(enumKey<C::CorrTests>("CorrTest", &S::GetCorrTest, &S::SetCorrTest, 3));
        t.push_back(doubleKey("CorrCValue", &S::GetCorrCValue, &S::SetCorrCValue));
        t.push_back(makeKey<long>(
            "PosteriorSamples", "whole number", &S::GetPosteriorSamples, &S::SetPosteriorSamples,
            [](const json& j, const Context& ctx) {
                return static_cast<long>(
                    readInteger(j, ctx, std::numeric_limits<long>::min(), std::numeric_limits<long>::max()));
            },
            [](long v, const std::vector<std::string>&) { return ordered_json(v); }));
        t.push_back(enumKey<C::RegrCompute>("RegrCompType", &S::GetRegrCompType, &S::SetRegrCompType, 5));
        t.push_back(doubleKey("RegrComPar", &S::GetRegrComPar, &S::SetRegrComPar));
        t.push_back(doubleKey("SecondGonenPar", &S::GetSecondGonenPar, &S::SetSecondGonenPar, "it must be above 0"));
        t.push_back(doubleKey("RegrPrecision", &S::GetRegrPrecision, &S::SetRegrPrecision));
        t.push_back(enumKey<C::CompareTypes>("CompareType", &S::GetCompareType, &S::SetCompareType, 2));
        t.push_back(doubleListKey("Regressors", &S::GetRegressors, &S::SetRegressors));
        t.push_back(columnListKey("PlotFactors", &S::GetPlotFactors, &S::SetPlotFactors));
        t.push_back(columnListKey("PlotCovars", &S::GetPlotCovars, &S::SetPlotCovars));
        t.push_back(intListKey("PlotFactorCats", &S::GetPlotFactorCats, &S::SetPlotFactorCats));
        t.push_back(intKey("MaxNPlotCategories", &S::GetMaxNPlotCategories, &S::SetMaxNPlotCategories));
        t.push_back(intKey("MaxNPlots", &S::GetMaxNPlots, &S::SetMaxNPlots));
        t.push_back(intKey("NPlotPoints", &S::GetNPlotPoints, &S::SetNPlotPoints));
        t.push_back(doubleKey("PlotDomainLevel", &S::GetPlotDomainLevel, &S::SetPlotDomainLevel));
        t.push_back(fTestsKey());
        t.push_back(enumKey<C::LogLinPriorType>("LogLinPriorType", &S::GetLogLinPriorType, &S::SetLogLinPriorType, 3));
        t.push_back(enumKey<C::DistTypes>("LogLinModel", &S::GetLogLinModel, &S::SetLogLinModel, 12));
        t.push_back(enumKey<C::FixType>("FixType", &S::GetFixType, &S::SetFixType, 3));
        t.push_back(doubleListKey("LogLinShapes", &S::GetLogLinShapes, &S::SetLogLinShapes));
        t.push_back(doubleListKey("Lambdas", &S::GetLambdas, &S::SetLambdas));
        t.push_back(intKey("LogLinIntrinsicT", &S::GetLogLinIntrinsicT, &S::SetLogLinIntrinsicT));
        t.push_back(boolKey("ComputeVarianceInScoring", &S::IsComputeVarianceInScoring,
                            &S::SetComputeVarianceInScoring));
        t.push_back(intKey("ProgressFrequency", &S::GetProgressFrequency, &S::SetProgressFrequency,
                           "it must be above 0"));
        t.push_back(intKey("MaxThreadNum", &S::GetMaxThreadNum, &S::SetMaxThreadNum));
        t.push_back(intKey("NPairsPerTask", &S::GetNPairsPerTask, &S::SetNPairsPerTask));
        t.push_back(intKey("MemCacheKB", &S::GetMemCacheKB, &S::SetMemCacheKB));
        return t;
    }();
    return table;
}

// Fields that hold the host's own objects; a file cannot supply them.
const std::vector<std::string> kHostOnlyKeys = {"ProgressListener", "CancelPointer", "ThreadFactory",
                                                "ThreadIterFactory", "WarningMessages"};

} // namespace

BSNSettings SettingsFromJson(const json& j, const std::vector<std::string>& columns,
                             std::vector<std::string>* givenKeys) {
    if (!j.is_object()) throw InputError("the settings must be a JSON object, not " + kindOf(j));
    const auto& table = keyTable();
    for (const auto& [key, value] : j.items()) {
        (void)value;
        const auto known =
            std::find_if(table.begin(), table.end(), [&name = key](const SettingKey& k) { return k.key == name; });
        if (known != table.end()) continue;
        if (std::find(kHostOnlyKeys.begin(), kHostOnlyKeys.end(), key) != kHostOnlyKeys.end())
            throw InputError(fmt::format("settings key '{}' cannot be given in a settings file", key));
        std::string hint;
        for (const SettingKey& k : table) {
            std::string bare = key;
            if (bare.rfind("Get", 0) == 0) bare = bare.substr(3);
            else if (bare.rfind("Is", 0) == 0) bare = bare.substr(2);
            if (normalizeWord(k.key) == normalizeWord(bare)) hint = fmt::format(" (did you mean '{}'?)", k.key);
        }
        throw InputError(fmt::format("unknown settings key '{}'{}", key, hint));
    }
    BSNSettings settings;
    if (givenKeys) givenKeys->clear();
    for (const SettingKey& k : table) {
        const auto it = j.find(k.key);
        if (it == j.end()) continue;
        k.apply(settings, *it, Context{k.key, &columns});
        if (givenKeys) givenKeys->push_back(k.key);
    }
    return settings;
}

ordered_json SettingsToJson(const BSNSettings& settings, const std::vector<std::string>& columns) {
    ordered_json out = ordered_json::object();
    for (const SettingKey& k : keyTable()) out[k.key] = k.write(settings, columns);
    return out;
}

std::string SettingEnumWord(const std::string& key, int value) {
    for (const SettingKey& k : keyTable())
        if (k.key == key) return k.word ? k.word(value) : std::string();
    return {};
}

std::string SettingsKeysHelp() {
    // Two columns, the second wrapped at word boundaries to fit 80 columns.
    constexpr std::size_t kIndent = 29, kWidth = 79;
    std::string out;
    for (const SettingKey& k : keyTable()) {
        std::string line = fmt::format("  {:<{}}", k.key, kIndent - 3) + " ";
        std::size_t pos = 0;
        const std::string& text = k.kind;
        while (pos < text.size()) {
            std::size_t end = text.find(' ', pos);
            if (end == std::string::npos) end = text.size();
            const std::string word = text.substr(pos, end - pos);
            const std::size_t lineStart = line.rfind('\n') == std::string::npos ? 0 : line.rfind('\n') + 1;
            if (line.size() - lineStart + word.size() + 1 > kWidth && line.size() - lineStart > kIndent)
                line += "\n" + std::string(kIndent, ' ');
            else if (line.size() - lineStart > kIndent)
                line += ' ';
            line += word;
            pos = end + 1;
        }
        out += line + "\n";
    }
    return out;
}

} // namespace bsncli
