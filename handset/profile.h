// What kind of handset is simulated, as a profile file describes it. Every subject declares its own part
// beside its code; here they come together.
#pragma once

#include <string>
#include <vector>

#include "at_profile.h"
#include "cards.h"
#include "core.h"
#include "diag_profile.h"
#include "euicc.h"
#include "fault.h"
#include "modem_files.h"
#include "profile_section.h"
#include "sar_service.h"
#include "statistics_debug.h"
#include "statistics_service.h"
#include "uim_profile.h"

namespace handset {

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
};

/// Reads a profile from JSON text; `name` is what error lines call it. Throws ProfileError.
Profile parse_profile(const std::string& text, const std::string& name);

/// Reads a profile from a file, a pipe, or with "-" standard input, at most 16 MiB. Throws Error.
Profile load_profile(const std::string& path);

}  // namespace handset
