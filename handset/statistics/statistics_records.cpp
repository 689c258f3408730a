#include "statistics_records.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "profile_section.h"

namespace handset {
namespace {

enum class Kind : uint8_t { kU8, kU16, kU32, kF32 };

// The defaults: `value` in the first record that has this layout, `step` from one record to the next.
struct Field {
    const char* name;
    Kind kind;
    double value;
    double step;
};

struct Layout {
    const Field* fields;
    size_t count;

    template <size_t N>
    constexpr explicit Layout(const Field (&table)[N]) : fields(table), count(N) {}
};

constexpr Field kLteFields[] = {
    {"version", Kind::kU8, 1, 0},
    {"version_ssmr", Kind::kU8, 2, 0},
    {"earfcn", Kind::kU32, 1300, 48},
    {"pci", Kind::kU16, 101, 17},
    {"is_srv_cell", Kind::kU8, 1, 0},
    {"rx_valid", Kind::kU16, 15, 0},
    {"rsrp_rx0", Kind::kF32, -85.5, -0.75},
    {"rsrq_rx0", Kind::kF32, -9.25, -0.25},
    {"rssi_rx0", Kind::kF32, -56.5, -0.75},
    {"snr_rx0", Kind::kF32, 21.5, -0.5},
    {"rsrp_rx1", Kind::kF32, -87.25, -0.75},
    {"rsrq_rx1", Kind::kF32, -10, -0.25},
    {"rssi_rx1", Kind::kF32, -58.25, -0.75},
    {"snr_rx1", Kind::kF32, 19.75, -0.5},
    {"rsrp_rx2", Kind::kF32, -91.5, -0.75},
    {"rsrq_rx2", Kind::kF32, -11.75, -0.25},
    {"rssi_rx2", Kind::kF32, -62.75, -0.75},
    {"snr_rx2", Kind::kF32, 16.5, -0.5},
    {"rsrp_rx3", Kind::kF32, -92.25, -0.75},
    {"rsrq_rx3", Kind::kF32, -12.5, -0.25},
    {"rssi_rx3", Kind::kF32, -63.5, -0.75},
    {"snr_rx3", Kind::kF32, 15.25, -0.5},
};
constexpr Layout kLte(kLteFields);

constexpr Field kNrRssiFields[] = {
    {"version", Kind::kU32, 1, 0},      {"rssi0", Kind::kF32, -58.25, -2.5},
    {"rssi1", Kind::kF32, -59.5, -2.5}, {"rssi2", Kind::kF32, -63.75, -2.5},
    {"rssi3", Kind::kF32, -64.5, -2.5},
};
constexpr Layout kNrRssi(kNrRssiFields);

constexpr Field kNrSnrFields[] = {
    {"version", Kind::kU32, 1, 0},     {"snr0", Kind::kF32, 24.5, -1.5}, {"snr1", Kind::kF32, 23.25, -1.5},
    {"snr2", Kind::kF32, 20.75, -1.5}, {"snr3", Kind::kF32, 20, -1.5},
};
constexpr Layout kNrSnr(kNrSnrFields);

constexpr Field kNrRsrpFields[] = {
    {"version", Kind::kU32, 1, 0},           {"rsrp_rx0", Kind::kF32, -84.5, -1.25},
    {"rsrp_rx1", Kind::kF32, -85.25, -1.25}, {"rsrp_rx2", Kind::kF32, -89.75, -1.25},
    {"rsrp_rx3", Kind::kF32, -91, -1.25},    {"rsrq", Kind::kF32, -10.75, -0.25},
};
constexpr Layout kNrRsrp(kNrRsrpFields);

constexpr Field kNrAntDiversityFields[] = {
    {"version", Kind::kU32, 1, 0},      {"ant_rx_0_old", Kind::kU8, 0, 1},  {"ant_rx_0_new", Kind::kU8, 4, 1},
    {"ant_rx_1_old", Kind::kU8, 1, 1},  {"ant_rx_1_new", Kind::kU8, 5, 1},  {"ant_rx_2_old", Kind::kU8, 2, 1},
    {"ant_rx_2_new", Kind::kU8, 6, 1},  {"ant_rx_3_old", Kind::kU8, 3, 1},  {"ant_rx_3_new", Kind::kU8, 7, 1},
    {"ant_tx_0_old", Kind::kU8, 8, 1},  {"ant_tx_0_new", Kind::kU8, 10, 1}, {"ant_tx_1_old", Kind::kU8, 9, 1},
    {"ant_tx_1_new", Kind::kU8, 11, 1},
};
constexpr Layout kNrAntDiversity(kNrAntDiversityFields);

constexpr Field kWcdmaFields[] = {
    {"version", Kind::kU8, 1, 0},
    {"rx_agc_0", Kind::kF32, -71.25, -1.75},
    {"rx_agc_1", Kind::kF32, -73.5, -1.75},
};
constexpr Layout kWcdma(kWcdmaFields);

constexpr Field kGsmFields[] = {
    {"version", Kind::kU8, 1, 0},
    {"rx_prx", Kind::kF32, -63.5, -2.25},
    {"rx_drx", Kind::kF32, -66.25, -2.25},
};
constexpr Layout kGsm(kGsmFields);

constexpr Field kAntInfoFields[] = {
    {"version", Kind::kU8, 1, 0},
    {"ant_number", Kind::kU8, 4, 1},
    {"ant_switch_path", Kind::kU16, 258, 1},
    {"sig_path", Kind::kU16, 515, 1},
    {"old_config", Kind::kU8, 1, 2},
    {"new_config", Kind::kU8, 2, 2},
};
constexpr Layout kAntInfo(kAntInfoFields);

constexpr struct {
    uint32_t id;
    const Layout* layout;
    int place;  // among the records of this layout
} kRecords[] = {
    {82, &kLte, 0},              // 4G, primary carrier
    {103, &kLte, 1},             // 4G, secondary carriers 1 to 6
    {104, &kLte, 2},             //
    {105, &kLte, 3},             //
    {106, &kLte, 4},             //
    {107, &kLte, 5},             //
    {108, &kLte, 6},             //
    {94, &kNrRssi, 0},           // 5G, primary carrier
    {112, &kNrSnr, 0},           //
    {113, &kNrAntDiversity, 0},  //
    {135, &kNrRsrp, 0},          //
    {6, &kNrRsrp, 1},            // 5G, secondary carriers 1 and 2
    {7, &kNrRsrp, 2},            //
    {110, &kWcdma, 0},           //
    {111, &kGsm, 0},             //
    {100, &kAntInfo, 0},         //
};

void pack(wire::Writer& writer, Kind kind, double value) {
    if (kind == Kind::kF32) {
        const auto number = static_cast<float>(value);
        uint32_t bits = 0;
        static_assert(sizeof bits == sizeof number, "IEEE single");
        memcpy(&bits, &number, sizeof bits);
        writer.u32(bits);
        return;
    }
    writer.number(static_cast<uint64_t>(value), kind == Kind::kU8 ? 1 : kind == Kind::kU16 ? 2 : 4);
}

void read_field(Section& section, const Field& field, double& value) {
    if (field.kind == Kind::kF32 && section.is_text(field.name)) {
        constexpr double kInfinite = std::numeric_limits<double>::infinity();
        section.choice(field.name, value, {{"nan", std::nan("")}, {"inf", kInfinite}, {"-inf", -kInfinite}});
    } else if (field.kind == Kind::kF32) {
        section.number(field.name, value, -FLT_MAX, FLT_MAX);
    } else {
        auto number = static_cast<uint32_t>(value);
        section.integer<uint32_t>(field.name, number, 0,
                                  field.kind == Kind::kU8    ? UINT8_MAX
                                  : field.kind == Kind::kU16 ? UINT16_MAX
                                                             : UINT32_MAX);
        value = number;
    }
}

wire::Bytes record(Section* section, uint32_t id, uint16_t sub) {
    wire::Writer writer;
    for (const auto& entry : kRecords) {
        if (entry.id != id)
            continue;
        for (size_t i = 0; i < entry.layout->count; ++i) {
            const Field& field = entry.layout->fields[i];
            double value = field.value + field.step * (2 * entry.place + sub);
            if (section != nullptr)
                read_field(*section, field, value);
            pack(writer, field.kind, value);
        }
    }
    return writer.take();
}

}  // namespace

std::vector<uint32_t> record_ids() {
    std::vector<uint32_t> ids;
    for (const auto& entry : kRecords)
        ids.push_back(entry.id);
    return ids;
}

wire::Bytes default_record(uint32_t id, uint16_t sub) {
    return record(nullptr, id, sub);
}

wire::Bytes read_record(Section& section, uint32_t id, uint16_t sub) {
    return record(&section, id, sub);
}

}  // namespace handset
