#include "file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace host {

namespace {

int write_new_file(const std::string& path, const void* bytes, size_t size) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0)
        return errno;
    const int error = write_all(fd, bytes, size);
    if (close(fd) != 0 && error == 0)
        return errno;
    return error;
}

}  // namespace

int write_all(int fd, const void* bytes, size_t size) {
    const char* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = write(fd, next, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        next += count;
        size -= static_cast<size_t>(count);
    }
    return 0;
}

int replace_file(const std::string& path, const std::string& beside, const void* bytes, size_t size) {
    int error = write_new_file(beside, bytes, size);
    if (error == 0 && rename(beside.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0)
        unlink(beside.c_str());
    return error;
}

}  // namespace host
