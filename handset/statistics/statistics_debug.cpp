#include "statistics_debug.h"

#include <cstring>

#include "common_request.h"
#include "core.h"
#include "profile_section.h"

namespace handset {
namespace {

// Common requests in the direct form, without a value.
constexpr uint32_t kDebugInfo = 20;         // u8 version, the counters
constexpr uint32_t kNotSupportedLogs = 27;  // u16 count, u16 log id each

constexpr size_t kPayloadMax = 496;
constexpr size_t kLogsMax = (kPayloadMax - 2) / 2;

constexpr char kMain[] = "main";
constexpr char kDiag[] = "diag";
constexpr char kCm[] = "cm";
constexpr char kUim[] = "uim";

constexpr struct Counter {
    const char* block;
    const char* name;
    uint8_t size;   // in bytes
    uint8_t since;  // the first version that has it
    uint64_t value;
} kCounters[] = {
    {kMain, "g_modem_stats_feature_enable_status", 1, 0, 1},
    {kMain, "g_unpk_version_not_support_num", 8, 0, 0},
    {kMain, "g_modem_stats_cmd_ok_count", 8, 0, 1284},
    {kMain, "g_modem_stats_cmd_fail_count", 8, 0, 3},
    {kMain, "kolvo_system_heapi_mem_max_num", 8, 2, 262144},
    {kMain, "kolvo_system_heapi_mem_cur_num", 8, 2, 73728},
    {kMain, "modem_statsi_cmd_q_count", 4, 2, 2},
    {kMain, "modem_statsi_cmd_free_q_count", 4, 2, 62},
    {kMain, "g_kolvo_log_mask", 4, 4, 31},
    {kMain, "g_kolvo_log_stats_mask", 4, 4, 7},
    {kDiag, "init_state", 1, 0, 1},
    {kDiag, "listener_event_num", 4, 0, 17},
    {kDiag, "listener_event_state", 1, 0, 2},
    {kDiag, "listener_event_call_num", 4, 0, 5203},
    {kDiag, "listener_event_parse_num", 4, 0, 5201},
    {kDiag, "listener_log_num", 4, 0, 23},
    {kDiag, "listener_log_state", 1, 0, 3},
    {kDiag, "listener_log_call_num", 8, 0, 91377},
    {kDiag, "listener_log_parse_num", 8, 0, 91370},
    {kDiag, "poll_update_call_num", 4, 0, 640},
    {kDiag, "poll_update_parse_num", 4, 0, 639},
    {kDiag, "listener_event_callback_num", 8, 1, 5210},
    {kDiag, "listener_log_callback_num", 8, 1, 91401},
    {kDiag, "lte_cell_id_invalid_num", 4, 1, 12},
    {kDiag, "nr5g_cell_id_invalid_num", 4, 1, 8},
    {kDiag, "event_duration_ms_max", 4, 2, 14},
    {kDiag, "log_duration_ms_max", 4, 2, 27},
    {kDiag, "do_duration_ms_max", 4, 2, 41},
    {kDiag, "debug_call_num", 4, 2, 6},
    {kDiag, "debug_parse_num", 4, 2, 5},
    {kDiag, "cust_event_call_num", 4, 3, 73},
    {kDiag, "cust_event_parse_num", 4, 3, 71},
    {kCm, "init_state", 1, 0, 1},
    {kCm, "listener_state", 1, 0, 2},
    {kCm, "listener_call_event_call_num", 4, 0, 301},
    {kCm, "listener_call_event_parse_num", 4, 0, 300},
    {kCm, "listener_subs_event_call_num", 4, 0, 44},
    {kCm, "listener_subs_event_parse_num", 4, 0, 43},
    {kCm, "listener_ss_event_call_num", 4, 0, 2210},
    {kCm, "listener_ss_event_parse_num", 4, 0, 2209},
    {kCm, "listener_stats_event_call_num", 4, 0, 98},
    {kCm, "listener_stats_event_parse_num", 4, 0, 97},
    {kCm, "poll_update_rf_call_num", 4, 0, 640},
    {kCm, "poll_update_rf_parse_num", 4, 0, 638},
    {kCm, "poll_update_lte_call_num", 4, 0, 512},
    {kCm, "poll_update_lte_parse_num", 4, 0, 511},
    {kCm, "poll_update_nr5g_call_num", 4, 0, 128},
    {kCm, "poll_update_nr5g_parse_num", 4, 0, 127},
    {kUim, "init_state", 1, 0, 1},
    {kUim, "listener_state", 1, 0, 2},
    {kUim, "listener_event_call_num", 4, 0, 9},
    {kUim, "listener_event_parse_num", 4, 0, 8},
};

uint64_t highest(const Counter& counter) {
    return UINT64_MAX >> (64 - 8 * counter.size);
}

wire::Bytes encode_counters(const DebugProfile& debug) {
    if (debug.raw)
        return *debug.raw;
    wire::Writer writer;
    writer.u8(debug.version);
    for (size_t i = 0; i < std::size(kCounters); ++i) {
        if (debug.version >= kCounters[i].since)
            writer.number(debug.counters[i], kCounters[i].size);
    }
    return writer.take();
}

wire::Bytes encode_logs(const DebugProfile& debug) {
    wire::Writer writer;
    writer.u16(debug.log_num.value_or(static_cast<uint16_t>(debug.not_supported_logs.size())));
    for (const uint64_t id : debug.not_supported_logs)
        writer.u16(static_cast<uint16_t>(id));
    return writer.take();
}

}  // namespace

DebugProfile::DebugProfile() {
    for (const Counter& counter : kCounters)
        counters.push_back(counter.value);
}

void read_profile(Section& section, DebugProfile& debug) {
    section.integer("version", debug.version);
    for (const char* block : {kMain, kDiag, kCm, kUim}) {
        section.object(block, [&](Section& fields) {
            for (size_t i = 0; i < std::size(kCounters); ++i) {
                if (strcmp(kCounters[i].block, block) == 0)
                    fields.integer<uint64_t>(kCounters[i].name, debug.counters[i], 0, highest(kCounters[i]));
            }
        });
    }
    section.integers("not_supported_logs", debug.not_supported_logs, kLogsMax, UINT16_MAX);
    section.integer("log_num", debug.log_num);
    if (section.has("raw"))
        section.bytes("raw", debug.raw.emplace(), kPayloadMax);
}

void add_statistics_debug(Core& core, CommonRequests& requests, const DebugProfile& debug) {
    core.state().clear("debug");
    core.state().set("debug", "version", debug.version);
    core.state().set("debug", "feature", debug.counters.front() != 0 ? "on" : "off");
    core.state().set("debug", "not supported logs", debug.not_supported_logs.size());
    requests.add(CommonForm::kDirect, kDebugInfo, [&debug](const CommonRequest&) {
        return CommonAnswer{kModemOk, encode_counters(debug)};
    });
    requests.add(CommonForm::kDirect, kNotSupportedLogs, [&debug](const CommonRequest&) {
        return CommonAnswer{kModemOk, encode_logs(debug)};
    });
}

}  // namespace handset
