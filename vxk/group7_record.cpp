#include "group7_record.h"

#include <cinttypes>
#include <cstdio>

#include "group7_unpack.h"

namespace {

enum Field {
    kMcc,
    kMncNum,
    kMnc,
    kTac,
    kCgi,
    kPci,
    kBand,
    kDlEarfcn,
    kDlBw,
    kUlEarfcn,
    kUlBw,
    kAllowAccess,
    kFields
};

constexpr struct {
    const char* name;
    uint8_t bits;
} kFieldTable[kFields] = {
    {"mcc", 16},   {"mnc_num", 8},    {"mnc", 16},           {"tac", 32},
    {"cgi", 64},   {"pci", 16},       {"freq_band_ind", 16}, {"dl_earfcn", 32},
    {"dl_bw", 16}, {"ul_earfcn", 32}, {"ul_bw", 16},         {"allow_access", 8},
};

// Where each field starts, in bits behind the version. Every layout stands for itself: a new one may move any
// field.
// clang-format off
constexpr struct {
    uint32_t version;
    int32_t start[kFields];
} kLayouts[] = {
    //        mcc  mnc_num mnc  tac  cgi  pci band dl_earfcn dl_bw ul_earfcn ul_bw allow_access
    {4,       {176, 192,   200, 224, 112, 0,  256, 16,       80,   48,       96,   216}},
    {0x30000, {240, 256,   264, 288, 176, 0,  320, 80,       144,  112,      160,  280}},
    {0x30001, {250, 266,   274, 298, 186, 10, 330, 90,       154,  122,      170,  290}},
    {0x30002, {264, 280,   288, 312, 200, 24, 344, 104,      168,  136,      184,  304}},
};
// clang-format on

const int32_t* starts_of(uint32_t version) {
    for (const auto& layout : kLayouts)
        if (layout.version == version)
            return layout.start;
    return nullptr;
}

// A field's bits as the signed number that "%d" prints.
int number(uint64_t value) {
    return static_cast<int>(static_cast<uint32_t>(value));
}

void print_summary(uint32_t version, const uint64_t (&v)[kFields]) {
    printf("version = %d, mcc = %d, mnc_num %d, mnc %d, tac %d, cgi %" PRIu64 ", pci %d\n", number(version),
           number(v[kMcc]), number(v[kMncNum]), number(v[kMnc]), number(v[kTac]), v[kCgi], number(v[kPci]));
    constexpr int kScs = 0;  // no layout carries it
    printf("freq_band_ind = %d, dl_earfcn = %d, dl_bw %d, ul_earfcn %d, ul_bw %d, allow_access %d, scs %d\n",
           number(v[kBand]), number(v[kDlEarfcn]), number(v[kDlBw]), number(v[kUlEarfcn]), number(v[kUlBw]),
           number(v[kAllowAccess]), kScs);
}

}  // namespace

bool modem_stats_parse_xxxx_diag_xxxx() {
    if (!unpk_i("version", sizeof(uint32_t)))
        return false;
    const auto version = static_cast<uint32_t>(g_unpk_value);
    base_with_bit(32);

    const int32_t* starts = starts_of(version);
    if (starts == nullptr) {
        unpk_version_not_support(version, __func__);
        return false;
    }
    uint64_t values[kFields];
    for (int i = 0; i < kFields; ++i) {
        if (!unpk_at(kFieldTable[i].name, starts[i], kFieldTable[i].bits, kFieldTable[i].bits / 8U))
            return false;
        values[i] = g_unpk_value;
    }
    print_summary(version, values);
    return true;
}
