#include "cli/atomicfile.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fmt/format.h>

#include "cli/outputfile.h"
#include "cli/settingsjson.h"

namespace bsncli {

namespace fs = std::filesystem;

AtomicOutputFile::AtomicOutputFile(std::string path, std::string what) : m_path(std::move(path)), m_what(std::move(what)) {
    // A run collecting its output files asks for cancellation before each.
    if (const OutputBatch* batch = OutputBatch::Active(); batch != nullptr) batch->Poll();
    // Same directory as the target, so that the rename cannot cross file
    // systems; the process id and a counter keep writers apart.
    static std::atomic<int> counter{0};
    const fs::path target(m_path);
    m_temp = (target.parent_path() /
              fmt::format(".{}.{}-{}.tmp", target.filename().string(), static_cast<long>(::getpid()), counter++))
                 .string();
    if (target.filename().empty() || fs::is_directory(target)) fail("it is a directory");
    m_stream.open(m_temp, std::ios::binary | std::ios::trunc);
    if (!m_stream) fail(std::strerror(errno));
}

AtomicOutputFile::~AtomicOutputFile() {
    if (m_committed) return;
    m_stream.close();
    std::error_code ec;
    fs::remove(m_temp, ec);
}

void AtomicOutputFile::fail(const std::string& reason) {
    m_stream.close();
    std::error_code ignored;
    fs::remove(m_temp, ignored);
    m_committed = true;
    throw InputError(fmt::format("{}: cannot write '{}'{}", m_what, m_path, reason.empty() ? "" : ": " + reason));
}

void AtomicOutputFile::Commit() {
    m_stream.close();
    if (m_stream.fail()) fail("the write failed");
    // Inside a batch the file is put in place with the run's other files.
    if (OutputBatch* batch = OutputBatch::Active(); batch != nullptr) {
        batch->Add(m_temp, m_path);
        m_committed = true;
        return;
    }
    std::error_code ec;
    fs::rename(m_temp, m_path, ec);
    if (ec) fail(ec.message());
    m_committed = true;
}

} // namespace bsncli
