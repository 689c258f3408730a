// The tables' rules: what goes out for a C structure, and what of hostile TLVs is taken.
#include <gmock/gmock.h>

#include <cstring>

#include "modem_statistics_v01.h"
#include "qmi_codec.h"
#include "service_tables.h"
#include "user_identity_module_v01.h"

namespace {

using seam::decode_message;
using seam::encode_message;
using seam::find_message;
using seam::number;
using seam::optional;
using testing::ElementsAreArray;
using wire::Bytes;
using wire::Writer;

// A message with one element of each kind that the services leave out: bytes without a length of their own,
// as in the extension service, a fixed array of numbers, and one whose items are wider in C.
struct Sample {
    uint32_t data_len;
    uint8_t data_valid;
    uint8_t data[4];
    uint16_t fixed[2];
    uint8_t wide_valid;
    uint32_t wide_len;
    uint32_t wide[3];
    uint64_t big;
};

constexpr qmi_idl_element unprefixed_data() {
    auto element = seam::byte_array(0x10, 0, VXK_FIELD(Sample, data_len), VXK_FIELD(Sample, data));
    return optional(element, VXK_FIELD(Sample, data_valid));
}

constexpr qmi_idl_element fixed_numbers() {
    auto element = seam::byte_array(0x03, 0, {QMI_IDL_NO_OFFSET, 0}, VXK_FIELD(Sample, fixed));
    element.wire_width = element.c_width = 2;
    element.stride = 2;
    element.bound = 2;
    return element;
}

constexpr qmi_idl_element wide_numbers() {
    auto element = seam::byte_array(0x11, 2, VXK_FIELD(Sample, wide_len), VXK_FIELD(Sample, wide));
    element.wire_width = 2;
    element.c_width = 4;
    element.stride = 4;
    element.bound = 3;
    return optional(element, VXK_FIELD(Sample, wide_valid));
}

constexpr qmi_idl_element kSampleElements[] = {
    number(0x02, 4, VXK_FIELD(Sample, data_len)),
    fixed_numbers(),
    number(0x04, 8, VXK_FIELD(Sample, big)),
    unprefixed_data(),
    wide_numbers(),
};
constexpr qmi_idl_message kSample = seam::message(QMI_IDL_REQUEST, 1, sizeof(Sample), kSampleElements);

Writer sample_head(uint32_t data_len) {
    Writer body;
    body.tlv(0x02, Writer().u32(data_len).data()).tlv(0x03, Bytes{1, 2, 3, 4});
    body.tlv(0x04, Bytes{1, 2, 3, 4, 5, 6, 7, 0x88});
    return body;
}

TEST(Codec, GoesThereAndBack) {
    Sample sample{2, 1, {7, 8}, {0x0201, 0x0403}, 1, 3, {5, 6, 0xffff}, 0x8807060504030201};
    const Bytes body =
        sample_head(2).tlv(0x10, Bytes{7, 8}).tlv(0x11, Bytes{3, 0, 5, 0, 6, 0, 0xff, 0xff}).take();
    const auto encoded = encode_message(kSample, &sample);
    ASSERT_TRUE(encoded);
    EXPECT_THAT(*encoded, ElementsAreArray(body));
    Sample back{};
    ASSERT_TRUE(decode_message(kSample, body, &back));
    EXPECT_EQ(memcmp(&back.data_len, &sample.data_len, offsetof(Sample, data) + 2), 0);
    EXPECT_EQ(back.fixed[1], sample.fixed[1]);
    EXPECT_EQ(back.wide_valid, 1);
    EXPECT_EQ(back.wide[2], 0xffffU);
    EXPECT_EQ(back.big, sample.big);
}

TEST(Codec, RefusesToEncodeWhatDoesNotFit) {
    const auto is_encoded = [](auto&& change) {
        Sample sample{};
        change(sample);
        return encode_message(kSample, &sample).has_value();
    };
    EXPECT_TRUE(is_encoded([](Sample& sample) { sample.data_len = 5; }))
        << "absent, so its length means nothing";
    EXPECT_FALSE(is_encoded([](Sample& sample) { sample.data_valid = 1, sample.data_len = 5; }));
    EXPECT_FALSE(is_encoded([](Sample& sample) { sample.wide_valid = 1, sample.wide_len = UINT32_MAX; }));
    EXPECT_FALSE(is_encoded([](Sample& sample) {
        sample.wide_valid = 1, sample.wide_len = 1, sample.wide[0] = 0x10000;
    })) << "a number wider than its place on the wire";
}

TEST(Codec, DecodesByTheRules) {
    const Bytes whole = sample_head(2).take();
    const auto with = [&](std::initializer_list<Bytes> tails) {
        Bytes body = whole;
        for (const Bytes& tail : tails)
            body.insert(body.end(), tail.begin(), tail.end());
        return body;
    };
    const struct {
        const char* name;
        Bytes body;
        bool decodes;
    } cases[] = {
        {"empty", {}, false},
        {"mandatory alone", whole, true},
        {"a mandatory element missing", Bytes(whole.begin(), whole.begin() + 7), false},
        {"a number of another width", with({{0x02, 3, 0, 2, 0, 0}}), false},
        {"a longer number", with({{0x02, 5, 0, 2, 0, 0, 0, 0}}), false},
        {"a fixed array cut short", with({{0x03, 3, 0, 1, 2, 3}}), false},
        {"a fixed array too long", with({{0x03, 5, 0, 1, 2, 3, 4, 5}}), false},
        {"half a TLV header", with({{0x77, 0}}), false},
        {"a TLV past the packet", with({{0x77, 2, 0, 1}}), false},
        {"an unknown TLV", with({{0x77, 2, 0, 1, 2}, {0x78, 0, 0}}), true},
        {"data of its length", with({{0x10, 2, 0, 7, 8}}), true},
        {"data shorter than its length", with({{0x10, 1, 0, 7}}), false},
        {"data longer than its length", with({{0x10, 3, 0, 7, 8, 9}}), false},
        {"data past the bound", with({{0x02, 4, 0, 5, 0, 0, 0}, {0x10, 5, 0, 1, 2, 3, 4, 5}}), false},
        {"a length past the bound without data", with({{0x02, 4, 0, 5, 0, 0, 0}}), true},
        {"no room for a count", with({{0x11, 1, 0, 1}}), false},
        {"items that fill the TLV", with({{0x11, 4, 0, 1, 0, 5, 6}}), true},
        {"a count past the TLV", with({{0x11, 4, 0, 2, 0, 5, 6}}), false},
        {"half an item", with({{0x11, 5, 0, 2, 0, 5, 6, 7}}), false},
        {"a count past the bound", with({{0x11, 10, 0, 4, 0, 1, 1, 2, 2, 3, 3, 4, 4}}), false},
        {"bytes behind a counted array", with({{0x11, 5, 0, 1, 0, 5, 6, 7}}), true},
        {"an element twice: the last counts", with({{0x10, 3, 0, 7, 8, 9}, {0x10, 2, 0, 7, 8}}), true},
    };
    for (const auto& each : cases) {
        Sample sample{};
        EXPECT_EQ(decode_message(kSample, each.body, &sample), each.decodes) << each.name;
        if (each.decodes) {
            EXPECT_EQ(sample.data_valid,
                      each.body.size() > whole.size() && wire::find_tlv(each.body, 0x10) ? 1 : 0);
        }
    }
}

// One entry as the statistics service sends it: sub, type, id, and a value of which `sent` bytes follow.
Bytes entry(uint8_t id, uint16_t length, size_t sent) {
    Writer writer;
    writer.u16(1).u16(2).u32(id).u16(length).bytes(Bytes(sent, id));
    return writer.take();
}

Bytes statistics_body(uint8_t count, size_t sent_entries, uint16_t length, size_t sent_bytes) {
    Writer list;
    list.u8(count);
    for (size_t i = 0; i < sent_entries; ++i)
        list.bytes(entry(static_cast<uint8_t>(i + 1), length, sent_bytes));
    return Writer().tlv(0x02, Bytes(4)).tlv(0x10, list.data()).take();
}

TEST(Codec, KeepsLenientCountsAsSentAndStoresUpToTheBound) {
    const auto& message =
        *find_message(vs_get_service_object_internal_v01(1, 0, 6), QMI_IDL_RESPONSE, VS_STATISTICS_V01);
    const struct {
        uint8_t count;
        size_t entries;
        uint16_t length;
        size_t bytes;
        bool decodes;
    } cases[] = {
        {0, 0, 0, 0, true},     {10, 10, 700, 700, true}, {12, 12, 3, 3, true},
        {255, 255, 0, 0, true}, {2, 2, 900, 900, true},   {10, 10, 900, 900, true},
        {12, 11, 3, 3, false},  {1, 1, 900, 899, false},  {1, 1, 65535, 10, false},
    };
    for (const auto& each : cases) {
        // Behind the structure lies what must not be touched.
        struct {
            vs_statistics_resp_msg_v01 response;
            uint8_t fence[64];
        } room{};
        const Bytes body = statistics_body(each.count, each.entries, each.length, each.bytes);
        ASSERT_EQ(decode_message(message, body, &room.response), each.decodes)
            << +each.count << ' ' << each.length;
        EXPECT_THAT(room.fence, testing::Each(0));
        if (!each.decodes)
            continue;
        EXPECT_EQ(room.response.entry_count, each.count);
        for (uint32_t i = 0; i < VS_ENTRIES_MAX_V01; ++i) {
            const auto& stored = room.response.entries[i];
            const bool was_sent = i < each.entries;
            EXPECT_EQ(stored.id, was_sent ? i + 1 : 0);
            EXPECT_EQ(stored.value_len, was_sent ? each.length : 0);
            EXPECT_EQ(stored.value[0], was_sent && each.length != 0 ? i + 1 : 0);
        }
    }
}

// The card status by hand from the layout: two cards, the second without applications.
const Bytes kCardStatus = {0, 0, 0xff, 0xff, 1,  0,  0xff, 0xff, 2,  // indexes, cards
                           1, 2, 3,    4,    5,  1,                  // first card, one application
                           6, 7, 8,    9,    10, 11, 2,    0xa0, 0xa1, 12, 13, 14, 15, 16, 17, 18,  //
                           2, 0, 0,    0,    9,  0};  // second card

TEST(Codec, ReadsTheCardStatus) {
    const auto service = uim_get_service_object_internal_v01(1, 100, 6);
    const auto& message = *find_message(service, QMI_IDL_RESPONSE, QMI_UIM_GET_CARD_STATUS_V01);
    const auto decodes = [&](const Bytes& status, uim_get_card_status_resp_msg_v01* response) {
        memset(response, 0, sizeof *response);
        return decode_message(message, Writer().tlv(2, Bytes(4)).tlv(0x15, status).data(), response);
    };
    static uim_get_card_status_resp_msg_v01 response;
    ASSERT_TRUE(decodes(kCardStatus, &response));
    EXPECT_EQ(response.card_status_valid, 0);
    ASSERT_EQ(response.extended_card_status_valid, 1);
    const auto& status = response.extended_card_status;
    EXPECT_EQ(status.index_1x_primary, 0xffff);
    EXPECT_EQ(status.index_gw_secondary, 1);
    EXPECT_EQ(status.card_count, 2);
    EXPECT_EQ(status.cards[0].application_count, 1);
    EXPECT_EQ(status.cards[0].applications[0].aid[1], 0xa1);
    EXPECT_EQ(status.cards[0].applications[0].puk2_retries, 18);
    EXPECT_EQ(status.cards[1].card_state, 2);
    EXPECT_EQ(status.cards[1].error_code, 9);
    for (const auto& [place, value] :
         {std::pair<size_t, uint8_t>{8, 6}, {8, 3}, {14, 9}, {21, 33}, {36, 1}}) {
        Bytes hostile = kCardStatus;
        hostile[place] = value;
        EXPECT_FALSE(decodes(hostile, &response)) << place;
    }
}

TEST(Codec, SendsASlotAsOneByte) {
    const auto service = uim_get_service_object_internal_v01(1, 100, 6);
    const uim_open_logical_channel_req_msg_v01 request{2, 1, 3, {0xa0, 1, 2}, 1, 4};
    const auto body = encode_message(*find_message(service, QMI_IDL_REQUEST, 66), &request);
    ASSERT_TRUE(body);
    EXPECT_THAT(*body, testing::ElementsAre(1, 1, 0, 2, 0x10, 4, 0, 3, 0xa0, 1, 2, 0x11, 1, 0, 4));
    EXPECT_EQ(service->max_message_len, 2U * (3 + 9 + 5 * (6 + 8 * 46)) + 7)
        << "two full card statuses and the result";
}

}  // namespace
