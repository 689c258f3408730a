// Each option fetches one value in a session of the statistics service, decodes
// it and prints one line.
#include "group9_stats_qmi.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "fatal.h"
#include "group9_session.h"
#include "groups.h"
#include "little_endian.h"
#include "modem_api.h"

namespace {

enum class Kind : uint8_t { kU8, kU16, kU32, kF32 };

constexpr char kHidden[] = "";  // read and not printed

struct Field {
    const char* name;  // in messages
    Kind kind;
    const char* label = nullptr;  // in the line; null: the name
};

struct Layout {
    const char* title;
    const char* separator;  // between label and number
    const Field* fields;
    size_t count;
};

constexpr size_t kFieldsMax = 22;

template <size_t N>
constexpr Layout layout(const char* title, const char* separator, const Field (&fields)[N]) {
    static_assert(N <= kFieldsMax, "the decoder keeps this many");
    return {title, separator, fields, N};
}

constexpr Field kLteFields[] = {
    {"version", Kind::kU8, kHidden},
    {"version_ssmr", Kind::kU8, kHidden},
    {"earfcn", Kind::kU32},
    {"pci", Kind::kU16},
    {"is_srv_cell", Kind::kU8, kHidden},
    {"rx_valid", Kind::kU16},
    {"rsrp_rx0", Kind::kF32},
    {"rsrq_rx0", Kind::kF32},
    {"rssi_rx0", Kind::kF32},
    {"snr_rx0", Kind::kF32},
    {"rsrp_rx1", Kind::kF32},
    {"rsrq_rx1", Kind::kF32},
    {"rssi_rx1", Kind::kF32},
    {"snr_rx1", Kind::kF32},
    {"rsrp_rx2", Kind::kF32},
    {"rsrq_rx2", Kind::kF32},
    {"rssi_rx2", Kind::kF32},
    {"snr_rx2", Kind::kF32},
    {"rsrp_rx3", Kind::kF32},
    {"rsrq_rx3", Kind::kF32},
    {"rssi_rx3", Kind::kF32},
    {"snr_rx3", Kind::kF32},
};
constexpr Layout kLte = layout("ASDIV DATA", ": ", kLteFields);

constexpr Field kNrRssiFields[] = {
    {"version", Kind::kU32, kHidden},  {"rssi0", Kind::kF32, "rssi_rx0"}, {"rssi1", Kind::kF32, "rssi_rx1"},
    {"rssi2", Kind::kF32, "rssi_rx2"}, {"rssi3", Kind::kF32, "rssi_rx3"},
};
constexpr Layout kNrRssi = layout("ASDIV DATA", ": ", kNrRssiFields);

constexpr Field kNrSnrFields[] = {
    {"version", Kind::kU32, kHidden}, {"snr0", Kind::kF32, "snr_rx0"}, {"snr1", Kind::kF32, "snr_rx1"},
    {"snr2", Kind::kF32, "snr_rx2"},  {"snr3", Kind::kF32, "snr_rx3"},
};
constexpr Layout kNrSnr = layout("ASDIV DATA", ": ", kNrSnrFields);

constexpr Field kNrRsrpFields[] = {
    {"version", Kind::kU32, kHidden}, {"rsrp_rx0", Kind::kF32}, {"rsrp_rx1", Kind::kF32},
    {"rsrp_rx2", Kind::kF32},         {"rsrp_rx3", Kind::kF32}, {"rsrq", Kind::kF32},
};
constexpr Layout kNrRsrp = layout("ASDIV DATA", ": ", kNrRsrpFields);

constexpr Field kNrAntDiversityFields[] = {
    {"version", Kind::kU32, kHidden}, {"ant_rx_0_old", Kind::kU8}, {"ant_rx_0_new", Kind::kU8},
    {"ant_rx_1_old", Kind::kU8},      {"ant_rx_1_new", Kind::kU8}, {"ant_rx_2_old", Kind::kU8},
    {"ant_rx_2_new", Kind::kU8},      {"ant_rx_3_old", Kind::kU8}, {"ant_rx_3_new", Kind::kU8},
    {"ant_tx_0_old", Kind::kU8},      {"ant_tx_0_new", Kind::kU8}, {"ant_tx_1_old", Kind::kU8},
    {"ant_tx_1_new", Kind::kU8},
};
constexpr Layout kNrAntDiversity = layout("ASDIV DATA", " = ", kNrAntDiversityFields);

constexpr Field kWcdmaFields[] = {
    {"version", Kind::kU8, kHidden},
    {"rx_agc_0", Kind::kF32},
    {"rx_agc_1", Kind::kF32},
};
constexpr Layout kWcdma = layout("ASDIV DATA", ": ", kWcdmaFields);

constexpr Field kGsmFields[] = {
    {"version", Kind::kU8, kHidden},
    {"rx_prx", Kind::kF32},
    {"rx_drx", Kind::kF32},
};
constexpr Layout kGsm = layout("ASDIV DATA", ": ", kGsmFields);

constexpr Field kAntInfoFields[] = {
    {"version", Kind::kU8, kHidden},
    {"ant_number", Kind::kU8, "ant_num"},
    {"ant_switch_path", Kind::kU16, "ant_path"},
    {"sig_path", Kind::kU16},
    {"old_config", Kind::kU8},
    {"new_config", Kind::kU8},
};
constexpr Layout kAntInfo = layout("ANT INFO", ": ", kAntInfoFields);

int width_of(Kind kind) {
    return kind == Kind::kU8 ? 1 : kind == Kind::kU16 ? 2 : 4;
}

uint32_t read(const uint8_t* bytes, Kind kind) {
    switch (kind) {
        case Kind::kU8:
            return *bytes;
        case Kind::kU16:
            return get_le<uint16_t>(bytes);
        default:
            return get_le<uint32_t>(bytes);
    }
}

// Takes one field from the value. False after the line that says what is missing.
bool consume(const Field& field, KolvoValue* value, uint32_t* number) {
    const int width = width_of(field.kind);
    if (value->data_left < width) {
        printf("g_kolvo_data_left(%d) is not enough for %s, id(0x%x)\n", value->data_left, field.name,
               value->data_id);
        return false;
    }
    if (value->data_cnt < 0) {
        // The number is the remaining count: scripts know the line so.
        printf("g_pK_DATA_CNT(%d) is can not < 0 for %s, id(0x%x)\n", value->data_left, field.name,
               value->data_id);
        return false;
    }
    if (value->data_cnt > VS_VALUE_MAX_V01 - width)
        vxk_fatal("statistics value is read at %d, behind its %d bytes", value->data_cnt, VS_VALUE_MAX_V01);
    *number = read(value->data + value->data_cnt, field.kind);
    value->data_cnt += width;
    value->data_left -= width;
    return true;
}

void print_number(uint32_t value, Kind kind) {
    if (kind != Kind::kF32) {
        printf("%d", static_cast<int>(value));
        return;
    }
    float number;
    static_assert(sizeof number == sizeof value, "IEEE single");
    memcpy(&number, &value, sizeof number);
    printf("%.2f", static_cast<double>(number));
}

int measure(uint32_t sub, uint32_t data_id, const Layout& layout) {
    KolvoValue value;
    if (const int result = kelvra_test_qmi_modem_stats_get(sub, data_id, &value); result != 0)
        return result;
    uint32_t values[kFieldsMax];
    for (size_t i = 0; i < layout.count; ++i)
        if (!consume(layout.fields[i], &value, &values[i]))
            return 1;

    printf("%s", layout.title);
    const char* before = ": ";
    for (size_t i = 0; i < layout.count; ++i) {
        const Field& field = layout.fields[i];
        if (field.label == kHidden)
            continue;
        printf("%s%s%s", before, field.label == nullptr ? field.name : field.label, layout.separator);
        print_number(values[i], field.kind);
        before = ", ";
    }
    putchar('\n');
    return 0;
}

constexpr int kAnySub = -1;

struct Measurement {
    int opt;
    uint32_t data_id;
    const Layout* layout;
    const char* help;
    int fixed_sub = kAnySub;  // the subscription to ask, whatever was typed
};

constexpr Measurement kMeasurements[] = {
    {0, 82, &kLte, " sub                   /* 4G PCC rssi, sub: 0 - sub0; 1 - sub1 */"},
    {1, 103, &kLte, " sub                   /* 4G SCC1 rssi, sub: 0 - sub0; 1 - sub1 */"},
    {2, 104, &kLte, " sub                   /* 4G SCC2 rssi, sub: 0 - sub0; 1 - sub1 */"},
    {3, 105, &kLte, " sub                   /* 4G SCC3 rssi, sub: 0 - sub0; 1 - sub1 */"},
    {4, 106, &kLte, " sub                   /* 4G SCC4 rssi, sub: 0 - sub0; 1 - sub1 */"},
    {5, 107, &kLte, " sub                   /* 4G SCC5 rssi, sub: 0 - sub0; 1 - sub1 */"},
    {6, 108, &kLte, " sub                   /* 4G SCC6 rssi, sub: 0 - sub0; 1 - sub1 */"},
    {7, 94, &kNrRssi, " sub                   /* 5G PCC rssi, sub: 0 - sub0; 1 - sub1 */"},
    {8, 112, &kNrSnr, " sub                   /* 5G PCC snr, sub: 0 - sub0; 1 - sub1 */"},
    {9, 113, &kNrAntDiversity, " sub                   /* 5G ANT diversity, sub: 0 - sub0; 1 - sub1 */"},
    {10, 135, &kNrRsrp, " sub                  /* 5G PCC rsrp, sub: 0 - sub0; 1 - sub1 */"},
    {11, 6, &kNrRsrp, " sub                  /* 5G SCC1 rsrp, sub: 0 - sub0; 1 - sub1 */"},
    {12, 7, &kNrRsrp, " sub                  /* 5G SCC2 rsrp, sub: 0 - sub0; 1 - sub1 */"},
    {20, 110, &kWcdma, " sub                  /* WCDMA rssi, sub: 0 - sub0; 1 - sub1 */"},
    {21, 111, &kGsm, " sub                  /* GSM rssi, sub: 0 - sub0; 1 - sub1 */"},
    {30, 100, &kAntInfo, " 0                    /* Ant info */", 0},
};

// The help's view of the rows.
constexpr auto kCommands = [] {
    std::array<Command, std::size(kMeasurements)> commands{};
    for (size_t i = 0; i < commands.size(); ++i)
        commands[i] = {kMeasurements[i].opt, kMeasurements[i].help, nullptr};
    return commands;
}();

}  // namespace

