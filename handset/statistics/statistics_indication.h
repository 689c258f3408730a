// What the statistics service says without being asked: the indications that a profile wants, and
// on what occasion.
#pragma once

#include <cstdint>

#include "wire.h"

namespace handset {

class Section;

enum class StatisticsOccasion { kConnection, kFeature, kValues };

struct StatisticsIndication {
    /// A new connection, which alone is told; a request of the feature or of values, before its answer.
    StatisticsOccasion on = StatisticsOccasion::kFeature;
    uint16_t message = 0;
    wire::Bytes body;
};

void read_profile(Section& section, StatisticsIndication& indication);

}  // namespace handset
