// vsyslog is defined here. A fortified build would have the C library's header define it inline.
#undef _FORTIFY_SOURCE

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syslog.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "android/log.h"
#include "folder.h"

namespace workstation {

namespace {

/// Keeps the log open between lines. Never destroyed: other threads may log while the process ends.
class SystemLog {
public:
    /// One append: lines of several threads and processes never mix.
    bool append(const std::string& line) {
        pthread_mutex_lock(&mutex_);
        const bool written =
            is_open() && write(fd_, line.data(), line.size()) == static_cast<ssize_t>(line.size());
        pthread_mutex_unlock(&mutex_);
        return written;
    }

private:
    bool is_open() {
        const std::string folder = handset_folder();
        if (fd_ >= 0 && folder == folder_ && still_there())
            return true;
        if (fd_ >= 0)
            close(fd_);
        folder_ = folder;
        fd_ = open_in(folder + "/log");
        return fd_ >= 0;
    }

    // A handset that starts over in the same folder may have removed the file.
    bool still_there() const {
        struct stat status;
        return fstat(fd_, &status) == 0 && status.st_nlink > 0;
    }

    static int open_in(const std::string& log_folder) {
        mkdir(log_folder.c_str(), 0700);
        return open((log_folder + "/system.log").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    }

    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    std::string folder_;
    int fd_ = -1;
};

SystemLog& system_log() {
    static auto* log = new SystemLog;
    return *log;
}

/// "MM-DD HH:MM:SS.mmm PID TID P TAG: "
std::string line_head(char priority, const char* tag) {
    timeval now;
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char head[96];
    snprintf(head, sizeof head, "%02d-%02d %02d:%02d:%02d.%03d %d %d %c ", local.tm_mon + 1, local.tm_mday,
             local.tm_hour, local.tm_min, local.tm_sec, static_cast<int>(now.tv_usec / 1000), getpid(),
             gettid(), priority);
    return std::string(head) + (tag ? tag : "") + ": ";
}

__attribute__((format(printf, 2, 0))) void append_formatted(std::string& line, const char* fmt,
                                                            va_list args) {
    char usual[1024];
    va_list again;
    va_copy(again, args);
    const int size = vsnprintf(usual, sizeof usual, fmt, args);
    if (size > 0 && static_cast<size_t>(size) < sizeof usual) {
        line.append(usual, static_cast<size_t>(size));
    } else if (size > 0) {
        const size_t start = line.size();
        line.resize(start + static_cast<size_t>(size) + 1);
        vsnprintf(&line[start], static_cast<size_t>(size) + 1, fmt, again);
        line.pop_back();
    }
    va_end(again);
}

/// One message, one line: a line break at its end is dropped, one inside it becomes a blank. The caller's
/// errno is what
/// "%m" prints, and stays as it is.
__attribute__((format(printf, 3, 0))) bool log_message(char priority, const char* tag, const char* fmt,
                                                       va_list args) {
    const int callers_errno = errno;
    std::string line = line_head(priority, tag);
    const size_t start = line.size();
    errno = callers_errno;
    append_formatted(line, fmt, args);
    if (line.size() > start && line.back() == '\n')
        line.pop_back();
    std::replace(line.begin(), line.end(), '\n', ' ');
    line.push_back('\n');
    const bool written = system_log().append(line);
    errno = callers_errno;
    return written;
}

constexpr char kSyslogLetters[] = "FFFEWIID";   // by LOG_EMERG to LOG_DEBUG
constexpr char kAndroidLetters[] = "IIVDIWEF";  // by ANDROID_LOG_UNKNOWN to ANDROID_LOG_FATAL

}  // namespace

}  // namespace workstation

extern "C" int __android_log_print(int priority, const char* tag, const char* fmt, ...) {
    if (priority < ANDROID_LOG_UNKNOWN || priority > ANDROID_LOG_FATAL)
        return 0;
    va_list args;
    va_start(args, fmt);
    const bool written = workstation::log_message(workstation::kAndroidLetters[priority], tag, fmt, args);
    va_end(args);
    return written ? 1 : -1;
}

extern "C" void vsyslog(int priority, const char* fmt, va_list args) {
    workstation::log_message(workstation::kSyslogLetters[LOG_PRI(priority)], program_invocation_short_name,
                             fmt, args);
}

/// What a caller compiled with _FORTIFY_SOURCE calls in place of vsyslog.
extern "C" __attribute__((format(printf, 3, 0))) void __vsyslog_chk(int priority, int, const char* fmt,
                                                                    va_list args);
extern "C" void __vsyslog_chk(int priority, int, const char* fmt, va_list args) {
    vsyslog(priority, fmt, args);
}
