// The one list of what the handset is made of. A subject is given the core, its own section of the profile,
// and those of the others that it speaks to, which stand above it.
#pragma once

#include <memory>
#include <vector>

#include "antenna.h"
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
#include "qmi_service.h"
#include "statistics_debug.h"
#include "uim_service.h"
#include "uim_sim_access.h"

namespace handset {

// The services to which no other subject speaks. Each is whole in the file of its name.
LoneService statistics_service();
LoneService sar_service();

/// What a profile tells them; each declares its own section beside its code.
struct Profile {
    ModemProfile modem;
    EfsProfile efs;
    CardsProfile cards;
    EuiccProfile euicc;
    UimProfile uim;
    std::vector<LoneService> lone_services = {statistics_service(), sar_service()};
    DebugProfile debug;
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
    for (const LoneService& service : profile.lone_services)
        root.object(service.section, service.read);
    root.section("debug", profile.debug);
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
          lone_services(make_all(core, profile.lone_services)),
          sim(slots),
          at(core, profile.at, sim),
          diag_responder(core, profile.diag),
          diag(core, diag_responder, profile.diag.streams),
          dm(core, diag_responder, profile.diag.logs),
          antenna(requests, files),
          maintenance(core, requests),
          statistics_debug(core, requests, profile.debug) {}

    ModemFiles files;
    CommonRequests requests;
    ExtensionService extension;
    Cards cards;
    UimSlots slots;
    UimService uim;
    std::vector<std::unique_ptr<QmiService>> lone_services;
    UimSimAccess sim;
    AtChannel at;
    DiagResponder diag_responder;  // of both ports
    DiagPort diag;
    DmPort dm;
    Antenna antenna;
    Maintenance maintenance;
    StatisticsDebug statistics_debug;
};

}  // namespace handset