const Group kStatsQmiGroup =
    make_group(9, "kelvra modem stats qmi test", kelvra_test_qmi_modem_stats_do, kCommands);

int kelvra_test_qmi_modem_stats_hdl(int opt, int sub) {
    for (const Measurement& each : kMeasurements) {
        if (each.opt == opt) {
            const int asked = each.fixed_sub == kAnySub ? sub : each.fixed_sub;
            return measure(static_cast<uint32_t>(asked), each.data_id, *each.layout);
        }
    }
    printf("kelvra_test_qmi_modem_stats_hdl: Unknown opt(%d), sub(%d)\n", opt, sub);
    return 0;
}

int kelvra_test_qmi_modem_stats_do(int argc, char** argv) {
    if (argc < 4)
        return refuse_too_few_parameters(kStatsQmiGroup);
    if (atoi(argv[1]) != kStatsQmiGroup.number)
        return refuse_first_parameter(kStatsQmiGroup);

    const int opt = atoi(argv[2]);
    const int sub = atoi(argv[3]);
    kelvra_qmi_modem_stats_api_init();
    kelvra_test_qmi_modem_stats_start();
    printf("opt = %d, sub = %d, g_kolvo_client_id = %d\n", opt, sub, g_kolvo_client_id);
    kelvra_test_qmi_modem_stats_hdl(opt, sub);
    return kelvra_qmi_modem_stats_api_deinit();
}
