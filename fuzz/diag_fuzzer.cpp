// Diag commands over both roads: `u8 how` (1: DCI road, 2: nobody waits), `u16` time-out in hundredths of a
// second, `u16` size of the reply buffer, a block of command bytes, then the modem's records; several
// commands in one process.
#include "finding.h"
#include "kelvra_diag_send.h"
#include "modem.h"
#include "platform_double.h"

namespace {

void send_without_result(Input& input, bool dci) {
    const std::vector<uint8_t> command = input.block();
    kelvra_diag_cmd_send_without_result_start_thread(command.data(), static_cast<int>(command.size()), dci);
    wait_for_threads();
}

void send_with_result(Input& input, bool dci) {
    const int time_out = 10 * static_cast<int16_t>(input.u16());
    const int room = static_cast<int16_t>(input.u16());
    std::vector<uint8_t> command = input.block();
    std::vector<uint8_t> reply(DIAG_RSP_BUF_MAX);
    int reply_len = std::min(room, DIAG_RSP_BUF_MAX);
    const auto send = dci ? kelvra_diag_cmd_send_with_result_by_dci_mode
                          : kelvra_diag_cmd_send_with_result_by_callback_mode;
    const int told = reply_len;
    send(command.data(), static_cast<int>(command.size()), time_out, reply.data(), &reply_len);
    require(reply_len <= told, "no more than fits is told");
    wait_for_threads();
}

constexpr int kCommandsMax = 4;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    run_tool(input, [&] {
        for (int i = 0; i < kCommandsMax && !input.empty(); ++i) {
            const uint8_t how = input.u8();
            (how & 2 ? send_without_result : send_with_result)(input, how & 1);
        }
    });
    return 0;
}
