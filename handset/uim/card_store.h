// Where the handset keeps what its cards remember: a file each in its folder, replaced as a whole.
#pragma once

#include <optional>
#include <string>

#include "card.h"
#include "card_profile.h"

namespace handset {

class Core;

/// A USIM with its profile's files in it.
CardContent usim_content(Core& core, const std::string& name, const std::string& iccid,
                         const std::string& provider, const CardProfile& profile);

/// No USIM, and no file but the master file.
CardContent bare_content();

/// A file of the handset's cards.
std::optional<wire::Bytes> load_card_memory(Core& core, const std::string& name);
bool keep_card_memory(Core& core, const std::string& name, wire::View memory);
void drop_card_memory(Core& core, const std::string& name);

/// Adds the check digit.
std::string with_check_digit(const std::string& digits);

}  // namespace handset
