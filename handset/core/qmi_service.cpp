#include "qmi_service.h"

#include <algorithm>

#include "core.h"
#include "layout.h"
#include "messages.h"
#include "packet_line.h"
#include "profile_section.h"

namespace handset {
namespace {

constexpr uint8_t kTlvResult = 0x02;

class QmiExchange : public Exchange {
public:
    QmiExchange(QmiPort& port, QmiService& service, ConnectionId connection,
                const messages::QmiMessage& message)
        : port_(port),
          service_(service),
          message_(message),
          request_{connection, message.packet.message, message.packet.body, message} {
        if (message.extension)
            asked_ = messages::asked(*message.extension);
    }

    ExchangeKey key() const override {
        ExchangeKey key;
        key.service = service_.id();
        key.message = request_.message;
        if (asked_)
            key.request = asked_->request;
        if (asked_ && (message_.extension->file || message_.extension->common))
            key.code = asked_->code;
        return key;
    }

    Answer act() override {
        if (!message_.whole)
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

    wire::Bytes unknown() const override { return packed(service_.refusal(kQmiErrorInvalidMessage)); }

    wire::Bytes cut(wire::View packet, size_t keep) const override {
        auto answer = wire::decode_qmi(packet);
        if (!answer)
            return packet.copy();
        answer->body.size = std::min(keep, answer->body.size);
        return wire::encode(*answer);
    }

    WireLine answer_line(wire::View packet) const override {
        return port_.packet_line(request_.connection, packet, asked_ ? &*asked_ : nullptr);
    }
    WireLine no_answer_line() const override {
        return port_.no_answer_line(request_.connection, message_.packet.transaction);
    }

private:
    wire::Bytes packed(wire::View body) const {
        return wire::encode({wire::kQmiResponse, message_.packet.transaction, request_.message, body});
    }

    QmiPort& port_;
    QmiService& service_;
    const messages::QmiMessage& message_;
    QmiRequest request_;
    std::optional<messages::Asked> asked_;
};

}  // namespace

void read_message(Section& section, const char* key, std::optional<uint32_t> service,
                  std::optional<uint32_t>& message) {
    Section::Named names;
    for (const messages::Message& row : messages::all_messages()) {
        if (service.value_or(row.service) == row.service)
            names.emplace_back(row.name, row.id);
    }
    section.named_integer(key, message, 0, UINT16_MAX, names);
}

std::vector<std::unique_ptr<QmiService>> make_all(Core& core, const std::vector<LoneService>& services) {
    std::vector<std::unique_ptr<QmiService>> made;
    made.reserve(services.size());
    for (const LoneService& service : services)
        made.push_back(service.make(core));
    return made;
}

wire::Writer qmi_result(uint32_t error) {
    wire::Writer value;
    value.u16(error == 0 ? 0 : 1).u16(static_cast<uint16_t>(error));
    wire::Writer body;
    body.tlv(kTlvResult, value.data());
    return body;
}

QmiService::QmiService(Core& core, const char* name)
    : id_(messages::service(name)->id), port_(std::make_unique<QmiPort>(core, *this)) {
    core.add_service(id_, [this](uint16_t message, const wire::Bytes& tlvs) { indicate(message, tlvs); });
}

QmiService::~QmiService() = default;

wire::Bytes QmiService::refusal(uint32_t error) const {
    return qmi_result(error).take();
}

void QmiService::indicate(uint16_t message, const wire::Bytes& body) {
    port_->indicate(message, body);
}

void QmiService::indicate(uint16_t message, const wire::Bytes& body, ConnectionId connection) {
    port_->indicate(message, body, connection);
}

QmiPort::QmiPort(Core& core, QmiService& service)
    : Port(core, "qmi/" + messages::service_name(service.id()),
           {host::qmi_place(service.id()), service.id(), wire::kQmiPacketMax}),
      service_(service) {}

void QmiPort::indicate(uint16_t message, const wire::Bytes& body) {
    for (const ConnectionId connection : connections())
        indicate(message, body, connection);
}

void QmiPort::indicate(uint16_t message, const wire::Bytes& body, ConnectionId connection) {
    const wire::Bytes packet = wire::encode({wire::kQmiIndication, 0, message, body});
    send(connection, packet, packet_line(connection, packet, nullptr));
}

void QmiPort::handle(ConnectionId connection, wire::View bytes) {
    WireLine entry = line(connection, Direction::kToModem);
    const auto packet = wire::decode_qmi(bytes);
    // Without a whole header there is no transaction to answer.
    if (!packet) {
        write_malformed_packet(bytes, entry);
        return log(entry, bytes);
    }
    const messages::QmiMessage message = messages::decode(service_.id(), *packet);
    write_packet(message, nullptr, entry);
    log(entry, bytes);
    // Only requests are answered.
    if (packet->flags != wire::kQmiRequest)
        return;
    QmiExchange exchange(*this, service_, connection, message);
    answer(connection, bytes, entry, exchange);
}

WireLine QmiPort::packet_line(ConnectionId connection, wire::View bytes, const messages::Asked* asked) {
    WireLine entry = line(connection, Direction::kFromModem);
    if (const auto packet = wire::decode_qmi(bytes))
        write_packet(messages::decode(service_.id(), *packet), asked, entry);
    return entry;
}

WireLine QmiPort::no_answer_line(ConnectionId connection, uint16_t transaction) {
    return line(connection, Direction::kFromModem).unanswered("#" + std::to_string(transaction), transaction);
}

}  // namespace handset
