#include "session.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <utility>

#include "error.h"
#include "event_loop.h"
#include "handset.h"
#include "installation.h"
#include "profile.h"
#include "qrtr_transport.h"
#include "subjects.h"
#include "temporary_folder.h"
#include "trace_file.h"

namespace handset {
namespace {

// While it lives, the given signals arrive as events of the loop.
class Signals {
public:
    Signals(EventLoop& loop, std::initializer_list<int> numbers, const std::function<void(int)>& arrived)
        : loop_(loop) {
        sigset_t set;
        sigemptyset(&set);
        for (const int number : numbers)
            sigaddset(&set, number);
        sigprocmask(SIG_BLOCK, &set, &before_);
        fd_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
        if (fd_ < 0)
            throw system_error("cannot receive signals", errno);
        watch_ = loop_.watch(fd_, EPOLLIN, [this, arrived](uint32_t) {
            signalfd_siginfo info{};
            while (read(fd_, &info, sizeof info) == sizeof info)
                arrived(static_cast<int>(info.ssi_signo));
        });
    }
    ~Signals() {
        loop_.forget(watch_);
        close(fd_);
        sigprocmask(SIG_SETMASK, &before_, nullptr);
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    const sigset_t& before() const { return before_; }

private:
    EventLoop& loop_;
    sigset_t before_{};
    int fd_ = -1;
    EventLoop::Token watch_ = 0;
};

/// While it lives, a reader that goes away ends no handset in the middle of its work.
class ClosedPipes {
public:
    ClosedPipes() : before_(signal(SIGPIPE, SIG_IGN)) {}
    ~ClosedPipes() { restore(); }
    ClosedPipes(const ClosedPipes&) = delete;
    ClosedPipes& operator=(const ClosedPipes&) = delete;

