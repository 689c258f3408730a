// The handset's statistics answers as bytes.
#include "handset_fixture.h"

#include "hex_text.h"

namespace handset_test {
namespace {

constexpr uint16_t kFeature = 3;
constexpr uint16_t kValues = 0x207;

std::string text_of(const std::optional<wire::Bytes>& bytes) {
    std::string text;
    if (bytes)
        handset::append_hex(text, *bytes);
    return bytes ? text : "none";
}

struct Wanted {
    uint16_t sub;
    std::vector<uint32_t> ids;
};

wire::Bytes request(const Wanted& wanted) {
    wire::Writer list;
    list.u8(static_cast<uint8_t>(wanted.ids.size()));
    for (const uint32_t id : wanted.ids)
        list.u16(0).u16(0).u32(id).u16(0);
    wire::Writer body;
    body.tlv(0x01, wire::Writer().u16(wanted.sub).data()).tlv(0x02, wire::Writer().u16(9).data());
    return body.tlv(0x03, list.data()).take();
}

TEST(HandsetStatistics, AnswersWithPackedRecordsAndWhatTheProfileMakesOfThem) {
    const TestFolder place;
    const RunningHandset handset(place, R"({"statistics": {"values": [
        {"id": 110, "version": 7, "rx_agc_0": 1.5, "rx_agc_1": "-inf"},
        {"id": 111, "sub": 1, "rx_prx": "nan", "rx_drx": "inf", "length": 6},
        {"id": 113, "ant_rx_0_new": 255, "ant_tx_1_new": "0xFE", "length": 17},
        {"id": 100, "ant_switch_path": 65535, "answer_sub": 3, "answer_id": 4294967295, "answer_length": 700},
        {"id": 500, "raw": "AA BB", "entries": 2},
        {"id": 94, "entries": 0},
        {"id": 501, "raw": "01", "length": 2000, "entries": 20}]}})");
    Client client(handset.dir(), "qmi/65509");
    const std::string ok = "02 04 00 00 00 00 00 10 ";
    const std::string invalid = "02 04 00 01 00 30 00";
    const struct {
        Wanted wanted;
        std::string answer;
    } rows[] = {
        {{0, {110}}, ok + "14 00 01 00 00 00 00 6E 00 00 00 09 00 07 00 00 C0 3F 00 00 80 FF"},
        {{1, {111}}, ok + "11 00 01 01 00 00 00 6F 00 00 00 06 00 01 00 00 C0 7F 00"},
        {{0, {113}},
         ok + "1C 00 01 00 00 00 00 71 00 00 00 11 00 01 00 00 00 00 FF 01 05 02 06 03 07 08 0A 09 FE 00"},
        {{1, {100}}, ok + "13 00 01 03 00 00 00 FF FF FF FF BC 02 01 05 FF FF 04 02 03 04"},
        {{0, {500, 94}},
         ok + "19 00 02 00 00 00 00 F4 01 00 00 02 00 AA BB 00 00 00 00 F4 01 00 00 02 00 AA BB"},
        {{0, {502}}, ok + "01 00 00"},
        {{0, {}}, ok + "01 00 00"},
        {{2, {82}}, invalid},
        {{0, std::vector<uint32_t>(11, 82)}, invalid},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text_of(client.exchange(kValues, request(row.wanted))), row.answer);

    // 100 entries of 2,010 bytes are more than a packet: the list ends where the packet does.
    const auto most = client.exchange(kValues, request({0, {501, 501, 501, 501, 501}}));
    ASSERT_TRUE(most);
    EXPECT_EQ(most->size(), 7U + 3 + 1 + 32 * 2010);
    EXPECT_EQ(wire::find_tlv(*most, 0x10)->data[0], 32);

    wire::Bytes long_list = request({0, {82}});
    long_list.back() = 1;
    EXPECT_EQ(text_of(client.exchange(kValues, long_list)), "02 04 00 01 00 01 00");
    EXPECT_EQ(text_of(client.exchange(kFeature, {})), "02 04 00 01 00 01 00");
    EXPECT_EQ(text_of(client.exchange(kFeature, {0x01, 4, 0, 2, 0, 0, 0})), "02 04 00 00 00 00 00");
    EXPECT_EQ(text_of(client.exchange(4, {})), "02 04 00 01 00 47 00");
}

}  // namespace
}  // namespace handset_test
