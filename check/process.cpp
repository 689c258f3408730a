#include "process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>

namespace check {
namespace {

using Clock = std::chrono::steady_clock;

// Of each stream. The longest answer of the tool has some hundred kilobytes.
constexpr size_t kOutputMax = 1 << 20;

// How long an end that no descriptor tells of stays unnoticed.
constexpr std::chrono::milliseconds kSlice{20};

std::atomic<int> g_interrupted{0};

void on_interrupt(int signal) {
    g_interrupted = signal;
}

// The reading end of a pipe whose other end is the program's.
class Stream {
public:
    explicit Stream(std::string& text) : text_(text) {
        if (pipe2(ends_, O_CLOEXEC) != 0)
            ends_[0] = ends_[1] = -1;
        else
            fcntl(ends_[0], F_SETFL, O_NONBLOCK);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() {
        close_end(0);
        close_end(1);
    }

    int fd() const { return ends_[0]; }
    int far_end() const { return ends_[1]; }
    bool open() const { return ends_[0] >= 0; }
    void close_far_end() { close_end(1); }

    // Takes what is there; true when something of it was dropped.
    bool take() {
        char block[65536];
        bool cut = false;
        while (open()) {
            const ssize_t n = read(ends_[0], block, sizeof block);
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0 && errno == EAGAIN)
                break;
            if (n <= 0) {
                close_end(0);
                break;
            }
            const size_t kept = std::min(static_cast<size_t>(n), kOutputMax - text_.size());
            text_.append(block, kept);
            cut = cut || kept < static_cast<size_t>(n);
        }
        return cut;
    }

private:
    void close_end(int end) {
        if (ends_[end] >= 0)
            close(ends_[end]);
        ends_[end] = -1;
    }

    std::string& text_;
    int ends_[2];
};

std::vector<char*> pointers(const std::vector<std::string>& words) {
    std::vector<char*> result;
    result.reserve(words.size() + 1);
    for (const std::string& word : words)
        result.push_back(const_cast<char*>(word.c_str()));
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> environment_with(const std::vector<std::string>& settings) {
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('=') + 1);
        const bool replaced = std::any_of(
            settings.begin(), settings.end(),
            [&name](const std::string& setting) { return setting.compare(0, name.size(), name) == 0; });
        if (!replaced)
            environment.push_back(text);
    }
    environment.insert(environment.end(), settings.begin(), settings.end());
    return environment;
}

// Starts the program as the leader of a process group of its own. Returns errno.
int start(const std::vector<std::string>& argv, const std::vector<std::string>& settings, int out, int err,
          pid_t& pid) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
    sigset_t defaults;
    sigemptyset(&defaults);
    for (const int signal : {SIGINT, SIGTERM, SIGPIPE})
        sigaddset(&defaults, signal);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    const std::vector<std::string> environment = environment_with(settings);
    const int error = posix_spawnp(&pid, argv[0].c_str(), &actions, &attributes, pointers(argv).data(),
                                   pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

// Leaves the process to be waited for, so that its group keeps its id.
bool has_ended(pid_t pid) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == pid;
}

}  // namespace

Run run_process(const std::vector<std::string>& argv, const std::vector<std::string>& settings,
                std::chrono::milliseconds limit) {
    Run run;
    const Clock::time_point begin = Clock::now();
    Stream out(run.out);
    Stream err(run.err);
    pid_t pid = -1;
    run.start_error =
        out.open() && err.open() ? start(argv, settings, out.far_end(), err.far_end(), pid) : EMFILE;
    if (run.start_error != 0)
        return run;
    out.close_far_end();
    err.close_far_end();

    bool ended = false;
    while (!ended && interrupted() == 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(begin + limit - Clock::now());
        if (left.count() <= 0) {
            run.timed_out = true;
            break;
        }
        pollfd fds[] = {{out.fd(), POLLIN, 0}, {err.fd(), POLLIN, 0}};
        // Without a stream to wait for, the end is a matter of moments.
        const auto slice = out.open() || err.open() ? kSlice : std::chrono::milliseconds(1);
        poll(fds, 2, static_cast<int>(std::min(slice, left + std::chrono::milliseconds(1)).count()));
        ended = has_ended(pid);
        run.cut = out.take() || run.cut;
        run.cut = err.take() || run.cut;
    }
    // What the program left behind goes with it.
    kill(-pid, SIGKILL);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    run.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    run.duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    return run;
}

void catch_interrupts() {
    struct sigaction action {};
    action.sa_handler = on_interrupt;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int interrupted() {
    return g_interrupted;
}

void sleep_until(Clock::time_point time) {
    while (interrupted() == 0 && Clock::now() < time)
        std::this_thread::sleep_until(std::min(time, Clock::now() + kSlice));
}

std::string signal_name(int signal) {
    const char* const name = sigabbrev_np(signal);
    return name != nullptr ? std::string("SIG") + name : "signal " + std::to_string(signal);
}

}  // namespace check
