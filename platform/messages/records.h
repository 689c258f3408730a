// The records inside the modem's measurements and inside its debug counters: which number stands where.
#pragma once

#include <cstdint>

#include "messages.h"

namespace messages {

struct RecordField {
    enum Kind : uint8_t { kU8, kU16, kU32, kF32 };
    const char* name;
    Kind kind;

    size_t size() const { return kind == kU8 ? 1 : kind == kU16 ? 2 : 4; }
};

/// The packed fields of a layout, of which several data ids may have one.
using RecordLayout = Rows<RecordField>;

struct Record {
    uint32_t id;  // the data id
    const RecordLayout* layout;
    uint8_t place;  // among the records of this layout
};

Rows<Record> records();
/// Null when the data id has no record.
const Record* record(uint32_t id);

/// The layouts, for whoever has more to say of their fields.
extern const RecordLayout kLteRecord;
extern const RecordLayout kNrRssiRecord;
extern const RecordLayout kNrSnrRecord;
extern const RecordLayout kNrRsrpRecord;
extern const RecordLayout kNrAntDiversityRecord;
extern const RecordLayout kWcdmaRecord;
extern const RecordLayout kGsmRecord;
extern const RecordLayout kAntInfoRecord;

/// A counter of the statistics feature, in the order in which they travel behind the version.
struct DebugCounter {
    const char* block;
    const char* name;
    uint8_t size;   // in bytes
    uint8_t since;  // the first version that has it
};

Rows<DebugCounter> debug_counters();

}  // namespace messages
