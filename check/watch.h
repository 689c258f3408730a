// Repeats a measurement for a person who tunes an antenna, or for a file.
#pragma once

#include "command_check.h"

namespace check {

/// How a measurement is repeated.
struct Watch {
    std::chrono::milliseconds period{1000};  ///< from one start to the next
    int count = 0;                           ///< how often; 0: until SIGINT or SIGTERM
    bool live = false;                       ///< a table that stays in its place, for a terminal; else CSV
};

/// Repeats the command. A live table goes to standard output; CSV does too, and its summary to standard
/// error. Returns the worst verdict.
Verdict watch(const Handset& handset, const std::vector<std::string>& words, const Rules& rules,
              const Watch& how);

}  // namespace check
