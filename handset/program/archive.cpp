#include "archive.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <vector>

#include "error.h"

namespace handset {
namespace {

constexpr size_t kLongestMember = 256 * 1024 * 1024;

// Returns what tar prints, cut behind the longest member; `ok` is whether it succeeded.
std::string run_tar(std::vector<std::string> words, bool& ok) {
    words.insert(words.begin(), "tar");
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0)
        throw system_error("cannot run tar", errno);
    const pid_t child = fork();
    if (child == 0) {
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(out[1], STDOUT_FILENO);
        dup2(quiet, STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(out[1]);
    std::string printed;
    std::array<char, 65536> buffer;
    ssize_t count = 0;
    while (printed.size() <= kLongestMember && (count = read(out[0], buffer.data(), buffer.size())) != 0) {
        if (count > 0)
            printed.append(buffer.data(), static_cast<size_t>(count));
        else if (errno != EINTR)
            break;
    }
    close(out[0]);
    int status = -1;
    if (child > 0)
        waitpid(child, &status, 0);
    ok = child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return printed;
}

}  // namespace

bool is_archive(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw system_error("cannot read " + path, errno);
    unsigned char magic[2] = {};
    const bool gzip = read(fd, magic, sizeof magic) == sizeof magic && magic[0] == 0x1F && magic[1] == 0x8B;
    close(fd);
    return gzip;
}

std::string read_member(const std::string& archive, const std::string& name) {
    bool ok = false;
    std::string content =
        run_tar({"-x", "-z", "-O", "-f", archive, "--force-local", "--wildcards", "*/" + name}, ok);
    if (!ok || content.size() > kLongestMember)
        throw Error("no capture, or without its " + name + ": " + archive);
    return content;
}

void write_archive(const std::string& path, const std::string& folder) {
    const size_t name = folder.rfind('/');
    bool ok = false;
    run_tar({"-c", "-z", "-f", path, "--force-local", "-C", folder.substr(0, name), folder.substr(name + 1)},
            ok);
    if (!ok)
        throw Error("cannot write " + path);
}

}  // namespace handset
