#include <sys/socket.h>
#include <sys/syslog.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <mutex>

#include "layout.h"
#include "system_log.h"
#include "unique_fd.h"
#include "wire.h"

namespace seam {

namespace {

constexpr char kAndroidSocket[] = "/dev/socket/logdw";
constexpr char kSyslogSocket[] = "/dev/log";
constexpr char kPriorities[] = "VDIWEF";

size_t rank(char priority) {
    return static_cast<size_t>(std::max<ptrdiff_t>(strchr(kPriorities, priority) - kPriorities, 0));
}

/// "u8 log, u16 thread, u32 seconds, u32 nanoseconds, u8 priority, tag, NUL, text, NUL".
wire::Bytes android_head(const LogMessage& message) {
    constexpr uint8_t kMainLog = 0;
    constexpr uint8_t kVerbose = 2;
    const size_t tag_size = strnlen(message.tag, LogMessage::kTagMax);
    return wire::Writer()
        .u8(kMainLog)
        .u16(static_cast<uint16_t>(gettid()))
        .u32(static_cast<uint32_t>(message.time.tv_sec))
        .u32(static_cast<uint32_t>(message.time.tv_usec * 1000))
        .u8(static_cast<uint8_t>(kVerbose + rank(message.priority)))
        .bytes({message.tag, tag_size})
        .u8(0)
        .take();
}

/// "<facility and severity>Mmm dd hh:mm:ss tag: ".
wire::Bytes syslog_head(const LogMessage& message) {
    constexpr int kSeverities[] = {LOG_DEBUG, LOG_DEBUG, LOG_INFO, LOG_WARNING, LOG_ERR, LOG_CRIT};
    char text[LogMessage::kHeadMax];
    tm local{};
    localtime_r(&message.time.tv_sec, &local);
    char time[32];
    strftime(time, sizeof time, "%b %e %H:%M:%S", &local);
    const int size =
        snprintf(text, sizeof text, "<%d>%s %.*s: ", LOG_USER | kSeverities[rank(message.priority)], time,
                 static_cast<int>(LogMessage::kTagMax), message.tag);
    return wire::View(text, static_cast<size_t>(size)).copy();
}

/// Datagrams to a socket of the machine, which is looked for when the first message is written. The receiver
/// cuts a message that is too long for it.
class MachineLog : public SystemLog {
public:
    bool write(const LogMessage& message) override {
        std::call_once(looked_, [this] { connect(); });
        if (!socket_)
            return false;
        const wire::Bytes head = is_android_ ? android_head(message) : syslog_head(message);
        char* entry = message.text - head.size();
        std::copy(head.begin(), head.end(), entry);
        // Android's log takes a payload of 4,068 bytes: priority, tag and text.
        constexpr size_t kAndroidMax = 11 + 4068;
        size_t size = head.size() + message.size;
        if (is_android_) {
            size = std::min(size + 1, kAndroidMax);
            entry[size - 1] = '\0';
        }
        return send(socket_.get(), entry, size, MSG_DONTWAIT | MSG_NOSIGNAL) == static_cast<ssize_t>(size);
    }

private:
    void connect() {
        is_android_ = access(kAndroidSocket, F_OK) == 0;
        const auto address = host::socket_address(is_android_ ? kAndroidSocket : kSyslogSocket);
        host::UniqueFd fd(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        if (fd && ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0)
            socket_ = std::move(fd);
    }

    std::once_flag looked_;
    bool is_android_ = false;
    host::UniqueFd socket_;
};

}  // namespace

std::unique_ptr<SystemLog> machine_log() {
    return std::make_unique<MachineLog>();
}

}  // namespace seam
