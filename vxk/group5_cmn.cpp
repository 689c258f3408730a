// Group 5: diag commands, the card slots, the SAR state, and the eSIM state. The card slot commands pack
// integers into one vendor command; the answer is printed as it comes, and the person at the shell reads the
// card's state from it.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "group5_esim.h"
#include "groups.h"
#include "kelvra_cmn_cmd_send.h"
#include "kelvra_diag_send.h"
#include "kelvra_extend_uim.h"
#include "kelvra_log.h"
#include "kelvra_parse.h"
#include "little_endian.h"
#include "sar_v01.h"

KELVRA_LOG_UNIT("kelvra_qmi_test_cmn");

namespace {

// Sub-option 0

constexpr int kFirstByte = 6;  // of the diag command, in argv

struct DiagCommand {
    uint8_t bytes[DIAG_CMD_MAX];
    int length;  // as typed; the road refuses what does not fit
};

struct DiagReply {
    uint8_t bytes[DIAG_RSP_BUF_MAX];
    int length;
};

void read_command(int argc, char** argv, DiagCommand* command) {
    command->length = argc - kFirstByte;
    kelvra_puts("diag cmd:");
    for (int i = 0; i < std::min(command->length, DIAG_CMD_MAX); ++i) {
        command->bytes[i] = static_cast<uint8_t>(kelvra_string_to_int(argv[kFirstByte + i]));
        kelvra_printf("0x%02X ", command->bytes[i]);
    }
    kelvra_puts("");
}

// The wait thread may still print, so the whole reply is printed under standard output's lock.
void print_reply(const DiagReply& reply) {
    flockfile(stdout);
    kelvra_printf("\nrsp data len(%d)\nrsp data:", reply.length);
    for (int i = 0; i < reply.length; ++i)
        kelvra_printf(" 0x%02X", reply.bytes[i]);
    kelvra_puts("");
    funlockfile(stdout);
}

int send_without_result(bool dci, const DiagCommand& command) {
    kelvra_puts(dci ? "dci mode without result" : "callback mode without result");
    const int result =
        kelvra_diag_cmd_send_without_result_start_thread(command.bytes, command.length, dci ? 1 : 0);
    if (result == 0)
        kelvra_puts("\ndone without rsp data");
    return result;
}

int send_with_result(bool dci, DiagCommand* command, int time_out) {
    kelvra_puts(dci ? "dci mode with result" : "callback mode with result");
    const auto send = dci ? kelvra_diag_cmd_send_with_result_by_dci_mode
                          : kelvra_diag_cmd_send_with_result_by_callback_mode;
    DiagReply reply{{}, DIAG_RSP_BUF_MAX};
    const int result = send(command->bytes, command->length, time_out, reply.bytes, &reply.length);
    if (result == 0)
        print_reply(reply);
    return result;
}

int send_command(int argc, char** argv) {
    const bool dci = atoi(argv[3]) != 0;
    const bool with_result = atoi(argv[4]) == 0;
    const int time_out = atoi(argv[5]);
    DiagCommand command{};
    read_command(argc, argv, &command);

    const int result =
        with_result ? send_with_result(dci, &command, time_out) : send_without_result(dci, command);
    if (result != 0)
        kelvra_puts("kelvra_diag_cmd_send fail");
    return result;
}

int kelvra_cmn_diag_cmd_send(int argc, char** argv) {
    const bool enough = argc > kFirstByte;
    int result = 0;
    {
        KELVRA_LOG_SCOPE();
        if (enough)
            result = send_command(argc, argv);
        else
            kelvra_puts("\nnote: Too few inputs, Pls refer to the following cmd:");
    }
    // Too few inputs are answered by the help alone, with no error code, once the command has ended.
    return enough ? result : show_help(kCmnGroup);
}

// The card slots

constexpr int kCommandStatusQuery = 39;
constexpr int kCommandStatusGet = 55;
constexpr int kCommandTypeQuery = 56;
constexpr int kCommandStatusSet = 57;
constexpr int kCommandHotswap = 80;

constexpr int kFirstParam = 3;
constexpr int kWordsMax = 100;

// The words of a command's value, as they travel.
struct Payload {
    void set(int index, int value) { put_le(bytes + 4 * index, static_cast<uint32_t>(value)); }
    uint8_t bytes[4 * kWordsMax] = {};
};

int send(int command, int words, const Payload& payload) {
    const auto* value = reinterpret_cast<const char*>(payload.bytes);
    return kelvra_cmn_cmd_send(command, static_cast<uint32_t>(4 * words), value);
}

int refuse_input_count(int needed) {
    return g_quiet_mode ? kBadCommandLine : note_need_inputs(needed);
}

// The commands whose parameters are flags: any number but 0 is sent as 1.
int kelvra_cmn_card_status_cmd(int command, int param_count, int argc, char** argv) {
    if (argc != param_count + kFirstParam)
        return refuse_input_count(param_count + kFirstParam);
    Payload payload;
    kelvra_printf("param(cnt: %d):\n", param_count);
    for (int i = 0; i < param_count; ++i) {
        const int flag = atoi(argv[kFirstParam + i]) != 0 ? 1 : 0;
        payload.set(i, flag);
        kelvra_printf(" %d", flag);
    }
    kelvra_printf("\n");
    return send(command, param_count, payload);
}

// The start form of the hotswap test: opt and its three numbers, sent as typed.
int kelvra_cmn_card_status_cmd_ex(int argc, char** argv) {
    constexpr int kParams = 4;
    if (argc != kParams + kFirstParam)
        return refuse_input_count(kParams + kFirstParam);
    Payload payload;
    kelvra_printf("param(cnt: %d):\n", kParams);
    for (int i = 0; i < kParams; ++i) {
        const int value = atoi(argv[kFirstParam + i]);
        payload.set(i, value);
        kelvra_printf(" %d", value);
    }
    kelvra_printf("\n");
    return send(kCommandHotswap, kParams, payload);
}

int kelvra_cmn_card_status_query(int argc, char** argv) {
    kelvra_puts("kelvra_cmn_card_status_query");
    return kelvra_cmn_card_status_cmd(kCommandStatusQuery, 0, argc, argv);
}

int kelvra_cmn_card_status_get(int argc, char** argv) {
    KELVRA_LOGD_AT(403, "kelvra_cmn_card_status_get\n");
    return kelvra_cmn_card_status_cmd(kCommandStatusGet, 1, argc, argv);
}

int kelvra_cmn_card_status_set(int argc, char** argv) {
    KELVRA_LOGD_AT(409, "kelvra_cmn_card_status_set\n");
    return kelvra_cmn_card_status_cmd(kCommandStatusSet, 3, argc, argv);
}

int kelvra_cmn_card_type_query(int argc, char** argv) {
    kelvra_puts("kelvra_cmn_card_type_query");
    return kelvra_cmn_card_status_cmd(kCommandTypeQuery, 0, argc, argv);
}

int kelvra_cmn_card_hotswap_test(int argc, char** argv) {
    kelvra_puts("kelvra_cmn_card_hotswap_test");
    if (argc <= kFirstParam) {
        kelvra_printf("\nnote: need %d inputs at least, Pls refer to the following cmd:\n", kFirstParam + 1);
        return kBadCommandLine;
    }
    const int opt = atoi(argv[kFirstParam]);
    kelvra_printf("opt: %d\n", opt);
    if (opt != 0)
        return kelvra_cmn_card_status_cmd_ex(argc, argv);
    return send(kCommandHotswap, 1, Payload());
}

// The SAR state

constexpr int kNoDsi = -1;
constexpr uint32_t kSarConnectTimeoutMs = 4;
constexpr unsigned kSarRequestTimeoutMs = 30000;

// The client stays until the process ends, and with it its signal.
qmi_client_os_params g_sar_os_params;

int ask_dsi(qmi_client_type handle) {
    sar_get_dsi_resp_msg_v01 rsp{};
    const int error =
        qmi_client_send_msg_sync(handle, SAR_GET_DSI_V01, nullptr, 0, &rsp, sizeof rsp, kSarRequestTimeoutMs);
    if (error != QMI_NO_ERR) {
        KELVRA_LOGD_AS("kelvra_get_sar_dsi", "qmi_client_send_msg_sync failed, qmi_client_error = %d", error);
        return kNoDsi;
    }
    const int dsi = static_cast<int>(rsp.dsi);
    KELVRA_LOGD_AS("kelvra_get_sar_dsi", "dsi vailid = %d , dsi value = %d", rsp.dsi_valid, dsi);
    return dsi;
}

int kelvra_get_sar_dsi() {
    KELVRA_LOG_SCOPE();
    qmi_client_type handle = nullptr;
    const int error =
        qmi_client_init_instance(sar_get_service_object_internal_v01(
                                     SAR_V01_IDL_MAJOR_VERS, SAR_V01_IDL_MINOR_VERS, SAR_V01_IDL_TOOL_VERS),
                                 QMI_CLIENT_INSTANCE_ANY, kelvra_qcril_qmi_client_common_empty_unsol_ind_cb,
                                 nullptr, &g_sar_os_params, kSarConnectTimeoutMs, &handle);
    int dsi = kNoDsi;
    if (error != QMI_NO_ERR)
        KELVRA_LOGD("qmi_client_init_instance failed, qmi_client_error = %d", error);
    else
        dsi = ask_dsi(handle);
    return dsi;
}

int kelvra_cmn_test_get_sar_dsi(int, char**) {
    kelvra_printf("SAR DSI: %d\n", kelvra_get_sar_dsi());
    return 0;
}

// clang-format off
constexpr Command kCommands[] = {
    {0, " mode type time_out cmd_cnt\n"
        "                                 /* diag cmd */\n"
        "                                    mode: 0 - callback, 1 - dci; \n"
        "                                    type: 0 - with result, 1 - without result; \n"
        "                                    time_out: set time - with result, set 0 - without result. unit:ms */\n"
        "                                    cmd_cnt: diag cmd bytes */",
     kelvra_cmn_diag_cmd_send},
    {1, "                       /* card status query: 0 - absent, 1 - present",
     kelvra_cmn_card_status_query},
    {2, " sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */",
     kelvra_cmn_card_status_get},
    {3, " sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */",
     kelvra_cmn_card_status_set},
    {4, "                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */",
     kelvra_cmn_card_type_query},
    {5, "                       /* get sar dsi */", kelvra_cmn_test_get_sar_dsi},
    {6, " opt option_list       /* card slot hotswap test */\n"
        "                                    opt: 0 - stop hotswap test, 1 - start hotswap test \n"
        "                                    option_list(when opt is 1 for blew inputs): \n"
        "                                      seconds_after_push : the seconds of waiting after push the card slot \n"
        "                                      seconds_after_pull : the seconds of waiting after pull the card slot \n"
        "                                      count_push_and_pull: the count of push and pull the card slot ",
     kelvra_cmn_card_hotswap_test},
    {10, " esim_on debug_on     /* set esim state */\n"
         "                                    esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 \n"
         "                                    debug_on : 0 - disable log print,1 - enable log print ",
     kelvra_cmn_esim_test},
};
// clang-format on

// In quiet mode the help alone is shown.
int refuse(int (*with_note)(const Group& group)) {
    return g_quiet_mode ? show_help(kCmnGroup) : with_note(kCmnGroup);
}

}  // namespace

const Group kCmnGroup = make_group(5, "cmn option cmd: ", kelvra_test_cmn_do, kCommands);

int kelvra_test_cmn_do(int argc, char** argv) {
    if (argc <= 2)
        return refuse(refuse_too_few_parameters);
    if (atoi(argv[1]) != kCmnGroup.number)
        return refuse(refuse_first_parameter);
    const Command* const command = find_command(kCmnGroup, atoi(argv[2]));
    if (command == nullptr)
        return refuse(refuse_second_parameter);
    const int result = command->run(argc, argv);
    if (result == 0 || !g_quiet_mode)
        return report_result(kCmnGroup, result);
    show_help(kCmnGroup);
    return result;
}
