#include "at_channel.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "core.h"
#include "error.h"

namespace handset {
namespace {

// The device that the modem's AT channel is on a real handset, and so the name that the tool writes to. All
// handsets of this machine share it; one that must not touch it is given another by the environment.
std::string device_name() {
    const char* named = getenv("VXK_AT_DEVICE");
    return named != nullptr && *named != '\0' ? named : "/dev/smd8";
}

constexpr size_t kLineMax = 4096;

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
        return "it is there and is not a link";
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

AtChannel::AtChannel(Core& core) : core_(core), device_(device_name()), link_(core.folder().at("at")) {
    core_.state().clear("at");
    core_.state().set("at", "terminal", "none");
    core_.state().set("at", "device", "none");
    core_.state().set("at", "lines", lines_);
    try {
        open_terminal();
    } catch (const Error& error) {
        complain(error.what());
        return;
    }
    link_device();
    watch_ = core_.loop().watch(master_, EPOLLIN, [this](uint32_t) { receive(); });
}

AtChannel::~AtChannel() {
    if (watch_ != 0) {
        core_.loop().forget(watch_);
        const DeviceFolderLock lock(device_);
        if (link_target(device_) == link_)
            unlink(device_.c_str());
        unlink(link_.c_str());
    }
    for (const int fd : {terminal_, master_}) {
        if (fd >= 0)
            close(fd);
    }
}

void AtChannel::open_terminal() {
    char name[64];
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0 ||
        ptsname_r(master_, name, sizeof name) != 0)
        throw system_error("cannot open a terminal for the AT channel", errno);
    terminal_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    // No echo, no line editing, no translation: what is written arrives as it is.
    struct termios mode {};
    if (terminal_ >= 0 && tcgetattr(terminal_, &mode) == 0)
        cfmakeraw(&mode);
    if (terminal_ < 0 || tcsetattr(terminal_, TCSANOW, &mode) != 0)
        throw system_error(std::string("cannot set up the terminal ") + name, errno);
    const std::string staged = core_.folder().staging_name();
    if (symlink(name, staged.c_str()) != 0 || rename(staged.c_str(), link_.c_str()) != 0)
        throw system_error("cannot link " + link_, errno);
    core_.state().set("at", "terminal", name);
}

void AtChannel::link_device() {
    const DeviceFolderLock lock(device_);
    const std::string obstacle = take_device(device_, link_);
    if (obstacle.empty())
        core_.state().set("at", "device", device_);
    else
        complain("cannot link " + device_ + ", so vxk 8 does not reach this handset, only " + link_ +
                 " does: " + obstacle);
}

void AtChannel::receive() {
    char bytes[1024];
    ssize_t count = 0;
    while ((count = read(master_, bytes, sizeof bytes)) > 0) {
        for (ssize_t i = 0; i < count; ++i) {
            if (bytes[i] != '\n')
                line_ += bytes[i];
            if (bytes[i] == '\n' || line_.size() == kLineMax)
                log_line();
        }
    }
    core_.wire_log().flush();
}

void AtChannel::log_line() {
    core_.wire_log().add(WireLine("at", 0, Direction::kToModem).text("line", line_),
                         {line_.data(), line_.size()});
    core_.state().set("at", "lines", ++lines_);
    line_.clear();
}

}  // namespace handset
