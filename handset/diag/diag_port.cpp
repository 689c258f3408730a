#include "diag_port.h"

#include <algorithm>
#include <vector>

#include "core.h"
#include "describe.h"
#include "diag_responder.h"
#include "packet_line.h"
#include "profile_section.h"

namespace handset {
namespace {

// A DCI response travels in pieces of this size; one that is shorter is the last.
constexpr size_t kFullPiece = 4096;

constexpr uint16_t kMpss = 2;  // in a list of peripherals

constexpr int32_t kUnknownOp = -1;

wire::Bytes answer_of(uint8_t op, int32_t result, wire::View reply) {
    wire::Writer packet;
    packet.u8(op | wire::kDiagAnswer).i32(result).bytes(reply);
    return packet.take();
}

class DiagExchange : public Exchange {
public:
    DiagExchange(DiagPort& port, ConnectionId connection, wire::View request)
        : port_(port),
          connection_(connection),
          request_(request),
          op_(request.data[0]),
          done_(messages::diag_op(op_) != nullptr ? messages::diag_op(op_)->done : 0) {}

    ExchangeKey key() const override {
        ExchangeKey key;
        key.road = Road::kDiag;
        key.message = op_;
        return key;
    }

    Answer act() override { return port_.carry_out(connection_, request_); }

    wire::Bytes with_result(int32_t result) const override { return answer_of(op_, result, {}); }
    wire::Bytes with_payload(wire::View payload) const override { return answer_of(op_, done_, payload); }
    wire::Bytes with_modem_result(int32_t) const override { return {}; }
    wire::Bytes with_tlvs(wire::View) const override { return {}; }

    wire::Bytes unknown() const override { return answer_of(op_, kUnknownOp, {}); }

    wire::Bytes cut(wire::View packet, size_t keep) const override {
        return wire::View(packet.data, std::min(keep + 1, packet.size)).copy();
    }

