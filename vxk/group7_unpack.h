// Reads fields that a record of the modem packs at arbitrary bit positions. A reader is a sequence of the
// steps below over one cursor. A step whose check fails prints one line and returns false, and the reader
// ends; an overflow in the cursor's arithmetic is fatal. While g_unpk_print is set every step also prints
// what it did.
//
// The cursor is process-wide; the parse command sets it up before each parse. Main thread only.
#pragma once

#include <cstddef>
#include <cstdint>

/// No read starts at or behind this byte of the payload.
constexpr int32_t kUnpkPayloadMax = 2000;
/// What a payload's buffer must hold, zero behind the record: the last read of a 128-bit span may start below
/// the limit and end behind it.
constexpr size_t kUnpkBufferMin = 2016;

extern const uint8_t* g_unpk_data_ptr;  // the payload; every read refuses null
extern int32_t g_unpk_data_base;        // byte index of the current base: base_bit / 8
extern int32_t g_unpk_data_base_bit;    // bit index of the current base
extern uint32_t g_unpk_data_cnt;        // bytes read since the base
extern bool g_unpk_limit_set;           // false: unpk_set_bit accepts no position at all
extern int g_unpk_print;                // non-zero: steps are traced
extern int32_t g_unpk_low;              // the current field in its span, bits counted from 1
extern int32_t g_unpk_high;
extern uint64_t g_unpk_value;  // what the last step read or extracted
extern uint64_t g_unpk_version_not_support_num;

/// The id of the record that is being parsed, printed as "id(0x%x)".
constexpr unsigned kUnpkRecordId = 0;

/// 128 bits, little-endian, from the cursor's byte on.
struct UnpkSpan {
    uint64_t low;
    uint64_t high;
};

/// Puts the cursor at the start of `payload`, which has kUnpkBufferMin bytes and outlives the parse.
void unpk_start(const uint8_t* payload);

/// UNPK_I: reads an unsigned integer of `size` bytes (1, 2, 4 or 8) at the cursor and moves behind it. The
/// lines name it `name` followed by `suffix`.
[[nodiscard]] bool unpk_i(const char* name, uint32_t size, const char* suffix = "");

/// BASE_WITH_BIT: moves the base forward, and the cursor to it.
void base_with_bit(int32_t bits);

/// UNPK_SET_BIT: moves the cursor to the byte that holds a bit given relative to the base.
[[nodiscard]] bool unpk_set_bit(int32_t bit);

/// PRINT_CNT: sets g_unpk_low and g_unpk_high for a field of bit_num bits that starts at `bit`.
void print_cnt(int32_t bit, int32_t bit_num, const char* name);

/// UNPK_MID with its parts UNPK_HIGH and UNPK_LOW: the bits low..high of the span as a field of `size` bytes.
[[nodiscard]] bool unpk_mid(const UnpkSpan& span, int32_t low, int32_t high, const char* name, uint32_t size);

/// UNPK_AT: the field of bit_num bits at `bit` relative to the base, all steps of it.
[[nodiscard]] bool unpk_at(const char* name, int32_t bit, int32_t bit_num, uint32_t size);

/// Counts and prints a record version that `parser` does not know: VERSION_NOT_SUPPORT.
void unpk_version_not_support(uint32_t version, const char* parser);
