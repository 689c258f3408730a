// What a profile makes the UIM service say unasked.
#pragma once

#include <cstdint>
#include <vector>

#include "wire.h"

namespace handset {

class Section;

struct UimIndication {
    /// Sent to all that are connected before each request of this message is answered.
    uint16_t before = 0;
    uint16_t id = 97;
    /// Whatever they are; those of indication 97 are two 32-bit words.
    wire::Bytes tlvs = {0x01, 4, 0, 0, 0, 0, 0, 0x02, 4, 0, 0, 0, 0, 0};
};

struct UimProfile {
    std::vector<UimIndication> indications;
};

void read_profile(Section& section, UimProfile& uim);

}  // namespace handset
