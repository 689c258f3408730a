#include "extension.h"

namespace messages {
namespace {

constexpr size_t kPathMax = 71;

}  // namespace

FileRequest decode_file_request(wire::View payload) {
    wire::Reader reader(payload);
    FileRequest request;
    request.command = reader.u8();
    request.subscription = reader.u8();
    request.item = reader.u16();
    const size_t path_size = reader.u8();
    const wire::View path = reader.bytes(kPathMax);
    if (path_size <= path.size && path_size > 0)
        request.path = {reinterpret_cast<const char*>(path.data), path_size};
    request.total = reader.u32();
    request.chunk_size = reader.u32();
    request.offset = reader.u32();
    request.data = reader.rest();
    request.whole = reader.ok() && request.command >= FileRequest::kNvRead &&
                    request.command <= FileRequest::kEfsDelete && (request.is_nv() || !request.path.empty());
    return request;
}

CommonRequest decode_common_request(wire::View payload) {
    wire::Reader reader(payload);
    CommonRequest request;
    request.code = reader.u32();
    if (request.code == 0) {
        request.form = CommonForm::kGpio;
    } else if (request.code == 1) {
        request.form = CommonForm::kTxAntenna;
    } else if (request.code == 2) {
        request.form = CommonForm::kTlv;
        reader.u32();
        request.code = reader.u32();
        request.value = reader.bytes(reader.u32());
    }
    request.complete = reader.ok();
    if (request.form != CommonForm::kTlv)
        request.value = reader.rest();
    return request;
}

std::optional<Extension> decode_extension(uint8_t flags, wire::View body) {
    constexpr uint8_t kTlvId = 0x01;
    constexpr uint8_t kTlvLength = 0x02;
    constexpr uint8_t kTlvData = 0x10;

    Extension message;
    bool has_id = false;
    bool has_length = false;
    std::optional<wire::View> data;
    wire::TlvReader reader(body);
    while (const auto tlv = reader.next()) {
        if (tlv->type == kTlvId) {
            has_id = tlv->value.size == 4;
            message.id = wire::Reader(tlv->value).u32();
        } else if (tlv->type == kTlvLength) {
            has_length = tlv->value.size == 4;
            message.data_len = wire::Reader(tlv->value).u32();
        } else if (tlv->type == kTlvData) {
            data = tlv->value;
        }
    }
    if (!reader.ok() || !has_id || !has_length)
        return std::nullopt;
    if (data && (data->size != message.data_len || data->size > Extension::kPayloadMax))
        return std::nullopt;
    message.payload = data.value_or(wire::View());
    if (flags == wire::kQmiRequest && message.id == kFileAccess)
        message.file = decode_file_request(message.payload);
    if (flags == wire::kQmiRequest && message.id == kCommon)
        message.common = decode_common_request(message.payload);
    return message;
}

Asked asked(const Extension& request) {
    Asked asked;
    asked.request = request.id;
    if (request.file)
        asked.code = request.file->command;
    if (request.common) {
        asked.form = request.common->form;
        asked.code = request.common->code;
    }
    return asked;
}

}  // namespace messages
