#include "cli/atomicfile.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <filesystem>

#include <fmt/format.h>

#include "cli/settingsjson.h"

namespace bsncli {

AtomicOutputFile::AtomicOutputFile(std::string path, std::string what) : m_path(std::move(path)), m_what(std::move(what)) {
    static std::atomic<int> counter{0};
    m_temp = fmt::format("{}.partial-{}-{}", m_path, static_cast<long>(::getpid()), counter++);
    m_stream.open(m_temp, std::ios::binary | std::ios::trunc);
    if (!m_stream) throw InputError(fmt::format("{}: cannot create '{}'", m_what, m_path));
}

AtomicOutputFile::~AtomicOutputFile() {
    if (m_committed) return;
    m_stream.close();
    std::error_code ec;
    std::filesystem::remove(m_temp, ec);
}

void AtomicOutputFile::Commit() {
    m_stream.flush();
    const bool written = static_cast<bool>(m_stream);
    m_stream.close();
    std::error_code ec;
    if (written && !m_stream.fail()) std::filesystem::rename(m_temp, m_path, ec);
    if (!written || m_stream.fail() || ec) {
        std::filesystem::remove(m_temp, ec);
        m_committed = true;
        throw InputError(fmt::format("{}: cannot write '{}'", m_what, m_path));
    }
    m_committed = true;
}

} // namespace bsncli
