// The statistics feature's own counters: block layouts by version, verdicts, and payloads that lie.
#include <gmock/gmock.h>

#include <regex>
#include <sstream>

#include "extend_double.h"
#include "group7_debug_info.h"
#include "groups.h"
#include "little_endian.h"
#include "platform_test.h"

namespace {

using testing::ElementsAreArray;
using testing::EndsWith;
using testing::HasSubstr;

using Bytes = std::vector<uint8_t>;

// The printed lines without those of the logs and the channel, as one text.
class DebugInfo : public PlatformTest {
protected:
    DebugInfo() {
        platform().send = [this](const QmiRequest& request, void* response) {
            codes.push_back(get_le<uint32_t>(payload_of(request).data()));
            const bool asks_list = codes.back() == 27;
            Bytes data(16, 0);
            put_le(data.data() + 4, asks_list ? list_result : debug_result);
            const Bytes& payload = asks_list ? list : debug;
            data.insert(data.end(), payload.begin(), payload.end());
            data.resize(std::min(data.size(), cut));
            answer_extend(response, data);
            return asks_list ? list_error : debug_error;
        };
    }

    static std::string run(const std::string& line) {
        const std::string printed =
            printed_by([&] { EXPECT_EQ(run_line(kelvra_test_modem_stats_do, line), 1); });
        std::string kept;
        for (size_t at = 0, end; (end = printed.find('\n', at)) != std::string::npos; at = end + 1) {
            const std::string text = printed.substr(at, end + 1 - at);
            const bool logged = text.rfind("RIL[", 0) == 0 || text.rfind("KELVRA_QMI_NV", 0) == 0 ||
                                text.rfind("kelvra_extend_qmi_", 0) == 0 ||
                                text.rfind("QMI client", 0) == 0 || text.rfind("send msg sync", 0) == 0;
            if (!logged)
                kept += text;
        }
        return kept;
    }

