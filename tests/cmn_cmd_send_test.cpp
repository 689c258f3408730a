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
        Bytes payload(508, 0xAB);
        put_le(&payload[4], result);
        put_le(&payload[12], length);
        payload.resize(arrives);
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
    const std::string fail = "result = -103, rsp.result = 0\nkelvra_extend_qmi_send_sync fail\n";
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
        {8, -9, 0, 0, "result = 0, rsp.result = -9\nrsp.result fail\n"},
        {16, 0, -9, 0, good + "\ndata len(-1)\ndata:\n"},
        {16, 0, 1, -103, fail},
        {507, 0, 492, -103, fail},
        {15, 0, 0, -103, fail},
        {7, -1, 0, -103, fail},
        {0, 0, 0, -103, fail},
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

using CmnDeathTest = CmnTest;

TEST_F(CmnDeathTest, LengthsWithoutSense) {
    for (const int length : {-8, -1, 493, INT32_MAX}) {
        answer_with(16, 0, length);
        EXPECT_EXIT(kelvra_cmn_cmd_send(39, 0, nullptr), testing::KilledBySignal(SIGABRT),
                    "vxk: fatal: response .*" + std::to_string(length < 0 ? length : length + 8LL))
            << length;
    }
}

}  // namespace
