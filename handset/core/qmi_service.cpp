#include "qmi_service.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "layout.h"

namespace handset {
namespace {

constexpr uint8_t kTlvResult = 0x02;

class QmiExchange : public Exchange {
public:
    QmiExchange(QmiPort& port, QmiService& service, ConnectionId connection, const wire::QmiPacket& packet)
        : port_(port),
          service_(service),
          packet_(packet),
          request_{connection, packet.message, packet.body} {}

    ExchangeKey key() const override {
        ExchangeKey key;
        key.service = service_.id();
        key.message = packet_.message;
        service_.complete(key, request_);
        return key;
    }

    Answer act() override {
        if (!wire::tlvs_are_whole(packet_.body))
            return {packed(service_.refusal(kQmiErrorMalformed)), {}};
        QmiAnswer answer = service_.handle(request_);
        return {packed(answer.body), answer.delay};
    }

    wire::Bytes with_result(int32_t result) const override {
        return packed(service_.refusal(static_cast<uint32_t>(result)));
    }
    wire::Bytes with_modem_result(int32_t result) const override {
        return packed(service_.modem_result(request_, result));
    }
    wire::Bytes with_payload(wire::View payload) const override { return packed(service_.payload(payload)); }
    wire::Bytes with_tlvs(wire::View tlvs) const override { return packed(tlvs); }

    wire::Bytes cut(wire::View packet, size_t keep) const override {
        auto answer = wire::decode_qmi(packet);
        if (!answer)
            return packet.copy();
        answer->body.size = std::min(keep, answer->body.size);
        return wire::encode(*answer);
    }

    WireLine answer_line(wire::View packet) const override {
        return port_.packet_line(request_.connection, Direction::kFromModem, packet);
    }
    WireLine no_answer_line() const override {
        return port_.no_answer_line(request_.connection, packet_.transaction);
    }

private:
    wire::Bytes packed(wire::View body) const {
        return wire::encode({wire::kQmiResponse, packet_.transaction, packet_.message, body});
    }

    QmiPort& port_;
    QmiService& service_;
    const wire::QmiPacket& packet_;
    QmiRequest request_;
};

const char* kind_name(uint8_t flags) {
    return flags == wire::kQmiRequest      ? "request"
           : flags == wire::kQmiResponse   ? "response"
           : flags == wire::kQmiIndication ? "indication"
                                           : "unknown";
}

}  // namespace

wire::Writer qmi_result(uint32_t error) {
    wire::Writer value;
    value.u16(error == 0 ? 0 : 1).u16(static_cast<uint16_t>(error));
    wire::Writer body;
    body.tlv(kTlvResult, value.data());
    return body;
}

bool describe_result(wire::View body, WireLine& line) {
    const auto value = wire::find_tlv(body, kTlvResult);
    if (!value || value->size != 4)
        return false;
    wire::Reader reader(*value);
    line.number("result", reader.u16()).number("error", reader.u16());
    return true;
}

QmiService::QmiService(Core& core, uint16_t id) : id_(id), port_(std::make_unique<QmiPort>(core, *this)) {}

QmiService::~QmiService() = default;

wire::Bytes QmiService::refusal(uint32_t error) const {
    return qmi_result(error).take();
}

std::string QmiService::message_name(uint16_t) const {
    return "message";
}

void QmiService::describe(wire::QmiFlags, uint16_t, wire::View body, WireLine& line) const {
    wire::TlvReader reader(body);
    while (const auto tlv = reader.next()) {
        char name[8];
        snprintf(name, sizeof name, "0x%02X", tlv->type);
        line.bytes(name, tlv->value);
    }
    if (!reader.ok())
        line.word("malformed").bytes("body", body);
}

void QmiService::indicate(uint16_t message, const wire::Bytes& body) {
    port_->indicate(message, body);
}

void QmiService::indicate(uint16_t message, const wire::Bytes& body, ConnectionId connection) {
    port_->indicate(message, body, connection);
}

QmiPort::QmiPort(Core& core, QmiService& service)
    : Port(core, "qmi/" + service_name(service.id()),
           {host::qmi_place(service.id()), service.id(), wire::kQmiPacketMax}),
      service_(service) {}

void QmiPort::indicate(uint16_t message, const wire::Bytes& body) {
    for (const ConnectionId connection : connections())
        indicate(message, body, connection);
}

void QmiPort::indicate(uint16_t message, const wire::Bytes& body, ConnectionId connection) {
    const wire::Bytes packet = wire::encode({wire::kQmiIndication, 0, message, body});
    send(connection, packet, packet_line(connection, Direction::kFromModem, packet));
}

void QmiPort::handle(ConnectionId connection, wire::View bytes) {
    log(packet_line(connection, Direction::kToModem, bytes));
    const auto packet = wire::decode_qmi(bytes);
    // Without a whole header there is no transaction to answer; and only requests are answered.
    if (!packet || packet->flags != wire::kQmiRequest)
        return;
    QmiExchange exchange(*this, service_, connection, *packet);
    answer(connection, exchange);
}

WireLine QmiPort::packet_line(ConnectionId connection, Direction direction, wire::View bytes) {
    WireLine entry = line(connection, direction);
    const auto packet = wire::decode_qmi(bytes);
    if (!packet) {
        entry.word("malformed").bytes("packet", bytes);
        return entry;
    }
    entry.word(kind_name(packet->flags))
        .word(service_.message_name(packet->message) + "(" + std::to_string(packet->message) + ")")
        .word("#" + std::to_string(packet->transaction));
    const auto kind = static_cast<wire::QmiFlags>(packet->flags);
    if (wire::tlvs_are_whole(packet->body))
        service_.describe(kind, packet->message, packet->body, entry);
    else
        service_.QmiService::describe(kind, packet->message, packet->body, entry);
    return entry;
}

WireLine QmiPort::no_answer_line(ConnectionId connection, uint16_t transaction) {
    return line(connection, Direction::kFromModem).word("none").word("#" + std::to_string(transaction));
}

}  // namespace handset
