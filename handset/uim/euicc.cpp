#include "euicc.h"

#include "card_store.h"
#include "core.h"
#include "hex_text.h"

namespace handset {

Euicc::Euicc(Core& core, const EuiccProfile& profile)
    : core_(core),
      profile_(profile),
      memory_(core, profile),
      isd_r_({memory_, profile, [this](bool refresh) { profile_changed(refresh); }}),
      card_(content(), &isd_r_) {
    std::string eid;
    append_hex(eid, profile_.eid);
    core_.state().set("euicc", "eid", eid);
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
