// File control parameters: what a card tells of a file that was selected.
#pragma once

#include "card_files.h"
#include "card_pin.h"
#include "wire.h"

namespace handset {

/// The template with tag 62.
wire::Bytes file_control_parameters(const CardFiles& files, size_t place, const CardPin& pin);

/// The template with tag 6F that a name alone makes.
wire::Bytes name_template(wire::View name);

}  // namespace handset
