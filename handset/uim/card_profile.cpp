#include "card_profile.h"

#include "profile_section.h"
#include "usim.h"

namespace handset {
namespace {

constexpr size_t kPinMin = 4;
constexpr size_t kPinMax = 8;

void read_code(Section& section, const char* key, std::string& code, size_t shortest) {
    section.text(key, code, kPinMax);
    if (code.size() < shortest || code.find_first_not_of("0123456789") != std::string::npos)
        section.fail(key, "\"" + code + "\" is not a code of " +
                              (shortest == kPinMax ? "" : std::to_string(shortest) + " to ") +
                              std::to_string(kPinMax) + " digits");
}

}  // namespace

void read_files(Section& section, CardProfile& card) {
    CardFiles sample = usim_files(std::string(19, '0'), std::string(15, '0'), "");
    section.object("files", [&](Section& files) {
        for (const std::string& key : files.keys()) {
            wire::Bytes content;
            files.bytes(key.c_str(), content, CardFiles::kContentMax);
            const auto path = parse_path(key);
            if (!path || !sample.put(*path, content))
                files.fail(key, "no place for a file (\"3F00/2FE2\", \"3F00/7FFF/6F46\")");
            card.files[*path] = content;
        }
    });
}

void read_card(Section& section, CardProfile& card) {
    read_files(section, card);
    read_code(section, "pin", card.pin, kPinMin);
    read_code(section, "puk", card.puk, kPinMax);
    section.boolean("pin_enabled", card.pin_enabled);
}

}  // namespace handset
