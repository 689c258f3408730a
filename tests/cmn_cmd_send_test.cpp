// Values of cmn commands that no command line has.
#include "kelvra_cmn_cmd_send.h"

#include "extend_double.h"
#include "platform_test.h"

namespace {

using Bytes = std::vector<uint8_t>;

class CmnTest : public PlatformTest {};

TEST_F(CmnTest, Values) {
    platform().send = [](const QmiRequest&, void* rsp) { return answer_extend(rsp, Bytes(508)), 0; };
    const std::string value(492, 'v');
    const struct {
        const char* v;
        uint32_t l;
        uint32_t sent;
    } cases[] = {
        {value.data(), 491, 491}, {value.data(), 492, 0}, {value.data(), 0xFFFFFFFF, 0}, {nullptr, 4, 0}};
    for (const auto& c : cases) {
        platform().requests.clear();
        printed_by([&] { EXPECT_EQ(kelvra_cmn_cmd_send(57, c.l, c.v), 0); });
        ASSERT_EQ(platform().requests.size(), 1U);
        EXPECT_EQ(request_id_of(platform().requests[0]), 4U);
        Bytes length(4);
        put_le(length.data(), c.sent);
        EXPECT_EQ(payload_of(platform().requests[0]),
                  block(512, {{0, {2}}, {8, {57}}, {12, length}, {16, Bytes(c.sent, 'v')}}));
    }
}

}  // namespace
