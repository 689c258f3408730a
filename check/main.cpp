// The program vxk-check: its command line.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "capture.h"
#include "plan.h"
#include "reports.h"
#include "watch.h"

namespace {

using namespace check;

constexpr int kUsageError = 2;

/// The command line.
struct Options {
    double timeout = 10;
    double watch = 0;
    int count = 0;
    bool json = false;
    bool verify = false;
    std::string adb;
    std::string tool = "vxk";
    std::string expect;
    std::string plan;
    std::string junit;
    std::string html;
    std::string table;
    std::string capture;
    std::vector<std::string> handsets;
};

int complain(const std::string& line) {
    fprintf(stderr, "vxk-check: %s\n", line.c_str());
    return kUsageError;
}

std::chrono::milliseconds milliseconds_of(double seconds) {
    return std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
}

int print_table(const std::string& form, const std::vector<std::string>& command) {
    if (form == "markdown") {
        fputs(verdict_table_markdown().c_str(), stdout);
        return 0;
    }
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    if (command.empty())
        for (const Row& row : verdict_table())
            rows.push_back(row_json(row));
    else if (const Row* row = find_row(command))
        rows.push_back(row_json(*row));
    puts(rows.dump(2).c_str());
    return rows.empty() ? kUsageError : 0;
}

void write_report(const std::string& path, const std::string& text) {
    if (path.empty())
        return;
    // Without a text it is only seen whether there can be one.
    std::ofstream file(path, text.empty() ? std::ios::app : std::ios::trunc);
    file << text;
    file.close();
    if (!file)
        throw PlanError("cannot write " + path + ": " + strerror(errno));
}

// What ended early ends as if nobody had caught the signal.
[[noreturn]] void end_by(int signal) {
    ::signal(signal, SIG_DFL);
    raise(signal);
    _exit(128 + signal);
}

int run_steps(const Options& options, const std::vector<Handset>& handsets, const std::vector<Step>& steps,
              const Rules& rules) {
    // A report that cannot be written should not cost a run.
    write_report(options.junit, "");
    write_report(options.html, "");
    const bool shows_progress = isatty(STDERR_FILENO) != 0;
    const size_t all = handsets.size() * steps.size();
    const std::vector<HandsetResults> results = run_plan(handsets, steps, rules, [&](size_t done) {
        if (shows_progress)
            fprintf(stderr, "\r%zu of %zu steps on %zu handsets%s", done, all, handsets.size(),
                    done == all ? "\r\x1b[K" : "");
    });
    if (options.json)
        puts(json_text(report_json(steps, results)).c_str());
    else
        fputs(report_table(steps, results).c_str(), stdout);
    write_report(options.junit, report_junit(steps, results));
    write_report(options.html, report_html(steps, results));
    fflush(stdout);
    if (interrupted() != 0)
        end_by(interrupted());
    return static_cast<int>(worst(results));
}

int run_one(const Options& options, const Handset& handset, const std::vector<std::string>& command,
            const Rules& rules) {
    std::optional<Capture> capture;
    if (!options.capture.empty())
        capture.emplace(options.capture);
    const Result result = check_command(capture ? capture->traced(handset) : handset, command, rules);
    if (interrupted() != 0) {
        capture.reset();
        end_by(interrupted());
    }
    if (capture)
        capture->write(handset, result);
    fputs(options.json ? (json_text(result_json(result)) + "\n").c_str() : report_text(result).c_str(),
          stdout);
    return static_cast<int>(result.judgement.verdict);
}

void add_options(CLI::App& app, Options& options) {
    app.add_option("--timeout", options.timeout, "Seconds that each run of the tool may take; 10")
        ->check(CLI::Range(0.001, 1e6));
    app.add_flag("--json", options.json, "One JSON object instead of text");
    app.add_option("--expect", options.expect, "A text that must stand in the answer")->type_name("TEXT");
    app.add_flag("--verify", options.verify, "Prove a write by reading back");
    app.add_option("--adb", options.adb, "Run the tool of the handset that adb reaches")
        ->expected(0, 1)
        ->type_name("[SERIAL]");
    app.add_option("--handset", options.handsets,
                   "adb serial, folder of a simulated handset, or qrtr; any number of them")
        ->type_name("WORD")
        ->expected(1)
        ->take_all();
    app.add_option("--vxk", options.tool, "The tool's program; vxk")->type_name("PATH");
    app.add_option("--plan", options.plan, "Run the commands of this file on all handsets at once")
        ->type_name("FILE");
    app.add_option("--junit", options.junit, "Write the results for a build server")->type_name("FILE");
    app.add_option("--html", options.html, "Write the results as a page")->type_name("FILE");
    app.add_option("--capture", options.capture, "Pack all that tells of the run into an archive")
        ->type_name("FILE");
    app.add_option("--watch", options.watch, "Repeat the command with this period")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, 1e6));
    app.add_option("--count", options.count, "With --watch: how often")->check(CLI::Range(1, 1000000000));
    app.add_option("--table", options.table,
                   "Print the verdict table, or a command's row of it: json or markdown")
        ->expected(0, 1)
        ->type_name("[FORM]")
        ->check(CLI::IsMember({"json", "markdown"}));
    app.footer(
        "The command's words follow behind \"--\": vxk-check --json -- 5 10 3 0\n"
        "Status: 0 success, 1 the command failed, 2 wrong command line, 3 nothing answered in time, 4 the "
        "tool died.");
}

