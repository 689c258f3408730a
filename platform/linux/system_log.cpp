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
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include "android/log.h"
#include "layout.h"

namespace seam {

namespace {

/// Keeps the log open between lines. Never destroyed: other threads may log while the process ends.
class SystemLog {
public:
    /// One append: lines of several threads and processes never mix.
    bool append(const char* line, size_t size, const timeval& now) {
        pthread_mutex_lock(&mutex_);
        const bool written = is_open(now) && write(fd_, line, size) == static_cast<ssize_t>(size);
        pthread_mutex_unlock(&mutex_);
        return written;
    }

private:
    // Looks once a millisecond: a look at every line would double what a line of a burst costs.
    bool is_open(const timeval& now) {
        const auto millisecond = now.tv_sec * int64_t{1000} + now.tv_usec / 1000;
        if (fd_ >= 0 && millisecond == looked_at_)
            return true;
        looked_at_ = millisecond;
        const std::string folder = host::handset_folder();
        if (fd_ >= 0 && folder == folder_ && still_there())
            return true;
        if (fd_ >= 0)
            close(fd_);
        folder_ = folder;
        fd_ = open_in(folder + "/");
        return fd_ >= 0;
    }

    // A handset that starts over in the same folder may have removed the file.
    bool still_there() const {
        struct stat status;
        return fstat(fd_, &status) == 0 && status.st_nlink > 0;
    }

    static int open_in(const std::string& folder) {
        mkdir((folder + host::kLogPlace).c_str(), 0700);
        return open((folder + host::kSystemLogPlace).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC,
                    0600);
    }

    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    std::string folder_;
    int fd_ = -1;
    int64_t looked_at_ = 0;
};

SystemLog& system_log() {
    static auto* log = new SystemLog;
    return *log;
}

constexpr size_t kTagMax = 255;
constexpr size_t kHeadMax = kTagMax + 100;

/// "MM-DD HH:MM:SS.mmm PID TID P TAG: ". Most lines come in bursts: what a thread's lines of one second share
/// is made once.
class Head {
public:
    /// Returns the length.
    size_t write(char* out, const timeval& now, char priority, const char* tag) {
        if (now.tv_sec != second_)
            prepare(now.tv_sec);
        char* end = append(out, time_);
        for (long unit = 100'000; unit >= 1000; unit /= 10)
            *end++ = static_cast<char>('0' + now.tv_usec / unit % 10);
        end = append(end, ids_);
        *end++ = priority;
        *end++ = ' ';
        end = append(end, tag ? std::string_view(tag).substr(0, kTagMax) : "");
        end = append(end, ": ");
        return static_cast<size_t>(end - out);
    }

private:
    void prepare(time_t second) {
        tm local{};
        localtime_r(&second, &local);
        strftime(time_, sizeof time_, "%m-%d %H:%M:%S.", &local);
        snprintf(ids_, sizeof ids_, " %d %d ", getpid(), gettid());
        second_ = second;
    }

    static char* append(char* out, std::string_view text) {
        memcpy(out, text.data(), text.size());
        return out + text.size();
    }

    time_t second_ = -1;
    char time_[32];
    char ids_[32];
};

thread_local Head t_head;

/// Makes one line of a message: a line break at its end is dropped, one inside it becomes a blank. What
/// stands behind the message is overwritten with the line's end.
size_t finish_line(char* message, size_t size) {
    if (size > 0 && message[size - 1] == '\n')
        --size;
    char* const end = message + size;
    std::replace(message, end, '\n', ' ');
    *end = '\n';
    return size + 1;
}

/// One message, one line. The caller's errno is what "%m" prints, and stays as it is.
__attribute__((format(printf, 3, 0))) bool log_message(char priority, const char* tag, const char* fmt,
                                                       va_list args) {
    const int callers_errno = errno;
    timeval now;
    gettimeofday(&now, nullptr);
    char usual[kHeadMax + 1024];
    const size_t head = t_head.write(usual, now, priority, tag);
    va_list again;
    va_copy(again, args);
    errno = callers_errno;
    const int formatted = vsnprintf(usual + head, sizeof usual - head, fmt, args);
    const size_t size = formatted > 0 ? static_cast<size_t>(formatted) : 0;
    std::string unusual;
    char* line = usual;
    if (size >= sizeof usual - head) {
        unusual.assign(usual, head);
        unusual.resize(head + size + 1);
        line = unusual.data();
        errno = callers_errno;
        vsnprintf(line + head, size + 1, fmt, again);
    }
    va_end(again);
    const bool written = system_log().append(line, head + finish_line(line + head, size), now);
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
