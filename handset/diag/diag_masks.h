// What one client of the diag interface wants to hear: which logs, which messages, and events or none. The
// commands that ask for this and change it are answered here:
//   0x60 event report      on or off
//   0x73 log config        ranges, and the mask of an equipment id, set and read
//   0x7D message config    ranges, and masks by subsystem, set and read
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "wire.h"

namespace handset {

enum DiagMaskCode : uint8_t { kDiagEventReport = 0x60, kDiagLogConfig = 0x73, kDiagMessageConfig = 0x7D };

class DiagMasks {
public:
    DiagMasks();

    /// Answers a command that begins with one of the codes above. Nothing when its length lies; an answer of
    /// `refused` when what it asks for is not there.
    struct Outcome {
        enum Kind { kAnswer, kBadLength, kBadParameters } kind;
        wire::Bytes answer;
    };
    Outcome carry_out(wire::View command);

    /// Whether a log is wanted: its code is the equipment id, in the upper four bits, and the item.
    bool has_log(uint16_t code) const;

private:
    Outcome event_report(wire::Reader& command);
    Outcome log_config(wire::Reader& command);
    Outcome message_config(wire::Reader& command);
    Outcome message_range(uint8_t operation, wire::Reader& command);

    std::map<uint32_t, wire::Bytes> logs_;         // masks by equipment id
    std::vector<std::vector<uint32_t>> messages_;  // masks by range and subsystem
};

}  // namespace handset
