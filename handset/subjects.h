// The one list of what the handset is made of. A subject is given the core, its own section of the profile,
// and those of the others that it speaks to, which stand above it.
#pragma once

#include <vector>

#include "at_channel.h"
#include "cards.h"
#include "common_request.h"
#include "core.h"
#include "diag_port.h"
#include "diag_responder.h"
#include "dm_port.h"
#include "extension_service.h"
#include "fault.h"
#include "maintenance.h"
#include "modem_files.h"
#include "profile_section.h"
#include "sar_service.h"
#include "statistics_debug.h"
#include "statistics_service.h"
#include "uim_service.h"
#include "uim_sim_access.h"

namespace handset {

/// What a profile tells them; each declares its own section beside its code.
struct Profile {
    ModemProfile modem;
    EfsProfile efs;
    CardsProfile cards;
    EuiccProfile euicc;
    UimProfile uim;
    StatisticsProfile statistics;
    DebugProfile debug;
    SarProfile sar;
    AtProfile at;
    DiagProfile diag;
    std::vector<Fault> faults;
    std::string text = "{}\n";  // as it was written
};

inline void read_profile(Section& root, Profile& profile) {
    constexpr size_t kMostFaults = 1000;
    root.section("modem", profile.modem);
    root.section("efs", profile.efs);
    root.section("cards", profile.cards);
    root.section("euicc", profile.euicc);
    root.section("uim", profile.uim);
    root.section("statistics", profile.statistics);
    root.section("debug", profile.debug);
    root.section("sar", profile.sar);
    root.section("at", profile.at);
    root.section("diag", profile.diag);
    root.list("faults", kMostFaults,
              [&profile](Section& fault) { read_profile(fault, profile.faults.emplace_back()); });
}

struct Subjects {
    Subjects(Core& core, const Profile& profile)
        : files(core.folder(), profile.efs),
          extension(core, files, requests),
          cards(core, requests, profile.cards),
          slots(core, requests, cards, profile.euicc),
          uim(core, slots, profile.uim),
          statistics(core, profile.statistics),
          sar(core, profile.sar),
          sim(slots),
          at(core, profile.at, sim),
          diag_answers(profile.diag),
          diag(core, diag_answers, profile.diag.streams),
          dm(core, diag_answers, profile.diag.logs) {
        let_change(core, diag_answers);
        add_maintenance(core, requests, files);
        add_statistics_debug(core, requests, profile.debug);
    }

    ModemFiles files;
    CommonRequests requests;
    ExtensionService extension;
    Cards cards;
    UimSlots slots;
    UimService uim;
    StatisticsService statistics;
    SarService sar;
    UimSimAccess sim;
    AtChannel at;
    DiagAnswers diag_answers;  // of both ports
    DiagPort diag;
    DmPort dm;
};

}  // namespace handset
