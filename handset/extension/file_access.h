// NV and EFS access, request id 2 of the extension service: its payloads, and the transfers that one
// connection has under way.
#pragma once

#include <cstdint>
#include <string>

#include "extension.h"
#include "modem_files.h"
#include "wire.h"

namespace handset {

/// The transfers of one connection; they end with it. A chunked write is collected here and becomes a file
/// only with its last byte; a chunked read goes on in the content that its first chunk found.
class FileAccess {
public:
    explicit FileAccess(ModemFiles& files) : files_(files) {}

    /// Carries out one request and returns its answer's payload.
    wire::Bytes handle(const messages::FileRequest& request);

private:
    struct Transfer {
        std::string name;
        wire::Bytes content;
    };

    using Request = messages::FileRequest;

    /// `name` is that of the file or item.
    wire::Bytes read(const Request& request, const std::string& name);
    ModemResult write(const Request& request, const std::string& name);
    ModemResult write_chunk(const Request& request, const std::string& name);

    ModemFiles& files_;
    Transfer reading_;
    Transfer writing_;
};

/// An answer's payload with a result and nothing else.
wire::Bytes file_result(int32_t result);

}  // namespace handset
