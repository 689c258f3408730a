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

class ConnectionDeathTest : public PlatformTest {};

// Runs in a child, where no client exists yet.
TEST_F(ConnectionDeathTest, RetriesAFailedConnectionAndKeepsAGoodOne) {
    int notifiers = 0;
    int attempts = 0;
    platform().notifier_init = [&](qmi_client_type*) { return notifiers++; };
    platform().client_init = [&](qmi_client_type*) { return attempts++ < 2 ? -1 : 0; };
    const std::string failed = "-1 QMI client init failed\n";
    const std::string listed = kConnected.substr(0, kConnected.find("QMI client"));
    const std::string sent = "kelvra_extend_qmi_send_sync resp_len:0\n" + finished(0);
    const auto connect = [&] {
        g_quiet_mode = true;
        EXPECT_EQ(send_byte(), -2) << "the failure alone is not quiet";
        g_quiet_mode = false;
        for (const int result : {-2, 0, 0})
            EXPECT_EQ(send_byte(), result);
        EXPECT_EQ(notifiers + attempts, 1 + 3);
    };
    const auto run = [&] {
        EXPECT_EQ(printed_by(connect), failed + listed + failed + finished(-2) + kConnected + sent + sent);
        _exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
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

TEST_F(ExtendTest, MoreDataThanAMessageHoldsIsNoAnswer) {
    platform().send = [](const QmiRequest&, void* rsp) { return answer_extend(rsp, 0, 513, {1}), 0; };
    EXPECT_EQ(printed_by([] { EXPECT_EQ(send_byte(), -3); }), "send msg sync failed:-1\n" + finished(-3));
}

TEST_F(ExtendTest, AnAnswerIsCutToItsRoom) {
    platform().send = [](const QmiRequest&, void* rsp) { return answer_extend(rsp, {'a', 'b', 'c'}), 0; };
    const uint8_t data[] = {0};
    char rsp[] = "----";
    uint32_t rsp_len = 2;
    printed_by([&] { EXPECT_EQ(kelvra_extend_qmi_send_sync(1, data, 1, rsp, &rsp_len), 0); });
    EXPECT_EQ(rsp_len, 2U);
    EXPECT_STREQ(rsp, "ab--");
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

TEST_F(ExtendTest, ResultMap) {
    for (const int result : {0, -1, -2, -3, -4, 5})
        printed_by([=] {
            EXPECT_EQ(kelvra_qmi_result_map(result), result < 0 && result > -4 ? result - 100 : result);
        });
}

TEST_F(ExtendTest, RefusalsAndFailures) {
    CommonResponse rsp;
    uint8_t value[513] = {};
    char address[40];
    snprintf(address, sizeof address, "%x,  put Invalid param\n",
             static_cast<unsigned>(reinterpret_cast<uintptr_t>(value)));
    const auto send = [](const uint8_t* data, int len, void* into, uint32_t room) {
        return [=] {
            uint32_t rsp_len = room;
            return kelvra_extend_qmi_send_sync(1, data, len, into, &rsp_len);
        };
    };
    const std::string entry = "function entry ------------->\n";
    const std::string exit = "function exit <-------------\n";
    const struct {
        std::function<int()> call;
        int result;
        std::string logged;
    } cases[] = {
        {send(nullptr, 1, value, 1), -1, "0,  put Invalid param\n"},
        {send(value, 1, nullptr, 1), -1, address},
        {send(value, 513, value, 1), -1, "put data_len 513 > max 512\n"},
        {send(value, -1, value, 1), -1, "put data_len -1 > max 512\n"},
        {send(value, 5, value, 513), -1, "put data_len 5 > max 512\n"},
        {[] { return kelvra_common_qmi_req(1, nullptr); }, -1, entry + "rsp is NULL\n" + exit},
        {[] { return kelvra_send_common_qmi_msg(1, 0, nullptr, nullptr); }, -1,
         entry + "t 1\nrsp is NULL\n" + exit},
        {[&] { return kelvra_send_common_qmi_msg(1, 2, nullptr, &rsp); }, -1,
         entry + "t 1\nl 2\nv is null\n" + exit},
        {[&] { return kelvra_send_common_qmi_msg(1, 497, value, &rsp); }, -1, entry + "t 1\nl 497\n" + exit},
        {[&] { return kelvra_send_common_qmi_msg(1, 496, value, &rsp); }, -3,
         entry + "t 1\nl 496\nsend msg sync failed:-2\n" + finished(-3) + exit},
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
