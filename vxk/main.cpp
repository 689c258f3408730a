// vxk <option> <sub-option> <arguments...>: one test operation on the modem, printed. The exit status is 0
// whatever the outcome.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "groups.h"

namespace {

void run(int argc, char** argv) {
    const Group* const group = find_group(argc < 2 ? 0 : atoi(argv[1]));
    if (group == nullptr)
        show_help(0);
    else
        group->run(argc, argv);
}

// The number of a standard stream that the caller has closed must not become a connection's: the lines that
// are printed would be sent to the modem.
void occupy_closed_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", O_RDWR);
    }
}

// A reader that closes the pipe must not leave an operation half done: what it does not read is lost, and
// nothing else. A handler, because a program that is started here gets the default back, which it would not
// of an ignored signal.
void outlive_the_reader() {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
    occupy_closed_streams();
    outlive_the_reader();
    // Line by line, so that a reader sees progress while the tool waits for the modem, and a kill
    // loses no line.
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    run(argc, argv);
    // A detached worker may still be printing. What is printed by now goes out whole, and nothing
    // comes after it.
    flockfile(stdout);
    fflush(stdout);
    return 0;
}