    void restore() const { signal(SIGPIPE, before_); }

private:
    const sighandler_t before_;
};

Profile profile_of(const BootOptions& options) {
    return options.profile.empty() ? Profile() : load_profile(found_profile(options.profile));
}

// What is replayed, if anything, for one handset: read before it boots, and when it has ended it is told
// which requests were not in the trace.
class Replay {
public:
    explicit Replay(const BootOptions& options) {
        if (options.replay.empty())
            return;
        Recording recording = read_recording(options.replay);
        properties_ = std::move(recording.properties);
        book_.emplace(recording.trace, options.fast, options.strict);
    }
    ~Replay() {
        if (!book_)
            return;
        for (const ReplayBook::Unknown& unknown : book_->unknown())
            complain(std::string("not in the trace, ") +
                     (book_->strict() ? "refused" : "answered by the profile") +
                     (unknown.count > 1 ? " " + std::to_string(unknown.count) + " times" : "") + ": " +
                     unknown.line);
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    ReplayBook* book() { return book_ ? &*book_ : nullptr; }

    /// Those of the handset that was recorded, into the folder of the one that has booted.
    void set_properties(const std::string& folder) const {
        for (const auto& property : properties_)
            std::ofstream(folder + "/properties/" + property.first) << property.second;
    }

private:
    std::optional<ReplayBook> book_;
    std::map<std::string, std::string> properties_;
};

// What reaches the handset beside its folder.
std::vector<std::unique_ptr<Transport>> transports_of(const BootOptions& options, EventLoop& loop) {
    std::vector<std::unique_ptr<Transport>> transports;
    if (options.on_qrtr)
        transports.push_back(std::make_unique<QrtrTransport>(loop));
    return transports;
}

// Returns 0 or the errno that kept the command from starting, which the child sends through a pipe that a
// started command closes. posix_spawn's own report does not come through user-mode emulation. The command
// dies with this process, however that ends.
int start(std::vector<std::string> command, const sigset_t& mask, const ClosedPipes& pipes, pid_t& child) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);

    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0)
        return errno;
    const pid_t parent = getpid();
    child = fork();
    int error = child < 0 ? errno : 0;
    if (child == 0) {
        die_with(parent);
        sigprocmask(SIG_SETMASK, &mask, nullptr);
        pipes.restore();
        execvp(arguments[0], arguments.data());
        error = errno;
        const ssize_t sent = write(report[1], &error, sizeof error);
        _exit(sent == sizeof error ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    close(report[1]);
    if (child > 0 && read(report[0], &error, sizeof error) == sizeof error)
        waitpid(child, nullptr, 0);
    close(report[0]);
    if (error != 0)
        child = 0;
    return error;
}

// Whether a command, or a shell's text in it, sends AT commands by the device's name.
bool sends_at_commands(const std::vector<std::string>& command) {
    const std::string wanted = "vxk 8 ";
    std::string line;
    for (const std::string& word : command)
        line += word + " ";
    return line.find(wanted) != std::string::npos;
}

void print_notice(const std::string& notice) {
    if (!notice.empty())
        complain(notice);
}

int status_of(int wait_status) {
    return WIFSIGNALED(wait_status) ? 128 + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}

int run_in(const std::string& folder, const BootOptions& options, const std::vector<std::string>& command) {
    const ClosedPipes pipes;
    EventLoop loop;
    Replay replay(options);
    Handset handset(loop, folder, profile_of(options), transports_of(options, loop), replay.book());
    replay.set_properties(handset.folder());
    if (sends_at_commands(command))
        print_notice(handset.at_notice());
    pid_t child = 0;
    int wait_status = 0;
    const Signals signals(loop, {SIGCHLD, SIGINT, SIGQUIT, SIGTERM, SIGHUP}, [&](int number) {
        if ((number == SIGTERM || number == SIGHUP) && child > 0)
            kill(child, number);
        if (number == SIGCHLD && child > 0 && waitpid(child, &wait_status, WNOHANG) == child) {
            child = 0;
            loop.stop();
        }
    });
    setenv("VXK_HANDSET_DIR", handset.folder().c_str(), 1);
    put_programs_on_path();
    const int error = start(command, signals.before(), pipes, child);
    if (error != 0) {
        complain("cannot run " + command[0] + ": " + strerror(error));
        return error == ENOENT ? 127 : 126;
    }
    loop.run();
    // What the command sent last belongs to the run, though it did not wait for an answer.
    loop.drain();
    return status_of(wait_status);
}

}  // namespace

void die_with(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Nobody will send the signal for a parent that was gone before it was asked for.
    if (getppid() != parent)
        _exit(EXIT_FAILURE);
}

int serve(const BootOptions& options) {
    const ClosedPipes pipes;
    const Profile profile = profile_of(options);
    Replay replay(options);
    EventLoop loop;
    // Before the boot, so that a signal during it does not leave the sockets behind.
    const Signals signals(loop, {SIGINT, SIGTERM, SIGHUP}, [&loop](int) { loop.stop(); });
    Handset handset(loop, options.dir.empty() ? default_folder() : resolved_folder(options.dir), profile,
                    transports_of(options, loop), replay.book());
    replay.set_properties(handset.folder());
    print_notice(handset.at_notice());
    printf("vxk-handset: ready in %s\n", handset.folder().c_str());
    fflush(stdout);
    loop.run();
    return 0;
}

int run_command(const BootOptions& options, const std::vector<std::string>& command) {
    if (!options.dir.empty())
        return run_in(resolved_folder(options.dir), options, command);
    const TemporaryFolder temporary;
    return run_in(temporary.path(), options, command);
}

int run_shell(const BootOptions& options) {
    const char* named = getenv("SHELL");
    const std::string shell = named != nullptr && *named != '\0' ? named : "/bin/sh";
    printf(
        "A handset is running. In this shell, try:\n"
        "  vxk 4 5 0 /nv/item_files/demo 1 2 255    write a file on the modem\n"
        "  vxk 4 4 0 /nv/item_files/demo            read it back\n"
        "  vxk-handset show                         see what is there\n"
        "  vxk-handset log                          see what the modem heard and said\n"
        "  exit                                     switch the handset off\n");
    fflush(stdout);
    return run_command(options, {shell});
}

}  // namespace handset
