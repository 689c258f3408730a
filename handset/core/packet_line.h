// The words of a packet in the wire log: what it is, then its fields.
#pragma once

#include "describe.h"
#include "wire_log.h"

namespace handset {

/// "request get_eid(101) #1 slot=2"; an answer is understood by what was asked, null: unknown.
void write_packet(const messages::QmiMessage& message, const messages::Asked* asked, WireLine& line);

/// "send(4) processor=0 ..."
void write_packet(const messages::DiagMessage& message, WireLine& line);

/// A QMI packet without a whole header.
void write_malformed_packet(wire::View packet, WireLine& line);

}  // namespace handset