    std::vector<uint32_t> codes;  // of the requests
    Bytes debug;                  // the value behind the header
    Bytes list;
    int debug_error = 0;
    int list_error = 0;
    int debug_result = 0;
    int list_result = 0;
    size_t cut = 508;
};

Bytes check_block(uint8_t version, uint8_t enabled, uint8_t not_supported) {
    Bytes block(221, 0);
    block[0] = version;
    block[1] = enabled;
    block[2] = not_supported;
    block[10] = 6;
    block[25] = 0x80;
    return block;
}

std::string check_lines(const char* version, const char* enabled, const char* not_supported) {
    return std::string("Get the debug info of modem_stats, mask = 0x0\nUNPK[size:1], version = ") + version +
           "\nUNPK[size:1], modem_stats_feature_enable_status = " + enabled +
           "\nUNPK[size:8], version_not_support_num = " + not_supported +
           "\nUNPK[size:8], modem_stats_cmd_ok_count = 6\n"
           "UNPK[size:8], modem_stats_cmd_fail_count = 9223372036854775808\n";
}

constexpr char kRule[] = "===========================================\n";

TEST_F(DebugInfo, Verdicts) {
    debug = check_block(4, 1, 0);
    EXPECT_EQ(run("7 1 0"),
              check_lines("4", "1", "0") + kRule + "================ SUCCES ===================\n\n");
    debug = check_block(0, 0, 9);
    EXPECT_EQ(run("7 1 0"),
              check_lines("0", "0", "9") + kRule + "================ CLOSED ===================\n");
    EXPECT_THAT(codes, ElementsAreArray({20, 20}));

    debug = check_block(255, 255, 3);
    const std::string fail = std::string(kRule) + "================= FAIL ====================\n" + kRule;
    list = {2, 0, 0x93, 0xB1, 0x0A, 0x00};
    EXPECT_EQ(run("7 1 0"), check_lines("255", "255", "3") + "UNPK[size:2], log_num = 2\n" + fail +
                                "Diag logs to be upgraded[num:2]:\nlog_id[0]: 0xB193\nlog_id[1]: 0x000A\n");
    list = {0, 0, 1, 1};
    EXPECT_THAT(run("7 1 0"), EndsWith("log_num = 0\n" + fail + "Diag logs to be upgraded[num:0]:\n"));
    list = {0xFF, 0xFF, 1, 0, 2, 0, 3};  // 65,535 announced, two and a half there
    EXPECT_THAT(run("7 1 0"),
                EndsWith("UNPK[size:2], log_num = 65535\n" + fail +
                         "Diag logs to be upgraded[num:2]:\nlog_id[0]: 0x0001\nlog_id[1]: 0x0002\n"));
    list.resize(600);  // more than a response holds
    EXPECT_THAT(run("7 1 0"), EndsWith("log_id[244]: 0x0000\n"));
    EXPECT_EQ(codes.back(), 27U);
}

TEST_F(DebugInfo, FailedRequests) {
    const std::string first = "Get the debug info of modem_stats, mask = 0x";
    const struct {
        const char* line;
        int debug_error, debug_result, list_error, list_result;
        size_t debug_size;
        Bytes list;
        const char* last_line;
    } cases[] = {
        {"7 1 0",
         -3,
         0,
         0,
         0,
         221,
         {},
         "kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -3, rsp.result = 0\n"},
        {"7 1 1", 0, -5, 0, 0, 221, {}, "qmi response fail, result = -5, rsp.result = -5\n"},
        {"7 1 0", 0, 0, 0, 0, 25, {}, "qmi response fail, result = -103, rsp.result = -103\n"},
        {"7 1 1", 0, 0, 0, 0, 220, {}, "qmi response fail, result = -103, rsp.result = -103\n"},
        {"7 1 1", 0, 0, 0, 0, 0, {}, "qmi response fail, result = -103, rsp.result = -103\n"},
        {"7 1 0",
         0,
         0,
         -3,
         0,
         221,
         {},
         "kelvra_common_qmi_req fail, result = -3, rsp_not_support.result = 0\n"},
        {"7 1 0", 0, 0, 0, 9, 221, {1, 0}, "qmi response fail, result = 9, rsp_not_support.result = 9\n"},
        {"7 1 0", 0, 0, 0, 0, 221, {1}, "qmi response fail, result = -103, rsp_not_support.result = -103\n"},
    };
    for (const auto& c : cases) {
        debug = check_block(4, 1, 1);
        debug.resize(c.debug_size);
        debug_error = c.debug_error;
        debug_result = c.debug_result;
        list_error = c.list_error;
        list_result = c.list_result;
        list = c.list;
        const bool asks_list = c.list_error != 0 || c.list_result != 0 || !c.list.empty();
        EXPECT_EQ(run(c.line),
                  (asks_list ? check_lines("4", "1", "1") : first + c.line[4] + "\n") + c.last_line);
    }
    cut = 12;  // not even the header
    EXPECT_THAT(run("7 1 0"), EndsWith("qmi response fail, result = -103, rsp.result = -103\n"));
}

// The blocks as the modem packs them, a field as name:size:version that brought it.
const std::pair<const char*, const char*> kBlocks[] = {
    {"main",
     "g_modem_stats_feature_enable_status:1:0 g_unpk_version_not_support_num:8:0 "
     "g_modem_stats_cmd_ok_count:8:0 "
     "g_modem_stats_cmd_fail_count:8:0 kolvo_system_heapi_mem_max_num:8:2 kolvo_system_heapi_mem_cur_num:8:2 "
     "modem_statsi_cmd_q_count:4:2 modem_statsi_cmd_free_q_count:4:2 g_kolvo_log_mask:4:4 "
     "g_kolvo_log_stats_mask:4:4 "},
    {"diag",
     "init_state:1:0 listener_event_num:4:0 listener_event_state:1:0 listener_event_call_num:4:0 "
     "listener_event_parse_num:4:0 listener_log_num:4:0 listener_log_state:1:0 listener_log_call_num:8:0 "
     "listener_log_parse_num:8:0 poll_update_call_num:4:0 poll_update_parse_num:4:0 "
     "listener_event_callback_num:8:1 listener_log_callback_num:8:1 lte_cell_id_invalid_num:4:1 "
     "nr5g_cell_id_invalid_num:4:1 event_duration_ms_max:4:2 log_duration_ms_max:4:2 do_duration_ms_max:4:2 "
     "debug_call_num:4:2 debug_parse_num:4:2 cust_event_call_num:4:3 cust_event_parse_num:4:3 "},
    {"cm",
     "init_state:1:0 listener_state:1:0 listener_call_event_call_num:4:0 listener_call_event_parse_num:4:0 "
     "listener_subs_event_call_num:4:0 listener_subs_event_parse_num:4:0 listener_ss_event_call_num:4:0 "
     "listener_ss_event_parse_num:4:0 listener_stats_event_call_num:4:0 listener_stats_event_parse_num:4:0 "
     "poll_update_rf_call_num:4:0 poll_update_rf_parse_num:4:0 poll_update_lte_call_num:4:0 "
     "poll_update_lte_parse_num:4:0 poll_update_nr5g_call_num:4:0 poll_update_nr5g_parse_num:4:0 "},
    {"uim", "init_state:1:0 listener_state:1:0 listener_event_call_num:4:0 listener_event_parse_num:4:0 "},
};

TEST_F(DebugInfo, AllBlocksOfEveryVersion) {
    const struct {
        uint8_t version;
        int ends[4];
    } cases[] = {{0, {26, 69, 127, 137}},   {1, {26, 93, 151, 161}},  {2, {50, 137, 195, 205}},
                 {3, {50, 145, 203, 213}},  {4, {58, 153, 211, 221}}, {5, {58, 153, 211, 221}},
                 {255, {58, 153, 211, 221}}};
    for (const auto& c : cases) {
        debug = {c.version};
        std::string expected = "Get the debug info of modem_stats, mask = 0x5\nUNPK[size:1], version = " +
                               std::to_string(c.version) + "\n";
        uint8_t n = 0;
        const int* end = c.ends;
        for (const auto& [name, fields] : kBlocks) {
            expected += std::string("-------- stats ") + name + " info start --------\n";
            std::istringstream words(fields);
            for (std::string field; words >> field;) {
                const int size = field[field.size() - 3] - '0';
                if (c.version < field.back() - '0')
                    continue;
                debug.resize(debug.size() + static_cast<size_t>(size), 0);
                debug.back() = ++n;  // the highest byte tells the field's width and place
                expected += "UNPK[size:" + std::to_string(size) + "], " + field.substr(0, field.size() - 4) +
                            " = " + std::to_string(uint64_t{n} << (8 * (size - 1))) + "\n";
            }
            expected += std::string("-------- stats ") + name + " info end, cnt(" + std::to_string(*end++) +
                        ") --------\n";
        }
        EXPECT_EQ(run("7 1 5"), expected);
        debug.pop_back();
        EXPECT_THAT(run("7 1 5"), HasSubstr("qmi response fail, result = -103")) << int{c.version};
    }
}

TEST_F(DebugInfo, NullBlocks) {
    EXPECT_EQ(printed_by([] {
                  EXPECT_EQ(kelvra_modem_stats_main_info_unpk(nullptr, 4), 0);
                  EXPECT_EQ(kelvra_modem_stats_uim_info_unpk(nullptr, 4), 0);
                  kelvra_modem_stats_support_status_check(nullptr);
              }),
              "ptr is null\nptr is null\nkelvra_modem_stats_support_status_check, ptr is null\n");
}

}  // namespace
