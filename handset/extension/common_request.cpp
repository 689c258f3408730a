#include "common_request.h"

#include <algorithm>

namespace handset {
namespace {

constexpr size_t kLongestValue = 496;

}  // namespace

wire::Bytes encode_common(uint32_t code, const CommonAnswer& answer) {
    const wire::View value(answer.value.data(), std::min(answer.value.size(), kLongestValue));
    wire::Writer writer;
    writer.u32(0).i32(answer.result).u32(code).u32(static_cast<uint32_t>(value.size)).bytes(value);
    return writer.take();
}

wire::Bytes CommonRequests::handle(const CommonRequest& request) const {
    if (!request.complete)
        return encode_common(request.code, {kModemMalformed, {}});
    const auto found = handlers_.find({request.form, request.code});
    return encode_common(request.code, found == handlers_.end() ? CommonAnswer() : found->second(request));
}

}  // namespace handset
