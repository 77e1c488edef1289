#include "cli/outputfile.h"

#include "cli/atomicfile.h"

namespace bsncli {

void WriteFileWhole(const std::string& path, const std::string& text, const std::string& option) {
    AtomicOutputFile file(path, option);
    file.Stream() << text;
    file.Commit();
}

} // namespace bsncli
