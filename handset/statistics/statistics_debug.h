// The counters that the modem's statistics feature keeps of itself, and the diag logs that it cannot parse:
// the common requests that ask for them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "wire.h"

namespace handset {

class CommonRequests;
class Core;
class Section;

struct DebugProfile {
    DebugProfile();

    /// Which counters there are, and their values in the order in which they leave.
    uint8_t version = 4;
    std::vector<uint64_t> counters;

    std::vector<uint64_t> not_supported_logs;
    std::optional<uint16_t> log_num;  // as announced, when it is not their number
    std::optional<wire::Bytes> raw;   // instead of version and counters
};

void read_profile(Section& section, DebugProfile& debug);

/// Answers the two common requests. All are as long as the handset.
struct StatisticsDebug {
    StatisticsDebug(Core& core, CommonRequests& requests, const DebugProfile& debug);
};

}  // namespace handset
