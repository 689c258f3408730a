// NV and EFS access, request id 2 of the extension service: its payloads, and the transfers that one
// connection has under way.
#pragma once

#include <cstdint>
#include <string>

#include "modem_files.h"
#include "wire.h"

namespace handset {

class WireLine;

/// The transfers of one connection; they end with it. A chunked write is collected here and becomes a file
/// only with its last byte; a chunked read goes on in the content that its first chunk found.
class FileAccess {
public:
    explicit FileAccess(ModemFiles& files) : files_(files) {}

    /// Carries out one request and returns its answer's payload.
    wire::Bytes handle(wire::View payload);

    /// The fields of a request's payload, for the wire log.
    static void describe(wire::View payload, WireLine& line);

private:
    struct Request;
    struct Transfer {
        std::string name;
        wire::Bytes content;
    };

    wire::Bytes read(const Request& request);
    ModemResult write(const Request& request);
    ModemResult write_chunk(const Request& request);

    ModemFiles& files_;
    Transfer reading_;
    Transfer writing_;
};

/// The inner command of a request's payload.
uint8_t file_command(wire::View payload);

/// An answer's payload with a result and nothing else.
wire::Bytes file_result(int32_t result);

}  // namespace handset
