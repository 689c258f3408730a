// The records of the modem's measurements: how their fields are packed, and what a handset measures whose
// profile says nothing. No two default records are alike, so that a value that comes
// from the wrong place is seen.
#pragma once

#include <cstdint>

#include "wire.h"

namespace handset {

class Section;

/// The packed record of one of them, with the default measurements of a subscription (0 or 1).
wire::Bytes default_record(uint32_t id, uint16_t sub);

/// The same with the fields that stand in the section. An id without a record has no bytes and
/// takes no field.
wire::Bytes read_record(Section& section, uint32_t id, uint16_t sub);

/// Changes the fields of a record that stand in the section, and leaves the others. A record that was cut or
/// has other bytes is made a whole one first.
void change_record(Section& section, uint32_t id, uint16_t sub, wire::Bytes& record);

}  // namespace handset
