// What a profile says of the eUICC.
#include <algorithm>

#include "card_store.h"
#include "euicc_memory.h"
#include "profile_section.h"

namespace handset {
namespace {

constexpr size_t kProfilesMax = 20;
constexpr uint32_t kLongestEidTimeMs = 600'000;
constexpr size_t kAddressMax = 128;
constexpr size_t kNameMax = 64;
constexpr size_t kProviderMax = 32;
constexpr size_t kAidMin = 5;
constexpr size_t kAidMax = 16;

bool is_iccid(const std::string& text) {
    return text.size() >= 18 && text.size() <= 20 &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

// The AID of a profile that has none of its own, by its place in the list.
wire::Bytes default_aid(size_t index) {
    return {0xA0, 0x00, 0x00, 0x05, 0x59, 0x10, 0x10, 0xFF,
            0xFF, 0xFF, 0xFF, 0x89, 0x00, 0x00, 0x11, static_cast<uint8_t>(index)};
}

StoredProfile& add(EuiccProfile& euicc, const std::string& iccid) {
    StoredProfile& profile = euicc.profiles.emplace_back();
    profile.iccid = iccid;
    profile.aid = default_aid(euicc.profiles.size() - 1);
    profile.name = "profile " + std::to_string(euicc.profiles.size());
    return profile;
}

void read_stored(Section& section, EuiccProfile& euicc) {
    std::string iccid;
    section.require("iccid");
    section.text("iccid", iccid, 20);
    if (!is_iccid(iccid))
        section.fail("iccid", "\"" + iccid + "\" is not an ICCID of 18 to 20 digits");
    StoredProfile& profile = add(euicc, iccid);
    section.bytes("aid", profile.aid, kAidMax);
    if (profile.aid.size() < kAidMin)
        section.fail("aid", "an AID has 5 to 16 bytes");
    section.choice<bool>("state", profile.enabled, {{"enabled", true}, {"disabled", false}});
    section.choice<ProfileClass>("class", profile.profile_class,
                                 {{"test", ProfileClass::kTest},
                                  {"provisioning", ProfileClass::kProvisioning},
                                  {"operational", ProfileClass::kOperational}});
    section.text("name", profile.name, kNameMax);
    section.text("provider", profile.provider, kProviderMax);
    section.text("nickname", profile.nickname, kNameMax);
    read_files(section, profile.card);
}

// Each is told by its ICCID and by its AID, and one at most is enabled.
void check_profiles(const Section& section, const EuiccProfile& euicc) {
    const auto& profiles = euicc.profiles;
    for (size_t i = 0; i < profiles.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            if (profiles[i].iccid == profiles[j].iccid)
                section.fail("profiles", "the ICCID \"" + profiles[i].iccid + "\" stands twice");
            if (profiles[i].aid == profiles[j].aid)
                section.fail("profiles", "two profiles have the same AID");
            if (profiles[i].enabled && profiles[j].enabled)
                section.fail("profiles", "two profiles are enabled");
        }
    }
}

}  // namespace

EuiccProfile::EuiccProfile() {
    add(*this, with_check_digit("890010123456789012")).enabled = true;
}

void read_profile(Section& section, EuiccProfile& euicc) {
    section.boolean("wired", euicc.wired);
    section.bytes("eid", euicc.eid, UINT8_MAX);
    auto time = static_cast<uint32_t>(euicc.eid_time.count());
    section.integer<uint32_t>("eid_ms", time, 0, kLongestEidTimeMs);
    euicc.eid_time = std::chrono::milliseconds(time);
    section.text("dp_address", euicc.dp_address, kAddressMax);
    section.text("ds_address", euicc.ds_address, kAddressMax);
    section.text("notification_address", euicc.notification_address, kAddressMax);
    if (!section.has("profiles"))
        return;
    euicc.profiles.clear();
    std::optional<size_t> first_text;
    section.texts_or_objects(
        "profiles", kProfilesMax,
        [&](const std::string& iccid) {
            if (!is_iccid(iccid))
                section.fail("profiles", "\"" + iccid + "\" is not an ICCID of 18 to 20 digits");
            first_text = first_text.value_or(euicc.profiles.size());
            add(euicc, iccid);
        },
        [&](Section& entry) { read_stored(entry, euicc); });
    const bool any_enabled = std::any_of(euicc.profiles.begin(), euicc.profiles.end(),
                                         [](const StoredProfile& profile) { return profile.enabled; });
    if (first_text && !any_enabled)
        euicc.profiles[*first_text].enabled = true;
    check_profiles(section, euicc);
}

}  // namespace handset
