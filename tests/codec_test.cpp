// The tables' rules: what goes out for a C structure, and what of hostile TLVs is taken.
#include <gmock/gmock.h>

#include "qmi_codec.h"
#include "service_tables.h"

namespace {

using seam::decode_message;
using seam::encode_message;
using seam::number;
using seam::optional;
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

}  // namespace
