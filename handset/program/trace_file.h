// A trace for a replay: JSON lines as `vxk-handset log --json` writes them, or a capture that has them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "replay.h"

namespace handset {

struct Recording {
    std::vector<TraceEvent> trace;
    std::map<std::string, std::string> properties;  // of the handset, where the file brings them
};

/// Reads a trace or a capture ("-": a trace from standard input). Throws Error, with the line's number where
/// a line is no line of a trace.
Recording read_recording(const std::string& path);

}  // namespace handset
