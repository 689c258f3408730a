#include "statistics_indication.h"

#include "profile_section.h"

namespace handset {
namespace {

// TLVs: 0x01 u32, 0x02 u8, 0x03 u8
constexpr uint16_t kStatus = 0x0004;
// 0x01 u32; 0x02 and 0x03 lists: u8 count, then u32 id, u16, u16, u16 length and value each; 0x10 u32
constexpr uint16_t kReport = 0x0203;
// 0x01 u32; 0x02 u8 count, bytes; 0x03 u16; 0x04 u16
constexpr uint16_t kBytes = 0x0204;
// 0x01 u8
constexpr uint16_t kState = 0x0601;
constexpr uint16_t kRaw = 0;  // any other, as bytes

// More than a reader may expect, so that its bounds can be tried, and less than a packet holds.
constexpr size_t kEntriesMax = 30;
constexpr size_t kValueMax = 1000;
constexpr size_t kTlvsMax = 65535;

template <typename T>
void add_number(Section& section, const char* key, wire::Writer& body, uint8_t type, T number = 0) {
    section.integer(key, number);
    body.tlv(type, wire::Writer().number(number, sizeof number).data());
}

void add_entries(Section& section, const char* key, wire::Writer& body, uint8_t type) {
    wire::Writer entries;
    uint8_t count = 0;
    section.list(key, kEntriesMax, [&](Section& entry) {
        uint32_t id = 0;
        uint16_t first = 0;
        uint16_t second = 0;
        wire::Bytes value;
        entry.integer("id", id);
        entry.integer("first", first);
        entry.integer("second", second);
        entry.bytes("value", value, kValueMax);
        entries.u32(id).u16(first).u16(second).u16(static_cast<uint16_t>(value.size())).bytes(value);
        ++count;
    });
    body.tlv(type, wire::Writer().u8(count).bytes(entries.data()).data());
}

void read_fields(Section& section, uint16_t message, wire::Writer& body) {
    if (message == kState)
        return add_number<uint8_t>(section, "state", body, 0x01);
    add_number<uint32_t>(section, "value", body, 0x01);
    if (message == kStatus) {
        add_number<uint8_t>(section, "first", body, 0x02);
        add_number<uint8_t>(section, "second", body, 0x03);
    } else if (message == kReport) {
        add_entries(section, "first", body, 0x02);
        add_entries(section, "second", body, 0x03);
        if (section.has("last"))
            add_number<uint32_t>(section, "last", body, 0x10);
    } else {
        wire::Bytes bytes;
        section.bytes("bytes", bytes, UINT8_MAX);
        body.tlv(0x02, wire::Writer().u8(static_cast<uint8_t>(bytes.size())).bytes(bytes).data());
        add_number<uint16_t>(section, "first", body, 0x03);
        add_number<uint16_t>(section, "second", body, 0x04);
    }
}

}  // namespace

void read_profile(Section& section, StatisticsIndication& indication) {
    section.choice("on", indication.on,
                   {{"connection", StatisticsOccasion::kConnection},
                    {"feature", StatisticsOccasion::kFeature},
                    {"values", StatisticsOccasion::kValues}});
    section.require("message");
    section.choice(
        "message", indication.message,
        {{"status", kStatus}, {"report", kReport}, {"bytes", kBytes}, {"state", kState}, {"raw", kRaw}});
    if (indication.message == kRaw) {
        section.require("number");
        section.integer<uint16_t>("number", indication.message);
        section.bytes("tlvs", indication.body, kTlvsMax);
    } else {
        wire::Writer body;
        read_fields(section, indication.message, body);
        indication.body = body.take();
    }
}

}  // namespace handset
