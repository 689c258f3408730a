// The records of log/wire.raw: every packet and every event that the wire log tells of, as bytes. One record
// is, all numbers little-endian:
//
//   u32 length of what follows
//   u64 seconds, u32 nanoseconds since 1970
//   u8  direction: 0 to the modem, 1 from it, 2 something happened
//   u32 connection, 0 for none; u32 process behind it, 0 when it is unknown
//   u32 number: the transaction or op that stays unanswered, the length of a packet that was too long,
//       1 for a connection that the modem closed; else 0
//   u8  length and the road with its service: "qmi/uim", "diag"
//   u8  length and the name of the fault that struck
//   u8  length and what happened; 0: the record is of a packet
//   u16 length and the command of the process that has connected
//   u32 zeros at the packet's end, which are left out
//   the packet
//
// Records are written some milliseconds after their lines in wire.log. One that is cut short, as a full disk
// may leave it, is the last one.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "wire.h"

namespace handset {

enum class Direction : uint8_t { kToModem, kFromModem, kEvent };

struct WireRecord {
    std::string where;
    uint32_t connection = 0;
    Direction direction = Direction::kEvent;
    pid_t pid = 0;
    uint32_t number = 0;
    std::string fault;
    std::string event;
    std::string command;
    timespec time{};
    wire::Bytes packet;
};

/// A record with its own time and packet left aside for these.
void append_record(std::string& out, const WireRecord& record, const timespec& time, wire::View packet);

/// Takes the first record from the front of `bytes`, or nothing, and leaves them, when there is no whole one.
std::optional<WireRecord> take_record(wire::View& bytes);

}  // namespace handset
