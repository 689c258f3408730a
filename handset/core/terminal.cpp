#include "terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "core.h"
#include "error.h"

namespace handset {
namespace {

// What a reader that does not read may make the handset keep for him, beside what the kernel keeps.
constexpr size_t kUnsentMax = 256 * 1024;

// How often a terminal is looked at that nothing tells of its openings.
constexpr EventLoop::Milliseconds kLookAgain{50};

}  // namespace

Terminal::Terminal(Core& core, const std::string& name, Received received)
    : core_(core), link_(core.folder().at(name)), received_(std::move(received)) {
    try {
        open_device();
    } catch (const Error& error) {
        complain(error.what());
    }
}

void Terminal::open_device() {
    char device[64];
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0 ||
        ptsname_r(master_, device, sizeof device) != 0)
        throw system_error("cannot open a terminal for " + link_, errno);
    if (!start_anew(device))
        throw system_error(std::string("cannot set up the terminal ") + device, errno);
    opening_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (opening_ >= 0 && inotify_add_watch(opening_, device, IN_OPEN | IN_CLOSE) >= 0)
        opening_watch_ = core_.loop().watch(opening_, EPOLLIN, [this](uint32_t) { look(); });
    else
        look_again();
    const std::string staged = core_.folder().staging_name();
    if (symlink(device, staged.c_str()) != 0 || rename(staged.c_str(), link_.c_str()) != 0)
        throw system_error("cannot link " + link_, errno);
    device_ = device;
}

// A user has a hundred or so watches, fewer than handsets where many are tested at once.
void Terminal::look_again() {
    timer_ = core_.loop().after(kLookAgain, [this] {
        if (watch_ != 0 || !is_deserted() || holds_unread())
            look();
        look_again();
    });
}

bool Terminal::holds_unread() const {
    pollfd state{master_, POLLIN, 0};
    return poll(&state, 1, 0) == 1 && (state.revents & POLLIN) != 0;
}

Terminal::~Terminal() {
    core_.loop().forget(watch_);
    core_.loop().forget(opening_watch_);
    core_.loop().cancel(timer_);
    core_.loop().cancel(again_);
    if (!device_.empty())
        unlink(link_.c_str());
    for (const int fd : {opening_, master_}) {
        if (fd >= 0)
            close(fd);
    }
}

bool Terminal::is_deserted() const {
    if (master_ < 0)
        return true;
    pollfd state{master_, 0, 0};
    return poll(&state, 1, 0) == 1 && (state.revents & POLLHUP) != 0;
}

// Somebody has opened or closed the terminal; whoever it was may be gone by now, and another be there.
void Terminal::look() {
    std::array<char, 4096> events;
    while (read(opening_, events.data(), events.size()) > 0) {
    }
    const bool was_open = watch_ != 0;
    if (!is_deserted()) {
        if (!was_open) {
            watch_ = core_.loop().watch(master_, 0, [this](uint32_t ready_for) { ready(ready_for); });
            choose_events();
            if (changed_)
                changed_(true);
        }
        return;
    }
    core_.loop().forget(std::exchange(watch_, 0));
    receive_all();
    unsent_.clear();
    start_anew(device_.c_str());
    // What it was told of is its own doing.
    while (read(opening_, events.data(), events.size()) > 0) {
    }
    if (was_open && changed_)
        changed_(false);
    // Nothing told of one who came meanwhile, whether he is still there or only what he wrote.
    core_.loop().cancel(again_);
    if (!is_deserted() || (!paused_ && holds_unread()))
        again_ = core_.loop().after(EventLoop::Milliseconds(0), [this] { look(); });
    core_.flush();
}

// Whoever opens the terminal next finds no modes of his forerunners, and nothing that they left unread: no
// echo, no line editing, no translation.
bool Terminal::start_anew(const char* device) {
    const int fd = open(device, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct termios mode {};
    tcgetattr(fd, &mode);
    cfmakeraw(&mode);
    tcsetattr(fd, TCSANOW, &mode);
    tcflow(fd, TCOON);
    ioctl(fd, TIOCNXCL);
    tcflush(master_, TCOFLUSH);
    tcflush(fd, TCIFLUSH);
    close(fd);
    return true;
}

bool Terminal::echoes() const {
    // The master shows the modes of its other side.
    struct termios mode {};
    return tcgetattr(master_, &mode) == 0 && (mode.c_lflag & ECHO) != 0;
}

void Terminal::send(wire::View bytes) {
    if (!is_open() || unsent_.size() + bytes.size > kUnsentMax)
        return;
    unsent_.insert(unsent_.end(), bytes.data, bytes.data + bytes.size);
    send_unsent();
}

void Terminal::send_unsent() {
    size_t sent = 0;
    while (sent < unsent_.size()) {
        const ssize_t size = write(master_, unsent_.data() + sent, unsent_.size() - sent);
        if (size <= 0)
            break;
        sent += static_cast<size_t>(size);
    }
    unsent_.erase(unsent_.begin(), unsent_.begin() + static_cast<ptrdiff_t>(sent));
    choose_events();
}

void Terminal::choose_events() {
    core_.loop().change(watch_, (paused_ ? 0U : EPOLLIN) | (unsent_.empty() ? 0U : EPOLLOUT));
}

void Terminal::pause() {
    paused_ = true;
    choose_events();
}

void Terminal::resume() {
    paused_ = false;
    choose_events();
    // Of a writer who has gone meanwhile nothing is heard any more.
    if (watch_ == 0)
        receive_all();
}

void Terminal::ready(uint32_t events) {
    if ((events & EPOLLHUP) != 0)
        return look();
    if ((events & EPOLLOUT) != 0)
        send_unsent();
    if ((events & EPOLLIN) != 0)
        receive();
    core_.flush();
}

bool Terminal::receive() {
    std::array<uint8_t, kChunk> bytes;
    const ssize_t size = paused_ ? 0 : read(master_, bytes.data(), bytes.size());
    if (size <= 0)
        return false;
    received_({bytes.data(), static_cast<size_t>(size)});
    return true;
}

// Of those who have gone, which cannot be without end.
void Terminal::receive_all() {
    while (receive()) {
    }
}

}  // namespace handset
