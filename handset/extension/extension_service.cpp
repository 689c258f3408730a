#include "extension_service.h"

#include "common_request.h"
#include "core.h"
#include "modem_files.h"

namespace handset {
namespace {

constexpr uint16_t kMessageSend = 2;
constexpr uint16_t kMessageNotify = 3;

constexpr uint32_t kRequestFileAccess = 2;
constexpr uint32_t kRequestCommon = 4;
constexpr uint32_t kLastRequest = 5;

constexpr size_t kPayloadMax = 512;

constexpr uint8_t kTlvId = 0x01;
constexpr uint8_t kTlvLength = 0x02;
constexpr uint8_t kTlvData = 0x10;

}  // namespace

ExtensionService::ExtensionService(Core& core, ModemFiles& files, CommonRequests& requests)
    : QmiService(core, kExtensionServiceId), files_(files), requests_(requests) {}

std::optional<ExtensionService::Message> ExtensionService::decode(wire::View body) {
    const auto id = wire::find_tlv(body, kTlvId);
    const auto length = wire::find_tlv(body, kTlvLength);
    if (!id || id->size != 4 || !length || length->size != 4)
        return std::nullopt;
    Message message;
    message.id = wire::Reader(*id).u32();
    message.data_len = wire::Reader(*length).u32();
    if (const auto data = wire::find_tlv(body, kTlvData)) {
        if (data->size != message.data_len || data->size > kPayloadMax)
            return std::nullopt;
        message.payload = *data;
    }
    return message;
}

wire::Bytes ExtensionService::encode(uint32_t id, wire::View payload) {
    wire::Writer body;
    body.u8(kTlvId).u16(4).u32(id);
    body.u8(kTlvLength).u16(4).u32(static_cast<uint32_t>(payload.size));
    if (payload.size > 0)
        body.tlv(kTlvData, payload);
    return body.take();
}

QmiAnswer ExtensionService::handle(const QmiRequest& request) {
    if (request.message != kMessageSend && request.message != kMessageNotify)
        return {refusal(kQmiErrorInvalidMessage)};
    const auto message = decode(request.body);
    if (!message)
        return {refusal(kQmiErrorMalformed)};
    if (message->id > kLastRequest)
        return {refusal(kQmiErrorNotSupported)};
    if (message->id == kRequestFileAccess) {
        auto& transfers = transfers_.try_emplace(request.connection, files_).first->second;
        return {encode(0, transfers.handle(message->payload))};
    }
    if (message->id == kRequestCommon)
        return {encode(0, requests_.handle(message->payload))};
    return {encode(0, message->payload)};
}

wire::Bytes ExtensionService::refusal(uint32_t error) const {
    return encode(error, {});
}

wire::Bytes ExtensionService::payload(wire::View payload) const {
    return encode(0, payload);
}

wire::Bytes ExtensionService::modem_result(const QmiRequest& request, int32_t result) const {
    const auto message = decode(request.body);
    if (message && message->id == kRequestFileAccess)
        return encode(0, file_result(result));
    return encode(0, encode_common(message ? decode_common(message->payload).code : 0, {result, {}}));
}

void ExtensionService::complete(ExchangeKey& key, const QmiRequest& request) const {
    const auto message = decode(request.body);
    if (!message)
        return;
    key.request = message->id;
    if (message->id == kRequestFileAccess)
        key.code = file_command(message->payload);
    if (message->id == kRequestCommon)
        key.code = decode_common(message->payload).code;
}

void ExtensionService::indicate_extension(uint32_t id, wire::View payload) {
    indicate(kMessageNotify, encode(id, payload));
}

std::string ExtensionService::message_name(uint16_t message) const {
    return message == kMessageSend ? "send" : message == kMessageNotify ? "notify" : "message";
}

void ExtensionService::describe(wire::QmiFlags kind, uint16_t message, wire::View body,
                                WireLine& line) const {
    const auto decoded = decode(body);
    if (!decoded)
        return QmiService::describe(kind, message, body, line);
    line.number("id", decoded->id).number("data_len", decoded->data_len);
    if (kind == wire::kQmiRequest && decoded->id == kRequestFileAccess)
        FileAccess::describe(decoded->payload, line);
    if (kind == wire::kQmiRequest && decoded->id == kRequestCommon)
        describe_common(decoded->payload, line);
    if (decoded->payload.size > 0)
        line.bytes("data", decoded->payload);
}

}  // namespace handset
