// The handset that a command is run on: this machine's, a simulated one in a folder, one on the modem bus, or
// one behind adb.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "process.h"

namespace check {

struct Handset {
    std::string name;          ///< as the user wrote it; empty for this machine's
    std::string tool = "vxk";  ///< the tool's program, there
    bool adb = false;
    std::string serial;                 ///< for adb; empty: the only device
    std::vector<std::string> settings;  ///< "NAME=VALUE" for the tool's environment
    std::string trace = {};             ///< for adb: the file over there that the tool traces to; empty: none
};

/// A word with a '/' and "folder:DIR" name a simulated handset's folder, "qrtr" and "qrtr:NODE" a modem on
/// the bus, "adb:SERIAL" and every other word the serial of a handset behind adb.
Handset handset_of(const std::string& word, const std::string& tool);

/// A handset behind adb; without a serial the only one there is.
Handset adb_handset(const std::string& serial, const std::string& tool);

/// Runs the tool with these words, there. A status of more than 128 from behind adb is read as the signal
/// that it stands for.
Run run_tool(const Handset& handset, const std::vector<std::string>& words, std::chrono::milliseconds limit);

/// A word as a shell reads it back.
std::string shell_quoted(const std::string& word);

}  // namespace check
