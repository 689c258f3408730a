// The statistics client framework: its clients, its connection, and what it makes of lying modems.
#include <gmock/gmock.h>

#include <cstring>
#include <tuple>

#include "modem_api_events.h"
#include "modem_api_slots.h"
#include "platform_test.h"
#include "qcril_memory_management.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::vector<std::pair<int, int>> g_status_events;
std::vector<std::pair<int, std::vector<uint8_t>>> g_events;

void status_cb(int event, int type) {
    g_status_events.emplace_back(event, type);
}

void event_cb(int event, void* data, int len) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    g_events.emplace_back(event, std::vector<uint8_t>(bytes, bytes + len));
}

class ModemApi : public PlatformTest {
protected:
    ModemApi() {
        g_status_events.clear();
        g_events.clear();
        g_kolvo_client_id = -1;
        modem_api_init();
        platform().android_log.clear();
    }
    ~ModemApi() override {
        for (int id = 0; id < MODEM_API_MAX_CLIENTS; ++id)
            modem_api_free_client(id);
        modem_api_release();
    }

    static int init_vs() { return modem_api_init_client(MODEM_API_CLIENT_VS, event_cb, status_cb); }
    static std::vector<std::string>& log() { return platform().android_log; }
};

TEST_F(ModemApi, ErrorMap) {
    const auto mapped = [](int transport, unsigned result, unsigned error) {
        const qmi_response_type_v01 resp{result, error};
        return modem_api_map_qmi_error_to_modem_api(transport, &resp);
    };
    const std::map<unsigned, int> by_error = {{0, 0},  {26, 0}, {4, 10}, {17, 5}, {19, 5}, {48, 5},
                                              {49, 5}, {24, 4}, {42, 4}, {77, 4}, {94, 4}, {52, 8}};
    for (const int transport : {0, -2}) {
        for (unsigned error = 0; error <= 256; ++error) {
            const auto row = by_error.find(error);
            ASSERT_EQ(mapped(transport, 1, error), row == by_error.end() ? 1 : row->second) << error;
        }
        for (const auto& [result, code] : {std::pair(0U, 0), {2U, 1}, {0xFFFFFFFFU, 1}})
            EXPECT_EQ(mapped(transport, result, 48), code);
    }
    for (const auto& [transport, code] : {std::pair(-6, 1), {-5, 12}, {-4, 1}, {-3, 11}, {-1, 12}, {1, 1}})
        EXPECT_EQ(mapped(transport, 0, 0), code) << transport;
}

TEST_F(ModemApi, ConnectsAtTheThirdAttemptAndReleasesOnce) {
    int attempts = 0;
    platform().client_init_instance = [&](uint32_t timeout_ms, qmi_client_type*) {
        EXPECT_EQ(timeout_ms, 4U);
        return ++attempts < 3 ? -3 : 0;
    };
    EXPECT_EQ(init_vs(), 0);
    EXPECT_EQ(g_kolvo_client_id, 0);
    EXPECT_THAT(platform().sleeps, ElementsAre(1, 1));
    EXPECT_THAT(g_status_events, ElementsAre(Pair(0x10002, 0)));
    EXPECT_THAT(log(), testing::IsSupersetOf(
                           {"3 KOLVO modem_api_operational_status_cb: client type 0, client id 0, "
                            "operational_status 1",
                            "4 KOLVO vs_client_init_client_handles: Trying qmi_client_init_instance() "
                            "try # 2 port[65535]",
                            "3 KOLVO modem_api_operational_status_cb: client type 0, client id 0, "
                            "operational_status 3"}));

    platform().error_cb(nullptr, -2, nullptr);
    EXPECT_EQ(log().back(), "6 KOLVO vs_client_service_down_event: service down with error -2");

    modem_api_free_client(0);
    EXPECT_EQ(platform().releases, 1);
    EXPECT_THAT(log(), testing::Not(Contains("6 KOLVO modem_api_free_client: client already freed")));
    for (const int id : {0, -1, MODEM_API_MAX_CLIENTS}) {
        log().clear();
        modem_api_free_client(id);
        EXPECT_THAT(log(), Contains("6 KOLVO modem_api_free_client: client already freed")) << id;
    }
    EXPECT_EQ(platform().releases, 1);
}

