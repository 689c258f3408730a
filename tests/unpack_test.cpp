// The unpack engine's checks, and the record parser on records packed here, bit by bit.
#include <array>

#include "group7_debug_info.h"
#include "group7_record.h"
#include "group7_stats.h"
#include "group7_unpack.h"
#include "platform_test.h"

namespace {

constexpr int kInteger = INT32_MAX;

using Buffer = std::array<uint8_t, kUnpkBufferMin>;

void put_bits(Buffer* buffer, size_t bit, size_t width, uint64_t value) {
    for (size_t i = 0; i < width; ++i, value >>= 1)
        (*buffer)[(bit + i) / 8] =
            static_cast<uint8_t>((*buffer)[(bit + i) / 8] | (value & 1) << (bit + i) % 8);
}

class Unpack : public PlatformTest {
protected:
    Unpack() {
        g_unpk_print = 0;
        g_unpk_version_not_support_num = 0;
        for (size_t i = 0; i < buffer.size(); ++i)
            buffer[i] = static_cast<uint8_t>(i * 37 + 1);
        unpk_start(buffer.data());
    }

    Buffer buffer{};
};

TEST_F(Unpack, RefusedReads) {
    const struct {
        int base_bits;
        uint32_t cnt;
        bool limit_set;
        int field_bit;  // of a field; kInteger: an integer is read
        const char* line;
    } cases[] = {
        {1900 * 8, 100, true, kInteger, "(base + cnt)(2000) is can not >= 2000 for tac, id(0x0)\n"},
        {-8, 0, true, kInteger, "(base + cnt)(-1) is can not >= 2000 for tac, id(0x0)\n"},
        {0, 0, true, 1995 * 8, "(base + cnt)(2003) is can not >= 2000 for tac_tmp2, id(0x0)\n"},
        {8, 0, true, 1999 * 8, "(base + cnt)(2000) is can not >= 2000 for tac_tmp1, id(0x0)\n"},
        {0, 0, true, 2000 * 8, "UNPK_SET_BIT, pos(2000) should be[0, 2000), id(0x0)\n"},
        {0, 0, true, -8, "UNPK_SET_BIT, pos(-1) should be[0, 2000), id(0x0)\n"},
        {0, 0, false, 0, "UNPK_SET_BIT, pos(0) should be[0, 0), id(0x0)\n"},
    };
    for (const auto& c : cases) {
        unpk_start(buffer.data());
        base_with_bit(c.base_bits);
        g_unpk_data_cnt = c.cnt;
        g_unpk_limit_set = c.limit_set;
        EXPECT_EQ(
            printed_by([&] {
                EXPECT_FALSE(c.field_bit == kInteger ? unpk_i("tac", 4) : unpk_at("tac", c.field_bit, 32, 4));
            }),
            c.line);
    }
    unpk_start(nullptr);
    EXPECT_EQ(printed_by([] { EXPECT_FALSE(unpk_at("mcc", 0, 16, 2)); }),
              "MODEM_STATS_DATA_UNPK, g_unpk_data_ptr is NULL, name: mcc_tmp1, id(0x0)\n");
}

TEST_F(Unpack, RefusedRanges) {
    const struct {
        int low, high;
        uint32_t size;
        const char* line;
    } cases[] = {
        {0, 5, 2, "UNPK_MID, low(0) should be in [1, 128] for x, id(0x0)\n"},
        {129, 129, 2, "UNPK_MID, low(129) should be in [1, 128] for x, id(0x0)\n"},
        {5, 129, 2, "UNPK_MID, high(129) should be in [1, 128] for x, id(0x0)\n"},
        {5, 0, 2, "UNPK_MID, high(0) should be in [1, 128] for x, id(0x0)\n"},
        {6, 5, 2, "UNPK_MID, low(6) should <= high(5) for x, id(0x0)\n"},
        {1, 65, 8, "UNPK_MID, high(65) should be in [1, 64] for x, id(0x0)\n"},
        {66, 70, 8, "UNPK_HIGH, bit_num(63) should be in [64, 128] for x, id(0x0)\n"},
        {4, 20, 2, "UNPK_LOW, bit_num(17) should be in [1, 16] for x, id(0x0)\n"},
        {1, 9, 1, "UNPK_LOW, bit_num(9) should be in [1, 8] for x, id(0x0)\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(printed_by([&] { EXPECT_FALSE(unpk_mid({1, 2}, c.low, c.high, "x", c.size)); }), c.line);
}

TEST_F(Unpack, OverflowIsFatal) {
    const auto overflows = [](const std::function<void()>& steps) {
        EXPECT_EXIT(steps(), testing::KilledBySignal(SIGABRT), "vxk: fatal: unpack cursor overflows");
    };
    base_with_bit(8);
    overflows([] { base_with_bit(INT32_MAX); });
    overflows([] { static_cast<void>(unpk_set_bit(INT32_MAX)); });
    overflows([] { print_cnt(INT32_MAX, 1, "x"); });
    g_unpk_data_cnt = INT32_MAX / 8;
    overflows([] { print_cnt(0, 1, "x"); });
    g_unpk_data_cnt = INT32_MAX;
    overflows([] { static_cast<void>(unpk_i("x", 1)); });
}

// Every range that the engine accepts, against the span's bits one by one.
TEST_F(Unpack, FieldsOfTheSpan) {
    const UnpkSpan span{0x8899AABBCCDDEEFF, 0xFEDCBA9876543211};
    const auto bit_of_span = [&span](int bit) {
        return (bit < 64 ? span.low >> bit : span.high >> (bit - 64)) & 1;
    };
    for (int low = 1; low <= 65; ++low) {
        uint64_t expected = 0;
        for (int bits = 1; bits <= 64 && low + bits <= 129; ++bits) {
            expected |= bit_of_span(low + bits - 2) << (bits - 1);
            ASSERT_TRUE(unpk_mid(span, low, low + bits - 1, "x", 8));
            ASSERT_EQ(g_unpk_value, expected) << low << " " << bits;
        }
    }
}

struct Place {
    size_t bit;
    size_t width;
    uint64_t value;
};

// A record as the modem packs it: its version, then fields at bits behind it, and noise everywhere else.
Buffer record(uint32_t version, const std::vector<Place>& fields) {
    Buffer noise;
    noise.fill(0xA5);
    const auto place = [&noise](size_t bit, size_t width, uint64_t value) {
        for (size_t i = bit; i < bit + width; ++i)
            noise[i / 8] = static_cast<uint8_t>(noise[i / 8] & ~(1U << i % 8));
        put_bits(&noise, bit, width, value);
    };
    place(0, 32, version);
    for (const Place& field : fields)
        place(32 + field.bit, field.width, field.value);
    return noise;
}

TEST_F(Unpack, RecordsOfEveryVersion) {
    struct Record {
        uint32_t version;
        size_t mcc, mnc_num, mnc, tac, cgi, pci, band, dl_earfcn, dl_bw, ul_earfcn, ul_bw, access;
    };
    const Record records[] = {
        {4, 176, 192, 200, 224, 112, 0, 256, 16, 80, 48, 96, 216},
        {0x30000, 240, 256, 264, 288, 176, 0, 320, 80, 144, 112, 160, 280},
        {0x30001, 250, 266, 274, 298, 186, 10, 330, 90, 154, 122, 170, 290},
        {0x30002, 264, 280, 288, 312, 200, 24, 344, 104, 168, 136, 184, 304},
    };
    for (const Record& r : records) {
        const Buffer packed = record(r.version, {{r.mcc, 16, 0xFFFE},
                                                 {r.mnc_num, 8, 0xFD},
                                                 {r.mnc, 16, 0xFFFC},
                                                 {r.tac, 32, 0xFFFFFFFB},
                                                 {r.cgi, 64, 0xFFFFFFFFFFFFFFFA},
                                                 {r.pci, 16, 0xFFF9},
                                                 {r.band, 16, 0xFFF8},
                                                 {r.dl_earfcn, 32, 0x7FFFFFF7},
                                                 {r.dl_bw, 16, 0xFFF6},
                                                 {r.ul_earfcn, 32, 0xFFFFFFF5},
                                                 {r.ul_bw, 16, 0xFFF4},
                                                 {r.access, 8, 0xF3}});
        EXPECT_EQ(
            printed_by([&] { kelvra_test_modem_stats_parsing_process_do(packed.data()); }),
            "version = " + std::to_string(r.version) +
                ", mcc = 65534, mnc_num 253, mnc 65532, tac -5, cgi 18446744073709551610, pci 65529\n"
                "freq_band_ind = 65528, dl_earfcn = 2147483639, dl_bw 65526, ul_earfcn -11, ul_bw 65524, "
                "allow_access 243, scs 0\n");
    }
}

TEST_F(Unpack, UnknownVersionsAreCounted) {
    uint64_t count = 0;
    for (const uint32_t version : {0U, 3U, 5U, 0x2FFFFU, 0x30003U, 0x80030001U, 0xFFFFFFFFU}) {
        const Buffer packed = record(version, {});
        EXPECT_EQ(printed_by([&] { kelvra_test_modem_stats_parsing_process_do(packed.data()); }),
                  "VERSION_NOT_SUPPORT, version(" + std::to_string(static_cast<int>(version)) +
                      "), not_support_num(" + std::to_string(++count) +
                      "), name(modem_stats_parse_xxxx_diag_xxxx), id(0x0)\n");
    }
}

TEST_F(Unpack, NothingToRead) {
    EXPECT_EQ(printed_by([] {
                  EXPECT_EQ(kelvra_modem_stats_main_info_unpk(nullptr, 4), 0);
                  EXPECT_EQ(kelvra_modem_stats_uim_info_unpk(nullptr, 4), 0);
                  kelvra_modem_stats_support_status_check(nullptr);
                  kelvra_test_modem_stats_parsing_process_do(nullptr);
              }),
              "ptr is null\nptr is null\nkelvra_modem_stats_support_status_check, ptr is null\n"
              "MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0x0)\n");
}

}  // namespace
