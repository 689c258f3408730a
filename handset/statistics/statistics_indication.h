// What the statistics service says without being asked: the indications that a profile wants, and on what
// occasion.
#pragma once

#include <cstdint>
#include <string>

#include "wire.h"

namespace handset {

class Section;
class WireLine;

enum class StatisticsOccasion { kConnection, kFeature, kValues };

struct StatisticsIndication {
    /// A new connection, which alone is told; a request of the feature or of values, before its answer.
    StatisticsOccasion on = StatisticsOccasion::kFeature;
    uint16_t message = 0;
    wire::Bytes body;
};

void read_profile(Section& section, StatisticsIndication& indication);

/// "message" for a number that is none of the four.
std::string indication_name(uint16_t message);

/// The fields of an indication, for the wire log. False, and nothing is added, when the body is not what the
/// message promises.
bool describe_indication(uint16_t message, wire::View body, WireLine& line);

}  // namespace handset
