// Fuzzes a whole run of the host on tiny inputs: the input is a settings
// file and a data file separated by a line "----". Any outcome is allowed
// except a crash, a sanitizer report, an exit status outside 0-2, or (with
// --json) a run that leaves no parsable document.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "cli/host.h"
#include "fuzz/fuzzinput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto cut = text.find("\n----\n");
    if (cut == std::string_view::npos) return 0;
    const std::string_view csv = text.substr(cut + 6);
    std::string settings(text.substr(0, cut));
    // Counts of points, samples and plots scale the work; large ones only
    // make slow runs, not new paths. For the same reason a settings object
    // without NPlotPoints gets 40 instead of the host's 400 (the settings
    // reader itself is fuzzed on raw bytes by fuzz_settings).
    bool tooBig = false;
    nlohmann::json::parser_callback_t bound = [&](int, nlohmann::json::parse_event_t event, nlohmann::json& value) {
        if (event == nlohmann::json::parse_event_t::value && value.is_number_integer() && value.get<long long>() > 100)
            tooBig = true;
        return true;
    };
    auto parsed = nlohmann::json::parse(settings, bound, false);
    if (tooBig) return 0;
    // A log-linear run estimates every pair of rows and every pair of
    // columns of its table: a few dozen categories mean tens of thousands of
    // posteriors, seconds per input under the sanitizers, and no path that a
    // small table does not take. Such runs get at most 12 lines of data.
    if (parsed.is_object() && parsed.contains("ModelType") && parsed["ModelType"].is_string()) {
        std::string type;
        for (char c : parsed["ModelType"].get<std::string>())
            if (c != ' ' && c != '-' && c != '_') type.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
        if (type == "loglinear" && std::count(csv.begin(), csv.end(), '\n') > 12) return 0;
    }
    if (parsed.is_object() && !parsed.contains("NPlotPoints")) {
        parsed["NPlotPoints"] = 40;
        settings = parsed.dump();
    }
    bsncli::RunOptions options;
    options.settingsPath = bsnfuzz::WriteInput("s.json", reinterpret_cast<const std::uint8_t*>(settings.data()),
                                               settings.size());
    options.dataPath = bsnfuzz::WriteInput("d.csv", reinterpret_cast<const std::uint8_t*>(csv.data()), csv.size());
    options.jsonPath = "-";
    options.quiet = true;
    std::ostringstream out, err;
    const int code = bsncli::RunAnalysis(options, out, err);
    bsnfuzz::Require(code >= 0 && code <= 2);
    const auto doc = nlohmann::json::parse(out.str(), nullptr, false);
    bsnfuzz::Require(!doc.is_discarded() && doc.contains("status") && doc.contains("model_built"));
    bsnfuzz::Require(doc["model_built"] == (code == 0));
    return 0;
}
