// What a profile says of the diag interface: the processors behind it, what the modem answers to commands and
// when, and what it sends by itself.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "profile_section.h"
#include "wire.h"

namespace handset {

struct DiagTiming {
    std::chrono::milliseconds delay{0};  // from the command to the response
    std::chrono::milliseconds gap{0};    // between the pieces of a response
    bool before_answer = false;          // the op that sent the command is answered after the response
};

/// The response to commands that begin with certain bytes.
struct DiagResponse {
    wire::Bytes command;
    DiagTiming timing;
    bool silent = false;               // none comes
    std::optional<uint8_t> processor;  // that it comes from; absent: the one that was asked
    std::optional<wire::Bytes> bytes;  // absent: the peripheral's own
    std::vector<uint64_t> pieces;      // DCI road: sizes, all bytes together; empty: as the modem does
};

/// Events that the modem sends by itself once an op has succeeded.
struct DiagStream {
    uint8_t event = wire::kDiagEventLog;
    uint8_t after = wire::kDiagDciStreams;
    wire::Bytes bytes;
    std::chrono::milliseconds delay{0};
    std::chrono::milliseconds every{0};
    uint32_t count = 1;
};

/// A log that the diagnostic port sends while its reader's mask lets it through.
struct DiagLog {
    static constexpr size_t kHeaderSize = 12;  // in front of its bytes: length, code, time
    uint16_t code = 0;
    wire::Bytes bytes;
    std::chrono::milliseconds every{0};
    uint32_t count = 1;
};

/// How the modem answers; can change while it runs.
struct DiagAnswers {
    /// Bit n: there is a processor n + 1.
    uint16_t remote_mask = 0;
    /// Whether the modem stands in the DCI support list. It answers all the same.
    bool mpss_up = true;
    /// Results of ops by number. Other than success they mean that the op has no effect.
    std::map<uint8_t, int32_t> results;
    DiagTiming timing;
    std::vector<DiagResponse> responses;
};

struct DiagProfile : DiagAnswers {
    std::vector<DiagStream> streams;
    std::vector<DiagLog> logs;
};

void read_profile(Section& section, DiagProfile& diag);

/// Takes what a section has in place of these; its responses in place of all.
void read_answers(Section& section, DiagAnswers& answers);

}  // namespace handset
