// A client of the handset's UIM service that speaks and reads bytes as texts.
#pragma once

#include <string>

#include "handset_fixture.h"
#include "hex_text.h"

namespace handset_test {

inline wire::Bytes hex(const std::string& text) {
    return handset::parse_hex(text).value();
}

inline std::string text_of(const wire::Bytes& bytes) {
    std::string text;
    handset::append_hex(text, bytes);
    return text;
}

/// With the same zeros left out as in what is compared with it.
inline std::string normal(const std::string& text) {
    return text_of(hex(text));
}

const std::string kOk = "02 04 00 00 00 00 00 ";

inline std::string refused(uint8_t error) {
    return "02 04 00 01 00 " + text_of({error}) + " 00 ";
}

inline std::string with_size16(const std::string& text) {
    const size_t size = hex(text).size();
    return text_of({static_cast<uint8_t>(size & 0xFF), static_cast<uint8_t>(size >> 8)}) + " " + text;
}

inline std::string apdu(uint8_t channel, const std::string& text, uint8_t slot = 2) {
    return "01 01 00 " + text_of({slot}) + " 02 " + with_size16(with_size16(text)) + " 10 01 00 " +
           text_of({channel});
}

inline std::string response(const std::string& text) {
    return kOk + "10 " + with_size16(with_size16(text));
}

struct Step {
    uint16_t message;
    std::string request;
    std::string answer;
};

class UimClient : public Client {
public:
    explicit UimClient(const RunningHandset& handset) : Client(handset.dir(), "qmi/11") {}

    void expect(uint16_t message, const std::string& request, const std::string& answer) {
        const auto body = exchange(message, hex(request));
        ASSERT_TRUE(body) << message << ": " << request;
        EXPECT_EQ(text_of(*body), normal(answer)) << message << ": " << request;
    }

    /// A command to a card, and its whole answer.
    std::string command(uint8_t slot, uint8_t channel, const std::string& text) {
        const auto body = exchange(59, hex(apdu(channel, text, slot))).value_or(wire::Bytes());
        const wire::Bytes value = wire::find_tlv(body, 0x10).value_or(wire::View()).copy();
        return value.size() < 2 ? text_of(body) : text_of(wire::Bytes(value.begin() + 2, value.end()));
    }

    void expect_indication(uint16_t message, const std::string& start) {
        const wire::Bytes packet = receive().value_or(wire::Bytes());
        wire::Writer head;
        head.u8(4).u16(0).u16(message);
        const wire::Bytes found(packet.begin(),
                                packet.begin() + std::min<std::ptrdiff_t>(5, packet.end() - packet.begin()));
        EXPECT_EQ(text_of(found), text_of(head.data()));
        EXPECT_EQ(text_of(packet).substr(21, normal(start).size()), normal(start));
    }
};

}  // namespace handset_test
