// What the handset's statistics service makes of requests that the tool does not send.
#include "handset_fixture.h"

namespace handset_test {
namespace {

TEST(HandsetStatistics, AnswersListsAndRefusesWhatLies) {
    const TestFolder place;
    const RunningHandset handset(place, R"({"statistics": {"values": [
        {"id": 113, "ant_rx_0_new": 255, "ant_tx_1_new": "0xFE", "length": 17}, {"id": 94, "entries": 0},
        {"id": 500, "raw": "AA BB", "entries": 2}, {"id": 501, "raw": "01", "length": 2000, "entries": 20}]}})");
    const Names names = {
        {"values", "519 01 02 00 00 00 $number"},
        {"number", "02 02 00 09 00"},
        {"five", "$x94 $x94 $x94 $x94 $x94"},
        {"x113", "00 00 00 00 71 00 00 00 00 00"},
        {"x500", "00 00 00 00 F4 01 00 00 00 00"},
        {"x94", "00 00 00 00 5E 00 00 00 00 00"},
        {"of500", "00 00 00 00 F4 01 00 00 02 00 AA BB"},
    };
    QmiClient client(handset, 65509);
    client.play(R"(
        $values 03 0B 00 01 $x113 > ok 10 1C 00 01 00 00 00 00 71 00 00 00 11 00 01 00 00 00 00 FF 01 05 02 06 03 07 08 0A 09 FE 00
        $values 03 15 00 02 $x500 $x94 > ok 10 19 00 02 $of500 $of500
        $values 03 0B 00 01 00 00 00 00 F6 01 00 00 00 00 > ok 10 01 00 00
        $values 03 01 00 00 > ok 10 01 00 00; 519 01 02 00 02 00 $number 03 0B 00 01 $x94 > no 48
        $values 03 6F 00 0B $five $five $x94 > no 48; $values 03 0B 00 01 00 00 00 00 52 00 00 00 01 00 > no 1
        3 > no 1; 3 01 04 00 02 00 00 00 > ok; 4 > no 71)",
                names);

    // 100 entries of 2,010 bytes are more than a packet: the list ends where the packet does.
    wire::Bytes request = hex("01 02 00 00 00 02 02 00 09 00 03 33 00 05");
    for (int i = 0; i < 5; ++i)
        request = wire::Writer().bytes(request).bytes(hex("00 00 00 00 F5 01 00 00 00 00")).take();
    const wire::Bytes most = client.exchange(519, request);
    ASSERT_EQ(most.size(), 7U + 3 + 1 + 32 * 2010);
    EXPECT_EQ(most[10], 32);
}

}  // namespace
}  // namespace handset_test
