// What the modem responds to a diag command, on whatever port it arrives: what the profile says, else what
// the peripheral does by itself.
#pragma once

#include "diag_masks.h"
#include "diag_profile.h"

namespace handset {

class Core;

/// The response with its bytes. `masks` are those of the client that sent the command, which has one byte at
/// least.
DiagResponse diag_response(const DiagAnswers& answers, DiagMasks& masks, wire::View command);

/// From now on they can be set while the handset runs.
void let_change(Core& core, DiagAnswers& answers);

}  // namespace handset
