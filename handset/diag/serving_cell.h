// The record of the serving cell that the modem's logs carry, in each of its four layouts: a version, then
// fields at bit positions of the layout's own.
#pragma once

#include "wire.h"

namespace handset {

class Section;

/// The record with the fields that stand in the section, by the names that the tool prints; what is absent is
/// the cell that the handset's other measurements are of.
wire::Bytes read_serving_cell(Section& section);

}  // namespace handset
