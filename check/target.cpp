#include "target.h"

#include <csignal>

#include "glob.h"

namespace check {
namespace {

constexpr int kShellSignal = 128;

std::vector<std::string> adb_command(const Handset& handset, const std::vector<std::string>& words,
                                     std::chrono::milliseconds limit) {
    std::vector<std::string> argv{"adb"};
    if (!handset.serial.empty())
        argv.insert(argv.end(), {"-s", handset.serial});
    // The shell over there gets one line. Nobody but its own "timeout" ends the tool there when adb
    // is killed here.
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit).count() + 2;
    std::string line = handset.trace.empty() ? "" : "VXK_TRACE=" + shell_quoted(handset.trace) + " ";
    line += "timeout -s KILL " + std::to_string(seconds) + " " + shell_quoted(handset.tool);
    for (const std::string& word : words)
        line += " " + shell_quoted(word);
    argv.insert(argv.end(), {"shell", line});
    return argv;
}

}  // namespace

Handset handset_of(const std::string& word, const std::string& tool) {
    if (starts_with(word, "adb:"))
        return adb_handset(word.substr(4), tool);
    Handset handset;
    handset.name = word;
    handset.tool = tool;
    const bool is_folder = starts_with(word, "folder:");
    if (is_folder || word.find('/') != std::string::npos) {
        const std::string folder = is_folder ? word.substr(7) : word;
        handset.settings = {"VXK_HANDSET_DIR=" + folder, "VXK_MODEM=folder:" + folder};
    } else if (word == "qrtr" || starts_with(word, "qrtr:")) {
        handset.settings = {"VXK_MODEM=" + word};
    } else {
        handset.adb = true;
        handset.serial = word;
    }
    return handset;
}

Handset adb_handset(const std::string& serial, const std::string& tool) {
    Handset handset;
    handset.name = serial.empty() ? "adb" : serial;
    handset.tool = tool;
    handset.adb = true;
    handset.serial = serial;
    return handset;
}

Run run_tool(const Handset& handset, const std::vector<std::string>& words, std::chrono::milliseconds limit) {
    if (handset.adb) {
        Run run = run_process(adb_command(handset, words, limit), {}, limit);
        if (run.exit_status > kShellSignal && run.exit_status < kShellSignal + NSIG) {
            run.signal = run.exit_status - kShellSignal;
            run.exit_status = -1;
        }
        return run;
    }
    std::vector<std::string> argv{handset.tool};
    argv.insert(argv.end(), words.begin(), words.end());
    return run_process(argv, handset.settings, limit);
}

std::string shell_quoted(const std::string& word) {
    const char* const kPlain = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz/_.,:+-=@";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos)
        return word;
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

}  // namespace check
