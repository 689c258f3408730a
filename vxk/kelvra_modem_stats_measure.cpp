#include "kelvra_modem_stats_measure.h"

#include <cstdio>
#include <cstring>

#include "fatal.h"
#include "kelvra_test_qmi_modem_stats.h"
#include "little_endian.h"

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

// Takes one field from g_kolvo_data. False after the line that says what is missing.
bool consume(const Field& field, uint32_t* value) {
    const int width = width_of(field.kind);
    if (g_kolvo_data_left < width) {
        printf("g_kolvo_data_left(%d) is not enough for %s, id(0x%x)\n", g_kolvo_data_left, field.name,
               g_kolvo_data_id);
        return false;
    }
    if (g_pK_DATA_CNT < 0) {
        // The number is the remaining count: scripts know the line so.
        printf("g_pK_DATA_CNT(%d) is can not < 0 for %s, id(0x%x)\n", g_kolvo_data_left, field.name,
               g_kolvo_data_id);
        return false;
    }
    if (g_pK_DATA_CNT > VS_VALUE_MAX_V01 - width)
        vxk_fatal("statistics value is read at %d, behind its %d bytes", g_pK_DATA_CNT, VS_VALUE_MAX_V01);
    *value = read(g_kolvo_data + g_pK_DATA_CNT, field.kind);
    g_pK_DATA_CNT += width;
    g_kolvo_data_left -= width;
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
    if (const int result = kelvra_test_qmi_modem_stats_get(sub, data_id); result != 0)
        return result;
    uint32_t values[kFieldsMax];
    for (size_t i = 0; i < layout.count; ++i)
        if (!consume(layout.fields[i], &values[i]))
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

}  // namespace

int kelvra_test_qmi_modem_stats_4g_rssi(uint32_t sub, uint32_t data_id) {
    return measure(sub, data_id, kLte);
}
int kelvra_test_qmi_modem_stats_5g_rssi(uint32_t sub) {
    return measure(sub, 94, kNrRssi);
}
int kelvra_test_qmi_modem_stats_5g_snr(uint32_t sub) {
    return measure(sub, 112, kNrSnr);
}
int kelvra_test_qmi_modem_stats_5g_ant_diversity(uint32_t sub) {
    return measure(sub, 113, kNrAntDiversity);
}
int kelvra_test_qmi_modem_stats_5g_rsrp(uint32_t sub, uint32_t data_id) {
    return measure(sub, data_id, kNrRsrp);
}
int kelvra_test_qmi_modem_stats_wcdma_rssi(uint32_t sub) {
    return measure(sub, 110, kWcdma);
}
int kelvra_test_qmi_modem_stats_gsm_rssi(uint32_t sub) {
    return measure(sub, 111, kGsm);
}
int kelvra_test_qmi_modem_stats_ant_info(uint32_t) {
    return measure(0, 100, kAntInfo);
}

int kelvra_test_qmi_modem_stats_hdl(int opt, int sub) {
    const auto subscription = static_cast<uint32_t>(sub);
    switch (opt) {
        case 0:
            return kelvra_test_qmi_modem_stats_4g_rssi(subscription, 82);
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
        case 6: {
            constexpr uint32_t kScc1 = 103;
            return kelvra_test_qmi_modem_stats_4g_rssi(subscription, kScc1 + static_cast<uint32_t>(opt - 1));
        }
        case 7:
            return kelvra_test_qmi_modem_stats_5g_rssi(subscription);
        case 8:
            return kelvra_test_qmi_modem_stats_5g_snr(subscription);
        case 9:
            return kelvra_test_qmi_modem_stats_5g_ant_diversity(subscription);
        case 10:
            return kelvra_test_qmi_modem_stats_5g_rsrp(subscription, 135);
        case 11:
            return kelvra_test_qmi_modem_stats_5g_rsrp(subscription, 6);
        case 12:
            return kelvra_test_qmi_modem_stats_5g_rsrp(subscription, 7);
        case 20:
            return kelvra_test_qmi_modem_stats_wcdma_rssi(subscription);
        case 21:
            return kelvra_test_qmi_modem_stats_gsm_rssi(subscription);
        case 30:
            return kelvra_test_qmi_modem_stats_ant_info(subscription);
        default:
            printf("kelvra_test_qmi_modem_stats_hdl: Unknown opt(%d), sub(%d)\n", opt, sub);
            return 0;
    }
}
