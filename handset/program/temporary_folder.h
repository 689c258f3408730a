// A folder that goes with its handset.
#pragma once

#include <string>

namespace handset {

/// Lives in $TMPDIR, or in /tmp when that is unset or too long for the sockets.
class TemporaryFolder {
public:
    /// Creates the folder, and removes those of this user whose handset was killed before it
    /// could. Throws Error.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

}  // namespace handset
