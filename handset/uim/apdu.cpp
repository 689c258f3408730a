#include "apdu.h"

namespace handset {

std::optional<Apdu> parse_apdu(wire::View bytes) {
    wire::Reader reader(bytes);
    Apdu apdu;
    apdu.command_class = static_cast<uint8_t>(reader.u8() & ~kChannelBits);
    apdu.instruction = reader.u8();
    apdu.p1 = reader.u8();
    apdu.p2 = reader.u8();
    if (reader.ok() && reader.left() > 1) {
        const uint8_t length = reader.u8();
        if (length == 0)
            return std::nullopt;
        apdu.data = reader.bytes(length);
    }
    if (!reader.ok() || reader.left() > 1)
        return std::nullopt;
    if (reader.left() == 1) {
        const uint8_t expected = reader.u8();
        apdu.expected = expected == 0 ? 256 : expected;
    }
    return apdu;
}

wire::Bytes status_words(uint16_t words) {
    return {static_cast<uint8_t>(words >> 8), static_cast<uint8_t>(words & 0xFF)};
}

}  // namespace handset
