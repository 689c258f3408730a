#include "common_request.h"

#include <algorithm>

#include "wire_log.h"

namespace handset {
namespace {

constexpr size_t kLongestValue = 496;

const char* form_name(CommonForm form) {
    switch (form) {
        case CommonForm::kGpio:
            return "gpio";
        case CommonForm::kTxAntenna:
            return "tx_antenna";
        case CommonForm::kTlv:
            return "tlv";
        case CommonForm::kDirect:
            break;
    }
    return "direct";
}

}  // namespace

CommonRequest decode_common(wire::View payload) {
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

void describe_common(wire::View payload, WireLine& line) {
    const CommonRequest request = decode_common(payload);
    line.text("form", form_name(request.form)).unsigned_number("code", request.code);
    if (!request.complete)
        line.word("malformed");
    else if (request.form == CommonForm::kTlv)
        line.bytes("value", request.value);
}

wire::Bytes encode_common(uint32_t code, const CommonAnswer& answer) {
    const wire::View value(answer.value.data(), std::min(answer.value.size(), kLongestValue));
    wire::Writer writer;
    writer.u32(0).i32(answer.result).u32(code).u32(static_cast<uint32_t>(value.size)).bytes(value);
    return writer.take();
}

wire::Bytes CommonRequests::handle(wire::View payload) const {
    const CommonRequest request = decode_common(payload);
    if (!request.complete)
        return encode_common(request.code, {kModemMalformed, {}});
    const auto found = handlers_.find({request.form, request.code});
    return encode_common(request.code, found == handlers_.end() ? CommonAnswer() : found->second(request));
}

}  // namespace handset
