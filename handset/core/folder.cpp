#include "folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "error.h"
#include "file.h"
#include "layout.h"

namespace handset {
namespace {

namespace fs = std::filesystem;

struct flock whole_file_lock() {
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    return range;
}

}  // namespace

std::string default_folder() {
    const char* named = host::named_handset_folder();
    return named != nullptr ? resolved_folder(named) : host::default_handset_folder();
}

std::string resolved_folder(const std::string& path) {
    std::error_code ignored;
    fs::path resolved = fs::weakly_canonical(fs::absolute(path), ignored);
    if (resolved.empty())
        return path;
    // "x/" names the folder x, but its last component is empty.
    if (!resolved.has_filename() && resolved.has_parent_path())
        resolved = resolved.parent_path();
    return resolved.string();
}

std::optional<pid_t> running_handset(const std::string& folder) {
    const int fd = open((folder + "/lock").c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    struct flock range = whole_file_lock();
    char text[32] = {};
    const bool held = fcntl(fd, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
    const bool named = held && read(fd, text, sizeof text - 1) > 0;
    close(fd);
    if (!held)
        return std::nullopt;
    return named ? static_cast<pid_t>(strtol(text, nullptr, 10)) : 0;
}

std::optional<wire::Bytes> read_file(const std::string& path, int& error) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        error = errno;
        return std::nullopt;
    }
    struct stat info {};
    wire::Bytes content;
    error = fstat(fd, &info) != 0 ? errno : S_ISREG(info.st_mode) ? 0 : EISDIR;
    if (error == 0)
        content.resize(static_cast<size_t>(info.st_size));
    size_t done = 0;
    while (error == 0 && done < content.size()) {
        const ssize_t count = read(fd, content.data() + done, content.size() - done);
        if (count < 0 && errno != EINTR)
            error = errno;
        if (count == 0)
            break;
        if (count > 0)
            done += static_cast<size_t>(count);
    }
    close(fd);
    content.resize(done);
    if (error != 0)
        return std::nullopt;
    return content;
}

std::optional<std::string> read_text(const std::string& path) {
    int error = 0;
    const auto content = read_file(path, error);
    if (!content)
        return std::nullopt;
    return std::string(content->begin(), content->end());
}

Folder::Folder(std::string path) : path_(std::move(path)) {
    const size_t limit = host::kSocketPathMax - ("/" + host::qmi_place(UINT16_MAX)).size();
    if (path_.size() > limit)
        throw Error("the folder's name is too long for a socket (" + std::to_string(path_.size()) +
                    " characters, at most " + std::to_string(limit) + "): " + path_);
    create();
    lock();
    remove_leftovers();
    for (const char* name : {"qmi", "properties", "log", "efs", "nv", "state", "staging"}) {
        if (mkdir(at(name).c_str(), 0700) != 0 && errno != EEXIST)
            throw system_error("cannot create the folder " + at(name), errno);
    }
}

Folder::~Folder() {
    close(lock_fd_);
}

void Folder::create() {
    if (mkdir(path_.c_str(), 0700) != 0 && errno != EEXIST)
        throw system_error("cannot create the folder " + path_, errno);
    // The default folder's name is known to everybody who may write beside it: a link or a stranger's folder
    // is refused, not followed.
    const int fd = open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        throw system_error("cannot use the folder " + path_, errno);
    struct stat info {};
    const bool ours = fstat(fd, &info) == 0 && (info.st_uid == geteuid() || geteuid() == 0);
    const bool closed = ours && ((info.st_mode & 07777) == 0700 || fchmod(fd, 0700) == 0);
    close(fd);
    if (!closed)
        throw Error("cannot use the folder " + path_ + ": it belongs to another user");
}

void Folder::lock() {
    lock_fd_ = open(at("lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock_fd_ < 0)
        throw system_error("cannot use the folder " + path_, errno);
    struct flock range = whole_file_lock();
    if (fcntl(lock_fd_, F_OFD_SETLK, &range) != 0) {
        const pid_t owner = running_handset(path_).value_or(0);
        close(lock_fd_);
        throw Error("a handset is already running in " + path_ +
                    (owner > 0 ? " (process " + std::to_string(owner) + ")" : ""));
    }
    const std::string owner = std::to_string(getpid()) + "\n";
    if (ftruncate(lock_fd_, 0) != 0 || host::write_all(lock_fd_, owner.data(), owner.size()) != 0)
        throw system_error("cannot write in the folder " + path_, errno);
}

void Folder::remove_leftovers() const {
    std::error_code ignored;
    fs::remove_all(at("staging"), ignored);
    for (const char* place : {"", "qmi"}) {
        for (const auto& entry : fs::directory_iterator(at(place), ignored)) {
            if (entry.is_socket(ignored))
                fs::remove(entry.path(), ignored);
        }
    }
}

std::string Folder::staging_name() {
    return at("staging/" + std::to_string(++staged_));
}

int Folder::replace(const std::string& absolute_path, wire::View content) {
    std::error_code failed;
    fs::create_directories(fs::path(absolute_path).parent_path(), failed);
    return failed ? failed.value()
                  : host::replace_file(absolute_path, staging_name(), content.data, content.size);
}

}  // namespace handset
