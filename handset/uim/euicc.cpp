#include "euicc.h"

#include "card_store.h"
#include "core.h"
#include "hex_text.h"
#include "profile_section.h"

namespace handset {

Euicc::Euicc(Core& core, const EuiccProfile& profile)
    : core_(core),
      profile_(profile),
      memory_(core, profile_),
      isd_r_({memory_, profile_, [this](bool refresh) { profile_changed(refresh); }}),
      card_(content(), &isd_r_) {
    core_.control().add_setting("euicc", [this](Section& section) { return read_change(section); });
    show();
}

void Euicc::show() {
    std::string eid;
    append_hex(eid, profile_.eid);
    core_.state().set("euicc", "eid", eid);
}

std::function<void()> Euicc::read_change(Section& section) {
    constexpr uint32_t kLongestEidTimeMs = 600'000;
    wire::Bytes eid = profile_.eid;
    auto time = static_cast<uint32_t>(profile_.eid_time.count());
    section.bytes("eid", eid, UINT8_MAX);
    section.integer<uint32_t>("eid_ms", time, 0, kLongestEidTimeMs);
    return [this, eid, time] {
        profile_.eid = eid;
        profile_.eid_time = std::chrono::milliseconds(time);
        show();
    };
}

CardContent Euicc::content() {
    const StoredProfile* profile = memory_.enabled();
    if (profile == nullptr)
        return bare_content();
    return usim_content(core_, "profile-" + profile->iccid, profile->iccid, profile->provider, profile->card);
}

void Euicc::profile_changed(bool refresh) {
    card_.exchange(content());
    core_.loop().after(EventLoop::Milliseconds(0), [this, refresh] {
        if (change_action_)
            change_action_(refresh);
    });
}

}  // namespace handset
