// The card slots as other subjects than their own reach them: logical channels, and commands on them.
#pragma once

#include <cstdint>
#include <optional>

#include "wire.h"

namespace handset {

class SimAccess {
public:
    struct Channel {
        uint8_t number = 0;  // 0: none was opened
        uint16_t words = 0;  // of the card; 0: it did not answer
    };

    SimAccess() = default;
    virtual ~SimAccess() = default;
    SimAccess(const SimAccess&) = delete;
    SimAccess& operator=(const SimAccess&) = delete;

    /// Opens a logical channel to the card of a slot, which is counted from 1, and selects the
    /// application on it.
    virtual Channel open_channel(uint8_t slot, wire::View aid) = 0;

    /// False when the channel is not open.
    virtual bool close_channel(uint8_t slot, uint8_t channel) = 0;

    /// The card's answer with its status words; nothing when no card answers or the channel is not open. The
    /// basic channel, 0, always is.
    virtual std::optional<wire::Bytes> transmit(uint8_t slot, uint8_t channel, wire::View apdu) = 0;
};

}  // namespace handset
