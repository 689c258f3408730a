#include "group7_unpack.h"

#include <cinttypes>
#include <cstdarg>
#include <cstdio>

#include "fatal.h"
#include "little_endian.h"

const uint8_t* g_unpk_data_ptr = nullptr;
int32_t g_unpk_data_base = 0;
int32_t g_unpk_data_base_bit = 0;
uint32_t g_unpk_data_cnt = 0;
bool g_unpk_limit_set = false;
int g_unpk_print = 0;
int32_t g_unpk_low = 0;
int32_t g_unpk_high = 0;
uint64_t g_unpk_value = 0;
uint64_t g_unpk_version_not_support_num = 0;

namespace {

constexpr int32_t kSpanBits = 128;
constexpr int32_t kWordBits = 64;

// The cursor's arithmetic: the exact result has to fit 32 bits, whatever the operands' signs and widths.
template <typename A, typename B>
int32_t add(A a, B b) {
    int32_t sum;
    if (__builtin_add_overflow(a, b, &sum))
        vxk_fatal("unpack cursor overflows: %lld + %lld", static_cast<long long>(a),
                  static_cast<long long>(b));
    return sum;
}

int32_t subtract(int32_t a, int32_t b) {
    int32_t difference;
    if (__builtin_sub_overflow(a, b, &difference))
        vxk_fatal("unpack cursor overflows: %d - %d", a, b);
    return difference;
}

int32_t bits_of(int32_t bytes) {
    int32_t bits;
    if (__builtin_mul_overflow(bytes, 8, &bits))
        vxk_fatal("unpack cursor overflows: %d x 8", bytes);
    return bits;
}

// Traces and refusals stay out of the untraced path.
[[gnu::cold, gnu::noinline, gnu::format(printf, 1, 0)]] void print_line(const char* fmt, va_list args) {
    vprintf(fmt, args);
    putchar('\n');
}

[[gnu::cold, gnu::format(printf, 1, 2)]] void trace(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    print_line(fmt, args);
    va_end(args);
}

[[gnu::cold, gnu::format(printf, 1, 2)]] bool refuse(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    print_line(fmt, args);
    va_end(args);
    return false;
}

// A value's bytes as they lie in memory, least significant first, without the zero bytes at the end.
struct HexText {
    char text[2 + 2 * sizeof(uint64_t) + 1] = "0x";

    explicit HexText(uint64_t value) {
        size_t end = 2;
        do {
            snprintf(text + end, sizeof text - end, "%02X", static_cast<unsigned>(value & 0xFF));
            end += 2;
            value >>= 8;
        } while (value != 0);
    }
};

uint64_t read_le(const uint8_t* bytes, uint32_t size) {
    switch (size) {
        case 1:
            return *bytes;
        case 2:
            return get_le<uint16_t>(bytes);
        case 4:
            return get_le<uint32_t>(bytes);
        default:
            return get_le<uint64_t>(bytes);
    }
}

uint64_t all_ones(uint32_t size) {
    return ~uint64_t{0} >> (kWordBits - 8 * static_cast<int32_t>(size));
}

bool unpk_high(const UnpkSpan& span, int32_t low, int32_t high, const char* name, uint32_t size) {
    if (low == 1) {
        if (high > kWordBits)
            return refuse("UNPK_MID, high(%d) should be in [1, %d] for %s, id(0x%x)", high, kWordBits, name,
                          kUnpkRecordId);
        g_unpk_value = span.low;
        if (g_unpk_print)
            trace("UNPK_HIGH, old_val: %" PRIu64 ", new_val: %" PRIu64 ", bit_num: %d, name: %s, id(0x%x)",
                  span.low, span.low, kWordBits, name, kUnpkRecordId);
        return true;
    }
    const int32_t bit_num = kSpanBits + 1 - low;
    if (bit_num < kWordBits)
        return refuse("UNPK_HIGH, bit_num(%d) should be in [64, 128] for %s, id(0x%x)", bit_num, name,
                      kUnpkRecordId);
    const int32_t shift = low - 1;
    g_unpk_value = shift == kWordBits ? span.high : span.low >> shift | span.high << (kWordBits - shift);
    if (g_unpk_print)
        trace("UNPK_HIGH, old_val: %" PRIu64 ", new_val: %" PRIu64 ", bit_num: %d, name: %s, id(0x%x)",
              g_unpk_value, g_unpk_value & all_ones(size), bit_num, name, kUnpkRecordId);
    return true;
}

bool unpk_low(int32_t low, int32_t high, const char* name, uint32_t size) {
    const int32_t bit_num = high - low + 1;
    const int32_t size_bits = 8 * static_cast<int32_t>(size);
    if (bit_num > size_bits)
        return refuse("UNPK_LOW, bit_num(%d) should be in [1, %d] for %s, id(0x%x)", bit_num, size_bits, name,
                      kUnpkRecordId);
    const uint64_t shifted = g_unpk_value;
    g_unpk_value &= all_ones(size) >> (size_bits - bit_num);
    if (g_unpk_print)
        trace("UNPK_LOW, old_val: %" PRIu64 ", new_val: %" PRIu64 ", bit_num: %d, mask_max(0x%" PRIx64
              "), old_size(%d), name: %s, id(0x%x)",
              shifted, g_unpk_value, bit_num, all_ones(size), static_cast<int>(size), name, kUnpkRecordId);
    return true;
}

}  // namespace

void unpk_start(const uint8_t* payload) {
    g_unpk_limit_set = true;
    g_unpk_data_ptr = payload;
    g_unpk_data_base = 0;
    g_unpk_data_base_bit = 0;
    g_unpk_data_cnt = 0;
}

