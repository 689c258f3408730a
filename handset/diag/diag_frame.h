// Diag on a serial line: each packet with a CRC behind it (CRC-16/X.25, the low byte first), 7E at its end,
// and what would be taken for that escaped: 7D 5E stands for 7E, 7D 5D for 7D.
#pragma once

#include <cstdint>
#include <optional>

#include "wire.h"

namespace handset {

wire::Bytes diag_frame(wire::View packet);

/// One frame as it arrived. A packet has one byte at least.
struct DiagFrame {
    bool whole = false;  // its CRC fits, and there was room for it
    wire::Bytes bytes;   // the packet; of a frame that is not whole, what arrived of it
};

class DiagFrameReader {
public:
    /// The longest packet, and all that is ever kept of one that does not end.
    static constexpr size_t kPacketMax = 16384;

    /// Takes one byte, and returns the frame that it ends. Nothing is ended by the first of two ends
    /// in a row.
    std::optional<DiagFrame> take(uint8_t byte);

    void forget() { *this = DiagFrameReader(); }

private:
    wire::Bytes bytes_;
    bool escaped_ = false;
    bool too_long_ = false;
};

}  // namespace handset
