// One "cmn" command to the modem, and its answer printed as it came: what the card status commands
// are made of.
#pragma once

#include <cstdint>

/// Sends command code t with l bytes at v in the type-length-value form of a common request and prints the
/// answer. A null v or an l above 491 sends no value. Returns the channel's result (also when the modem
/// refused the command, which is only printed), or -103 for an answer shorter than it says. An answer whose
/// length makes no sense is fatal.
int kelvra_cmn_cmd_send(int t, uint32_t l, const char* v);
