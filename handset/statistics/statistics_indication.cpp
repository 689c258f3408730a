#include "statistics_indication.h"

#include "profile_section.h"
#include "wire_log.h"

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

constexpr struct {
    uint16_t message;
    const char* name;
} kNames[] = {{kStatus, "status"}, {kReport, "report"}, {kBytes, "bytes"}, {kState, "state"}};

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

// Takes the TLVs of a body one by one; a reader of their values in the order in which they are asked for.
class Body {
public:
    explicit Body(wire::View body) : body_(body) {}

    uint64_t number(uint8_t type, size_t width) {
        const auto tlv = wire::find_tlv(body_, type);
        ok_ = ok_ && tlv && tlv->size == width;
        return ok_ ? wire::Reader(*tlv).number(width) : 0;
    }
    wire::View value(uint8_t type) {
        const auto tlv = wire::find_tlv(body_, type);
        ok_ = ok_ && tlv;
        return tlv.value_or(wire::View());
    }
    bool has(uint8_t type) const { return wire::find_tlv(body_, type).has_value(); }
    bool ok() const { return ok_; }

private:
    wire::View body_;
    bool ok_ = true;
};

void describe_entries(const char* name, wire::View list, WireLine& line, bool& ok) {
    wire::Reader reader(list);
    const unsigned count = reader.u8();
    line.number(name, count);
    for (unsigned i = 0; i < count && reader.ok(); ++i) {
        line.unsigned_number("id", reader.u32()).number("first", reader.u16()).number("second", reader.u16());
        line.bytes("value", reader.bytes(reader.u16()));
    }
    ok = ok && reader.ok() && reader.left() == 0;
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

std::string indication_name(uint16_t message) {
    for (const auto& known : kNames) {
        if (known.message == message)
            return known.name;
    }
    return "message";
}

bool describe_indication(uint16_t message, wire::View bytes, WireLine& line) {
    Body body(bytes);
    WireLine described = line;
    bool whole = true;
    switch (message) {
        case kStatus:
            described.unsigned_number("value", body.number(0x01, 4));
            described.unsigned_number("first", body.number(0x02, 1));
            described.unsigned_number("second", body.number(0x03, 1));
            break;
        case kReport:
            described.unsigned_number("value", body.number(0x01, 4));
            describe_entries("first", body.value(0x02), described, whole);
            describe_entries("second", body.value(0x03), described, whole);
            if (body.has(0x10))
                described.unsigned_number("last", body.number(0x10, 4));
            break;
        case kBytes: {
            wire::Reader reader(body.value(0x02));
            described.unsigned_number("value", body.number(0x01, 4));
            described.bytes("bytes", reader.bytes(reader.u8()));
            described.unsigned_number("first", body.number(0x03, 2));
            described.unsigned_number("second", body.number(0x04, 2));
            whole = reader.ok() && reader.left() == 0;
            break;
        }
        case kState:
            described.unsigned_number("state", body.number(0x01, 1));
            break;
        default:
            return false;
    }
    if (!body.ok() || !whole)
        return false;
    line = described;
    return true;
}

}  // namespace handset
