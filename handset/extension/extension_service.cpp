#include "extension_service.h"

#include "common_request.h"
#include "core.h"
#include "modem_files.h"

namespace handset {
namespace {

constexpr uint16_t kMessageSend = 2;
constexpr uint16_t kMessageNotify = 3;

constexpr uint32_t kLastRequest = 5;

constexpr uint8_t kTlvId = 0x01;
constexpr uint8_t kTlvLength = 0x02;
constexpr uint8_t kTlvData = 0x10;

}  // namespace

ExtensionService::ExtensionService(Core& core, ModemFiles& files, CommonRequests& requests)
    : QmiService(core, "extension"), files_(files), requests_(requests) {}

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
    const auto& message = request.decoded.extension;
    if (!message)
        return {refusal(kQmiErrorMalformed)};
    if (message->id > kLastRequest)
        return {refusal(kQmiErrorNotSupported)};
    if (message->file) {
        auto& transfers = transfers_.try_emplace(request.connection, files_).first->second;
        return {encode(0, transfers.handle(*message->file))};
    }
    if (message->common)
        return {encode(0, requests_.handle(*message->common))};
    return {encode(0, message->payload)};
}

wire::Bytes ExtensionService::refusal(uint32_t error) const {
    return encode(error, {});
}

wire::Bytes ExtensionService::payload(wire::View payload) const {
    return encode(0, payload);
}

wire::Bytes ExtensionService::modem_result(const QmiRequest& request, int32_t result) const {
    const auto& message = request.decoded.extension;
    if (message && message->file)
        return encode(0, file_result(result));
    // Whatever else was asked, the answer begins as a common one, with the first word as its code.
    const auto common = message && !message->common ? messages::decode_common_request(message->payload)
                        : message                   ? *message->common
                                                    : CommonRequest();
    return encode(0, encode_common(common.code, {result, {}}));
}

}  // namespace handset