TEST_F(ModemApi, GivesUpAfterTenAttempts) {
    int attempts = 0;
    platform().client_init_instance = [&](uint32_t, qmi_client_type*) { return ++attempts, -3; };
    EXPECT_EQ(init_vs(), 1);
    EXPECT_EQ(attempts, 10);
    EXPECT_EQ(platform().sleeps, std::vector<unsigned>(9, 1));
    EXPECT_EQ(g_kolvo_client_id, -1);
    EXPECT_THAT(g_status_events, IsEmpty());
    EXPECT_EQ(modem_api_client(0), nullptr);
}

TEST_F(ModemApi, RefusedClients) {
    fail_malloc(1);
    EXPECT_EQ(init_vs(), 3);
    EXPECT_THAT(log(), Contains("6 KOLVO modem_api_init_client: could not allocate memory"));

    EXPECT_EQ(init_vs(), 0);
    EXPECT_EQ(init_vs(), 15);
    EXPECT_THAT(
        log(), Contains("3 KOLVO modem_api_init_client: Already another client init vs client successfully"));
    modem_api_operational_status_cb(MODEM_API_CLIENT_VS, MODEM_API_STATUS_DOWN);
    EXPECT_EQ(g_status_events.back(), std::make_pair(0x10001, 0));
    EXPECT_EQ(init_vs(), 9);
    EXPECT_THAT(log(), Contains("3 KOLVO modem_api_init_client: Another client init vs client with "
                                "operational status 4"));
    EXPECT_EQ(g_kolvo_client_id, 0);

    // None of the others may take the connection of the vs service.
    platform().client_init_instance = [](uint32_t, qmi_client_type*) {
        ADD_FAILURE();
        return -1;
    };
    for (unsigned type = 1; type < 10; ++type)
        EXPECT_EQ(modem_api_init_client(static_cast<modem_api_qmi_client_e_type>(type), nullptr, nullptr), 0);
    EXPECT_EQ(modem_api_init_client(static_cast<modem_api_qmi_client_e_type>(10), nullptr, nullptr), 14);
    EXPECT_THAT(log(), Contains("6 KOLVO modem_api_init_client: no more client can be added"));
}

// Answers every decode with `message`.
template <typename Message>
void indicate(unsigned msg_id, const Message& message) {
    platform().decode = [&](qmi_idl_type_of_message_type, unsigned, const void*, unsigned, void* dst,
                            unsigned dst_len) {
        EXPECT_EQ(dst_len, sizeof message);
        memcpy(dst, &message, sizeof message);
        return 0;
    };
    g_events.clear();
    uint8_t tlvs[1] = {};
    platform().ind_cb(tlvs, msg_id, tlvs, sizeof tlvs, nullptr);
}

template <typename Event>
Event last_event(int code) {
    Event event{};
    EXPECT_EQ(g_events.size(), 1U);
    EXPECT_EQ(g_events.at(0).first, code);
    EXPECT_EQ(g_events.at(0).second.size(), sizeof event);
    memcpy(&event, g_events.at(0).second.data(), sizeof event);
    return event;
}

