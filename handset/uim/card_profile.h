// What a profile says of a card, wherever it is: files and PIN.
#pragma once

#include <map>
#include <string>

#include "card_files.h"
#include "wire.h"

namespace handset {

class Section;

struct CardProfile {
    /// What files contain, beside those that every USIM has or in their place.
    std::map<FilePath, wire::Bytes> files;
    std::string pin = "1234";
    std::string puk = "12345678";
    bool pin_enabled = false;
};

/// The key `files`.
void read_files(Section& section, CardProfile& card);

/// That, `pin`, `puk` and `pin_enabled`.
void read_card(Section& section, CardProfile& card);

}  // namespace handset
