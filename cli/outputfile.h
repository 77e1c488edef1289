#pragma once
// Output files of the host are written whole or not at all: the text goes
// to a temporary file beside the target, which is then renamed over it. A
// run that fails half way leaves the previous file (or none), never a
// truncated one.
#include <string>

namespace bsncli {

// Writes `text` to `path`. On failure throws InputError
// "<option>: cannot write '<path>': <reason>" and leaves no temporary file.
void WriteFileWhole(const std::string& path, const std::string& text, const std::string& option);

} // namespace bsncli
