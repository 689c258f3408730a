// What the person at the shell is told on standard error.
#pragma once

#include <string>

namespace seam {

/// Prints "vxk: <line>", each line once a process. Any thread.
void note(const std::string& line);

}  // namespace seam
