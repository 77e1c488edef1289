// Fuzzes the settings-file reader: any bytes as a settings file over a
// fixed set of columns, then the settings check and the construction of the
// analysis. Every failure must be an InputError (the host's message), never
// another exception, a crash or a sanitizer report.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "bsn/frame/bsncomponent.h"
#include "cli/settingsjson.h"
#include "fuzz/fuzzinput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 1 << 14) return 0;
    const nlohmann::json parsed = nlohmann::json::parse(data, data + size, nullptr, false);
    if (parsed.is_discarded()) return 0;
    static const std::vector<std::string> kColumns = {"x", "y", "g", "w", "z"};
    try {
        std::vector<std::string> given;
        MCBSN_850::BSNSettings settings = bsncli::SettingsFromJson(parsed, kColumns, &given);
        (void)settings.IsValidSettings();
        // The record reads back under the same keys, and reads in again.
        const auto again = bsncli::SettingsFromJson(bsncli::SettingsToJson(settings, kColumns), kColumns);
        bsnfuzz::Require(bsncli::SettingsToJson(again, kColumns) == bsncli::SettingsToJson(settings, kColumns));
        MCBSN_850::BSNComponent component(settings, MCXML_850::MCVarList());
    } catch (const bsncli::InputError&) {
    }
    return 0;
}
