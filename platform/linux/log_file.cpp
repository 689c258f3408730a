#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include "layout.h"
#include "system_log.h"

namespace seam {

namespace {

/// "MM-DD HH:MM:SS.mmm PID TID P TAG: ". Most lines come in bursts: what a thread's lines of one second share
/// is made once.
class Head {
public:
    /// Returns the length.
    size_t write(char* out, const LogMessage& message) {
        if (message.time.tv_sec != second_)
            prepare(message.time.tv_sec);
        char* end = append(out, time_);
        for (long unit = 100'000; unit >= 1000; unit /= 10)
            *end++ = static_cast<char>('0' + message.time.tv_usec / unit % 10);
        end = append(end, ids_);
        *end++ = message.priority;
        *end++ = ' ';
        end = append(end, std::string_view(message.tag).substr(0, LogMessage::kTagMax));
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

/// Keeps the file open between lines.
class LogFile : public SystemLog {
public:
    explicit LogFile(std::string folder) : folder_(std::move(folder)) {}
    ~LogFile() override {
        if (fd_ >= 0)
            close(fd_);
    }

    /// One append.
    bool write(const LogMessage& message) override {
        char head[LogMessage::kHeadMax];
        const size_t head_size = t_head.write(head, message);
        char* line = message.text - head_size;
        memcpy(line, head, head_size);
        message.text[message.size] = '\n';
        const size_t size = head_size + message.size + 1;
        pthread_mutex_lock(&mutex_);
        const bool written = is_open(message.time) && ::write(fd_, line, size) == static_cast<ssize_t>(size);
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
        if (fd_ >= 0 && still_there())
            return true;
        if (fd_ >= 0)
            close(fd_);
        mkdir((folder_ + "/" + host::kLogPlace).c_str(), 0700);
        fd_ = open((folder_ + "/" + host::kSystemLogPlace).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC,
                   0600);
        return fd_ >= 0;
    }

    // A handset that starts over in the same folder may have removed the file.
    bool still_there() const {
        struct stat status;
        return fstat(fd_, &status) == 0 && status.st_nlink > 0;
    }

    const std::string folder_;
    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    int fd_ = -1;
    int64_t looked_at_ = 0;
};

}  // namespace

std::unique_ptr<SystemLog> log_file(std::string folder) {
    return std::make_unique<LogFile>(std::move(folder));
}

}  // namespace seam
