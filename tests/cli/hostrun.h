#pragma once
// Runs of the host inside the test process: exit status and both streams.
#include <sstream>
#include <string>
#include <vector>

#include "bsn/frame/bsncomponent.h"
#include "cli/host.h"

namespace bsntest {

struct HostOutcome {
    int code = -1;
    std::string out, err;
};

// `bsn ARGS...`, through the host's own command line.
inline HostOutcome RunCommandLine(const std::vector<std::string>& args) {
    std::vector<const char*> argv{"bsn"};
    for (const auto& a : args) argv.push_back(a.c_str());
    std::ostringstream out, err;
    const int code = bsncli::Main(static_cast<int>(argv.size()), argv.data(), out, err);
    return {code, out.str(), err.str()};
}

inline HostOutcome RunHost(const bsncli::RunOptions& options) {
    std::ostringstream out, err;
    const int code = bsncli::RunAnalysis(options, out, err);
    return {code, out.str(), err.str()};
}

// Whether this build of the library has the analysis.
inline bool HasAnalysis(MCBSN_850::BSNConst::ModelTypes model,
                        MCBSN_850::BSNConst::DistTypes dist = MCBSN_850::BSNConst::Normal) {
    MCBSN_850::BSNSettings s;
    s.SetModelType(model, true);
    s.SetTestDistType(dist);
    return MCBSN_850::BSNComponent(s, MCXML_850::MCVarList()).HasProcedure();
}

} // namespace bsntest
