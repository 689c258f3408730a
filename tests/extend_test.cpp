// The extension channel: its connection, one exchange whatever the modem answers, and common requests.
#include "kelvra_extend_cmn.h"

#include <cstdio>

#include "extend_double.h"
#include "kelvra_log.h"
#include "platform_test.h"

namespace {

const std::string kConnected =
    "KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
    "KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1\n"
    "QMI client inited\n";

std::string finished(int result) {
    return "kelvra_extend_qmi_handle_req_cb result:" + std::to_string(result) + "\n";
}

int send_byte() {
    const uint8_t data[] = {0};
    uint8_t rsp[1];
    uint32_t rsp_len = 0;
    return kelvra_extend_qmi_send_sync(0, data, 1, rsp, &rsp_len);
}

// Each runs in a child, where no client exists yet.
class ConnectionDeathTest : public PlatformTest {
protected:
    // Ends the child with 0 if `action` prints `expected` and nothing failed.
    [[noreturn]] static void run(const std::string& expected, const std::function<void()>& action) {
        const std::string printed = printed_by(action);
        EXPECT_EQ(printed, expected);
        if (printed != expected)
            fprintf(stderr, "%s", printed.c_str());
        fflush(stdout);
        _exit(HasFailure() ? 1 : 0);
    }
};

TEST_F(ConnectionDeathTest, RetriesAFailedConnectionAndKeepsAGoodOne) {
    int notifiers = 0;
    int attempts = 0;
    platform().notifier_init = [&](qmi_client_type*) { return notifiers++; };
    platform().client_init = [&](qmi_client_type*) { return attempts++ == 0 ? -1 : 0; };
    const std::string listed = kConnected.substr(0, kConnected.find("QMI client"));
    const std::string sent = "kelvra_extend_qmi_send_sync resp_len:0\n" + finished(0);
    EXPECT_EXIT(run(listed + "-1 QMI client init failed\n" + finished(-2) + kConnected + sent + sent,
                    [&] {
                        EXPECT_EQ(send_byte(), -2);
                        EXPECT_EQ(send_byte(), 0);
                        EXPECT_EQ(send_byte(), 0);
                        EXPECT_EQ(notifiers, 1);
                        EXPECT_EQ(attempts, 2);
                    }),
                testing::ExitedWithCode(0), "");
}

TEST_F(ConnectionDeathTest, OnlyTheFailureIsNotQuiet) {
    platform().client_init = [](qmi_client_type*) { return -5; };
    EXPECT_EXIT(run("-5 QMI client init failed\n",
                    [] {
                        g_quiet_mode = true;
                        EXPECT_EQ(send_byte(), -2);
                    }),
                testing::ExitedWithCode(0), "");
}

// Starts with a client.
class ExtendTest : public PlatformTest {
protected:
    ExtendTest() {
        printed_by([] { send_byte(); });
        platform().requests.clear();
    }
    ~ExtendTest() override { g_quiet_mode = false; }
};

TEST_F(ExtendTest, RefusesBadArguments) {
    uint8_t data[513] = {};
    uint8_t rsp[513];
    char address[40];
    snprintf(address, sizeof address, "%x,  put Invalid param\n",
             static_cast<unsigned>(reinterpret_cast<uintptr_t>(data)));
    const struct {
        const uint8_t* data;
        int data_len;
        void* rsp;
        uint32_t rsp_len;
        std::string printed;
    } cases[] = {
        {nullptr, 1, rsp, 1, "0,  put Invalid param\n"},
        {data, 1, nullptr, 1, address},
        {data, 513, rsp, 1, "put data_len 513 > max 512\n"},
        {data, -1, rsp, 1, "put data_len -1 > max 512\n"},
        {data, 5, rsp, 513, "put data_len 5 > max 512\n"},
    };
    for (const auto& c : cases) {
        uint32_t rsp_len = c.rsp_len;
        int result = 0;
        EXPECT_EQ(
            printed_by([&] { result = kelvra_extend_qmi_send_sync(1, c.data, c.data_len, c.rsp, &rsp_len); }),
            c.printed);
        EXPECT_EQ(result, -1) << c.printed;
    }
    EXPECT_TRUE(platform().requests.empty());
}

TEST_F(ExtendTest, Answers) {
    const std::vector<uint8_t> abcd{'a', 'b', 'c', 'd'};
    const struct {
        int error;
        uint32_t id;
        uint32_t data_len;
        std::vector<uint8_t> data;
        uint32_t capacity;
        int result;
        uint32_t rsp_len;
        std::string copied;
        std::string printed;
    } cases[] = {
        {0, 0, 4, abcd, 6, 0, 4, "abcd", "kelvra_extend_qmi_send_sync resp_len:4\n"},
        {0, 0, 4, abcd, 3, 0, 3, "abc", "kelvra_extend_qmi_send_sync resp_len:3\n"},
        {0, 0, 4, {}, 6, 0, 0, "", "kelvra_extend_qmi_send_sync resp_len:0\n"},
        {0, 0xFFFFFFFF, 0, {}, 6, -3, 6, "", "-1 QMI service framework error. Check client\n"},
        {0, 0, 0xFFFFFFFF, abcd, 6, -3, 6, "", "send msg sync failed:-1\n"},
    };
    for (const auto& c : cases) {
        platform().send = [&](const QmiRequest&, void* response) {
            answer_extend(response, c.id, c.data_len, c.data);
            return c.error;
        };
        const uint8_t data[] = {0};
        char rsp[8] = "";
        uint32_t rsp_len = c.capacity;
        const auto send = [&] {
            EXPECT_EQ(kelvra_extend_qmi_send_sync(1, data, 1, rsp, &rsp_len), c.result);
        };
        EXPECT_EQ(printed_by(send), c.printed + finished(c.result));
        EXPECT_EQ(rsp_len, c.rsp_len) << c.printed;
        EXPECT_EQ(rsp, c.copied) << c.printed;
        g_quiet_mode = true;
        EXPECT_EQ(printed_by(send), "");
        g_quiet_mode = false;
    }
}

TEST_F(ExtendTest, Indications) {
    const struct {
        int decoded;
        uint32_t id;
        const char* line;
    } cases[] = {
        {0, 6, "No function defined to handle indication: 6\n"},
        {0, 7, "Indicaion: 7 greater than maximum known indication.\n"},
        {-1, 0, "No function defined to handle indication: 0\n"},
    };
    uint8_t tlvs[11] = {};
    for (const auto& c : cases) {
        platform().decode = [&](qmi_idl_type_of_message_type type, unsigned message, const void* src,
                                unsigned len, void* dst, unsigned dst_len) {
            EXPECT_EQ(type, QMI_IDL_INDICATION);
            EXPECT_EQ(message, 3U);
            EXPECT_EQ(src, tlvs);
            EXPECT_EQ(len, 11U);
            EXPECT_EQ(dst_len, 524U);
            put_le(static_cast<uint8_t*>(dst), c.id);
            return c.decoded;
        };
        const auto indicate = [&] { kelvra_extend_qmi_ind_cb(nullptr, 3, tlvs, sizeof tlvs, nullptr); };
        EXPECT_EQ(printed_by(indicate),
                  std::string("KELVRA__EXTEND_QMI: Indication msg_id=0x3 buf_len=11 \n") + c.line);
        g_quiet_mode = true;
        EXPECT_EQ(printed_by(indicate), "");
        g_quiet_mode = false;
    }
}

class CommonTest : public ExtendTest {};

TEST_F(CommonTest, ResultMap) {
    for (const int result : {0, -1, -2, -3, -4, 5})
        printed_by([=] {
            EXPECT_EQ(kelvra_qmi_result_map(result), result < 0 && result > -4 ? result - 100 : result);
        });
}

TEST_F(CommonTest, BothFormsAreFullBlocks) {
    const std::vector<uint8_t> value(496, 7);
    CommonResponse rsp;
    printed_by([&] {
        EXPECT_EQ(kelvra_common_qmi_req(0x11223344, &rsp), 0);
        EXPECT_EQ(kelvra_send_common_qmi_msg(84, 496, value.data(), &rsp), 0);
        EXPECT_EQ(kelvra_send_common_qmi_msg(35, 0, nullptr, &rsp), 0);
    });
    ASSERT_EQ(platform().requests.size(), 3U);
    for (const QmiRequest& request : platform().requests)
        EXPECT_EQ(request_id_of(request), 4U);
    EXPECT_EQ(payload_of(platform().requests[0]), block(512, {{0, {0x44, 0x33, 0x22, 0x11}}}));
    EXPECT_EQ(payload_of(platform().requests[1]),
              block(512, {{0, {2}}, {8, {84}}, {12, {0xF0, 1}}, {16, value}}));
    EXPECT_EQ(payload_of(platform().requests[2]), block(512, {{0, {2}}, {8, {35}}}));
}

TEST_F(CommonTest, RefusalsAndFailures) {
    CommonResponse rsp;
    uint8_t value[512] = {};
    const std::string entry = "function entry ------------->\n";
    const std::string exit = "function exit <-------------\n";
    const struct {
        std::function<int()> call;
        int result;
        std::string logged;
    } cases[] = {
        {[] { return kelvra_common_qmi_req(1, nullptr); }, -1, entry + "rsp is NULL\n" + exit},
        {[] { return kelvra_send_common_qmi_msg(1, 0, nullptr, nullptr); }, -1,
         entry + "t 1\nrsp is NULL\n" + exit},
        {[&] { return kelvra_send_common_qmi_msg(1, 2, nullptr, &rsp); }, -1,
         entry + "t 1\nl 2\nv is null\n" + exit},
        {[&] { return kelvra_send_common_qmi_msg(1, 497, value, &rsp); }, -1, entry + "t 1\nl 497\n" + exit},
        {[&] { return kelvra_send_common_qmi_msg(1, 4, value, &rsp); }, -3,
         entry + "t 1\nl 4\nsend msg sync failed:-2\n" + finished(-3) + exit},
    };
    platform().send = [](const QmiRequest&, void*) { return -2; };
    for (const auto& c : cases) {
        int result = 0;
        const std::string printed = printed_by([&] { result = c.call(); });
        EXPECT_EQ(result, c.result) << c.logged;
        EXPECT_EQ(without_sites(printed), c.logged);
    }
    EXPECT_EQ(platform().requests.size(), 1U);
}

}  // namespace
