#include "cli/outputfile.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <fmt/format.h>

#include "cli/settingsjson.h"

namespace bsncli {

void WriteFileWhole(const std::string& path, const std::string& text, const std::string& option) {
    namespace fs = std::filesystem;
    const fs::path target(path);
    // Same directory as the target, so that the rename cannot cross file
    // systems; the process id keeps two runs apart.
    const fs::path temp = target.parent_path() / fmt::format(".{}.{}.tmp", target.filename().string(), ::getpid());
    auto fail = [&](const std::string& reason) {
        std::error_code ignored;
        fs::remove(temp, ignored);
        throw InputError(fmt::format("{}: cannot write '{}'{}", option, path, reason.empty() ? "" : ": " + reason));
    };
    if (target.filename().empty() || fs::is_directory(target)) fail("it is a directory");
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out) fail(std::strerror(errno));
        out << text;
        out.close();
        if (!out) fail("the write failed");
    }
    std::error_code ec;
    fs::rename(temp, target, ec);
    if (ec) fail(ec.message());
}

} // namespace bsncli
