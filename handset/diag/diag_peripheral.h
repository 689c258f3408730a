// The modem's diag peripheral: what it answers to a command by itself. It knows
//   0x00 version             dates and times of the build and the release, and the model's numbers
//   0x1D time                the present time
//   0x7B loop-back           the command itself
//   0x7C extended build id   names of the build and the model
// and what the masks of diag_masks.h are set by, and answers anything else with 0x13, bad command, and the
// command behind it; with 0x15 one of a wrong length, with 0x14 one that asks for what there is not.
#pragma once

#include "diag_masks.h"
#include "wire.h"

namespace handset {

/// A command has one byte at least; `masks` are those of the client that sent it.
wire::Bytes answer_diag_command(wire::View command, DiagMasks& masks);

/// The present time as logs and responses carry it: units of 1.25 ms since 6 January 1980 in the
/// upper 48 bits.
uint64_t diag_timestamp();

}  // namespace handset
