// One handset from boot to power-off: in the foreground until it is told to stop, or around a command
// or a shell.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace handset {

/// What a person chooses; empty: the default.
struct BootOptions {
    std::string dir;
    std::string profile;
    bool on_qrtr = false;     // on the kernel's modem bus too
    std::string replay = {};  // a trace or a capture that decides the answers
    bool fast = false;        // without the delays of the trace
    bool strict = false;      // what the trace does not have is refused
};

/// Status of a run whose handset could not boot, so that it is not taken for the command's own.
constexpr int kBootFailed = 125;

/// Boots, prints "vxk-handset: ready in DIR", and runs until SIGINT, SIGTERM or SIGHUP. Returns
/// 0; throws Error.
int serve(const BootOptions& options);

/// Boots, in a temporary folder that is removed at the end unless one is named, runs the command with
/// VXK_HANDSET_DIR set and this program's folder first on its PATH, and returns its status: 128 and the
/// signal's number when one ended it, 126 or 127 when it could not be started. A SIGTERM or SIGHUP is handed
/// on to the command; SIGINT and SIGQUIT reach it from the terminal. When this process is killed, so is the
/// command. Throws Error.
int run_command(const BootOptions& options, const std::vector<std::string>& command);

/// The same with the person's own shell, and a word on what to try.
int run_shell(const BootOptions& options);

/// In a child that was just forked: it is killed when `parent`, which forked it, is gone.
void die_with(pid_t parent);

}  // namespace handset
