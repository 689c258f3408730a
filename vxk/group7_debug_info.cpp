#include "group7_debug_info.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "kelvra_extend_cmn.h"
#include "little_endian.h"

namespace {

struct BlockField {
    const char* name;
    uint8_t size;
    uint8_t since;  // the first version that has it
};

constexpr BlockField kMainFields[] = {
    {"g_modem_stats_feature_enable_status", 1, 0},
    {"g_unpk_version_not_support_num", 8, 0},
    {"g_modem_stats_cmd_ok_count", 8, 0},
    {"g_modem_stats_cmd_fail_count", 8, 0},
    {"kolvo_system_heapi_mem_max_num", 8, 2},
    {"kolvo_system_heapi_mem_cur_num", 8, 2},
    {"modem_statsi_cmd_q_count", 4, 2},
    {"modem_statsi_cmd_free_q_count", 4, 2},
    {"g_kolvo_log_mask", 4, 4},
    {"g_kolvo_log_stats_mask", 4, 4},
};

constexpr BlockField kDiagFields[] = {
    {"init_state", 1, 0},
    {"listener_event_num", 4, 0},
    {"listener_event_state", 1, 0},
    {"listener_event_call_num", 4, 0},
    {"listener_event_parse_num", 4, 0},
    {"listener_log_num", 4, 0},
    {"listener_log_state", 1, 0},
    {"listener_log_call_num", 8, 0},
    {"listener_log_parse_num", 8, 0},
    {"poll_update_call_num", 4, 0},
    {"poll_update_parse_num", 4, 0},
    {"listener_event_callback_num", 8, 1},
    {"listener_log_callback_num", 8, 1},
    {"lte_cell_id_invalid_num", 4, 1},
    {"nr5g_cell_id_invalid_num", 4, 1},
    {"event_duration_ms_max", 4, 2},
    {"log_duration_ms_max", 4, 2},
    {"do_duration_ms_max", 4, 2},
    {"debug_call_num", 4, 2},
    {"debug_parse_num", 4, 2},
    {"cust_event_call_num", 4, 3},
    {"cust_event_parse_num", 4, 3},
};

constexpr BlockField kCmFields[] = {
    {"init_state", 1, 0},
    {"listener_state", 1, 0},
    {"listener_call_event_call_num", 4, 0},
    {"listener_call_event_parse_num", 4, 0},
    {"listener_subs_event_call_num", 4, 0},
    {"listener_subs_event_parse_num", 4, 0},
    {"listener_ss_event_call_num", 4, 0},
    {"listener_ss_event_parse_num", 4, 0},
    {"listener_stats_event_call_num", 4, 0},
    {"listener_stats_event_parse_num", 4, 0},
    {"poll_update_rf_call_num", 4, 0},
    {"poll_update_rf_parse_num", 4, 0},
    {"poll_update_lte_call_num", 4, 0},
    {"poll_update_lte_parse_num", 4, 0},
    {"poll_update_nr5g_call_num", 4, 0},
    {"poll_update_nr5g_parse_num", 4, 0},
};

constexpr BlockField kUimFields[] = {
    {"init_state", 1, 0},
    {"listener_state", 1, 0},
    {"listener_event_call_num", 4, 0},
    {"listener_event_parse_num", 4, 0},
};

constexpr BlockField kCheckFields[] = {
    {"version", 1, 0},
    {"modem_stats_feature_enable_status", 1, 0},
    {"version_not_support_num", 8, 0},
    {"modem_stats_cmd_ok_count", 8, 0},
    {"modem_stats_cmd_fail_count", 8, 0},
};

template <size_t N>
constexpr uint32_t size_of(const BlockField (&fields)[N], uint8_t version) {
    uint32_t size = 0;
    for (const BlockField& field : fields)
        if (version >= field.since)
            size += field.size;
    return size;
}

static_assert(size_of(kMainFields, 1) == 25 && size_of(kMainFields, 3) == 49 && size_of(kMainFields, 4) == 57,
              "layout");
static_assert(size_of(kDiagFields, 0) == 43 && size_of(kDiagFields, 1) == 67 &&
                  size_of(kDiagFields, 2) == 87 && size_of(kDiagFields, 3) == 95,
              "layout");
static_assert(size_of(kCmFields, 0) == 58 && size_of(kUimFields, 0) == 10, "layout");
static_assert(size_of(kCheckFields, 0) == kStatsCheckSize, "layout");

uint64_t print_field(const uint8_t* bytes, const char* name, uint8_t size) {
    uint64_t value = 0;
    for (int i = size - 1; i >= 0; --i)
        value = value << 8 | bytes[i];
    printf("UNPK[size:%d], %s = %" PRIu64 "\n", size, name, value);
    return value;
}

template <size_t N>
int print_block(const BlockField (&fields)[N], const uint8_t* block, uint8_t version) {
    if (block == nullptr) {
        puts("ptr is null");
        return 0;
    }
    int consumed = 0;
    for (const BlockField& field : fields)
        if (version >= field.since) {
            print_field(block + consumed, field.name, field.size);
            consumed += field.size;
        }
    return consumed;
}

constexpr struct {
    const char* name;
    int (*print)(const uint8_t* block, uint8_t version);
} kBlocks[] = {
    {"main", kelvra_modem_stats_main_info_unpk},
    {"diag", kelvra_modem_stats_diag_info_unpk},
    {"cm", kelvra_modem_stats_cm_info_unpk},
    {"uim", kelvra_modem_stats_uim_info_unpk},
};

void print_all_blocks(const uint8_t* payload) {
    const uint8_t version = payload[0];
    print_field(payload, "version", 1);
    uint8_t cnt = 1;  // 8 bits on purpose: the largest layout takes 221 bytes
    for (const auto& block : kBlocks) {
        printf("-------- stats %s info start --------\n", block.name);
        cnt = static_cast<uint8_t>(cnt + block.print(payload + cnt, version));
        printf("-------- stats %s info end, cnt(%d) --------\n", block.name, cnt);
    }
}

// One of the two common requests, with the words by which its failures are told apart.
struct Query {
    uint32_t code;
    const char* send_failure;
    const char* result_name;
};

constexpr Query kDebugInfo{20, "kelvra_common_qmi_req fail, REQUEST_ID_COMMON", "rsp.result"};
constexpr Query kNotSupportedLogs{27, "kelvra_common_qmi_req fail", "rsp_not_support.result"};

bool fail(const char* failure, int result, const char* result_name, int rsp_result) {
    printf("%s, result = %d, %s = %d\n", failure, result, result_name, rsp_result);
    return false;
}

// True when the modem answered with success; otherwise prints the line of the failure.
bool ask(const Query& query, CommonResponse* response) {
    const int result = kelvra_common_qmi_req(query.code, response);
    if (result != kExtendOk)
        return fail(query.send_failure, result, query.result_name, response->result());
    if (response->is_whole() && response->result() != 0)
        return fail("qmi response fail", response->result(), query.result_name, response->result());
    return true;
}

// A response with fewer bytes than its reader takes is a failed exchange.
bool has(const Query& query, const CommonResponse& response, uint32_t size) {
    return response.is_whole(size) ||
           fail(query.send_failure, kChannelFailed, query.result_name, response.result());
}

uint32_t debug_info_size(uint8_t version) {
    return 1 + size_of(kMainFields, version) + size_of(kDiagFields, version) + size_of(kCmFields, version) +
           size_of(kUimFields, version);
}

void print_rule() {
    puts("===========================================");
}

void print_not_supported_logs() {
    constexpr uint32_t kNumSize = 2;
    constexpr uint32_t kIdSize = 2;
    CommonResponse response;
    if (!ask(kNotSupportedLogs, &response) || !has(kNotSupportedLogs, response, kNumSize))
        return;
    const auto log_num = static_cast<uint32_t>(print_field(response.value(), "log_num", kNumSize));
    print_rule();
    puts("================= FAIL ====================");
    print_rule();
    printf("Diag logs to be upgraded[num:%d]:\n", static_cast<int>(log_num));
    const uint32_t num = std::min(log_num, (response.value_len() - kNumSize) / kIdSize);
    for (uint32_t i = 0; i < num; ++i)
        printf("log_id[%d]: 0x%04X\n", static_cast<int>(i),
               get_le<uint16_t>(response.value() + kNumSize + i * kIdSize));
}

}  // namespace

