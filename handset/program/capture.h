// Evidence of one run, for whoever has to find out what went wrong: an archive with the command, what it
// printed, what passed between it and the modem, the logs, and what kind of handset it was.
#pragma once

#include <string>
#include <vector>

#include "session.h"

namespace handset {

/// Runs the command against the handset that lives in the folder of the options, or of VXK_HANDSET_DIR, else
/// against one that is booted for it, and packs the archive `out`, by default vxk-capture-TIME.tar.gz. What
/// the command prints is printed, too. Returns its status as run_command() does; throws Error.
int capture(const BootOptions& options, const std::string& out, const std::vector<std::string>& command);

}  // namespace handset
