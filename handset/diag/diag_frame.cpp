#include "diag_frame.h"

#include <utility>

namespace handset {
namespace {

constexpr uint8_t kEnd = 0x7E;
constexpr uint8_t kEscape = 0x7D;
constexpr uint8_t kEscapeBit = 0x20;
constexpr size_t kCrcSize = 2;

uint16_t crc_of(wire::View bytes) {
    uint32_t crc = 0xFFFF;
    for (size_t i = 0; i < bytes.size; ++i) {
        crc ^= bytes.data[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0x8408 : crc >> 1;
    }
    return static_cast<uint16_t>(~crc);
}

}  // namespace

wire::Bytes diag_frame(wire::View packet) {
    wire::Writer content;
    content.bytes(packet).u16(crc_of(packet));
    wire::Bytes frame;
    frame.reserve(content.size() + content.size() / 8);
    for (const uint8_t byte : content.data()) {
        const bool special = byte == kEnd || byte == kEscape;
        if (special)
            frame.push_back(kEscape);
        frame.push_back(special ? byte ^ kEscapeBit : byte);
    }
    frame.push_back(kEnd);
    return frame;
}

std::optional<DiagFrame> DiagFrameReader::take(uint8_t byte) {
    if (byte != kEnd) {
        if (byte == kEscape && !escaped_) {
            escaped_ = true;
        } else if (bytes_.size() < kPacketMax + kCrcSize) {
            bytes_.push_back(std::exchange(escaped_, false) ? byte ^ kEscapeBit : byte);
        } else {
            too_long_ = true;
        }
        return std::nullopt;
    }
    DiagFrame frame;
    frame.bytes = std::exchange(bytes_, {});
    // An escape of the end is how a sender gives a frame up.
    const bool given_up = std::exchange(escaped_, false);
    const bool too_long = std::exchange(too_long_, false);
    if (frame.bytes.empty())
        return std::nullopt;
    if (given_up || too_long || frame.bytes.size() <= kCrcSize)
        return frame;
    const size_t size = frame.bytes.size() - kCrcSize;
    const auto crc = static_cast<uint16_t>(frame.bytes[size] | frame.bytes[size + 1] << 8);
    frame.whole = crc == crc_of({frame.bytes.data(), size});
    if (frame.whole)
        frame.bytes.resize(size);
    return frame;
}

}  // namespace handset
