// vxk-bench [--bus]: prints one table of all comparisons, or of those on the modem bus. Status 1: something
// is over its limit; 2: something did not do its work.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "benches.h"

namespace {

using Subject = void (*)(bench::Table& table);

constexpr char kNotes[] =
    "\nBest of many turns, both sides alternating on one processor, standard output at /dev/null.\n"
    "EFS read: one exchange, with a modem that has its answers ready unless vxk-handset is named. Copies in "
    "the\n"
    "system log, three lines an exchange, are on by default; the limit of 2 is for the read without them.\n"
    "hex printer: without copies in the system log; per 1,024 bytes.\n";

constexpr char kBusNotes[] =
    "\nBest of many turns, both sides alternating on one processor of an emulated machine, standard output "
    "at\n"
    "/dev/null. Only the ratios mean anything elsewhere.\n";

struct Plan {
    std::vector<Subject> subjects;
    const char* notes;
};

Plan all_but_bus() {
    return {{bench::compare_processes, bench::compare_exchanges, bench::compare_handset,
             bench::compare_hex_printer, bench::compare_record_parser},
            kNotes};
}

Plan bus() {
    setenv("VXK_MODEM", "qrtr", 1);
    return {{bench::compare_bus, bench::compare_stock_client}, kBusNotes};
}

/// In a process of its own, because the tool connects once a process, and a child's peak memory counts that
/// of its parent.
int run(Subject subject, bench::Table& table) {
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        subject(table);
        fflush(nullptr);
        _exit(table.within_limits() ? 0 : 1);
    }
    int wait_status = 0;
    if (child < 0 || waitpid(child, &wait_status, 0) != child || !WIFEXITED(wait_status))
        return 2;
    return WEXITSTATUS(wait_status);
}

}  // namespace

int main(int argc, char** argv) {
    const Plan plan = argc > 1 && argv[1] == std::string_view("--bus") ? bus() : all_but_bus();
    // The tool prints as it does in its own process: line by line, here to nowhere.
    FILE* const table_out = fdopen(dup(STDOUT_FILENO), "w");
    if (table_out == nullptr || freopen("/dev/null", "w", stdout) == nullptr)
        bench::give_up("no standard output");
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);

    bench::Table table(table_out);
    int status = 0;
    for (const Subject subject : plan.subjects)
        status = std::max(status, run(subject, table));
    fputs(plan.notes, table_out);
    fflush(table_out);
    return status;
}