    WireLine answer_line(wire::View packet) const override { return port_.answer_line(connection_, packet); }
    WireLine no_answer_line() const override { return port_.no_answer_line(connection_, op_); }

private:
    DiagPort& port_;
    const ConnectionId connection_;
    const wire::View request_;
    const uint8_t op_;
    const int32_t done_;
};

wire::Bytes event_of(uint8_t event, wire::View bytes) {
    wire::Writer packet;
    packet.u8(event).bytes(bytes);
    return packet.take();
}

std::vector<wire::Bytes> dci_events(wire::View response, std::vector<uint64_t> pieces) {
    if (pieces.empty()) {
        pieces.assign(response.size / kFullPiece, kFullPiece);
        if (response.size % kFullPiece != 0 || response.size == 0)
            pieces.push_back(response.size % kFullPiece);
    }
    std::vector<wire::Bytes> events;
    events.reserve(pieces.size());
    wire::Reader reader(response);
    for (const uint64_t size : pieces)
        events.push_back(event_of(wire::kDiagEventDciResponse, reader.bytes(size)));
    return events;
}

}  // namespace

DiagPort::DiagPort(Core& core, const DiagResponder& responder, const std::vector<DiagStream>& streams)
    : Port(core, "diag", {"diag", 0, wire::kDiagPacketMax}), responder_(responder), streams_(streams) {}

void DiagPort::handle(ConnectionId connection, wire::View packet) {
    WireLine entry = line(connection, Direction::kToModem);
    write_packet(messages::decode_diag(true, packet), entry);
    log(entry, packet);
    DiagExchange exchange(*this, connection, packet);
    answer(connection, packet, entry, exchange);
}

WireLine DiagPort::answer_line(ConnectionId connection, wire::View packet) {
    WireLine entry = line(connection, Direction::kFromModem);
    write_packet(messages::decode_diag(false, packet), entry);
    return entry;
}

WireLine DiagPort::no_answer_line(ConnectionId connection, uint8_t op) {
    return line(connection, Direction::kFromModem)
        .unanswered(messages::label(messages::decode_diag(true, {&op, 1}).name, op), op);
}

Answer DiagPort::carry_out(ConnectionId connection, wire::View request) {
    const uint8_t number = request.data[0];
    const messages::DiagOp* op = messages::diag_op(number);
    if (op == nullptr)
        return {answer_of(number, kUnknownOp, {}), {}};
    const auto wanted = responder_.answers().results.find(number);
    if (wanted != responder_.answers().results.end() && wanted->second != op->done)
        return {answer_of(number, wanted->second, {}), {}};

    Outcome outcome;
    const bool open = sessions_[connection].open || number == wire::kDiagOpen;
    if (open && op->is_whole(request))
        outcome = carry_out(connection, number, {request.data + 1, request.size - 1});
    if (!outcome.done)
        return {answer_of(number, op->refused, {}), {}};
    start_streams(connection, number);
    return {answer_of(number, op->done, outcome.reply), outcome.delay};
}

DiagPort::Outcome DiagPort::carry_out(ConnectionId connection, uint8_t op, wire::View request) {
    Session& session = sessions_[connection];
    wire::Reader fields(request);
    wire::Writer reply;
    switch (op) {
        case wire::kDiagOpen:
            session.open = true;
            return {true};
        case wire::kDiagRemoteMask:
            return {true, reply.u16(responder_.answers().remote_mask).take()};
        case wire::kDiagSwitchLogging:
            return {true};
        case wire::kDiagSend: {
            const int32_t processor = fields.i32();
            return send_command(connection, processor, fields.rest());
        }
        case wire::kDiagDciRegister: {
            fields.u16();
            if (!has_processor(fields.i32()))
                return {};
            session.clients.insert(++last_client_);
            return {true, reply.i32(last_client_).take()};
        }
        case wire::kDiagDciSignal:
            return {session.clients.count(fields.i32()) > 0};
        case wire::kDiagDciSupport:
            reply.u16(responder_.answers().mpss_up ? kMpss : 0);
            return {has_processor(fields.i32()), reply.take()};
        case wire::kDiagDciStreams: {
            const int32_t client = fields.i32();
            const bool known = session.clients.count(client) > 0;
            if (known)
                session.listeners.insert(client);
            return {known};
        }
        case wire::kDiagDciSend: {
            const int32_t client = fields.i32();
            return send_dci_command(connection, client, fields.rest());
        }
        case wire::kDiagDciRelease: {
            const int32_t client = fields.i32();
            session.listeners.erase(client);
            return {session.clients.erase(client) > 0};
        }
    }
    return {};
}

bool DiagPort::has_processor(int32_t processor) const {
    return processor == 0 || (processor >= 1 && processor <= 16 &&
                              (responder_.answers().remote_mask >> (processor - 1) & 1) != 0);
}

DiagPort::Outcome DiagPort::send_command(ConnectionId connection, int32_t processor, wire::View command) {
    if (!has_processor(processor) || command.size == 0)
        return {};
    const DiagResponse response = responder_.response(sessions_[connection].masks, command);
    wire::Writer event;
    event.u8(wire::kDiagEventResponse).u8(response.processor.value_or(static_cast<uint8_t>(processor)));
    event.bytes(*response.bytes);
    return respond(connection, 0, response, {event.take()});
}

DiagPort::Outcome DiagPort::send_dci_command(ConnectionId connection, int32_t client, wire::View command) {
    if (sessions_[connection].clients.count(client) == 0 || command.size == 0)
        return {};
    const DiagResponse response = responder_.response(sessions_[connection].masks, command);
    return respond(connection, client, response, dci_events(*response.bytes, response.pieces));
}

DiagPort::Outcome DiagPort::respond(ConnectionId connection, int32_t client, const DiagResponse& response,
                                    const std::vector<wire::Bytes>& events) {
    if (response.silent)
        return {true};
    const DiagTiming& timing = response.timing;
    auto due = timing.delay;
    for (const wire::Bytes& event : events) {
        if (timing.before_answer && due.count() == 0)
            send_event(connection, client, event);
        else
            core_.loop().after(due,
                               [this, connection, client, event] { send_event(connection, client, event); });
        due += timing.gap;
    }
    return {true, {}, timing.before_answer ? timing.delay : std::chrono::milliseconds(0)};
}

void DiagPort::start_streams(ConnectionId connection, uint8_t op) {
    for (const DiagStream& stream : streams_) {
        if (stream.after == op)
            continue_stream(connection, stream, stream.count, stream.delay);
    }
}

void DiagPort::continue_stream(ConnectionId connection, const DiagStream& stream, uint32_t left,
                               std::chrono::milliseconds delay) {
    core_.loop().after(delay, [this, connection, &stream, left] {
        const auto session = sessions_.find(connection);
        if (session == sessions_.end())
            return;
        const bool needs_listener =
            stream.event == wire::kDiagEventLog || stream.event == wire::kDiagEventEvent;
        if (!needs_listener || !session->second.listeners.empty())
            send_event(connection, 0, event_of(stream.event, stream.bytes));
        if (left > 1)
            continue_stream(connection, stream, left - 1, stream.every);
    });
}

void DiagPort::send_event(ConnectionId connection, int32_t client, const wire::Bytes& packet) {
    const auto session = sessions_.find(connection);
    if (session == sessions_.end() || (client != 0 && session->second.clients.count(client) == 0))
        return;
    WireLine entry = line(connection, Direction::kFromModem);
    write_packet(messages::decode_diag(false, packet), entry);
    send(connection, packet, entry);
}

}  // namespace handset
