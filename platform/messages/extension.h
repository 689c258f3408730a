// Payloads of the extension service: what its requests ask for, and how the answers to them begin. Views are
// of the packet that was decoded.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "messages.h"
#include "wire.h"

namespace messages {

/// Request id 2: NV and EFS access.
struct FileRequest {
    enum Number : uint8_t { kNvRead = 1, kNvWrite, kNvDelete, kEfsRead, kEfsWrite, kEfsDelete };

    uint8_t command = 0;
    uint8_t subscription = 0;
    uint16_t item = 0;
    std::string_view path;
    uint32_t total = 0;
    uint32_t chunk_size = 0;
    uint32_t offset = 0;
    wire::View data;     // all that follows the fixed part
    bool whole = false;  // false: cut short, an unknown command, or no path where one is needed

    bool is_nv() const { return command <= kNvDelete; }
};
FileRequest decode_file_request(wire::View payload);

/// Request id 4.
struct CommonRequest {
    CommonForm form = CommonForm::kDirect;
    uint32_t code = 0;     // GPIO and TX antenna: the first word
    wire::View value;      // t/l/v: the value; else what follows the first word
    bool complete = true;  // false: the payload ends before what it announces
};
CommonRequest decode_common_request(wire::View payload);

/// A body of the service.
struct Extension {
    static constexpr size_t kPayloadMax = 512;

    uint32_t id = 0;
    uint32_t data_len = 0;
    wire::View payload;  // empty when the message brings none
    // Of a request with these ids.
    std::optional<FileRequest> file;
    std::optional<CommonRequest> common;
};

/// Nothing when the body is not whole, or its payload has another length than it says.
std::optional<Extension> decode_extension(uint8_t flags, wire::View body);

/// What a request asks for, by which its answer is understood.
struct Asked {
    uint32_t request = 0;
    CommonForm form = CommonForm::kDirect;
    uint32_t code = 0;
};
Asked asked(const Extension& request);

}  // namespace messages