TEST_F(ModemApi, IndicationsBecomeEvents) {
    ASSERT_EQ(init_vs(), 0);
    for (const uint8_t flag : {uint8_t{0}, uint8_t{1}, uint8_t{200}}) {
        indicate(VS_STATUS_IND_V01, vs_status_ind_msg_v01{7, flag, static_cast<uint8_t>(200 - flag)});
        const auto status = last_event<modem_api_status_event>(2);
        EXPECT_EQ(std::make_tuple(status.value, status.first, status.second),
                  std::make_tuple(7U, flag != 0, flag != 200));
    }

    indicate(VS_STATE_IND_V01, vs_state_ind_msg_v01{9});
    EXPECT_EQ(last_event<modem_api_state_event>(5).state, 9);

    vs_bytes_ind_msg_v01 bytes{3, 101, {}, 4, 5};
    memset(bytes.bytes, 0xFE, sizeof bytes.bytes);
    indicate(VS_BYTES_IND_V01, bytes);
    const auto widened = last_event<modem_api_bytes_event>(4);
    EXPECT_EQ(std::make_tuple(widened.value, widened.count, widened.elements[0], widened.elements[99],
                              widened.first, widened.second),
              std::make_tuple(3U, 100U, 0xFEU, 0xFEU, 4, 5));
}

// The service may speak as soon as it is connected.
TEST_F(ModemApi, FirstIndicationIsNotLost) {
    platform().client_init_instance = [](uint32_t, qmi_client_type*) {
        indicate(VS_STATE_IND_V01, vs_state_ind_msg_v01{9});
        return 0;
    };
    ASSERT_EQ(init_vs(), 0);
    EXPECT_EQ(last_event<modem_api_state_event>(5).state, 9);
}

TEST_F(ModemApi, ReleaseEmptiesTheTable) {
    ASSERT_EQ(init_vs(), 0);
    const auto* const client = modem_api_client(0);
    EXPECT_EQ(modem_api_release(), 0);
    EXPECT_EQ(modem_api_client(0), nullptr);
    kolvo_free_adv(const_cast<modem_api_client_info_type*>(client));
}

TEST_F(ModemApi, RequestsCarryWhatIsAskedFor) {
    ASSERT_EQ(init_vs(), 0);
    modem_stats_param_list list{1, {}};
    list.params[0].id = 94;
    list.params[0].value_len = 3;
    list.params[0].value[0] = 0xAB;
    log().clear();
    EXPECT_EQ(modem_api_get_stats_parameter(1, 7, &list), MODEM_API_FAILED) << "no entries in the answer";
    EXPECT_EQ(modem_api_set_kolvo_feature_status(), 0);
    const auto& asked = platform().requests[0].bytes;
    EXPECT_EQ(std::vector<uint8_t>(asked.begin(), asked.begin() + 21),
              (std::vector<uint8_t>{1, 0, 7, 0, 1, 0, 0, 0, 0, 0, 0, 0, 94, 0, 0, 0, 3, 0, 0, 0, 0xAB}));
    EXPECT_EQ(platform().requests[1].bytes, (std::vector<uint8_t>{2, 0, 0, 0, 1, 1, 1, 0}));
    std::string text = " AB";  // 30 bytes, cut by 89 characters
    for (int i = 0; i < 28; ++i)
        text += " 00";
    EXPECT_THAT(log(),
                Contains("3 KOLVO modem_api_get_stats_parameter: ids[0] = 94, value_len = 3, type = 0, "
                         "value: " +
                         text + " 0"));
}

TEST_F(ModemApi, ReportWithLyingCountsIsClamped) {
    ASSERT_EQ(init_vs(), 0);
    vs_report_ind_msg_v01 report{};
    report.value = 6;
    report.first_count = 12;
    report.second_count = 0xFFFFFFFF;
    report.last = 77;
    for (auto& entry : report.first)
        entry = {1, 2, 3, 2, {0xAA, 0xBB, 0xCC}};
    report.first[9].value_len = 701;
    report.second[4].id = 44;
    indicate(VS_REPORT_IND_V01, report);
    const auto event = last_event<modem_api_report_event>(3);
    const auto& first = event.first[0];
    EXPECT_EQ(std::make_tuple(event.value, event.first_count, event.second_count, event.last),
              std::make_tuple(6U, 10U, 5U, 0xFFFFFFFF));
    EXPECT_EQ(std::make_tuple(first.first, first.second, first.value_len, first.value[1], first.value[2]),
              std::make_tuple(2, 3, 2U, 0xBB, 0))
        << "no more than came";
    EXPECT_EQ(std::make_tuple(event.first[9].value_len, event.second[4].id), std::make_tuple(700U, 44U));

    report.last_valid = 1;
    indicate(VS_REPORT_IND_V01, report);
    EXPECT_EQ(last_event<modem_api_report_event>(3).last, 77U);
}

