#pragma once
// Output files of the host are written whole or not at all: the text goes
// to a temporary file beside the target, which is then renamed over it. A
// run that fails half way leaves the previous file (or none), never a
// truncated one.
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bsncli {

// All the output files of one run, written together or not at all. While a
// batch lives, WriteFileWhole only writes each text to its temporary file
// (asking `poll` first, which may throw to stop the run); Commit() then
// renames them all into place. A batch destroyed without Commit() removes
// its temporary files, so a run stopped while writing its output (an error,
// a cancellation) leaves none of its files behind, whole or partial.
class OutputBatch {
public:
    explicit OutputBatch(std::function<void()> poll = {});
    ~OutputBatch();
    OutputBatch(const OutputBatch&) = delete;
    OutputBatch& operator=(const OutputBatch&) = delete;

    void Commit();

    // Used by WriteFileWhole: the batch that is collecting files, if any.
    static OutputBatch* Active();
    void Poll() const;
    void Add(std::string temp, std::string target);

private:
    std::function<void()> m_poll;
    std::vector<std::pair<std::string, std::string>> m_files;  // temporary, target
    OutputBatch* m_outer;
};

// Writes `text` to `path`. On failure throws InputError
// "<option>: cannot write '<path>': <reason>" and leaves no temporary file.
void WriteFileWhole(const std::string& path, const std::string& text, const std::string& option);

} // namespace bsncli
