// The folder in which one handset lives: who may use it, and how its files are written. A running handset
// holds a lock in it, which the kernel gives back however the handset ends.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "wire.h"

namespace handset {

/// What the environment names, else the default of this user.
std::string default_folder();

/// An absolute name without symbolic links for a folder that a person gave; it need not exist.
std::string resolved_folder(const std::string& path);

/// The process that runs a handset in the folder, or nothing when none does.
std::optional<pid_t> running_handset(const std::string& folder);

/// The whole content of a file, or nothing; `error` becomes the errno of the failure.
std::optional<wire::Bytes> read_file(const std::string& path, int& error);
std::optional<std::string> read_text(const std::string& path);

class Folder {
public:
    /// Creates the folder or takes it over from a handset that has ended, with all that it keeps; what only a
    /// running handset has (sockets, half-written files) is removed. Throws Error when the folder cannot be
    /// used, has a name too long for sockets, or has a live handset in it.
    explicit Folder(std::string path);
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return path_; }
    std::string at(const std::string& name) const { return path_ + "/" + name; }

    /// A name for something that is moved to its place when it is complete: on the same disk, new
    /// at each call.
    std::string staging_name();

    /// Gives the file the new content as a whole, and its folders where they are missing. Returns 0 or an
    /// errno; then the old content stands.
    int replace(const std::string& absolute_path, wire::View content);
    int replace(const std::string& absolute_path, const std::string& content) {
        return replace(absolute_path, wire::View(content.data(), content.size()));
    }

private:
    void create();
    void lock();
    void remove_leftovers() const;

    std::string path_;
    int lock_fd_ = -1;
    unsigned staged_ = 0;
};

}  // namespace handset
