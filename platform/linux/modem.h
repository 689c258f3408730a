// Which modem the process works on, and all that depends on it.
//
// VXK_MODEM names it: "qrtr" or "qrtr:<node>" for the kernel's bus, "folder:<path>" for a simulated handset.
// Without it, VXK_HANDSET_DIR names a handset's folder; without that, it is the default folder where there is
// one, else the bus where the kernel has it, else the default folder.
#pragma once

#include <memory>

#include "diag_link.h"
#include "property_store.h"
#include "road.h"
#include "system_log.h"

namespace seam {

struct Modem {
    std::unique_ptr<Road> road;
    std::unique_ptr<DiagRoad> diag;
    std::unique_ptr<PropertyStore> properties;
    std::unique_ptr<SystemLog> log;
};

/// Nothing of a modem is looked at, opened or made before it is asked for something. The environment counts
/// anew at every call, so that one process can see several handsets; a default bus gives way to a handset
/// that starts. A VXK_MODEM that names nothing ends the process with a line on standard error and status 0.
/// Any thread.
std::shared_ptr<Modem> modem();

}  // namespace seam
