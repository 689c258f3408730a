// The program vxk-handset: its command line, and one clear line for whatever ends it early.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "capture.h"
#include "control.h"
#include "error.h"
#include "folder.h"
#include "session.h"
#include "show.h"

namespace {

constexpr int kUsageError = 2;

void add_boot_options(CLI::App& command, handset::BootOptions& options, const std::string& without_dir) {
    command.add_option("--dir", options.dir, "The handset's folder; " + without_dir)->type_name("DIR");
    command
        .add_option(
            "--profile", options.profile,
            "What kind of handset: a JSON file, \"-\" for standard input, or the name of an installed one")
        ->type_name("FILE");
    command
        .add_option_function<std::string>(
            "--bus", [&options](const std::string&) { options.on_qrtr = true; },
            "\"qrtr\": on the kernel's modem bus too, besides the folder")
        ->check(CLI::IsMember({"qrtr"}))
        ->type_name("BUS");
    CLI::Option* replay =
        command
            .add_option("--replay", options.replay, "A modem that answers as this trace or capture has it")
            ->type_name("FILE");
    command.add_flag("--fast", options.fast, "Without the delays of the trace")->needs(replay);
    command.add_flag("--strict", options.strict, "Refuse what the trace does not have")->needs(replay);
}

void add_dir_option(CLI::App& command, std::string& dir) {
    command
        .add_option("--dir", dir, "The handset's folder, else $VXK_HANDSET_DIR, else /tmp/vxk-handset-<uid>")
        ->type_name("DIR");
}

int run(int argc, char** argv) {
    // Words behind "--" are the command's own; the parser must not look at them.
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    const auto end_of_options = std::find(words.begin(), words.end(), "--");
    const std::vector<std::string> command(
        end_of_options == words.end() ? end_of_options : end_of_options + 1, words.end());

    CLI::App app(
        "A simulated handset for vxk: modem services, diag, cards, EFS, NV and properties in one folder",
        "vxk-handset");
    app.require_subcommand(1);
    app.set_version_flag("--version", "vxk-handset " VXK_VERSION);
    handset::BootOptions options;
    std::string dir;
    bool follow = false;
    bool system = false;
    const std::string temporary = "a temporary one when it is not given";

    CLI::App* run_app = app.add_subcommand("run", "Boot a handset, run a command against it, stop it");
    add_boot_options(*run_app, options, temporary);
    run_app->footer(
        "The command follows behind \"--\": vxk-handset run -- vxk 4 1 0 10\n"
        "Its status is that of this program.");
    CLI::App* serve_app =
        app.add_subcommand("serve", "Run a handset in the foreground until SIGINT or SIGTERM");
    add_boot_options(*serve_app, options, "else $VXK_HANDSET_DIR, else /tmp/vxk-handset-<uid>");
    CLI::App* shell_app =
        app.add_subcommand("shell", "Boot a handset and open a shell in which vxk speaks to it");
    add_boot_options(*shell_app, options, temporary);
    CLI::App* capture_app =
        app.add_subcommand("capture", "Run a command and pack all that tells of the run into an archive");
    add_boot_options(*capture_app, options, "that of a running handset, else as for run");
    std::string archive;
    capture_app->add_option("--out", archive, "The archive; vxk-capture-TIME.tar.gz")->type_name("FILE");
    CLI::App* show_app = app.add_subcommand("show", "Services, state, properties and files of a handset");
    add_dir_option(*show_app, dir);
    CLI::App* log_app = app.add_subcommand("log", "What the modem heard and said");
    add_dir_option(*log_app, dir);
    log_app->add_flag("--follow", follow, "Go on with new lines until interrupted");
    log_app->add_flag("--system", system, "The system log instead of the wire log");
    handset::LogChoice choice;
    bool commands = false;
    log_app->add_flag("--json", choice.json, "A JSON object a line");
    log_app->add_option("--since", choice.since, "Only what is not older than a time as the log writes it")
        ->type_name("TIME");
    log_app->add_option("--command", choice.command, "Only the exchanges of the N-th process of --commands")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    log_app->add_option("--pid", choice.pid, "Only the exchanges of a process")
        ->type_name("PID")
        ->check(CLI::PositiveNumber);
    log_app->add_option("--pcap", choice.pcap, "Write a capture file (pcapng) for Wireshark")
        ->type_name("FILE")
        ->excludes("--follow");
    log_app->add_flag("--commands", commands,
                      "The processes that spoke to the modem, with time, pid and words");

    std::vector<std::string> request;
    const auto add_control = [&](const char* name, const char* help, const char* takes) {
        CLI::App* control = app.add_subcommand(name, help);
        add_dir_option(*control, dir);
        control->add_option("words", request, "")->option_text(takes);
        return control;
    };
    const CLI::App* const controls[] = {
        add_control("set", "Change a running handset, by the places of the profile", "KEY=VALUE..."),
        add_control("fault", "The faults of a running handset", "add JSON | list | clear"),
        add_control("event", "Make something happen to a running handset",
                    "restart | pull SLOT | push SLOT | indication SERVICE ID TLVS"),
    };

    try {
        // The parser takes its words from the back.
        app.parse(std::vector<std::string>(std::make_reverse_iterator(end_of_options), words.rend()));
        const bool runs = *run_app || *capture_app;
        if (runs && command.empty())
            throw CLI::RequiredError("A command behind \"--\"");
        if (!runs && end_of_options != words.end())
            throw CLI::ExtrasError({"--"});
    } catch (const CLI::ParseError& error) {
        const int status = app.exit(error) == 0 ? 0 : kUsageError;
        handset::flush_output();
        return status;
    }

    const std::string folder = dir.empty() ? handset::default_folder() : handset::resolved_folder(dir);
    for (const CLI::App* control : controls) {
        if (!*control)
            continue;
        request.insert(request.begin(), control->get_name());
        printf("%s", handset::ask_control(folder, request).c_str());
        handset::flush_output();
        return 0;
    }
    if (*show_app)
        return handset::show(folder);
    if (*log_app && commands)
        return handset::show_commands(folder);
    if (*log_app && choice.any())
        return handset::show_records(folder, choice, follow);
    if (*log_app)
        return handset::show_log(folder, system, follow);
    if (*serve_app)
        return handset::serve(options);
    try {
        if (*capture_app)
            return handset::capture(options, archive, command);
        return *run_app ? handset::run_command(options, command) : handset::run_shell(options);
    } catch (const handset::Error& error) {
        handset::complain(error.what());
        return handset::kBootFailed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        handset::complain(error.what());
        return 1;
    }
}
