// Group 6: any bytes to the extension service, under any request id.
#include <algorithm>
#include <cstdlib>

#include "groups.h"
#include "hex_dump.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_log.h"
#include "kelvra_parse.h"

namespace {

constexpr int kRequestIds = 6;
constexpr int kDataMax = 500;

// The bytes typed, echoed as they are read. Returns their number.
int read_bytes(int argc, char** argv, uint8_t* bytes) {
    const int count = std::min(argc - 3, kDataMax);
    for (int i = 0; i < count; ++i) {
        bytes[i] = static_cast<uint8_t>(kelvra_string_to_int(argv[3 + i]));
        kelvra_printf("0x%02X ", bytes[i]);
    }
    return count;
}

// clang-format off
constexpr Command kCommands[] = {
    {kNoSubOption, " qmi_id qmi_data         /* qmi_id: Any binary data you will send */\n"
                   "                                    qmi_data: Any binary data you will send ",
     kelvra_test_qmi_send_data_do},
};
// clang-format on

}  // namespace

const Group kRawQmiGroup = make_group(6, "kelvra qmi send_data", kelvra_test_qmi_send_data_do, kCommands);

int kelvra_test_qmi_send_data_do(int argc, char** argv) {
    if (argc <= 3)
        return g_quiet_mode ? show_help(kRawQmiGroup) : refuse_too_few_parameters(kRawQmiGroup);
    if (atoi(argv[1]) != kRawQmiGroup.number)
        return g_quiet_mode ? show_help(kRawQmiGroup) : refuse_first_parameter(kRawQmiGroup);
    const int qmi_id = atoi(argv[2]);
    if (qmi_id < 0 || qmi_id >= kRequestIds) {
        kelvra_printf("\nnote: the second parameters(qmi_id) should be >= %d && < %d\n", 0, kRequestIds);
        return show_help(kRawQmiGroup);
    }

    kelvra_printf("kv_qmi req data(qmi_id: %d, len: %d[max: %d]):\n", qmi_id, argc - 3, kDataMax);
    uint8_t req[kDataMax];
    const int count = read_bytes(argc, argv, req);
    uint8_t rsp[kDataMax];
    // No room for the answer, on purpose: the command shows whether the exchange succeeded, never
    // what came back.
    uint32_t rsp_len = 0;
    const int result = kelvra_extend_qmi_send_sync(static_cast<uint32_t>(qmi_id), req, count, rsp, &rsp_len);
    kelvra_printf("qmi_id = %d, result = %d\n", qmi_id, result);
    if (result != 0) {
        kelvra_puts("kelvra_extend_qmi_send_sync fail");
        show_help(kRawQmiGroup);
        return result;
    }
    kelvra_printf("kv_qmi rsp data(qmi_id: %d, len: %d[max: %d]):\n", qmi_id, rsp_len, kDataMax);
    print_hex_line(rsp, rsp_len);
    return 0;
}
