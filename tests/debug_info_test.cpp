// The statistics feature's own counters: the block layouts of every version.
#include <gmock/gmock.h>

#include <sstream>

#include "extend_double.h"
#include "group7_debug_info.h"
#include "groups.h"
#include "little_endian.h"
#include "platform_test.h"

namespace {

using testing::HasSubstr;

using Bytes = std::vector<uint8_t>;

// The printed lines without those of the logs and the channel, as one text.
class DebugInfo : public PlatformTest {
protected:
    DebugInfo() {
        platform().send = [this](const QmiRequest&, void* response) {
            Bytes data(16, 0);
            put_le(data.data() + 12, static_cast<uint32_t>(debug.size()));
            data.insert(data.end(), debug.begin(), debug.end());
            answer_extend(response, data);
            return 0;
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

    Bytes debug;  // the value behind the header
};

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
        EXPECT_THAT(run("7 1 5"), HasSubstr("REQUEST_ID_COMMON, result = -103, rsp.result = 0"))
            << int{c.version};
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