bool unpk_i(const char* name, uint32_t size, const char* suffix) {
    if (g_unpk_data_ptr == nullptr)
        return refuse("MODEM_STATS_DATA_UNPK, g_unpk_data_ptr is NULL, name: %s%s, id(0x%x)", name, suffix,
                      kUnpkRecordId);
    const int32_t pos = add(g_unpk_data_base, g_unpk_data_cnt);
    if (pos < 0 || pos >= kUnpkPayloadMax)
        return refuse("(base + cnt)(%d) is can not >= %d for %s%s, id(0x%x)", pos, kUnpkPayloadMax, name,
                      suffix, kUnpkRecordId);
    g_unpk_value = read_le(g_unpk_data_ptr + pos, size);
    g_unpk_data_cnt += size;
    if (g_unpk_print)
        trace("    UNPK_I, name: %s%s, val: %" PRIu64
              "(%s), val_size: %d, unpk_cnt: %d, data_base: %d, base_bit: %d",
              name, suffix, g_unpk_value, HexText(g_unpk_value).text, static_cast<int>(size),
              static_cast<int>(g_unpk_data_cnt), g_unpk_data_base, g_unpk_data_base_bit);
    return true;
}

void base_with_bit(int32_t bits) {
    g_unpk_data_base_bit = add(g_unpk_data_base_bit, bits);
    g_unpk_data_base = g_unpk_data_base_bit / 8;
    g_unpk_data_cnt = 0;
    if (g_unpk_print)
        trace(
            "BASE_WITH_BIT, g_unpk_data_base_bit(%d), g_unpk_data_base(%d), g_unpk_data_cnt(%d), bit(%d), "
            "id(0x%x)",
            g_unpk_data_base_bit, g_unpk_data_base, static_cast<int>(g_unpk_data_cnt), bits, kUnpkRecordId);
}

bool unpk_set_bit(int32_t bit) {
    const int32_t pos = subtract(add(g_unpk_data_base_bit, bit) / 8, g_unpk_data_base);
    const int32_t limit = g_unpk_limit_set ? kUnpkPayloadMax : 0;
    if (pos < 0 || pos >= limit)
        return refuse("UNPK_SET_BIT, pos(%d) should be[0, %d), id(0x%x)", pos, limit, kUnpkRecordId);
    g_unpk_data_cnt = static_cast<uint32_t>(pos);
    if (g_unpk_print)
        trace(
            "UNPK_SET_BIT, g_unpk_data_base_bit(%d), g_unpk_data_base(%d), g_unpk_data_cnt(%d), bit(%d), "
            "id(0x%x)",
            g_unpk_data_base_bit, g_unpk_data_base, pos, bit, kUnpkRecordId);
    return true;
}

void print_cnt(int32_t bit, int32_t bit_num, const char* name) {
    const int32_t cursor_bit = bits_of(add(g_unpk_data_base, g_unpk_data_cnt));
    g_unpk_low = add(subtract(add(g_unpk_data_base_bit, bit), cursor_bit), 1);
    g_unpk_high = subtract(add(g_unpk_low, bit_num), 1);
    if (g_unpk_print)
        trace("PRINT_CNT, base_bit: %d, base_byte: %d, data_cnt: %d, low: %d, high: %d, param: %d, name: %s",
              g_unpk_data_base_bit, g_unpk_data_base, static_cast<int>(g_unpk_data_cnt), g_unpk_low,
              g_unpk_high, bit, name);
}

bool unpk_mid(const UnpkSpan& span, int32_t low, int32_t high, const char* name, uint32_t size) {
    if (low < 1 || low > kSpanBits)
        return refuse("UNPK_MID, low(%d) should be in [1, 128] for %s, id(0x%x)", low, name, kUnpkRecordId);
    if (high < 1 || high > kSpanBits)
        return refuse("UNPK_MID, high(%d) should be in [1, 128] for %s, id(0x%x)", high, name, kUnpkRecordId);
    if (low > high)
        return refuse("UNPK_MID, low(%d) should <= high(%d) for %s, id(0x%x)", low, high, name,
                      kUnpkRecordId);
    if (!unpk_high(span, low, high, name, size))
        return false;
    const uint64_t shifted = g_unpk_value;
    if (!unpk_low(low, high, name, size))
        return false;
    if (g_unpk_print)
        trace("UNPK_MID, old_val: %" PRIu64 ", new_val: %" PRIu64 ", low: %d, high: %d, name: %s, id(0x%x)",
              shifted, g_unpk_value, low, high, name, kUnpkRecordId);
    return true;
}

bool unpk_at(const char* name, int32_t bit, int32_t bit_num, uint32_t size) {
    if (!unpk_set_bit(bit))
        return false;
    print_cnt(bit, bit_num, name);
    UnpkSpan span;
    if (!unpk_i(name, sizeof span.low, "_tmp1"))
        return false;
    span.low = g_unpk_value;
    if (!unpk_i(name, sizeof span.high, "_tmp2"))
        return false;
    span.high = g_unpk_value;
    if (!unpk_mid(span, g_unpk_low, g_unpk_high, name, size))
        return false;
    if (g_unpk_print)
        trace("    UNPK_AT, name: %s, val: %" PRIu64 "(%s), low: %d, high: %d, bit_start: %d, bit_num: %d",
              name, g_unpk_value, HexText(g_unpk_value).text, g_unpk_low, g_unpk_high, bit, bit_num);
    return true;
}

void unpk_version_not_support(uint32_t version, const char* parser) {
    ++g_unpk_version_not_support_num;
    printf("VERSION_NOT_SUPPORT, version(%d), not_support_num(%" PRIu64 "), name(%s), id(0x%x)\n",
           static_cast<int>(version), g_unpk_version_not_support_num, parser, kUnpkRecordId);
}
