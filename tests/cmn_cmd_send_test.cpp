// Cmn commands and the raw sends of group 6.
#include "kelvra_cmn_cmd_send.h"

#include "extend_double.h"
#include "groups.h"
#include "kelvra_log.h"
#include "platform_test.h"

namespace {

using Bytes = std::vector<uint8_t>;

class CmnTest : public PlatformTest {
protected:
    CmnTest() {
        printed_by([] { kelvra_cmn_cmd_send(0, 0, nullptr); });
        platform().requests.clear();
    }
    ~CmnTest() override { g_quiet_mode = false; }

    static void answer_with(const Bytes& payload) {
        platform().send = [payload](const QmiRequest&, void* rsp) {
            answer_extend(rsp, payload);
            return 0;
        };
    }
    // An answer of `arrives` bytes with this result and length word.
    static void answer_with(size_t arrives, int result, int length) {
        Bytes payload(arrives, 0xAB);
        put_le(&payload[4], result);
        put_le(&payload[12], length);
        answer_with(payload);
    }
    // What is printed but the channel's own lines.
    static std::string printed(const std::function<void()>& action) {
        return without_lines(without_lines(printed_by(action), "kelvra_extend_qmi_send_sync resp"),
                             "kelvra_extend_qmi_handle");
    }
};

std::string times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST_F(CmnTest, Values) {
    answer_with(508, 0, 0);
    const std::string value(492, 'v');
    const struct {
        const char* v;
        uint32_t l;
        uint32_t sent;
    } cases[] = {
        {value.data(), 491, 491}, {value.data(), 492, 0}, {value.data(), 0xFFFFFFFF, 0}, {nullptr, 4, 0}};
    for (const auto& c : cases) {
        platform().requests.clear();
        printed([&] { EXPECT_EQ(kelvra_cmn_cmd_send(57, c.l, c.v), 0); });
        ASSERT_EQ(platform().requests.size(), 1U);
        EXPECT_EQ(request_id_of(platform().requests[0]), 4U);
        Bytes length(4);
        put_le(length.data(), c.sent);
        EXPECT_EQ(payload_of(platform().requests[0]),
                  block(512, {{0, {2}}, {8, {57}}, {12, length}, {16, Bytes(c.sent, 'v')}}));
    }
}

TEST_F(CmnTest, Answers) {
    const std::string good = "result = 0, rsp.result = 0\n";
    const std::string fail = good + "kelvra_extend_qmi_send_sync fail\n";
    const struct {
        size_t arrives;
        int rsp_result;
        int length;
        int result;
        std::string printed;
    } cases[] = {
        {17, 0, 1, 0, good + "\ndata len(9)\ndata: AB AB AB AB 01 00 00 00 AB\n"},
        {508, 0, 492, 0, good + "\ndata len(500)\ndata: AB AB AB AB EC 01 00 00" + times(492, " AB") + "\n"},
        {508, -9, 1, 0, "result = 0, rsp.result = -9\nrsp.result fail\n"},
        {16, 0, -9, 0, good + "\ndata len(-1)\ndata:\n"},
        {16, 0, INT32_MIN, 0, good + "\ndata len(-2147483640)\ndata:\n"},
        {16, 0, 1, -3, fail},
        {507, 0, 492, -3, fail},
    };
    for (const auto& c : cases) {
        answer_with(c.arrives, c.rsp_result, c.length);
        const auto send = [&] { EXPECT_EQ(kelvra_cmn_cmd_send(55, 1, "v"), c.result); };
        EXPECT_EQ(printed(send), "kelvra_cmn_cmd_send, t: 55, l: 1\n" + c.printed);
        g_quiet_mode = true;
        EXPECT_EQ(printed_by(send), "");
        g_quiet_mode = false;
    }
}

TEST_F(CmnTest, NoHeaderNoConnection) {
    answer_with(Bytes(15));
    EXPECT_EQ(
        printed([] { EXPECT_EQ(kelvra_cmn_cmd_send(1, 0, nullptr), -3); }),
        "kelvra_cmn_cmd_send, t: 1, l: 0\nresult = 0, rsp.result = 0\nkelvra_extend_qmi_send_sync fail\n");
    answer_with(Bytes(5, 1));
    EXPECT_EQ(
        printed([] { EXPECT_EQ(kelvra_cmn_cmd_send(1, 0, nullptr), -3); }),
        "kelvra_cmn_cmd_send, t: 1, l: 0\nresult = 0, rsp.result = 1\nkelvra_extend_qmi_send_sync fail\n");
    platform().send = [](const QmiRequest&, void*) { return -2; };
    EXPECT_EQ(printed([] { EXPECT_EQ(kelvra_cmn_cmd_send(1, 0, nullptr), -3); }),
              "kelvra_cmn_cmd_send, t: 1, l: 0\nsend msg sync failed:-2\nresult = -3, rsp.result = 0\n"
              "kelvra_extend_qmi_send_sync fail\n");
}

using CmnDeathTest = CmnTest;

TEST_F(CmnDeathTest, LengthsWithoutSense) {
    for (const int length : {-8, -1, 493, INT32_MAX}) {
        answer_with(16, 0, length);
        EXPECT_EXIT(kelvra_cmn_cmd_send(39, 0, nullptr), testing::KilledBySignal(SIGABRT),
                    "vxk: fatal: response .*" + std::to_string(length < 0 ? length : length + 8LL))
            << length;
    }
}

TEST_F(CmnTest, RawSendStopsAt500Bytes) {
    std::vector<std::string> words{"vxk", "6", "5"};
    for (int i = 0; i < 501; ++i)
        words.push_back(i < 500 ? "0x1FF" : "0x80000001");
    std::vector<char*> argv;
    argv.reserve(words.size());
    for (std::string& word : words)
        argv.push_back(word.data());
    answer_with(Bytes(8, 1));
    EXPECT_EQ(printed([&] { kelvra_test_qmi_send_data_do(static_cast<int>(argv.size()), argv.data()); }),
              "kv_qmi req data(qmi_id: 5, len: 501[max: 500]):\n" + times(500, "0xFF ") +
                  "kelvra_extend_qmi_send_sync resp_len:0\n"
                  "qmi_id = 5, result = 0\nkv_qmi rsp data(qmi_id: 5, len: 0[max: 500]):\n\n");
    ASSERT_EQ(platform().requests.size(), 1U);
    EXPECT_EQ(payload_of(platform().requests[0]), Bytes(500, 0xFF));
}

}  // namespace
