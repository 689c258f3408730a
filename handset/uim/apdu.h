// Commands to a card and what it answers: the frame that is the same for all cards.
#pragma once

#include <cstddef>
#include <optional>

#include "wire.h"

namespace handset {

/// What ends every answer of a card.
enum StatusWords : uint16_t {
    kSwOk = 0x9000,
    kSwMoreData = 0x6100,   // the low byte: how much GET RESPONSE brings, 0 for 256 and more
    kSwTriesLeft = 0x63C0,  // the low four bits: how many
    kSwMemoryFailure = 0x6581,
    kSwWrongLength = 0x6700,
    kSwChannelNotSupported = 0x6881,
    kSwNotSelected = 0x6981,  // the command does not go with the structure of the file
    kSwSecurity = 0x6982,
    kSwBlocked = 0x6983,
    kSwInvalidated = 0x6984,
    kSwConditions = 0x6985,
    kSwNoCurrentFile = 0x6986,
    kSwWrongData = 0x6A80,
    kSwNoChannel = 0x6A81,
    kSwFileNotFound = 0x6A82,
    kSwRecordNotFound = 0x6A83,
    kSwWrongParameters = 0x6A86,
    kSwNoSuchData = 0x6A88,
    kSwWrongOffset = 0x6B00,
    kSwWrongExpected = 0x6C00,  // the low byte: the length that would be right
    kSwUnknownInstruction = 0x6D00,
    kSwUnknownClass = 0x6E00,
    kSwNoContext = 0x9864,  // no key for this authentication
};

constexpr uint8_t kClassIso = 0x00;
constexpr uint8_t kClassProprietary = 0x80;

/// The bits of a class byte that hold the logical channel; the modem sets them.
constexpr uint8_t kChannelBits = 3;

/// A command of a short length: header, data, and how many bytes of answer are expected.
struct Apdu {
    uint8_t command_class = 0;  // without the channel
    uint8_t instruction = 0;
    uint8_t p1 = 0;
    uint8_t p2 = 0;
    wire::View data;
    std::optional<size_t> expected;  // 1 to 256; nothing when no such byte was sent
};

constexpr size_t kApduHeader = 4;

/// Nothing when the lengths in it are not those of the bytes, and for lengths of three bytes.
std::optional<Apdu> parse_apdu(wire::View bytes);

struct CardAnswer {
    uint16_t words = kSwOk;
    wire::Bytes data;

    CardAnswer(uint16_t status) : words(status) {}
    CardAnswer(wire::Bytes content) : data(std::move(content)) {}
};

/// The two bytes.
wire::Bytes status_words(uint16_t words);

}  // namespace handset
