// Fuzzes the CSV reader: any bytes as a data file. Besides crashes and
// sanitizer reports it checks the reader's promises: a pass over memory and
// a pass over the file give the same records, a second pass repeats the
// first, codes of nominal columns index their label tables, and an error
// names the file and a line.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzzinput.h"
#include "platform/common/mcmv.h"
#include "platform/records/csvrecorditer.h"

using MCCommon_850::CsvRecordIter;

namespace {

std::vector<std::vector<double>> readPass(CsvRecordIter& iter) {
    std::vector<std::vector<double>> rows;
    iter.Reset();
    while (iter.Advance()) {
        const auto* r = iter.GetRecord();
        bsnfuzz::Require(r != nullptr);
        std::vector<double> row;
        for (std::size_t c = 0; c < r->Size(); ++c) row.push_back(r->GetValue(static_cast<int>(c)));
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 1 << 16) return 0;
    // The first byte picks the used and nominal columns among the first four
    // and the read-buffer size; the rest is the file.
    const unsigned mode = size > 0 ? data[0] : 0;
    const std::string path = bsnfuzz::WriteInput("data.csv", data + (size > 0), size - (size > 0));
    std::vector<int> used, nominal;
    for (int c = 0; c < 4; ++c) {
        if (mode & (1u << c)) used.push_back(c);
        if (mode & (1u << (c + 4))) nominal.push_back(c);
    }

    CsvRecordIter streamed(path, used, nominal);
    streamed.SetReadBufferSize(1 + (mode % 7));
    const auto scan = streamed.Scan();
    if (!scan.error.empty()) {
        bsnfuzz::Require(scan.error.compare(0, path.size(), path) == 0);
        return 0;
    }
    const auto rows = readPass(streamed);
    bsnfuzz::Require(streamed.GetSourceError().empty());
    bsnfuzz::Require(static_cast<long long>(rows.size()) == scan.nRecords);
    bsnfuzz::Require(readPass(streamed) == rows);

    CsvRecordIter held(path, used, nominal);
    held.SetMemoryBudget(std::size_t{1} << 20);
    const auto heldScan = held.Scan();
    bsnfuzz::Require(heldScan.error.empty() && heldScan.nRecords == scan.nRecords);
    bsnfuzz::Require(held.IsHeldInMemory());
    bsnfuzz::Require(readPass(held) == rows);

    for (const auto& row : rows)
        for (std::size_t c = 0; c < row.size(); ++c) {
            const double v = row[c];
            if (MCCommon_850::MCMV::IsMissing(v)) continue;
            const bool isNominal = std::find(nominal.begin(), nominal.end(), static_cast<int>(c)) != nominal.end();
            const bool isUsed = std::find(used.begin(), used.end(), static_cast<int>(c)) != used.end();
            bsnfuzz::Require(isUsed);
            if (isNominal) bsnfuzz::Require(v >= 0 && v < static_cast<double>(scan.labels[c].size()) && v == static_cast<int>(v));
        }
    return 0;
}
