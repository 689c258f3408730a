// The card of slot 1 as the modem itself uses it.
#pragma once

#include <optional>
#include <string>

#include "at_commands.h"
#include "sim_access.h"

namespace handset {

constexpr uint8_t kAtSlot = 1;

/// What keeps the modem from using the card: none there, or a code that it wants first.
std::optional<AtError> sim_obstacle(SimAccess& sim);

/// The digits of the card's ICCID, and of its subscription's IMSI; nothing when they cannot be read.
std::optional<std::string> sim_iccid(SimAccess& sim);
std::optional<std::string> sim_imsi(SimAccess& sim);

/// Tries the PIN, or with a new one the code that unblocks it.
std::optional<AtError> enter_pin(SimAccess& sim, const std::string& code, const std::string& new_pin);

}  // namespace handset