TEST_F(ModemApi, IndicationsThatAreDropped) {
    ASSERT_EQ(init_vs(), 0);
    platform().unlisted_len = sizeof(vs_state_ind_msg_v01);
    indicate(0x205, vs_state_ind_msg_v01{1});
    EXPECT_THAT(log(), Contains("6 KOLVO vs_client_ind_hdlr: Unknown indication msg 205"));
    fail_malloc(1);
    vs_client_unsol_ind_cb(nullptr, VS_STATE_IND_V01, nullptr, 0, nullptr);
    modem_api_free_client(0);
    vs_client_unsol_ind_cb(nullptr, VS_STATE_IND_V01, nullptr, 0, nullptr);
    EXPECT_THAT(log(), Contains("6 KOLVO vs_client_unsol_ind_cb: Unexpected NULL pointer!"));
    EXPECT_THAT(g_events, IsEmpty());
}

// A response callback's calls as "<data bytes as text>|<status>".
std::string g_delivered;

void deliver(void* data, uint32_t len, void* user_data, int status) {
    EXPECT_EQ(user_data, &g_delivered);
    g_delivered += std::string(static_cast<const char*>(data), len) + "|" + std::to_string(status) + " ";
    kolvo_free_adv(data);
}

TEST_F(ModemApi, ResponsesAreDispatched) {
    const std::vector<uint8_t> ok = {0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 'h', 'i'};
    std::vector<uint8_t> lying = ok;
    lying[8] = 3;
    const std::vector<uint8_t> failed = {1, 0, 0, 0, 52, 0, 0, 0, 0, 0, 0, 0};
    const struct {
        const char* what;
        unsigned msg_id;
        std::vector<uint8_t> resp;
        int error;
        int failing_malloc;
        const char* delivered;
    } cases[] = {
        {"data", 0, ok, 0, 0, "hi|0 |2 "},
        {"completion alone", 5, ok, 0, 0, "|2 "},
        {"no response", 0, {}, 0, 0, "|3 "},
        {"shorter than a result", 0, {0, 0, 0, 0, 0, 0, 0}, 0, 0, "|1 "},
        {"shorter than a result, late", 0, {0}, -3, 0, "|11 "},
        {"mapped transport error", 0, ok, -3, 0, "|11 "},
        {"mapped response error", 0, failed, 0, 0, "|8 "},
        {"length runs past the response", 0, lying, 0, 0, "|3 |2 "},
        {"no length", 0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0, 0, "|3 |2 "},
        {"out of memory", 0, ok, 0, 1, "|3 |2 "},
    };
    const modem_api_command_cb services[] = {vs_client_command_cb, sar_client_command_cb,
                                             nas_0_client_command_cb, nas_1_client_command_cb};
    for (const auto& c : cases)
        for (const auto& command_cb : services) {
            auto* resp = static_cast<uint8_t*>(kolvo_malloc_adv(c.resp.size(), "test"));
            std::copy(c.resp.begin(), c.resp.end(), resp);
            auto* cb = static_cast<modem_api_cb_struct_type*>(
                kolvo_malloc_adv(sizeof(modem_api_cb_struct_type), ""));
            *cb = {deliver, &g_delivered};
            g_delivered.clear();
            fail_malloc(c.failing_malloc);
            command_cb(nullptr, c.msg_id, resp, static_cast<unsigned>(c.resp.size()), cb, c.error);
            EXPECT_EQ(g_delivered, c.delivered) << c.what;
        }
}

}  // namespace
