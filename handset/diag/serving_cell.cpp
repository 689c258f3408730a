#include "serving_cell.h"

#include <limits>

#include "profile_section.h"

namespace handset {
namespace {

constexpr uint32_t kVersions[] = {4, 0x30000, 0x30001, 0x30002};
constexpr size_t kLayouts = std::size(kVersions);

// Positions are counted from the first bit behind the version.
constexpr struct {
    const char* name;
    size_t width;
    size_t positions[kLayouts];
    uint64_t value;
} kFields[] = {
    {"mcc", 16, {176, 240, 250, 264}, 1},           {"mnc_num", 8, {192, 256, 266, 280}, 2},
    {"mnc", 16, {200, 264, 274, 288}, 1},           {"tac", 32, {224, 288, 298, 312}, 1},
    {"cgi", 64, {112, 176, 186, 200}, 0x01A2D001},  {"pci", 16, {0, 0, 10, 24}, 101},
    {"freq_band_ind", 16, {256, 320, 330, 344}, 3}, {"dl_earfcn", 32, {16, 80, 90, 104}, 1300},
    {"dl_bw", 16, {80, 144, 154, 168}, 100},        {"ul_earfcn", 32, {48, 112, 122, 136}, 19300},
    {"ul_bw", 16, {96, 160, 170, 184}, 100},        {"allow_access", 8, {216, 280, 290, 304}, 1},
};

void put_bits(wire::Bytes& bytes, size_t position, size_t width, uint64_t value) {
    if (bytes.size() * 8 < position + width)
        bytes.resize((position + width + 7) / 8);
    for (size_t i = 0; i < width; ++i) {
        const size_t bit = position + i;
        bytes[bit / 8] = static_cast<uint8_t>(bytes[bit / 8] | (value >> i & 1) << bit % 8);
    }
}

size_t read_layout(Section& section) {
    auto version = kVersions[kLayouts - 1];
    section.integer("version", version);
    for (size_t layout = 0; layout < kLayouts; ++layout) {
        if (kVersions[layout] == version)
            return layout;
    }
    section.fail("version", "no record has this version: 4, 0x30000, 0x30001, 0x30002");
}

}  // namespace

wire::Bytes read_serving_cell(Section& section) {
    const size_t layout = read_layout(section);
    wire::Writer record;
    record.u32(kVersions[layout]);
    wire::Bytes fields;
    for (const auto& field : kFields) {
        uint64_t value = field.value;
        section.integer<uint64_t>(field.name, value, 0,
                                  std::numeric_limits<uint64_t>::max() >> (64 - field.width));
        put_bits(fields, field.positions[layout], field.width, value);
    }
    record.bytes(fields);
    return record.take();
}

}  // namespace handset
