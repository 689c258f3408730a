#include "euicc.h"

#include <algorithm>
#include <sstream>

#include "core.h"
#include "hex_text.h"
#include "profile_section.h"
#include "status_words.h"

namespace handset {
namespace {

constexpr size_t kProfilesMax = 20;
constexpr uint32_t kLongestEidTimeMs = 600'000;

// What the state file says.
constexpr char kSubject[] = "euicc";
constexpr char kWiring[] = "slot 2 wired";
constexpr char kProfiles[] = "profiles";
constexpr char kNone[] = "none";

constexpr uint8_t kIsdR[] = {0xA0, 0x00, 0x00, 0x05, 0x59, 0x10, 0x10, 0xFF,
                             0xFF, 0xFF, 0xFF, 0x89, 0x00, 0x00, 0x01, 0x00};

constexpr uint8_t kStoreData = 0xE2;
constexpr uint8_t kLastBlock = 0x91;

// eUICC memory reset: a tag of two bytes, then a bit string of options.
constexpr uint8_t kMemoryReset[] = {0xBF, 0x34};
constexpr uint8_t kDeleteOperationalProfiles = 0x80;
constexpr uint8_t kResetDone = 0;
constexpr uint8_t kNothingToDelete = 1;

bool is_iccid(const std::string& text) {
    return text.size() >= 18 && text.size() <= 20 &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

bool starts_with(wire::View bytes, wire::View start) {
    return bytes.size >= start.size && std::equal(start.data, start.data + start.size, bytes.data);
}

}  // namespace

void read_profile(Section& section, EuiccProfile& euicc) {
    section.boolean("wired", euicc.wired);
    section.bytes("eid", euicc.eid, UINT8_MAX);
    auto time = static_cast<uint32_t>(euicc.eid_time.count());
    section.integer<uint32_t>("eid_ms", time, 0, kLongestEidTimeMs);
    euicc.eid_time = std::chrono::milliseconds(time);
    section.texts("profiles", euicc.profiles, kProfilesMax);
    for (const std::string& iccid : euicc.profiles) {
        if (!is_iccid(iccid))
            section.fail("profiles", "\"" + iccid + "\" is not an ICCID of 18 to 20 digits");
    }
}

Euicc::Euicc(Core& core, const EuiccProfile& profile)
    : core_(core), profile_(profile), wired_(profile.wired), profiles_(profile.profiles) {
    if (const auto wiring = core_.state().get(kSubject, kWiring))
        wired_ = *wiring == "yes";
    if (const auto list = core_.state().get(kSubject, kProfiles)) {
        profiles_.clear();
        std::istringstream words(*list);
        for (std::string iccid; words >> iccid && iccid != kNone;)
            profiles_.push_back(iccid);
    }
    keep();
    std::string eid;
    append_hex(eid, profile_.eid);
    core_.state().set(kSubject, "eid", eid);
}

void Euicc::wire(bool wired) {
    wired_ = wired;
    keep();
}

void Euicc::keep() const {
    std::string list;
    for (const std::string& iccid : profiles_)
        list += (list.empty() ? "" : " ") + iccid;
    core_.state().set(kSubject, kWiring, wired_ ? "yes" : "no");
    core_.state().set(kSubject, kProfiles, list.empty() ? kNone : list);
}

bool Euicc::is_isd_r(wire::View aid) {
    return aid.size == sizeof kIsdR && starts_with(aid, {kIsdR, sizeof kIsdR});
}

// The only command it knows is a memory reset in a single block of data: its header, the data's length, the
// data, and one byte for the length of the response, which may be missing.
wire::Bytes Euicc::transmit(wire::View apdu) {
    wire::Reader reader(apdu);
    const int command_class = reader.u8() & ~kChannelBits;
    if (reader.u8() != kStoreData || command_class != kClassGlobalPlatform)
        return status_words(kSwUnknownInstruction);
    const uint8_t block_kind = reader.u8();
    const uint8_t block = reader.u8();
    const wire::View data = reader.bytes(reader.u8());
    if (!reader.ok() || reader.left() > 1)
        return status_words(kSwWrongLength);
    if (block_kind != kLastBlock || block != 0 || !starts_with(data, {kMemoryReset, sizeof kMemoryReset}))
        return status_words(kSwUnknownInstruction);
    return reset_memory(data);
}

wire::Bytes Euicc::reset_memory(wire::View command) {
    constexpr uint8_t kBitString[] = {0x04, 0x82, 0x02};
    wire::Reader reader(command);
    reader.bytes(sizeof kMemoryReset);
    const wire::View head = reader.bytes(sizeof kBitString);
    reader.u8();  // the number of unused bits
    const uint8_t options = reader.u8();
    if (!reader.ok() || reader.left() > 0 || !starts_with(head, {kBitString, sizeof kBitString}))
        return status_words(kSwWrongLength);

    const bool deletes = (options & kDeleteOperationalProfiles) != 0 && has_profiles();
    if (deletes) {
        profiles_.clear();
        keep();
        core_.log_event("profiles of the eUICC deleted");
    }
    wire::Writer response;
    response.bytes({kMemoryReset, sizeof kMemoryReset})
        .u8(3)
        .u8(0x80)
        .u8(1)
        .u8(deletes ? kResetDone : kNothingToDelete)
        .bytes(status_words(kSwOk));
    return response.take();
}

}  // namespace handset
