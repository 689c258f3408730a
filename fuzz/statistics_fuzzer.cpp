// A session of the statistics service: its requests, its indications and the measurements, in the input's
// order. `u8 call, u8 argument`, then the modem's records or what the call below takes.
#include "finding.h"
#include "group9_session.h"
#include "group9_stats_qmi.h"
#include "modem.h"
#include "modem_api.h"
#include "modem_api_events.h"
#include "modem_api_slots.h"
#include "qcril_memory_management.h"

namespace {

void measure(Input& input, uint8_t argument) {
    kelvra_test_qmi_modem_stats_hdl(argument, input.u8() % 3);
}

void get(Input& input, uint8_t argument) {
    KolvoValue value;
    kelvra_test_qmi_modem_stats_get(argument, input.u8(), &value);
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
    indicate(input, vs_get_service_object_internal_v01(VS_V01_IDL_MAJOR_VERS, VS_V01_IDL_MINOR_VERS,
                                                       VS_V01_IDL_TOOL_VERS));
}

void take_response(void* data, uint32_t len, void*, int) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    uint8_t sum = 0;
    for (uint32_t i = 0; i < len; ++i)
        sum = static_cast<uint8_t>(sum + bytes[i]);
    static_cast<void>(sum);
    kolvo_free_adv(data);
}

void asynchronous_response(Input& input, uint8_t argument) {
    const int error = -static_cast<int>(input.u8() % 6);
    const std::vector<uint8_t> bytes = input.block();
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

constexpr void (*kCalls[])(Input&, uint8_t argument) = {
    measure, get, get_list, set_feature, indication, asynchronous_response,
};

constexpr int kCallsMax = 12;

template <typename Data>
const Data& as(const void* data, int len) {
    require(len == sizeof(Data), "an event has its layout's length");
    return *static_cast<const Data*>(data);
}

void check_entries(const vs_report_entry_v01* entries, uint32_t count, uint32_t most) {
    require(count <= most, "an event's count does not exceed its array");
    for (uint32_t i = 0; i < count; ++i)
        require(entries[i].value_len <= sizeof entries[i].value, "nor does the length of a value");
}

void take_event(int event, void* data, int len) {
    switch (event) {
        case MODEM_API_EVENT_STATUS:
            require(as<modem_api_status_event>(data, len).first <= 1, "a flag is 0 or 1");
            break;
        case MODEM_API_EVENT_REPORT: {
            const auto& report = as<modem_api_report_event>(data, len);
            check_entries(report.first, report.first_count, VS_ENTRIES_MAX_V01);
            check_entries(report.second, report.second_count, VS_REPORT_SECOND_MAX_V01);
            break;
        }
        case MODEM_API_EVENT_BYTES:
            require(as<modem_api_bytes_event>(data, len).count <= VS_BYTES_IND_MAX_V01,
                    "an event's count does not exceed its array");
            break;
        default:
            as<modem_api_state_event>(data, len);
    }
}

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
