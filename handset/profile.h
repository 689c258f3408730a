// What kind of handset is simulated, as a profile file describes it. What stands in it is in subjects.h.
#pragma once

#include <string>

namespace handset {

struct Profile;

/// Reads a profile from JSON text; `name` is what error lines call it. Throws ProfileError.
Profile parse_profile(const std::string& text, const std::string& name);

/// Reads a profile from a file, a pipe, or with "-" standard input, at most 16 MiB. Throws Error.
Profile load_profile(const std::string& path);

}  // namespace handset
