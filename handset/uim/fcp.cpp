#include "fcp.h"

#include "der.h"

namespace handset {
namespace {

constexpr uint8_t kTemplate = 0x62;
constexpr uint8_t kNameTemplate = 0x6F;
constexpr uint8_t kSize = 0x80;
constexpr uint8_t kDescriptor = 0x82;
constexpr uint8_t kIdentifier = 0x83;
constexpr uint8_t kName = 0x84;
constexpr uint8_t kShortId = 0x88;
constexpr uint8_t kLifeCycle = 0x8A;
constexpr uint8_t kRule = 0x8B;
constexpr uint8_t kProprietary = 0xA5;
constexpr uint8_t kPinStatus = 0xC6;

constexpr uint8_t kDataCoding = 0x21;
constexpr uint8_t kActivated = 0x05;

void put16(DerWriter& writer, uint8_t tag, size_t value) {
    const uint8_t bytes[] = {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value & 0xFF)};
    writer.object(tag, {bytes, sizeof bytes});
}

wire::Bytes descriptor(const CardFile& file) {
    constexpr uint8_t kTypes[] = {0x78, 0x41, 0x42};  // by kind
    wire::Writer writer;
    writer.u8(kTypes[static_cast<size_t>(file.kind)]).u8(kDataCoding);
    if (file.kind == FileKind::kLinearFixed)
        writer.u8(0).u8(file.record_size).u8(static_cast<uint8_t>(file.records()));
    return writer.take();
}

// A bit for each key reference that follows, from the first on: whether it is in use.
wire::Bytes pin_status(const CardPin& pin) {
    const uint8_t in_use = pin.enabled() ? 0x80 : 0x00;
    return {0x90, 1, in_use, 0x83, 1, 0x01};
}

}  // namespace

wire::Bytes file_control_parameters(const CardFiles& files, size_t place, const CardPin& pin) {
    const CardFile& file = files.at(place);
    const bool directory = file.kind == FileKind::kDirectory;
    DerWriter writer;
    writer.object(kDescriptor, descriptor(file));
    put16(writer, kIdentifier, file.id);
    if (!file.name.empty())
        writer.object(kName, file.name);
    if (directory) {
        constexpr uint8_t kCharacteristics[] = {0x80, 1, 0x71};  // of the supply; any clock stop
        writer.object(kProprietary, {kCharacteristics, sizeof kCharacteristics});
    }
    writer.object(kLifeCycle, {&kActivated, 1});
    const uint16_t rules = file.parent == CardFiles::kMaster ? kIdMasterRules : kIdApplicationRules;
    const uint8_t rule[] = {static_cast<uint8_t>(rules >> 8), static_cast<uint8_t>(rules & 0xFF), file.rule};
    writer.object(kRule, {rule, sizeof rule});
    if (directory) {
        writer.object(kPinStatus, pin_status(pin));
    } else {
        put16(writer, kSize, file.content.size());
        const auto short_id = static_cast<uint8_t>(file.short_id << 3);
        writer.object(kShortId, {&short_id, file.short_id == 0 ? 0U : 1U});
    }
    return der(kTemplate, writer.data());
}

wire::Bytes name_template(wire::View name) {
    return der(kNameTemplate, der(kName, name));
}

}  // namespace handset
