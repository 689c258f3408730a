// What the handset is made of: one line a subject. A subject is given the core, its own section of the
// profile, and those of the others that it speaks to, which stand above it.
#pragma once

#include "at_channel.h"
#include "cards.h"
#include "common_request.h"
#include "core.h"
#include "diag_port.h"
#include "dm_port.h"
#include "extension_service.h"
#include "maintenance.h"
#include "modem_files.h"
#include "profile.h"
#include "sar_service.h"
#include "statistics_debug.h"
#include "statistics_service.h"
#include "uim_service.h"
#include "uim_sim_access.h"

namespace handset {

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
          diag(core, profile.diag),
          dm(core, profile.diag) {
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
    DiagPort diag;
    DmPort dm;
};

}  // namespace handset
