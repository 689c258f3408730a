// What the modem does for maintenance commands: restart, full dump, NV sync, and the antenna configurations
// that it keeps in its files.
#pragma once

namespace handset {

class CommonRequests;
class Core;
class ModemFiles;

/// Answers the commands from now on.
/// Answers the maintenance requests from now on.
void add_maintenance(Core& core, CommonRequests& requests, ModemFiles& files);

}  // namespace handset
