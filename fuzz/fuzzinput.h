#pragma once
// Helpers shared by the fuzz targets: the input as a file the readers can
// open (they read paths, not memory), one per process so that parallel
// fuzzing jobs do not share it.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace bsnfuzz {

inline std::string WriteInput(const char* name, const std::uint8_t* data, std::size_t size) {
    const std::string path = "/tmp/bsn_fuzz_" + std::to_string(::getpid()) + "_" + name;
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) __builtin_trap();
    if (size > 0 && std::fwrite(data, 1, size, f) != size) __builtin_trap();
    std::fclose(f);
    return path;
}

// A property the code promises; a breach is a finding.
inline void Require(bool ok) {
    if (!ok) __builtin_trap();
}

} // namespace bsnfuzz
