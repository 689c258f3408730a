#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "error.h"
#include "show.h"

namespace handset {
namespace {

constexpr const char* kRed = "\033[31m";
constexpr const char* kGreen = "\033[32m";
constexpr const char* kYellow = "\033[33m";
constexpr const char* kCyan = "\033[36m";
constexpr const char* kDim = "\033[2m";
constexpr const char* kPlain = "\033[0m";

bool has_word(std::string_view line, std::string_view word) {
    return line.find(word) != std::string_view::npos;
}

const char* wire_colour(std::string_view line) {
    if (has_word(line, " fault=\"") || has_word(line, " malformed"))
        return kRed;
    if (has_word(line, " -> "))
        return kCyan;
    return has_word(line, " <- ") ? kGreen : kDim;
}

// The priority is the fifth word: "MM-DD HH:MM:SS.mmm PID TID P TAG: MESSAGE".
const char* system_colour(std::string_view line) {
    size_t start = 0;
    for (int i = 0; i < 4 && start != std::string_view::npos; ++i)
        start = line.find(' ', start == 0 ? 0 : start + 1);
    const std::string_view priority = start == std::string_view::npos ? "" : line.substr(start, 3);
    if (priority == " E " || priority == " F ")
        return kRed;
    return priority == " W " ? kYellow : priority == " I " ? kGreen : "";
}

class LogPrinter {
public:
    LogPrinter(bool system, bool colours) : system_(system), colours_(colours) {}

    void print(std::string_view text) {
        pending_ += text;
        for (size_t end; (end = pending_.find('\n')) != std::string::npos; pending_.erase(0, end + 1))
            print_line(std::string_view(pending_).substr(0, end));
        flush_output();
    }

private:
    void print_line(std::string_view line) const {
        const auto size = static_cast<int>(line.size());
        if (colours_)
            printf("%s%.*s%s\n", system_ ? system_colour(line) : wire_colour(line), size, line.data(),
                   kPlain);
        else
            printf("%.*s\n", size, line.data());
    }

    bool system_;
    bool colours_;
    std::string pending_;
};

void read_what_is_there(int fd, const std::function<void(std::string_view)>& take) {
    std::array<char, 65536> buffer;
    ssize_t count;
    while ((count = read(fd, buffer.data(), buffer.size())) > 0)
        take({buffer.data(), static_cast<size_t>(count)});
}

}  // namespace

void read_growing_file(const std::string& path, bool follow,
                       const std::function<void(std::string_view)>& take) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw system_error("cannot read " + path, errno);
    if (!follow) {
        read_what_is_there(fd, take);
        close(fd);
        return;
    }
    const int changes = inotify_init1(IN_CLOEXEC);
    if (changes < 0 || inotify_add_watch(changes, path.c_str(), IN_MODIFY) < 0)
        throw system_error("cannot follow " + path, errno);
    for (;;) {
        read_what_is_there(fd, take);
        std::array<char, 4096> events;
        if (read(changes, events.data(), events.size()) < 0 && errno != EINTR)
            throw system_error("cannot follow " + path, errno);
    }
}

int show_log(const std::string& folder, bool system, bool follow) {
    LogPrinter printer(system, isatty(STDOUT_FILENO) != 0 && getenv("NO_COLOR") == nullptr);
    read_growing_file(folder + (system ? "/log/system.log" : "/log/wire.log"), follow,
                      [&printer](std::string_view text) { printer.print(text); });
    return 0;
}

}  // namespace handset
