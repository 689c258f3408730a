// The parts of commands and responses that are the same for all cards.
#pragma once

#include "wire.h"

namespace handset {

enum StatusWords : uint16_t {
    kSwOk = 0x9000,
    kSwWrongLength = 0x6700,
    kSwNoChannel = 0x6A81,
    kSwFileNotFound = 0x6A82,
    kSwUnknownInstruction = 0x6D00,
    kSwUnknownClass = 0x6E00,
};

constexpr uint8_t kClassGlobalPlatform = 0x80;

/// The bits of a class byte that hold the logical channel; the modem sets them.
constexpr uint8_t kChannelBits = 3;

inline wire::Bytes status_words(StatusWords words) {
    return {static_cast<uint8_t>(words >> 8), static_cast<uint8_t>(words & 0xFF)};
}

}  // namespace handset
