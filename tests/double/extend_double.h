// The extension service behind the double: its one message as bytes.
#pragma once

#include <algorithm>
#include <vector>

#include "little_endian.h"
#include "platform_double.h"

/// A response of the service with `data`; data_len says what it claims to be.
inline void answer_extend(void* response, uint32_t id, uint32_t data_len, const std::vector<uint8_t>& data) {
    auto* bytes = static_cast<uint8_t*>(response);
    put_le(bytes, id);
    put_le(bytes + 4, data_len);
    bytes[8] = data.empty() ? 0 : 1;
    std::copy(data.begin(), data.end(), bytes + 9);
}

inline void answer_extend(void* response, const std::vector<uint8_t>& data) {
    answer_extend(response, 0, static_cast<uint32_t>(data.size()), data);
}

inline uint32_t request_id_of(const QmiRequest& request) {
    return get_le<uint32_t>(request.bytes.data());
}

/// The payload bytes that a request carries.
inline std::vector<uint8_t> payload_of(const QmiRequest& request) {
    const auto first = request.bytes.begin() + 9;
    return {first, first + get_le<uint32_t>(request.bytes.data() + 4)};
}
