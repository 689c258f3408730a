// Files that are replaced as a whole. Any thread.
#pragma once

#include <cstddef>
#include <string>

namespace host {

/// Writes all bytes, however many writes that takes. Returns 0 or an errno.
int write_all(int fd, const void* bytes, size_t size);

/// Gives the file at `path` new content by writing `beside`, a name on the same disk that nobody else uses,
/// and renaming it. Readers see the old content or the new one, also when the process is killed in between.
/// Returns 0 or an errno; then the old content stands and nothing is left beside it. Mode 0600.
int replace_file(const std::string& path, const std::string& beside, const void* bytes, size_t size);

}  // namespace host
