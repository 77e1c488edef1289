#pragma once
// The reference texts shown by `bsn --help` and `bsn run --help`.
#include <string>

namespace bsncli {

std::string MainHelpFooter();
std::string RunHelpFooter();

} // namespace bsncli
