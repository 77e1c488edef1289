#pragma once
// AtomicOutputFile: an output file that appears complete or not at all. The
// text goes to a temporary file beside the target, which Commit() renames
// onto the target; a file never committed (an error, an exception) is
// removed, so no half-written output is left behind.
#include <fstream>
#include <string>

namespace bsncli {

class AtomicOutputFile {
public:
    // Opens the temporary file; throws InputError "<what>: cannot write
    // '<path>': <reason>" when it cannot be created.
    AtomicOutputFile(std::string path, std::string what);
    ~AtomicOutputFile();
    AtomicOutputFile(const AtomicOutputFile&) = delete;
    AtomicOutputFile& operator=(const AtomicOutputFile&) = delete;

    std::ostream& Stream() { return m_stream; }
    // Flushes, closes and renames onto the target (or, while an OutputBatch
    // is collecting the run's files, hands the temporary file to it); throws
    // InputError when writing or renaming failed (the temporary file is then
    // removed).
    void Commit();

private:
    // Removes the temporary file and throws the InputError.
    [[noreturn]] void fail(const std::string& reason);

    std::string m_path;
    std::string m_what;
    std::string m_temp;
    std::ofstream m_stream;
    bool m_committed = false;
};

} // namespace bsncli
