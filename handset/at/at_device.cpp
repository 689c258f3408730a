#include "at_device.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "folder.h"

namespace handset {
namespace {

std::string device_name() {
    const char* named = getenv("VXK_AT_DEVICE");
    return named != nullptr && *named != '\0' ? named : "/dev/smd8";
}

// Where a symbolic link points; empty when the name is something else.
std::string link_target(const std::string& link) {
    char target[PATH_MAX];
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length < 0 ? "" : std::string(target, static_cast<size_t>(length));
}

// The folder of the handset whose link the device is: a handset links it to the "at" of its own folder.
std::string owner_of(const std::string& target) {
    const std::string name = "/at";
    if (target.size() <= name.size() || target.compare(target.size() - name.size(), name.size(), name) != 0)
        return "";
    return target.substr(0, target.size() - name.size());
}

std::string what_it_is(const std::string& device) {
    struct stat status {};
    if (lstat(device.c_str(), &status) == 0 && S_ISREG(status.st_mode))
        return "it is a plain file, such as vxk 8 leaves where no handset runs; remove it with: rm " + device;
    return "it is there and is not a link";
}

// Links the device, in place of a link that a handset has left there when it was killed. Returns what stands
// in the way, or nothing.
std::string take_device(const std::string& device, const std::string& link) {
    if (symlink(link.c_str(), device.c_str()) == 0)
        return "";
    if (errno != EEXIST)
        return strerror(errno);
    const std::string target = link_target(device);
    const std::string owner = owner_of(target);
    if (target.empty())
        return what_it_is(device);
    if (owner.empty())
        return "it is a link to " + target;
    if (target != link && running_handset(owner))
        return "it belongs to the handset in " + owner;
    if (unlink(device.c_str()) != 0 || symlink(link.c_str(), device.c_str()) != 0)
        return strerror(errno);
    return "";
}

// Keeps two handsets from taking the same dead link for theirs at the same moment.
class DeviceFolderLock {
public:
    explicit DeviceFolderLock(const std::string& device)
        : fd_(open(device.substr(0, device.rfind('/') + 1).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (fd_ >= 0)
            flock(fd_, LOCK_EX);
    }
    ~DeviceFolderLock() {
        if (fd_ >= 0)
            close(fd_);
    }
    DeviceFolderLock(const DeviceFolderLock&) = delete;
    DeviceFolderLock& operator=(const DeviceFolderLock&) = delete;

private:
    int fd_;
};

}  // namespace

AtDevice::AtDevice(std::string link) : name_(device_name()), link_(std::move(link)) {
    const DeviceFolderLock lock(name_);
    obstacle_ = link_.empty() ? "it has no terminal" : take_device(name_, link_);
}

AtDevice::~AtDevice() {
    const DeviceFolderLock lock(name_);
    if (obstacle_.empty() && link_target(name_) == link_)
        unlink(name_.c_str());
}

}  // namespace handset
