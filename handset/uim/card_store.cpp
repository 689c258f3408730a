#include "card_store.h"

#include <unistd.h>

#include <cstring>

#include "core.h"
#include "error.h"
#include "usim.h"

namespace handset {
namespace {

constexpr uint8_t kTlvIccid = 2;
constexpr size_t kImsiDigits = 10;  // that differ between cards

std::string place_of(Core& core, const std::string& name) {
    return core.folder().at("cards/" + name);
}

}  // namespace

std::optional<wire::Bytes> load_card_memory(Core& core, const std::string& name) {
    int error = 0;
    return read_file(place_of(core, name), error);
}

bool keep_card_memory(Core& core, const std::string& name, wire::View memory) {
    const int error = core.folder().replace(place_of(core, name), memory);
    if (error != 0)
        complain("cannot keep what the card " + name + " remembers: " + strerror(error));
    return error == 0;
}

void drop_card_memory(Core& core, const std::string& name) {
    unlink(place_of(core, name).c_str());
}

CardContent usim_content(Core& core, const std::string& name, const std::string& iccid,
                         const std::string& provider, const CardProfile& profile) {
    const std::string imsi = "00101" + iccid.substr(iccid.size() - kImsiDigits);
    CardContent content{
        usim_files(iccid, imsi, provider), {profile.pin, profile.puk, profile.pin_enabled}, nullptr, {}};
    for (const auto& file : profile.files)
        content.files.put(file.first, file.second);

    // Another card in the slot has another ICCID, and remembers nothing of this one.
    const wire::Bytes identity = content.files.content({kIdMaster, kIdIccid}).value_or(wire::View()).copy();
    content.keep = [&core, name, identity](const wire::Bytes& memory) {
        wire::Writer writer;
        writer.tlv(kTlvIccid, identity).bytes(memory);
        return keep_card_memory(core, name, writer.data());
    };
    const wire::Bytes kept = load_card_memory(core, name).value_or(wire::Bytes());
    if (const auto whose = wire::find_tlv(kept, kTlvIccid); whose && whose->copy() == identity)
        content.memory = kept;
    return content;
}

CardContent bare_content() {
    return {CardFiles(), CardPin("", "", false), [](const wire::Bytes&) { return true; }, {}};
}

std::string with_check_digit(const std::string& digits) {
    unsigned sum = 0;
    for (size_t i = 0; i < digits.size(); ++i) {
        const auto digit = static_cast<unsigned>(digits[digits.size() - 1 - i] - '0');
        const unsigned weighed = i % 2 == 0 ? 2 * digit : digit;
        sum += weighed / 10 + weighed % 10;
    }
    return digits + static_cast<char>('0' + (10 - sum % 10) % 10);
}

}  // namespace handset
