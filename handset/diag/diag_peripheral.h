// The modem's diag peripheral: what it answers to a command by itself. It knows
//   0x00 version             dates and times of the build and the release, and the model's numbers
//   0x1D time                the present time
//   0x7B loop-back           the command itself
//   0x7C extended build id   names of the build and the model
// and answers anything else with 0x13, bad command, and the command behind it.
#pragma once

#include "wire.h"

namespace handset {

/// A command has one byte at least.
wire::Bytes answer_diag_command(wire::View command);

}  // namespace handset
