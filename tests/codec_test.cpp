// What of hostile TLVs is taken, by the tables of the UIM service.
#include <gmock/gmock.h>

#include <algorithm>

#include "qmi_codec.h"
#include "user_identity_module_v01.h"

namespace {

using wire::Bytes;

// Behind the result, of responses whose structures end in what must not be touched.
TEST(Codec, DecodesByTheRules) {
    const Bytes result = {2, 4, 0, 0, 0, 0, 0};
    const struct {
        const char* name;
        uint16_t message;
        Bytes body;
        bool decodes;
    } rows[] = {
        {"mandatory alone", 101, {}, true},
        {"half a TLV header", 101, {0x77, 0}, false},
        {"an unknown TLV", 101, {0x77, 2, 0, 1, 2, 0x78, 0, 0}, true},
        {"an element twice: the last counts", 101, {0x10, 1, 0, 9, 0x10, 3, 0, 2, 7, 8}, true},
        {"no room for a count", 101, {0x10, 0, 0}, false},
        {"a count past the TLV", 101, {0x10, 3, 0, 3, 7, 8}, false},
        {"bytes behind a counted array", 101, {0x10, 4, 0, 2, 7, 8, 9}, true},
        {"a count past the bound",
         101,
         {0x10, 18, 0, 17, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1},
         false},
        {"half a wider count", 59, {0x10, 1, 0, 0}, false},
        {"a structure cut short", 66, {0x11, 1, 0, 0x90}, false},
        {"more cards than there is room for", 47, {0x10, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6}, false},
    };
    const auto service = uim_get_service_object_internal_v01(1, 100, 6);
    for (const auto& row : rows) {
        const auto& message = *seam::find_message(service, QMI_IDL_RESPONSE, row.message);
        Bytes body = result;
        body.insert(body.end(), row.body.begin(), row.body.end());
        Bytes structure(message.c_struct_len + 64);
        EXPECT_EQ(seam::decode_message(message, body, structure.data()), row.decodes) << row.name;
        EXPECT_EQ(std::count(structure.end() - 64, structure.end(), 0), 64) << row.name;
    }
    Bytes structure(1024);
    EXPECT_FALSE(
        seam::decode_message(*seam::find_message(service, QMI_IDL_RESPONSE, 101), {}, structure.data()));
}

}  // namespace
