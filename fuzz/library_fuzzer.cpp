// The libraries below the commands, with arguments that no command gives them and several calls in
// one process: `u8 call, u8 argument`, what the call below takes, and the modem's records for it,
// again and again.
#include "finding.h"
#include "group7_stats.h"
#include "group7_unpack.h"
#include "group9_session.h"
#include "group9_stats_qmi.h"
#include "kelvra_diag_send.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_extend_nvefs.h"
#include "modem.h"
#include "modem_api.h"
#include "modem_api_events.h"
#include "modem_api_slots.h"
#include "platform_double.h"
#include "qcril_memory_management.h"
#include "tables.h"

namespace {

using Bytes = std::vector<uint8_t>;

void check(const CommonResponse& response) {
    require(response.arrived <= kCommonResponseMax, "no more than fits is told");
    require(!response.is_whole() || response.result() != 0 || response.value_len() <= kCommonValueMax,
            "a whole value lies in the response");
}

// The extension channel, file transfer and the counters of the statistics feature: `argument` is a choice and
// a subscription.
void extension(Input& input, uint8_t argument) {
    const int sub = argument % 4 - 1;
    const int32_t number = input.i32();
    const Bytes name = input.short_block();
    const auto* const path = reinterpret_cast<const char*>(name.data());
    const auto path_len = static_cast<int>(name.size());
    const Bytes data = input.block();
    const auto data_len = static_cast<uint32_t>(data.size());
    Bytes buffer(input.u16());
    auto told = static_cast<uint32_t>(buffer.size());
    CommonResponse response;
    switch (argument / 4 % 7) {
        case 0:
            kelvra_extend_qmi_send_sync(static_cast<uint32_t>(number), data.data(),
                                        static_cast<int>(data.size()), buffer.data(), &told);
            break;
        case 1:
            kelvra_efs_read(sub, path, path_len, buffer.data(), &told);
            break;
        case 2:
            kelvra_efs_write(sub, path, path_len, data.data(), data_len);
            break;
        case 3:
            kelvra_nv_read(sub, number, buffer.data(), &told);
            break;
        case 4:
            kelvra_nv_write_ex(sub, number, data.data(), data_len);
            break;
        case 5:
            kelvra_common_qmi_req(static_cast<uint32_t>(number), &response);
            return check(response);
        default:
            kelvra_send_common_qmi_msg(static_cast<uint32_t>(number), data_len, data.data(), &response);
            return check(response);
    }
    require(told <= buffer.size(), "no more than fits is told");
}

// A diag command; in `argument` 1: over the DCI road, 2: nobody waits.
void diag(Input& input, uint8_t argument) {
    const int time_out = 10 * static_cast<int16_t>(input.u16());
    const int room = std::min<int>(static_cast<int16_t>(input.u16()), DIAG_RSP_BUF_MAX);
    Bytes command = input.block();
    const auto size = static_cast<int>(command.size());
    Bytes reply(DIAG_RSP_BUF_MAX);
    int told = room;
    if ((argument & 2) != 0)
        kelvra_diag_cmd_send_without_result_start_thread(command.data(), size, argument & 1);
    else if ((argument & 1) != 0)
        kelvra_diag_cmd_send_with_result_by_dci_mode(command.data(), size, time_out, reply.data(), &told);
    else
        kelvra_diag_cmd_send_with_result_by_callback_mode(command.data(), size, time_out, reply.data(),
                                                          &told);
    require(told <= room, "no more than fits is told");
    wait_for_threads();
}

// What is left is a record of the statistics; 1: its parser is traced.
void record(Input& input, uint8_t argument) {
    Bytes payload = input.rest();
    payload.resize(kUnpkBufferMin);
    g_unpk_print = argument & 1;
    kelvra_test_modem_stats_parsing_process_do(payload.data());
}

// A session of the statistics service

void take_event(int event, void* data, int len) {
    const size_t layout = event == MODEM_API_EVENT_STATUS   ? sizeof(modem_api_status_event)
                          : event == MODEM_API_EVENT_REPORT ? sizeof(modem_api_report_event)
                          : event == MODEM_API_EVENT_BYTES  ? sizeof(modem_api_bytes_event)
                                                            : sizeof(modem_api_state_event);
    require(static_cast<size_t>(len) == layout, "an event has its layout's length");
    const auto* const bytes = static_cast<const uint8_t*>(data);
    static_cast<void>(Bytes(bytes, bytes + len));
}

void measure(Input& input, uint8_t argument) {
    kelvra_test_qmi_modem_stats_hdl(argument, input.u8() % 3);
}

void get_list(Input& input, uint8_t argument) {
    modem_stats_param_list list{};
    list.count = argument;
    for (auto& param : list.params) {
        param.id = input.u8();
        param.value_len = std::min<uint32_t>(input.u16(), VS_VALUE_MAX_V01);
    }
    modem_api_get_stats_parameter(0, argument, &list);
    require(list.count <= VS_ENTRIES_MAX_V01 || list.count == argument, "no more entries than fit are told");
}

void set_feature(Input&, uint8_t) {
    modem_api_set_kolvo_feature_status();
}

void indication(Input& input, uint8_t) {
    indicate(input, seam::statistics_table());
}

// Frees the response, of which nobody may have kept less than it says.
void take_response(void* data, uint32_t len, void*, int) {
    static_cast<void>(Bytes(static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + len));
    kolvo_free_adv(data);
}

void asynchronous_response(Input& input, uint8_t argument) {
    const int error = -static_cast<int>(input.u8() % 6);
    const Bytes bytes = input.block();
    void* const response = bytes.empty() ? nullptr : kolvo_malloc_adv(bytes.size(), "response");
    if (response != nullptr)
        std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t*>(response));
    auto* const cb =
        static_cast<modem_api_cb_struct_type*>(kolvo_malloc_adv(sizeof(modem_api_cb_struct_type), "cb"));
    if (cb != nullptr)
        cb->callback = (argument & 1) != 0 ? take_response : nullptr;
    vs_client_command_cb(nullptr, argument / 2, response,
                         response == nullptr ? 0 : static_cast<unsigned>(bytes.size()), cb, error);
}

// The seeds know the calls by their places.
constexpr void (*kCalls[])(Input&, uint8_t argument) = {
    extension, diag, record, measure, get_list, set_feature, indication, asynchronous_response,
};

constexpr int kCallsMax = 12;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    run_tool(input, [&] {
        modem_api_init();
        modem_api_init_client(MODEM_API_CLIENT_VS, take_event, nullptr);
        for (int i = 0; i < kCallsMax && !input.empty(); ++i) {
            const auto call = kCalls[input.u8() % std::size(kCalls)];
            call(input, input.u8());
        }
    });
    return 0;
}
