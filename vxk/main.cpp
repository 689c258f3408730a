// vxk <option> <sub-option> <arguments...>: one test operation on the modem, printed. The exit status is 0
// whatever the outcome.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "groups.h"
#include "show_help.h"

namespace {

int not_supported(int, char**) {
    return puts("Not support");
}

using Group = int (*)(int argc, char** argv);

// By option, from 1.
constexpr Group kGroups[] = {
    not_supported,
    not_supported,
    kelvra_test_rf_do,
    kelvra_test_nvefs_do,
    kelvra_test_cmn_do,
    kelvra_test_qmi_send_data_do,
    kelvra_test_modem_stats_do,
    kelvra_test_at_cmd_do,
    kelvra_test_qmi_modem_stats_do,
    kelvra_test_mbn_do,
    kelvra_smart_test_do,
};

void run(int argc, char** argv) {
    const int option = argc < 2 ? 0 : atoi(argv[1]);
    if (option < 1 || option > static_cast<int>(std::size(kGroups)))
        show_help(0);
    else
        kGroups[option - 1](argc, argv);
}

// The number of a standard stream that the caller has closed must not become a connection's: the lines that
// are printed would be sent to the modem.
void occupy_closed_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", O_RDWR);
    }
}

}  // namespace

int main(int argc, char** argv) {
    occupy_closed_streams();
    // Line by line, so that a reader sees progress while the tool waits for the modem, and a kill loses no
    // line.
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    run(argc, argv);
    // A detached worker may still be printing. What is printed by now goes out whole, and nothing comes after
    // it.
    flockfile(stdout);
    fflush(stdout);
    return 0;
}
