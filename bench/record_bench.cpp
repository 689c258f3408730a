// The record parser against the code that one would write by hand for a single layout: unaligned loads,
// shifts and masks. Both print the same summary.
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "benches.h"
#include "group7_record.h"
#include "group7_unpack.h"

namespace bench {
namespace {

using Record = std::array<uint8_t, kUnpkBufferMin>;

// Of version 4, each byte another one.
Record make_record() {
    Record record{};
    record[0] = 4;
    for (size_t i = 4; i < 48; ++i)
        record[i] = static_cast<uint8_t>(i * 37);
    return record;
}

template <typename T>
T load(const uint8_t* bytes) {
    T value;
    memcpy(&value, bytes, sizeof value);
    return value;
}

uint64_t field(const uint8_t* record, unsigned bit, unsigned width) {
    const auto word = load<uint64_t>(record + 4 + bit / 8) >> bit % 8;
    return width == 64 ? word : word & ((uint64_t{1} << width) - 1);
}

int number(uint64_t value) {
    return static_cast<int>(value);
}

void extract_by_hand(const uint8_t* r) {
    printf("version = %d, mcc = %d, mnc_num %d, mnc %d, tac %d, cgi %" PRIu64 ", pci %d\n",
           number(load<uint32_t>(r)), number(field(r, 176, 16)), number(field(r, 192, 8)),
           number(field(r, 200, 16)), number(field(r, 224, 32)), field(r, 112, 64), number(field(r, 0, 16)));
    printf("freq_band_ind = %d, dl_earfcn = %d, dl_bw %d, ul_earfcn %d, ul_bw %d, allow_access %d, scs %d\n",
           number(field(r, 256, 16)), number(field(r, 16, 32)), number(field(r, 80, 16)),
           number(field(r, 48, 32)), number(field(r, 96, 16)), number(field(r, 216, 8)), 0);
}

}  // namespace

void compare_record_parser(Table& table) {
    static Record record = make_record();
    const auto by_hand = [] {
        keep(record.data());
        extract_by_hand(record.data());
    };
    const auto parse = [] {
        keep(record.data());
        unpk_start(record.data());
        if (!modem_stats_parse_xxxx_diag_xxxx())
            give_up("the record does not parse");
    };
    table.compare({"record parser, version 4", parse}, {"extraction by hand", by_hand}, 3);
}

}  // namespace bench
