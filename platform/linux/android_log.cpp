// Android's log and syslog, whose messages go where the modem's machine keeps its system log.
//
// vsyslog is defined here. A fortified build would have the C library's header define it inline.
#undef _FORTIFY_SOURCE

#include "android/log.h"

#include <sys/syslog.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "modem.h"

namespace seam {

namespace {

/// Makes one line of a message: a line break at its end is dropped, one inside it becomes a blank. Returns
/// the new size.
size_t make_one_line(char* text, size_t size) {
    if (size > 0 && text[size - 1] == '\n')
        --size;
    std::replace(text, text + size, '\n', ' ');
    return size;
}

/// One message, one line. The caller's errno is what "%m" prints, and stays as it is.
__attribute__((format(printf, 3, 0))) bool log_message(char priority, const char* tag, const char* fmt,
                                                       va_list args) {
    constexpr size_t kHead = LogMessage::kHeadMax;
    const int callers_errno = errno;
    LogMessage message{{}, priority, tag != nullptr ? tag : "", nullptr, 0};
    gettimeofday(&message.time, nullptr);
    char usual[kHead + 1024];
    va_list again;
    va_copy(again, args);
    errno = callers_errno;
    const int formatted = vsnprintf(usual + kHead, sizeof usual - kHead, fmt, args);
    const size_t size = formatted > 0 ? static_cast<size_t>(formatted) : 0;
    std::string unusual;
    message.text = usual + kHead;
    if (size >= sizeof usual - kHead) {
        unusual.resize(kHead + size + 1);
        message.text = unusual.data() + kHead;
        errno = callers_errno;
        vsnprintf(message.text, size + 1, fmt, again);
    }
    va_end(again);
    message.size = make_one_line(message.text, size);
    const bool written = modem()->log->write(message);
    errno = callers_errno;
    return written;
}

constexpr char kSyslogLetters[] = "FFFEWIID";   // by LOG_EMERG to LOG_DEBUG
constexpr char kAndroidLetters[] = "IIVDIWEF";  // by ANDROID_LOG_UNKNOWN to ANDROID_LOG_FATAL

}  // namespace

}  // namespace seam

extern "C" int __android_log_print(int priority, const char* tag, const char* fmt, ...) {
    if (priority < ANDROID_LOG_UNKNOWN || priority > ANDROID_LOG_FATAL)
        return 0;
    va_list args;
    va_start(args, fmt);
    const bool written = seam::log_message(seam::kAndroidLetters[priority], tag, fmt, args);
    va_end(args);
    return written ? 1 : -1;
}

extern "C" void vsyslog(int priority, const char* fmt, va_list args) {
    seam::log_message(seam::kSyslogLetters[LOG_PRI(priority)], program_invocation_short_name, fmt, args);
}

/// What a caller compiled with _FORTIFY_SOURCE calls in place of vsyslog.
extern "C" __attribute__((format(printf, 3, 0))) void __vsyslog_chk(int priority, int, const char* fmt,
                                                                    va_list args);
extern "C" void __vsyslog_chk(int priority, int, const char* fmt, va_list args) {
    vsyslog(priority, fmt, args);
}
