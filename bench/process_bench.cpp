// Whole commands, from start to exit, against a C program that does nothing, started the same way.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <vector>

#include "benches.h"
#include "sides.h"

namespace bench {
namespace {

using Command = std::vector<std::string>;

struct Outcome {
    int wait_status = 0;
    rusage usage{};
};

/// Runs a program with its standard output going to `out`, and waits for it.
Outcome run(const Command& command, int out) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
    pid_t child = 0;
    const int error = posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    Outcome outcome;
    if (error != 0 || wait4(child, &outcome.wait_status, 0, &outcome.usage) != child)
        give_up("cannot run " + command[0]);
    return outcome;
}

/// What a command prints, which must fit a pipe.
std::string output_of(const Command& command) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        give_up("no pipe");
    run(command, ends[1]);
    close(ends[1]);
    std::string output;
    std::array<char, 4096> piece;
    ssize_t size = 0;
    while ((size = read(ends[0], piece.data(), piece.size())) > 0)
        output.append(piece.data(), static_cast<size_t>(size));
    close(ends[0]);
    return output;
}

Command command_of(const std::string& program, const std::string& words) {
    Command command{program};
    for (size_t start = 0; start < words.size();) {
        const size_t end = std::min(words.find(' ', start), words.size());
        command.push_back(words.substr(start, end - start));
        start = end + 1;
    }
    return command;
}

Command vxk(const std::string& words) {
    return command_of(VXK_PROGRAM, words);
}

void run_silently(const Command& command) {
    run(command, STDOUT_FILENO);
}

/// The same with a trace being written. The file, in the handset's folder, goes with it.
Side traced(const Side& side) {
    const char* const handset = getenv("VXK_HANDSET_DIR");
    if (handset == nullptr)
        give_up("no handset: run it by scripts/bench");
    const std::string file = std::string(handset) + "/trace";
    return {side.name + ", traced", [side, file] {
                setenv("VXK_TRACE", file.c_str(), 1);
                side.work();
                unsetenv("VXK_TRACE");
            }};
}

}  // namespace

Side command_side(const std::string& program, const std::string& words, const std::string& answer) {
    const Command command = command_of(program, words);
    const std::string name = program.substr(program.rfind('/') + 1) + " " + words;
    const std::string output = output_of(command);
    if (output.find(answer) == std::string::npos)
        give_up(name + " does not print \"" + answer + "\":\n" + output);
    return {name, [command] { run_silently(command); }};
}

void compare_processes(Table& table) {
    const Side empty{"empty C program", [] { run_silently({EMPTY_PROGRAM}); }};
    run_silently(vxk("4 5 0 /nv/item_files/bench 1 2 255"));
    const Side read_file = command_side(VXK_PROGRAM, "4 4 0 /nv/item_files/bench", "data:  01 02 FF");

    constexpr double kMebibyte = 1024;  // ru_maxrss counts in KiB
    const Outcome once = run(vxk("4 4 0 /nv/item_files/bench"), STDOUT_FILENO);
    table.row("its peak memory", static_cast<double>(once.usage.ru_maxrss) / kMebibyte, "the limit", 8, "MB",
              1);
    table.compare(read_file, empty, 4);
    table.compare(command_side(VXK_PROGRAM, "5 0 0 0 3000 0x00", "rsp data len("), empty, 5);
    const Side measure = command_side(VXK_PROGRAM, "9 7 0", "ASDIV DATA: ");
    table.compare(measure, empty, 5);
    for (const Side& side : {read_file, measure})
        table.compare(traced(side), side, 1.05);
}

}  // namespace bench
