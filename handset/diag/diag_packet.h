// What travels on the diag socket: the ops of a client and the events of the handset, by number and by the
// name that the profile and the wire log use.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "wire.h"

namespace handset {

class Section;
class WireLine;

/// One field of a packet, and its name in the wire log. The last three take all that is left.
struct DiagField {
    enum Kind { kNone, kU8, kU16, kI32, kCommand, kResponse, kBytes };
    Kind kind = kNone;
    const char* name = "";
};
using DiagFields = std::array<DiagField, 2>;

struct DiagOp {
    uint8_t number;
    const char* name;
    int32_t done;        // the result of success
    int32_t refused;     // the result when the handset will not do it
    DiagFields request;  // behind the op
    DiagFields reply;    // behind the op and the result
};

constexpr size_t kDiagOps = 10;

/// Ops are numbered from 1 to kDiagOps. Null when there is no such op.
const DiagOp* diag_op(uint8_t number);
const DiagOp* diag_op(std::string_view name);

/// Reads an op that the profile names, or gives by its number.
void read_diag_op(Section& section, const char* key, std::optional<uint32_t>& number);

/// "send(4)"; an op that there is not is "unknown".
std::string diag_op_label(uint8_t number);

/// Whether a request brings all the fields of its op.
bool diag_request_is_whole(const DiagOp& op, wire::View packet);

/// The number of an event, by its name.
std::optional<uint8_t> diag_event(std::string_view name);

/// Write a packet, which has one byte at least, into the wire log.
void describe_diag_request(wire::View packet, WireLine& line);
void describe_diag_answer(wire::View packet, WireLine& line);
void describe_diag_event(wire::View packet, WireLine& line);

}  // namespace handset
