// What the modem responds to a diag command, on whatever port it arrives: what the profile says, else what
// the peripheral does by itself.
#pragma once

#include "diag_masks.h"
#include "diag_profile.h"

namespace handset {

class Core;

class DiagResponder {
public:
    /// The answers can be set while the handset runs.
    DiagResponder(Core& core, DiagAnswers answers);
    DiagResponder(const DiagResponder&) = delete;
    DiagResponder& operator=(const DiagResponder&) = delete;

    const DiagAnswers& answers() const { return answers_; }

    /// The response with its bytes. `masks` are those of the client that sent the command, which has one byte
    /// at least.
    DiagResponse response(DiagMasks& masks, wire::View command) const;

private:
    DiagAnswers answers_;
};

}  // namespace handset
