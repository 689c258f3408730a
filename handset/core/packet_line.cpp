#include "packet_line.h"

namespace handset {

void write_packet(const messages::QmiMessage& message, const messages::Asked* asked, WireLine& line) {
    line.word(message.kind())
        .word(messages::label(message.name(), message.packet.message))
        .word("#" + std::to_string(message.packet.transaction));
    messages::describe(message, asked, line);
}

void write_packet(const messages::DiagMessage& message, WireLine& line) {
    line.word(messages::label(message.name, message.number));
    messages::describe(message, line);
}

void write_malformed_packet(wire::View packet, WireLine& line) {
    line.word("malformed").bytes("packet", packet);
}

}  // namespace handset