int kelvra_modem_stats_main_info_unpk(const uint8_t* block, uint8_t version) {
    return print_block(kMainFields, block, version);
}

int kelvra_modem_stats_diag_info_unpk(const uint8_t* block, uint8_t version) {
    return print_block(kDiagFields, block, version);
}

int kelvra_modem_stats_cm_info_unpk(const uint8_t* block, uint8_t version) {
    return print_block(kCmFields, block, version);
}

int kelvra_modem_stats_uim_info_unpk(const uint8_t* block, uint8_t version) {
    return print_block(kUimFields, block, version);
}

void kelvra_modem_stats_support_status_check(const uint8_t* payload) {
    if (payload == nullptr) {
        puts("kelvra_modem_stats_support_status_check, ptr is null");
        return;
    }
    print_block(kCheckFields, payload, 0);
    const bool enabled = payload[1] != 0;
    const auto not_support_num = get_le<uint64_t>(payload + 2);
    if (enabled && not_support_num != 0)
        return print_not_supported_logs();
    print_rule();
    puts(enabled ? "================ SUCCES ===================\n"
                 : "================ CLOSED ===================");
}

void kelvra_test_modem_stats_get_debug_info_do(int mask) {
    printf("Get the debug info of modem_stats, mask = 0x%x\n", static_cast<unsigned>(mask));
    CommonResponse response;
    if (!ask(kDebugInfo, &response))
        return;
    if (mask == 0) {
        if (has(kDebugInfo, response, kStatsCheckSize))
            kelvra_modem_stats_support_status_check(response.value());
    } else if (has(kDebugInfo, response, 1) &&
               has(kDebugInfo, response, debug_info_size(*response.value()))) {
        print_all_blocks(response.value());
    }
}