int run(int argc, char** argv) {
    // Words behind "--" are the tool's own; the parser must not look at them.
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    const auto end_of_options = std::find(words.begin(), words.end(), "--");
    const std::vector<std::string> command(
        end_of_options == words.end() ? end_of_options : end_of_options + 1, words.end());

    CLI::App app("Runs a command of vxk, judges what it prints, and shows the values of its answer",
                 "vxk-check");
    Options options;
    app.set_version_flag("--version", "vxk-check " VXK_VERSION);
    add_options(app, options);
    try {
        // The parser takes its words from the back.
        app.parse(std::vector<std::string>(std::make_reverse_iterator(end_of_options), words.rend()));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kUsageError;
    }
    if (app.count("--table") > 0)
        return print_table(options.table, command);
    if (command.empty() == options.plan.empty())
        return complain("either --plan or a command behind \"--\" is needed");
    const bool is_report = !options.plan.empty() || options.handsets.size() > 1 || !options.junit.empty() ||
                           !options.html.empty();
    if (options.watch > 0 && (is_report || options.json))
        return complain("--watch goes with one command on one handset, and makes no report");
    if (!options.capture.empty() && (is_report || options.watch > 0))
        return complain("--capture goes with one command on one handset");
    if (options.count > 0 && !(options.watch > 0))
        return complain("--count goes with --watch");
    if (app.count("--adb") > 0 && !options.handsets.empty())
        return complain("--adb and --handset exclude each other");

    Rules rules;
    rules.limit = milliseconds_of(options.timeout);
    rules.verify = options.verify;
    rules.expect = options.expect;
    std::vector<Handset> handsets;
    for (const std::string& word : options.handsets)
        handsets.push_back(handset_of(word, options.tool));
    if (app.count("--adb") > 0)
        handsets.push_back(adb_handset(options.adb, options.tool));
    if (handsets.empty())
        handsets.push_back({"this one", options.tool, false, "", {}});

    if (is_report) {
        const std::vector<Step> steps = options.plan.empty()
                                            ? std::vector<Step>{{command_text(command), command, ""}}
                                            : read_plan(options.plan);
        catch_interrupts();
        return run_steps(options, handsets, steps, rules);
    }
    catch_interrupts();
    if (options.watch > 0) {
        const Watch how{milliseconds_of(options.watch), options.count, isatty(STDOUT_FILENO) != 0};
        return static_cast<int>(watch(handsets[0], command, rules, how));
    }
    return run_one(options, handsets[0], command, rules);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int status = run(argc, argv);
        const int error = fflush(stdout) != 0 ? errno : ferror(stdout) != 0 ? EIO : 0;
        if (error != 0)
            return complain(std::string("cannot write to standard output: ") + strerror(error));
        return status;
    } catch (const std::exception& error) {
        return complain(error.what());
    }
}
