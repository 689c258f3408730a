// What is installed beside the program, or lies beside it in a build tree: the tool, and profiles
// ready to use.
#pragma once

#include <string>

namespace handset {

/// Puts the program's own folder first on PATH, so that a command finds vxk and vxk-handset by name. Without
/// a PATH, the system's programs follow.
void put_programs_on_path();

/// The file that a person means by a profile: a path that is there, else the installed profile of that name,
/// else the path as it was given. "-" is standard input.
std::string found_profile(const std::string& named);

}  // namespace handset
