#pragma once
// The settings file of the host: a JSON object whose keys are the getter
// names of BSNSettings without their Get/Is prefix ("ModelType", "CILevel",
// "2ndRelatedList", "ComputeVarianceInScoring"). Variables are named by CSV
// column; enumerations take their number or their word; null is the missing
// value. The same keys describe the settings inside a result.
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "bsn/frame/bsnsettings.h"

namespace bsncli {

// A problem with the user's input (command line, settings file or data
// file): the host reports the message and exits with status 2.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Fills a settings record from a parsed settings file. `columns` are the CSV
// column names; a variable's index is its column's position. ModelType is
// applied first (with the model type's dependent defaults), then every other
// key in the settings record's field order, whatever the order in the file,
// so that e.g. Factors is known when FactorSizes is checked against it.
// Throws InputError naming the key on an unknown key, a wrong type, an
// unknown column, an unknown enumeration word or a value the record refuses.
// `givenKeys`, when not null, receives the keys present in the file.
MCBSN_850::BSNSettings SettingsFromJson(const nlohmann::json& json, const std::vector<std::string>& columns,
                                        std::vector<std::string>* givenKeys = nullptr);

// The settings record under the same keys (enumerations as numbers,
// variables by column name, missing values and absent variables as null).
nlohmann::ordered_json SettingsToJson(const MCBSN_850::BSNSettings& settings,
                                      const std::vector<std::string>& columns);

// The word of an enumeration key's value ("Both" for AnalysType 2); "" for
// a key that is not an enumeration.
std::string SettingEnumWord(const std::string& key, int value);

// One line per key for the help text: the key, its kind and, for an
// enumeration, its numbers and words.
std::string SettingsKeysHelp();

// The display word of an enumeration value ("Jeffreys 2"), or the number.
template <class E>
std::string EnumWord(E value) {
    const std::string name = MCBSN_850::BSNConst::Name(value);
    return name.empty() ? std::to_string(static_cast<int>(value)) : name;
}

} // namespace bsncli
