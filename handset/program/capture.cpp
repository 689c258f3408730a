#include "capture.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "archive.h"
#include "error.h"
#include "file.h"
#include "folder.h"
#include "installation.h"
#include "json_line.h"

namespace handset {
namespace {

namespace fs = std::filesystem;

struct Printed {
    std::string out;
    std::string err;
    int status = 0;
};

// Runs a program and keeps what it prints; with `aloud` that is printed as it comes.
Printed run_program(std::vector<std::string> words, bool aloud) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<std::array<int, 2>, 2> pipes{};
    for (auto& pipe : pipes) {
        if (pipe2(pipe.data(), O_CLOEXEC) != 0)
            throw system_error("cannot run " + words[0], errno);
    }
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0)
        throw system_error("cannot run " + words[0], errno);
    if (child == 0) {
        die_with(parent);
        dup2(pipes[0][1], STDOUT_FILENO);
        dup2(pipes[1][1], STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        const int error = errno;
        complain("cannot run " + words[0] + ": " + strerror(error));
        _exit(error == ENOENT ? 127 : 126);
    }
    Printed printed;
    std::array<pollfd, 2> ends{};
    const std::array<std::string*, 2> kept = {&printed.out, &printed.err};
    const std::array<int, 2> aloud_on = {STDOUT_FILENO, STDERR_FILENO};
    for (size_t i = 0; i < ends.size(); ++i) {
        close(pipes[i][1]);
        ends[i] = {pipes[i][0], POLLIN, 0};
    }
    size_t open = ends.size();
    while (open > 0 && (poll(ends.data(), ends.size(), -1) > 0 || errno == EINTR)) {
        for (size_t i = 0; i < ends.size(); ++i) {
            if (ends[i].fd < 0 || ends[i].revents == 0)
                continue;
            std::array<char, 65536> buffer;
            const ssize_t count = read(ends[i].fd, buffer.data(), buffer.size());
            if (count <= 0) {
                close(ends[i].fd);
                ends[i].fd = -1;
                --open;
                continue;
            }
            kept[i]->append(buffer.data(), static_cast<size_t>(count));
            if (aloud)
                host::write_all(aloud_on[i], buffer.data(), static_cast<size_t>(count));
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    printed.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return printed;
}

std::string own_program() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored).string();
}

std::string quoted(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += line.empty() ? "" : " ";
        if (!word.empty() && word.find_first_of(" \t\n'\"\\$`*?[]{}()<>|&;#~!") == std::string::npos) {
            line += word;
            continue;
        }
        line += '\'';
        for (const char c : word)
            line += c == '\'' ? std::string("'\\''") : std::string(1, c);
        line += '\'';
    }
    return line;
}

// "[name]: [value]", as a handset's own listing has them.
std::string properties_of(const std::string& folder) {
    std::vector<std::string> lines;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder + "/properties", ignored))
        lines.push_back("[" + entry.path().filename().string() + "]: [" +
                        read_text(entry.path().string()).value_or("") + "]\n");
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines)
        text += line;
    return text;
}

std::string versions() {
    utsname system{};
    uname(&system);
    return "vxk " VXK_VERSION "\nprotocol 1\ntrace 1\n" + std::string(system.sysname) + " " + system.release +
           " " + system.machine + "\n";
}

// A folder for a while, removed with all that is in it.
class Scratch {
public:
    Scratch() {
        const char* named = getenv("TMPDIR");
        path_ = std::string(named != nullptr && *named != '\0' ? named : "/tmp") + "/vxk-capture-XXXXXX";
        if (mkdtemp(path_.data()) == nullptr)
            throw system_error("cannot create a folder in " + path_.substr(0, path_.rfind('/')), errno);
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

std::string stamp(time_t now) {
    tm local{};
    char text[32];
    localtime_r(&now, &local);
    strftime(text, sizeof text, "%Y%m%d-%H%M%S", &local);
    return text;
}

// The folder's name in the archive is the archive's.
std::string folder_name(const std::string& out) {
    std::string name = fs::path(out).filename().string();
    for (const std::string end : {".tar.gz", ".tgz"}) {
        if (name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0)
            name.resize(name.size() - end.size());
    }
    return name.empty() || name[0] == '-' || name[0] == '.' ? "vxk-capture" : name;
}

int capture_living(const std::string& folder, const std::string& out,
                   const std::vector<std::string>& command) {
    // An archive that cannot be written should not cost a run.
    if (!std::ofstream(out))
        throw system_error("cannot write " + out, errno);
    const Scratch scratch;
    const std::string place = scratch.path() + "/" + folder_name(out);
    fs::create_directory(place);
    const auto write = [&place](const char* name, const std::string& text) {
        std::ofstream file(place + "/" + name, std::ios::binary);
        file << text;
        file.close();
        if (!file)
            throw system_error("cannot write " + place + "/" + name, errno);
    };

    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::string since = messages::rfc3339(now);
    const size_t system_log = read_text(folder + "/log/system.log").value_or("").size();
    write(kCaptureProperties, properties_of(folder));
    const Printed run = run_program(command, true);

    const std::string self = own_program();
    const auto told = [&](const std::vector<std::string>& words) {
        std::vector<std::string> all{self};
        all.insert(all.end(), words.begin(), words.end());
        all.insert(all.end(), {"--dir", folder});
        return run_program(all, false).out;
    };
    write("command", quoted(command) + "\n");
    write("status", std::to_string(run.status) + "\n");
    write("stdout", run.out);
    write("stderr", run.err);
    write(kCaptureTrace, told({"log", "--json", "--since", since}));
    write("wire.log", told({"log", "--since", since}));
    const std::string system = read_text(folder + "/log/system.log").value_or("");
    write("system.log", system.substr(std::min(system_log, system.size())));
    write("show", told({"show"}));
    write("profile.json", read_text(folder + "/state/profile.json").value_or("{}\n"));
    write("versions", versions());
    write_archive(fs::absolute(out).string(), place);
    complain("captured in " + out);
    return run.status;
}

}  // namespace

int capture(const BootOptions& options, const std::string& out, const std::vector<std::string>& command) {
    const std::string archive = out.empty() ? "vxk-capture-" + stamp(time(nullptr)) + ".tar.gz" : out;
    const std::string folder = options.dir.empty() ? default_folder() : resolved_folder(options.dir);
    const bool boots = !options.profile.empty() || !options.replay.empty() || options.on_qrtr;
    if (running_handset(folder) && !boots) {
        setenv("VXK_HANDSET_DIR", folder.c_str(), 1);
        put_programs_on_path();
        return capture_living(folder, archive, command);
    }
    // Around this program once more, which then finds a handset that lives.
    std::vector<std::string> again{own_program(), "capture", "--out", archive, "--"};
    again.insert(again.end(), command.begin(), command.end());
    return run_command(options, again);
}

}  // namespace handset
