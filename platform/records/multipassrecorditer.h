#pragma once
// MultiPassRecordIter: the host's re-readable record source. A data pass is
//     iter.Reset();
//     while (iter.Advance()) { const Record* r = iter.GetRecord(); ... }
// and every pass sees the same records in the same order. A source may yield
// a null record for a position it cannot provide; passes skip those.
#include <string>

#include "platform/records/record.h"

namespace MCCommon_850 {

class MultiPassRecordIter {
public:
    virtual ~MultiPassRecordIter() = default;

    // Rewinds so that the next Advance() yields the first record.
    virtual void Reset() = 0;
    // Moves to the next record; false once the data are exhausted.
    virtual bool Advance() = 0;
    // The current record (after a successful Advance), possibly null.
    virtual const Record* GetRecord() const = 0;

    // A source that can fail while reading (a file that disappeared or
    // changed between passes) reports it here; empty means no failure.
    virtual std::string GetSourceError() const { return {}; }
};

// True when the source holds at least one record; leaves the source rewound.
bool HasAnyRecord(MultiPassRecordIter& iter);

} // namespace MCCommon_850
