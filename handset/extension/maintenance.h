// What the modem does for maintenance commands: restart, full dump, NV sync, and the antenna configurations
// that it keeps in its files.
#pragma once

namespace handset {

class CommonRequests;
class Core;
class ModemFiles;

/// Answers the maintenance requests. All are as long as the handset.
struct Maintenance {
    Maintenance(Core& core, CommonRequests& requests, ModemFiles& files);
};

}  // namespace handset
