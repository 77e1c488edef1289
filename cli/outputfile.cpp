#include "cli/outputfile.h"

#include <filesystem>

#include <fmt/format.h>

#include "cli/atomicfile.h"
#include "cli/settingsjson.h"

namespace bsncli {

namespace {

OutputBatch* g_activeBatch = nullptr;

} // namespace

OutputBatch::OutputBatch(std::function<void()> poll) : m_poll(std::move(poll)), m_outer(g_activeBatch) {
    g_activeBatch = this;
}

OutputBatch::~OutputBatch() {
    g_activeBatch = m_outer;
    for (const auto& file : m_files) {
        std::error_code ignored;
        std::filesystem::remove(file.first, ignored);
    }
}

OutputBatch* OutputBatch::Active() { return g_activeBatch; }

void OutputBatch::Poll() const {
    if (m_poll) m_poll();
}

void OutputBatch::Add(std::string temp, std::string target) { m_files.emplace_back(std::move(temp), std::move(target)); }

void OutputBatch::Commit() {
    g_activeBatch = m_outer;
    auto files = std::move(m_files);
    m_files.clear();
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::error_code ec;
        std::filesystem::rename(files[i].first, files[i].second, ec);
        if (!ec) continue;
        const std::string reason = ec.message();
        for (std::size_t j = i; j < files.size(); ++j) std::filesystem::remove(files[j].first, ec);
        throw InputError(fmt::format("cannot write '{}': {}", files[i].second, reason));
    }
}

void WriteFileWhole(const std::string& path, const std::string& text, const std::string& option) {
    AtomicOutputFile file(path, option);
    file.Stream() << text;
    file.Commit();
}

} // namespace bsncli
