// What the modem does for maintenance commands: restart, full dump, NV sync.
#pragma once

namespace handset {

class CommonRequests;
class Core;

/// Answers the maintenance requests. All are as long as the handset.
struct Maintenance {
    Maintenance(Core& core, CommonRequests& requests);
};

}  // namespace handset
