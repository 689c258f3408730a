#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "kelvra_diag_send.h"
#include "kelvra_log.h"
#include "kelvra_parse.h"
#include "kelvra_qmi_test_cmn.h"
#include "show_help.h"

namespace {

KELVRA_LOG_UNIT("kelvra_qmi_test_cmn");

constexpr int kGroup = 5;
constexpr int kFirstByte = 6;  // of the diag command, in argv

struct Command {
    uint8_t bytes[DIAG_CMD_MAX];
    int length;  // as typed; the road refuses what does not fit
};

struct Reply {
    uint8_t bytes[DIAG_RSP_BUF_MAX];
    int length;
};

void read_command(int argc, char** argv, Command* command) {
    command->length = argc - kFirstByte;
    kelvra_puts("diag cmd:");
    for (int i = 0; i < std::min(command->length, DIAG_CMD_MAX); ++i) {
        command->bytes[i] = static_cast<uint8_t>(kelvra_string_to_int(argv[kFirstByte + i]));
        kelvra_printf("0x%02X ", command->bytes[i]);
    }
    kelvra_puts("");
}

// The wait thread may still print, so the whole reply is printed under standard output's lock.
void print_reply(const Reply& reply) {
    flockfile(stdout);
    kelvra_printf("\nrsp data len(%d)\nrsp data:", reply.length);
    for (int i = 0; i < reply.length; ++i)
        kelvra_printf(" 0x%02X", reply.bytes[i]);
    kelvra_puts("");
    funlockfile(stdout);
}

int send_without_result(bool dci, const Command& command) {
    kelvra_puts(dci ? "dci mode without result" : "callback mode without result");
    const int result =
        kelvra_diag_cmd_send_without_result_start_thread(command.bytes, command.length, dci ? 1 : 0);
    if (result == 0)
        kelvra_puts("\ndone without rsp data");
    return result;
}

int send_with_result(bool dci, Command* command, int time_out) {
    kelvra_puts(dci ? "dci mode with result" : "callback mode with result");
    const auto send = dci ? kelvra_diag_cmd_send_with_result_by_dci_mode
                          : kelvra_diag_cmd_send_with_result_by_callback_mode;
    Reply reply{{}, DIAG_RSP_BUF_MAX};
    const int result = send(command->bytes, command->length, time_out, reply.bytes, &reply.length);
    if (result == 0)
        print_reply(reply);
    return result;
}

int send_command(int argc, char** argv) {
    const bool dci = atoi(argv[3]) != 0;
    const bool with_result = atoi(argv[4]) == 0;
    const int time_out = atoi(argv[5]);
    Command command{};
    read_command(argc, argv, &command);

    const int result =
        with_result ? send_with_result(dci, &command, time_out) : send_without_result(dci, command);
    if (result != 0)
        kelvra_puts("kelvra_diag_cmd_send fail");
    return result;
}

}  // namespace

int kelvra_cmn_diag_cmd_send(int argc, char** argv) {
    KELVRA_LOG_ENTRY();
    const bool enough = argc > kFirstByte;
    int result = 0;
    if (enough)
        result = send_command(argc, argv);
    else
        kelvra_puts("\nnote: Too few inputs, Pls refer to the following cmd:");
    KELVRA_LOG_EXIT();
    // Too few inputs are answered by the help alone, with no error code.
    return enough ? result : show_help(kGroup);
}
