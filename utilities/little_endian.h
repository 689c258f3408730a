// Numbers in packed little-endian records. Memory need not be aligned; the caller has checked that
// it is there.
#pragma once

#include <cstddef>
#include <cstdint>

/// The unsigned number of type T in the sizeof(T) bytes at `bytes`.
template <typename T>
T get_le(const uint8_t* bytes) {
    uint64_t value = 0;
    for (size_t i = sizeof(T); i > 0; --i)
        value = (value << 8) | bytes[i - 1];
    return static_cast<T>(value);
}

/// Writes `value` into the sizeof(T) bytes at `bytes`.
template <typename T>
void put_le(uint8_t* bytes, T value) {
    for (size_t i = 0; i < sizeof(T); ++i)
        bytes[i] = static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i));
}
