// Group 8: one AT command, sent to the modem's AT channel by a shell, as a person would.
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "groups.h"

namespace {

constexpr char kAtDevice[] = "/dev/smd8";
constexpr size_t kAtCommandMax = 100;
constexpr size_t kShellCommandMax = 500;

// Set by the receive thread when it has nothing more to read; polled by the main thread.
std::atomic<unsigned char> g_at_receive_done{0};

int give_up() {
    g_at_receive_done = 0;
    return show_help(kAtGroup);
}

// The channel's answers are not read: the device is open for nobody but the shell.
void* kelvra_test_at_cmd_receive(void*) {
    puts("The thread to receive data from serial is started");
    printf("The at channel is not opened, g_at_serial_fd %d\n", 0);
    g_at_receive_done = 1;
    return nullptr;
}

// The shell gets the text as it was typed, so what it finds in double quotes, dollars and backquotes too, is
// its own; its echo makes a carriage return of the backslash and r.
int kelvra_test_at_cmd_send(const char* atcmd) {
    char shell[kShellCommandMax + 1] = "";
    snprintf(shell, sizeof shell, "echo \"%s\\r\" > %s", atcmd, kAtDevice);
    printf("at shell cmd: %s\n", shell);
    const int result = system(shell);
    printf("echo, ret_sys: %d\n", result);
    puts(result == 0 ? "Success to send at shell cmd" : "Fail to send at shell cmd");
    return result;
}

// clang-format off
constexpr Command kCommands[] = {
    {kNoSubOption, " atcmd_cxt               /* atcmd_cxt: at command context */\n"
                   "                                    the len of atcmd can not > 100",
     kelvra_test_at_cmd_do},
};
// clang-format on
static_assert(kAtCommandMax == 100, "the help says so");

}  // namespace

const Group kAtGroup = make_group(8, "kelvra at command test", kelvra_test_at_cmd_do, kCommands);

int kelvra_test_at_cmd_do(int argc, char** argv) {
    if (argc != 3) {
        puts("\nnote: The number of inputs should be 2, Pls refer to the following cmd:");
        return give_up();
    }
    if (atoi(argv[1]) != kAtGroup.number) {
        printf("\nnote: the first parameters should be %d, Pls refer to the following cmd:\n",
               kAtGroup.number);
        return give_up();
    }
    if (strlen(argv[2]) > kAtCommandMax) {
        printf("\nnote: the second parameters length should <= %d, Pls refer to the following cmd:\n",
               static_cast<int>(kAtCommandMax));
        return give_up();
    }

    char atcmd[kAtCommandMax + 5] = "";
    const int words = sscanf(argv[2], "%100s", atcmd);
    printf("At cmd you input: sscanf(%d), len (%d), %s\n", words, static_cast<int>(strlen(atcmd)), atcmd);

    puts("Will create a thread to receive data from serial");
    pthread_t receiver;
    if (pthread_create(&receiver, nullptr, kelvra_test_at_cmd_receive, nullptr) != 0) {
        puts("Fail to create a thread");
        return give_up();
    }
    pthread_detach(receiver);

    int result = kelvra_test_at_cmd_send(atcmd);
    while (g_at_receive_done != 1)
        result = static_cast<int>(sleep(1));
    g_at_receive_done = 0;
    return result;
}
