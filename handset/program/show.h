// What a person asks about a handset, live or not: it is all in its folder.
#pragma once

#include <string>

namespace handset {

/// Prints services, state, properties and files of the handset in a folder. Returns 0; throws Error when
/// there is no handset's folder or standard output takes no more.
int show(const std::string& folder);

/// Prints the wire log or the system log, in colours when standard output is a terminal, and with `follow`
/// goes on until it is interrupted. Returns 0; throws Error when there is no log.
int show_log(const std::string& folder, bool system, bool follow);

/// Writes out what was printed. Throws Error when some of it is lost.
void flush_output();

}  // namespace handset
