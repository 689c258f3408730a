#include "statistics_records.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "profile_section.h"
#include "records.h"

namespace handset {
namespace {

using messages::RecordField;

// What a field holds when the profile says nothing: `value` in the first record that has its layout, `step`
// more from one record to the next.
struct Default {
    double value;
    double step;
};

// In the order of the layouts' fields.
constexpr Default kLteDefaults[] = {
    {1, 0},          {2, 0},         {1300, 48},     {101, 17},       {1, 0},          {15, 0},
    {-85.5, -0.75},  {-9.25, -0.25}, {-56.5, -0.75}, {21.5, -0.5},    {-87.25, -0.75}, {-10, -0.25},
    {-58.25, -0.75}, {19.75, -0.5},  {-91.5, -0.75}, {-11.75, -0.25}, {-62.75, -0.75}, {16.5, -0.5},
    {-92.25, -0.75}, {-12.5, -0.25}, {-63.5, -0.75}, {15.25, -0.5}};
constexpr Default kNrRssiDefaults[] = {{1, 0}, {-58.25, -2.5}, {-59.5, -2.5}, {-63.75, -2.5}, {-64.5, -2.5}};
constexpr Default kNrSnrDefaults[] = {{1, 0}, {24.5, -1.5}, {23.25, -1.5}, {20.75, -1.5}, {20, -1.5}};
constexpr Default kNrRsrpDefaults[] = {{1, 0},          {-84.5, -1.25}, {-85.25, -1.25},
                                       {-89.75, -1.25}, {-91, -1.25},   {-10.75, -0.25}};
constexpr Default kNrAntDiversityDefaults[] = {{1, 0}, {0, 1}, {4, 1}, {1, 1},  {5, 1}, {2, 1}, {6, 1},
                                               {3, 1}, {7, 1}, {8, 1}, {10, 1}, {9, 1}, {11, 1}};
constexpr Default kWcdmaDefaults[] = {{1, 0}, {-71.25, -1.75}, {-73.5, -1.75}};
constexpr Default kGsmDefaults[] = {{1, 0}, {-63.5, -2.25}, {-66.25, -2.25}};
constexpr Default kAntInfoDefaults[] = {{1, 0}, {4, 1}, {258, 1}, {515, 1}, {1, 2}, {2, 2}};

struct Defaults {
    const messages::RecordLayout* layout;
    const Default* first;
    size_t count;

    template <size_t N>
    constexpr Defaults(const messages::RecordLayout& fields, const Default (&values)[N])
        : layout(&fields), first(values), count(N) {}
};

constexpr Defaults kDefaults[] = {
    {messages::kLteRecord, kLteDefaults},
    {messages::kNrRssiRecord, kNrRssiDefaults},
    {messages::kNrSnrRecord, kNrSnrDefaults},
    {messages::kNrRsrpRecord, kNrRsrpDefaults},
    {messages::kNrAntDiversityRecord, kNrAntDiversityDefaults},
    {messages::kWcdmaRecord, kWcdmaDefaults},
    {messages::kGsmRecord, kGsmDefaults},
    {messages::kAntInfoRecord, kAntInfoDefaults},
};

// A layout with more fields than defaults leaves the last ones zero.
Default default_of(const messages::RecordLayout* layout, size_t field) {
    for (const Defaults& known : kDefaults) {
        if (known.layout == layout && field < known.count)
            return known.first[field];
    }
    return {};
}

void pack(wire::Writer& writer, const RecordField& field, double value) {
    if (field.kind != RecordField::kF32) {
        writer.number(static_cast<uint64_t>(value), field.size());
        return;
    }
    const auto number = static_cast<float>(value);
    uint32_t bits = 0;
    static_assert(sizeof bits == sizeof number, "IEEE single");
    memcpy(&bits, &number, sizeof bits);
    writer.u32(bits);
}

void read_field(Section& section, const RecordField& field, double& value) {
    if (field.kind == RecordField::kF32 && section.is_text(field.name)) {
        constexpr double kInfinite = std::numeric_limits<double>::infinity();
        section.choice(field.name, value, {{"nan", std::nan("")}, {"inf", kInfinite}, {"-inf", -kInfinite}});
    } else if (field.kind == RecordField::kF32) {
        section.number(field.name, value, -FLT_MAX, FLT_MAX);
    } else {
        auto number = static_cast<uint32_t>(value);
        section.integer<uint32_t>(field.name, number, 0,
                                  static_cast<uint32_t>((uint64_t{1} << (8 * field.size())) - 1));
        value = number;
    }
}

wire::Bytes pack_record(Section* section, uint32_t id, uint16_t sub) {
    wire::Writer writer;
    const messages::Record* known = messages::record(id);
    if (known == nullptr)
        return {};
    size_t index = 0;
    for (const RecordField& field : *known->layout) {
        const Default initial = default_of(known->layout, index++);
        double value = initial.value + initial.step * (2 * known->place + sub);
        if (section != nullptr)
            read_field(*section, field, value);
        pack(writer, field, value);
    }
    return writer.take();
}

}  // namespace

wire::Bytes default_record(uint32_t id, uint16_t sub) {
    return pack_record(nullptr, id, sub);
}

wire::Bytes read_record(Section& section, uint32_t id, uint16_t sub) {
    return pack_record(&section, id, sub);
}

void change_record(Section& section, uint32_t id, uint16_t sub, wire::Bytes& record) {
    const messages::Record* known = messages::record(id);
    if (known == nullptr)
        return;
    const wire::Bytes whole = default_record(id, sub);
    if (record.size() != whole.size())
        record = whole;
    size_t offset = 0;
    for (const RecordField& field : *known->layout) {
        if (section.has(field.name)) {
            double value = 0;
            wire::Writer packed;
            read_field(section, field, value);
            pack(packed, field, value);
            std::copy(packed.data().begin(), packed.data().end(),
                      record.begin() + static_cast<std::ptrdiff_t>(offset));
        } else {
            section.accept(field.name);
        }
        offset += field.size();
    }
}

}  // namespace handset
