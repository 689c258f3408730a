// What a packet says, field by field: the same fields for the wire log, its JSON form and a trace. A packet
// is decoded once and then described as often as one likes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "extension.h"
#include "messages.h"
#include "wire.h"

namespace messages {

/// Takes the fields of a message in order. Names live as long as the program. Within the message, a list's
/// item or a group, a name comes once.
class Sink {
public:
    virtual ~Sink() = default;
    virtual Sink& number(std::string_view name, int64_t value) = 0;
    virtual Sink& unsigned_number(std::string_view name, uint64_t value) = 0;
    virtual Sink& real(std::string_view name, float value) = 0;
    virtual Sink& text(std::string_view name, std::string_view value) = 0;
    virtual Sink& bytes(std::string_view name, wire::View value) = 0;
    /// Bytes that a bytes() to come brings again, with what stands around them.
    virtual Sink& inner_bytes(std::string_view name, wire::View value) = 0;
    /// What follows is not what the message promises.
    virtual Sink& malformed() = 0;

    /// A list of `count` items; its fields come between begin_item() and end().
    virtual Sink& list(std::string_view name, size_t count) = 0;
    virtual Sink& begin_item(std::string_view list, size_t index) = 0;
    virtual Sink& begin_group(std::string_view name) = 0;
    /// Ends the item or group that was begun last.
    virtual Sink& end() = 0;
    virtual Sink& end_list() = 0;
};

/// A QMI packet, decoded as far as it can be. Views are of the packet.
struct QmiMessage {
    uint16_t service = 0;
    wire::QmiPacket packet;
    const Message* row = nullptr;  // null: no message is known by this number
    bool whole = false;            // every TLV ends within the body
    std::optional<Extension> extension;

    const char* name() const { return row != nullptr ? row->name : "message"; }
    /// "request", "response", "indication" or "unknown".
    const char* kind() const;
};

QmiMessage decode(uint16_t service, const wire::QmiPacket& packet);

/// The fields of the body. An answer of the extension service is understood by what was asked; null: unknown.
void describe(const QmiMessage& message, const Asked* asked, Sink& sink);

/// A diag packet of one byte at least.
struct DiagMessage {
    enum Kind : uint8_t { kRequest, kAnswer, kEvent };
    Kind kind = kRequest;
    uint8_t number = 0;  // of the op or the event
    const char* name = "unknown";
    wire::View rest;  // behind the number
};

DiagMessage decode_diag(bool to_modem, wire::View packet);
void describe(const DiagMessage& message, Sink& sink);

/// "get_eid(101)".
std::string label(const char* name, unsigned number);

}  // namespace messages
